#include "quillrip/pclxl/pattern_in_progress.h"

#include "quillrip/base/color.h"

#include <utility>

namespace quillrip::pclxl {

PatternInProgress::PatternInProgress(ImageSource source, Point size, std::int32_t number, PatternLife life)
    : m_source(std::move(source))
    , m_number(number)
    , m_life(life)
{
    m_pattern.size = size;
    PatternTile& tile = m_pattern.tile;
    tile.width = static_cast<int>(m_source.layout.width);
    tile.height = static_cast<int>(m_source.layout.height);
    // A pattern keeps its colours: bits stand for black and white only.
    tile.isColor = m_source.converter.format() != ImageFormat::Mono || m_source.converter.ink() != kBlack;
}

std::uint64_t PatternInProgress::bytes() const
{
    return std::uint64_t { m_source.layout.width } * m_source.layout.height * (m_pattern.tile.isColor ? 3u : 1u);
}

void PatternInProgress::begin()
{
    m_pattern.tile.pixels.assign(static_cast<std::size_t>(bytes()), m_pattern.tile.isColor ? 255 : 0);
}

void PatternInProgress::storeRow(const std::uint8_t* pixels)
{
    PatternTile& tile = m_pattern.tile;
    const std::uint8_t* row = m_source.converter.convert(pixels);
    const std::size_t width = static_cast<std::size_t>(tile.width);
    const Rgb ink = m_source.converter.ink();
    std::uint8_t* to = tile.pixels.data() + m_nextRow * width * (tile.isColor ? 3 : 1);
    ++m_nextRow;
    for (std::size_t x = 0; x < width; ++x) {
        Rgb color;
        switch (m_source.converter.format()) {
        case ImageFormat::Mono: {
            const bool isInk = (row[x / 8] >> (7 - x % 8) & 1) != 0;
            if (!tile.isColor) {
                *to++ = isInk;
                continue;
            }
            color = isInk ? ink : kWhite;
            break;
        }
        case ImageFormat::Gray8:
            color = { row[x], row[x], row[x] };
            break;
        case ImageFormat::Rgb24:
            color = { row[3 * x], row[3 * x + 1], row[3 * x + 2] };
            break;
        case ImageFormat::Rgba32:
            break; // the language has no alpha
        }
        to[0] = color.red;
        to[1] = color.green;
        to[2] = color.blue;
        to += 3;
    }
}

RasterPattern PatternInProgress::finish() { return std::move(m_pattern); }

} // namespace quillrip::pclxl
