#include "quillrip/pcl/raster_layout.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quillrip::pcl {

namespace {

std::size_t packedBytes(int width, int bits)
{
    return (static_cast<std::size_t>(width) * static_cast<std::size_t>(bits) + 7) / 8;
}

unsigned bitAt(const std::vector<std::uint8_t>& plane, std::size_t x) { return (plane[x / 8] >> (7 - x % 8)) & 1u; }

/// What rows and widths count in: whole pixels of the coarsest component, or coarser ones that hold several of its.
double unitOf(double coarsest, double unitResolution)
{
    constexpr double kMost = 8;
    if (unitResolution < 1 || unitResolution >= coarsest)
        return coarsest;
    const double pixels = coarsest / unitResolution;
    return pixels <= kMost && pixels == std::floor(pixels) ? unitResolution : coarsest;
}

void put(std::uint8_t*& out, Rgb color)
{
    *out++ = color.red;
    *out++ = color.green;
    *out++ = color.blue;
}

} // namespace

RasterLayout RasterLayout::forPalette(const Palette& palette, int width, bool isMonochrome)
{
    RasterLayout layout;
    layout.m_width = width;
    layout.m_isMonochrome = isMonochrome;
    layout.m_bits = palette.model().bitsPerIndex;
    const PixelEncoding encoding = palette.model().encoding;
    if (palette.isBlackOnWhite()) {
        layout.m_transfers.push_back({ packedBytes(width, 1), -1 });
        return layout;
    }
    layout.m_format = ImageFormat::Rgb24;
    layout.m_palette = palette;
    layout.m_isSeparable = palette.isSeparable();
    switch (encoding) {
    case PixelEncoding::IndexedByPlane:
    case PixelEncoding::DirectByPlane: {
        const bool isIndexed = encoding == PixelEncoding::IndexedByPlane;
        layout.m_kind = isIndexed ? Kind::IndexedByPlane : Kind::DirectByPlane;
        layout.m_bits = palette.planeCount();
        layout.m_transfers.assign(static_cast<std::size_t>(layout.m_bits), { packedBytes(width, 1), -1 });
        break;
    }
    case PixelEncoding::IndexedByPixel:
        layout.m_kind = Kind::IndexedByPixel;
        layout.m_transfers.push_back({ packedBytes(width, layout.m_bits), -1 });
        break;
    case PixelEncoding::DirectByPixel:
        layout.m_kind = Kind::DirectByPixel;
        layout.m_transfers.push_back({ packedBytes(width, 24), -1 });
        break;
    }
    // One table for all kinds: the colours of indices, of the eight sets of primaries, or of each channel's bytes.
    const std::size_t entries = std::size_t { 1 } << (encoding == PixelEncoding::DirectByPixel ? 8 : layout.m_bits);
    for (std::size_t i = 0; i < entries; ++i) {
        const auto byte = static_cast<std::uint8_t>(i);
        Rgb color;
        if (layout.m_kind == Kind::DirectByPlane) {
            const auto full = [i](int bit) { return static_cast<std::uint8_t>((i >> bit) & 1); };
            color = palette.directColor(full(0), full(1), full(2));
        } else if (layout.m_kind == Kind::DirectByPixel) {
            color = layout.m_isSeparable ? palette.directColor(byte, byte, byte) : Rgb {};
        } else {
            color = palette.color(i);
        }
        const bool mixesChannels = layout.m_kind == Kind::DirectByPixel;
        layout.m_colors.push_back(isMonochrome && !mixesChannels ? grayOf(color) : color);
    }
    const Rgb zero = layout.m_kind == Kind::DirectByPixel ? layout.directColor(0, 0, 0) : layout.m_colors[0];
    layout.m_zeroIsWhite = zero == kWhite;
    return layout;
}

Rgb RasterLayout::directColor(std::uint8_t first, std::uint8_t second, std::uint8_t third) const
{
    const Rgb color = m_isSeparable ? Rgb { m_colors[first].red, m_colors[second].green, m_colors[third].blue }
                                    : m_palette.directColor(first, second, third);
    return m_isMonochrome ? grayOf(color) : color;
}

std::optional<Resolution> RasterLayout::resolutionOf(ByteView componentData, double unitResolution)
{
    ByteReader reader { componentData };
    const int format = reader.readU8().value_or(0);
    int count = reader.readU8().value_or(0);
    if (format == 6)
        count = reader.readU16BigEndian() ? 1 : 0;
    std::optional<Resolution> coarsest;
    // Format 6 gives all its blocks the same resolution.
    for (int i = 0; i < count; ++i) {
        const Resolution resolution { static_cast<double>(reader.readU16BigEndian().value_or(0)),
            static_cast<double>(reader.readU16BigEndian().value_or(0)) };
        reader.skip(2);
        if (resolution.x < 1 || resolution.y < 1)
            return std::nullopt;
        coarsest = coarsest ? Resolution { std::min(coarsest->x, resolution.x), std::min(coarsest->y, resolution.y) }
                            : resolution;
    }
    if (coarsest && format != 6)
        coarsest = Resolution { unitOf(coarsest->x, unitResolution), unitOf(coarsest->y, unitResolution) };
    return coarsest;
}

