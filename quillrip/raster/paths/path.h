#pragma once

#include "quillrip/base/geometry.h"

#include <cstdint>
#include <vector>

namespace quillrip {

/// Lines and cubic Bezier curves in any coordinate space. Every subpath begins with a move.
class Path {
public:
    enum class Verb : std::uint8_t {
        Move, ///< one point
        Line, ///< one point
        Cubic, ///< two control points and the end point
        Close, ///< no point: a straight line back to the subpath's start
    };

    bool empty() const { return m_verbs.empty(); }
    std::size_t pointCount() const { return m_points.size(); }
    const std::vector<Verb>& verbs() const { return m_verbs; }
    const std::vector<Point>& points() const { return m_points; }
    /// The end of the last segment; the subpath's start after a Close.
    Point current() const { return m_current; }

    void moveTo(Point to);
    void lineTo(Point to);
    void cubicTo(Point control1, Point control2, Point to);
    void close();
    void clear();

    /// An arc of the axis-aligned ellipse with the given centre and radii as cubics (error below 0.03 % of the radius).
    /// Angles in radians, from +x towards +y; `sweep` may be negative and is cut to one full turn.
    /// Begins with a line from the current point, or with a move when `startsSubpath`.
    void arc(Point centre, double radiusX, double radiusY, double start, double sweep, bool startsSubpath);
    void rectangle(double left, double top, double right, double bottom);

    void append(const Path& other);
    Path transformed(const Matrix& matrix) const;

private:
    std::vector<Verb> m_verbs;
    std::vector<Point> m_points;
    Point m_start;
    Point m_current;
};

} // namespace quillrip
