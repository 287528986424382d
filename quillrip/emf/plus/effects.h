#pragma once

#include "quillrip/base/bytes.h"

#include <cstddef>

namespace quillrip::emf::plus {

constexpr std::size_t kGuidSize = 16;

/// What an image effect does, by the identifier that it is stored under ([MS-EMFPLUS] 2.1.3.1).
const char* effectName(ByteView guid);

} // namespace quillrip::emf::plus
