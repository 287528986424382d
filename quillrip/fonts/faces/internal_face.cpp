#include "quillrip/fonts/faces/internal_face.h"

#include "quillrip/fonts/faces/advance_widths.h"
#include "quillrip/fonts/faces/box_drawing.h"
#include "quillrip/fonts/faces/look_alikes.h"
#include "quillrip/fonts/pixels/outline_raster.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace quillrip {

namespace {

using Make = InternalFaceSpec::Make;

/// Glyphs are stretched no further than this, and centred in what is left.
constexpr double kNarrowest = 0.75;
constexpr double kWidest = 1.35;
/// Stretching swells or starves stems, which are brought back to the face's own by moving the outline's sides. That
/// also moves the sides of thin strokes: no further than this part of the level strokes, which tell how thin they are.
constexpr double kSafeCorrection = 0.35;
/// How much of its width a letter may get beyond that at most.
constexpr double kMoreInk = 0.08;
/// Differences of stems below this are not worth moving outlines, em.
constexpr double kInvisible = 0.001;
/// Differences below this are not worth a change of stem width.
constexpr double kSameStem = 0.02;

/// The cell that rules and blocks fill, em: one em high, as the printer's own.
constexpr double kCellBottom = -0.25;
constexpr double kCellTop = 0.75;
constexpr double kRuleWidth = 0.055;

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

/// The width of the stroke that a level line at this height crosses first; 0 when it crosses none. Holds for slanted
/// stems as well.
double strokeWidthAt(const Path& path, double height)
{
    std::vector<double> crossings;
    Point start;
    Point from;
    const auto line = [&](Point to) {
        if ((from.y < height) != (to.y < height))
            crossings.push_back(from.x + (to.x - from.x) * (height - from.y) / (to.y - from.y));
        from = to;
    };
    path.forEach(
        [&](Point to) { start = from = to; }, line, [&](Point, Point, Point to) { line(to); }, [&] { line(start); });
    std::sort(crossings.begin(), crossings.end());
    return crossings.size() < 2 ? 0 : crossings[1] - crossings[0];
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
    return m_file && m_spec.boundSet != kWingdingsSet ? kNoGlyph : code;
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
    if (m_file && (m_spec.boundSet == kSymbolSet || m_spec.boundSet == kDingbatsSet)) {
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
    if (m_file && m_spec.boundSet != kWingdingsSet) {
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
        { "StandardSymbolsPS", kSymbolSet },
        { "D050000L", kDingbatsSet },
        { m_spec.boundSet == kWingdingsSet ? "Symbola_hint" : nullptr, 0 },
        { m_traits.isProportional ? "DejaVuSans" : "DejaVuSansMono", 0 },
        { "DejaVuSans", 0 },
        { "LiberationSans-Regular", 0 },
        { "Symbola_hint", 0 },
        { "Waree", 0 },
    };
    for (const Helper& helper : helpers) {
        if (!helper.stem || (m_spec.boundSet == kWingdingsSet && helper.ownSet == kSymbolSet))
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
    if (m_spec.boundSet == kWingdingsSet)
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

double InternalFace::scaleY(GlyphId glyph, const Source& source) const
{
    if (!source.isOwn)
        return 1;
    // Scripts are narrowed, faces with a large x-height grow both ways.
    return m_spec.lowerScale > 1 && isSmallLetterOrDigit(unicodeOf(glyph)) ? m_spec.lowerScale : m_spec.scaleY;
}

InternalFace::Fit InternalFace::fit(GlyphId glyph, const Source& source, const Rect& ink) const
{
    const double own = source.file->advance(source.glyph);
    const double wanted = advance(glyph) / m_unit;
    const bool isLower = source.isOwn && m_spec.lowerScale > 0 && isSmallLetterOrDigit(unicodeOf(glyph));
    const double usual = isLower ? m_spec.lowerScale : source.isOwn ? m_spec.scaleX : 1;
    const double high = scaleY(glyph, source);
    if (own <= 0 || wanted <= 0)
        return { Matrix::scaling(usual * m_unit, high * m_unit), 0 };
    if (m_spec.boundSet == kWingdingsSet) {
        const double scale = std::clamp(wanted / own, 0.6, 1.3);
        return { Matrix { scale * m_unit, 0, 0, scale * m_unit, (wanted - own * scale) / 2 * m_unit, 0 }, 0 };
    }
    double wide = wanted / own;
    if (std::abs(wide - 1) < kSameStem)
        wide = 1;
    wide = std::clamp(wide, usual * kNarrowest, usual * kWidest);
    // A fixed face's cell never lets a glyph stick out that would fit when narrowed.
    if (m_spec.fixedAdvance > 0)
        wide = std::min(wide, source.isOwn ? usual : wanted / own);
    const double correction = source.isOwn ? stemCorrection(wide, usual) : 0;
    // The space at a letter's sides goes with its height; what a wide cell has beyond that belongs to the letter, and
    // so does what its stems lose.
    const double spare = (own - ink.width()) * std::max(wide - high, 0.0);
    const double more = ink.width() > 0 ? std::min(spare / ink.width(), wide * kMoreInk) : 0;
    const double inkScale = wide + more - (correction < 0 && ink.width() > 0 ? correction / ink.width() : 0);
    const double middle = ink.empty() ? own / 2 : (ink.left + ink.right) / 2;
    const double shift = (wanted - own * wide) / 2 + middle * (wide - inkScale);
    return { Matrix { inkScale * m_unit, 0, 0, high * m_unit, shift * m_unit, 0 },
        (source.isOwn ? stemCorrection(inkScale, usual) : 0) * m_unit };
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
    const Fit fitted = fit(glyph, source, shape.bounds());
    shape = shape.transformed(fitted.toGlyph);
    const double boldX = fitted.stemCorrection + (source.isOwn ? m_spec.boldX * m_unit : 0);
    const double boldY = source.isOwn ? m_spec.boldY * m_unit : 0;
    if (std::abs(boldX) > kInvisible || boldY > 0)
        shape = emboldened(shape, boldX, boldY);
    path.append(shape);
    return true;
}

double InternalFace::stemCorrection(double wide, double usual) const
{
    if (m_boundSet)
        return 0;
    const FittingGuide& face = measures();
    const double swollen = (wide - usual) * m_stem;
    const double safe = kSafeCorrection * std::min(m_stem, face.bar);
    return -std::clamp(swollen, -safe, safe);
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
    m_stem = strokeWidthAt(shapeOf('l'), top('l') / 2);
    m_measures.zones = { { 0, bottom('o') }, { top('x'), top('o') }, { top('H'), top('O') }, { top('l'), top('f') },
        { bottom('p'), bottom('g') }, { top('1'), top('0') } };
    return m_measures;
}

FittingGuide InternalFace::guideFor(GlyphId glyph, const Source& source) const
{
    const FittingGuide& face = measures();
    const double high = scaleY(glyph, source) * m_unit;
    const double boldY = m_spec.boldY * m_unit;
    FittingGuide guide;
    guide.em = 1;
    // All letters share the stems of the face, however far each was stretched.
    guide.stem = (face.stem * m_spec.scaleX + m_spec.boldX) * m_unit;
    guide.bar = face.bar * high + boldY;
    const auto place = [&](double height) { return height * high + (height > 0 ? boldY : -boldY) / 2; };
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
