#pragma once

#include "quillrip/base/page_bitmap.h"
#include "quillrip/raster/images/image_painter.h"

#include <cstdint>

namespace quillrip {

/// Source pixels as ink in a page's channels (1 or 3). A bilevel source has one channel, 255 where it has ink.
void convertRow(const std::uint8_t* pixels, ImageFormat format, int width, int channels, std::uint8_t* ink);

} // namespace quillrip
