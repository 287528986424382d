#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/raster/compose/paint_state.h"

#include <cstddef>
#include <memory>

namespace quillrip::pclxl {

/// A pattern as the stream defined it.
struct RasterPattern {
    PatternTile tile; ///< source pixels: mono (black on white) or colour
    Point size; ///< user units that one tile covers
};

/// A pattern in device pixels, ready for a texture.
struct DeviceTile {
    std::shared_ptr<const PatternTile> tile; ///< null: too large to be made
    int originX = 0;
    int originY = 0;
};

/// The pattern with its tiles `size` user units large, one of them starting at `origin`, under a matrix that keeps the
/// axes. Tiles that are no whole number of pixels large are made several tiles wide and high, so that the pattern keeps
/// its period over the page. Null tile when it would take more than `maxBytes`.
DeviceTile deviceTileOf(
    const RasterPattern& pattern, Point origin, Point size, const Matrix& userToDevice, std::size_t maxBytes);

} // namespace quillrip::pclxl
