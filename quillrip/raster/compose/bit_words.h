#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quillrip {

/// Bits are handled 64 at a time as numbers whose highest bit is the leftmost pixel, whatever the machine's byte order.
inline std::uint64_t bigEndianWord(std::uint64_t word)
{
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    return __builtin_bswap64(word);
#else
    return word;
#endif
}

inline std::uint64_t loadWord(const std::uint8_t* at)
{
    std::uint64_t word;
    std::memcpy(&word, at, sizeof word);
    return bigEndianWord(word);
}

inline void storeWord(std::uint8_t* at, std::uint64_t word)
{
    word = bigEndianWord(word);
    std::memcpy(at, &word, sizeof word);
}

constexpr std::uint64_t kAllBits = ~std::uint64_t { 0 };

/// Pixels from `bit` (0 to 63) on to the right end of a word.
constexpr std::uint64_t bitsFrom(unsigned bit) { return kAllBits >> bit; }
/// Pixels left of `bit` (1 to 64).
constexpr std::uint64_t bitsUpTo(unsigned bit) { return kAllBits << (64 - bit); }

/// A row of packed pixels that can be read from any bit on. Bits outside the row read as 0.
class BitRow {
public:
    BitRow(const std::uint8_t* bytes, std::ptrdiff_t bitCount)
        : m_bytes(bytes)
        , m_byteCount((bitCount + 7) / 8)
    {
    }

    /// The 64 pixels from `bit` on; `bit` may be negative.
    std::uint64_t wordAt(std::ptrdiff_t bit) const
    {
        if (bit < 0)
            return bit <= -64 ? 0 : wordAt(0) >> static_cast<unsigned>(-bit);
        const std::ptrdiff_t byte = bit >> 3;
        const auto shift = static_cast<unsigned>(bit & 7);
        if (byte + 9 <= m_byteCount) {
            const std::uint64_t word = loadWord(m_bytes + byte);
            return shift == 0 ? word : word << shift | m_bytes[byte + 8] >> (8 - shift);
        }
        return wordAtEnd(byte, shift);
    }

private:
    std::uint64_t wordAtEnd(std::ptrdiff_t byte, unsigned shift) const
    {
        std::uint8_t tail[9] = {};
        if (byte < m_byteCount)
            std::memcpy(tail, m_bytes + byte, static_cast<std::size_t>(m_byteCount - byte));
        const std::uint64_t word = loadWord(tail);
        return shift == 0 ? word : word << shift | static_cast<std::uint64_t>(tail[8] >> (8 - shift));
    }

    const std::uint8_t* m_bytes;
    std::ptrdiff_t m_byteCount;
};

/// 64 bytes that are 0 or 1 to 64 pixels.
inline std::uint64_t packFlags(const std::uint8_t* flags)
{
    std::uint64_t packed = 0;
    for (std::size_t group = 0; group < 8; ++group) {
        // The product moves flag i of eight to bit 7 - i of its highest byte, so the first flag comes out leftmost.
        const std::uint64_t eight = loadWord(flags + 8 * group);
        packed = packed << 8 | (eight * 0x0102040810204080) >> 56;
    }
    return packed;
}

} // namespace quillrip
