// Run-length coded bitmaps: what they mean, and that rows need not be decoded in turn, nor all of them.

#include "quillrip/emf/dib_reader.h"
#include "quillrip/emf/picture.h"
#include "tests/emf/emf_bench.h"
#include "tests/support/spare_heap.h"

#include <gtest/gtest.h>

#include <random>

namespace quillrip::test {
namespace {

using emf::DibReader;
using emf::Pixels;

constexpr int kRle8 = 1;
constexpr int kRle4 = 2;

/// A table in which the blue of a number is the number.
Bytes numberTable(int bits)
{
    Bytes table;
    for (int i = 0; i < 1 << bits; ++i)
        table = table + Bytes { static_cast<std::uint8_t>(i), 0, 0, 0 };
    return table;
}

Bytes runsHeader(int width, int height, int compression)
{
    const int bits = compression == kRle8 ? 8 : 4;
    return bitmapHeader(width, height, bits, compression, numberTable(bits));
}

Pixels decoded(const Bytes& header, const Bytes& bits)
{
    std::string problem;
    Pixels pixels = decodedDib(header, bits, &problem);
    EXPECT_EQ(problem, "");
    return pixels;
}

/// Numbers of a picture's pixels, rows from the bottom.
using Numbers = std::vector<std::vector<int>>;

/// The coding as it is defined, pixel by pixel into the whole picture.
Numbers paintedBy(const Bytes& coded, int width, int height, bool isNibbles)
{
    Numbers numbers(static_cast<std::size_t>(height), std::vector<int>(static_cast<std::size_t>(width)));
    std::size_t x = 0;
    std::size_t y = 0;
    const auto put = [&](std::uint8_t byte, int i) {
        if (y < numbers.size() && x < numbers[y].size())
            numbers[y][x] = !isNibbles ? byte : i % 2 == 0 ? byte / 16 : byte % 16;
        ++x;
    };
    for (std::size_t at = 0; at + 1 < coded.size();) {
        const int count = coded[at];
        const int code = coded[at + 1];
        at += 2;
        for (int i = 0; i < count; ++i)
            put(static_cast<std::uint8_t>(code), i);
        if (count > 0)
            continue;
        if (code == 1)
            break;
        if (code == 0) {
            x = 0;
            ++y;
        } else if (code == 2) {
            if (at + 1 >= coded.size())
                break;
            x += coded[at];
            y += coded[at + 1];
            at += 2;
        } else {
            const std::size_t start = at;
            for (int i = 0; i < code && at < coded.size(); ++i) {
                put(coded[at], i);
                if (!isNibbles || i % 2 == 1)
                    ++at;
            }
            at = start + (static_cast<std::size_t>(isNibbles ? (code + 1) / 2 : code) + 1) / 2 * 2;
        }
    }
    return numbers;
}

/// Numbers of a row; the picture's rows count from the top.
std::vector<int> rowOf(const DibReader& reader, int y)
{
    Bytes line(reader.shape().rowBytes());
    reader.row(y, line.data());
    std::vector<int> numbers;
    for (std::size_t at = 0; at < line.size(); at += 3)
        numbers.push_back(line[at + 2]);
    return numbers;
}

void expectRows(const Bytes& coded, int width, int height, int compression)
{
    const Numbers whole = paintedBy(coded, width, height, compression == kRle4);
    const Bytes header = runsHeader(width, height, compression);
    DibReader reader;
    std::string problem;
    ASSERT_TRUE(reader.open(header, coded, {}, problem)) << problem;
    for (int y = 0; y < height; ++y)
        ASSERT_EQ(rowOf(reader, y), whole[static_cast<std::size_t>(height - 1 - y)]) << y;
    // Backwards, and again.
    for (int y = height; y-- > 0;)
        ASSERT_EQ(rowOf(reader, y), whole[static_cast<std::size_t>(height - 1 - y)]) << y;
}

/// Mostly sensible, as an encoder's; `faults` of a thousand commands may be anything.
Bytes randomCoding(std::mt19937& random, int commands, unsigned faults)
{
    Bytes coded;
    const auto any = [&] { return static_cast<std::uint8_t>(random()); };
    const auto literals = [&](int count) {
        for (int i = 0; i < count; ++i)
            coded.push_back(any());
    };
    while (commands-- > 0) {
        if (random() % 1000 < faults) {
            coded = coded + Bytes { static_cast<std::uint8_t>(random() % 4 == 0 ? any() : 0), any() };
            continue;
        }
        switch (random() % 8) {
        case 0:
            coded = coded + Bytes { 0, 0 };
            break;
        case 1:
            coded = coded
                + Bytes { 0, 2, static_cast<std::uint8_t>(random() % 9), static_cast<std::uint8_t>(random() % 3) };
            break;
        case 2: {
            const auto count = static_cast<std::uint8_t>(3 + random() % 10);
            coded = coded + Bytes { 0, count };
            literals((count + 1) / 2 * 2);
            break;
        }
        default:
            coded = coded + Bytes { static_cast<std::uint8_t>(1 + random() % 12), any() };
        }
    }
    return coded;
}

TEST(EmfRuns, OfBytes)
{
    const Bytes bits { 3, 4, 5, 6, 0, 3, 0x45, 0x56, 0x67, 0, 2, 0x78, 0, 2, 5, 1, 2, 0x78, 0, 0, 9, 0x1E, 0, 1 };
    const Pixels pixels = decoded(runsHeader(32, 4, kRle8), bits);
    ASSERT_FALSE(pixels.isNull());
    const auto at = [&](int x, int scan) { return int(pixels.color(x, 3 - scan).blue); };
    EXPECT_EQ(at(2, 0), 4);
    EXPECT_EQ(at(7, 0), 6);
    EXPECT_EQ(at(9, 0), 0x56);
    EXPECT_EQ(at(12, 0), 0x78);
    EXPECT_EQ(at(18, 1), 0x78); // right by five, up by one
    EXPECT_EQ(at(17, 1), 0);
    EXPECT_EQ(at(8, 2), 0x1E);
    EXPECT_EQ(at(9, 2), 0);
}

TEST(EmfRuns, OfNibbles)
{
    const Bytes bits { 3, 4, 5, 6, 0, 6, 0x45, 0x56, 0x67, 0, 4, 0x78, 0, 2, 5, 1, 4, 0x78, 0, 0, 9, 0x1E, 0, 1 };
    const Pixels pixels = decoded(runsHeader(32, 4, kRle4), bits);
    const int first[] { 0, 4, 0, 0, 6, 0, 6, 0, 4, 5, 5, 6, 6, 7, 7, 8, 7, 8 };
    for (int x = 0; x < 18; ++x)
        EXPECT_EQ(int(pixels.color(x, 3).blue), first[x]) << x;
    EXPECT_EQ(int(pixels.color(23, 2).blue), 7);
    EXPECT_EQ(int(pixels.color(1, 1).blue), 14);
}

TEST(EmfRuns, RowsAreThoseOfTheWholePicture)
{
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        const auto faults = static_cast<unsigned>(round % 3) * 30;
        const Bytes coded = randomCoding(random, 200, faults);
        const int width = 1 + static_cast<int>(random() % 60);
        const int height = 1 + static_cast<int>(random() % 30);
        expectRows(coded, width, height, kRle8);
        expectRows(coded, width, height, kRle4);
    }
}

TEST(EmfRuns, ThatLeaveThePictureAreDropped)
{
    // Past the right edge; entered beyond it; the next row entered there, too; two pixels; above the last row.
    const Bytes overrun { 200, 7, 0, 5, 1, 2, 3, 4, 5, 0, 0, 0, 0, 2, 8, 0, 3, 8, 0, 2, 255, 1, 4, 6, 0, 0, 2, 5, 0, 2,
        0, 200, 9, 1 };
    expectRows(overrun, 4, 6, kRle8);
    expectRows(overrun, 4, 6, kRle4);
    const Pixels pixels = decoded(runsHeader(4, 6, kRle8), overrun);
    EXPECT_EQ(pixels.color(3, 5).blue, 7);
    EXPECT_EQ(pixels.color(1, 4).blue, 0);
    EXPECT_EQ(pixels.color(0, 3).blue, 0); // the row was entered right of its end
    EXPECT_EQ(pixels.color(1, 2).blue, 5);
    EXPECT_EQ(pixels.color(2, 2).blue, 0);
}

TEST(EmfRuns, EndWhereTheirBytesDo)
{
    const Bytes coded { 3, 4, 0, 0, 0, 5, 0x12, 0x34, 0x56, 0x78, 0x9A, 0, 0, 2, 1, 1, 9, 9, 0, 1, 9, 9 };
    for (std::size_t size = 0; size <= coded.size(); ++size) {
        const Bytes part(coded.begin(), coded.begin() + static_cast<std::ptrdiff_t>(size));
        expectRows(part, 12, 5, kRle8);
        expectRows(part, 12, 5, kRle4);
    }
}

TEST(EmfRuns, OfMillionsOfPixelsTakeTheRoomOfTheirRows)
{
    constexpr int side = 8000;
    // A run at the foot of each row.
    Bytes coded;
    for (int y = 0; y < side; ++y)
        coded = std::move(coded) + Bytes { 9, static_cast<std::uint8_t>(y % 251), 0, 0 };
    const Bytes header = runsHeader(side, side, kRle8);
    std::string problem;
    const SpareHeap bound(256U << 10);
    WorkMeter work;
    const emf::Picture picture(header, coded, {}, work, problem);
    std::vector<std::uint8_t> line;
    for (int y = 0; y < side; y += 100)
        ASSERT_EQ(int(picture.row(y, line)[3 * 8 + 2]), (side - 1 - y) % 251);
}

} // namespace
} // namespace quillrip::test
