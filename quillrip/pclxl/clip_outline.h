#pragma once

#include "quillrip/raster/paths/path.h"
#include "quillrip/raster/scan/clip_region.h"

#include <cstddef>

namespace quillrip::pclxl {

/// The edges of a region that is no rectangle, as closed polygons along the pixels' sides, in device pixels. Filled by
/// either rule they give the region's pixels again. Stops at `maxPoints`.
Path outlineOfRegion(const ClipRegion& region, std::size_t maxPoints);

} // namespace quillrip::pclxl
