#pragma once

#include "quillrip/image/prefix_code.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace quillrip {

/// Writes a raw deflate stream (RFC 1951) of literals and repetitions that somebody else has found. They are kept until
/// there are enough for a block, whose codes are made for them.
class DeflateBlocks {
public:
    static constexpr unsigned kShortestMatch = 3;
    static constexpr unsigned kLongestMatch = 258;
    static constexpr unsigned kFarthest = 32768; ///< bytes back that a repetition may lie

    /// The stream grows `out`.
    explicit DeflateBlocks(std::vector<std::uint8_t>& out);

    void literal(std::uint8_t byte)
    {
        if (m_count == kMostSymbols)
            endBlock();
        m_symbols[m_count++] = byte;
        ++m_literalCounts[byte];
    }
    /// `length` bytes, at least three, as they lie `distance` bytes before.
    void match(std::size_t length, unsigned distance);

    /// What follows gets codes of its own. Nothing happens between two blocks.
    void endBlock();
    /// Ends the block, and the last byte, so that a stream can be put behind this one that knows nothing of it.
    void flush();
    /// Ends the stream, and the last byte.
    void finish();

private:
    static constexpr std::size_t kMostSymbols = std::size_t { 1 } << 15;
    static constexpr std::size_t kLiterals = 286; ///< bytes, the end of a block, lengths
    static constexpr std::size_t kDistances = 30;
    struct Lengths {
        std::array<std::uint8_t, 288> literals {};
        std::array<std::uint8_t, 32> distances {};
    };
    struct Header;

    void writeBlock(bool isLast);
    Header headerFor(const Lengths& lengths) const;
    /// Bits that the block takes with these codes, without a header.
    std::uint64_t bitsWith(const Lengths& lengths) const;
    void writeSymbols(const Lengths& lengths);
    void put(std::uint32_t bits, int count);
    void endByte();

    std::vector<std::uint8_t>& m_out;
    std::uint64_t m_bits = 0; ///< not yet in m_out
    int m_bitCount = 0; ///< less than 8 between calls
    /// A byte, or kMatch with its length - 3 in 8 bits and its distance - 1 in 15.
    std::unique_ptr<std::uint32_t[]> m_symbols;
    std::size_t m_count = 0;
    std::array<std::uint32_t, kLiterals> m_literalCounts {};
    std::array<std::uint32_t, kDistances> m_distanceCounts {};
};

} // namespace quillrip
