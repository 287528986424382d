#pragma once

#include "quillrip/base/bytes.h"

#include <cstdint>

namespace quillrip {

// Fields at fixed places of descriptors and tables, most significant byte first. The caller has checked that the
// bytes are there: unlike a reader's, these places are all within a size that is checked once.

inline std::uint16_t u16At(ByteView data, std::size_t at)
{
    return static_cast<std::uint16_t>(data[at] << 8 | data[at + 1]);
}

inline std::int16_t s16At(ByteView data, std::size_t at) { return static_cast<std::int16_t>(u16At(data, at)); }

inline std::uint32_t u32At(ByteView data, std::size_t at)
{
    return static_cast<std::uint32_t>(u16At(data, at)) << 16 | u16At(data, at + 2);
}

inline std::uint64_t u64At(ByteView data, std::size_t at)
{
    return static_cast<std::uint64_t>(u32At(data, at)) << 32 | u32At(data, at + 4);
}

} // namespace quillrip
