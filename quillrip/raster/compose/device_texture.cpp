#include "quillrip/raster/compose/device_texture.h"

#include "quillrip/raster/compose/bit_words.h"

namespace quillrip {

namespace {

int floorMod(std::int64_t value, int modulus)
{
    const auto rest = static_cast<int>(value % modulus);
    return rest < 0 ? rest + modulus : rest;
}

bool isUsable(const PatternTile* tile)
{
    if (!tile || tile->width < 1 || tile->height < 1)
        return false;
    const std::size_t bytesPerPixel = tile->isColor ? 3 : 1;
    return tile->pixels.size() / bytesPerPixel / static_cast<std::size_t>(tile->width)
        >= static_cast<std::size_t>(tile->height);
}

} // namespace

Ink inkOf(Rgb color, PixelFormat format)
{
    const auto complement = [](unsigned light) { return static_cast<std::uint8_t>(255 - light); };
    if (format == PixelFormat::Rgb24)
        return { complement(color.red), complement(color.green), complement(color.blue) };
    const std::uint8_t ink = complement(luminance(color));
    return { ink, ink, ink };
}

DeviceTexture::DeviceTexture(const Texture& texture, PixelFormat format)
    : m_texture(texture)
    , m_format(format)
    , m_tile(isUsable(texture.tile.get()) ? texture.tile.get() : nullptr)
    , m_ink(inkOf(texture.color, format))
{
    if (format != PixelFormat::Bilevel)
        return;
    if (m_ink[0] == 255)
        m_dots.fill(kAllBits);
    for (int y = 0; y < kScreenSize && m_ink[0] > 0 && m_ink[0] < 255; ++y) {
        const std::uint8_t* thresholds = screenRow(y);
        std::uint64_t dots = 0;
        for (int x = 0; x < kScreenSize; ++x)
            dots = dots << 1 | static_cast<std::uint64_t>(m_ink[0] > thresholds[x]);
        m_dots[static_cast<std::size_t>(y)] = dots;
    }
    if (!m_tile || m_tile->isColor)
        return;
    const auto width = static_cast<std::size_t>(m_tile->width);
    m_tileBitsStride = (width + 63 + 7) / 8 + 9;
    m_tileBits.resize(m_tileBitsStride * static_cast<std::size_t>(m_tile->height));
    for (int y = 0; y < m_tile->height; ++y) {
        const std::uint8_t* pixels = m_tile->pixels.data() + static_cast<std::size_t>(y) * width;
        std::uint8_t* bits = m_tileBits.data() + static_cast<std::size_t>(y) * m_tileBitsStride;
        std::size_t column = 0;
        for (std::size_t x = 0; x < width + 63; ++x) {
            if (pixels[column])
                bits[x / 8] = static_cast<std::uint8_t>(bits[x / 8] | 0x80 >> (x % 8));
            column = column + 1 == width ? 0 : column + 1;
        }
    }
}

bool DeviceTexture::isFor(const Texture& texture) const
{
    return texture.color == m_texture.color && texture.tile == m_texture.tile && texture.originX == m_texture.originX
        && texture.originY == m_texture.originY;
}

const std::uint8_t* DeviceTexture::tileRow(int y) const
{
    const int row = floorMod(std::int64_t { y } - m_texture.originY, m_tile->height);
    const std::size_t bytesPerPixel = m_tile->isColor ? 3 : 1;
    return m_tile->pixels.data()
        + static_cast<std::size_t>(row) * static_cast<std::size_t>(m_tile->width) * bytesPerPixel;
}

int DeviceTexture::tileColumn(std::int64_t x) const { return floorMod(x - m_texture.originX, m_tile->width); }

std::uint64_t DeviceTexture::monoTileWord(int y, int word) const
{
    const int row = floorMod(std::int64_t { y } - m_texture.originY, m_tile->height);
    const int column = tileColumn(std::int64_t { word } * 64);
    const std::uint8_t* at
        = m_tileBits.data() + static_cast<std::size_t>(row) * m_tileBitsStride + static_cast<std::size_t>(column) / 8;
    const auto shift = static_cast<unsigned>(column) % 8;
    const std::uint64_t first = loadWord(at);
    return shift == 0 ? first : first << shift | at[8] >> (8 - shift);
}

DeviceTexture::Words DeviceTexture::colorTileWords(int y, int word) const
{
    const std::uint8_t* row = tileRow(y);
    const std::uint8_t* thresholds = screenRow(y);
    int column = tileColumn(std::int64_t { word } * 64);
    Words words { 0, 0 };
    for (int x = 0; x < 64; ++x) {
        const std::uint8_t* light = row + 3 * column;
        const Ink ink = inkOf({ light[0], light[1], light[2] }, PixelFormat::Bilevel);
        const bool isWhite = light[0] == 255 && light[1] == 255 && light[2] == 255;
        words.ink = words.ink << 1 | static_cast<std::uint64_t>(ink[0] > thresholds[x]);
        words.opaque = words.opaque << 1 | static_cast<std::uint64_t>(!isWhite);
        column = column + 1 == m_tile->width ? 0 : column + 1;
    }
    return words;
}

void DeviceTexture::gather(int y, int x, int count, std::uint8_t* ink, std::uint8_t* opaque) const
{
    const std::size_t channels = m_format == PixelFormat::Rgb24 ? 3 : 1;
    if (!m_tile) {
        for (int i = 0; i < count; ++i) {
            for (std::size_t channel = 0; channel < channels; ++channel)
                *ink++ = m_ink[channel];
        }
        std::memset(opaque, 255, static_cast<std::size_t>(count));
        return;
    }
    const std::uint8_t* row = tileRow(y);
    int column = tileColumn(x);
    for (int i = 0; i < count; ++i) {
        Ink pixel {};
        bool isOpaque = true;
        if (m_tile->isColor) {
            const std::uint8_t* light = row + 3 * column;
            pixel = inkOf({ light[0], light[1], light[2] }, m_format);
            isOpaque = light[0] != 255 || light[1] != 255 || light[2] != 255;
        } else {
            isOpaque = row[column] != 0;
            if (isOpaque)
                pixel = m_ink;
        }
        for (std::size_t channel = 0; channel < channels; ++channel)
            *ink++ = pixel[channel];
        *opaque++ = isOpaque ? 255 : 0;
        column = column + 1 == m_tile->width ? 0 : column + 1;
    }
}

} // namespace quillrip
