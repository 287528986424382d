#include "quillrip/raster/paths/path.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace quillrip {
namespace {

std::string spelled(const Path& path)
{
    std::string text;
    const auto add = [&text](const char* verb, std::initializer_list<Point> points) {
        text += verb;
        for (const Point p : points)
            text += " " + std::to_string(static_cast<int>(p.x)) + "," + std::to_string(static_cast<int>(p.y));
        text += "; ";
    };
    path.forEach([&](Point to) { add("move", { to }); }, [&](Point to) { add("line", { to }); },
        [&](Point control1, Point control2, Point to) {
            add("cubic", { control1, control2, to });
        },
        [&] { add("close", {}); });
    return text;
}

TEST(Path, TellsItsPartsInTheirOrder)
{
    Path path;
    path.moveTo({ 1, 2 });
    path.cubicTo({ 3, 4 }, { 5, 6 }, { 7, 8 });
    path.lineTo({ 9, 10 });
    path.close();
    path.moveTo({ 0, 0 });
    EXPECT_EQ(spelled(path), "move 1,2; cubic 3,4 5,6 7,8; line 9,10; close; move 0,0; ");
    EXPECT_EQ(spelled({}), "");
}

TEST(Path, BoundsHoldAllPointsAndTheControlPoints)
{
    EXPECT_TRUE(Path().bounds().isNothing());
    Path path;
    path.moveTo({ 1, 2 });
    path.cubicTo({ -3, 4 }, { 5, 60 }, { 7, 8 });
    EXPECT_EQ(path.bounds(), (Rect { -3, 2, 7, 60 }));
    path.lineTo({ std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::quiet_NaN() });
    EXPECT_EQ(path.bounds(), (Rect { -3, 2, 7, 60 }));
}

} // namespace
} // namespace quillrip
