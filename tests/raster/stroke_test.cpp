#include "quillrip/raster/painter.h"
#include "tests/support/text_art.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace quillrip;
using test::textArt;

namespace {

Path polyline(std::initializer_list<Point> points)
{
    Path path;
    for (const Point& point : points) {
        if (path.empty())
            path.moveTo(point);
        else
            path.lineTo(point);
    }
    return path;
}

std::string stroked(const Path& path, int width, int height, const StrokeStyle& style, const Matrix& matrix = {},
    const PaintState& state = {})
{
    PageBitmap page(PixelFormat::Bilevel, width, height, {});
    Painter(page).strokePath(path, matrix, style, state);
    return textArt(page);
}

StrokeStyle pen(double width, LineCap cap = LineCap::Butt, LineJoin join = LineJoin::Miter)
{
    StrokeStyle style;
    style.width = width;
    style.cap = cap;
    style.join = join;
    return style;
}

} // namespace

TEST(Stroke, LevelLineIsWholePixelsHigh)
{
    EXPECT_EQ(stroked(polyline({ { 1, 2.3 }, { 5, 2.3 } }), 7, 5, pen(2)),
        ".......\n"
        ".####..\n"
        ".####..\n"
        ".......\n"
        ".......\n");
}

TEST(Stroke, HairlineIsAConnectedLineOfSinglePixels)
{
    EXPECT_EQ(stroked(polyline({ { 0.5, 0.5 }, { 8.5, 3.5 } }), 9, 4, pen(0)),
        "##.......\n"
        "..##.....\n"
        "....###..\n"
        ".......##\n");
}

TEST(Stroke, MiterReachesTheCornerAndBevelDoesNot)
{
    const Path corner = polyline({ { 1, 6 }, { 1, 2 }, { 6, 2 } });
    EXPECT_EQ(stroked(corner, 7, 7, pen(2)),
        ".......\n"
        "######.\n"
        "######.\n"
        "##.....\n"
        "##.....\n"
        "##.....\n"
        ".......\n");
    EXPECT_EQ(stroked(corner, 7, 7, pen(2, LineCap::Butt, LineJoin::None)),
        ".......\n"
        ".#####.\n"
        "######.\n"
        "##.....\n"
        "##.....\n"
        "##.....\n"
        ".......\n");
}

TEST(Stroke, WhatReachesThePageFromALineBesideItIsDrawn)
{
    EXPECT_EQ(stroked(polyline({ { -3, 1 }, { -3, 3 } }), 3, 4, pen(8)), "...\n#..\n#..\n...\n");
    // Scaled, and with a cap.
    EXPECT_EQ(stroked(polyline({ { -1.5, -1 }, { -1, -1 } }), 3, 2, pen(2, LineCap::Square), Matrix::scaling(2, 1)),
        "...\n...\n");
    EXPECT_EQ(stroked(polyline({ { -1.5, 0 }, { -0.5, 0 } }), 3, 2, pen(2, LineCap::Square), Matrix::scaling(2, 1)),
        "#..\n...\n");
    // A corner far to the left whose miter points to the right.
    StrokeStyle pointed = pen(1.5);
    pointed.miterLimit = 30;
    EXPECT_EQ(stroked(polyline({ { -90, -2 }, { -10, 1.5 }, { -90, 5 } }), 3, 3, pointed), "...\n###\n...\n");
}

TEST(Stroke, InvertingStrokeThatCrossesItselfChangesEachPixelOnce)
{
    PaintState inverting;
    inverting.rop = 85;
    EXPECT_EQ(stroked(polyline({ { 0, 2 }, { 5, 2 }, { 5, 5 }, { 2, 5 }, { 2, 0 } }), 6, 6, pen(1), {}, inverting),
        "..#...\n"
        "..#...\n"
        "######\n"
        "..#..#\n"
        "..#..#\n"
        "..####\n");
}

TEST(Stroke, ZeroLengthLineIsADotByItsCap)
{
    EXPECT_EQ(stroked(polyline({ { 3, 3 }, { 3, 3 } }), 6, 6, pen(4, LineCap::Butt)).find('#'), std::string::npos);
    EXPECT_EQ(stroked(polyline({ { 3, 3 }, { 3, 3 } }), 6, 6, pen(4, LineCap::Square)),
        "......\n"
        ".####.\n"
        ".####.\n"
        ".####.\n"
        ".####.\n"
        "......\n");
    EXPECT_EQ(stroked(polyline({ { 3, 3 }, { 3, 3 } }), 6, 6, pen(4, LineCap::Round)),
        "......\n"
        "..##..\n"
        ".####.\n"
        ".####.\n"
        "..##..\n"
        "......\n");
}

