#pragma once

#include "quillrip/emf/plus/image_object.h"

#include <cstdint>
#include <string>

namespace quillrip::emf::plus {

/// Width times height of the largest image that is decoded: 512 MiB of pixels.
constexpr std::uint64_t kMostImagePixels = std::uint64_t { 1 } << 27;

/// Rows of one of the pixel formats as Rgba32, not premultiplied; rows and palette entries that are not there come out
/// transparent and black. Null pixels, with the reason in `problem`, for a format that is not known or a size that
/// cannot be.
Pixels decodePixels(const ImageObject& image, std::string& problem);

} // namespace quillrip::emf::plus
