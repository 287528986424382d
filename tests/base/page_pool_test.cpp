#include "quillrip/base/page_bitmap.h"
#include "quillrip/base/page_pool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

namespace quillrip {
namespace {

constexpr int kWidth = 501;
constexpr int kHeight = 40;

PageBitmap pageOf(const std::shared_ptr<PagePool>& pool, PixelFormat format)
{
    return PageBitmap(format, kWidth, kHeight, {}, pool);
}

/// Ink in every pixel of some rows, and in a few columns of others.
void scribble(PageBitmap& page)
{
    const int depth = bitsPerPixel(page.format());
    for (int y = 0; y < kHeight; y += 3) {
        const int left = y % 2 == 0 ? 0 : 101;
        const int right = y % 2 == 0 ? kWidth : 234;
        std::uint8_t* row = page.row(y);
        for (int bit = left * depth; bit < right * depth; ++bit)
            row[bit / 8] |= static_cast<std::uint8_t>(0x80 >> bit % 8);
        page.touch(y, left, right);
    }
}

bool isAllZero(PageBitmap&& page)
{
    for (int y = 0; y < page.height(); ++y) {
        const std::uint8_t* row = page.row(y);
        if (!std::all_of(row, row + page.stride(), [](std::uint8_t byte) { return byte == 0; }))
            return false;
    }
    return true;
}

class PooledPage : public testing::TestWithParam<PixelFormat> { };

TEST_P(PooledPage, TheNextPageOfTheSizeTakesItsMemoryWhite)
{
    const auto pool = std::make_shared<PagePool>();
    const std::uint8_t* first = nullptr;
    {
        PageBitmap page = pageOf(pool, GetParam());
        first = page.row(0);
        scribble(page);
    }
    PageBitmap next = pageOf(pool, GetParam());
    EXPECT_EQ(next.row(0), first);
    EXPECT_TRUE(next.extent(0).empty());
    EXPECT_TRUE(isAllZero(std::move(next)));
}

TEST_P(PooledPage, WhatWasCutOffDoesNotComeBack)
{
    const auto pool = std::make_shared<PagePool>();
    {
        PageBitmap page = pageOf(pool, GetParam());
        scribble(page);
        const PageBitmap shorter = std::move(page).cropped(0, kWidth, 10);
        EXPECT_EQ(shorter.height(), 10);
    }
    EXPECT_TRUE(isAllZero(pageOf(pool, GetParam())));
}

TEST_P(PooledPage, MovingAPageIntoAnotherGivesTheOtherBack)
{
    const auto pool = std::make_shared<PagePool>();
    PageBitmap page = pageOf(pool, GetParam());
    const std::uint8_t* first = page.row(0);
    scribble(page);
    page = pageOf(pool, GetParam());
    EXPECT_EQ(page.row(0), first);
    EXPECT_TRUE(isAllZero(std::move(page)));
}

TEST_P(PooledPage, OutlivesItsPoolsOwner)
{
    auto pool = std::make_shared<PagePool>();
    PageBitmap page = pageOf(pool, GetParam());
    pool.reset();
    scribble(page);
    EXPECT_TRUE(page.hasInk(page.bounds()));
}

INSTANTIATE_TEST_SUITE_P(
    Formats, PooledPage, testing::Values(PixelFormat::Bilevel, PixelFormat::Gray8, PixelFormat::Rgb24));

/// A page with ink in every row.
PageBitmap fullPage(const std::shared_ptr<PagePool>& pool, int width, int height)
{
    PageBitmap page(PixelFormat::Gray8, width, height, {}, pool);
    for (int y = 0; y < height; ++y) {
        page.row(y)[y % width] = 255;
        page.touch(y, y % width, y % width + 1);
    }
    return page;
}

TEST(PagePool, PagesOfOtherShapesAreWhite)
{
    const auto pool = std::make_shared<PagePool>();
    fullPage(pool, 8, 8);
    const PageBitmap large(PixelFormat::Gray8, 4000, 4000, {}, pool);
    EXPECT_FALSE(large.hasInk(large.bounds()));
    EXPECT_EQ(large.row(3999)[3999], 0);
    fullPage(pool, 4000, 1000);
    EXPECT_TRUE(isAllZero(PageBitmap(PixelFormat::Gray8, 1000, 4000, {}, pool)));
    // Rows that need blocks of their own.
    constexpr int wide = static_cast<int>(PagePool::kBlockBytes) + 5;
    fullPage(pool, wide, 3);
    EXPECT_TRUE(isAllZero(PageBitmap(PixelFormat::Gray8, wide, 2, {}, pool)));
    EXPECT_TRUE(isAllZero(PageBitmap(PixelFormat::Gray8, 1000, 4000, {}, pool)));
}

TEST(PagePool, RowsThatAreNotWrittenTakeNoMemory)
{
    const auto pool = std::make_shared<PagePool>();
    PageBitmap page(PixelFormat::Rgb24, 2550, 3300, {}, pool);
    const PageBitmap& asRead = page;
    EXPECT_EQ(asRead.row(1234)[7000], 0);
    EXPECT_FALSE(asRead.hasInk(page.bounds()));
    EXPECT_EQ(pool->takenBytes(), 0u);
    page.row(1234)[7000] = 1;
    page.touch(1234, 2333, 2334);
    EXPECT_EQ(asRead.row(1234)[7000], 1);
    EXPECT_LE(pool->takenBytes(), PagePool::kBlockBytes);
    EXPECT_EQ(asRead.row(3000)[7000], 0);
}

TEST(PagePool, AFinishedPageGivesBackWhatIsNotReadAgain)
{
    const auto pool = std::make_shared<PagePool>();
    PageBitmap page = fullPage(pool, 1000, 4000);
    page.finish();
    const std::size_t whole = pool->takenBytes();
    page.keepOnly(2000, 4000);
    EXPECT_LT(pool->takenBytes(), whole * 6 / 10);
    page.keepOnly(0, 3000); // what was given back stays so
    EXPECT_LT(pool->takenBytes(), whole * 4 / 10);
    for (int y = 2000; y < 3000; ++y)
        ASSERT_EQ(page.row(y)[y % 1000], 255) << y;
    page.keepOnly(2500, 2500);
    EXPECT_EQ(pool->takenBytes(), 0u);
}

/// Blocks of a page that is much larger than what may be drawn ahead.
constexpr int kLargeWidth = 4096;
constexpr int kLargeHeight = 8192;

TEST(PagePool, TheNextPageIsDrawnOnlySoFarAheadUntilMemoryComesBack)
{
    const auto pool = std::make_shared<PagePool>();
    PageBitmap page = fullPage(pool, kLargeWidth, kLargeHeight);
    page.finish();
    const std::size_t whole = pool->takenBytes();
    std::atomic<bool> isDrawn { false };
    std::thread drawing([&] {
        fullPage(pool, kLargeWidth, kLargeHeight);
        isDrawn = true;
    });
    for (int top = 0; top < kLargeHeight; top += 512) {
        page.keepOnly(top, kLargeHeight);
        while (!pool->hasWaiter() && !isDrawn)
            std::this_thread::yield();
        EXPECT_LE(pool->mappedBytes(), whole + PagePool::kBytesAhead);
        if (top == 0) {
            EXPECT_FALSE(isDrawn) << "two pages were in memory";
        }
    }
    page = {};
    drawing.join();
    EXPECT_LE(pool->mappedBytes(), whole + PagePool::kBytesAhead);
}

TEST(PagePool, NobodyWaitsForAPageThatIsNotEncodedToItsEnd)
{
    const auto pool = std::make_shared<PagePool>();
    PageBitmap page = fullPage(pool, kLargeWidth, kLargeHeight);
    page.finish();
    std::thread drawing([&] { fullPage(pool, kLargeWidth, kLargeHeight); });
    while (!pool->hasWaiter())
        std::this_thread::yield();
    pool->expectNoMore();
    drawing.join();
    fullPage(pool, kLargeWidth, kLargeHeight);
}

TEST(PagePool, MemoryOfALargePageIsNotKeptForSmallOnes)
{
    const auto pool = std::make_shared<PagePool>();
    for (const int height : { kLargeHeight, 64 }) {
        PageBitmap page = fullPage(pool, kLargeWidth, height);
        page.finish();
    }
    fullPage(pool, kLargeWidth, 64);
    for (int i = 0; i < 2; ++i) {
        PageBitmap large = fullPage(pool, kLargeWidth, kLargeHeight);
        PageBitmap small = fullPage(pool, kLargeWidth, 64);
        small.finish();
    }
    EXPECT_LE(pool->mappedBytes(), PagePool::kBytesAhead + (std::size_t { 2 } << 20));
}

} // namespace
} // namespace quillrip