std::optional<RasterLayout> RasterLayout::forComponents(ByteView data, int width, double unitResolution)
{
    RasterLayout layout;
    layout.m_width = width;
    layout.m_format = ImageFormat::Rgb24;
    ByteReader reader { data };
    const int format = reader.readU8().value_or(0);
    const int second = reader.readU8().value_or(0);
    const bool isWhole = format == 6
        ? layout.addBlocks(reader)
        : (format == 1 || format == 2) && layout.addComponents(reader, second, unitResolution);
    if (!isWhole)
        return std::nullopt;
    return layout;
}

bool RasterLayout::addComponents(ByteReader& reader, int count, double unitResolution)
{
    if (count != 1 && count != 3 && count != 4)
        return false;
    m_kind = Kind::Components;
    std::array<int, 4> resolutionX {};
    std::array<int, 4> resolutionY {};
    int finestX = 0;
    int finestY = 0;
    int coarsestX = 65535;
    int coarsestY = 65535;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        resolutionX[i] = reader.readU16BigEndian().value_or(0);
        resolutionY[i] = reader.readU16BigEndian().value_or(0);
        const int declared = reader.readU16BigEndian().value_or(2);
        // CUPS' driver does not count the level without ink where a pixel is one bit.
        const int levels = declared == 1 ? 2 : declared;
        if (resolutionX[i] < 1 || resolutionY[i] < 1 || levels < 2 || levels > 256)
            return false;
        Component component;
        component.levels = levels;
        component.planes = 0;
        while ((1 << component.planes) < levels)
            ++component.planes;
        finestX = std::max(finestX, resolutionX[i]);
        finestY = std::max(finestY, resolutionY[i]);
        coarsestX = std::min(coarsestX, resolutionX[i]);
        coarsestY = std::min(coarsestY, resolutionY[i]);
        m_components.push_back(component);
    }
    if (finestX % coarsestX != 0)
        return false;
    m_columnsPerUnit = finestX / static_cast<int>(unitOf(coarsestX, unitResolution));
    m_width *= m_columnsPerUnit;
    m_rowsPerSet = finestY % coarsestY == 0 ? finestY / static_cast<int>(unitOf(coarsestY, unitResolution)) : 1;
    for (std::size_t i = 0; i < m_components.size(); ++i) {
        Component& component = m_components[i];
        component.stepX = finestX / resolutionX[i];
        component.stepY = finestY / resolutionY[i];
        // Rows come in sets in which each component has a whole number of rows.
        if (component.stepX > 8 || component.stepY > 8 || finestY % resolutionY[i] != 0)
            return false;
        m_rowsPerSet = std::max(m_rowsPerSet, component.stepY);
    }
    for (Component& component : m_components) {
        if (m_rowsPerSet % component.stepY != 0)
            return false;
        component.firstTransfer = m_transfers.size();
        const int pixels = (m_width + component.stepX - 1) / component.stepX;
        const int transfers = m_rowsPerSet / component.stepY * component.planes;
        m_transfers.insert(m_transfers.end(), static_cast<std::size_t>(transfers), { packedBytes(pixels, 1), -1 });
    }
    return true;
}

bool RasterLayout::addBlocks(ByteReader& reader)
{
    const int count = reader.readU16BigEndian().value_or(0);
    if (count < 1 || count > 2)
        return false;
    for (int i = 0; i < count; ++i) {
        if (!reader.skip(4))
            return false;
        const int method = reader.readU8().value_or(0);
        const int order = reader.readU8().value_or(0);
        const int bits = reader.readU8().value_or(0);
        reader.skip(1);
        const bool isBlack = bits == 1 || order == 0;
        if (i == 0 && count == 2 && !isBlack)
            return false;
        m_transfers.push_back({ packedBytes(m_width, isBlack ? 1 : 24), method });
        m_kind = isBlack ? Kind::Mono : Kind::DirectByPixel;
    }
    if (count == 2)
        m_kind = Kind::BlackAndColor;
    m_format = m_kind == Kind::Mono ? ImageFormat::Mono : ImageFormat::Rgb24;
    m_zeroIsWhite = m_kind == Kind::Mono;
    for (int i = 0; i < 256; ++i) {
        const auto byte = static_cast<std::uint8_t>(i);
        m_colors.push_back({ byte, byte, byte });
    }
    return true;
}

