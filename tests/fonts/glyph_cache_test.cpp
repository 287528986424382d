#include "font_test_helpers.h"
#include "quillrip/fonts/font_library.h"
#include "quillrip/fonts/pixels/glyph_cache.h"

#include <gtest/gtest.h>

#include <limits>

using namespace quillrip;

namespace {

/// A face with square glyphs half an em wide that counts how often it is asked for pixels.
struct CountingFace : Typeface {
    GlyphId glyph(std::uint32_t code) const override { return code; }
    double advance(GlyphId) const override { return 0.5; }
    bool outline(GlyphId, Path&) const override { return false; }
    bool rasterise(
        GlyphId, const Matrix& matrix, GlyphMask::Depth depth, const GlyphStyle&, GlyphMask& mask) const override
    {
        ++count;
        last = matrix;
        mask.depth = depth;
        mask.width = mask.height = 8;
        mask.stride = depth == GlyphMask::Depth::Bits ? 1 : 8;
        mask.bytes.assign(mask.stride * 8, 0xFF);
        return true;
    }
    void change() { ++m_revision; }

    mutable int count = 0;
    mutable Matrix last;
};

constexpr GlyphMask::Depth kBits = GlyphMask::Depth::Bits;
constexpr GlyphMask::Depth kCoverage = GlyphMask::Depth::Coverage;

Matrix at(double x, double y, double em = 50) { return { em, 0, 0, -em, x, y }; }

} // namespace

TEST(GlyphCache, APageOfTextRasterisesEachGlyphOnce)
{
    const CountingFace face;
    GlyphCache cache;
    for (int i = 0; i < 3000; ++i)
        cache.place(face, 'A' + static_cast<GlyphId>(i % 40), at(i * 0.37, i * 12), kBits);
    EXPECT_EQ(face.count, 40);
    EXPECT_EQ(cache.rasterisations(), 40u);
}

TEST(GlyphCache, BilevelGlyphsSitOnWholePixels)
{
    const CountingFace face;
    GlyphCache cache;
    const PlacedGlyph placed = cache.place(face, 'A', at(10.6, 19.4), kBits);
    EXPECT_EQ(placed.x, 11);
    EXPECT_EQ(placed.y, 19);
    EXPECT_EQ(face.last.e, 0);
    EXPECT_EQ(cache.place(face, 'A', at(-10.6, -0.4), kBits).x, -11);
}

TEST(GlyphCache, GreyGlyphsKeepQuartersAlongTheLine)
{
    const CountingFace face;
    GlyphCache cache;
    PlacedGlyph placed = cache.place(face, 'A', at(10.6, 19.4), kCoverage);
    EXPECT_EQ(placed.x, 10);
    EXPECT_EQ(placed.y, 19);
    EXPECT_EQ(face.last.e, 0.5);
    EXPECT_EQ(face.last.f, 0);
    placed = cache.place(face, 'A', at(-0.25, 0), kCoverage);
    EXPECT_EQ(placed.x, -1);
    EXPECT_EQ(face.last.e, 0.75);
    // Text that runs down the page keeps them down the page.
    placed = cache.place(face, 'A', { 0, 50, 50, 0, 10.6, 19.4 }, kCoverage);
    EXPECT_EQ(placed.x, 11);
    EXPECT_EQ(placed.y, 19);
    EXPECT_EQ(face.last.f, 0.5);
    for (int i = 0; i < 1000; ++i)
        cache.place(face, 'B', at(i * 0.01, 5), kCoverage);
    EXPECT_LE(face.count, 3 + 4);
}

TEST(GlyphCache, TellsFacesSizesDepthsAndRevisionsApart)
{
    CountingFace face;
    const CountingFace other;
    GlyphCache cache;
    cache.place(face, 'A', at(0, 0), kBits);
    cache.place(other, 'A', at(0, 0), kBits);
    EXPECT_EQ(other.count, 1);
    cache.place(face, 'A', at(0, 0, 51), kBits);
    cache.place(face, 'A', at(0, 0), kCoverage);
    cache.place(face, 'A', at(0, 0), kBits, { 0.02 });
    EXPECT_EQ(face.count, 4);
    face.change();
    cache.place(face, 'A', at(0, 0), kBits);
    EXPECT_EQ(face.count, 5);
}

TEST(GlyphCache, StaysWithinItsMemory)
{
    const CountingFace face;
    GlyphCache cache(10000);
    for (GlyphId glyph = 0; glyph < 5000; ++glyph) {
        cache.place(face, glyph, at(0, 0), kBits);
        ASSERT_LE(cache.bytes(), 10000u);
    }
    // The one used last is still there.
    const int before = face.count;
    cache.place(face, 4999, at(0, 0), kBits);
    EXPECT_EQ(face.count, before);
}

TEST(GlyphCache, HugeGlyphsAndBrokenMatricesGiveNothing)
{
    const CountingFace face;
    GlyphCache cache;
    EXPECT_EQ(cache.place(face, 'A', at(0, 0, 5000), kBits).mask, nullptr);
    EXPECT_TRUE(GlyphCache::isTooLarge(face, at(0, 0, 5000)));
    EXPECT_FALSE(GlyphCache::isTooLarge(face, at(0, 0, 500)));
    EXPECT_EQ(cache.place(face, 'A', at(std::numeric_limits<double>::quiet_NaN(), 0), kBits).mask, nullptr);
    EXPECT_EQ(cache.place(face, 'A', at(0, 0, std::numeric_limits<double>::infinity()), kBits).mask, nullptr);
    EXPECT_EQ(cache.place(face, kNoGlyph, at(0, 0), kBits).mask, nullptr);
    EXPECT_EQ(face.count, 0);
}
