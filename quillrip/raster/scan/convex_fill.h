#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/raster/scan/span_sink.h"

#include <vector>

namespace quillrip {

/// Fills convex polygons by the rule of scanCentres(), without sorting anything: for the many small pieces of strokes.
class ConvexFill {
public:
    ConvexFill(const PixelRect& area, SpanSink& sink)
        : m_area(area)
        , m_sink(sink)
    {
    }

    /// Vertices in either direction.
    void fill(const Point* points, std::size_t count);

private:
    void fillNear(const Point* points, std::size_t count);

    struct Row {
        int left;
        int right;
    };

    PixelRect m_area;
    SpanSink& m_sink;
    std::vector<Row> m_rows;
    std::vector<Point> m_clipped;
    std::vector<Point> m_clipping;
};

} // namespace quillrip
