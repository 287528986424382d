#pragma once

#include "quillrip/base/bytes.h"

#include <cstddef>
#include <cstring>

namespace quillrip::emf::plus {

/// A file in memory for libraries that read by callbacks of their own.
struct MemoryFile {
    ByteView bytes;
    std::size_t at = 0;

    std::size_t read(void* to, std::size_t count)
    {
        const ByteView part = bytes.sub(at, count);
        if (!part.empty())
            std::memcpy(to, part.data, part.size);
        at += part.size;
        return part.size;
    }
};

} // namespace quillrip::emf::plus
