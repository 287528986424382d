#include "quillrip/image/deflate_blocks.h"

#include <algorithm>
#include <cstring>

namespace quillrip {

namespace {

constexpr std::uint32_t kMatch = std::uint32_t { 1 } << 31;
constexpr int kDistanceBits = 15;
constexpr std::size_t kEndOfBlock = 256;
constexpr std::size_t kFirstLength = 257;

/// How the standard writes a length: a symbol, and bits that are added to its least length.
struct LengthSymbol {
    std::uint16_t symbol;
    std::uint8_t extraBits;
    std::uint8_t extra;
};

constexpr std::array<LengthSymbol, 256> lengthSymbols()
{
    std::array<LengthSymbol, 256> table {};
    std::size_t length = 0; // less 3
    std::uint16_t symbol = kFirstLength;
    for (unsigned bits = 0; bits <= 5; ++bits) {
        for (int i = 0; i < (bits == 0 ? 8 : 4); ++i, ++symbol) {
            for (unsigned extra = 0; extra < 1u << bits && length < table.size(); ++extra, ++length)
                table[length] = { symbol, static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(extra) };
        }
    }
    table[255] = { symbol, 0, 0 }; // 258 has one of its own
    return table;
}

constexpr auto kLengthSymbols = lengthSymbols();

/// `distance` is less 1.
unsigned distanceSymbol(unsigned distance)
{
    if (distance < 4)
        return distance;
    const unsigned highest = 31u - static_cast<unsigned>(__builtin_clz(distance));
    return 2 * highest + (distance >> (highest - 1) & 1);
}

constexpr unsigned extraBitsOfDistance(unsigned symbol) { return symbol < 4 ? 0 : symbol / 2 - 1; }

// The code lengths of a header are run lengths themselves, in symbols of their own.
constexpr std::size_t kHeaderSymbols = 19;
constexpr std::uint8_t kRepeatLast = 16; ///< 3 to 6 times
constexpr std::uint8_t kFewZeros = 17; ///< 3 to 10
constexpr std::uint8_t kManyZeros = 18; ///< 11 to 138
constexpr std::array<std::uint8_t, kHeaderSymbols> kHeaderOrder { 16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2,
    14, 1, 15 };

constexpr int extraBitsInHeader(std::uint8_t symbol)
{
    return symbol == kRepeatLast ? 2 : symbol == kFewZeros ? 3 : symbol == kManyZeros ? 7 : 0;
}

} // namespace

/// What stands before a block that has codes of its own.
struct DeflateBlocks::Header {
    struct Symbol {
        std::uint8_t symbol;
        std::uint8_t extra;
    };
    std::array<Symbol, 320> symbols;
    std::size_t count = 0;
    std::size_t literals = kLiterals; ///< code lengths of them, as far as there are any
    std::size_t distances = kDistances;
    std::size_t codes = kHeaderSymbols;
    std::array<std::uint8_t, kHeaderSymbols> lengths {};
    std::uint64_t bits = 0;

