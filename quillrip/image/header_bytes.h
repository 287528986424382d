#pragma once

#include <cstdint>
#include <vector>

namespace quillrip {

/// Builds headers whose numbers have their lowest byte first.
class LittleEndianWriter {
public:
    explicit LittleEndianWriter(std::vector<std::uint8_t>& bytes)
        : m_bytes(bytes)
    {
    }

    void u8(std::uint8_t value) { m_bytes.push_back(value); }
    void u16(std::uint32_t value)
    {
        u8(static_cast<std::uint8_t>(value));
        u8(static_cast<std::uint8_t>(value >> 8));
    }
    void u32(std::uint32_t value)
    {
        u16(value & 0xFFFF);
        u16(value >> 16);
    }

private:
    std::vector<std::uint8_t>& m_bytes;
};

/// Pixels per metre for dots per inch, rounded; 0 (unknown) for what no format can hold.
inline std::uint32_t pixelsPerMetre(double dotsPerInch)
{
    const double value = dotsPerInch / 0.0254 + 0.5;
    return value >= 1 && value < 2147483647.0 ? static_cast<std::uint32_t>(value) : 0;
}

} // namespace quillrip
