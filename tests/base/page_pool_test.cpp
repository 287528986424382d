#include "quillrip/base/page_bitmap.h"
#include "quillrip/base/page_pool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

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

bool isAllZero(const PageBitmap& page)
{
    const std::uint8_t* end = page.row(0) + page.stride() * kHeight;
    return std::all_of(page.row(0), end, [](std::uint8_t byte) { return byte == 0; });
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
    const PageBitmap next = pageOf(pool, GetParam());
    EXPECT_EQ(next.row(0), first);
    EXPECT_TRUE(isAllZero(next));
    EXPECT_TRUE(next.extent(0).empty());
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
    EXPECT_TRUE(isAllZero(page));
    const PageBitmap next = pageOf(pool, GetParam());
    EXPECT_EQ(next.row(0), first);
    EXPECT_TRUE(isAllZero(next));
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

TEST(PagePool, PagesOfOtherSizesDoNotShare)
{
    const auto pool = std::make_shared<PagePool>();
    {
        PageBitmap small(PixelFormat::Gray8, 8, 8, {}, pool);
        std::memset(small.row(0), 1, 64);
        small.touch(0, 0, 8);
    }
    const PageBitmap large(PixelFormat::Gray8, 4000, 4000, {}, pool);
    EXPECT_FALSE(large.hasInk(large.bounds()));
    EXPECT_EQ(large.row(3999)[3999], 0);
}

} // namespace
} // namespace quillrip
