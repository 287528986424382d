// Single characters of labels, stroked or filled.

#include "quillrip/hpgl/label.h"
#include "quillrip/hpgl/machine.h"
#include "quillrip/hpgl/stick_font.h"

#include <algorithm>
#include <cmath>

namespace quillrip::hpgl {

namespace {

/// Width of character edges in ems.
constexpr double kEdgeWidth = 1.0 / 40;

/// Curves as lines, for hatching.
void flatten(const Path& path, Polygon& polygon)
{
    constexpr int kSteps = 8;
    std::size_t at = 0;
    Point current;
    Point ignored;
    const auto& points = path.points();
    for (const Path::Verb verb : path.verbs()) {
        switch (verb) {
        case Path::Verb::Move:
            polygon.closeSubpolygon(true, ignored);
            current = points[at++];
            polygon.add(current, true, true);
            break;
        case Path::Verb::Line:
            current = points[at++];
            polygon.add(current, true, true);
            break;
        case Path::Verb::Cubic:
            for (int i = 1; i <= kSteps; ++i) {
                const double t = static_cast<double>(i) / kSteps;
                const double u = 1 - t;
                polygon.add(current * (u * u * u) + points[at] * (3 * u * u * t) + points[at + 1] * (3 * u * t * t)
                        + points[at + 2] * (t * t * t),
                    true, i == kSteps);
            }
            current = points[at + 2];
            at += 3;
            break;
        case Path::Verb::Close:
            break;
        }
    }
    polygon.closeSubpolygon(true, ignored);
}

} // namespace

/// Draws one character with its reference point at a place in plotter units.
void Machine::drawCharacter(const LabelMetrics& metrics, std::uint32_t glyph, Point at)
{
    if (m_state.selectedPen < 0)
        return;
    m_hasDrawn = true;
    const Point x = metrics.along * metrics.unitWidth;
    const Point y = metrics.up * metrics.unitHeight + metrics.along * (metrics.slant * metrics.unitHeight);
    const Matrix glyphToPlotter { x.x, x.y, y.x, y.y, at.x, at.y };
    updateClip();
    if (!metrics.font)
        drawStrokedCharacter(metrics, static_cast<char32_t>(glyph), glyphToPlotter);
    else
        drawTypefaceCharacter(metrics.font, glyph, glyphToPlotter);
}

void Machine::drawStrokedCharacter(const LabelMetrics& metrics, char32_t character, const Matrix& glyphToPlotter)
{
    const StickGlyph* const glyph = stickGlyph(character);
    if (!glyph)
        return;
    std::optional<Ink> ink = penInk(m_state.selectedPen);
    constexpr int kFirstRasterType = 10;
    if (m_state.text.fillMode >= 2 && m_state.fill.type >= kFirstRasterType)
        ink = fillInk();
    if (!ink)
        return;
    StrokeStyle style;
    style.cap = LineCap::Round;
    style.join = LineJoin::Round;
    style.width = metrics.strokeWidth < 0
        ? penWidthDecipoints()
        : metrics.strokeWidth * m_plotScale * kDecipointsPerInch / kPlotterUnitsPerInch;
    Matrix toPlotter = glyphToPlotter;
    if (metrics.isArc)
        toPlotter = Matrix::translation(-glyph->left, 0) * glyphToPlotter;
    m_surface.stroke(glyph->strokes.transformed(toPlotter * m_plotterToPage), style, *ink);
}

void Machine::drawTypefaceCharacter(const Font& font, GlyphId glyph, const Matrix& glyphToPlotter)
{
    const TextState& text = m_state.text;
    const Matrix toPage = glyphToPlotter * m_plotterToPage;
    const bool hasEdge = text.hasEdgePen ? text.edgePen != 0 : text.fillMode == 1 || text.fillMode == 3;
    const bool isPlain = text.fillMode == 0 && !hasEdge;
    Path outline;
    const bool hasOutline = !isPlain && !text.allowsBitmapFonts && font.face->outline(glyph, outline);
    if (!hasOutline) {
        std::optional<Ink> ink = text.fillMode >= 2 ? fillInk() : penInk(m_state.selectedPen);
        if (ink)
            m_surface.drawGlyph(*font.face, glyph, toPage, *ink);
        return;
    }
    const Path onPage = outline.transformed(toPage);
    if (text.fillMode == 0) {
        if (const std::optional<Ink> ink = penInk(m_state.selectedPen))
            m_surface.fill(onPage, FillRule::NonZero, *ink);
    } else if (text.fillMode >= 2) {
        if (m_state.fill.type == 3 || m_state.fill.type == 4) {
            Polygon polygon;
            flatten(outline.transformed(glyphToPlotter), polygon);
            fillPolygon(polygon, true);
        } else {
            fillPath(onPage, FillRule::NonZero);
        }
    }
    const int edgePen = text.hasEdgePen ? text.edgePen : m_state.selectedPen;
    if (const std::optional<Ink> ink = hasEdge ? penInk(edgePen) : std::nullopt) {
        StrokeStyle style;
        style.join = LineJoin::Round;
        style.width = kEdgeWidth * std::sqrt(std::abs(toPage.determinant()));
        m_surface.stroke(onPage, style, *ink);
    }
}

} // namespace quillrip::hpgl
