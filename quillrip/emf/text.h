#pragma once

#include "quillrip/emf/record.h"
#include "quillrip/emf/state.h"
#include "quillrip/fonts/select/windows_fonts.h"

#include <cstdint>
#include <vector>

namespace quillrip::emf {

class Machine;

/// One string of a text record.
struct TextRun {
    /// A character or a glyph's number, and how far it moves.
    struct Unit {
        char32_t code = 0;
        double dx = 0; ///< logical units along the line
        double dy = 0; ///< logical units upwards, from ETO_PDY
    };

    Point reference; ///< logical
    std::vector<Unit> units;
    bool hasAdvances = false; ///< dx and dy count; otherwise the font's own widths
    std::uint32_t options = 0; ///< ETO flags
    Box box; ///< logical, for ETO_OPAQUE and ETO_CLIPPED
    bool isCompatible = false; ///< recorded in graphics mode GM_COMPATIBLE: letters stand upright
};

/// Draws a string with the context's font, colours and alignment, or adds it to the path that is being recorded.
void drawText(Machine& machine, const TextRun& run);

enum TextOption : std::uint32_t {
    kTextOpaque = 0x0002,
    kTextClipped = 0x0004,
    kTextGlyphIndex = 0x0010,
    kTextRightToLeft = 0x0080,
    kTextNoBox = 0x0100,
    kTextSmallCharacters = 0x0200,
    kTextIgnoreLanguage = 0x1000,
    kTextPairs = 0x2000,
};

/// Characters of a code page, with as many units as there are bytes: those behind the first byte of a character have
/// the code 0 and only move.
std::vector<TextRun::Unit> unitsOfBytes(ByteView bytes, std::uint8_t charset);
/// The same of UTF-16: the second half of a pair only moves.
std::vector<TextRun::Unit> unitsOfUtf16(ByteView bytes);

} // namespace quillrip::emf
