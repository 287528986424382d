#include "quillrip/pclxl/raster_pattern.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace quillrip::pclxl {

namespace {

constexpr int kMaxRepeats = 16;
constexpr double kMaxAveragedPixels = 1 << 22;

/// How many tiles of `length` pixels (not whole) make a whole number of pixels, nearly.
int repeatsFor(double length)
{
    int best = 1;
    double bestError = 1;
    for (int n = 1; n <= kMaxRepeats; ++n) {
        const double total = length * n;
        if (total > 2048 && n > 1)
            break;
        // The error of the period, in pixels a tile.
        const double error = total < 0.5 ? 1 : std::abs(total - std::round(total)) / n;
        if (error < bestError - 1e-6) {
            best = n;
            bestError = error;
        }
    }
    return best;
}

/// For each of `count` device pixels, which source pixels (of a row that repeats) it covers, with their weights.
struct Share {
    int index;
    double weight;
};

std::vector<std::vector<Share>> sharesOf(int count, int sourceCount, int repeats)
{
    const double step = static_cast<double>(sourceCount) * repeats / count;
    std::vector<std::vector<Share>> shares(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        std::vector<Share>& share = shares[static_cast<std::size_t>(i)];
        const double from = i * step;
        const double to = (i + 1) * step;
        if (step <= 1) { // enlarging: the pixel at the centre
            share.push_back({ static_cast<int>((from + to) / 2) % sourceCount, 1 });
            continue;
        }
        for (int s = static_cast<int>(from); s < to - 1e-9; ++s) {
            const double weight = std::min(to, s + 1.0) - std::max(from, static_cast<double>(s));
            if (weight > 1e-9)
                share.push_back({ s % sourceCount, weight / step });
        }
    }
    return shares;
}

/// The light of one channel of a source pixel, 0 to 255.
double lightOf(const PatternTile& tile, int x, int y, int channel)
{
    const std::size_t at
        = static_cast<std::size_t>(y) * static_cast<std::size_t>(tile.width) + static_cast<std::size_t>(x);
    if (tile.isColor)
        return tile.pixels[at * 3 + static_cast<std::size_t>(channel)];
    return tile.pixels[at] ? 0 : 255;
}

} // namespace

DeviceTile deviceTileOf(
    const RasterPattern& pattern, Point origin, Point size, const Matrix& userToDevice, std::size_t maxBytes)
{
    const Point first = userToDevice.apply(origin);
    const Point across = userToDevice.applyVector({ size.x, 0 });
    const Point down = userToDevice.applyVector({ 0, size.y });
    // The tile's own x axis may run along the device's y axis.
    const bool isTurned = std::abs(across.y) > std::abs(across.x);
    const double width = isTurned ? std::abs(across.y) : std::abs(across.x);
    const double height = isTurned ? std::abs(down.x) : std::abs(down.y);
    const PatternTile& source = pattern.tile;
    DeviceTile result;
    if (!(width > 1e-6) || !(height > 1e-6) || source.width < 1 || source.height < 1)
        return result;

    int repeatsX = repeatsFor(width);
    int repeatsY = repeatsFor(height);
    // Large patterns keep their period well enough alone, and averaging them many times over takes long.
    if (static_cast<double>(source.width) * repeatsX * source.height * repeatsY > kMaxAveragedPixels)
        repeatsX = repeatsY = 1;
    const double totalX = std::max(1.0, std::round(width * repeatsX));
    const double totalY = std::max(1.0, std::round(height * repeatsY));
    if (totalX * totalY * 3 > static_cast<double>(maxBytes))
        return result;

    const auto columns = sharesOf(static_cast<int>(totalX), source.width, repeatsX);
    const auto rows = sharesOf(static_cast<int>(totalY), source.height, repeatsY);
    const bool isExact = totalX >= source.width * repeatsX && totalY >= source.height * repeatsY;
    PatternTile tile;
    tile.width = static_cast<int>(totalX);
    tile.height = static_cast<int>(totalY);
    tile.isColor = source.isColor || !isExact;
    tile.pixels.reserve(columns.size() * rows.size() * (tile.isColor ? 3 : 1));
    for (const auto& row : rows) {
        for (const auto& column : columns) {
            if (!tile.isColor) {
                tile.pixels.push_back(
                    source.pixels[static_cast<std::size_t>(row[0].index) * static_cast<std::size_t>(source.width)
                        + static_cast<std::size_t>(column[0].index)]);
                continue;
            }
            for (int channel = 0; channel < 3; ++channel) {
                double light = 0;
                for (const Share& y : row)
                    for (const Share& x : column)
                        light += lightOf(source, x.index, y.index, channel) * x.weight * y.weight;
                tile.pixels.push_back(static_cast<std::uint8_t>(std::lround(light)));
            }
        }
    }

    // User axes to device axes by quarter turns; the tile starts at whichever corner then comes first.
    int turns = 0;
    if (isTurned)
        turns = across.y > 0 ? 1 : 3;
    else
        turns = across.x < 0 ? 2 : 0;
    const double originX = std::min({ first.x, first.x + across.x + down.x });
    const double originY = std::min({ first.y, first.y + across.y + down.y });
    // Of a tile several repeats large the origin is any repeat's corner.
    result.originX = static_cast<int>(std::floor(std::clamp(originX, -1e9, 1e9) + 0.5));
    result.originY = static_cast<int>(std::floor(std::clamp(originY, -1e9, 1e9) + 0.5));
    result.tile = std::make_shared<const PatternTile>(turns == 0 ? std::move(tile) : tile.turned(turns));
    return result;
}

} // namespace quillrip::pclxl
