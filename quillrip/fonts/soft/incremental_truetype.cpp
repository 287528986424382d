#include "quillrip/fonts/soft/incremental_truetype.h"

#include "quillrip/fonts/faces/font_file.h"
#include "quillrip/fonts/freetype_library.h"
#include "quillrip/fonts/soft/header_fields.h"

#include <algorithm>
#include <cstdint>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_INCREMENTAL_H

/// FreeType leaves this type to its users.
struct FT_IncrementalRec_ {
    const quillrip::IncrementalTrueType* font;
};

namespace quillrip {

namespace {

FT_Error glyphData(FT_Incremental source, FT_UInt glyph, FT_Data* data)
{
    const ByteView bytes = source->font->glyphData(glyph);
    data->pointer = bytes.data;
    data->length = static_cast<FT_UInt>(bytes.size);
    return 0;
}

void freeGlyphData(FT_Incremental, FT_Data*) { }

FT_Error glyphMetrics(FT_Incremental source, FT_UInt glyph, FT_Bool isVertical, FT_Incremental_MetricsRec* metrics)
{
    if (isVertical)
        return 0;
    metrics->bearing_x = source->font->leftBearing(glyph);
    metrics->advance = std::max(0, source->font->advance(glyph));
    return 0;
}

} // namespace

/// What FreeType calls back into. Its library is the font's own: a broken font takes no other with it.
struct IncrementalTrueType::Data {
    FreeTypeLibrary library;
    FT_Face face = nullptr;
    std::vector<std::uint8_t> tables;
    const Glyphs* glyphs = nullptr;
    ByteView metrics; ///< hmtx, within `tables`
    unsigned longMetrics = 0;
    FT_IncrementalRec_ source {};
    FT_Incremental_FuncsRec functions {};
    FT_Incremental_InterfaceRec interface {
    };

    ~Data()
    {
        if (face)
            FT_Done_Face(face);
    }

    const TrueTypeSoftFont::Glyph* find(unsigned glyph) const
    {
        if (!glyphs || glyph > 0xFFFF)
            return nullptr;
        const auto found = glyphs->find(static_cast<std::uint16_t>(glyph));
        return found == glyphs->end() ? nullptr : &found->second;
    }

    /// Advance and bearing from the metrics table; false without one.
    bool tabledMetrics(unsigned glyph, int& advance, int& bearing) const
    {
        if (longMetrics == 0)
            return false;
        const std::size_t last = longMetrics - 1;
        const std::size_t at = 4 * std::min<std::size_t>(glyph, last);
        if (at + 4 > metrics.size)
            return false;
        advance = metrics[at] << 8 | metrics[at + 1];
        const std::size_t bearingAt = glyph <= last ? at + 2 : 4 * longMetrics + 2 * (glyph - longMetrics);
        bearing = bearingAt + 2 > metrics.size
            ? 0
            : static_cast<std::int16_t>(metrics[bearingAt] << 8 | metrics[bearingAt + 1]);
        return true;
    }

    void findMetricsTable()
    {
        const ByteView all(tables);
        if (all.size < 12)
            return;
        const std::size_t count = std::min<std::size_t>(u16At(all, 4), (all.size - 12) / 16);
        for (std::size_t i = 0; i < count; ++i) {
            const ByteView entry = all.sub(12 + 16 * i, 16);
            const std::size_t offset = u32At(entry, 8);
            const std::size_t length = u32At(entry, 12);
            const ByteView table = all.sub(offset, length);
            if (std::equal(entry.begin(), entry.begin() + 4, "hhea") && table.size >= 36)
                longMetrics = u16At(table, 34);
            else if (std::equal(entry.begin(), entry.begin() + 4, "hmtx"))
                metrics = table;
        }
        if (metrics.empty())
            longMetrics = 0;
    }
};

IncrementalTrueType::IncrementalTrueType(std::unique_ptr<Data> data)
    : m_data(std::move(data))
{
}

IncrementalTrueType::~IncrementalTrueType() = default;

std::unique_ptr<IncrementalTrueType> IncrementalTrueType::open(const std::vector<std::uint8_t>& tables)
{
    constexpr std::size_t kDirectoryHeader = 12;
    if (tables.size() < kDirectoryHeader || FT_Long(tables.size()) < 0)
        return nullptr;
    auto data = std::make_unique<Data>();
    data->tables = tables;
    // Drivers write all kinds of versions here; the tables are TrueType whatever it says.
    data->tables[0] = 0;
    data->tables[1] = 1;
    data->tables[2] = 0;
    data->tables[3] = 0;
    data->findMetricsTable();

    std::unique_ptr<IncrementalTrueType> font(new IncrementalTrueType(std::move(data)));
    Data& d = *font->m_data;
    d.source.font = font.get();
    d.functions.get_glyph_data = quillrip::glyphData;
    d.functions.free_glyph_data = freeGlyphData;
    d.functions.get_glyph_metrics = glyphMetrics;
    d.interface.funcs = &d.functions;
    d.interface.object = &d.source;

    FT_Parameter parameter {};
    parameter.tag = FT_PARAM_TAG_INCREMENTAL;
    parameter.data = &d.interface;
    FT_Open_Args arguments {};
    arguments.flags = FT_OPEN_MEMORY | FT_OPEN_PARAMS;
    arguments.memory_base = d.tables.data();
    arguments.memory_size = static_cast<FT_Long>(d.tables.size());
    arguments.num_params = 1;
    arguments.params = &parameter;
    if (!d.library.hasDone(FT_Open_Face(d.library.get(), &arguments, 0, &d.face)) || d.face->units_per_EM == 0)
        return nullptr;
    return font;
}

void IncrementalTrueType::setGlyphs(const Glyphs* glyphs) { m_data->glyphs = glyphs; }

int IncrementalTrueType::unitsPerEm() const { return m_data->face->units_per_EM; }

ByteView IncrementalTrueType::glyphData(unsigned glyph) const
{
    const TrueTypeSoftFont::Glyph* found = m_data->find(glyph);
    return found ? ByteView(found->data) : ByteView();
}

int IncrementalTrueType::advance(unsigned glyph) const
{
    const TrueTypeSoftFont::Glyph* found = m_data->find(glyph);
    if (found && found->hasAdvance)
        return found->advance;
    int advance = -1;
    int bearing = 0;
    m_data->tabledMetrics(glyph, advance, bearing);
    return advance;
}

int IncrementalTrueType::leftBearing(unsigned glyph) const
{
    const TrueTypeSoftFont::Glyph* found = m_data->find(glyph);
    if (found && found->hasBearing)
        return found->leftBearing;
    int advance = 0;
    int bearing = 0;
    if (m_data->tabledMetrics(glyph, advance, bearing))
        return bearing;
    // Without metrics the outline stays where its points are: the box's left edge is the bearing.
    return found && found->data.size() >= 4 ? static_cast<std::int16_t>(u16At(found->data, 2)) : 0;
}

bool IncrementalTrueType::outline(unsigned glyph, Path& path) const
{
    const TrueTypeSoftFont::Glyph* found = m_data->find(glyph);
    if (!found || found->data.empty() || !m_data->library.hasDone(FT_Load_Glyph(m_data->face, glyph, FT_LOAD_NO_SCALE)))
        return false;
    return appendSlotOutline(m_data->face, 1.0 / m_data->face->units_per_EM, path);
}

} // namespace quillrip
