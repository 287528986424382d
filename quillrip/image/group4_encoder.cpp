// ITU-T Recommendation T.6: a row is coded by where its colours change, seen from the changes of the row above. The
// rows' changes are found a word at a time and only where the page was marked, so the time goes with the ink, not the
// area.

#include "quillrip/image/group4_encoder.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>

namespace quillrip {

namespace {

struct Code {
    std::uint16_t bits = 0;
    std::uint8_t length = 0;
};

/// A code as the recommendation prints it.
constexpr Code codeOf(const char* digits)
{
    Code code;
    for (; *digits; ++digits) {
        code.bits = static_cast<std::uint16_t>(code.bits << 1 | (*digits == '1'));
        ++code.length;
    }
    return code;
}

template <std::size_t N> constexpr std::array<Code, N> codesOf(const char* const (&digits)[N])
{
    std::array<Code, N> codes {};
    for (std::size_t i = 0; i < N; ++i)
        codes[i] = codeOf(digits[i]);
    return codes;
}

// Table 2/T.4: runs of 0 to 63 pixels.
constexpr auto s_whiteRuns = codesOf({ "00110101", "000111", "0111", "1000", "1011", "1100", "1110", "1111", "10011",
    "10100", "00111", "01000", "001000", "000011", "110100", "110101", "101010", "101011", "0100111", "0001100",
    "0001000", "0010111", "0000011", "0000100", "0101000", "0101011", "0010011", "0100100", "0011000", "00000010",
    "00000011", "00011010", "00011011", "00010010", "00010011", "00010100", "00010101", "00010110", "00010111",
    "00101000", "00101001", "00101010", "00101011", "00101100", "00101101", "00000100", "00000101", "00001010",
    "00001011", "01010010", "01010011", "01010100", "01010101", "00100100", "00100101", "01011000", "01011001",
    "01011010", "01011011", "01001010", "01001011", "00110010", "00110011", "00110100" });
constexpr auto s_blackRuns = codesOf({ "0000110111", "010", "11", "10", "011", "0011", "0010", "00011", "000101",
    "000100", "0000100", "0000101", "0000111", "00000100", "00000111", "000011000", "0000010111", "0000011000",
    "0000001000", "00001100111", "00001101000", "00001101100", "00000110111", "00000101000", "00000010111",
    "00000011000", "000011001010", "000011001011", "000011001100", "000011001101", "000001101000", "000001101001",
    "000001101010", "000001101011", "000011010010", "000011010011", "000011010100", "000011010101", "000011010110",
    "000011010111", "000001101100", "000001101101", "000011011010", "000011011011", "000001010100", "000001010101",
    "000001010110", "000001010111", "000001100100", "000001100101", "000001010010", "000001010011", "000000100100",
    "000000110111", "000000111000", "000000100111", "000000101000", "000001011000", "000001011001", "000000101011",
    "000000101100", "000001011010", "000001100110", "000001100111" });

// Tables 3a and 3b/T.4: the part of a run that is a multiple of 64, from 64 to 2560.
constexpr auto s_whiteMultiples = codesOf({ "11011", "10010", "010111", "0110111", "00110110", "00110111", "01100100",
    "01100101", "01101000", "01100111", "011001100", "011001101", "011010010", "011010011", "011010100", "011010101",
    "011010110", "011010111", "011011000", "011011001", "011011010", "011011011", "010011000", "010011001", "010011010",
    "011000", "010011011", "00000001000", "00000001100", "00000001101", "000000010010", "000000010011", "000000010100",
    "000000010101", "000000010110", "000000010111", "000000011100", "000000011101", "000000011110", "000000011111" });
constexpr auto s_blackMultiples = codesOf({ "0000001111", "000011001000", "000011001001", "000001011011",
    "000000110011", "000000110100", "000000110101", "0000001101100", "0000001101101", "0000001001010", "0000001001011",
    "0000001001100", "0000001001101", "0000001110010", "0000001110011", "0000001110100", "0000001110101",
    "0000001110110", "0000001110111", "0000001010010", "0000001010011", "0000001010100", "0000001010101",
    "0000001011010", "0000001011011", "0000001100100", "0000001100101", "00000001000", "00000001100", "00000001101",
    "000000010010", "000000010011", "000000010100", "000000010101", "000000010110", "000000010111", "000000011100",
    "000000011101", "000000011110", "000000011111" });
static_assert(s_whiteRuns.size() == 64 && s_blackRuns.size() == 64);
static_assert(s_whiteMultiples.size() == 40 && s_blackMultiples.size() == 40);

// Table 1/T.6. Vertical codes by how far the change lies right of the one above, from -3 to 3.
constexpr Code kPass = codeOf("0001");
constexpr Code kHorizontal = codeOf("001");
constexpr auto s_vertical = codesOf({ "0000010", "000010", "010", "1", "011", "000011", "0000011" });
constexpr Code kEndOfLine = codeOf("000000000001");
constexpr int kLongestMultiple = 2560;
/// A vertical code takes 7 bits at most and goes on by a pixel; runs take less for each of theirs.
constexpr std::size_t kMostBitsPerPixel = 9;
/// Bytes that the bits of rows before and the end of the page may take.
constexpr std::size_t kSpare = 32;

/// Bits on their way to memory that has room for them. Small enough to be kept in registers for a row.
class BitWriter {
public:
    explicit BitWriter(std::uint8_t* at)
        : m_at(at)
    {
    }

    void put(Code code)
    {
        m_bits = m_bits << code.length | code.bits;
        m_count += code.length;
        if (m_count < 32)
            return;
        m_count -= 32;
        const auto word = static_cast<std::uint32_t>(m_bits >> m_count);
        for (int i = 0; i < 4; ++i)
            *m_at++ = static_cast<std::uint8_t>(word >> (24 - 8 * i));
    }

