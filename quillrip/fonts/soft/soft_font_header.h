#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/base/reporter.h"
#include "quillrip/fonts/select/font_traits.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace quillrip {

/// How the characters of a soft font are described.
enum class SoftFontTechnology : std::uint8_t { Bitmap, TrueType, Intellifont };

/// Codes that stand in for characters that were not downloaded (GC segment).
struct GalleyRange {
    std::uint16_t first;
    std::uint16_t last;
    std::uint16_t substitute;
};

/// A run of codes, both ends included.
struct CodeSpan {
    std::uint16_t first;
    std::uint16_t last;
};

/// A pair of glyph ids: horizontal form, vertical form.
struct VerticalPair {
    std::uint16_t horizontal;
    std::uint16_t vertical;
};

/// A soft font's header, read.
struct SoftFontHeader {
    SoftFontTechnology technology = SoftFontTechnology::Bitmap;
    /// As selection sees it. Lengths of scalable fonts in em, of bitmap fonts in inches.
    FontTraits traits;
    int resolutionX = 300; ///< bitmap: dots per inch
    int resolutionY = 300;
    int unitsPerEm = 0; ///< scalable
    std::vector<std::uint8_t> trueTypeData; ///< GT segment
    std::uint16_t galleyDefault = 0xFFFF;
    std::vector<GalleyRange> galley;
    std::vector<CodeSpan> uprightCodes; ///< VE segment
    std::vector<VerticalPair> verticalForms; ///< VT segment
    std::optional<double> verticalDescender; ///< VR segment, em, positive below
    /// CE segment: the font wants to be slanted or emboldened by the device.
    bool isPseudoItalic = false;
    double pseudoBold = 0; ///< em
};

/// Formats 0, 10, 11, 15, 16, 20 of the PCL 5 font header command. Nothing when it is no usable header.
std::optional<SoftFontHeader> readPclFontHeader(ByteView data, const Reporter& reporter);

/// The header of a PCL XL soft font.
std::optional<SoftFontHeader> readPclXlFontHeader(ByteView data, const Reporter& reporter);

} // namespace quillrip
