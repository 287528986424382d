#include "quillrip/hpgl/pen_arm.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace quillrip::hpgl {

namespace {

/// Where positions end: what the language defines for integers.
constexpr double kFarthest = 1073741823;
/// Work of a point that stands for a curve.
constexpr std::uint64_t kUnitsPerCurvePoint = 100;

} // namespace

void PenArm::travel(Point to, bool isDrawing, bool endsVector)
{
    to.x = std::clamp(to.x, -kFarthest, kFarthest);
    to.y = std::clamp(to.y, -kFarthest, kFarthest);
    m_linePen.forgetTouch();
    if (m_polygon.isOpen())
        m_polygon.add(to, isDrawing, endsVector);
    else if (isDrawing)
        m_linePen.drawTo(m_state.pen, to, endsVector);
    else
        m_linePen.lift();
    m_state.pen = to;
}

void PenArm::travelToPoint(Point to)
{
    travel(to, m_state.isPenDown);
    if (m_state.symbol < 0 || m_polygon.isOpen())
        return;
    m_linePen.end();
    m_labels.drawSymbol();
}

std::vector<LineVertex> PenArm::pointsOf(const Arc& arc) const
{
    std::vector<LineVertex> points = arcPoints(m_coordinates, arc, m_linePen.type().isDotsAtPoints());
    m_work.charge(Work::Lines, kUnitsPerCurvePoint * points.size());
    return points;
}

void PenArm::follow(const Arc& arc)
{
    if (m_state.isLost)
        return;
    if (lengthOf(arc.radius) == 0) {
        travel(m_state.pen, m_state.isPenDown);
        return;
    }
    for (const LineVertex& vertex : pointsOf(arc))
        travel(vertex.at, m_state.isPenDown, vertex.endsVector);
    m_state.carriageReturn = m_state.pen;
}

/// A complete subpolygon by itself in the polygon buffer. Its centre is where the pen is, also behind a move with the
/// pen up: that has drawn nothing which would lead back to its start.
void PenArm::circle(double radius, double chord)
{
    if (m_state.isLost)
        return;
    const Point toStart { radius, 0 };
    if (m_polygon.isOpen()) {
        if (const auto start = m_polygon.endBeforeCircle(m_state.isPenDown))
            m_state.pen = *start;
        m_polygon.add(m_state.pen + m_coordinates.vectorToPlotter(toStart), false, true);
        for (const LineVertex& vertex : pointsOf({ m_state.pen, toStart, 360, chord }))
            m_polygon.add(vertex.at, true, vertex.endsVector);
        m_polygon.closeSubpolygon(true);
        return;
    }
    if (!m_linePen.hasPen())
        return;
    const Point start = m_state.pen + m_coordinates.vectorToPlotter(toStart);
    std::vector<LineVertex> line { { m_coordinates.toPage(start), true } };
    for (const LineVertex& vertex : pointsOf({ m_state.pen, toStart, 360, chord }))
        line.push_back({ m_coordinates.toPage(vertex.at), vertex.endsVector });
    m_linePen.drawSeparately(line);
}

void PenArm::bezier(Point control1, Point control2, Point end)
{
    if (m_state.isLost)
        return;
    const std::vector<LineVertex> points = bezierPoints(m_coordinates, m_state.pen, control1, control2, end);
    m_work.charge(Work::Lines, kUnitsPerCurvePoint * points.size());
    for (const LineVertex& vertex : points)
        travel(vertex.at, m_state.isPenDown, vertex.endsVector);
}

void PenArm::lower()
{
    if (!m_state.isPenDown)
        m_linePen.touchDown();
    m_state.isPenDown = true;
}

void PenArm::lift()
{
    if (m_polygon.isOpen())
        m_linePen.forgetTouch();
    else
        m_linePen.liftFrom(m_state.pen);
    m_state.isPenDown = false;
}

Polygon PenArm::rectangleTo(Point corner) const
{
    const Point pen = m_state.pen;
    Polygon rectangle;
    rectangle.add(pen, false, true);
    rectangle.add({ corner.x, pen.y }, true, true);
    rectangle.add(corner, true, true);
    rectangle.add({ pen.x, corner.y }, true, true);
    Point ignored;
    rectangle.closeSubpolygon(true, ignored);
    return rectangle;
}

/// A full circle has no radii.
Polygon PenArm::wedge(const Arc& arc) const
{
    Polygon wedge;
    if (std::abs(arc.sweep) < 360)
        wedge.add(arc.centre, false, true);
    wedge.add(arc.centre + m_coordinates.vectorToPlotter(arc.radius), true, true);
    for (const LineVertex& vertex : pointsOf(arc))
        wedge.add(vertex.at, true, vertex.endsVector);
    Point ignored;
    wedge.closeSubpolygon(true, ignored);
    return wedge;
}

} // namespace quillrip::hpgl
