#include "quillrip/hpgl/curves.h"

#include "quillrip/base/units.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace quillrip::hpgl {

namespace {

constexpr double kDefaultChord = 5;
/// How far a curve may lie from what is drawn for it, in decipoints: an eighth of a pixel at 600 dpi.
constexpr double kFlatness = 0.15;
constexpr double kMostSteps = 4000;

Point turned(Point vector, double degrees)
{
    const double cosine = std::cos(degrees * kRadiansPerDegree);
    const double sine = std::sin(degrees * kRadiansPerDegree);
    return { vector.x * cosine - vector.y * sine, vector.x * sine + vector.y * cosine };
}

} // namespace

double lengthOf(Point vector) { return std::hypot(vector.x, vector.y); }

double chordAngle(std::optional<double> operand, double radius, bool isDeviation)
{
    if (!operand)
        return kDefaultChord;
    if (isDeviation) {
        if (!(radius > 0))
            return kDefaultChord;
        const double share = std::clamp(std::abs(*operand) / radius, 0.0, 1.0);
        return std::clamp(2 * std::acos(1 - share) / kRadiansPerDegree, 0.5, 180.0);
    }
    return std::clamp(std::abs(*operand), 0.5, 180.0);
}

std::vector<LineVertex> arcPoints(const Coordinates& coordinates, const Arc& arc, bool keepsChords)
{
    std::vector<LineVertex> points;
    double steps = std::max(1.0, std::ceil(std::abs(arc.sweep) / arc.chord - 1e-9));
    const bool showsChords = arc.chord > kDefaultChord || keepsChords;
    if (!showsChords) {
        const double radius = lengthOf(arc.radius);
        const Point plotter = coordinates.vectorToPlotter({ radius, radius });
        const double onPage = std::max(
            lengthOf(coordinates.vectorToPage({ plotter.x, 0 })), lengthOf(coordinates.vectorToPage({ 0, plotter.y })));
        if (onPage > kFlatness) {
            const double finest = 2 * std::acos(1 - kFlatness / onPage) / kRadiansPerDegree;
            steps = std::max(steps, std::min(kMostSteps, std::ceil(std::abs(arc.sweep) / finest)));
        }
    }
    const auto count = static_cast<std::size_t>(steps);
    points.reserve(count);
    for (std::size_t i = 1; i <= count; ++i) {
        const double angle = arc.sweep * static_cast<double>(i) / steps;
        points.push_back(
            { arc.centre + coordinates.vectorToPlotter(turned(arc.radius, angle)), showsChords || i == count });
    }
    if (std::abs(arc.sweep) >= 360)
        points.back().at = arc.centre + coordinates.vectorToPlotter(arc.radius);
    return points;
}

std::optional<Arc> arcThrough(const Coordinates& coordinates, Point start, Point middle, Point end)
{
    const bool middleIsStart = middle == Point {};
    const bool endIsStart = end == Point {};
    if (endIsStart && !middleIsStart) {
        // A full circle on the diameter from the start to the middle point.
        const Point toCentre = middle * 0.5;
        return Arc { start + coordinates.vectorToPlotter(toCentre), toCentre * -1 };
    }
    const double cross = middle.x * end.y - middle.y * end.x;
    const double scale = lengthOf(middle) * lengthOf(end);
    if (middleIsStart || middle == end || std::abs(cross) <= scale * 1e-12)
        return std::nullopt;
    const double m2 = middle.x * middle.x + middle.y * middle.y;
    const double e2 = end.x * end.x + end.y * end.y;
    const Point toCentre { (m2 * end.y - e2 * middle.y) / (2 * cross), (e2 * middle.x - m2 * end.x) / (2 * cross) };
    const Point fromCentre = toCentre * -1;
    const Point last = end - toCentre;
    double sweep
        = std::atan2(fromCentre.x * last.y - fromCentre.y * last.x, fromCentre.x * last.x + fromCentre.y * last.y)
        / kRadiansPerDegree;
    // Counter-clockwise when the end lies to the left of the way from the start to the middle.
    if (cross > 0 && sweep < 0)
        sweep += 360;
    if (cross < 0 && sweep > 0)
        sweep -= 360;
    return Arc { start + coordinates.vectorToPlotter(toCentre), fromCentre, sweep };
}

std::vector<LineVertex> bezierPoints(
    const Coordinates& coordinates, Point start, Point control1, Point control2, Point end)
{
    // Distance of the control polygon's second differences bounds that of a chord from the curve.
    const auto onPage = [&](Point v) { return lengthOf(coordinates.vectorToPage(v)); };
    const double bend = std::max(onPage(start - control1 * 2 + control2), onPage(control1 - control2 * 2 + end));
    const double steps = std::clamp(std::ceil(std::sqrt(0.75 * bend / kFlatness)), 1.0, kMostSteps);
    const auto count = static_cast<std::size_t>(steps);
    std::vector<LineVertex> points;
    points.reserve(count);
    for (std::size_t i = 1; i < count; ++i) {
        const double t = static_cast<double>(i) / steps;
        const double u = 1 - t;
        points.push_back(
            { start * (u * u * u) + control1 * (3 * u * u * t) + control2 * (3 * u * t * t) + end * (t * t * t),
                false });
    }
    points.push_back({ end, true });
    return points;
}

} // namespace quillrip::hpgl
