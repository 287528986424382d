// The polygon buffer, rectangles and wedges.

#include "quillrip/hpgl/hatching.h"
#include "quillrip/hpgl/machine.h"

#include <algorithm>
#include <cmath>

namespace quillrip::hpgl {

namespace {

constexpr std::size_t kMostHatchCrossings = std::size_t { 4 } << 20;

} // namespace

void Machine::polygonMode()
{
    const int mode = clampedInteger(0, 0);
    if (mode == 0) {
        m_polygon.clear();
        m_polygonIsFull = false;
        m_isPolygonMode = true;
        m_hasDotToDraw = false;
        addToPolygon(m_state.pen, false, true);
    } else if (m_isPolygonMode && (mode == 1 || mode == 2)) {
        m_polygon.closeSubpolygon(m_state.isPenDown, m_state.pen);
        m_isPolygonMode = mode == 1;
    }
}

void Machine::addToPolygon(Point at, bool isPenDown, bool endsVector)
{
    if (m_polygon.size() < m_limits.pathPoints) {
        m_polygon.add(at, isPenDown, endsVector);
    } else if (!m_polygonIsFull) {
        m_polygonIsFull = true;
        warn("hpgl.polygon-too-long", "a polygon has more corners than fit the limit, the rest is left out");
    }
}

void Machine::fillPolygon()
{
    const int method = clampedInteger(0, 0);
    if (method == 0 || method == 1)
        fillPolygon(m_polygon, method == 1);
}

void Machine::edgePolygon() { edgePolygon(m_polygon); }

void Machine::fillPolygon(const Polygon& polygon, bool isNonZero)
{
    if (polygon.empty())
        return;
    const FillType& fill = m_state.fill;
    constexpr double kRightAngle = 90;
    if (fill.type == 3) {
        hatchPolygon(polygon, isNonZero, fill.parallel, 0);
    } else if (fill.type == 4) {
        hatchPolygon(polygon, isNonZero, fill.cross, 0);
        hatchPolygon(polygon, isNonZero, fill.cross, kRightAngle);
    } else {
        fillPath(polygon.outline(m_plotterToPage), isNonZero ? FillRule::NonZero : FillRule::EvenOdd);
    }
}

/// Fills a shape of the page with anything but hatch lines.
void Machine::fillPath(const Path& page, FillRule rule)
{
    std::optional<Ink> ink = fillInk();
    if (!ink)
        return;
    ink->isArea = true;
    m_hasDrawn = true;
    flushStrokes();
    updateClip();
    m_surface.fill(page, rule, *ink);
}

void Machine::hatchPolygon(const Polygon& polygon, bool isNonZero, const Hatching& hatching, double turn)
{
    HatchRequest request;
    request.spacing = hatching.spacing;
    if (hatching.unit == Hatching::Unit::DiagonalPercent)
        request.spacing *= diagonal() / 100;
    else if (hatching.unit == Hatching::Unit::UserUnits)
        request.spacing *= std::abs(m_userToPlotter.scaleX);
    request.angle = hatching.angle;
    if (m_userToPlotter.scaleX * m_userToPlotter.scaleY < 0)
        request.angle = -request.angle;
    request.angle += turn;
    request.anchor = m_state.anchor;
    request.isNonZero = isNonZero;
    request.atMost = kMostHatchCrossings;
    updateClip();
    const Matrix pageToPlotter = m_plotterToPage.inverted();
    PageRect visible = PageRect::nothing();
    visible.include(pageToPlotter.apply({ m_clip.left, m_clip.top }));
    visible.include(pageToPlotter.apply({ m_clip.right, m_clip.bottom }));
    request.visibleLow = { visible.left, visible.top };
    request.visibleHigh = { visible.right, visible.bottom };

    std::vector<HatchLine> lines;
    const double spacingOnPage = request.spacing * m_plotScale * kDecipointsPerInch / kPlotterUnitsPerInch;
    // Lines that touch each other, or that no device can tell apart, make a solid area.
    constexpr double kFinestSpacing = 0.6;
    const bool isSolid = m_state.lineType.isSolid && spacingOnPage <= std::max(penWidthDecipoints(), kFinestSpacing);
    if (isSolid || !m_surface.needsDetail() || spacingOnPage <= kFinestSpacing || !hatch(polygon, request, lines)) {
        std::optional<Ink> ink = lineInk();
        if (!ink)
            return;
        ink->isArea = true;
        m_surface.fill(polygon.outline(m_plotterToPage), isNonZero ? FillRule::NonZero : FillRule::EvenOdd, *ink);
        return;
    }
    for (const HatchLine& line : lines)
        drawSeparateLine({ { m_plotterToPage.apply(line.from), true }, { m_plotterToPage.apply(line.to), true } });
    flushStrokes();
}

/// Draws the edges that were drawn with the pen down.
void Machine::edgePolygon(const Polygon& polygon)
{
    if (m_state.selectedPen < 0)
        return;
    std::vector<LineVertex> line;
    for (std::size_t i = 0; i < polygon.subpolygonCount(); ++i) {
        line.clear();
        for (const Polygon::Vertex* vertex = polygon.begin(i); vertex != polygon.end(i); ++vertex) {
            if (vertex != polygon.begin(i) && !vertex->isPenDown) {
                if (line.size() > 1)
                    drawSeparateLine(line);
                line.clear();
            }
            line.push_back({ m_plotterToPage.apply(vertex->at), vertex->endsVector });
        }
        if (line.size() > 1)
            drawSeparateLine(line);
    }
    flushStrokes();
}

/// Puts a rectangle from the pen to the opposite corner (plotter units) into the buffer.
void Machine::rectangleTo(Point corner)
{
    const Point pen = m_state.pen;
    m_polygon.clear();
    m_polygon.add(pen, false, true);
    m_polygon.add({ corner.x, pen.y }, true, true);
    m_polygon.add(corner, true, true);
    m_polygon.add({ pen.x, corner.y }, true, true);
    Point ignored;
    m_polygon.closeSubpolygon(true, ignored);
}

Point Machine::rectangleCorner(bool isRelative) const
{
    const Point point { operand(0), operand(1) };
    return isRelative ? m_state.pen + m_userToPlotter.applyVector(point) : m_userToPlotter.apply(point);
}

void Machine::fillRectangle(bool isRelative)
{
    if (operandCount() < 2)
        return;
    rectangleTo(rectangleCorner(isRelative));
    fillPolygon(m_polygon, false);
}

void Machine::edgeRectangle(bool isRelative)
{
    if (operandCount() < 2)
        return;
    rectangleTo(rectangleCorner(isRelative));
    edgePolygon(m_polygon);
}

void Machine::fillRectangleAbsolute() { fillRectangle(false); }

void Machine::fillRectangleRelative() { fillRectangle(true); }

void Machine::edgeRectangleAbsolute() { edgeRectangle(false); }

void Machine::edgeRectangleRelative() { edgeRectangle(true); }

/// Puts a wedge round the pen into the buffer; a full circle has no radii.
bool Machine::wedge()
{
    if (operandCount() < 3)
        return false;
    const double start = std::fmod(operand(1), 360.0) * M_PI / 180;
    const double sweep = std::clamp(operand(2), -360.0, 360.0);
    const Point radius { operand(0) * std::cos(start), operand(0) * std::sin(start) };
    const Point centre = m_state.pen;
    m_polygon.clear();
    if (std::abs(sweep) < 360)
        m_polygon.add(centre, false, true);
    m_polygon.add(centre + m_userToPlotter.applyVector(radius), true, true);
    for (const LineVertex& vertex : arcPoints(centre, radius, sweep, chordAngle(3, std::abs(operand(0)))))
        m_polygon.add(vertex.at, true, vertex.endsVector);
    Point ignored;
    m_polygon.closeSubpolygon(true, ignored);
    return true;
}

void Machine::fillWedge()
{
    if (wedge())
        fillPolygon(m_polygon, false);
}

void Machine::edgeWedge()
{
    if (wedge())
        edgePolygon(m_polygon);
}

} // namespace quillrip::hpgl
