#include "quillrip/base/units.h"

#include <gtest/gtest.h>

namespace quillrip {
namespace {

TEST(Units, LengthsInInchesAndMillimetresAreTheSameLength)
{
    EXPECT_DOUBLE_EQ(decipointsOfInches(8.5).count, 6120);
    EXPECT_DOUBLE_EQ(decipointsOfMillimetres(25.4).count, 720);
    EXPECT_DOUBLE_EQ(decipointsOfMillimetres(297).millimetres(), 297);
    EXPECT_DOUBLE_EQ(decipointsOfInches(11).inches(), 11);
}

TEST(Units, DotsAreTheNearest)
{
    EXPECT_EQ(nearestDots(decipointsOfInches(8.5)).count, 2550);
    EXPECT_EQ(nearestDots(decipointsOfMillimetres(210)).count, 2480);
    EXPECT_EQ(nearestDots({ 3 }).count, 1);
    EXPECT_DOUBLE_EQ(Dots { 150 }.inches(), 0.5);
}

} // namespace
} // namespace quillrip
