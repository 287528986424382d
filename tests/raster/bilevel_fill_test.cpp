#include "quillrip/raster/painter.h"
#include "tests/support/text_art.h"

#include <gtest/gtest.h>

using namespace quillrip;
using test::textArt;

namespace {

PageBitmap bilevel(int width, int height) { return PageBitmap(PixelFormat::Bilevel, width, height, {}); }

Path polygon(std::initializer_list<Point> points)
{
    Path path;
    for (const Point& point : points) {
        if (path.empty())
            path.moveTo(point);
        else
            path.lineTo(point);
    }
    path.close();
    return path;
}

std::string filled(const Path& path, int width, int height, PixelRule pixels = PixelRule::Centre,
    FillRule rule = FillRule::NonZero, const PaintState& state = {})
{
    PageBitmap page = bilevel(width, height);
    Painter(page).fillPath(path, rule, state, pixels);
    return textArt(page);
}

} // namespace

TEST(BilevelFill, RectangleTakesThePixelsWhoseCentresLieInside)
{
    Path path;
    path.rectangle(1.4, 0.6, 4.5, 2.51);
    EXPECT_EQ(filled(path, 6, 4),
        "......\n"
        ".###..\n"
        ".###..\n"
        "......\n");
}

TEST(BilevelFill, RectanglesThatShareAnEdgeShareNoPixel)
{
    PaintState inverting;
    inverting.rop = 85;
    PageBitmap page = bilevel(8, 2);
    Painter painter(page);
    for (const double left : { 0.0, 2.5, 5.25 }) {
        Path path;
        path.rectangle(left, 0, left == 0.0 ? 2.5 : left == 2.5 ? 5.25 : 8, 2);
        painter.fillPath(path, FillRule::NonZero, inverting);
    }
    EXPECT_EQ(textArt(page), "########\n########\n");
}

TEST(BilevelFill, TriangleFollowsItsSlope)
{
    EXPECT_EQ(filled(polygon({ { 0.25, 0 }, { 6.25, 6 }, { 0, 6 }, { 0, 0 } }), 7, 6),
        "#......\n"
        "##.....\n"
        "###....\n"
        "####...\n"
        "#####..\n"
        "######.\n");
}

TEST(BilevelFill, EvenOddLeavesTheHoleThatNonZeroFills)
{
    Path path;
    path.rectangle(0, 0, 5, 5);
    path.rectangle(1, 1, 4, 4);
    EXPECT_EQ(filled(path, 5, 5, PixelRule::Centre, FillRule::EvenOdd),
        "#####\n"
        "#...#\n"
        "#...#\n"
        "#...#\n"
        "#####\n");
    EXPECT_EQ(filled(path, 5, 5),
        "#####\n"
        "#####\n"
        "#####\n"
        "#####\n"
        "#####\n");
}

TEST(BilevelFill, ThinShapesStayConnected)
{
    // A fifth of a pixel high, falling by two pixels over the page.
    EXPECT_EQ(filled(polygon({ { 0, 0.6 }, { 12, 2.6 }, { 12, 2.8 }, { 0, 0.8 } }), 12, 4),
        "##..........\n"
        "..######....\n"
        "........####\n"
        "............\n");
}

TEST(BilevelFill, ShapeBetweenAllCentresLeavesOnePixel)
{
    Path path;
    path.rectangle(2.6, 1.6, 3.1, 1.9);
    EXPECT_EQ(filled(path, 5, 3),
        ".....\n"
        "..#..\n"
        ".....\n");
}

TEST(BilevelFill, ShapeWithoutAreaLeavesNothing)
{
    EXPECT_EQ(filled(polygon({ { 0.5, 0.5 }, { 4.5, 0.5 } }), 5, 1), ".....\n");
}

TEST(BilevelFill, TouchedPixelsAreOneMoreThanSteps)
{
    Path path;
    path.rectangle(1, 1, 4, 2);
    EXPECT_EQ(filled(path, 6, 4, PixelRule::Touched),
        "......\n"
        ".####.\n"
        ".####.\n"
        "......\n");
}

TEST(BilevelFill, TouchedLineOfNoWidthIsOneDotWide)
{
    EXPECT_EQ(filled(polygon({ { 1, 1 }, { 4, 1 } }), 6, 3, PixelRule::Touched),
        "......\n"
        ".####.\n"
        "......\n");
}

TEST(BilevelFill, AbsurdCoordinatesFillWhatTheyCover)
{
    const double far = 1e30;
    EXPECT_EQ(filled(polygon({ { -far, -far }, { far, -far }, { far, far }, { -far, far } }), 4, 2), "####\n####\n");
    EXPECT_EQ(filled(polygon({ { 2, -far }, { far, -far }, { far, far }, { 2, far } }), 4, 2), "..##\n..##\n");
}

TEST(BilevelFill, PointsThatAreNoNumbersAreSkipped)
{
    const double nan = std::nan("");
    EXPECT_EQ(
        filled(polygon({ { 0, 0 }, { nan, 1 }, { 2, 0 }, { 2, HUGE_VAL }, { 2, 2 }, { 0, 2 } }), 4, 2), "##..\n##..\n");
}
