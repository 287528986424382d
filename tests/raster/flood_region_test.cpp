#include "quillrip/raster/scan/flood_region.h"

#include "quillrip/raster/painter.h"
#include "tests/support/text_art.h"

#include <gtest/gtest.h>

using namespace quillrip;

namespace {

constexpr Rgb kWhitePaper { 255, 255, 255 };
constexpr Rgb kBlackInk { 0, 0, 0 };

/// A box whose wall has a corner that only a diagonal step would pass.
PageBitmap boxPage(PixelFormat format)
{
    PageBitmap page(format, 7, 5, {});
    Painter painter(page);
    painter.fillRect({ 1, 0, 5, 1 }, {});
    painter.fillRect({ 1, 4, 6, 5 }, {});
    painter.fillRect({ 1, 0, 2, 5 }, {});
    painter.fillRect({ 5, 1, 6, 4 }, {});
    return page;
}

std::string flooded(PageBitmap page, int x, int y, Rgb color, FloodRule rule)
{
    PaintState state;
    state.clip = floodRegion(page, x, y, color, rule, page.bounds());
    PageBitmap result(PixelFormat::Bilevel, page.width(), page.height(), {});
    Painter(result).fillRect(result.bounds(), state);
    return test::textArt(result);
}

} // namespace

TEST(FloodRegion, SpreadsOverNeighboursOfOneColour)
{
    const char* inside = ".......\n..###..\n..###..\n..###..\n.......\n";
    for (const PixelFormat format : { PixelFormat::Bilevel, PixelFormat::Gray8, PixelFormat::Rgb24 }) {
        EXPECT_EQ(flooded(boxPage(format), 3, 2, kWhitePaper, FloodRule::WhileEqual), inside);
        EXPECT_EQ(flooded(boxPage(format), 3, 2, kBlackInk, FloodRule::UntilEqual), inside);
    }
    EXPECT_EQ(flooded(boxPage(PixelFormat::Gray8), 0, 0, kWhitePaper, FloodRule::WhileEqual),
        "#......\n#......\n#......\n#......\n#......\n");
}

TEST(FloodRegion, StartsOnlyWhereItMay)
{
    const char* nothing = ".......\n.......\n.......\n.......\n.......\n";
    EXPECT_EQ(flooded(boxPage(PixelFormat::Rgb24), 1, 1, kWhitePaper, FloodRule::WhileEqual), nothing);
    EXPECT_EQ(flooded(boxPage(PixelFormat::Rgb24), 1, 1, kBlackInk, FloodRule::UntilEqual), nothing);
    EXPECT_EQ(flooded(boxPage(PixelFormat::Rgb24), -1, 99, kWhitePaper, FloodRule::WhileEqual), nothing);
}
