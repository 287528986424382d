#include "quillrip/raster/compose/color_source.h"
#include "quillrip/raster/compose/screen.h"
#include "quillrip/raster/painter.h"
#include "tests/support/text_art.h"

#include <gtest/gtest.h>

using namespace quillrip;

namespace {

constexpr PixelRect kArea { 0, 0, 64, 64 };

PaintState stateOf(Rgb color, int opacity)
{
    PaintState state;
    state.texture.color = color;
    state.opacity = static_cast<std::uint8_t>(opacity);
    return state;
}

Rgb painted(PixelFormat format, const PaintState& state)
{
    PageBitmap page(format, 8, 2, {});
    Painter(page).fillRect({ 0, 0, 8, 2 }, state);
    EXPECT_EQ(page.pixel(7, 1), page.pixel(0, 0));
    return page.pixel(0, 0);
}

/// The share of ink, in 255ths, on a bilevel page that is `paper` before.
double screened(const PaintState& state, bool isBlackPaper)
{
    PageBitmap page(PixelFormat::Bilevel, 64, 64, {});
    Painter painter(page);
    if (isBlackPaper)
        painter.fillRect(kArea, {});
    painter.fillRect(kArea, state);
    return static_cast<double>(test::blackPixelCount(page)) * 255 / (64 * 64);
}

/// Red grows with x, alpha falls with y.
class Ramp final : public ColorSource {
public:
    void row(int y, int left, int right, Rgba* pixels) const override
    {
        for (int x = left; x < right; ++x)
            *pixels++ = { static_cast<std::uint8_t>(x), 0, 0, static_cast<std::uint8_t>(255 - 50 * y) };
    }
};

void drawImage(PageBitmap& page, int width, int height, const Matrix& matrix, const std::vector<Rgba>& pixels,
    const PaintState& state)
{
    ImageGeometry geometry;
    geometry.format = ImageFormat::Rgba32;
    geometry.width = width;
    geometry.height = height;
    geometry.imageToDevice = matrix;
    Painter painter(page);
    const auto image = painter.beginImage(geometry, state);
    ASSERT_TRUE(image);
    for (int y = 0; y < height; ++y) {
        std::vector<std::uint8_t> row;
        for (int x = 0; x < width; ++x) {
            const Rgba& pixel = pixels[static_cast<std::size_t>(y * width + x)];
            row.insert(row.end(), { pixel.red, pixel.green, pixel.blue, pixel.alpha });
        }
        image->row(row.data());
    }
    image->finish();
}

} // namespace

TEST(Opacity, MixesTheMarkWithThePage)
{
    EXPECT_EQ(painted(PixelFormat::Gray8, stateOf({ 0, 0, 0 }, 128)), (Rgb { 127, 127, 127 }));
    EXPECT_EQ(painted(PixelFormat::Rgb24, stateOf({ 0, 0, 0 }, 128)), (Rgb { 127, 127, 127 }));
    EXPECT_EQ(painted(PixelFormat::Rgb24, stateOf({ 255, 0, 0 }, 128)), (Rgb { 255, 127, 127 }));
    EXPECT_EQ(painted(PixelFormat::Rgb24, stateOf({ 255, 0, 0 }, 0)), (Rgb { 255, 255, 255 }));
    EXPECT_EQ(painted(PixelFormat::Gray8, stateOf({ 255, 0, 0 }, 255)), (Rgb { 76, 76, 76 }));
}

TEST(Opacity, ActsOnMasksPathsAndCoverage)
{
    PageBitmap page(PixelFormat::Rgb24, 4, 1, {});
    Painter painter(page);
    Path path;
    path.rectangle(0.5, 0, 2, 1);
    painter.fillPath(path, FillRule::NonZero, stateOf({ 0, 0, 0 }, 128));
    EXPECT_EQ(page.pixel(0, 0).red, 255 - 64);
    EXPECT_EQ(page.pixel(1, 0).red, 127);
    GlyphMask mask;
    mask.width = 1;
    mask.height = 1;
    mask.stride = 1;
    mask.bytes = { 0x80 };
    painter.drawMask(mask, 2, 0, stateOf({ 0, 0, 0 }, 128));
    EXPECT_EQ(page.pixel(2, 0).red, 127);
}

TEST(Opacity, OnABilevelPageIsTheScreenOfTheMixedTone)
{
    PaintState tone = stateOf({ 0, 0, 0 }, 128);
    EXPECT_NEAR(screened(tone, false), 128, 1);
    EXPECT_NEAR(screened(tone, true), 255, 1);
    tone = stateOf({ 128, 128, 128 }, 100);
    EXPECT_NEAR(screened(tone, false), 127 * 100 / 255.0, 1.5);
    EXPECT_NEAR(screened(tone, true), 255 - 128 * 100 / 255.0, 1.5);
    tone = stateOf({ 255, 255, 255 }, 64);
    EXPECT_NEAR(screened(tone, true), 255 - 64, 1);
}

TEST(Opacity, LeavesOpaqueMarksCrisp)
{
    PaintState state = stateOf({ 0, 0, 0 }, 255);
    state.texture.colors = std::make_shared<Ramp>();
    PageBitmap page(PixelFormat::Bilevel, 3, 1, {});
    Painter(page).fillRect({ 0, 0, 1, 1 }, state);
    EXPECT_EQ(test::textArt(page), "#..\n");
}

