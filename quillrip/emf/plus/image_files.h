#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/emf/dib.h"

#include <string>

namespace quillrip::emf::plus {

/// An image file by its content: PNG, JPEG, GIF (its first picture), TIFF (its first page) or BMP, as Rgba32, not
/// premultiplied. Null pixels, with the reason in `problem`, when it is none of these or cannot be read.
Pixels decodeImageFile(ByteView file, std::string& problem);

} // namespace quillrip::emf::plus
