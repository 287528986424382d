#include "quillrip/emf/plus/color_sources.h"
#include "quillrip/emf/plus/hatch_styles.h"
#include "tests/emf/plus/plus_job.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::emf;
using namespace quillrip::emf::plus;
using namespace quillrip::emf::plus::test;

namespace {

std::vector<Rgba> rowOf(const std::shared_ptr<const ColorSource>& source, int y, int left, int right)
{
    std::vector<Rgba> pixels(static_cast<std::size_t>(right - left));
    source->row(y, left, right, pixels.data());
    return pixels;
}

LinearGradientBrush blackToWhite(double width)
{
    LinearGradientBrush brush;
    brush.rect = { 0, 0, width, 1 };
    brush.blend.start = { 0, 0, 0, 255 };
    brush.blend.end = { 255, 255, 255, 255 };
    return brush;
}

/// Two pixels, red and blue, above a green and a transparent one.
std::shared_ptr<const ColorSource> textureOfFour(WrapMode wrap, const Matrix& imageToDevice, bool isSmooth)
{
    auto object = std::make_shared<ImageObject>();
    object->width = object->height = 2;
    object->stride = 8;
    object->format = 0x0026200A;
    object->bytes = { 0, 0, 255, 255, 255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 0, 0 };
    WorkMeter work;
    std::string problem;
    OpenImage image(object, openImage(*object, work, problem));
    return textureSource(image, wrap, imageToDevice, isSmooth, work);
}

constexpr Rgba kRed { 255, 0, 0, 255 };
constexpr Rgba kBlue { 0, 0, 255, 255 };
constexpr Rgba kGreen { 0, 255, 0, 255 };

} // namespace

TEST(EmfPlusBrush, LinearGradientsRunAlongX)
{
    const auto source = linearGradientSource(blackToWhite(100), Matrix());
    EXPECT_NEAR(rowOf(source, 0, 25, 26)[0].red, 65, 1);
    EXPECT_NEAR(rowOf(source, 99, 99, 100)[0].red, 254, 1);
}

TEST(EmfPlusBrush, LinearGradientsGoOnByTheirWrapMode)
{
    LinearGradientBrush brush = blackToWhite(100);
    EXPECT_NEAR(rowOf(linearGradientSource(brush, Matrix()), 0, 125, 126)[0].red, 65, 1);
    EXPECT_NEAR(rowOf(linearGradientSource(brush, Matrix()), 0, -25, -24)[0].red, 192, 1);
    brush.wrap = WrapMode::FlipX;
    EXPECT_NEAR(rowOf(linearGradientSource(brush, Matrix()), 0, 125, 126)[0].red, 190, 1);
    EXPECT_NEAR(rowOf(linearGradientSource(brush, Matrix()), 0, -25, -24)[0].red, 62, 1);
}

TEST(EmfPlusBrush, LinearGradientsTurnWithTheirMatrix)
{
    LinearGradientBrush brush = blackToWhite(100);
    brush.toWorld = Matrix::quarterTurns(1);
    const auto source = linearGradientSource(brush, Matrix());
    EXPECT_EQ(rowOf(source, 25, 0, 1)[0], rowOf(source, 25, 300, 301)[0]);
    EXPECT_NEAR(rowOf(source, 25, 0, 1)[0].red, 65, 1);
}

TEST(EmfPlusBrush, GradientsWithoutWidthPaintNothing)
{
    EXPECT_FALSE(linearGradientSource(blackToWhite(0), Matrix()));
    EXPECT_FALSE(linearGradientSource(blackToWhite(5), Matrix::scaling(1, 0)));
    EXPECT_FALSE(pathGradientSource({}, Matrix()));
}

TEST(EmfPlusBrush, PathGradientsRunFromTheBoundaryToTheCentre)
{
    PathGradientBrush brush;
    brush.center = { 50, 50 };
    brush.centerColor = { 255, 255, 255, 255 };
    brush.surroundColors = { { 0, 0, 0, 255 } };
    brush.boundaryPoints = { { 0, 0 }, { 100, 0 }, { 100, 100 }, { 0, 100 } };
    const auto row = rowOf(pathGradientSource(brush, Matrix()), 50, -5, 105);
    EXPECT_NEAR(row[5].red, 2, 2);
    EXPECT_NEAR(row[5 + 25].red, 129, 2);
    EXPECT_NEAR(row[5 + 50].red, 253, 2);
    EXPECT_EQ(row[0].alpha, 0); // beyond the boundary
    EXPECT_EQ(row[109].alpha, 0);

    brush.factors = { { 0, 0 }, { 0.5, 0 }, { 1, 1 } };
    EXPECT_NEAR(rowOf(pathGradientSource(brush, Matrix()), 50, 25, 26)[0].red, 2, 3);
    brush.factors.clear();
    brush.focusScale = { 0.5, 0.5 };
    EXPECT_NEAR(rowOf(pathGradientSource(brush, Matrix()), 50, 30, 31)[0].red, 255, 1);
    EXPECT_NEAR(rowOf(pathGradientSource(brush, Matrix()), 50, 12, 13)[0].red, 128, 3);
}

