#include "quillrip/pcl/row_decoder.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::pcl;

namespace {

using Row = std::vector<std::uint8_t>;

Row decoded(int method, const Row& data, Row seed)
{
    EXPECT_TRUE(decodeRow(method, ByteView(data), seed));
    return seed;
}

} // namespace

TEST(PclRowDecoder, UncompressedRowsAreFilledAndCut)
{
    EXPECT_EQ(decoded(0, { 1, 2 }, Row(4, 9)), (Row { 1, 2, 0, 0 }));
    EXPECT_EQ(decoded(0, { 1, 2, 3 }, Row(2, 9)), (Row { 1, 2 }));
    EXPECT_EQ(decoded(0, {}, Row(2, 9)), (Row { 0, 0 }));
}

TEST(PclRowDecoder, RunLength)
{
    EXPECT_EQ(
        decoded(1, { 0x03, 0x55, 0x00, 0x41, 0x01, 0x54 }, Row(7)), (Row { 0x55, 0x55, 0x55, 0x55, 0x41, 0x54, 0x54 }));
    EXPECT_EQ(decoded(1, { 0xFF, 0xAA, 0x07 }, Row(3)), (Row { 0xAA, 0xAA, 0xAA }));
}

TEST(PclRowDecoder, PackBits)
{
    const Row expected { 0x55, 0x55, 0x55, 0x55, 0x41, 0x54, 0x54 };
    EXPECT_EQ(decoded(2, { 0xFD, 0x55, 0x00, 0x41, 0xFF, 0x54 }, Row(7)), expected);
    EXPECT_EQ(decoded(2, { 0xFD, 0x55, 0x02, 0x41, 0x54, 0x54 }, Row(7)), expected);
}

TEST(PclRowDecoder, PackBitsIgnoresNoOperationAndIncompleteEnds)
{
    EXPECT_EQ(decoded(2, { 0x80, 0x00, 0x11 }, Row(2)), (Row { 0x11, 0 }));
    EXPECT_EQ(decoded(2, { 0x00, 0x11, 0xFE }, Row(3)), (Row { 0x11, 0, 0 }));
    EXPECT_EQ(decoded(2, { 0x05, 0x11, 0x22 }, Row(4)), (Row { 0x11, 0x22, 0, 0 }));
}

TEST(PclRowDecoder, DeltaRowReplacesBytesOfTheSeed)
{
    Row row(5);
    row = decoded(3, { 0x01, 0xFF }, row);
    EXPECT_EQ(row, (Row { 0, 0xFF, 0, 0, 0 }));
    row = decoded(3, { 0x02, 0xF0 }, row);
    EXPECT_EQ(row, (Row { 0, 0xFF, 0xF0, 0, 0 }));
    row = decoded(3, { 0x00, 0x0F, 0x22, 0xAA, 0xAA }, row);
    EXPECT_EQ(row, (Row { 0x0F, 0xFF, 0xF0, 0xAA, 0xAA }));
    EXPECT_EQ(decoded(3, {}, row), row);
}

TEST(PclRowDecoder, DeltaRowOffsetsAreExtended)
{
    Row expected(400, 0);
    expected[31] = 1;
    EXPECT_EQ(decoded(3, { 0x1F, 0x00, 1 }, Row(400)), expected);
    expected[31] = 0;
    expected[31 + 255 + 7] = 1;
    EXPECT_EQ(decoded(3, { 0x1F, 0xFF, 0x07, 1 }, Row(400)), expected);
}

TEST(PclRowDecoder, DeltaRowBeyondTheEndIsDropped)
{
    EXPECT_EQ(decoded(3, { 0xE1, 1, 2, 3, 4, 5, 6, 7, 8 }, Row(3)), (Row { 0, 1, 2 }));
}

TEST(PclRowDecoder, CompressedReplacement)
{
    Row expected(50, 0);
    expected[41] = 0x5F;
    expected[42] = 0xC0;
    EXPECT_EQ(decoded(9, { 0x79, 0x1A, 0x5F, 0xC0 }, Row(50)), expected);
    // A run: offset 2, four times.
    EXPECT_EQ(decoded(9, { 0xC2, 0xEE }, Row(7)), (Row { 0, 0, 0xEE, 0xEE, 0xEE, 0xEE, 0 }));
    // Offset 3 + 1, count 33 + 2.
    expected.assign(50, 0);
    std::fill(expected.begin() + 4, expected.begin() + 4 + 35, std::uint8_t { 7 });
    EXPECT_EQ(decoded(9, { 0xFF, 0x01, 0x02, 7 }, Row(50)), expected);
}

