#include "quillrip/pclxl/pixel_converter.h"

#include <algorithm>

namespace quillrip::pclxl {

namespace {

bool isGray(Rgb c) { return c.red == c.green && c.green == c.blue; }

} // namespace

PixelConverter::PixelConverter(const PixelMeaning& meaning, std::uint32_t width, PixelFormat page, bool copiesSource)
    : m_width(width)
{
    const int components = meaning.isIndexed ? 1 : componentsOf(meaning.model);
    const int bits = meaning.bitsPerComponent;
    m_sourceBytes = (static_cast<std::size_t>(width) * static_cast<std::size_t>(components * bits) + 7) / 8;
    const bool wantsGray = page != PixelFormat::Rgb24;
    if (components == 3) {
        m_format = wantsGray ? ImageFormat::Gray8 : ImageFormat::Rgb24;
        m_way = bits == 8 ? (wantsGray ? Way::RgbToGray : Way::Copy) : bits == 4 ? Way::RgbNibbles : Way::RgbBits;
        m_row.resize(m_way == Way::Copy ? 0 : width * (wantsGray ? 1u : 3u));
        return;
    }

    makeTable(meaning);
    if (bits == 1) {
        m_hasInk = copiesSource;
        if (makeMono())
            return;
        m_hasInk = false;
    }
    m_format
        = wantsGray || std::all_of(m_table.begin(), m_table.end(), isGray) ? ImageFormat::Gray8 : ImageFormat::Rgb24;
    bool isIdentity = bits == 8;
    for (std::size_t i = 0; i < m_table.size(); ++i) {
        m_grays[i] = luminance(m_table[i]);
        isIdentity = isIdentity && m_grays[i] == i;
    }
    if (m_format == ImageFormat::Gray8 && isIdentity)
        m_way = Way::Copy;
    else
        m_way = bits == 8 ? Way::Bytes : bits == 4 ? Way::Nibbles : Way::Bits;
    m_row.resize(m_way == Way::Copy ? 0 : width * (m_format == ImageFormat::Gray8 ? 1u : 3u));
}

void PixelConverter::makeTable(const PixelMeaning& meaning)
{
    const std::size_t count = std::size_t { 1 } << meaning.bitsPerComponent;
    m_table.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        if (meaning.isIndexed && meaning.palette && i < meaning.palette->size()) {
            m_table[i] = (*meaning.palette)[i];
        } else {
            const std::uint8_t gray = static_cast<std::uint8_t>(i * 255 / (count - 1));
            m_table[i] = { gray, gray, gray };
        }
    }
}

/// Bits can stand for black on white; and for another colour on white when the source alone is copied.
bool PixelConverter::makeMono()
{
    const bool isInkSet = m_table[0] == kWhite;
    const Rgb ink = isInkSet ? m_table[1] : m_table[0];
    const Rgb paper = isInkSet ? m_table[0] : m_table[1];
    if (paper != kWhite || ink == kWhite)
        return false;
    if (ink != kBlack && !m_hasInk)
        return false;
    m_format = ImageFormat::Mono;
    m_ink = ink;
    m_way = isInkSet ? Way::Copy : Way::Invert;
    m_row.resize(m_way == Way::Copy ? 0 : m_sourceBytes);
    return true;
}

const std::uint8_t* PixelConverter::convert(const std::uint8_t* source)
{
    std::uint8_t* to = m_row.data();
    const bool isGrayOut = m_format == ImageFormat::Gray8;
    const auto put = [&](unsigned value) {
        if (isGrayOut) {
            *to++ = m_grays[value];
            return;
        }
        const Rgb color = m_table[value];
        to[0] = color.red;
        to[1] = color.green;
        to[2] = color.blue;
        to += 3;
    };
    const auto putRgb = [&](Rgb color) {
        if (isGrayOut) {
            *to++ = luminance(color);
            return;
        }
        to[0] = color.red;
        to[1] = color.green;
        to[2] = color.blue;
        to += 3;
    };
    switch (m_way) {
    case Way::Copy:
        return source;
    case Way::Invert:
        for (std::size_t i = 0; i < m_sourceBytes; ++i)
            to[i] = static_cast<std::uint8_t>(~source[i]);
        break;
    case Way::Bits:
        for (std::uint32_t x = 0; x < m_width; ++x)
            put(source[x / 8] >> (7 - x % 8) & 1u);
        break;
    case Way::Nibbles:
        for (std::uint32_t x = 0; x < m_width; ++x)
            put(x % 2 == 0 ? source[x / 2] >> 4 : source[x / 2] & 15u);
        break;
    case Way::Bytes:
        for (std::uint32_t x = 0; x < m_width; ++x)
            put(source[x]);
        break;
    case Way::RgbToGray:
        for (std::uint32_t x = 0; x < m_width; ++x, source += 3)
            *to++ = luminance({ source[0], source[1], source[2] });
        break;
    case Way::RgbNibbles: {
        const auto nibble = [&](std::uint32_t i) {
            return static_cast<std::uint8_t>((i % 2 == 0 ? source[i / 2] >> 4 : source[i / 2] & 15) * 17);
        };
        for (std::uint32_t x = 0; x < m_width; ++x)
            putRgb({ nibble(3 * x), nibble(3 * x + 1), nibble(3 * x + 2) });
        break;
    }
    case Way::RgbBits: {
        const auto bit = [&](std::uint32_t i) {
            return static_cast<std::uint8_t>((source[i / 8] >> (7 - i % 8) & 1) != 0 ? 255 : 0);
        };
        for (std::uint32_t x = 0; x < m_width; ++x)
            putRgb({ bit(3 * x), bit(3 * x + 1), bit(3 * x + 2) });
        break;
    }
    }
    return m_row.data();
}

} // namespace quillrip::pclxl