TEST(ColorSource, HasAColourForEveryPixel)
{
    PaintState state;
    state.texture.colors = std::make_shared<Ramp>();
    PageBitmap page(PixelFormat::Rgb24, 255, 6, {});
    Painter painter(page);
    painter.fillRect({ 3, 0, 255, 6 }, state);
    EXPECT_EQ(page.pixel(2, 0), (Rgb { 255, 255, 255 }));
    EXPECT_EQ(page.pixel(3, 0), (Rgb { 3, 0, 0 }));
    EXPECT_EQ(page.pixel(254, 0), (Rgb { 254, 0, 0 }));
    EXPECT_EQ(page.pixel(100, 2), (Rgb { 161, 100, 100 })); // alpha 155
    EXPECT_EQ(page.pixel(100, 5), (Rgb { 252, 250, 250 })); // alpha 5
}

TEST(ColorSource, IsGreyOnAGreyPageAndScreenedOnABilevelOne)
{
    PaintState state;
    state.texture.colors = std::make_shared<Ramp>();
    PageBitmap gray(PixelFormat::Gray8, 201, 1, {});
    Painter(gray).fillRect({ 0, 0, 201, 1 }, state);
    EXPECT_EQ(gray.pixel(200, 0).red, luminance({ 200, 0, 0 }));
    PageBitmap dots(PixelFormat::Bilevel, 201, 1, {});
    Painter(dots).fillRect({ 0, 0, 201, 1 }, state);
    for (int x = 0; x < 201; ++x)
        EXPECT_EQ(dots.pixel(x, 0).red == 0, 255 - gray.pixel(x, 0).red > screenRow(0)[x % kScreenSize]) << x;
}

TEST(AlphaImage, ShowsThePageThroughItsPixels)
{
    const std::vector<Rgba> pixels { { 255, 0, 0, 128 }, { 0, 0, 0, 0 }, { 0, 0, 255, 255 }, { 255, 255, 255, 255 } };
    for (const Matrix& matrix : { Matrix {}, Matrix { 0, 1, 1, 0, 0, 0 } }) {
        PageBitmap page(PixelFormat::Rgb24, 4, 4, {});
        Painter(page).fillRect({ 0, 0, 4, 4 }, stateOf({ 0, 255, 0 }, 255));
        drawImage(page, 4, 1, matrix, pixels, {});
        const bool isTurned = matrix.a == 0;
        const auto at = [&](int i) { return isTurned ? page.pixel(0, i) : page.pixel(i, 0); };
        EXPECT_EQ(at(0), (Rgb { 128, 127, 0 }));
        EXPECT_EQ(at(1), (Rgb { 0, 255, 0 }));
        EXPECT_EQ(at(2), (Rgb { 0, 0, 255 }));
        EXPECT_EQ(at(3), (Rgb { 255, 255, 255 }));
    }
}

TEST(AlphaImage, TakesTheOpacityOfTheMark)
{
    PageBitmap page(PixelFormat::Gray8, 1, 1, {});
    drawImage(page, 1, 1, {}, { { 0, 0, 0, 128 } }, stateOf({ 0, 0, 0 }, 128));
    EXPECT_EQ(page.pixel(0, 0).red, 255 - 64);
}

TEST(AlphaImage, WhatIsTransparentLendsNoColourWherePixelsAreMixed)
{
    // Half red, half nothing whose hidden colour is green.
    const std::vector<Rgba> pixels { { 255, 0, 0, 255 }, { 0, 255, 0, 0 } };
    PageBitmap small(PixelFormat::Rgb24, 1, 1, {});
    drawImage(small, 2, 1, Matrix::scaling(0.5, 1), pixels, {});
    EXPECT_EQ(small.pixel(0, 0), (Rgb { 255, 127, 127 }));
    PageBitmap turned(PixelFormat::Rgb24, 40, 40, {});
    drawImage(turned, 2, 1, { 14, 14, -14, 14, 14, 0 }, pixels, {});
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 40; ++x)
            EXPECT_EQ(turned.pixel(x, y).red, 255);
    }
    EXPECT_EQ(turned.pixel(14, 14).green, 0);
    EXPECT_EQ(turned.pixel(28, 28).green, 255);
}

TEST(AlphaImage, MayBeShrunkWithoutMixing)
{
    ImageGeometry geometry;
    geometry.format = ImageFormat::Gray8;
    geometry.width = 4;
    geometry.height = 4;
    geometry.imageToDevice = Matrix::scaling(0.5, 0.5);
    geometry.dropsPixels = true;
    PageBitmap page(PixelFormat::Gray8, 2, 2, {});
    Painter painter(page);
    const auto image = painter.beginImage(geometry, {});
    for (int y = 0; y < 4; ++y) {
        const std::uint8_t row[4] = { 10, 20, 30, static_cast<std::uint8_t>(40 + y) };
        image->row(row);
    }
    image->finish();
    for (int y = 0; y < 2; ++y) {
        EXPECT_TRUE(page.pixel(0, y).red == 10 || page.pixel(0, y).red == 20);
        EXPECT_TRUE(page.pixel(1, y).red == 30 || page.pixel(1, y).red >= 40);
    }
}

TEST(AlphaImage, IsScreenedOnABilevelPage)
{
    PageBitmap page(PixelFormat::Bilevel, 64, 64, {});
    drawImage(page, 1, 1, Matrix::scaling(64, 64), { { 0, 0, 0, 128 } }, {});
    EXPECT_NEAR(static_cast<double>(test::blackPixelCount(page)), 64 * 64 * 128 / 255.0, 20);
}
