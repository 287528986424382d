#include "quillrip/image/light_rows.h"

#include "tests/image/sample_pages.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;

namespace {

constexpr std::uint8_t kGuard = 0x5A;

/// A buffer that notices bytes written behind its end.
std::vector<std::uint8_t> guarded(std::size_t size) { return std::vector<std::uint8_t>(size + 1, kGuard); }

} // namespace

TEST(LightRows, ComplementInkAndKeepUnusedBitsZero)
{
    PageBitmap page { PixelFormat::Bilevel, 11, 2, {} };
    page.row(0)[0] = 0b10100000;
    page.row(0)[1] = 0b01000000;
    page.touch(0, 0, 11);
    auto light = guarded(2);
    lightRow(page, 0, light.data());
    EXPECT_EQ(light, (std::vector<std::uint8_t> { 0b01011111, 0b10100000, kGuard }));
    lightRow(page, 1, light.data());
    EXPECT_EQ(light, (std::vector<std::uint8_t> { 0xFF, 0b11100000, kGuard }));
}

TEST(LightRows, BitsBecomeGreyBytes)
{
    for (const int width : { 1, 7, 8, 9, 64, 77 }) {
        const PageBitmap page = makePage(PixelFormat::Bilevel, width, 10, Content::Text);
        for (int y = 0; y < 10; ++y) {
            auto gray = guarded(static_cast<std::size_t>(width));
            lightRowAsGray(page, y, gray.data());
            for (int x = 0; x < width; ++x)
                ASSERT_EQ(gray[static_cast<std::size_t>(x)], page.pixel(x, y).red);
            EXPECT_EQ(gray.back(), kGuard);
        }
    }
}

TEST(LightRows, ColoursChangeTheirOrderOrBecomePlanes)
{
    const PageBitmap page = makePage(PixelFormat::Rgb24, 33, 10, Content::Text);
    for (int y = 0; y < 10; ++y) {
        auto bgr = guarded(99);
        auto planes = guarded(40 + 40 + 33);
        lightRowAsBgr(page, y, bgr.data());
        lightRowAsPlanes(page, y, planes.data(), 40);
        for (std::size_t x = 0; x < 33; ++x) {
            const Rgb pixel = page.pixel(static_cast<int>(x), y);
            ASSERT_EQ((Rgb { bgr[3 * x + 2], bgr[3 * x + 1], bgr[3 * x] }), pixel);
            ASSERT_EQ((Rgb { planes[x], planes[40 + x], planes[80 + x] }), pixel);
        }
        EXPECT_EQ(bgr.back(), kGuard);
        EXPECT_EQ(planes.back(), kGuard);
        EXPECT_EQ(planes[33], kGuard);
    }
}

TEST(LightRows, InkExtentIsTightWithinWhatWasTouched)
{
    PageBitmap page { PixelFormat::Gray8, 1000, 4, {} };
    page.touch(1, 0, 1000); // touched, but white
    page.row(2)[300] = 1;
    page.row(2)[717] = 1;
    page.touch(2, 10, 990);
    page.row(3)[0] = 1;
    page.row(3)[999] = 1;
    page.touch(3, 0, 1000);
    EXPECT_TRUE(inkExtent(page, 0).empty());
    EXPECT_TRUE(inkExtent(page, 1).empty());
    EXPECT_EQ(inkExtent(page, 2).left, 300u);
    EXPECT_EQ(inkExtent(page, 2).right, 718u);
    EXPECT_EQ(inkExtent(page, 3).left, 0u);
    EXPECT_EQ(inkExtent(page, 3).right, 1000u);
}

TEST(LightRows, InkExtentCountsBytes)
{
    PageBitmap bilevel { PixelFormat::Bilevel, 100, 1, {} };
    bilevel.row(0)[2] = 0x01;
    bilevel.touch(0, 23, 24);
    EXPECT_EQ(inkExtent(bilevel, 0).left, 2u);
    EXPECT_EQ(inkExtent(bilevel, 0).right, 3u);
    PageBitmap colour { PixelFormat::Rgb24, 100, 1, {} };
    colour.row(0)[31] = 9;
    colour.touch(0, 10, 11);
    EXPECT_EQ(inkExtent(colour, 0).left, 31u);
    EXPECT_EQ(inkExtent(colour, 0).right, 32u);
}
