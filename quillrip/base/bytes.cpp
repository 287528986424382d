#include "quillrip/base/bytes.h"

namespace quillrip {

namespace {

std::uint16_t u16(unsigned high, unsigned low) { return static_cast<std::uint16_t>(high << 8 | low); }

std::uint32_t u32(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d)
{
    return a << 24 | b << 16 | c << 8 | d;
}

} // namespace

std::optional<std::uint8_t> ByteReader::readU8()
{
    if (remaining() < 1)
        return std::nullopt;
    return m_bytes.data[m_offset++];
}

std::optional<std::int8_t> ByteReader::readI8()
{
    if (const auto value = readU8())
        return static_cast<std::int8_t>(*value);
    return std::nullopt;
}

std::optional<std::uint16_t> ByteReader::readU16BigEndian()
{
    if (remaining() < 2)
        return std::nullopt;
    const auto* at = m_bytes.data + m_offset;
    m_offset += 2;
    return u16(at[0], at[1]);
}

std::optional<std::int16_t> ByteReader::readI16BigEndian()
{
    if (const auto value = readU16BigEndian())
        return static_cast<std::int16_t>(*value);
    return std::nullopt;
}

std::optional<std::uint32_t> ByteReader::readU32BigEndian()
{
    if (remaining() < 4)
        return std::nullopt;
    const auto* at = m_bytes.data + m_offset;
    m_offset += 4;
    return u32(at[0], at[1], at[2], at[3]);
}

std::optional<std::uint16_t> ByteReader::readU16LittleEndian()
{
    if (remaining() < 2)
        return std::nullopt;
    const auto* at = m_bytes.data + m_offset;
    m_offset += 2;
    return u16(at[1], at[0]);
}

std::optional<std::int16_t> ByteReader::readI16LittleEndian()
{
    if (const auto value = readU16LittleEndian())
        return static_cast<std::int16_t>(*value);
    return std::nullopt;
}

std::optional<std::uint32_t> ByteReader::readU32LittleEndian()
{
    if (remaining() < 4)
        return std::nullopt;
    const auto* at = m_bytes.data + m_offset;
    m_offset += 4;
    return u32(at[3], at[2], at[1], at[0]);
}

ByteView ByteReader::takeUpTo(std::size_t count)
{
    const ByteView taken = m_bytes.sub(m_offset, count);
    m_offset += taken.size;
    return taken;
}

bool ByteReader::skip(std::size_t count)
{
    if (remaining() < count)
        return false;
    m_offset += count;
    return true;
}

} // namespace quillrip
