#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/raster/glyph_mask.h"
#include "quillrip/raster/paths/path.h"

namespace quillrip {

/// Largest side of a glyph's mask in device pixels; larger glyphs are filled as paths.
constexpr int kLargestMaskSide = 4096;

/// Pixels of an outline that is filled non-zero. Bilevel masks take the pixels whose centres lie inside, and drop-out
/// control keeps strokes thinner than a pixel in one piece. False when nothing is marked, or when the outline is
/// too large for a mask.
bool rasteriseOutline(const Path& outline, const Matrix& toDevice, GlyphMask::Depth depth, GlyphMask& mask);

/// Takes away rows without ink at top and bottom. False when no ink is left.
bool trimMask(GlyphMask& mask);

/// A matrix taken apart into scales along the axes and a turn by quarters (with mirroring, as device y points down).
struct AxisScale {
    bool isAligned = false; ///< false: the matrix turns by other angles or shears
    double x = 1; ///< pixels per glyph space unit, positive
    double y = 1;
    Matrix turn; ///< entries 0, 1, -1, and the translation
};
AxisScale axisScale(const Matrix& matrix);

/// The outline grown by `x` and `y` in all (half on each side), in the units of the path.
Path emboldened(const Path& outline, double x, double y);

} // namespace quillrip
