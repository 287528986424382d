#include "quillrip/raster/painter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using namespace quillrip;

namespace {

constexpr int kWidth = 60;
constexpr int kHeight = 12;

class SuccessiveMarks : public testing::TestWithParam<PixelFormat> {
protected:
    /// States that differ from the first one in one thing each.
    static std::vector<PaintState> states()
    {
        PaintState first;
        first.texture.color = { 40, 90, 200 };
        PatternTile tile;
        tile.width = tile.height = 2;
        tile.pixels = { 1, 0, 1, 1 };
        first.texture.tile = std::make_shared<PatternTile>(tile);
        std::vector<PaintState> states(9, first);
        states[1].rop = rop::kTextureXorDestination;
        states[2].sourceTransparent = false;
        states[3].patternTransparent = false;
        states[4].texture.color = { 200, 0, 0 };
        states[5].texture.tile = nullptr;
        states[6].texture.originX = 1;
        states[7].opacity = 90;
        Path box;
        box.rectangle(3, 3, 50, 8);
        states[8].clip = ClipRegion::ofPath(box, FillRule::NonZero, { 0, 0, kWidth, kHeight });
        return states;
    }

    static GlyphMask mask()
    {
        GlyphMask mask;
        mask.depth = GlyphMask::Depth::Bits;
        mask.width = 16;
        mask.height = 8;
        mask.stride = 2;
        for (int i = 0; i < 16; ++i)
            mask.bytes.push_back(static_cast<std::uint8_t>(i * 73 + 5));
        return mask;
    }

    static void paintBackground(PageBitmap& page)
    {
        PaintState state;
        state.texture.color = { 200, 220, 60 };
        Painter(page).fillRect({ 0, 0, kWidth, kHeight / 2 }, state);
    }

    static bool areSame(const PageBitmap& a, const PageBitmap& b)
    {
        for (int y = 0; y < kHeight; ++y)
            if (!std::equal(a.row(y), a.row(y) + a.stride(), b.row(y)))
                return false;
        return true;
    }
};

TEST_P(SuccessiveMarks, TakeTheStateOfEach)
{
    const std::vector<PaintState> all = states();
    const GlyphMask glyph = mask();
    for (std::size_t i = 1; i < all.size(); ++i) {
        PageBitmap together(GetParam(), kWidth, kHeight, {});
        PageBitmap apart(GetParam(), kWidth, kHeight, {});
        PageBitmap unchanged(GetParam(), kWidth, kHeight, {});
        for (PageBitmap* page : { &together, &apart, &unchanged })
            paintBackground(*page);
        Painter painter(together);
        Painter stubborn(unchanged);
        int x = 1;
        for (const std::size_t which : { std::size_t { 0 }, i, i, std::size_t { 0 } }) {
            painter.drawMask(glyph, x, 2, all[which]);
            Painter(apart).drawMask(glyph, x, 2, all[which]);
            stubborn.drawMask(glyph, x, 2, all[0]);
            x += 13;
        }
        EXPECT_TRUE(areSame(together, apart)) << "state " << i;
        EXPECT_FALSE(areSame(together, unchanged)) << "state " << i << " shows nothing of what is different";
    }
}

TEST_P(SuccessiveMarks, AreChargedOnceEach)
{
    const auto sum = [](bool isOnePainter) {
        const auto work = std::make_shared<WorkMeter>();
        PageBitmap page(GetParam(), kWidth, kHeight, {});
        Painter one(page, work);
        for (int i = 0; i < 4; ++i) {
            Painter fresh(page, work);
            Painter& painter = isOnePainter ? one : fresh;
            painter.fillRect({ 0, 0, kWidth, kHeight }, {});
            ImageGeometry geometry;
            geometry.format = ImageFormat::Gray8;
            geometry.width = kWidth;
            geometry.height = kHeight;
            const auto image = painter.beginImage(geometry, {});
            const std::vector<std::uint8_t> row(kWidth, 100);
            for (int y = 0; y < kHeight; ++y)
                image->row(row.data());
            image->finish();
        }
        return work->spent();
    };
    EXPECT_EQ(sum(true), sum(false));
}

INSTANTIATE_TEST_SUITE_P(
    Formats, SuccessiveMarks, testing::Values(PixelFormat::Bilevel, PixelFormat::Gray8, PixelFormat::Rgb24));

TEST(WideTile, IsTakenColumnByColumn)
{
    constexpr int width = 1000;
    for (const int tileWidth : { 100, 256, 300, 900 }) {
        PatternTile tile;
        tile.width = tileWidth;
        tile.height = 1;
        for (int x = 0; x < tileWidth; ++x)
            tile.pixels.push_back(static_cast<std::uint8_t>(x * x % 5 < 2));
        PaintState state;
        state.texture.tile = std::make_shared<PatternTile>(tile);
        PageBitmap page(PixelFormat::Gray8, width, 1, {});
        Painter(page).fillRect(page.bounds(), state);
        for (int x = 0; x < width; ++x)
            ASSERT_EQ(page.row(0)[x], tile.pixels[static_cast<std::size_t>(x % tileWidth)] ? 255 : 0) << x;
    }
}

} // namespace
