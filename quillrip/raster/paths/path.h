#pragma once

#include "quillrip/base/geometry.h"

#include <cstdint>
#include <vector>

namespace quillrip {

/// Which points lie inside a shape whose outline crosses itself or others.
enum class FillRule : std::uint8_t { NonZero, EvenOdd };

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

    /// Of all points, curves by their control points; Rect::nothing() for an empty path. Points that are no numbers do
    /// not count.
    Rect bounds() const;

    /// Calls, in the order of the path: `move(to)`, `line(to)`, `cubic(control1, control2, to)`, `close()`.
    template <typename Move, typename Line, typename Cubic, typename Close>
    void forEach(Move move, Line line, Cubic cubic, Close close) const
    {
        const Point* point = m_points.data();
        for (const Verb verb : m_verbs) {
            switch (verb) {
            case Verb::Move:
                move(point[0]);
                point += 1;
                break;
            case Verb::Line:
                line(point[0]);
                point += 1;
                break;
            case Verb::Cubic:
                cubic(point[0], point[1], point[2]);
                point += 3;
                break;
            case Verb::Close:
                close();
                break;
            }
        }
    }

private:
    std::vector<Verb> m_verbs;
    std::vector<Point> m_points;
    Point m_start;
    Point m_current;
};

} // namespace quillrip
