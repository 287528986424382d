#include "quillrip/raster/painter.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace quillrip;

namespace {

PageBitmap filledGray(const Path& path, int width, int height, FillRule rule = FillRule::NonZero)
{
    PageBitmap page(PixelFormat::Gray8, width, height, {});
    Painter(page).fillPath(path, rule, {});
    return page;
}

double inkOf(const PageBitmap& page)
{
    double sum = 0;
    for (int y = 0; y < page.height(); ++y) {
        for (int x = 0; x < page.width(); ++x)
            sum += page.row(y)[x] / 255.0;
    }
    return sum;
}

} // namespace

TEST(Coverage, RectangleWithFractionsHasExactShares)
{
    Path path;
    path.rectangle(1.25, 0.5, 3.5, 2.25);
    const PageBitmap page = filledGray(path, 5, 3);
    const int expected[3][5] = {
        { 0, 96, 128, 64, 0 },
        { 0, 191, 255, 128, 0 },
        { 0, 48, 64, 32, 0 },
    };
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 5; ++x)
            EXPECT_EQ(page.row(y)[x], expected[y][x]) << x << ',' << y;
    }
}

TEST(Coverage, AreaOfACircleIsItsInk)
{
    Path path;
    path.arc({ 50.3, 49.7 }, 40, 40, 0, 7, true);
    path.close();
    EXPECT_NEAR(inkOf(filledGray(path, 100, 100)), 3.14159265 * 1600, 5);
}

TEST(Coverage, OverlapsCountOnce)
{
    Path path;
    path.rectangle(0.5, 0.5, 5.5, 5.5);
    path.rectangle(0.5, 0.5, 5.5, 5.5);
    EXPECT_NEAR(inkOf(filledGray(path, 6, 6)), 25, 0.1);
}

TEST(Coverage, ARowWithVeryManyEdgesIsSampledOnFewLines)
{
    // With exact strips or sixteen lines the time for such rows would have no bound.
    const auto shareOfMiddlePixel = [](int rectangles) {
        Path path;
        for (int i = 0; i < rectangles; ++i)
            path.rectangle(1, 0.375, 2, 1);
        return filledGray(path, 3, 1).row(0)[1];
    };
    EXPECT_EQ(shareOfMiddlePixel(100), 159);
    EXPECT_EQ(shareOfMiddlePixel(9000), 255);
}

TEST(Coverage, CrossingEdgesKeepTheirArea)
{
    // A bow tie: two triangles of 8 x 4 / 2 ... each 16, with opposite windings.
    Path path;
    path.moveTo({ 0, 0 });
    path.lineTo({ 8, 8 });
    path.lineTo({ 8, 0 });
    path.lineTo({ 0, 8 });
    path.close();
    EXPECT_NEAR(inkOf(filledGray(path, 8, 8)), 32, 0.3);
}

TEST(Coverage, WhatPassesBesideASmallClipOnlyTurnsRoundIt)
{
    // A star whose edges nearly all run past the clip, on either side of it, some with it inside.
    constexpr int size = 200;
    Path star;
    star.moveTo({ 100, 2 });
    for (int i = 1; i < 101; ++i)
        star.lineTo({ 100 + 98 * std::sin(i * 2.9), 100 - 98 * std::cos(i * 2.9) });
    star.rectangle(-1e7, -1e7, 1e7, 1e7);
    for (const FillRule rule : { FillRule::NonZero, FillRule::EvenOdd }) {
        const PageBitmap whole = filledGray(star, size, size, rule);
        for (const PixelRect& clip : { PixelRect { 70, 60, 75, 64 }, PixelRect { 99, 100, 102, 101 } }) {
            PageBitmap page(PixelFormat::Gray8, size, size, {});
            PaintState state;
            state.clip = ClipRegion::ofRect(clip);
            Painter(page).fillPath(star, rule, state);
            for (int y = clip.top; y < clip.bottom; ++y) {
                for (int x = clip.left; x < clip.right; ++x)
                    EXPECT_NEAR(page.row(y)[x], whole.row(y)[x], 2) << x << "," << y;
            }
        }
    }
}
