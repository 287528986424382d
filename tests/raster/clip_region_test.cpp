#include "quillrip/raster/scan/clip_region.h"

#include "quillrip/raster/painter.h"
#include "tests/support/text_art.h"

#include <gtest/gtest.h>

using namespace quillrip;

namespace {

constexpr PixelRect kPage { 0, 0, 6, 4 };

std::string shown(const std::shared_ptr<const ClipRegion>& clip)
{
    PageBitmap page(PixelFormat::Bilevel, kPage.width(), kPage.height(), {});
    PaintState state;
    state.clip = clip;
    Painter(page).fillRect({ -5, -5, 50, 50 }, state);
    return test::textArt(page);
}

std::shared_ptr<const ClipRegion> frame()
{
    Path path;
    path.rectangle(0, 0, 6, 4);
    path.rectangle(2, 1, 4, 3);
    return ClipRegion::ofPath(path, FillRule::EvenOdd, kPage);
}

} // namespace

TEST(ClipRegion, RectangleCutsWhatIsOutside)
{
    EXPECT_EQ(shown(ClipRegion::ofRect({ 1, 1, 3, 90 })), "......\n.##...\n.##...\n.##...\n");
}

TEST(ClipRegion, PathMayHaveHoles) { EXPECT_EQ(shown(frame()), "######\n##..##\n##..##\n######\n"); }

TEST(ClipRegion, ComplementIsWhatTheRegionLeaves)
{
    EXPECT_EQ(shown(frame()->complement(kPage)), "......\n..##..\n..##..\n......\n");
    EXPECT_EQ(
        shown(ClipRegion::ofRect({ 1, 1, 3, 3 })->complement({ 0, 0, 5, 4 })), "#####.\n#..##.\n#..##.\n#####.\n");
}

TEST(ClipRegion, IntersectionIsInBoth)
{
    EXPECT_EQ(shown(frame()->intersected(*ClipRegion::ofRect({ 1, 1, 5, 4 }))), "......\n.#..#.\n.#..#.\n.####.\n");
    EXPECT_EQ(shown(frame()->intersected(*frame()->complement(kPage))), "......\n......\n......\n......\n");
}

TEST(ClipRegion, UnionDifferenceAndExclusive)
{
    const auto corner = ClipRegion::ofRect({ 0, 0, 3, 2 });
    EXPECT_EQ(shown(corner->united(*ClipRegion::ofRect({ 2, 1, 5, 3 }))), "###...\n#####.\n..###.\n......\n");
    EXPECT_EQ(shown(corner->exclusive(*ClipRegion::ofRect({ 2, 1, 5, 3 }))), "###...\n##.##.\n..###.\n......\n");
    EXPECT_EQ(shown(corner->subtracted(*ClipRegion::ofRect({ 2, 1, 5, 3 }))), "###...\n##....\n......\n......\n");
    EXPECT_EQ(shown(frame()->subtracted(*corner)), "...###\n....##\n##..##\n######\n");
    EXPECT_EQ(shown(corner->united(*ClipRegion::ofRect({}))), shown(corner));
    EXPECT_EQ(shown(ClipRegion::ofRect({})->exclusive(*corner)), shown(corner));
    // Regions that meet join without a seam.
    const auto joined = corner->united(*ClipRegion::ofRect({ 3, 0, 6, 2 }));
    EXPECT_EQ(joined->end(0) - joined->begin(0), 1);
}

TEST(ClipRegion, BitsAndMoves)
{
    const std::uint8_t bits[] = { 0xB0, 0x40 };
    const auto region = ClipRegion::ofBits(bits, 1, { 1, 1, 5, 3 });
    EXPECT_EQ(shown(region), "......\n.#.##.\n..#...\n......\n");
    EXPECT_EQ(shown(region->moved(-2, 1)), "......\n......\n.##...\n#.....\n");
    EXPECT_TRUE(region->contains(1, 1));
    EXPECT_FALSE(region->contains(2, 1));
    EXPECT_FALSE(region->contains(1, 9));
    EXPECT_TRUE(region->moved(INT32_MAX, 0)->bounds().empty());
}

