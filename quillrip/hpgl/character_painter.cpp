#include "quillrip/hpgl/character_painter.h"

#include "quillrip/hpgl/polygon.h"
#include "quillrip/hpgl/stick_font.h"

#include <cmath>
#include <optional>

namespace quillrip::hpgl {

namespace {

/// Width of character edges in ems.
constexpr double kEdgeWidth = 1.0 / 40;
/// Work of a character without its painting, and of taking its outline from the face.
constexpr std::uint64_t kUnitsPerCharacter = 300;
constexpr std::uint64_t kUnitsPerOutline = 10000;

/// Curves as lines, for hatching.
Polygon flattened(const Path& path)
{
    constexpr int kSteps = 8;
    Polygon polygon;
    Point current;
    Point ignored;
    const auto add = [&](Point to) {
        current = to;
        polygon.add(to, true, true);
    };
    path.forEach(
        [&](Point to) {
            polygon.closeSubpolygon(true, ignored);
            add(to);
        },
        add,
        [&](Point control1, Point control2, Point to) {
            for (int i = 1; i <= kSteps; ++i) {
                const double t = static_cast<double>(i) / kSteps;
                const double u = 1 - t;
                polygon.add(
                    current * (u * u * u) + control1 * (3 * u * u * t) + control2 * (3 * u * t * t) + to * (t * t * t),
                    true, i == kSteps);
            }
            current = to;
        },
        [] {});
    polygon.closeSubpolygon(true, ignored);
    return polygon;
}

} // namespace

CharacterPainter::CharacterPainter(Surface& surface, State& state, const TextState& text,
    const Coordinates& coordinates, const Pens& pens, Inks& inks, PlotClip& clip, AreaFiller& areas, WorkMeter& work)
    : m_surface(surface)
    , m_state(state)
    , m_text(text)
    , m_coordinates(coordinates)
    , m_pens(pens)
    , m_inks(inks)
    , m_clip(clip)
    , m_areas(areas)
    , m_work(work)
{
}

void CharacterPainter::draw(const LabelMetrics& metrics, std::uint32_t glyph, Point at)
{
    if (!m_pens.hasPen() || !m_work.allows(Work::Glyphs, kUnitsPerCharacter))
        return;
    m_state.hasDrawn = true;
    const Point x = metrics.along * metrics.unitWidth;
    const Point y = metrics.up * metrics.unitHeight + metrics.along * (metrics.slant * metrics.unitHeight);
    const Matrix glyphToPlotter { x.x, x.y, y.x, y.y, at.x, at.y };
    m_clip.apply();
    if (!metrics.font)
        drawStroked(metrics, static_cast<char32_t>(glyph), glyphToPlotter);
    else
        drawTypeface(metrics.font, glyph, glyphToPlotter);
}

void CharacterPainter::drawStroked(const LabelMetrics& metrics, char32_t character, const Matrix& glyphToPlotter)
{
    const StickGlyph* const glyph = stickGlyph(character);
    if (!glyph)
        return;
    // Hatch lines would fall between the strokes, so only inks that cover apply to them.
    const FillType& fill = m_inks.fillType();
    const bool isPatterned = m_text.isFilledByType() && fill.kind != FillKind::Solid && !fill.isHatched();
    const std::optional<PenInk> ink = isPatterned ? m_inks.ofAreas() : m_inks.ofSelectedPen();
    if (!ink)
        return;
    StrokeStyle style;
    style.cap = LineCap::Round;
    style.join = LineJoin::Round;
    style.width = metrics.strokeWidth < 0 ? m_pens.widthDecipoints() : m_coordinates.toDecipoints(metrics.strokeWidth);
    Matrix toPlotter = glyphToPlotter;
    if (metrics.isArc)
        toPlotter = Matrix::translation(-glyph->left, 0) * glyphToPlotter;
    m_surface.stroke(glyph->strokes.transformed(toPlotter * m_coordinates.plotterToPage()), style, *ink);
}

void CharacterPainter::drawTypeface(const Font& font, GlyphId glyph, const Matrix& glyphToPlotter)
{
    const Matrix toPage = glyphToPlotter * m_coordinates.plotterToPage();
    const bool hasEdge = m_text.hasEdgePen ? m_text.edgePen != 0 : m_text.isEdged();
    const bool isPlain = m_text.fill == CharacterFill::Pen && !hasEdge;
    Path outline;
    const bool hasOutline = !isPlain && !m_text.allowsBitmapFonts && font.face->outline(glyph, outline);
    if (!hasOutline) {
        if (const std::optional<PenInk> ink = m_text.isFilledByType() ? m_inks.ofAreas() : m_inks.ofSelectedPen())
            m_surface.drawGlyph(*font.face, glyph, toPage, *ink);
        return;
    }
    m_work.charge(Work::Glyphs, kUnitsPerOutline);
    const Path onPage = outline.transformed(toPage);
    if (m_text.fill == CharacterFill::Pen) {
        if (const std::optional<PenInk> ink = m_inks.ofSelectedPen())
            m_surface.fill(onPage, FillRule::NonZero, *ink);
    } else if (m_text.isFilledByType() && m_inks.fillType().isHatched()) {
        m_areas.fill(flattened(outline.transformed(glyphToPlotter)), FillRule::NonZero);
    } else if (m_text.isFilledByType()) {
        m_areas.fill(onPage, FillRule::NonZero);
    }
    const int edgePen = m_text.hasEdgePen ? m_text.edgePen : m_pens.selected();
    if (const std::optional<PenInk> ink = hasEdge ? m_inks.ofPen(edgePen) : std::nullopt) {
        StrokeStyle style;
        style.join = LineJoin::Round;
        style.width = kEdgeWidth * std::sqrt(std::abs(toPage.determinant()));
        m_surface.stroke(onPage, style, *ink);
    }
}

} // namespace quillrip::hpgl