TEST(Stroke, DashesStartAtTheirOffset)
{
    StrokeStyle style = pen(1);
    style.dashes = { 3, 2 };
    style.dashOffset = 1;
    EXPECT_EQ(stroked(polyline({ { 0, 0 }, { 12, 0 } }), 12, 1, style), "##..###..###\n");
}

TEST(Stroke, PenIsStretchedWithTheMatrix)
{
    // Twice as wide across as down: a level line is 2 high, an upright one 4 wide.
    const Matrix stretched = Matrix::scaling(2, 1);
    EXPECT_EQ(stroked(polyline({ { 1, 2 }, { 4, 2 } }), 10, 4, pen(2), stretched),
        "..........\n"
        "..######..\n"
        "..######..\n"
        "..........\n");
    EXPECT_EQ(stroked(polyline({ { 2, 1 }, { 2, 3 } }), 8, 4, pen(2), stretched),
        "........\n"
        "..####..\n"
        "..####..\n"
        "........\n");
}

TEST(Stroke, FlattenedPenStaysAPixelThick)
{
    // The matrix has no inverse: the plane is pressed on a level line.
    EXPECT_EQ(stroked(polyline({ { 1, 0 }, { 5, 7 } }), 7, 3, pen(4), { 1, 0, 0, 0, 0, 1.5 }),
        ".......\n"
        ".####..\n"
        ".......\n");
}

TEST(Stroke, ClippedMiterEndsAtItsLimit)
{
    // A sharp corner to the right: uncut, its tip would be ten pixels out.
    const Path corner = polyline({ { 0, 3.5 }, { 20, 5.5 }, { 0, 7.5 } });
    StrokeStyle style = pen(2, LineCap::Butt, LineJoin::MiterClipped);
    style.miterLimit = 4;
    const auto rightmost = [&](const StrokeStyle& s) {
        PageBitmap page(PixelFormat::Bilevel, 40, 12, {});
        Painter(page).strokePath(corner, {}, s, {});
        int right = 0;
        for (int y = 0; y < page.height(); ++y)
            right = std::max(right, page.extent(y).right);
        return right;
    };
    EXPECT_EQ(rightmost(style), 24);
    style.join = LineJoin::Miter;
    EXPECT_LE(rightmost(style), 21);
    style.miterLimit = 20;
    EXPECT_GT(rightmost(style), 28);
}

TEST(Stroke, RulesInGreyAreCrispOnOneSideAndKeepTheirWidth)
{
    PageBitmap page(PixelFormat::Gray8, 4, 6, {});
    Painter(page).strokePath(polyline({ { 0, 2.8 }, { 4, 2.8 } }), {}, pen(2.5), {});
    const int expected[] = { 0, 0, 255, 255, 128, 0 };
    for (int y = 0; y < 6; ++y)
        EXPECT_EQ(page.row(y)[2], expected[y]) << y;
}

TEST(Stroke, ThinRuleInGreyIsOneFullPixel)
{
    PageBitmap page(PixelFormat::Gray8, 4, 4, {});
    Painter(page).strokePath(polyline({ { 0, 1.9 }, { 4, 1.9 } }), {}, pen(0.1), {});
    EXPECT_EQ(page.row(0)[2], 0);
    EXPECT_EQ(page.row(1)[2], 255);
    EXPECT_EQ(page.row(2)[2], 0);
}

TEST(Stroke, SeamlessWherePiecesMeetInGrey)
{
    PageBitmap page(PixelFormat::Gray8, 30, 30, {});
    Path path;
    path.arc({ 15, 15 }, 10, 10, 0, 7, true);
    path.close();
    Painter(page).strokePath(path, {}, pen(4), {});
    for (int degree = 0; degree < 360; ++degree) {
        const double angle = degree * 3.14159265 / 180;
        EXPECT_GE(
            page.row(static_cast<int>(15 + 10 * std::sin(angle)))[static_cast<int>(15 + 10 * std::cos(angle))], 254);
    }
}

TEST(Stroke, ClosedLineThatMissesItsStartByRoundingHasNoSpike)
{
    // Up, round and back from the right, a little too far: what closes it points down, against the first segment.
    Path path = polyline({ { 4, 6 }, { 4, 2 }, { 8, 2 }, { 8, 10 }, { 4, 10 }, { 4, 5.9999 } });
    Path exact = polyline({ { 4, 6 }, { 4, 2 }, { 8, 2 }, { 8, 10 }, { 4, 10 }, { 4, 6 } });
    path.close();
    exact.close();
    StrokeStyle style = pen(2);
    style.join = LineJoin::MiterClipped;
    EXPECT_EQ(stroked(path, 14, 14, style), stroked(exact, 14, 14, style));
}

TEST(Stroke, DashThroughTheStartOfAClosedLineIsOne)
{
    StrokeStyle style = pen(2, LineCap::Butt, LineJoin::Miter);
    style.dashes = { 4, 4 };
    style.dashOffset = 2;
    Path path;
    path.rectangle(1, 1, 9, 9);
    // Two of the first dash lie before the start, two after: the corner is joined, not notched.
    EXPECT_EQ(stroked(path, 3, 3, style), "###\n###\n##.\n");
}

