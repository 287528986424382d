#pragma once

#include "quillrip/base/page_bitmap.h"
#include "quillrip/raster/images/image_painter.h"

#include <cstdint>

namespace quillrip {

/// Source pixels as ink in a page's channels (1 or 3). A bilevel source has one channel, 255 where it has ink.
void convertRow(const std::uint8_t* pixels, ImageFormat format, int width, int channels, std::uint8_t* ink);

/// Inserts an alpha byte behind the ink of every pixel and multiplies the ink by it: `ink` has `channels` bytes a pixel
/// before and room for one more each. `alpha` is every `alphaStep`th byte.
void interleaveAlpha(std::uint8_t* ink, int width, int channels, const std::uint8_t* alpha, int alphaStep);

} // namespace quillrip
