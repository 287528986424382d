#include "quillrip/fonts/faces/internal_face.h"

#include "quillrip/fonts/faces/advance_widths.h"
#include "quillrip/fonts/faces/box_drawing.h"
#include "quillrip/fonts/faces/look_alikes.h"
#include "quillrip/fonts/pixels/outline_raster.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace quillrip {

namespace {

using Make = InternalFaceSpec::Make;

/// Glyphs are stretched no further than this, and centred in what is left: stretching thickens stems, and a letter
/// looks better a little narrow in a wide cell than swollen.
constexpr double kNarrowest = 0.80;
constexpr double kWidest = 1.12;
/// Differences below this are not worth a change of stem width.
constexpr double kSameWidth = 0.02;

/// The cell that rules and blocks fill, em: one em high, as the printer's own.
constexpr double kCellBottom = -0.25;
constexpr double kCellTop = 0.75;
constexpr double kRuleWidth = 0.055;

constexpr std::uint16_t kWingdings = symbolSetNumber(579, 'L');
constexpr std::uint16_t kDingbats = symbolSetNumber(14, 'L');
constexpr std::uint16_t kSymbol = symbolSetNumber(19, 'M');

constexpr double kLinePrinterPitch = 16.67;
constexpr double kLinePrinterHeight = 8.5;

bool isSmallLetterOrDigit(char32_t unicode)
{
    return (unicode >= 'a' && unicode <= 'z') || (unicode >= '0' && unicode <= '9')
        || (unicode >= 0xDF && unicode <= 0xFF && unicode != 0xF7);
}

/// The code of a character in a built-in symbol set; 0 when it is not there.
unsigned codeIn(std::uint16_t setNumber, char32_t unicode)
{
    const SymbolSet* set = findSymbolSet(setNumber);
    for (unsigned code = 0x21; set && code < 256; ++code) {
        if (set->unicode(code) == unicode)
            return code;
    }
    return 0;
}

/// Lowest and highest point; 0 for an empty path.
std::pair<double, double> verticalExtent(const Path& path)
{
    if (path.empty())
        return { 0, 0 };
    const auto [low, high]
        = std::minmax_element(path.points().begin(), path.points().end(), [](Point a, Point b) { return a.y < b.y; });
    return { low->y, high->y };
}

} // namespace

InternalFace::InternalFace(const InternalFaceSpec& spec, std::shared_ptr<FontFiles> files, DiagnosticSink* sink)
    : m_spec(spec)
    , m_files(std::move(files))
    , m_sink(sink)
    , m_boundSet(spec.boundSet ? findSymbolSet(spec.boundSet) : nullptr)
    , m_widthColumn(advanceColumn(spec.widths))
    , m_unit(spec.make == Make::Older ? kOlderPoint : 1)
{
    m_traits.name = spec.name;
    m_traits.symbolSet = spec.boundSet;
    m_traits.domain = m_boundSet ? CodeDomain::Bound : CodeDomain::Unicode;
    m_traits.codeRange = m_boundSet ? m_boundSet->range() : CodeRange::Wide;
    m_traits.isBoundToSet = m_boundSet != nullptr;
    m_traits.isProportional = spec.fixedAdvance == 0;
    m_traits.style = spec.style;
    m_traits.weight = spec.weight;
    m_traits.family = spec.family;
    if (spec.family == 0) {
        m_traits.isFixedSize = true;
        m_traits.pitch = kLinePrinterPitch;
        m_traits.height = kLinePrinterHeight;
    }
    const double tabled = tabledAdvance(m_widthColumn, ' ');
    m_traits.spaceAdvance = spec.fixedAdvance > 0 ? spec.fixedAdvance : tabled > 0 ? tabled : spec.space;
    const FaceHeights heights = heightsOf(spec);
    m_traits.capHeight = heights.capHeight * m_unit;
    m_traits.xHeight = heights.xHeight * m_unit;
}

void InternalFace::openFiles() const
{
    if (m_isOpen)
        return;
    m_isOpen = true;
    m_file = m_files->open(m_spec.file);
    if (m_file)
        return;
    m_file = m_files->open(m_spec.secondFile);
    const char* const drawn = m_file ? m_spec.secondFile : nullptr;
    if (!m_file) {
        m_file = m_files->open(m_traits.isProportional ? "DejaVuSans" : "DejaVuSansMono");
    }
    if (!m_sink)
        return;
    const std::string missing = std::string("face ") + m_spec.name + ": font file " + m_spec.file + " not found, ";
    m_sink->report({ Severity::Warning, 0, "font.missing-file",
        missing
            + (drawn         ? std::string("drawn with ") + drawn
                    : m_file ? "drawn with a general face"
                             : "characters are drawn as boxes") });
}

char32_t InternalFace::unicodeOf(GlyphId glyph) const
{
    return m_boundSet ? m_boundSet->unicode(glyph) : static_cast<char32_t>(glyph);
}