namespace {

constexpr PixelRect kDisc { 0, 0, 24, 24 };

std::shared_ptr<const ClipRegion> softDisc()
{
    Path path;
    path.arc({ 12.3, 11.8 }, 9.7, 9.7, 0, 7, true);
    return ClipRegion::ofPath(path, FillRule::NonZero, kDisc, nullptr, ClipEdges::Soft);
}

PageBitmap clipped(PixelFormat format, const std::vector<std::shared_ptr<const ClipRegion>>& clips, int rop = 252)
{
    PageBitmap page(format, kDisc.width(), kDisc.height(), {});
    for (const auto& clip : clips) {
        PaintState state;
        state.rop = static_cast<std::uint8_t>(rop);
        state.clip = clip;
        Painter(page).fillRect(kDisc, state);
    }
    return page;
}

int greyPixels(const PageBitmap& page)
{
    int count = 0;
    for (int y = 0; y < page.height(); ++y) {
        for (int x = 0; x < page.width(); ++x)
            count += page.pixel(x, y).red > 0 && page.pixel(x, y).red < 255;
    }
    return count;
}

} // namespace

TEST(SoftClip, FadesOutInGreyAndRgb)
{
    for (const PixelFormat format : { PixelFormat::Gray8, PixelFormat::Rgb24 }) {
        const PageBitmap page = clipped(format, { softDisc() });
        EXPECT_GT(greyPixels(page), 20);
        EXPECT_EQ(page.pixel(12, 12).red, 0);
        EXPECT_EQ(page.pixel(0, 0).red, 255);
    }
    EXPECT_EQ(greyPixels(clipped(PixelFormat::Gray8, { ClipRegion::ofPath({}, FillRule::NonZero, kDisc) })), 0);
}

TEST(SoftClip, NeighboursLeaveNoSeam)
{
    const auto disc = softDisc();
    const auto rest = disc->complement(kDisc);
    for (const auto& order : { std::vector { disc, rest }, std::vector { rest, disc } }) {
        const PageBitmap page = clipped(PixelFormat::Rgb24, order);
        EXPECT_EQ(test::blackPixelCount(page), static_cast<std::size_t>(24 * 24));
        EXPECT_EQ(greyPixels(page), 0);
    }
}

TEST(SoftClip, TurnsNothingRoundInPart)
{
    EXPECT_EQ(greyPixels(clipped(PixelFormat::Gray8, { softDisc() }, 85)), 0);
    EXPECT_EQ(greyPixels(clipped(PixelFormat::Bilevel, { softDisc() })), 0);
}

TEST(SoftClip, SharesOfCrossingEdgesMultiply)
{
    Path left;
    left.rectangle(-5, -5, 3.4, 30);
    Path upper;
    upper.rectangle(-5, -5, 30, 2.4);
    const auto a = ClipRegion::ofPath(left, FillRule::NonZero, kDisc, nullptr, ClipEdges::Soft);
    const auto b = ClipRegion::ofPath(upper, FillRule::NonZero, kDisc, nullptr, ClipEdges::Soft);
    const PageBitmap page = clipped(PixelFormat::Gray8, { a->intersected(*b) });
    EXPECT_EQ(page.pixel(2, 1).red, 0);
    EXPECT_NEAR(page.pixel(3, 1).red, 255 * 0.2, 2); // 0.4 of the pixel is inside: it takes twice that
    EXPECT_NEAR(page.pixel(3, 2).red, 255 * (1 - 2 * 0.16), 3);
    EXPECT_EQ(page.pixel(4, 2).red, 255);
    const auto moved = a->intersected(*b)->moved(4, 3);
    EXPECT_EQ(clipped(PixelFormat::Gray8, { moved }).pixel(7, 5).red, page.pixel(3, 2).red);
}

TEST(ClipRegion, EmptyPathHidesAll)
{
    EXPECT_EQ(shown(ClipRegion::ofPath({}, FillRule::NonZero, kPage)), "......\n......\n......\n......\n");
}

TEST(ClipRegion, OnlyRowsAndColumnsInsideAreTouched)
{
    PageBitmap page(PixelFormat::Gray8, 20, 3, {});
    PaintState state;
    state.clip = ClipRegion::ofRect({ 4, 1, 9, 2 });
    Painter(page).fillRect(page.bounds(), state);
    EXPECT_TRUE(page.extent(0).empty());
    EXPECT_EQ(page.extent(1).left, 4);
    EXPECT_EQ(page.extent(1).right, 9);
    EXPECT_TRUE(page.extent(2).empty());
}
