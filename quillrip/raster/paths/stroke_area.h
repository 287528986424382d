#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/base/work_meter.h"
#include "quillrip/raster/paths/path.h"
#include "quillrip/raster/paths/stroke_style.h"

namespace quillrip {

/// The area that a stroke covers, in device pixels: convex pieces that overlap, all turning the same way, to be filled
/// non-zero. For clips and for strokes that are filled with more than a colour. Dashes are made within `area` only.
/// The work is charged; once it is exhausted, the rest of the stroke is left out.
Path strokeArea(
    const Path& userPath, const Matrix& userToDevice, const StrokeStyle& style, const PixelRect& area, WorkMeter& work);

} // namespace quillrip
