#include "quillrip/raster/compose/area_patterns.h"

#include <array>
#include <cstdint>

namespace quillrip {

namespace {

struct Bitmap {
    int size; ///< width and height
    std::array<std::uint16_t, 16> rows; ///< the first pixel in the highest of `size` bits
};

PatternTile tileOf(const Bitmap& bitmap)
{
    PatternTile tile;
    tile.width = tile.height = bitmap.size;
    tile.pixels.reserve(static_cast<std::size_t>(bitmap.size) * static_cast<std::size_t>(bitmap.size));
    for (int y = 0; y < bitmap.size; ++y) {
        const unsigned row = bitmap.rows[static_cast<std::size_t>(y)];
        for (int x = bitmap.size - 1; x >= 0; --x)
            tile.pixels.push_back(static_cast<std::uint8_t>(row >> x & 1));
    }
    return tile;
}

struct ShadingLevel {
    int upTo; ///< percent
    Bitmap bitmap;
};

const std::array<ShadingLevel, 8> kShadings { {
    { 2, { 16, { 0x8080, 0, 0, 0, 0, 0, 0, 0, 0x0808, 0, 0, 0, 0, 0, 0, 0 } } },
    { 10, { 8, { 0x88, 0, 0, 0, 0x22, 0, 0, 0 } } },
    { 20, { 8, { 0x88, 0, 0x22, 0, 0x88, 0, 0x22, 0 } } },
    { 35, { 8, { 0x88, 0x22, 0x88, 0x22, 0x88, 0x22, 0x88, 0x22 } } },
    { 55, { 8, { 0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55 } } },
    { 80, { 8, { 0xEE, 0x55, 0xBB, 0x55, 0xEE, 0x55, 0xBB, 0x55 } } },
    { 99, { 8, { 0x77, 0xFF, 0xDD, 0xFF, 0x77, 0xFF, 0xDD, 0xFF } } },
    { 100, { 8, { 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF } } },
} };

bool hatchHasInk(int number, int column, int row)
{
    switch (number) {
    case 1:
        return row == 3 || row == 4;
    case 2:
        return column == 3 || column == 4;
    case 3:
        return column == 15 - row || column == ((14 - row) & 15);
    case 4:
        return column == row || column == ((row + 1) & 15);
    case 5:
        return hatchHasInk(1, column, row) || hatchHasInk(2, column, row);
    default:
        return hatchHasInk(3, column, row) || hatchHasInk(4, column, row);
    }
}

} // namespace

PatternTile shadingTile(int percent)
{
    if (percent < 1)
        return {};
    for (const ShadingLevel& level : kShadings) {
        if (percent <= level.upTo)
            return tileOf(level.bitmap);
    }
    return tileOf(kShadings.back().bitmap);
}

PatternTile hatchTile(int number)
{
    if (number < 1 || number > 6)
        return {};
    PatternTile tile;
    tile.width = tile.height = 16;
    for (int row = 0; row < 16; ++row) {
        for (int column = 0; column < 16; ++column)
            tile.pixels.push_back(hatchHasInk(number, column, row) ? 1 : 0);
    }
    return tile;
}

} // namespace quillrip
