#include "quillrip/pclxl/shapes.h"

#include "quillrip/base/units.h"

#include <algorithm>
#include <cmath>

namespace quillrip::pclxl {

void appendArc(Path& path, const EllipticArc& arc, ArcKind kind)
{
    const Point centre = arc.box.center();
    const double radiusX = arc.box.width() / 2;
    const double radiusY = arc.box.height() / 2;
    // The angles are those of the ellipse's parameter.
    const auto parameterOf = [&](Point on) {
        const Point p = on - centre;
        return p == Point { 0, 0 } ? 0 : std::atan2(p.y * radiusX, p.x * radiusY);
    };
    const double start = parameterOf(arc.start);
    const double end = parameterOf(arc.end);
    const double fullTurn = 2 * kPi;
    double sweep = end - start; // y points down: clockwise is positive
    while (arc.isClockwise && sweep <= 1e-12)
        sweep += fullTurn;
    while (!arc.isClockwise && sweep >= -1e-12)
        sweep -= fullTurn;
    sweep = std::clamp(sweep, -fullTurn, fullTurn);

    if (kind == ArcKind::Pie)
        path.moveTo(centre);
    path.arc(centre, radiusX, radiusY, start, sweep, kind != ArcKind::Pie);
    if (kind != ArcKind::Open)
        path.close();
}

void appendEllipse(Path& path, const Rect& box)
{
    path.arc(box.center(), box.width() / 2, box.height() / 2, 0, -2 * kPi, true);
    path.close();
}

void appendRoundRectangle(Path& path, const Rect& box, Point diameters)
{
    const double rx = std::min(std::abs(diameters.x) / 2, box.width() / 2);
    const double ry = std::min(std::abs(diameters.y) / 2, box.height() / 2);
    if (rx <= 0 || ry <= 0) {
        path.rectangle(box.left, box.top, box.right, box.bottom);
        return;
    }
    const double quarter = kPi / 2;
    path.arc({ box.left + rx, box.top + ry }, rx, ry, 2 * quarter, quarter, true);
    path.arc({ box.right - rx, box.top + ry }, rx, ry, 3 * quarter, quarter, false);
    path.arc({ box.right - rx, box.bottom - ry }, rx, ry, 0, quarter, false);
    path.arc({ box.left + rx, box.bottom - ry }, rx, ry, quarter, quarter, false);
    path.close();
}

} // namespace quillrip::pclxl
