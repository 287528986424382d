#include "quillrip/emf/plus/shapes.h"

#include "quillrip/base/units.h"

#include <algorithm>
#include <cmath>

namespace quillrip::emf::plus {

namespace {

/// The angle that an arc of an ellipse has on the circle that it is a stretched image of. Whole turns are kept.
double circleAngle(double degrees, double radiusX, double radiusY)
{
    const double turns = std::floor(degrees / 360);
    const double angle = (degrees - turns * 360) * kRadiansPerDegree;
    double onCircle = std::atan2(std::sin(angle) * radiusX, std::cos(angle) * radiusY);
    if (onCircle < 0)
        onCircle += 2 * kPi;
    return onCircle + turns * 2 * kPi;
}

void addSpan(Path& path, Point from, Point to, Point before, Point behind, double tension)
{
    const double reach = tension / 3;
    path.cubicTo(from + (to - before) * reach, to - (behind - from) * reach, to);
}

} // namespace

Path rectanglePath(const RectF& rect)
{
    Path path;
    path.rectangle(rect.x, rect.y, rect.right(), rect.bottom());
    return path;
}

Path ellipsePath(const RectF& rect)
{
    Path path;
    const Point center { rect.x + rect.width / 2, rect.y + rect.height / 2 };
    path.arc(center, rect.width / 2, rect.height / 2, 0, 2 * kPi, true);
    path.close();
    return path;
}

Path arcPath(const RectF& rect, double startDegrees, double sweepDegrees, ArcKind kind)
{
    const double radiusX = rect.width / 2;
    const double radiusY = rect.height / 2;
    const Point center { rect.x + radiusX, rect.y + radiusY };
    const double sweep = std::clamp(sweepDegrees, -360.0, 360.0);
    const double start = circleAngle(startDegrees, radiusX, radiusY);
    const double end = circleAngle(startDegrees + sweep, radiusX, radiusY);
    Path path;
    if (kind == ArcKind::Pie)
        path.moveTo(center);
    path.arc(center, radiusX, radiusY, start, end - start, kind == ArcKind::Open);
    if (kind == ArcKind::Pie)
        path.close();
    return path;
}

Path polygonPath(const std::vector<Point>& points, bool isClosed)
{
    Path path;
    for (const Point point : points) {
        if (path.empty())
            path.moveTo(point);
        else
            path.lineTo(point);
    }
    if (isClosed && !path.empty())
        path.close();
    return path;
}

Path bezierPath(const std::vector<Point>& points)
{
    Path path;
    if (points.empty())
        return path;
    path.moveTo(points[0]);
    for (std::size_t i = 3; i < points.size(); i += 3)
        path.cubicTo(points[i - 2], points[i - 1], points[i]);
    return path;
}

Path cardinalPath(const std::vector<Point>& points, double tension, std::size_t first, std::size_t segments)
{
    Path path;
    if (points.size() < 2 || first >= points.size() - 1)
        return path;
    const std::size_t last = points.size() - 1;
    const std::size_t end = first + std::min(segments, last - first);
    path.moveTo(points[first]);
    for (std::size_t i = first; i < end; ++i)
        addSpan(path, points[i], points[i + 1], points[i == 0 ? 0 : i - 1], points[std::min(i + 2, last)], tension);
    return path;
}

Path closedCardinalPath(const std::vector<Point>& points, double tension)
{
    Path path;
    const std::size_t count = points.size();
    if (count < 3)
        return path;
    path.moveTo(points[0]);
    for (std::size_t i = 0; i < count; ++i)
        addSpan(path, points[i], points[(i + 1) % count], points[(i + count - 1) % count], points[(i + 2) % count],
            tension);
    path.close();
    return path;
}

} // namespace quillrip::emf::plus
