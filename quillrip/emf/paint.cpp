#include "quillrip/emf/paint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>

namespace quillrip::emf {

namespace {

constexpr std::uint8_t kTextureOperation = 0xF0;
/// Texture or source: the same as the texture alone where sources are black, and the painter's own default.
constexpr std::uint8_t kCopyInk = 252;

constexpr int kHatchSide = 8;
// Rows from the top, highest bit on the left: horizontal, vertical, falling, rising, cross, diagonal cross.
constexpr std::array<std::array<std::uint8_t, kHatchSide>, 6> kHatches { {
    { 0x00, 0x00, 0x00, 0xFF, 0x00, 0x00, 0x00, 0x00 },
    { 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08 },
    { 0x80, 0x40, 0x20, 0x10, 0x08, 0x04, 0x02, 0x01 },
    { 0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80 },
    { 0x08, 0x08, 0x08, 0xFF, 0x08, 0x08, 0x08, 0x08 },
    { 0x81, 0x42, 0x24, 0x18, 0x18, 0x24, 0x42, 0x81 },
} };
// Numbers that mean a colour instead of lines.
constexpr std::uint32_t kHatchTextColor = 8;
constexpr std::uint32_t kHatchBackground = 10;
constexpr std::uint32_t kHatchEnd = 12;

// Lines of the pattern where `isOpaque` is false; else both colours.
PatternTile hatchTileOf(std::uint32_t hatch, bool isOpaque, Rgb color, Rgb background)
{
    PatternTile tile;
    tile.width = tile.height = kHatchSide;
    tile.isColor = isOpaque;
    for (const std::uint8_t row : kHatches[hatch]) {
        for (int x = 0; x < kHatchSide; ++x) {
            const bool isSet = (row >> (kHatchSide - 1 - x) & 1) != 0;
            if (!isOpaque) {
                tile.pixels.push_back(isSet ? 1 : 0);
                continue;
            }
            const Rgb pixel = isSet ? color : background;
            tile.pixels.insert(tile.pixels.end(), { pixel.red, pixel.green, pixel.blue });
        }
    }
    return tile;
}

PatternTile pictureTile(const Pattern& pattern, Rgb text, Rgb background)
{
    PictureShape shape = pattern.pixels;
    if (pattern.takesTextColors)
        shape.table = { text, background };
    PatternTile tile;
    tile.width = shape.width;
    tile.height = shape.height;
    tile.isColor = true;
    tile.pixels.reserve(static_cast<std::size_t>(shape.width) * static_cast<std::size_t>(shape.height) * 3);
    for (int y = 0; y < shape.height; ++y) {
        for (int x = 0; x < shape.width; ++x) {
            const Rgb pixel = shape.color(pattern.pixels.row(y), x);
            tile.pixels.insert(tile.pixels.end(), { pixel.red, pixel.green, pixel.blue });
        }
    }
    return tile;
}

} // namespace

std::uint8_t operationOfRop2(std::uint32_t rop2)
{
    if (rop2 < 1 || rop2 > 16)
        return kTextureOperation;
    const unsigned table = rop2 - 1;
    return static_cast<std::uint8_t>((((table >> 2) * 5) << 4) | ((table & 3) * 5));
}

Rgb colorOf(std::uint32_t colorReference, const DeviceContext& dc)
{
    constexpr std::uint32_t kPaletteIndex = 1;
    if (colorReference >> 24 == kPaletteIndex) {
        const Palette* palette = dc.palette ? std::get_if<Palette>(dc.palette.get()) : nullptr;
        if (!palette || palette->entries.empty())
            return {};
        return palette->entries[(colorReference & 0xFFFF) % palette->entries.size()];
    }
    return { static_cast<std::uint8_t>(colorReference), static_cast<std::uint8_t>(colorReference >> 8),
        static_cast<std::uint8_t>(colorReference >> 16) };
}

PaintState PaintMaker::solid(Rgb color)
{
    PaintState state;
    state.rop = kCopyInk;
    state.patternTransparent = false;
    state.texture.color = color;
    return state;
}

std::optional<PaintState> PaintMaker::brush(const DeviceContext& dc, const Brush& brush, std::uint8_t operation)
{
    if (brush.style == Brush::Style::Null)
        return std::nullopt;
    PaintState state = solid(colorOf(brush.color, dc));
    if (operation != kTextureOperation)
        state.rop = operation;
    if (brush.style == Brush::Style::Hatched) {
        if (brush.hatch >= kHatchBackground && brush.hatch < kHatchEnd)
            state.texture.color = colorOf(dc.backgroundColor, dc);
        else if (brush.hatch >= kHatchTextColor && brush.hatch < kHatchEnd)
            state.texture.color = colorOf(dc.textColor, dc);
        else if (brush.hatch < kHatches.size())
            setTile(state, dc, brush);
    } else if (brush.style == Brush::Style::Pattern && brush.pattern) {
        setTile(state, dc, brush);
    }
    return state;
}

void PaintMaker::setTile(PaintState& state, const DeviceContext& dc, const Brush& brush)
{
    const bool isHatch = brush.style == Brush::Style::Hatched;
    TileKey key;
    key.pattern = isHatch ? nullptr : brush.pattern.get();
    key.hatch = isHatch ? brush.hatch : 0;
    key.isOpaque = dc.isOpaque;
    key.color = isHatch ? state.texture.color : colorOf(dc.textColor, dc);
    key.background = colorOf(dc.backgroundColor, dc);
    const bool isSame = m_tile && key.pattern == m_key.pattern && key.hatch == m_key.hatch
        && key.isOpaque == m_key.isOpaque && key.color == m_key.color && key.background == m_key.background;
    if (!isSame) {
        const PatternTile tile = isHatch ? hatchTileOf(brush.hatch, dc.isOpaque, key.color, key.background)
                                         : pictureTile(*brush.pattern, key.color, key.background);
        // A pixel of a small pattern stays a dot even where the page has fewer of them than the reference device: a
        // grid below the page's own would show as something else.
        const bool isSmall = tile.width <= kHatchSide && tile.height <= kHatchSide;
        const auto factor = [&](double scale) { return isSmall ? std::max(1.0, std::abs(scale)) : std::abs(scale); };
        m_tile = std::make_shared<PatternTile>(tile.scaled(factor(m_toDevice.a), factor(m_toDevice.d)));
        m_key = key;
        m_keyPattern = isHatch ? nullptr : brush.pattern;
    }
    state.texture.tile = m_tile;
    state.patternTransparent = isHatch && !dc.isOpaque;
    const Point origin = m_toDevice.apply(dc.brushOrigin);
    state.texture.originX = static_cast<int>(std::lround(std::clamp(origin.x, -1e6, 1e6)));
    state.texture.originY = static_cast<int>(std::lround(std::clamp(origin.y, -1e6, 1e6)));
}

} // namespace quillrip::emf
