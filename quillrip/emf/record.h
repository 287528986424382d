#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/base/geometry.h"

#include <cstdint>
#include <cstring>

namespace quillrip::emf {

/// A rectangle as records hold it; nothing says that left is not greater than right.
struct Box {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;
};

/// Little-endian fields at fixed places in a run of bytes. What lies beyond its end reads as 0: later versions of many
/// structures only added fields.
class Fields {
public:
    Fields() = default;
    explicit Fields(ByteView bytes)
        : m_bytes(bytes)
    {
    }

    ByteView bytes() const { return m_bytes; }
    std::size_t size() const { return m_bytes.size; }
    bool has(std::uint64_t at, std::uint64_t count) const { return at <= m_bytes.size && count <= m_bytes.size - at; }

    std::uint8_t u8(std::size_t at) const { return has(at, 1) ? m_bytes[at] : std::uint8_t { 0 }; }
    std::uint16_t u16(std::size_t at) const { return number<std::uint16_t>(at); }
    std::int16_t i16(std::size_t at) const { return static_cast<std::int16_t>(u16(at)); }
    std::uint32_t u32(std::size_t at) const { return number<std::uint32_t>(at); }
    std::int32_t i32(std::size_t at) const { return static_cast<std::int32_t>(u32(at)); }
    float f32(std::size_t at) const
    {
        const std::uint32_t bits = u32(at);
        float value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }

    Point point(std::size_t at) const { return { double(i32(at)), double(i32(at + 4)) }; }
    Point shortPoint(std::size_t at) const { return { double(i16(at)), double(i16(at + 2)) }; }
    Box box(std::size_t at) const { return { i32(at), i32(at + 4), i32(at + 8), i32(at + 12) }; }
    /// Six numbers: x' = M11 x + M21 y + Dx, y' = M12 x + M22 y + Dy.
    Matrix matrix(std::size_t at) const
    {
        return { f32(at), f32(at + 4), f32(at + 8), f32(at + 12), f32(at + 16), f32(at + 20) };
    }
    /// Empty when any of it lies outside.
    ByteView part(std::uint64_t at, std::uint64_t count) const
    {
        return has(at, count) ? m_bytes.sub(static_cast<std::size_t>(at), static_cast<std::size_t>(count)) : ByteView();
    }

private:
    template <typename Number> Number number(std::size_t at) const
    {
        if (!has(at, sizeof(Number)))
            return 0;
        Number value = 0;
        for (std::size_t i = sizeof(Number); i-- > 0;)
            value = static_cast<Number>(static_cast<Number>(value << 8 * (sizeof(Number) > 1)) | m_bytes[at + i]);
        return value;
    }

    ByteView m_bytes;
};

/// Record types that readers look out for; the others stand in the command table alone.
constexpr std::uint32_t kEndOfFileRecord = 0x0E;
constexpr std::uint32_t kCommentRecord = 0x46;
/// What a comment with EMF+ records begins with: "EMF+".
constexpr std::uint32_t kEmfPlusIdentifier = 0x2B464D45;

/// One record of a metafile with its type and size; places count from the record's start.
class Record : public Fields {
public:
    static constexpr std::size_t kSmallest = 8;

    Record(ByteView bytes, std::uint64_t offset)
        : Fields(bytes)
        , m_offset(offset)
    {
    }

    std::uint32_t type() const { return u32(0); }
    /// Where the record starts in the input, for reports.
    std::uint64_t offset() const { return m_offset; }

private:
    std::uint64_t m_offset;
};

} // namespace quillrip::emf
