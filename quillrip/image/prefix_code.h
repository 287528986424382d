#pragma once

#include <cstddef>
#include <cstdint>

namespace quillrip {

constexpr int kLongestPrefixCode = 15;

/// A symbol's code as deflate writes it: the first bit of the code is the lowest.
struct PrefixCode {
    std::uint16_t bits = 0;
    std::uint8_t length = 0; ///< 0: the symbol is not used
};

/// The lengths of an optimal prefix code (Huffman's), but for none being longer than `longest` bits.
/// Symbols of frequency 0 get length 0, a single symbol length 1. `count` is at most 288, and 2 to the power of
/// `longest` no less.
void findCodeLengths(const std::uint32_t* frequencies, std::size_t count, int longest, std::uint8_t* lengths);

/// The codes that follow from the lengths: shorter ones first, those of a length in the order of their symbols (RFC
/// 1951, 3.2.2).
void assignCodes(const std::uint8_t* lengths, std::size_t count, PrefixCode* codes);

} // namespace quillrip
