#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillrip {

/// A glyph as the page's pixels see it. The reference point is the pixel corner (0, 0) on the baseline.
struct GlyphMask {
    enum class Depth : std::uint8_t {
        Bits, ///< packed, first pixel in the highest bit, 1 = ink; rows padded to whole bytes
        Coverage, ///< one byte a pixel, 255 = all ink
    };

    Depth depth = Depth::Bits;
    int left = 0; ///< device pixels from the reference point to the first column, right positive
    int top = 0; ///< device pixels from the reference point to the first row, down positive
    int width = 0;
    int height = 0;
    std::size_t stride = 0; ///< bytes from row to row
    std::vector<std::uint8_t> bytes;
};

} // namespace quillrip
