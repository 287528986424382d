#include "quillrip/base/page_bitmap.h"

#include <gtest/gtest.h>

namespace quillrip {
namespace {

/// Puts full ink on one pixel.
void mark(PageBitmap& page, int x, int y)
{
    std::uint8_t* row = page.row(y);
    if (page.format() == PixelFormat::Bilevel)
        row[x / 8] |= static_cast<std::uint8_t>(0x80 >> x % 8);
    else if (page.format() == PixelFormat::Gray8)
        row[x] = 255;
    else
        row[3 * x] = row[3 * x + 1] = row[3 * x + 2] = 255;
    page.touch(y, x, x + 1);
}

bool isMarked(const PageBitmap& page, int x, int y) { return page.pixel(x, y) != Rgb { 255, 255, 255 }; }

class EveryPageBitmap : public testing::TestWithParam<PixelFormat> {
protected:
    PageBitmap m_page { GetParam(), 37, 20, {} };
};

TEST_P(EveryPageBitmap, HasInkOnlyWhereItIs)
{
    mark(m_page, 13, 7);
    EXPECT_TRUE(m_page.hasInk({ 13, 7, 14, 8 }));
    EXPECT_TRUE(m_page.hasInk({ -5, -5, 100, 100 }));
    EXPECT_FALSE(m_page.hasInk({ 0, 0, 13, 20 }));
    EXPECT_FALSE(m_page.hasInk({ 14, 0, 37, 20 }));
    EXPECT_FALSE(m_page.hasInk({ 0, 0, 37, 7 }));
    EXPECT_FALSE(m_page.hasInk({ 0, 8, 37, 20 }));
    EXPECT_FALSE(m_page.hasInk({ 13, 7, 13, 8 }));
}

TEST_P(EveryPageBitmap, WhatWasTouchedAndStayedWhiteIsNoInk)
{
    m_page.touch(3, 0, 37);
    EXPECT_FALSE(m_page.hasInk(m_page.bounds()));
}

TEST_P(EveryPageBitmap, CroppedKeepsEachPixelAtItsNewPlace)
{
    for (const int left : { -11, -3, 0, 4, 8, 21 }) {
        PageBitmap page(GetParam(), 37, 20, {});
        for (int y = 0; y < 20; ++y)
            for (int x = 0; x < 37; ++x)
                if ((x * 7 + y * 5) % 3 == 0)
                    mark(page, x, y);
        const PageBitmap cropped = std::move(page).cropped(left, 30, 15);
        ASSERT_EQ(cropped.width(), 30);
        ASSERT_EQ(cropped.height(), 15);
        for (int y = 0; y < 15; ++y) {
            for (int x = 0; x < 30; ++x) {
                const int was = x + left;
                const bool wasMarked = was >= 0 && was < 37 && (was * 7 + y * 5) % 3 == 0;
                ASSERT_EQ(isMarked(cropped, x, y), wasMarked) << left << ": " << x << ", " << y;
                // Encoders trust the extents.
                const PageBitmap::Extent extent = cropped.extent(y);
                ASSERT_TRUE(!wasMarked || (x >= extent.left && x < extent.right)) << left << ": " << x << ", " << y;
            }
            EXPECT_LE(cropped.extent(y).right, 30);
            for (std::size_t i = cropped.rowBytes(); i < cropped.stride(); ++i)
                EXPECT_EQ(cropped.row(y)[i], 0);
            if (GetParam() == PixelFormat::Bilevel) {
                EXPECT_EQ(cropped.row(y)[3] & 3, 0) << "bits beyond the last column";
            }
        }
    }
}

TEST_P(EveryPageBitmap, CroppedInHeightAloneKeepsItsMemory)
{
    mark(m_page, 5, 2);
    const std::uint8_t* pixels = m_page.row(2);
    const PageBitmap cropped = std::move(m_page).cropped(0, 37, 10);
    EXPECT_EQ(cropped.row(2), pixels);
    EXPECT_EQ(cropped.height(), 10);
    EXPECT_TRUE(isMarked(cropped, 5, 2));
}

TEST_P(EveryPageBitmap, CroppedBeyondItsEndIsWhite)
{
    mark(m_page, 36, 19);
    const PageBitmap larger = std::move(m_page).cropped(0, 60, 30);
    EXPECT_TRUE(isMarked(larger, 36, 19));
    EXPECT_FALSE(larger.hasInk({ 37, 0, 60, 30 }));
    EXPECT_FALSE(larger.hasInk({ 0, 20, 60, 30 }));
}

INSTANTIATE_TEST_SUITE_P(
    Formats, EveryPageBitmap, testing::Values(PixelFormat::Bilevel, PixelFormat::Gray8, PixelFormat::Rgb24));

} // namespace
} // namespace quillrip
