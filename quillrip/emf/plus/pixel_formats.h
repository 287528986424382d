#pragma once

#include "quillrip/emf/image_rows.h"
#include "quillrip/emf/plus/image_object.h"

#include <memory>
#include <string>

namespace quillrip::emf::plus {

/// Rows of one of the pixel formats as openImage() gives them; palette entries that are not there come out black. Null,
/// with the reason in `problem`, for a format that is not known or a size that cannot be.
std::unique_ptr<ImageRows> openPixels(const ImageObject& image, WorkMeter& work, std::string& problem);

} // namespace quillrip::emf::plus
