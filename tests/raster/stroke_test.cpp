#include "quillrip/raster/painter.h"
#include "tests/support/text_art.h"

#include <gtest/gtest.h>

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
