#include "quillrip/raster/compose/raster_operation.h"

#include <gtest/gtest.h>

namespace quillrip {
namespace {

using Byte = std::uint8_t;

/// What the page shows, in light, of an operation on light.
Byte lightAfter(Byte code, Byte texture, Byte source, Byte destination)
{
    const auto inverted = [](Byte value) { return static_cast<Byte>(~value); };
    return inverted(RasterOperation(code).apply(inverted(source), inverted(texture), inverted(destination)));
}

TEST(RasterOperationNames, MeanWhatTheySay)
{
    // All eight combinations of one bit, side by side.
    const Byte t = 0b11110000;
    const Byte s = 0b11001100;
    const Byte d = 0b10101010;
    const auto after = [&](Byte code) { return lightAfter(code, t, s, d); };
    EXPECT_EQ(after(rop::kBlackness), 0);
    EXPECT_EQ(after(rop::kWhiteness), 255);
    EXPECT_EQ(after(rop::kDestinationInvert), static_cast<Byte>(~d));
    EXPECT_EQ(after(rop::kTextureXorDestination), t ^ d);
    EXPECT_EQ(after(rop::kSourceXorDestination), s ^ d);
    EXPECT_EQ(after(rop::kSourceAndDestination), s & d);
    EXPECT_EQ(after(rop::kTextureAndDestination), t & d);
    EXPECT_EQ(after(rop::kTextureOrSourceAndDestination), (t | s) & d);
    EXPECT_EQ(after(rop::kDestination), d);
    EXPECT_EQ(after(rop::kTexturePaint), (t & ~s) | (d & s));
    EXPECT_EQ(after(rop::kSource), s);
    EXPECT_EQ(after(rop::kSourceOrDestination), s | d);
    EXPECT_EQ(after(rop::kTexture), t);
    EXPECT_EQ(after(rop::kTextureOrSource), t | s);
}

} // namespace
} // namespace quillrip
