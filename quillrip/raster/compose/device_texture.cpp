#include "quillrip/raster/compose/device_texture.h"

#include "quillrip/raster/compose/bit_words.h"
#include "quillrip/raster/compose/color_source.h"
#include "quillrip/raster/compose/mixing.h"

#include <algorithm>
#include <cstring>

namespace quillrip {

namespace {

/// Converted rows of a tile that are kept.
constexpr std::size_t kMostTileBytes = std::size_t { 2 } << 20;

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

/// Repeats the first `period` bytes until there are `count`.
void repeat(std::uint8_t* bytes, std::size_t period, std::size_t count)
{
    for (std::size_t filled = period; filled < count;) {
        const std::size_t more = std::min(filled, count - filled);
        std::memcpy(bytes + filled, bytes, more);
        filled += more;
    }
}

/// `count` bytes of a row that repeats itself, from byte `start` on.
void copyRepeated(const std::vector<std::uint8_t>& row, std::size_t start, std::size_t count, std::uint8_t* to)
{
    const std::size_t first = std::min(count, row.size() - start);
    std::memcpy(to, row.data() + start, first);
    if (first == count)
        return;
    const std::size_t second = std::min(count - first, start);
    std::memcpy(to + first, row.data(), second);
    repeat(to, row.size(), count);
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
    , m_tile(!texture.colors && isUsable(texture.tile.get()) ? texture.tile.get() : nullptr)
    , m_channels(format == PixelFormat::Rgb24 ? 3 : 1)
    , m_ink(inkOf(texture.color, format))
{
    if (m_tile) {
        const std::size_t rowBytes = static_cast<std::size_t>(m_tile->width) * m_channels * 2;
        const std::size_t mostRows = std::max<std::size_t>(1, kMostTileBytes / rowBytes);
        m_tileRows.resize(std::min(mostRows, static_cast<std::size_t>(m_tile->height)));
    }
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

bool DeviceTexture::isFor(const Texture& texture) const { return texture == m_texture; }

const DeviceTexture::TileRow& DeviceTexture::tileRow(int y) const
{
    const int index = floorMod(std::int64_t { y } - m_texture.originY, m_tile->height);
    TileRow& row = m_tileRows[static_cast<std::size_t>(index) % m_tileRows.size()];
    if (row.index == index)
        return row;
    const auto width = static_cast<std::size_t>(m_tile->width);
    row.index = index;
    row.ink.clear();
    row.opaque.clear();
    row.ink.reserve(width * m_channels);
    row.opaque.reserve(width * m_channels);
    const std::uint8_t* pixel
        = m_tile->pixels.data() + static_cast<std::size_t>(index) * width * (m_tile->isColor ? 3 : 1);
    for (std::size_t x = 0; x < width; ++x) {
        Ink ink {};
        bool isOpaque = true;
        if (m_tile->isColor) {
            ink = inkOf({ pixel[0], pixel[1], pixel[2] }, m_format);
            isOpaque = pixel[0] != 255 || pixel[1] != 255 || pixel[2] != 255;
            pixel += 3;
        } else {
            isOpaque = *pixel++ != 0;
            if (isOpaque)
                ink = m_ink;
        }
        row.ink.insert(row.ink.end(), ink.begin(), ink.begin() + static_cast<std::ptrdiff_t>(m_channels));
        row.opaque.insert(row.opaque.end(), m_channels, isOpaque ? 255 : 0);
    }
    return row;
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

DeviceTexture::Words DeviceTexture::toneWords(int y, int word) const
{
    std::uint8_t tones[64];
    std::uint8_t opaque[64];
    std::uint8_t alpha[64];
    gather(y, word * 64, 64, tones, opaque, alpha);
    const std::uint8_t* thresholds = screenRow(y);
    for (int x = 0; x < 64; ++x) {
        tones[x] = tones[x] > thresholds[x];
        opaque[x] &= 1;
    }
    return { packFlags(tones), packFlags(opaque) };
}

DeviceTexture::MixedWords DeviceTexture::mixedWords(int y, int word, std::uint8_t opacity) const
{
    std::uint8_t tones[64];
    std::uint8_t opaque[64];
    std::uint8_t alpha[64];
    gather(y, word * 64, 64, tones, opaque, alpha);
    if (!hasAlpha())
        std::memset(alpha, 255, sizeof alpha);
    for (std::uint8_t& share : alpha)
        share = mixed(0, share, opacity);
    MixedWords words {};
    words.covered = screenMixed(screenRow(y), tones, alpha);
    for (std::uint8_t& flag : opaque)
        flag &= 1;
    words.ink = packFlags(tones);
    words.opaque = packFlags(opaque);
    return words;
}

std::uint64_t screenMixed(const std::uint8_t* thresholds, std::uint8_t* tones, const std::uint8_t* alpha)
{
    std::uint8_t covered[64];
    for (int x = 0; x < 64; ++x) {
        const unsigned ink = mixed(0, tones[x], alpha[x]);
        const unsigned white = alpha[x] - ink;
        tones[x] = ink > thresholds[x];
        covered[x] = tones[x] != 0 || white > 254u - thresholds[x];
    }
    return packFlags(covered);
}

void DeviceTexture::gather(int y, int x, int count, std::uint8_t* ink, std::uint8_t* opaque, std::uint8_t* alpha) const
{
    const std::size_t bytes = static_cast<std::size_t>(count) * m_channels;
    if (m_tile) {
        const TileRow& row = tileRow(y);
        const std::size_t start = static_cast<std::size_t>(tileColumn(x)) * m_channels;
        copyRepeated(row.ink, start, bytes, ink);
        return copyRepeated(row.opaque, start, bytes, opaque);
    }
    std::memset(opaque, 255, bytes);
    if (m_texture.colors)
        return gatherColors(y, x, count, ink, alpha);
    std::memcpy(ink, m_ink.data(), std::min(bytes, m_channels));
    repeat(ink, m_channels, bytes);
}

void DeviceTexture::gatherColors(int y, int x, int count, std::uint8_t* ink, std::uint8_t* alpha) const
{
    constexpr int chunk = 256;
    Rgba colors[chunk];
    for (int from = 0; from < count; from += chunk) {
        const int part = std::min(chunk, count - from);
        m_texture.colors->row(y, x + from, x + from + part, colors);
        for (int i = 0; i < part; ++i) {
            const Ink pixel = inkOf({ colors[i].red, colors[i].green, colors[i].blue }, m_format);
            for (std::size_t channel = 0; channel < m_channels; ++channel)
                *ink++ = pixel[channel];
            *alpha++ = colors[i].alpha;
        }
    }
}

} // namespace quillrip
