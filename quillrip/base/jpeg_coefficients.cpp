// How a row is coded: block after block, of each block its eight lines of eight coefficients. A byte tells which lines
// are not zero, and each of these has a byte for its length, without the zeros at its end, and a byte or two for each
// coefficient. A byte of zero stands for blocks that are zero, and their number follows. A block's first coefficient,
// the average of its pixels, is given as what it differs by from that of the block before: even surfaces are zero then.
//
// Rows are coded and decoded with every scan, so all of this is made of words of 64 bits, with few branches.

#include "quillrip/base/jpeg_coefficients.h"

#include <array>
#include <cstring>

namespace quillrip {

namespace {

constexpr std::size_t kLine = DCTSIZE;
constexpr std::uint64_t kFirst = 0xFFFF; ///< of a word
/// In the byte for a line's length: its coefficients have two bytes each.
constexpr unsigned kIsWide = 0x10;
/// A byte for the block, and for each line one and two words.
constexpr std::size_t kMostBytesOfBlock = 1 + DCTSIZE * (1 + 2 * sizeof(std::uint64_t));
/// The last line is written and read as two whole words, whatever its length.
constexpr std::size_t kMargin = 2 * sizeof(std::uint64_t);

/// The words below have their first coefficient in the lowest bits.
std::uint64_t loadFour(const JCOEF* from)
{
    std::uint64_t word = 0;
    for (unsigned i = 0; i < 4; ++i)
        word |= std::uint64_t { static_cast<std::uint16_t>(from[i]) } << (16 * i);
    return word;
}

void storeFour(JCOEF* to, std::uint64_t word)
{
    for (unsigned i = 0; i < 4; ++i)
        to[i] = static_cast<JCOEF>(static_cast<std::uint16_t>(word >> (16 * i)));
}

/// The first byte in the lowest bits too.
std::uint64_t inByteOrder(std::uint64_t word)
{
    return __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? word : __builtin_bswap64(word);
}

std::uint64_t loadBytes(const std::uint8_t* from)
{
    std::uint64_t word = 0;
    std::memcpy(&word, from, sizeof word);
    return inByteOrder(word);
}

void storeBytes(std::uint8_t* to, std::uint64_t word)
{
    word = inByteOrder(word);
    std::memcpy(to, &word, sizeof word);
}

/// Eight coefficients.
struct Line {
    std::uint64_t low;
    std::uint64_t high;
};

constexpr std::uint64_t everyFour(std::uint16_t value) { return value * std::uint64_t { 0x0001000100010001 }; }

/// Of each of the four what -128 to 127 leaves of it: zero when it is one of these.
std::uint64_t beyondBytes(std::uint64_t four)
{
    const std::uint64_t raised = ((four & everyFour(0x7FFF)) + everyFour(0x80)) ^ (four & everyFour(0x8000));
    return raised & everyFour(0xFF00);
}

/// The low bytes of the four.
std::uint64_t narrowed(std::uint64_t four)
{
    four &= everyFour(0x00FF);
    four = (four | four >> 8) & 0x0000FFFF0000FFFF;
    return (four | four >> 16) & 0x00000000FFFFFFFF;
}

/// Four signed bytes, of the lower half.
std::uint64_t widened(std::uint64_t bytes)
{
    bytes &= 0x00000000FFFFFFFF;
    bytes = (bytes | bytes << 16) & 0x0000FFFF0000FFFF;
    bytes = (bytes | bytes << 8) & everyFour(0x00FF);
    return (((bytes ^ everyFour(0x80)) | everyFour(0x8000)) - everyFour(0x80)) ^ everyFour(0x8000);
}

std::uint64_t lowBytes(std::uint64_t word, unsigned count)
{
    return count == 0 ? 0 : word & (~std::uint64_t { 0 } >> (64 - 8 * count));
}

/// Bytes up to the highest that is not zero.
unsigned usedBytes(std::uint64_t word) { return word == 0 ? 0 : 8 - static_cast<unsigned>(__builtin_clzll(word)) / 8; }

/// A line that is not zero, and makes it zero.
std::uint8_t* putLine(std::uint8_t* to, const Line& line)
{
    const auto [low, high] = line;
    if ((beyondBytes(low) | beyondBytes(high)) == 0) {
        const std::uint64_t bytes = narrowed(low) | narrowed(high) << 32;
        const unsigned length = usedBytes(bytes);
        *to++ = static_cast<std::uint8_t>(length);
        storeBytes(to, bytes);
        return to + length;
    }
    const unsigned length = high != 0 ? 4 + (usedBytes(high) + 1) / 2 : (usedBytes(low) + 1) / 2;
    *to++ = static_cast<std::uint8_t>(length | kIsWide);
    storeBytes(to, low);
    storeBytes(to + sizeof low, high);
    return to + std::size_t { 2 } * length;
}

const std::uint8_t* takeLine(const std::uint8_t* from, JCOEF* line)
{
    const unsigned head = *from++;
    const unsigned length = head & ~kIsWide;
    if (head == length) {
        const std::uint64_t bytes = lowBytes(loadBytes(from), length);
        storeFour(line, widened(bytes));
        storeFour(line + 4, widened(bytes >> 32));
        return from + length;
    }
    storeFour(line, length < 4 ? lowBytes(loadBytes(from), 2 * length) : loadBytes(from));
    if (length > 4)
        storeFour(line + 4, lowBytes(loadBytes(from + sizeof(std::uint64_t)), 2 * (length - 4)));
    return from + std::size_t { 2 } * length;
}

/// Seven bits a byte.
std::uint8_t* putNumber(std::uint8_t* to, std::size_t number)
{
    for (; number >= 0x80; number >>= 7)
        *to++ = static_cast<std::uint8_t>(number | 0x80U);
    *to++ = static_cast<std::uint8_t>(number);
    return to;
}

const std::uint8_t* takeNumber(const std::uint8_t* from, std::size_t& number)
{
    number = 0;
    for (unsigned shift = 0;; shift += 7) {
        const std::size_t byte = *from++;
        number |= (byte & 0x7FU) << shift;
        if (byte < 0x80)
            return from;
    }
}

} // namespace

JpegCoefficients::JpegCoefficients(
    std::size_t blocksInRow, std::size_t rows, std::size_t mostInUse, PlainRowAllowance& allowance)
    : m_blocksInRow(blocksInRow)
    , m_mostInUse(mostInUse)
    , m_rows(rows)
    , m_allowance(allowance)
{
}

JBLOCKARRAY JpegCoefficients::rows(std::size_t first, std::size_t count, bool willBeWritten)
{
    const auto isWanted = [&](std::size_t row) { return row >= first && row - first < count; };
    for (; m_inUse > 0 && !isWanted(m_firstInUse); ++m_firstInUse, --m_inUse)
        putAway(m_rows[m_firstInUse]);
    for (; m_inUse > 0 && !isWanted(m_firstInUse + m_inUse - 1); --m_inUse)
        putAway(m_rows[m_firstInUse + m_inUse - 1]);
    m_window.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        Row& row = m_rows[first + i];
        makePlain(row);
        row.isAhead = row.isAhead || willBeWritten;
        m_window[i] = row.plain.get();
    }
    m_firstInUse = first;
    m_inUse = count;
    return m_window.data();
}

