#include "quillrip/pcl/pattern_store.h"

#include "quillrip/raster/compose/area_patterns.h"

#include <cstdint>

namespace quillrip::pcl {

std::shared_ptr<const PatternTile> builtInTile(PatternKind kind, int id)
{
    PatternTile tile;
    if (kind == PatternKind::CrossHatch)
        tile = hatchTile(id);
    else if (kind == PatternKind::Shading && id <= 100)
        tile = shadingTile(id);
    return tile.width > 0 ? std::make_shared<PatternTile>(std::move(tile)) : nullptr;
}

std::shared_ptr<const UserPattern> UserPattern::parse(ByteView data)
{
    ByteReader reader { data };
    const int format = reader.readU8().value_or(255);
    reader.readU8();
    const int encoding = reader.readU8().value_or(0);
    reader.readU8();
    const auto height = reader.readU16BigEndian();
    const auto width = reader.readU16BigEndian();
    if ((format != 0 && format != 1 && format != 20) || !height || !width || *height == 0 || *width == 0)
        return nullptr;
    auto pattern = std::make_shared<UserPattern>();
    pattern->width = *width;
    pattern->height = *height;
    pattern->isColor = format == 1;
    const int bits = pattern->isColor && encoding == 8 ? 8 : 1;
    if (format == 20) {
        pattern->resolutionX = reader.readU16BigEndian().value_or(0);
        pattern->resolutionY = reader.readU16BigEndian().value_or(0);
        if (pattern->resolutionX < 1 || pattern->resolutionY < 1)
            return nullptr;
    }
    // A command's data are at most a few ten thousand bytes: a pattern that claims to be much larger is none.
    const std::size_t rowBytes = (static_cast<std::size_t>(*width) * static_cast<std::size_t>(bits) + 7) / 8;
    const std::size_t wanted = rowBytes * *height;
    if (wanted > 16 * (reader.remaining() + 1024))
        return nullptr;
    pattern->pixels.assign(static_cast<std::size_t>(*width) * *height, 0);
    std::uint8_t* out = pattern->pixels.data();
    for (int y = 0; y < *height; ++y) {
        const ByteView row = reader.takeUpTo(rowBytes);
        for (std::size_t x = 0; x < *width; ++x, ++out) {
            const std::size_t at = bits == 8 ? x : x / 8;
            if (at < row.size)
                *out = bits == 8 ? row[at] : static_cast<std::uint8_t>((row[at] >> (7 - x % 8)) & 1);
        }
    }
    return pattern;
}

PatternTile UserPattern::tile(const Palette& palette) const
{
    PatternTile tile;
    tile.width = width;
    tile.height = height;
    tile.isColor = isColor;
    if (!isColor) {
        tile.pixels = pixels;
        return tile;
    }
    tile.pixels.reserve(pixels.size() * 3);
    for (const std::uint8_t index : pixels) {
        const Rgb color = palette.color(index);
        tile.pixels.insert(tile.pixels.end(), { color.red, color.green, color.blue });
    }
    return tile;
}

bool PatternStore::put(int id, std::shared_ptr<const UserPattern> pattern)
{
    remove(id);
    if (m_bytes + pattern->pixels.size() > m_limit)
        return false;
    m_bytes += pattern->pixels.size();
    m_entries[id] = { std::move(pattern), false };
    return true;
}

std::shared_ptr<const UserPattern> PatternStore::find(int id) const
{
    const auto entry = m_entries.find(id);
    return entry == m_entries.end() ? nullptr : entry->second.pattern;
}

void PatternStore::remove(int id)
{
    ++m_revision;
    const auto entry = m_entries.find(id);
    if (entry == m_entries.end())
        return;
    m_bytes -= entry->second.pattern->pixels.size();
    m_entries.erase(entry);
}

void PatternStore::removeAll()
{
    ++m_revision;
    m_entries.clear();
    m_bytes = 0;
}

void PatternStore::removeTemporary()
{
    ++m_revision;
    for (auto entry = m_entries.begin(); entry != m_entries.end();) {
        if (entry->second.isPermanent) {
            ++entry;
            continue;
        }
        m_bytes -= entry->second.pattern->pixels.size();
        entry = m_entries.erase(entry);
    }
}

void PatternStore::setPermanent(int id, bool isPermanent)
{
    const auto entry = m_entries.find(id);
    if (entry != m_entries.end())
        entry->second.isPermanent = isPermanent;
}

} // namespace quillrip::pcl