const std::uint8_t* RasterLayout::compose(const Planes& planes, int subRow, std::vector<std::uint8_t>& pixels) const
{
    if (m_kind == Kind::Mono)
        return planes[0].data();
    pixels.resize(static_cast<std::size_t>(m_width) * 3);
    switch (m_kind) {
    case Kind::IndexedByPlane:
    case Kind::DirectByPlane:
        composeIndexed(planes, pixels.data());
        break;
    case Kind::IndexedByPixel:
        composePacked(planes[0], pixels.data());
        break;
    case Kind::DirectByPixel:
        composeDirect(planes[0], pixels.data());
        break;
    case Kind::BlackAndColor:
        composeDirect(planes[1], pixels.data());
        for (std::size_t x = 0; x < static_cast<std::size_t>(m_width); ++x) {
            if (bitAt(planes[0], x))
                std::fill_n(pixels.begin() + static_cast<std::ptrdiff_t>(x * 3), 3, std::uint8_t { 0 });
        }
        break;
    default:
        composeComponents(planes, subRow, pixels.data());
    }
    return pixels.data();
}

void RasterLayout::composeIndexed(const Planes& planes, std::uint8_t* out) const
{
    for (std::size_t x = 0; x < static_cast<std::size_t>(m_width); ++x) {
        std::size_t index = 0;
        for (std::size_t plane = 0; plane < planes.size(); ++plane)
            index |= std::size_t { bitAt(planes[plane], x) } << plane;
        put(out, m_colors[index]);
    }
}

void RasterLayout::composePacked(const std::vector<std::uint8_t>& plane, std::uint8_t* out) const
{
    const auto bits = static_cast<unsigned>(m_bits);
    const unsigned perByte = 8 / bits;
    const unsigned mask = (1u << bits) - 1;
    for (unsigned x = 0; x < static_cast<unsigned>(m_width); ++x) {
        const unsigned shift = 8 - bits - x % perByte * bits;
        put(out, m_colors[(plane[x / perByte] >> shift) & mask]);
    }
}

void RasterLayout::composeDirect(const std::vector<std::uint8_t>& plane, std::uint8_t* out) const
{
    const std::uint8_t* in = plane.data();
    if (m_isSeparable) {
        for (int x = 0; x < m_width; ++x, in += 3)
            put(out, directColor(in[0], in[1], in[2]));
        return;
    }
    // Device-independent colours cost powers and matrices; neighbours are mostly alike.
    std::array<std::uint8_t, 3> last { in[0], in[1], in[2] };
    Rgb color = m_width > 0 ? directColor(last[0], last[1], last[2]) : Rgb {};
    for (int x = 0; x < m_width; ++x, in += 3) {
        if (in[0] != last[0] || in[1] != last[1] || in[2] != last[2]) {
            last = { in[0], in[1], in[2] };
            color = directColor(last[0], last[1], last[2]);
        }
        put(out, color);
    }
}

void RasterLayout::composeComponents(const Planes& planes, int subRow, std::uint8_t* out) const
{
    const auto share = [&](std::size_t index, std::size_t x) {
        const Component& component = m_components[index];
        const auto row = static_cast<std::size_t>(subRow / component.stepY);
        const std::size_t first = component.firstTransfer + row * static_cast<std::size_t>(component.planes);
        std::size_t level = 0;
        for (std::size_t plane = 0; plane < static_cast<std::size_t>(component.planes); ++plane)
            level |= std::size_t { bitAt(planes[first + plane], x / static_cast<std::size_t>(component.stepX)) }
                << plane;
        // Drops on one place cover less and less paper that the former ones left bare.
        constexpr std::array<std::size_t, 4> kOfFourLevels { 0, 128, 191, 255 };
        if (component.levels == 4)
            return kOfFourLevels[level];
        const auto top = static_cast<std::size_t>(component.levels - 1);
        return 255 * std::min(level, top) / top;
    };
    const bool hasBlack = m_components.size() != 3;
    for (std::size_t x = 0; x < static_cast<std::size_t>(m_width); ++x) {
        const std::size_t light = hasBlack ? 255 - share(0, x) : 255;
        for (std::size_t primary = 0; primary < 3; ++primary) {
            const std::size_t ink = m_components.size() == 1 ? 0 : share(primary + (hasBlack ? 1 : 0), x);
            *out++ = static_cast<std::uint8_t>((255 - ink) * light / 255);
        }
    }
}

} // namespace quillrip::pcl
