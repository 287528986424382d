#include "quillrip/fonts/soft/truetype_soft_font.h"

#include "quillrip/fonts/pixels/outline_raster.h"
#include "quillrip/fonts/soft/header_fields.h"
#include "quillrip/fonts/soft/incremental_truetype.h"

#include <algorithm>
#include <cstdint>

namespace quillrip {

namespace {

/// The code under which components of composite glyphs come.
constexpr std::uint32_t kComponentCode = 0xFFFF;
/// The slant of oblique faces.
constexpr double kTangent12Degrees = 0.21256;

} // namespace

std::shared_ptr<TrueTypeSoftFont> TrueTypeSoftFont::create(SoftFontHeader header, const Reporter& reporter)
{
    auto tables = IncrementalTrueType::open(header.trueTypeData);
    if (!tables) {
        reporter.damage("font.truetype", "TrueType font header whose tables make no font, ignored");
        return nullptr;
    }
    header.unitsPerEm = tables->unitsPerEm();
    return std::shared_ptr<TrueTypeSoftFont>(new TrueTypeSoftFont(std::move(header), std::move(tables)));
}

TrueTypeSoftFont::TrueTypeSoftFont(SoftFontHeader header, std::unique_ptr<IncrementalTrueType> tables)
    : m_header(std::move(header))
    , m_tables(std::move(tables))
    , m_bytes(sizeof(TrueTypeSoftFont) + 2 * m_header.trueTypeData.size())
{
    m_traits = m_header.traits;
    m_tables->setGlyphs(&m_glyphs);
    if (m_traits.spaceAdvance <= 0) {
        const int first = m_tables->advance(0);
        m_traits.spaceAdvance = first > 0 ? first / static_cast<double>(m_header.unitsPerEm) : 0.5;
    }
}

TrueTypeSoftFont::~TrueTypeSoftFont() = default;

bool TrueTypeSoftFont::addPclCharacter(std::uint32_t code, ByteView block, const Reporter& reporter)
{
    if (block.size < 2 || block[0] != 15) {
        reporter.damage("font.character-format", "character does not have the format of its TrueType font, ignored");
        return false;
    }
    std::size_t start = 2;
    if (block[1] == 0) {
        m_unfinished = {};
        if (block.size < 4 || block[2] < 2 || block[3] != 15) {
            reporter.damage("font.character", "TrueType character with an invalid descriptor, ignored");
            return false;
        }
        start = 2u + block[2];
        if (block.size < start + 4 || u16At(block, start) < 4) {
            reporter.damage("font.character-short", "TrueType character shorter than its descriptor, ignored");
            return false;
        }
        m_unfinished.code = code;
        // The size counts itself and the glyph id; a reserved byte and the checksum follow.
        m_unfinished.wanted = u16At(block, start) + std::size_t { 2 };
    } else if (m_unfinished.wanted == 0 || m_unfinished.code != code) {
        reporter.damage("font.continuation", "continuation of a character that was not begun, ignored");
        return false;
    }

    const ByteView part = block.sub(start, m_unfinished.wanted - m_unfinished.data.size());
    m_unfinished.data.insert(m_unfinished.data.end(), part.begin(), part.end());
    const ByteView data(m_unfinished.data);
    // Some drivers leave the checksum out: the glyph itself is enough.
    if (data.size + 2 < m_unfinished.wanted)
        return true;
    if (data.size == m_unfinished.wanted) {
        unsigned sum = 0;
        for (const std::uint8_t byte : data)
            sum += byte;
        if ((sum & 0xFF) != 0)
            reporter.warn("font.checksum", "character with a wrong checksum, used all the same");
    }
    Glyph glyph;
    const ByteView entry = data.sub(4, m_unfinished.wanted - 6);
    glyph.data.assign(entry.begin(), entry.end());
    const std::uint16_t glyphId = u16At(data, 2);
    m_unfinished = {};
    store(code, glyphId, std::move(glyph));
    return true;
}

bool TrueTypeSoftFont::addPclXlCharacter(std::uint32_t code, ByteView data, const Reporter& reporter)
{
    if (data.size < 6 || data[0] != 1 || data[1] > 2) {
        reporter.damage("font.character-format", "character does not have the format of its TrueType font, ignored");
        return false;
    }
    const std::uint8_t characterClass = data[1];
    const std::size_t idAt = characterClass == 0 ? 4 : characterClass == 1 ? 8 : 10;
    if (data.size < idAt + 2) {
        reporter.damage("font.character-short", "TrueType character shorter than its descriptor, ignored");
        return false;
    }
    Glyph glyph;
    if (characterClass > 0) {
        glyph.hasBearing = true;
        glyph.leftBearing = static_cast<std::int16_t>(u16At(data, 4));
        glyph.hasAdvance = true;
        glyph.advance = u16At(data, 6);
    }
    // The data size counts from its own field on; what it leaves out is padding.
    const std::size_t declared = u16At(data, 2) + std::size_t { 2 };
    const std::size_t end = declared >= idAt + 2 ? std::min(data.size, declared) : data.size;
    const ByteView entry = data.sub(idAt + 2, end - idAt - 2);
    glyph.data.assign(entry.begin(), entry.end());
    store(code, u16At(data, idAt), std::move(glyph));
    return true;
}

void TrueTypeSoftFont::store(std::uint32_t code, std::uint16_t glyphId, Glyph glyph)
{
    const auto known = m_glyphs.find(glyphId);
    if (known != m_glyphs.end()) {
        m_bytes -= sizeof(Glyph) + known->second.data.size();
        if (known->second.data != glyph.data || known->second.leftBearing != glyph.leftBearing)
            ++m_revision;
    }
    m_bytes += sizeof(Glyph) + glyph.data.size();
    m_glyphs[glyphId] = std::move(glyph);
    if (code != kComponentCode)
        m_codes[code] = glyphId;
}

void TrueTypeSoftFont::removeCharacter(std::uint32_t code)
{
    // The glyph stays: it may be a component of others.
    m_codes.erase(code);
}

std::shared_ptr<SoftFont> TrueTypeSoftFont::copy() const
{
    auto tables = IncrementalTrueType::open(m_header.trueTypeData);
    if (!tables)
        return nullptr;
    std::shared_ptr<TrueTypeSoftFont> font(new TrueTypeSoftFont(m_header, std::move(tables)));
    font->m_codes = m_codes;
    font->m_glyphs = m_glyphs;
    font->m_bytes = m_bytes;
    return font;
}

GlyphId TrueTypeSoftFont::glyph(std::uint32_t code) const
{
    const auto find = [this](std::uint32_t wanted) {
        const auto found = m_codes.find(wanted);
        return found == m_codes.end() ? kNoGlyph : found->second;
    };
    if (const GlyphId direct = find(code); direct != kNoGlyph)
        return direct;
    for (const GalleyRange& range : m_header.galley) {
        if (code >= range.first && code <= range.last)
            return find(range.substitute);
    }
    return m_header.galleyDefault == 0xFFFF ? kNoGlyph : find(m_header.galleyDefault);
}

double TrueTypeSoftFont::advance(GlyphId glyph) const
{
    const int units = glyph == kNoGlyph ? -1 : m_tables->advance(glyph);
    return units >= 0 ? units / static_cast<double>(m_header.unitsPerEm) : m_traits.spaceAdvance;
}

bool TrueTypeSoftFont::outline(GlyphId glyph, Path& path) const
{
    Path shape;
    if (glyph == kNoGlyph || !m_tables->outline(glyph, shape))
        return false;
    if (m_header.isPseudoItalic)
        shape = shape.transformed({ 1, 0, kTangent12Degrees, 1, 0, 0 });
    if (m_header.pseudoBold > 0)
        shape = emboldened(shape, m_header.pseudoBold, m_header.pseudoBold);
    path.append(shape);
    return true;
}

const FittingGuide& TrueTypeSoftFont::measures() const
{
    // Codes do not tell letters apart, so the strokes that most glyphs have count. Measured anew when the font has
    // grown to twice its size: the first text may come after a few glyphs.
    constexpr std::size_t kMostMeasured = 64;
    if (m_glyphs.size() < 2 * m_measuredGlyphs)
        return m_measures;
    m_measuredGlyphs = m_glyphs.size();
    std::vector<double> stems;
    std::vector<double> bars;
    for (const auto& [id, glyph] : m_glyphs) {
        if (stems.size() >= kMostMeasured || bars.size() >= kMostMeasured)
            break;
        Path shape;
        if (!outline(id, shape))
            continue;
        if (const double stem = uprightStrokeWidth(shape, 1); stem > 0)
            stems.push_back(stem);
        if (const double bar = levelStrokeWidth(shape, 1); bar > 0)
            bars.push_back(bar);
    }
    const auto median = [](std::vector<double>& values) {
        if (values.empty())
            return 0.0;
        const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
        std::nth_element(values.begin(), middle, values.end());
        return *middle;
    };
    constexpr double kUsualOvershoot = 0.014;
    m_measures.em = 1;
    m_measures.stem = median(stems);
    m_measures.bar = median(bars);
    m_measures.zones = { { 0, -kUsualOvershoot } };
    return m_measures;
}

bool TrueTypeSoftFont::rasterise(
    GlyphId glyph, const Matrix& glyphToDevice, GlyphMask::Depth depth, const GlyphStyle& style, GlyphMask& mask) const
{
    Path shape;
    if (!outline(glyph, shape))
        return false;
    if (style.bold > 0)
        return rasteriseOutline(emboldened(shape, style.bold, style.bold), glyphToDevice, depth, mask);
    return rasteriseFitted(shape, glyphToDevice, depth, measures(), mask);
}

bool TrueTypeSoftFont::staysUpright(std::uint32_t code) const
{
    return std::any_of(m_header.uprightCodes.begin(), m_header.uprightCodes.end(),
        [code](const CodeSpan& span) { return code >= span.first && code <= span.last; });
}

GlyphId TrueTypeSoftFont::verticalForm(GlyphId glyph) const
{
    const auto& forms = m_header.verticalForms;
    const auto found = std::find_if(
        forms.begin(), forms.end(), [glyph](const VerticalPair& pair) { return pair.horizontal == glyph; });
    return found != forms.end() && m_glyphs.count(found->vertical) ? found->vertical : glyph;
}

double TrueTypeSoftFont::verticalDescender() const
{
    return m_header.verticalDescender.value_or(Typeface::verticalDescender());
}

} // namespace quillrip
