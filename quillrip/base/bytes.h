#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace quillrip {

/// A run of bytes that somebody else owns.
struct ByteView {
    const std::uint8_t* data = nullptr;
    std::size_t size = 0;

    ByteView() = default;
    ByteView(const std::uint8_t* bytes, std::size_t count)
        : data(bytes)
        , size(count)
    {
    }
    ByteView(const std::vector<std::uint8_t>& bytes)
        : data(bytes.data())
        , size(bytes.size())
    {
    }

    std::uint8_t operator[](std::size_t index) const { return data[index]; }
    const std::uint8_t* begin() const { return data; }
    const std::uint8_t* end() const { return data + size; }
    bool empty() const { return size == 0; }

    /// The bytes from `from` on, at most `count`; cut to what is there, never past the end.
    ByteView sub(std::size_t from, std::size_t count = SIZE_MAX) const
    {
        if (from >= size)
            return {};
        return { data + from, count < size - from ? count : size - from };
    }
};

/// Reads forward only and never past the end. A failed read consumes nothing, so the caller can report the offset
/// at which the value should have started.
class ByteReader {
public:
    explicit ByteReader(ByteView bytes)
        : m_bytes(bytes)
    {
    }

    std::size_t offset() const { return m_offset; }
    std::size_t remaining() const { return m_bytes.size - m_offset; }

    std::optional<std::uint8_t> readU8();
    std::optional<std::int8_t> readI8();
    std::optional<std::uint16_t> readU16BigEndian();
    std::optional<std::int16_t> readI16BigEndian();
    std::optional<std::uint32_t> readU32BigEndian();
    std::optional<std::uint16_t> readU16LittleEndian();
    std::optional<std::int16_t> readI16LittleEndian();
    std::optional<std::uint32_t> readU32LittleEndian();

    /// The block may be shorter than asked for: a truncated job still prints what it has.
    ByteView takeUpTo(std::size_t count);

    /// False, and nothing consumed, when fewer than `count` bytes are left.
    bool skip(std::size_t count);

private:
    ByteView m_bytes;
    std::size_t m_offset = 0;
};

} // namespace quillrip
