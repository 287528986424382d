#include "quillrip/raster/paths/path.h"

#include "quillrip/base/units.h"

#include <algorithm>
#include <cmath>

namespace quillrip {

void Path::moveTo(Point to)
{
    m_verbs.push_back(Verb::Move);
    m_points.push_back(to);
    m_start = m_current = to;
}

void Path::lineTo(Point to)
{
    m_verbs.push_back(Verb::Line);
    m_points.push_back(to);
    m_current = to;
}

void Path::cubicTo(Point control1, Point control2, Point to)
{
    m_verbs.push_back(Verb::Cubic);
    m_points.insert(m_points.end(), { control1, control2, to });
    m_current = to;
}

void Path::close()
{
    m_verbs.push_back(Verb::Close);
    m_current = m_start;
}

void Path::clear() { *this = Path(); }

void Path::arc(Point centre, double radiusX, double radiusY, double start, double sweep, bool startsSubpath)
{
    const double fullTurn = 2 * kPi;
    sweep = std::clamp(sweep, -fullTurn, fullTurn);
    const int pieces = std::max(1, static_cast<int>(std::ceil(std::abs(sweep) / (fullTurn / 4) - 1e-9)));
    const double step = sweep / pieces;
    const double reach = 4.0 / 3.0 * std::tan(step / 4);
    const auto at = [&](double angle) {
        return Point { centre.x + radiusX * std::cos(angle), centre.y + radiusY * std::sin(angle) };
    };
    const auto tangent = [&](double angle) {
        return Point { -radiusX * std::sin(angle) * reach, radiusY * std::cos(angle) * reach };
    };
    Point from = at(start);
    if (startsSubpath)
        moveTo(from);
    else if (from != m_current)
        lineTo(from);
    for (int i = 0; i < pieces; ++i) {
        const double a = start + step * i;
        const double b = start + step * (i + 1);
        const Point to = at(b);
        cubicTo(from + tangent(a), to - tangent(b), to);
        from = to;
    }
}

void Path::rectangle(double left, double top, double right, double bottom)
{
    moveTo({ left, top });
    lineTo({ right, top });
    lineTo({ right, bottom });
    lineTo({ left, bottom });
    close();
}

void Path::append(const Path& other)
{
    m_verbs.insert(m_verbs.end(), other.m_verbs.begin(), other.m_verbs.end());
    m_points.insert(m_points.end(), other.m_points.begin(), other.m_points.end());
    m_start = other.m_start;
    m_current = other.m_current;
}

Path Path::transformed(const Matrix& matrix) const
{
    Path result = *this;
    for (Point& point : result.m_points)
        point = matrix.apply(point);
    result.m_start = matrix.apply(m_start);
    result.m_current = matrix.apply(m_current);
    return result;
}

Rect Path::bounds() const
{
    Rect bounds = Rect::nothing();
    for (const Point& point : m_points)
        bounds.include(point);
    return bounds;
}

} // namespace quillrip
