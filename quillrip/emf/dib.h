#pragma once

#include "quillrip/base/page_bitmap.h"

#include <array>
#include <cstdint>
#include <vector>

namespace quillrip::emf {

/// What a picture's rows are made of. Rows count from the top, the first pixel is on the left.
struct PictureShape {
    enum class Format : std::uint8_t {
        Mono, ///< packed, first pixel in the highest bit; a set bit takes table[1], a clear one table[0]
        Rgb24, ///< three bytes a pixel: red, green, blue
        Rgba32, ///< four bytes a pixel: red, green, blue, alpha; not premultiplied unless its owner knows better
    };

    Format format = Format::Rgb24;
    int width = 0;
    int height = 0;
    std::array<Rgb, 2> table {}; ///< Mono only
    bool isBottomUp = false; ///< how the rows were stored: some records count source rows from there
    bool hasAlpha
        = false; ///< Rgba32: the fourth byte was meant as opacity (a mask names it, or the image file says so)

    std::size_t rowBytes() const
    {
        const auto pixels = static_cast<std::size_t>(width);
        return format == Format::Mono ? (pixels + 7) / 8 : format == Format::Rgb24 ? pixels * 3 : pixels * 4;
    }
    /// Whatever the format: of a row, the pixel `x`.
    Rgb color(const std::uint8_t* row, int x) const;
};

/// Pixels of a picture.
struct Pixels : PictureShape {
    std::size_t stride = 0; ///< bytes from row to row
    std::vector<std::uint8_t> bytes;

    bool isNull() const { return bytes.empty(); }
    const std::uint8_t* row(int y) const { return bytes.data() + static_cast<std::size_t>(y) * stride; }
    std::uint8_t* row(int y) { return bytes.data() + static_cast<std::size_t>(y) * stride; }
    /// Whatever the format; `x` and `y` inside the picture.
    Rgb color(int x, int y) const { return PictureShape::color(row(y), x); }
};

/// What a DIB's colour table holds (the usage field of records).
enum class ColorUsage : std::uint32_t {
    Rgb = 0, ///< colours
    PaletteEntries = 1, ///< numbers of two bytes into the selected palette
    PaletteIndices = 2, ///< none: pixels are numbers into the selected palette
};

/// What a DIB takes from the device context.
struct DibContext {
    ColorUsage usage = ColorUsage::Rgb;
    const std::vector<Rgb>* palette = nullptr; ///< null: none is selected
    /// Colours of bits 0 and 1 where there is no table (usage PaletteIndices of one bit).
    std::array<Rgb, 2> monoColors { Rgb { 0, 0, 0 }, Rgb { 255, 255, 255 } };
    /// Rows that the bits hold, where that is less than the header says (SETDIBITSTODEVICE); -1: all.
    int storedRows = -1;
};

} // namespace quillrip::emf
