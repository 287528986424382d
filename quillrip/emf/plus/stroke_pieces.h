#pragma once

#include "quillrip/raster/paths/path.h"
#include "quillrip/raster/paths/pen.h"
#include "quillrip/raster/paths/stroke_line.h"
#include "quillrip/raster/paths/stroke_outline.h"

#include <vector>

namespace quillrip::emf::plus {

/// Collects polygons into one path that is filled by the non-zero rule: all are turned the same way round, so that
/// where they overlap they add up.
class PieceCollector final : public PieceSink {
public:
    void piece(const Point* points, std::size_t count) override;
    void polygon(const std::vector<Point>& points) { piece(points.data(), points.size()); }
    Path take() { return std::move(m_path); }

private:
    Path m_path;
};

/// The space in which a pen's nib is a circle of radius 1, seen from a line's end: `outwards` goes on along the line.
struct LineEnd {
    Point at;
    Point outwards { 1, 0 }; ///< length 1
};

/// Of an open line in that space; the line has at least two vertices that differ.
LineEnd startOf(const std::vector<Point>& line);
LineEnd endOf(const std::vector<Point>& line);

/// Takes `length` away from a line's end, but leaves something of it.
void shortenEnd(std::vector<Point>& line, double length);

/// The band between two distances from a line: positive ones lie on its left. All in the nib's space; pieces go to the
/// sink in device pixels.
void addBand(const std::vector<Point>& line, bool isClosed, double from, double to, double miterLimit, const Pen& pen,
    PieceCollector& sink);

/// Twice the area that a polygon surrounds, positive when it turns from +x to +y.
double doubleArea(const std::vector<Point>& polygon);

} // namespace quillrip::emf::plus
