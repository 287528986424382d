#pragma once

#include "quillrip/base/bytes.h"

#include <string>

namespace quillrip::emf::plus {

/// The characters of little-endian UTF-16. A surrogate without its other half becomes U+FFFD.
std::u32string charactersOf(ByteView utf16);
std::string utf8Of(const std::u32string& characters);

} // namespace quillrip::emf::plus