    void add(std::uint8_t symbol, std::size_t extra = 0)
    {
        symbols[count++] = { symbol, static_cast<std::uint8_t>(extra) };
    }
};

DeflateBlocks::DeflateBlocks(std::vector<std::uint8_t>& out)
    : m_out(out)
    , m_symbols(new std::uint32_t[kMostSymbols])
{
}

void DeflateBlocks::match(std::size_t length, unsigned distance)
{
    const unsigned symbol = distanceSymbol(distance - 1);
    while (length > 0) {
        // What is left has to be long enough for a match.
        const std::size_t here = length <= kLongestMatch ? length
            : length < kLongestMatch + kShortestMatch    ? length - kShortestMatch
                                                         : kLongestMatch;
        if (m_count == kMostSymbols)
            endBlock();
        m_symbols[m_count++]
            = kMatch | static_cast<std::uint32_t>(here - kShortestMatch) << kDistanceBits | (distance - 1);
        ++m_literalCounts[kLengthSymbols[here - kShortestMatch].symbol];
        ++m_distanceCounts[symbol];
        length -= here;
    }
}

void DeflateBlocks::endBlock()
{
    if (m_count > 0)
        writeBlock(false);
}

void DeflateBlocks::flush()
{
    endBlock();
    // An empty stored block starts with a whole byte.
    put(0, 3);
    endByte();
    m_out.insert(m_out.end(), { 0x00, 0x00, 0xFF, 0xFF });
}

void DeflateBlocks::finish()
{
    writeBlock(true);
    endByte();
}

void DeflateBlocks::writeBlock(bool isLast)
{
    m_literalCounts[kEndOfBlock] = 1;
    Lengths own;
    findCodeLengths(m_literalCounts.data(), kLiterals, kLongestPrefixCode, own.literals.data());
    findCodeLengths(m_distanceCounts.data(), kDistances, kLongestPrefixCode, own.distances.data());
    Lengths fixed;
    for (std::size_t i = 0; i < fixed.literals.size(); ++i)
        fixed.literals[i] = static_cast<std::uint8_t>(i < 144 ? 8 : i < 256 ? 9 : i < 280 ? 7 : 8);
    fixed.distances.fill(5);

    const Header header = headerFor(own);
    const bool isFixed = bitsWith(fixed) <= bitsWith(own) + header.bits;
    put(isLast ? 1 : 0, 1);
    put(isFixed ? 1 : 2, 2);
    if (!isFixed) {
        std::array<PrefixCode, kHeaderSymbols> codes;
        assignCodes(header.lengths.data(), kHeaderSymbols, codes.data());
        put(static_cast<std::uint32_t>(header.literals - 257), 5);
        put(static_cast<std::uint32_t>(header.distances - 1), 5);
        put(static_cast<std::uint32_t>(header.codes - 4), 4);
        for (std::size_t i = 0; i < header.codes; ++i)
            put(header.lengths[kHeaderOrder[i]], 3);
        for (std::size_t i = 0; i < header.count; ++i) {
            const Header::Symbol& symbol = header.symbols[i];
            put(codes[symbol.symbol].bits, codes[symbol.symbol].length);
            put(symbol.extra, extraBitsInHeader(symbol.symbol));
        }
    }
    writeSymbols(isFixed ? fixed : own);
    m_count = 0;
    m_literalCounts.fill(0);
    m_distanceCounts.fill(0);
}

DeflateBlocks::Header DeflateBlocks::headerFor(const Lengths& lengths) const
{
    Header header;
    while (header.literals > kFirstLength && lengths.literals[header.literals - 1] == 0)
        --header.literals;
    while (header.distances > 1 && lengths.distances[header.distances - 1] == 0)
        --header.distances;
    std::array<std::uint8_t, kLiterals + kDistances> all;
    std::copy_n(lengths.literals.begin(), header.literals, all.begin());
    std::copy_n(
        lengths.distances.begin(), header.distances, all.begin() + static_cast<std::ptrdiff_t>(header.literals));
    const std::size_t count = header.literals + header.distances;
    for (std::size_t i = 0; i < count;) {
        const std::uint8_t length = all[i];
        std::size_t run = 1;
        while (i + run < count && all[i + run] == length)
            ++run;
        i += run;
        if (length != 0) {
            header.add(length);
            --run;
        }
        while (run >= 3) {
            const std::size_t most = length != 0 ? 6 : 138;
            const std::size_t here = std::min(run, most);
            if (length != 0)
                header.add(kRepeatLast, here - 3);
            else if (here <= 10)
                header.add(kFewZeros, here - 3);
            else
                header.add(kManyZeros, here - 11);
            run -= here;
        }
        for (; run > 0; --run)
            header.add(length);
    }
    std::array<std::uint32_t, kHeaderSymbols> counts {};
    for (std::size_t i = 0; i < header.count; ++i)
        ++counts[header.symbols[i].symbol];
    constexpr int longestInHeader = 7;
    findCodeLengths(counts.data(), kHeaderSymbols, longestInHeader, header.lengths.data());
    while (header.codes > 4 && header.lengths[kHeaderOrder[header.codes - 1]] == 0)
        --header.codes;
    header.bits = 14 + 3 * header.codes;
    for (std::size_t i = 0; i < header.count; ++i) {
        const std::uint8_t symbol = header.symbols[i].symbol;
        header.bits += static_cast<std::uint64_t>(header.lengths[symbol] + extraBitsInHeader(symbol));
    }
    return header;
}

std::uint64_t DeflateBlocks::bitsWith(const Lengths& lengths) const
{
    // Further bits are the same whatever the codes.
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < kLiterals; ++i)
        bits += std::uint64_t { m_literalCounts[i] } * lengths.literals[i];
    for (std::size_t i = 0; i < kDistances; ++i)
        bits += std::uint64_t { m_distanceCounts[i] } * lengths.distances[i];
    return bits;
}

