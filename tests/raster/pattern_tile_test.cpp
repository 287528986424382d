#include "quillrip/raster/compose/paint_state.h"
#include "quillrip/raster/painter.h"
#include "tests/support/text_art.h"

#include <gtest/gtest.h>

using namespace quillrip;

namespace {

PatternTile tileOf(const std::vector<std::string>& rows)
{
    PatternTile tile;
    tile.width = static_cast<int>(rows[0].size());
    tile.height = static_cast<int>(rows.size());
    for (const std::string& row : rows) {
        for (const char pixel : row)
            tile.pixels.push_back(pixel == '#' ? 1 : 0);
    }
    return tile;
}

std::vector<std::string> rowsOf(const PatternTile& tile)
{
    std::vector<std::string> rows;
    for (int y = 0; y < tile.height; ++y) {
        rows.emplace_back();
        for (int x = 0; x < tile.width; ++x)
            rows.back() += tile.pixels[static_cast<std::size_t>(y * tile.width + x)] ? '#' : '.';
    }
    return rows;
}

using Rows = std::vector<std::string>;

} // namespace

TEST(PatternTile, ScalingRepeatsPixels)
{
    EXPECT_EQ(rowsOf(tileOf({ "#.", ".#" }).scaled(2, 1)), (Rows { "##..", "..##" }));
    EXPECT_EQ(rowsOf(tileOf({ "#..", ".#." }).scaled(0.01, 0.01)).size(), 1u);
}

TEST(PatternTile, QuarterTurnsTakeRightToDown)
{
    const PatternTile tile = tileOf({ "##.", "..." });
    EXPECT_EQ(rowsOf(tile.turned(1)), (Rows { ".#", ".#", ".." }));
    EXPECT_EQ(rowsOf(tile.turned(2)), (Rows { "...", ".##" }));
    EXPECT_EQ(rowsOf(tile.turned(3)), (Rows { "..", "#.", "#." }));
    EXPECT_EQ(rowsOf(tile.turned(-3)), rowsOf(tile.turned(1)));
    EXPECT_EQ(rowsOf(tile.turned(4)), rowsOf(tile));
}

TEST(PatternTile, NeighbouringMarksShareTheGridFromAnyOrigin)
{
    PaintState state;
    state.texture.tile = std::make_shared<PatternTile>(tileOf({ "#..", ".#." }));
    state.texture.originX = -7;
    state.texture.originY = -1;
    PageBitmap page(PixelFormat::Bilevel, 9, 3, {});
    Painter painter(page);
    painter.fillRect({ 0, 0, 4, 3 }, state);
    painter.fillRect({ 4, 0, 9, 3 }, state);
    EXPECT_EQ(test::textArt(page), "#..#..#..\n..#..#..#\n#..#..#..\n");
}

TEST(PatternTile, TileWithTooFewPixelsIsSolid)
{
    PaintState state;
    PatternTile broken = tileOf({ "#." });
    broken.height = 100;
    state.texture.tile = std::make_shared<PatternTile>(broken);
    PageBitmap page(PixelFormat::Bilevel, 4, 1, {});
    Painter(page).fillRect(page.bounds(), state);
    EXPECT_EQ(test::textArt(page), "####\n");
}