GlyphId InternalFace::glyph(std::uint32_t code) const
{
    const char32_t unicode = m_boundSet ? m_boundSet->unicode(code) : static_cast<char32_t>(code);
    if (unicode == 0)
        return kNoGlyph;
    if (unicode == ' ' || unicode == 0xA0 || isBoxDrawing(unicode))
        return code;
    if (find(code).file)
        return code;
    // A frame stands for a character when no font was found at all, and in the pictorial face, whose signs are marks
    // on forms; else a missing character leaves a gap as wide as the space.
    return m_file && m_spec.boundSet != kWingdings ? kNoGlyph : code;
}

InternalFace::Source InternalFace::find(GlyphId glyph) const
{
    openFiles();
    const auto [entry, isNew] = m_sources.try_emplace(glyph);
    if (isNew)
        entry->second = search(glyph);
    return entry->second;
}

InternalFace::Source InternalFace::search(GlyphId glyph) const
{
    const char32_t unicode = unicodeOf(glyph);
    if (m_file && (m_spec.boundSet == kSymbol || m_spec.boundSet == kDingbats)) {
        if (const unsigned own = m_file->glyphOfOwnCode(glyph))
            return { m_file, own, true };
    }
    if (const Source source = searchFor(unicode); source.file)
        return source;
    const char32_t similar = lookAlike(unicode);
    return similar ? searchFor(similar) : Source {};
}

InternalFace::Source InternalFace::searchFor(char32_t unicode) const
{
    if (m_file && m_spec.boundSet != kWingdings) {
        if (const unsigned own = m_file->glyphOfUnicode(unicode))
            return { m_file, own, true };
    }
    const auto tryFile = [&](const char* stem, std::uint16_t ownSet) -> Source {
        const FontFile* file = m_files->open(stem);
        if (!file)
            return {};
        unsigned found = file->glyphOfUnicode(unicode);
        if (!found && ownSet && !file->mapsUnicode()) {
            const unsigned code = codeIn(ownSet, unicode);
            found = code ? file->glyphOfOwnCode(code) : 0;
        }
        return { found ? file : nullptr, found, false };
    };
    struct Helper {
        const char* stem;
        std::uint16_t ownSet;
    };
    const Helper helpers[] = {
        { "StandardSymbolsPS", kSymbol },
        { "D050000L", kDingbats },
        { m_spec.boundSet == kWingdings ? "Symbola_hint" : nullptr, 0 },
        { m_traits.isProportional ? "DejaVuSans" : "DejaVuSansMono", 0 },
        { "DejaVuSans", 0 },
        { "LiberationSans-Regular", 0 },
        { "Symbola_hint", 0 },
        { "Waree", 0 },
    };
    for (const Helper& helper : helpers) {
        if (!helper.stem || (m_spec.boundSet == kWingdings && helper.ownSet == kSymbol))
            continue;
        if (const Source source = tryFile(helper.stem, helper.ownSet); source.file)
            return source;
    }
    return {};
}

double InternalFace::knownAdvance(GlyphId glyph) const
{
    if (m_spec.fixedAdvance > 0)
        return m_spec.fixedAdvance;
    const char32_t unicode = unicodeOf(glyph);
    if (m_spec.boundSet == kWingdings)
        return glyph < kWingdingsAdvances.size() ? kWingdingsAdvances[glyph] / kAdvanceUnits : 0;
    if (unicode == ' ' || unicode == 0xA0)
        return m_traits.spaceAdvance;
    if (const double tabled = tabledAdvance(m_widthColumn, unicode); tabled > 0)
        return tabled;
    return m_spec.make == Make::Older ? tabledSymbolAdvance(unicode) : 0;
}

double InternalFace::advance(GlyphId glyph) const
{
    if (const double known = knownAdvance(glyph); known > 0)
        return known;
    const Source source = find(glyph);
    if (!source.file)
        return isBoxDrawing(unicodeOf(glyph)) ? m_unit : std::max(m_traits.spaceAdvance, 0.5);
    return source.file->advance(source.glyph) * (source.isOwn ? m_spec.scaleX : 1) * m_unit;
}

Matrix InternalFace::fit(GlyphId glyph, const Source& source) const
{
    const double own = source.file->advance(source.glyph);
    const double wanted = advance(glyph) / m_unit;
    double scaleY = source.isOwn ? m_spec.scaleY : 1;
    double middle = source.isOwn ? m_spec.scaleX : 1;
    if (source.isOwn && m_spec.lowerScale > 0 && isSmallLetterOrDigit(unicodeOf(glyph))) {
        middle = m_spec.lowerScale;
        // Scripts are narrowed, faces with a large x-height grow both ways.
        if (m_spec.lowerScale > 1)
            scaleY = m_spec.lowerScale;
    }
    if (own <= 0 || wanted <= 0)
        return Matrix::scaling(middle * m_unit, scaleY * m_unit);
    double scaleX = wanted / own;
    if (std::abs(scaleX - 1) < kSameWidth)
        scaleX = 1;
    scaleX = std::clamp(scaleX, middle * kNarrowest, middle * kWidest);
    if (m_spec.boundSet == kWingdings) {
        scaleX = std::clamp(wanted / own, 0.6, 1.3);
        scaleY = scaleX;
    }
    // A fixed face's cell never lets a glyph stick out that would fit when narrowed.
    if (m_spec.fixedAdvance > 0)
        scaleX = std::min(scaleX, source.isOwn ? middle : wanted / own);
    const double shift = (wanted - own * scaleX) / 2;
    return Matrix { scaleX * m_unit, 0, 0, scaleY * m_unit, shift * m_unit, 0 };
}

