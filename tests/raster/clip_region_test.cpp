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
