// Arcs, circles and Bezier curves.

#include "quillrip/hpgl/machine.h"

#include <algorithm>
#include <cmath>

namespace quillrip::hpgl {

namespace {

constexpr double kRadians = M_PI / 180;
constexpr double kDefaultChord = 5;
/// How far a curve may lie from what is drawn for it, in decipoints: an eighth of a pixel at 600 dpi.
constexpr double kFlatness = 0.15;
constexpr double kMostSteps = 4000;

Point turned(Point vector, double degrees)
{
    const double cosine = std::cos(degrees * kRadians);
    const double sine = std::sin(degrees * kRadians);
    return { vector.x * cosine - vector.y * sine, vector.x * sine + vector.y * cosine };
}

double lengthOf(Point vector) { return std::hypot(vector.x, vector.y); }

} // namespace

/// The chord angle that an operand asks for, in degrees; `radius` in user units is for chords given by deviation.
double Machine::chordAngle(std::size_t index, double radius) const
{
    if (index >= operandCount())
        return kDefaultChord;
    if (m_state.chordIsDeviation) {
        if (!(radius > 0))
            return kDefaultChord;
        const double share = std::clamp(std::abs(operand(index)) / radius, 0.0, 1.0);
        return std::clamp(2 * std::acos(1 - share) / kRadians, 0.5, 180.0);
    }
    return std::clamp(std::abs(operand(index)), 0.5, 180.0);
}

/// Points of an arc behind its start, in plotter units. `radius` leads from the centre to the start in user units,
/// `sweep` and `chord` are degrees. Chord angles above the default are taken at their word; others are made as fine
/// as the page can show.
std::vector<LineVertex> Machine::arcPoints(Point centre, Point radius, double sweep, double chord) const
{
    std::vector<LineVertex> points;
    double steps = std::max(1.0, std::ceil(std::abs(sweep) / chord - 1e-9));
    const bool showsChords = chord > kDefaultChord || (!m_state.lineType.isSolid && m_state.lineType.type == 0);
    if (!showsChords) {
        const Point plotter = m_userToPlotter.applyVector({ lengthOf(radius), lengthOf(radius) });
        const double onPage = std::max(lengthOf(m_plotterToPage.applyVector({ plotter.x, 0 })),
            lengthOf(m_plotterToPage.applyVector({ 0, plotter.y })));
        if (onPage > kFlatness) {
            const double finest = 2 * std::acos(1 - kFlatness / onPage) / kRadians;
            steps = std::max(steps, std::min(kMostSteps, std::ceil(std::abs(sweep) / finest)));
        }
    }
    const auto count = static_cast<std::size_t>(steps);
    points.reserve(count);
    for (std::size_t i = 1; i <= count; ++i) {
        const double angle = sweep * static_cast<double>(i) / steps;
        points.push_back({ centre + m_userToPlotter.applyVector(turned(radius, angle)), showsChords || i == count });
    }
    if (std::abs(sweep) >= 360)
        points.back().at = centre + m_userToPlotter.applyVector(radius);
    return points;
}

void Machine::arcTo(Point centre, Point radius, double sweep, double chord)
{
    if (lengthOf(radius) == 0) {
        travelTo(m_state.pen, m_state.isPenDown);
        return;
    }
    for (const LineVertex& vertex : arcPoints(centre, radius, sweep, chord))
        travelTo(vertex.at, m_state.isPenDown, vertex.endsVector);
    m_state.carriageReturn = m_state.pen;
}

void Machine::arcAbsolute()
{
    if (operandCount() < 3)
        return;
    const Point centre = m_userToPlotter.apply({ operand(0), operand(1) });
    const Point radius = m_userToPlotter.revertVector(m_state.pen - centre);
    arcTo(centre, radius, std::clamp(operand(2), -360.0, 360.0), chordAngle(3, lengthOf(radius)));
}

void Machine::arcRelative()
{
    if (operandCount() < 3)
        return;
    const Point toCentre { operand(0), operand(1) };
    const Point centre = m_state.pen + m_userToPlotter.applyVector(toCentre);
    arcTo(centre, toCentre * -1, std::clamp(operand(2), -360.0, 360.0), chordAngle(3, lengthOf(toCentre)));
}

/// `middle` and `end` lead from the pen, in user units.
void Machine::arcThreePoint(Point middle, Point end, std::size_t chordIndex)
{
    const Point start = m_state.pen;
    const Point target = start + m_userToPlotter.applyVector(end);
    const bool middleIsStart = middle == Point {};
    const bool endIsStart = end == Point {};
    if (endIsStart && !middleIsStart) {
        // A full circle on the diameter from the start to the middle point.
        const Point toCentre = middle * 0.5;
        arcTo(start + m_userToPlotter.applyVector(toCentre), toCentre * -1, 360,
            chordAngle(chordIndex, lengthOf(toCentre)));
        return;
    }
    const double cross = middle.x * end.y - middle.y * end.x;
    const double scale = lengthOf(middle) * lengthOf(end);
    if (middleIsStart || middle == end || std::abs(cross) <= scale * 1e-12) {
        travelTo(target, m_state.isPenDown);
        m_state.carriageReturn = m_state.pen;
        return;
    }
    const double m2 = middle.x * middle.x + middle.y * middle.y;
    const double e2 = end.x * end.x + end.y * end.y;
    const Point toCentre { (m2 * end.y - e2 * middle.y) / (2 * cross), (e2 * middle.x - m2 * end.x) / (2 * cross) };
    const Point fromCentre = toCentre * -1;
    const Point last = end - toCentre;
    double sweep
        = std::atan2(fromCentre.x * last.y - fromCentre.y * last.x, fromCentre.x * last.x + fromCentre.y * last.y)
        / kRadians;
    // Counter-clockwise when the end lies to the left of the way from the start to the middle.
    if (cross > 0 && sweep < 0)
        sweep += 360;
    if (cross < 0 && sweep > 0)
        sweep -= 360;
    arcTo(start + m_userToPlotter.applyVector(toCentre), fromCentre, sweep, chordAngle(chordIndex, lengthOf(toCentre)));
}

void Machine::arcThreePointAbsolute()
{
    if (operandCount() < 4)
        return;
    const auto fromPen = [&](std::size_t i) {
        return m_userToPlotter.revertVector(m_userToPlotter.apply({ operand(i), operand(i + 1) }) - m_state.pen);
    };
    arcThreePoint(fromPen(0), fromPen(2), 4);
}

void Machine::arcThreePointRelative()
{
    if (operandCount() < 4)
        return;
    arcThreePoint({ operand(0), operand(1) }, { operand(2), operand(3) }, 4);
}

/// Plotter units.
void Machine::bezierTo(Point control1, Point control2, Point end)
{
    const Point start = m_state.pen;
    // Distance of the control polygon's second differences bounds that of a chord from the curve.
    const auto onPage = [&](Point v) { return lengthOf(m_plotterToPage.applyVector(v)); };
    const double bend = std::max(onPage(start - control1 * 2 + control2), onPage(control1 - control2 * 2 + end));
    const double steps = std::clamp(std::ceil(std::sqrt(0.75 * bend / kFlatness)), 1.0, kMostSteps);
    const auto count = static_cast<std::size_t>(steps);
    for (std::size_t i = 1; i < count; ++i) {
        const double t = static_cast<double>(i) / steps;
        const double u = 1 - t;
        travelTo(start * (u * u * u) + control1 * (3 * u * u * t) + control2 * (3 * u * t * t) + end * (t * t * t),
            m_state.isPenDown, false);
    }
    travelTo(end, m_state.isPenDown);
}

void Machine::bezierAbsolute()
{
    for (std::size_t i = 0; i + 5 < operandCount(); i += 6) {
        bezierTo(m_userToPlotter.apply({ operand(i), operand(i + 1) }),
            m_userToPlotter.apply({ operand(i + 2), operand(i + 3) }),
            m_userToPlotter.apply({ operand(i + 4), operand(i + 5) }));
    }
    m_state.carriageReturn = m_state.pen;
}

void Machine::bezierRelative()
{
    for (std::size_t i = 0; i + 5 < operandCount(); i += 6) {
        const Point start = m_state.pen;
        const auto place = [&](std::size_t at) {
            return start + m_userToPlotter.applyVector({ operand(at), operand(at + 1) });
        };
        bezierTo(place(i), place(i + 2), place(i + 4));
    }
    m_state.carriageReturn = m_state.pen;
}

void Machine::circle()
{
    if (m_operands.empty())
        return;
    const Point radius { operand(0), 0 };
    const double chord = chordAngle(1, std::abs(radius.x));
    if (m_isPolygonMode) {
        m_polygon.closeSubpolygon(m_state.isPenDown, m_state.pen);
        addToPolygon(m_state.pen + m_userToPlotter.applyVector(radius), false, true);
        for (const LineVertex& vertex : arcPoints(m_state.pen, radius, 360, chord))
            addToPolygon(vertex.at, true, vertex.endsVector);
        Point ignored;
        m_polygon.closeSubpolygon(true, ignored);
        return;
    }
    if (m_state.selectedPen < 0)
        return;
    std::vector<LineVertex> line { { m_plotterToPage.apply(m_state.pen + m_userToPlotter.applyVector(radius)), true } };
    for (const LineVertex& vertex : arcPoints(m_state.pen, radius, 360, chord))
        line.push_back({ m_plotterToPage.apply(vertex.at), vertex.endsVector });
    drawSeparateLine(line);
}

void Machine::chordTolerance()
{
    const int mode = clampedInteger(0, 0);
    if (mode == 0 || mode == 1)
        m_state.chordIsDeviation = mode == 1;
}

} // namespace quillrip::hpgl