TEST(PclRowDecoder, NearLosslessLiteralsRunsAndCopies)
{
    const Row white(12, 255);
    // Copy one pixel, then a run of two new ones: 24 bits halved.
    EXPECT_EQ(decoded(10, { 0x88, 0x08, 0x10, 0x18 }, white),
        (Row { 255, 255, 255, 0x10, 0x20, 0x30, 0x10, 0x20, 0x30, 255, 255, 255 }));
    // A literal of one pixel as a difference from the seed: -1, +2, -2 * 1.
    EXPECT_EQ(decoded(10, { 0x00, 0x80 | (31 << 2) | 0, (2 << 5) | 31 }, Row(3, 100)), (Row { 99, 102, 98 }));
    EXPECT_EQ(decoded(10, {}, white), white);
}

TEST(PclRowDecoder, AdaptiveBlockMixesMethods)
{
    const Row block { 3, 0, 9, 0xE0, 255, 255, 255, 255, 255, 255, 255, 255, // delta row
        1, 0, 6, 0, 0x80, 5, 0, 0, 1, // run length
        5, 0, 53, // repeated
        2, 0, 2, 0xF9, 0xFF, // PackBits
        4, 0, 2 }; // empty rows
    Row row(8);
    std::vector<std::pair<int, Row>> rows;
    EXPECT_TRUE(decodeAdaptive(ByteView(block), row, [&](int count) {
        rows.emplace_back(count, row);
        return true;
    }));
    ASSERT_EQ(rows.size(), 5u);
    EXPECT_EQ(rows[0].second, Row(8, 255));
    EXPECT_EQ(rows[1].second, (Row { 0x80, 0, 0, 0, 0, 0, 0, 1 }));
    EXPECT_EQ(rows[2], std::make_pair(53, rows[1].second));
    EXPECT_EQ(rows[3].second, Row(8, 255));
    EXPECT_EQ(rows[4], std::make_pair(2, Row(8)));
}

TEST(PclRowDecoder, AdaptiveBlockThatIsCutKeepsTheRowsBefore)
{
    Row row(2);
    int rows = 0;
    const auto count = [&](int times) {
        rows += times;
        return true;
    };
    EXPECT_FALSE(decodeAdaptive(ByteView(Row { 0, 0, 2, 1, 2, 0, 0, 9, 1 }), row, count));
    EXPECT_EQ(rows, 2);
    EXPECT_FALSE(decodeAdaptive(ByteView(Row { 77, 0, 2, 1, 2 }), row, count));
    EXPECT_EQ(rows, 2);
}

TEST(PclRowDecoder, CountedReplacementBlocksHoldRowsOfCommands)
{
    const Row block { 0, 4, // rows
        2, 0x09, 0x11, 0x22, 0x80 | 1, 0x33, // two bytes from the second on, then a run of three
        0, // as before
        1, 0x78, 0, 0x44, // beyond the row's end
        255 }; // blank
    Row row(6);
    std::vector<Row> rows;
    const auto keep = [&](int) {
        rows.push_back(row);
        return true;
    };
    EXPECT_TRUE(decodeCountedReplacement(ByteView(block), row, keep));
    const Row first { 0, 0x11, 0x22, 0x33, 0x33, 0x33 };
    EXPECT_EQ(rows, (std::vector<Row> { first, first, first, Row(6) }));
}

TEST(PclRowDecoder, CountedReplacementBlocksThatAreCutKeepTheRowsBefore)
{
    for (const Row& cut : { Row { 0, 3, 255, 255 }, Row { 0, 3, 255, 255, 1 }, Row { 0, 3, 255, 255, 1, 0x01, 0x55 },
             Row { 0, 2, 255, 255, 255 } }) {
        Row row(2);
        int rows = 0;
        EXPECT_FALSE(decodeCountedReplacement(ByteView(cut), row, [&](int times) {
            rows += times;
            return true;
        }));
        EXPECT_EQ(rows, 2);
    }
}

TEST(PclRowDecoder, UnknownMethodLeavesTheRowAlone)
{
    Row row { 1, 2 };
    EXPECT_FALSE(decodeRow(7, ByteView(Row { 9, 9 }), row));
    EXPECT_EQ(row, (Row { 1, 2 }));
}
