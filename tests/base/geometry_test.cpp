#include "quillrip/base/geometry.h"

#include <gtest/gtest.h>

#include <limits>

namespace quillrip {
namespace {

TEST(Rect, GrowsAroundThePointsIncluded)
{
    Rect rect = Rect::nothing();
    EXPECT_TRUE(rect.isNothing());
    rect.include(Point { 3, 4 });
    EXPECT_FALSE(rect.isNothing());
    EXPECT_TRUE(rect.empty());
    rect.include(Point { -1, 10 });
    EXPECT_EQ(rect, (Rect { -1, 4, 3, 10 }));
    EXPECT_FALSE(rect.empty());
    EXPECT_DOUBLE_EQ(rect.width(), 4);
    EXPECT_DOUBLE_EQ(rect.height(), 6);
    EXPECT_EQ(rect.center(), (Point { 1, 7 }));
}

TEST(Rect, ACoordinateThatIsNoNumberChangesNothing)
{
    Rect rect { 0, 0, 1, 1 };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    rect.include(Point { nan, nan });
    EXPECT_EQ(rect, (Rect { 0, 0, 1, 1 }));
}

TEST(Rect, IncludesAndIntersectsOthers)
{
    Rect rect { 0, 0, 10, 10 };
    EXPECT_EQ(rect.intersected({ 5, -5, 20, 5 }), (Rect { 5, 0, 10, 5 }));
    EXPECT_TRUE(rect.intersected({ 11, 0, 20, 5 }).isNothing());
    rect.include(Rect { 5, -5, 20, 5 });
    EXPECT_EQ(rect, (Rect { 0, -5, 20, 10 }));
    rect.include(Rect::nothing());
    EXPECT_EQ(rect, (Rect { 0, -5, 20, 10 }));
    EXPECT_EQ(rect.grown(2), (Rect { -2, -7, 22, 12 }));
}

TEST(Rect, ContainsWhatLiesInsideUpToTheSlack)
{
    const Rect rect { 0, 0, 10, 10 };
    EXPECT_TRUE(rect.contains(Rect { 0, 0, 10, 10 }));
    EXPECT_FALSE(rect.contains(Rect { 0, 0, 10, 11 }));
    EXPECT_TRUE(rect.contains(Rect { -1, 0, 10, 11 }, 1));
    EXPECT_FALSE(rect.contains(Rect { -1.5, 0, 10, 11 }, 1));
    EXPECT_TRUE(rect.contains(Point { 10, 0 }));
    EXPECT_FALSE(rect.contains(Point { 10.1, 0 }));
}

TEST(Matrix, BoundsOfATurnedRectangle)
{
    const Matrix turn = Matrix::quarterTurns(1) * Matrix::translation(100, 0);
    EXPECT_EQ(turn.boundsOf({ 1, 2, 3, 7 }), (Rect { 93, 1, 98, 3 }));
}

} // namespace
} // namespace quillrip