GlyphCell InternalFace::cell(GlyphId glyph) const
{
    return { 0, kCellBottom * m_unit, advance(glyph), kCellTop * m_unit };
}

void InternalFace::frame(GlyphId glyph, Path& path) const
{
    const double width = advance(glyph);
    const double edge = 0.03;
    if (width < 4 * edge)
        return;
    const double top = m_traits.capHeight;
    path.rectangle(edge, 0, width - edge, top);
    // Turning the other way round, the inner rectangle stays empty.
    path.moveTo({ 2 * edge, edge });
    path.lineTo({ 2 * edge, top - edge });
    path.lineTo({ width - 2 * edge, top - edge });
    path.lineTo({ width - 2 * edge, edge });
    path.close();
}

bool InternalFace::outline(GlyphId glyph, Path& path) const
{
    const char32_t unicode = unicodeOf(glyph);
    if (glyph == kNoGlyph || unicode == 0 || unicode == ' ' || unicode == 0xA0)
        return false;
    if (isBoxDrawing(unicode)) {
        boxDrawing(unicode, cell(glyph), kRuleWidth * m_unit, path);
        return true;
    }
    const Source source = find(glyph);
    if (!source.file) {
        const std::size_t before = path.pointCount();
        frame(glyph, path);
        return path.pointCount() > before;
    }
    Path shape;
    if (!source.file->outline(source.glyph, shape))
        return false;
    shape = shape.transformed(fit(glyph, source));
    if (source.isOwn && (m_spec.boldX > 0 || m_spec.boldY > 0))
        shape = emboldened(shape, m_spec.boldX * m_unit, m_spec.boldY * m_unit);
    path.append(shape);
    return true;
}

const FittingGuide& InternalFace::measures() const
{
    if (m_measures.em > 0)
        return m_measures;
    m_measures.em = 1;
    const auto shapeOf = [this](char32_t unicode) {
        Path path;
        if (m_file && !m_boundSet)
            m_file->outline(m_file->glyphOfUnicode(unicode), path);
        return path;
    };
    const auto top = [&](char32_t unicode) { return verticalExtent(shapeOf(unicode)).second; };
    const auto bottom = [&](char32_t unicode) { return verticalExtent(shapeOf(unicode)).first; };
    m_measures.stem = uprightStrokeWidth(shapeOf('l'), 1);
    m_measures.bar = levelStrokeWidth(shapeOf('H'), 1);
    m_measures.zones = { { 0, bottom('o') }, { top('x'), top('o') }, { top('H'), top('O') }, { top('l'), top('f') },
        { bottom('p'), bottom('g') }, { top('1'), top('0') } };
    return m_measures;
}

FittingGuide InternalFace::guideFor(GlyphId glyph, const Source& source) const
{
    const FittingGuide& face = measures();
    const double scaleY = fit(glyph, source).d;
    const double boldY = m_spec.boldY * m_unit;
    FittingGuide guide;
    guide.em = 1;
    // All letters share the stems of the face, however far each was stretched.
    guide.stem = (face.stem * m_spec.scaleX + m_spec.boldX) * m_unit;
    guide.bar = face.bar * scaleY + boldY;
    const auto place = [&](double height) { return height * scaleY + (height > 0 ? boldY : -boldY) / 2; };
    for (const AlignmentZone& zone : face.zones)
        guide.zones.push_back({ place(zone.flat), place(zone.round) });
    return guide;
}

bool InternalFace::rasterise(
    GlyphId glyph, const Matrix& glyphToDevice, GlyphMask::Depth depth, const GlyphStyle& style, GlyphMask& mask) const
{
    Path shape;
    if (!outline(glyph, shape))
        return false;
    if (style.bold > 0)
        return rasteriseOutline(emboldened(shape, style.bold, style.bold), glyphToDevice, depth, mask);
    const Source source = isBoxDrawing(unicodeOf(glyph)) ? Source {} : find(glyph);
    if (source.isOwn && !m_boundSet)
        return rasteriseFitted(shape, glyphToDevice, depth, guideFor(glyph, source), mask);
    return rasteriseOutline(shape, glyphToDevice, depth, mask);
}

} // namespace quillrip
