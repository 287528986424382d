#include "quillrip/hpgl/hatching.h"

#include "quillrip/base/units.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace quillrip::hpgl {

namespace {

/// Work of an edge of the polygon, and of its crossing with a line: finding, sorting, pairing.
constexpr std::uint64_t kUnitsPerEdge = 30;
constexpr std::uint64_t kUnitsPerCrossing = 150;

struct Crossing {
    std::int64_t line; ///< how many spacings from the anchor
    double along;
    int direction; ///< of the edge, for the winding number
};

} // namespace

bool hatch(const Polygon& polygon, const HatchRequest& request, WorkMeter& work, std::vector<HatchLine>& lines)
{
    // In the hatching's own axes the lines are v = k * spacing and run along u.
    const double radians = request.angle * kRadiansPerDegree;
    const double cosine = std::cos(radians);
    const double sine = std::sin(radians);
    const auto toHatch = [&](Point p) {
        const Point d = p - request.anchor;
        return Point { d.x * cosine + d.y * sine, d.y * cosine - d.x * sine };
    };
    const auto fromHatch = [&](double u, double v) {
        return request.anchor + Point { u * cosine - v * sine, u * sine + v * cosine };
    };

    const Rect& visible = request.visible;
    double lowest = 1e300;
    double highest = -1e300;
    for (const Point corner : { Point { visible.left, visible.top }, Point { visible.right, visible.top },
             Point { visible.right, visible.bottom }, Point { visible.left, visible.bottom } }) {
        const double v = toHatch(corner).y / request.spacing;
        lowest = std::min(lowest, v);
        highest = std::max(highest, v);
    }
    if (!(highest - lowest < 1e7) || std::abs(lowest) > 1e15)
        return false;

    std::vector<Crossing> crossings;
    for (std::size_t i = 0; i < polygon.subpolygonCount(); ++i) {
        const Polygon::Vertex* const first = polygon.begin(i);
        const Polygon::Vertex* const end = polygon.end(i);
        for (const Polygon::Vertex* vertex = first; vertex != end; ++vertex) {
            if (!work.allows(Work::Lines, kUnitsPerEdge))
                return false;
            Point a = toHatch(vertex->at);
            Point b = toHatch((vertex + 1 == end ? first : vertex + 1)->at);
            const int direction = a.y < b.y ? 1 : -1;
            if (direction < 0)
                std::swap(a, b);
            // Half open, so that a corner on a line counts once.
            const double from = std::max(std::ceil(a.y / request.spacing), std::floor(lowest));
            const double to = std::min(std::ceil(b.y / request.spacing), std::ceil(highest) + 1);
            if (!(from < to))
                continue;
            for (auto k = static_cast<std::int64_t>(from); k < static_cast<std::int64_t>(to); ++k) {
                if (crossings.size() >= request.atMost || !work.allows(Work::Lines, kUnitsPerCrossing))
                    return false;
                const double share = (static_cast<double>(k) * request.spacing - a.y) / (b.y - a.y);
                crossings.push_back({ k, a.x + (b.x - a.x) * share, direction });
            }
        }
    }
    std::sort(crossings.begin(), crossings.end(),
        [](const Crossing& a, const Crossing& b) { return a.line != b.line ? a.line < b.line : a.along < b.along; });

    std::size_t i = 0;
    while (i < crossings.size()) {
        const std::int64_t line = crossings[i].line;
        int winding = 0;
        double entered = 0;
        for (; i < crossings.size() && crossings[i].line == line; ++i) {
            const int before = winding;
            winding = request.rule == FillRule::NonZero ? winding + crossings[i].direction : 1 - winding;
            if (before == 0) {
                entered = crossings[i].along;
            } else if (winding == 0 && crossings[i].along > entered) {
                const double v = static_cast<double>(line) * request.spacing;
                lines.push_back({ fromHatch(entered, v), fromHatch(crossings[i].along, v) });
            }
        }
    }
    return true;
}

} // namespace quillrip::hpgl
