#pragma once

#include "quillrip/emf/plus/image_cache.h"

#include <memory>

namespace quillrip::emf::plus {

/// All pixels of an image, halved in width and height so many times while its rows come in. Both sides must be longer
/// than one before each time. What is not there when the work meter is exhausted is transparent. Throws std::bad_alloc
/// where there is no room for what is left.
std::shared_ptr<const Pixels> reducedPixels(OpenImage& image, int halvings, WorkMeter& work);

} // namespace quillrip::emf::plus