void DeflateBlocks::writeSymbols(const Lengths& lengths)
{
    std::array<PrefixCode, 288> literals;
    std::array<PrefixCode, 32> distances;
    assignCodes(lengths.literals.data(), literals.size(), literals.data());
    assignCodes(lengths.distances.data(), distances.size(), distances.data());
    struct Bits {
        std::uint32_t bits;
        int count;
    };
    // Of each length, with its further bits.
    std::array<Bits, 256> ofLength;
    for (std::size_t i = 0; i < ofLength.size(); ++i) {
        const LengthSymbol& length = kLengthSymbols[i];
        const PrefixCode& code = literals[length.symbol];
        ofLength[i] = { code.bits | std::uint32_t { length.extra } << code.length, code.length + length.extraBits };
    }

    // No symbol takes more than 48 bits, and less than 8 are left from the one before.
    const std::size_t start = m_out.size();
    m_out.resize(start + 6 * m_count + 16);
    std::uint8_t* out = m_out.data() + start;
    std::uint64_t bits = m_bits;
    int count = m_bitCount;
    const auto store = [&] {
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
        std::memcpy(out, &bits, 8);
#else
        const std::uint64_t lowestFirst = __builtin_bswap64(bits);
        std::memcpy(out, &lowestFirst, 8);
#endif
        out += count >> 3;
        bits >>= count & ~7;
        count &= 7;
    };
    for (std::size_t i = 0; i < m_count; ++i) {
        const std::uint32_t symbol = m_symbols[i];
        if ((symbol & kMatch) == 0) {
            bits |= std::uint64_t { literals[symbol].bits } << count;
            count += literals[symbol].length;
        } else {
            const Bits& length = ofLength[symbol >> kDistanceBits & 0xFF];
            bits |= std::uint64_t { length.bits } << count;
            count += length.count;
            const unsigned distance = symbol & ((1u << kDistanceBits) - 1);
            const unsigned distanceCode = distanceSymbol(distance);
            bits |= std::uint64_t { distances[distanceCode].bits } << count;
            count += distances[distanceCode].length;
            const unsigned extra = extraBitsOfDistance(distanceCode);
            bits |= std::uint64_t { distance & ((1u << extra) - 1) } << count;
            count += static_cast<int>(extra);
        }
        store();
    }
    bits |= std::uint64_t { literals[kEndOfBlock].bits } << count;
    count += literals[kEndOfBlock].length;
    store();
    m_bits = bits;
    m_bitCount = count;
    m_out.resize(static_cast<std::size_t>(out - m_out.data()));
}

void DeflateBlocks::put(std::uint32_t bits, int count)
{
    m_bits |= std::uint64_t { bits } << m_bitCount;
    m_bitCount += count;
    for (; m_bitCount >= 8; m_bitCount -= 8, m_bits >>= 8)
        m_out.push_back(static_cast<std::uint8_t>(m_bits));
}

void DeflateBlocks::endByte()
{
    if (m_bitCount > 0)
        put(0, 8 - m_bitCount);
}

} // namespace quillrip