TEST(Stroke, DashesThatNobodyCouldSeeAreSolid)
{
    StrokeStyle style = pen(1);
    style.dashes = { 1e-6, 1e-6 };
    EXPECT_EQ(stroked(polyline({ { 0, 0 }, { 5, 0 } }), 5, 1, style), "#####\n");
}

TEST(Stroke, LinesOfAnyLengthArePaintedWithoutASeam)
{
    // More than half a million edges, which no list holds at once; each pixel is painted many times over, and counts
    // once.
    constexpr int width = 120;
    constexpr int height = 90;
    Path path;
    constexpr int vertices = 80000;
    path.moveTo({ 60, 5 });
    // A star that wanders to and fro and slowly down.
    for (int i = 0; i < vertices; ++i)
        path.lineTo(
            { 60 + 50 * std::sin(i * 0.003) + 3 * std::cos(2.0 * i), 5 + 80.0 * i / vertices + 3 * std::sin(2.0 * i) });
    StrokeStyle style = pen(1, LineCap::Butt, LineJoin::Round);
    PaintState invert;
    invert.rop = rop::kDestinationInvert;
    PageBitmap whole(PixelFormat::Gray8, width, height, {});
    Painter(whole).strokePath(path, {}, style, invert);

    PageBitmap inStrips(PixelFormat::Gray8, width, height, {});
    for (int top = 0; top < height; top += 18) {
        PaintState strip = invert;
        strip.clip = ClipRegion::ofRect({ 0, top, width, top + 18 });
        Painter(inStrips).strokePath(path, {}, style, strip);
    }
    for (int y = 0; y < height; ++y)
        EXPECT_TRUE(std::equal(whole.row(y), whole.row(y) + width, inStrips.row(y))) << y;
}

TEST(Stroke, GapsThatCapsCloseCostNothing)
{
    // Round ends 20 pixels wide leave a notch of a hundredth of a pixel where they are a pixel apart.
    const auto drawn = [](LineCap cap, double gap, std::uint64_t& units) {
        PageBitmap page(PixelFormat::Gray8, 340, 60, {});
        Painter painter(page);
        StrokeStyle style = pen(20, cap, LineJoin::Round);
        if (gap > 0)
            style.dashes = { 1, gap };
        painter.strokePath(polyline({ { 20.5, 20 }, { 320, 40 } }), {}, style, {});
        units = painter.work().spent();
        return page;
    };
    for (const LineCap cap : { LineCap::Round, LineCap::Square }) {
        std::uint64_t ofSolid = 0;
        std::uint64_t ofClosed = 0;
        std::uint64_t ofOpen = 0;
        const PageBitmap solid = drawn(cap, 0, ofSolid);
        const PageBitmap closed = drawn(cap, 1, ofClosed);
        drawn(cap, cap == LineCap::Round ? 2 : 21, ofOpen);
        for (int y = 0; y < 60; ++y) {
            for (int x = 12; x < 320; ++x)
                EXPECT_NEAR(closed.row(y)[x], solid.row(y)[x], 1) << x << "," << y;
        }
        EXPECT_LT(ofClosed, 2 * ofSolid);
        EXPECT_GT(ofOpen, 2 * ofSolid);
    }
    std::uint64_t units = 0;
    const PageBitmap butt = drawn(LineCap::Butt, 1, units);
    EXPECT_LT(*std::min_element(butt.row(30) + 160, butt.row(30) + 180), 130);
}

TEST(Stroke, InBandsDashesLieWhereTheyDoInOnePiece)
{
    // A spiral of some hundred thousand dashes, in bands since no list holds their edges.
    constexpr int size = 400;
    Path path;
    path.moveTo({ 200, 200 });
    for (int i = 1; i < 2000; ++i)
        path.lineTo({ 200 + i * 0.1 * std::sin(i * 1.3), 200 + i * 0.1 * std::cos(i * 1.3) });
    StrokeStyle style = pen(1, LineCap::Round);
    style.dashes = { 0.4, 1.7 };
    PageBitmap whole(PixelFormat::Gray8, size, size, {});
    Painter(whole).strokePath(path, {}, style, {});
    PageBitmap inStrips(PixelFormat::Gray8, size, size, {});
    for (int top = 0; top < size; top += 20) {
        PaintState strip;
        strip.clip = ClipRegion::ofRect({ 0, top, size, top + 20 });
        Painter(inStrips).strokePath(path, {}, style, strip);
    }
    int different = 0;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x)
            different += std::abs(whole.row(y)[x] - inStrips.row(y)[x]) > 2 ? 1 : 0;
    }
    EXPECT_EQ(different, 0);
}
