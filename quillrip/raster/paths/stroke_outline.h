#pragma once

#include "quillrip/raster/paths/pen.h"
#include "quillrip/raster/paths/stroke_line.h"

#include <cstddef>
#include <vector>

namespace quillrip {

/// Takes convex polygons in device pixels.
class PieceSink {
public:
    virtual ~PieceSink() = default;
    virtual void piece(const Point* points, std::size_t count) = 0;
};

/// Covers a line with convex pieces: a rectangle for each segment, one piece for each join and cap. They overlap;
/// the stroke is their union.
class StrokeOutline {
public:
    StrokeOutline(const StrokeStyle& style, PieceSink& sink);

    /// The vertices are device pixels here. Neighbouring ones may be equal.
    void outline(const StrokeLine& line, const Pen& pen);

private:
    void segment(Point from, Point to, Point normal);
    void join(Point at, Point direction0, Point direction1, LineJoin style);
    void cap(Point at, Point outwards);
    void dot(Point at, Point direction, bool isDash);
    void arc(Point centre, Point from, double angle);
    void begin();
    void add(Point inPenSpace);
    void emit();

    LineCap m_cap;
    LineJoin m_join;
    double m_miterLimit;
    PieceSink& m_sink;
    Matrix m_toDevice;
    double m_arcStep = 1; ///< largest angle of a chord
    std::vector<Point> m_points; ///< pen space
    std::vector<Point> m_directions;
    std::vector<bool> m_smooth;
    std::vector<Point> m_piece; ///< device space
};

} // namespace quillrip