TEST(EmfPlusBrush, BoundaryShrinksToItsFocusAlongEachAxis)
{
    PathGradientBrush brush;
    brush.center = { 50, 50 };
    brush.centerColor = { 255, 255, 255, 255 };
    brush.surroundColors = { { 0, 0, 0, 255 } };
    brush.boundaryPoints = { { 0, 0 }, { 100, 0 }, { 100, 100 }, { 0, 100 } };
    brush.focusScale = { 0, 0.7 };
    const auto redAt
        = [&](int x, int y) { return int { rowOf(pathGradientSource(brush, Matrix()), y, x, x + 1)[0].red }; };
    // Halfway to the focus, an upright line of 70, the boundary is 50 wide and 85 high.
    for (const int y : { 10, 30, 50, 70, 90 })
        EXPECT_NEAR(redAt(75, y), 126, 4) << y;
    EXPECT_NEAR(redAt(50, 20), 252, 4);
    EXPECT_NEAR(redAt(50, 7), 128, 6);
    brush.focusScale = { 0.4, 0.8 };
    for (const int y : { 12, 30, 50, 70, 88 })
        EXPECT_EQ(redAt(68, y), 255) << y;
    EXPECT_NEAR(redAt(85, 20), 128, 6);
}

TEST(EmfPlusBrush, BoundaryColoursMixAlongTheEdges)
{
    PathGradientBrush brush;
    brush.center = { 50, 50 };
    brush.centerColor = { 0, 0, 0, 255 };
    brush.surroundColors = { { 0, 0, 0, 255 }, { 200, 0, 0, 255 } };
    brush.boundaryPoints = { { 0, 0 }, { 100, 0 }, { 100, 100 }, { 0, 100 } };
    const auto row = rowOf(pathGradientSource(brush, Matrix()), 0, 0, 100);
    EXPECT_NEAR(row[50].red, 100, 4);
    EXPECT_NEAR(row[98].red, 195, 4);
    // The last colour stands for those that are missing.
    EXPECT_NEAR(rowOf(pathGradientSource(brush, Matrix()), 50, 99, 100)[0].red, 198, 4);
}

TEST(EmfPlusBrush, TexturesRepeatAndFlip)
{
    const auto row = [](WrapMode wrap, int y) { return rowOf(textureOfFour(wrap, Matrix(), false), y, 0, 4); };
    EXPECT_EQ(row(WrapMode::Tile, 0), (std::vector<Rgba> { kRed, kBlue, kRed, kBlue }));
    EXPECT_EQ(row(WrapMode::FlipX, 0), (std::vector<Rgba> { kRed, kBlue, kBlue, kRed }));
    EXPECT_EQ(row(WrapMode::FlipX, 2)[0], kRed);
    EXPECT_EQ(row(WrapMode::FlipY, 2)[0], kGreen);
    EXPECT_EQ(row(WrapMode::FlipBoth, -1)[0], kRed);
    EXPECT_EQ(row(WrapMode::Clamp, 0)[2].alpha, 0);
    EXPECT_EQ(row(WrapMode::Tile, 1)[1].alpha, 0);
}

TEST(EmfPlusBrush, SmoothTexturesMixColoursByWhatTheyShow)
{
    // Between green and the transparent pixel there is no black.
    const auto source = textureOfFour(WrapMode::Tile, Matrix::scaling(5, 5), true);
    const Rgba pixel = rowOf(source, 7, 4, 5)[0];
    EXPECT_EQ(pixel.red, 0);
    EXPECT_EQ(pixel.green, 255);
    EXPECT_EQ(pixel.alpha, 153);
}

TEST(EmfPlusBrush, TexturesThatShrinkAreAveraged)
{
    const auto source = textureOfFour(WrapMode::Tile, Matrix::scaling(0.25, 0.25), true);
    const Rgba pixel = rowOf(source, 0, 0, 1)[0];
    EXPECT_NEAR(pixel.red, 85, 1);
    EXPECT_NEAR(pixel.blue, 85, 1);
    EXPECT_NEAR(pixel.alpha, 191, 1);
}

TEST(EmfPlusBrush, HatchesLieOnTheRenderingOrigin)
{
    HatchBrush brush;
    brush.style = 1; // vertical lines
    brush.foreground = kRed;
    brush.background = { 0, 0, 0, 0 };
    const auto source = hatchSource(brush, { 3, 0 }, 2, 2);
    const auto row = rowOf(source, 7, 0, 40);
    for (int x = 0; x < 40; ++x)
        EXPECT_EQ(row[static_cast<std::size_t>(x)].alpha, (x - 3 + 16) % 16 < 2 ? 255 : 0) << x;
}

TEST(EmfPlusBrush, EveryHatchHasBothColours)
{
    for (std::uint32_t style = 0; style < kHatchStyles; ++style) {
        EXPECT_NE(hatchPattern(style), 0U) << style;
        EXPECT_NE(hatchPattern(style), ~std::uint64_t { 0 }) << style;
    }
    EXPECT_EQ(hatchPattern(53), hatchPattern(0));
}

TEST(EmfPlusBrush, GradientsPaintThroughTheirAlpha)
{
    Records records = header();
    records.object(
        1, 0, Fields().u32({ kVersion, 4, 0, 0 }).f32({ 0, 0, 40, 1 }).u32({ 0x00FF0000, 0xFFFF0000, 0, 0 }));
    records.add(0x400A, 0, Fields().u32({ 0, 1 }).f32({ 0, 0, 40, 40 }));
    Sheet sheet;
    sheet.play(records);
    EXPECT_NEAR(sheet.pixel(10, 5).green, 255 - 255 * 10.5 / 40, 2);
    EXPECT_EQ(sheet.pixel(10, 5).red, 255);
}