    /// The last byte is filled with 0 bits.
    void finish()
    {
        for (; m_count > 0; m_count -= 8)
            *m_at++ = static_cast<std::uint8_t>(m_count >= 8 ? m_bits >> (m_count - 8) : m_bits << (8 - m_count));
        m_count = 0;
    }

    /// What follows goes there.
    void moveTo(std::uint8_t* at) { m_at = at; }
    std::uint8_t* at() const { return m_at; }

private:
    std::uint8_t* m_at;
    std::uint64_t m_bits = 0;
    int m_count = 0; ///< of them not written, 0 to 31 between calls
};

void putRun(BitWriter& writer, int length, bool isBlack)
{
    const auto& multiples = isBlack ? s_blackMultiples : s_whiteMultiples;
    while (length >= kLongestMultiple + 64) {
        writer.put(multiples.back());
        length -= kLongestMultiple;
    }
    if (length >= 64) {
        writer.put(multiples[static_cast<std::size_t>(length / 64 - 1)]);
        length %= 64;
    }
    writer.put((isBlack ? s_blackRuns : s_whiteRuns)[static_cast<std::size_t>(length)]);
}

std::uint64_t wordBigEndian(const std::uint8_t* at)
{
    std::uint64_t word = 0;
    std::memcpy(&word, at, sizeof word);
    return __builtin_bswap64(word);
}

/// The columns of a row where the colour changes, white to black first, and the row's width four times behind them.
class Changes {
public:
    explicit Changes(int width)
        : m_width(width)
        , m_columns(new int[static_cast<std::size_t>(width) + 1 + kPadding])
    {
        end(0);
    }

    void read(const PageBitmap& page, int y)
    {
        const PageBitmap::Extent extent = page.extent(y);
        if (extent.empty())
            return end(0);
        std::size_t count = 0;
        const std::uint8_t* row = page.row(y);
        const int lastWord = (extent.right - 1) / 64;
        std::uint64_t carry = 0; ///< the pixel before the word, in the highest bit
        for (int word = extent.left / 64; word <= lastWord; ++word) {
            const std::uint64_t pixels = wordBigEndian(row + static_cast<std::size_t>(word) * 8);
            std::uint64_t changes = pixels ^ (pixels >> 1 | carry);
            carry = pixels << 63;
            while (changes != 0) {
                const int bit = __builtin_clzll(changes);
                m_columns[count++] = word * 64 + bit;
                changes ^= std::uint64_t { 1 } << 63 >> bit;
            }
        }
        // Ink up to the end of a word that is the last: white follows there, or the row's edge.
        if (carry != 0)
            m_columns[count++] = (lastWord + 1) * 64;
        // What lies beyond the row is no change of it.
        while (count > 0 && m_columns[count - 1] >= m_width)
            --count;
        end(count);
    }

    bool empty() const { return m_columns[0] == m_width; }
    /// Those of white to black are even.
    const int* columns() const { return m_columns.get(); }

private:
    static constexpr std::size_t kPadding = 4;

    void end(std::size_t count) { std::fill_n(m_columns.get() + count, kPadding, m_width); }

    int m_width;
    std::unique_ptr<int[]> m_columns;
};

BitWriter encodeRow(BitWriter writer, const Changes& row, const Changes& above, int width)
{
    int from = -1; // a0: before the row's first pixel at its start
    bool isBlack = false;
    const int* next = row.columns(); // a1
    // b1: the first change above that lies right of a0 and goes to the other colour than a0's.
    const int* over = above.columns();
    while (from < width) {
        while (*over <= from)
            over += 2;
        const int a1 = *next;
        if (over[1] < a1) {
            writer.put(kPass);
            from = over[1];
            continue;
        }
        const int fromLeftmost = a1 - *over + 3; // of the seven codes, which begin three pixels to the left
        if (fromLeftmost >= 0 && fromLeftmost <= 6) {
            writer.put(s_vertical[static_cast<std::size_t>(fromLeftmost)]);
            from = a1;
            isBlack = !isBlack;
            next += a1 < width;
            // One step back, if the change was coded to the left of the one above and another lies between.
            over = over > above.columns() && over[-1] > from ? over - 1 : over + 1;
            continue;
        }
        const int a2 = next[1];
        writer.put(kHorizontal);
        putRun(writer, a1 - std::max(from, 0), isBlack);
        putRun(writer, a2 - a1, !isBlack);
        from = a2;
        next += a2 < width ? 2 : 0;
    }
    return writer;
}

} // namespace

void encodeGroup4(const PageBitmap& page, int top, int rows, std::vector<std::uint8_t>& out)
{
    const std::size_t mostBytesPerRow = (kMostBitsPerPixel * static_cast<std::size_t>(page.width()) + 7) / 8 + kSpare;
    std::size_t used = out.size();
    out.resize(used + 2 * mostBytesPerRow);
    BitWriter writer(out.data() + used);
    Changes above(page.width());
    Changes row(page.width());
    for (int y = top; y < top + rows; ++y) {
        used = static_cast<std::size_t>(writer.at() - out.data());
        if (out.size() - used < mostBytesPerRow) {
            out.resize(out.size() + out.size() / 2 + mostBytesPerRow);
            writer.moveTo(out.data() + used);
        }
        row.read(page, y);
        if (row.empty() && above.empty())
            writer.put(s_vertical[3]);
        else
            writer = encodeRow(writer, row, above, page.width());
        std::swap(row, above);
    }
    // Every row has left the bytes that it has to spare.
    writer.put(kEndOfLine);
    writer.put(kEndOfLine);
    writer.finish();
    out.resize(static_cast<std::size_t>(writer.at() - out.data()));
}

} // namespace quillrip
