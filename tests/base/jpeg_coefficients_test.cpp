#include "quillrip/base/jpeg_coefficients.h"
#include "tests/support/spare_heap.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <random>
#include <vector>

namespace quillrip::test {
namespace {

using Block = std::array<JCOEF, DCTSIZE2>;
using Picture = std::vector<std::vector<Block>>; ///< rows of blocks

constexpr std::size_t kBlocks = 300;
constexpr std::size_t kRows = 12;

Picture blank() { return Picture(kRows, std::vector<Block>(kBlocks)); }

/// What one scan does: passes over all rows, so many at a time, and writes.
void write(JpegCoefficients& coefficients, const Picture& picture, std::size_t atATime)
{
    for (std::size_t y = 0; y < kRows; y += atATime) {
        const JBLOCKARRAY rows = coefficients.rows(y, atATime, true);
        for (std::size_t i = 0; i < atATime; ++i)
            for (std::size_t x = 0; x < kBlocks; ++x)
                std::copy(picture[y + i][x].begin(), picture[y + i][x].end(), rows[i][x]);
    }
}

void expectSame(JpegCoefficients& coefficients, const Picture& picture, std::size_t first, std::size_t count)
{
    const JBLOCKARRAY rows = coefficients.rows(first, count, false);
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t x = 0; x < kBlocks; ++x) {
            const Block block = *reinterpret_cast<const Block*>(rows[i][x]);
            ASSERT_EQ(block, picture[first + i][x]) << "row " << first + i << ", block " << x;
        }
    }
}

void expectSame(JpegCoefficients& coefficients, const Picture& picture)
{
    for (std::size_t y = 0; y < kRows; ++y)
        expectSame(coefficients, picture, y, 1);
}

TEST(JpegCoefficients, AreZeroBeforeTheyAreWritten)
{
    PlainRowAllowance none(0);
    JpegCoefficients coefficients(kBlocks, kRows, 6, none);
    expectSame(coefficients, blank());
}

TEST(JpegCoefficients, KeepEveryValueAtEveryPlace)
{
    Picture picture = blank();
    std::size_t block = 0;
    for (const int value : { 1, -1, 127, 128, -128, -129, 255, -256, 1023, 32767, -32768 })
        for (std::size_t at = 0; at < DCTSIZE2; ++at, block += 3)
            picture[block / kBlocks][block % kBlocks][at] = static_cast<JCOEF>(value);
    ASSERT_LE(block, kRows * kBlocks);
    PlainRowAllowance none(0);
    JpegCoefficients coefficients(kBlocks, kRows, 6, none);
    write(coefficients, picture, 1);
    expectSame(coefficients, picture);
}

TEST(JpegCoefficients, KeepAnything)
{
    std::mt19937 random(7);
    for (const int oneIn : { 1, 2, 10, 64, 5000 }) {
        for (const int largest : { 1, 200, 32767 }) {
            Picture picture = blank();
            JCOEF average = 0;
            for (auto& row : picture) {
                for (Block& block : row) {
                    for (JCOEF& value : block)
                        if (static_cast<int>(random() % static_cast<unsigned>(oneIn)) == 0)
                            value = static_cast<JCOEF>(
                                static_cast<int>(random() % static_cast<unsigned>(2 * largest + 1)) - largest);
                    if (random() % 20 == 0)
                        average = static_cast<JCOEF>(random());
                    block[0] = average;
                }
            }
            SCOPED_TRACE(testing::Message() << "one in " << oneIn << ", up to " << largest);
            PlainRowAllowance none(0);
            JpegCoefficients coefficients(kBlocks, kRows, 6, none);
            write(coefficients, picture, 3);
            expectSame(coefficients, picture);
            // Windows that overlap, as where the edges of blocks are smoothed.
            for (const std::size_t first : { 0, 1, 2, 5, 4, 0 })
                expectSame(coefficients, picture, first, 6);
        }
    }
}

TEST(JpegCoefficients, AreWrittenAgainAndAgain)
{
    PlainRowAllowance fewRows(3 * kBlocks * sizeof(JBLOCK));
    JpegCoefficients coefficients(kBlocks, kRows, 6, fewRows);
    Picture picture = blank();
    for (std::size_t scan = 0; scan < 20; ++scan) {
        for (std::size_t y = 0; y < kRows; ++y)
            for (std::size_t x = 0; x < kBlocks; ++x)
                picture[y][x][(scan * 5 + x) % DCTSIZE2] = static_cast<JCOEF>(scan < 15 ? scan + x : 0);
        write(coefficients, picture, scan % 2 + 1);
    }
    expectSame(coefficients, picture);
}

TEST(JpegCoefficients, TakeMemoryForWhatIsNotZero)
{
    constexpr std::size_t blocks = 2000;
    constexpr std::size_t rows = 2000; // 488 MiB
    PlainRowAllowance none(0);
    const SpareHeap bound(3U << 20);
    JpegCoefficients coefficients(blocks, rows, 1, none);
    for (std::size_t y = 0; y < rows; ++y) {
        const JBLOCKARRAY row = coefficients.rows(y, 1, true);
        for (std::size_t x = 0; x < blocks; ++x)
            row[0][x][0] = 1016;
        row[0][y][9] = -3;
    }
    for (const std::size_t y : { 0, 1000, 1999 }) {
        const JBLOCKARRAY row = coefficients.rows(y, 1, false);
        EXPECT_EQ(row[0][0][0], 1016);
        EXPECT_EQ(row[0][blocks - 1][0], 1016);
        EXPECT_EQ(row[0][y][9], -3);
        EXPECT_EQ(row[0][blocks - 1 - y][9], 0);
    }
}

} // namespace
} // namespace quillrip::test
