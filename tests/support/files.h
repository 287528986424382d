#pragma once

#include "quillrip/base/bytes.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quillrip::test {

/// All of a file; empty when it cannot be read.
std::string readFile(const std::string& path);
std::vector<std::uint8_t> readBytes(const std::string& path);

inline ByteView bytesOf(const std::string& text)
{
    return { reinterpret_cast<const std::uint8_t*>(text.data()), text.size() };
}

} // namespace quillrip::test
