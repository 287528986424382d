#include "quillrip/fonts/faces/file_face.h"

#include "quillrip/fonts/pixels/outline_raster.h"
#include "quillrip/fonts/shaping/face_shaper.h"

#include <algorithm>
#include <cstdint>

namespace quillrip {

namespace {

struct Extent {
    double low = 0;
    double high = 0;
};

Extent verticalExtentOf(const FontFile& file, char32_t character)
{
    Path path;
    file.outline(file.glyphOfUnicode(character), path);
    if (path.empty())
        return {};
    const auto [low, high]
        = std::minmax_element(path.points().begin(), path.points().end(), [](Point a, Point b) { return a.y < b.y; });
    return { low->y, high->y };
}

} // namespace

FileFace::FileFace(const FontFile& file)
    : m_file(file)
{
    m_traits.domain = CodeDomain::Unicode;
    m_traits.isBoundToSet = false;
    m_traits.name = file.traits().family;
    m_traits.spaceAdvance = file.advance(file.glyphOfUnicode(U' '));
}

FileFace::~FileFace() = default;

FaceShaper& FileFace::shaper() const
{
    if (!m_shaper)
        m_shaper = std::make_unique<FaceShaper>(*this);
    return *m_shaper;
}

GlyphId FileFace::glyph(std::uint32_t code) const
{
    const unsigned glyph = m_file.glyphOfUnicode(code);
    return glyph == 0 ? kNoGlyph : glyph;
}

double FileFace::advance(GlyphId glyph) const
{
    if (glyph == kNoGlyph)
        return m_traits.spaceAdvance;
    const auto known = m_advances.find(glyph);
    if (known != m_advances.end())
        return known->second;
    return m_advances[glyph] = m_file.advance(glyph);
}

bool FileFace::outline(GlyphId glyph, Path& path) const { return glyph != kNoGlyph && m_file.outline(glyph, path); }

bool FileFace::rasterise(
    GlyphId glyph, const Matrix& glyphToDevice, GlyphMask::Depth depth, const GlyphStyle& style, GlyphMask& mask) const
{
    Path shape;
    if (!outline(glyph, shape))
        return false;
    if (style.bold > 0)
        return rasteriseOutline(emboldened(shape, style.bold, style.bold), glyphToDevice, depth, mask);
    return rasteriseFitted(shape, glyphToDevice, depth, measures(), mask);
}

/// Strokes and heights that most letters share, where the file tells which glyphs are letters.
const FittingGuide& FileFace::measures() const
{
    if (m_measures.em > 0)
        return m_measures;
    m_measures.em = 1;
    if (!m_file.mapsUnicode())
        return m_measures;
    const auto shapeOf = [this](char32_t character) {
        Path path;
        m_file.outline(m_file.glyphOfUnicode(character), path);
        return path;
    };
    const auto extent = [this](char32_t character) { return verticalExtentOf(m_file, character); };
    m_measures.stem = uprightStrokeWidth(shapeOf(U'l'), 1);
    m_measures.bar = levelStrokeWidth(shapeOf(U'H'), 1);
    m_measures.zones = { { 0, extent(U'o').low }, { extent(U'x').high, extent(U'o').high },
        { extent(U'H').high, extent(U'O').high }, { extent(U'l').high, extent(U'f').high },
        { extent(U'p').low, extent(U'g').low }, { extent(U'1').high, extent(U'0').high } };
    return m_measures;
}

} // namespace quillrip