void JpegCoefficients::makePlain(Row& row)
{
    if (row.plain)
        return;
    if (m_spare.empty()) {
        row.plain = std::make_unique<JBLOCK[]>(m_blocksInRow);
    } else {
        row.plain = std::move(m_spare.back());
        m_spare.pop_back();
    }
    decode(row);
}

void JpegCoefficients::putAway(Row& row)
{
    row.isKeptPlain = row.isKeptPlain || m_allowance.take(m_blocksInRow * sizeof(JBLOCK));
    if (row.isKeptPlain)
        return;
    if (row.isAhead)
        encode(row);
    else
        std::memset(row.plain.get(), 0, m_blocksInRow * sizeof(JBLOCK));
    row.isAhead = false;
    m_spare.push_back(std::move(row.plain));
}

void JpegCoefficients::encode(Row& row)
{
    if (!m_code)
        m_code.reset(new std::uint8_t[m_blocksInRow * kMostBytesOfBlock + kMargin]);
    std::uint8_t* to = m_code.get();
    std::size_t emptyBlocks = 0;
    std::uint64_t before = 0;
    std::array<Line, DCTSIZE> lines;
    for (std::size_t i = 0; i < m_blocksInRow; ++i) {
        JCOEF* const block = row.plain[i];
        for (unsigned at = 0; at < DCTSIZE; ++at)
            lines[at] = { loadFour(block + at * kLine), loadFour(block + at * kLine + 4) };
        const std::uint64_t average = lines[0].low & kFirst;
        lines[0].low = (lines[0].low & ~kFirst) | ((average - before) & kFirst);
        before = average;
        unsigned used = 0;
        for (unsigned at = 0; at < DCTSIZE; ++at)
            used |= static_cast<unsigned>((lines[at].low | lines[at].high) != 0) << at;
        if (used == 0) {
            ++emptyBlocks;
            continue;
        }
        if (emptyBlocks > 0) {
            *to++ = 0;
            to = putNumber(to, emptyBlocks);
            emptyBlocks = 0;
        }
        *to++ = static_cast<std::uint8_t>(used);
        for (; used != 0; used &= used - 1)
            to = putLine(to, lines[static_cast<unsigned>(__builtin_ctz(used))]);
    }
    std::memset(row.plain.get(), 0, m_blocksInRow * sizeof(JBLOCK));
    // Blocks that are zero up to the row's end are not told.
    const std::size_t size = static_cast<std::size_t>(to - m_code.get());
    row.coded.assign(m_code.get(), m_code.get() + (size == 0 ? 0 : size + kMargin));
}

void JpegCoefficients::decode(const Row& row) const
{
    const std::uint8_t* from = row.coded.data();
    const std::uint8_t* const end = row.coded.empty() ? from : from + row.coded.size() - kMargin;
    JCOEF average = 0;
    std::size_t i = 0;
    const auto fill = [&](std::size_t next) {
        for (; average != 0 && i < next; ++i)
            row.plain[i][0] = average;
        i = next;
    };
    while (from != end) {
        unsigned lines = *from++;
        if (lines == 0) {
            std::size_t emptyBlocks = 0;
            from = takeNumber(from, emptyBlocks);
            fill(i + emptyBlocks);
            continue;
        }
        JCOEF* const block = row.plain[i++];
        for (; lines != 0; lines &= lines - 1)
            from = takeLine(from, block + kLine * static_cast<unsigned>(__builtin_ctz(lines)));
        average = static_cast<JCOEF>(average + block[0]);
        block[0] = average;
    }
    fill(m_blocksInRow);
}

} // namespace quillrip
