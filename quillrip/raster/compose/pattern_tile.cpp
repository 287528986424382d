#include "quillrip/raster/compose/paint_state.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace quillrip {

namespace {

/// No tile grows beyond what any page has room for.
constexpr double kLargestSide = 1 << 15;
constexpr std::size_t kMostPixels = std::size_t { 1 } << 26;

std::size_t pixelBytes(const PatternTile& tile) { return tile.isColor ? 3 : 1; }

bool isComplete(const PatternTile& tile)
{
    if (tile.width < 1 || tile.height < 1)
        return false;
    return tile.pixels.size() / pixelBytes(tile) / static_cast<std::size_t>(tile.width)
        >= static_cast<std::size_t>(tile.height);
}

int scaledSide(int side, double factor)
{
    const double scaled = std::floor(side * factor + 0.5);
    return scaled >= 1 ? static_cast<int>(std::min(scaled, kLargestSide)) : 1;
}

} // namespace

PatternTile PatternTile::scaled(double factorX, double factorY) const
{
    if (!isComplete(*this))
        return *this;
    PatternTile result;
    result.isColor = isColor;
    result.width = scaledSide(width, factorX);
    result.height = scaledSide(height, factorY);
    if (static_cast<std::size_t>(result.width) * static_cast<std::size_t>(result.height) > kMostPixels)
        return *this;
    const std::size_t bytesPerPixel = pixelBytes(*this);
    result.pixels.reserve(
        static_cast<std::size_t>(result.width) * static_cast<std::size_t>(result.height) * bytesPerPixel);
    for (int y = 0; y < result.height; ++y) {
        const std::int64_t sourceY = std::int64_t { y } * height / result.height;
        for (int x = 0; x < result.width; ++x) {
            const std::int64_t sourceX = std::int64_t { x } * width / result.width;
            const auto at = pixels.begin() + (sourceY * width + sourceX) * static_cast<std::int64_t>(bytesPerPixel);
            result.pixels.insert(result.pixels.end(), at, at + static_cast<std::ptrdiff_t>(bytesPerPixel));
        }
    }
    return result;
}

PatternTile PatternTile::turned(int quarterTurns) const
{
    const int turns = quarterTurns & 3;
    if (!isComplete(*this))
        return *this;
    PatternTile result;
    result.isColor = isColor;
    result.width = turns % 2 == 0 ? width : height;
    result.height = turns % 2 == 0 ? height : width;
    const std::size_t bytesPerPixel = pixelBytes(*this);
    result.pixels.reserve(pixels.size());
    for (int y = 0; y < result.height; ++y) {
        for (int x = 0; x < result.width; ++x) {
            // Where the pixel came from: +x goes to +y with each turn.
            const int sourceX = turns == 0 ? x : turns == 1 ? y : turns == 2 ? width - 1 - x : width - 1 - y;
            const int sourceY = turns == 0 ? y : turns == 1 ? height - 1 - x : turns == 2 ? height - 1 - y : x;
            const auto at = pixels.begin()
                + (std::int64_t { sourceY } * width + sourceX) * static_cast<std::int64_t>(bytesPerPixel);
            result.pixels.insert(result.pixels.end(), at, at + static_cast<std::ptrdiff_t>(bytesPerPixel));
        }
    }
    return result;
}

} // namespace quillrip
