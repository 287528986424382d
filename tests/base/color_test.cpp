#include "quillrip/base/color.h"

#include <gtest/gtest.h>

namespace quillrip {
namespace {

TEST(Color, GreysKeepTheirLight)
{
    for (int light = 0; light < 256; ++light) {
        const auto value = static_cast<std::uint8_t>(light);
        EXPECT_EQ(luminance({ value, value, value }), value);
    }
}

TEST(Color, GreenIsLighterThanRedAndRedThanBlue)
{
    EXPECT_EQ(luminance({ 255, 0, 0 }), 76);
    EXPECT_EQ(luminance({ 0, 255, 0 }), 150);
    EXPECT_EQ(luminance({ 0, 0, 255 }), 29);
    EXPECT_EQ(grayOf({ 255, 0, 0 }), (Rgb { 76, 76, 76 }));
    EXPECT_EQ(grayOf(kWhite), kWhite);
    EXPECT_EQ(grayOf(kBlack), kBlack);
}

} // namespace
} // namespace quillrip
