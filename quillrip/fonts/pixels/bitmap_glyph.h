#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/raster/glyph_mask.h"
#include "quillrip/raster/paths/path.h"

#include <cstdint>
#include <vector>

namespace quillrip {

/// A downloaded bitmap character in upright form: as it looks when text runs to the right.
struct BitmapGlyph {
    int left = 0; ///< dots from the reference point to the first column, right positive
    int top = 0; ///< dots from the baseline to the upper edge of the first row, up positive
    int width = 0;
    int height = 0;
    double advance = 0; ///< dots
    std::vector<std::uint8_t> bits; ///< rows of ceil(width / 8) bytes, first dot in the highest bit, 1 = ink

    std::size_t stride() const { return (static_cast<std::size_t>(width) + 7) / 8; }
    bool ink(int column, int row) const
    {
        return bits[static_cast<std::size_t>(row) * stride() + static_cast<std::size_t>(column) / 8] >> (7 - column % 8)
            & 1;
    }

    /// The glyph as stored for a font of that orientation (0 to 3), turned upright.
    BitmapGlyph turnedUpright(int orientation) const;

    /// The outline of the ink in dots, y up.
    Path outline() const;

    /// Pixels: `dotsToDevice` takes dots (y up) to device pixels. Whole-number scales along the axes copy dots as
    /// blocks exactly, quarter turns too; all else goes through the outline, which keeps thin strokes.
    bool rasterise(const Matrix& dotsToDevice, GlyphMask::Depth depth, GlyphMask& mask) const;
};

} // namespace quillrip
