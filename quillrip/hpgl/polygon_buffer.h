#pragma once

#include "quillrip/base/reporter.h"
#include "quillrip/hpgl/polygon.h"

#include <cstddef>
#include <optional>

namespace quillrip::hpgl {

/// The polygon buffer and PM's mode: while the buffer is open, movements of the pen go into it instead of on the page.
class PolygonBuffer {
public:
    PolygonBuffer(std::size_t mostCorners, Reporter& reporter)
        : m_mostCorners(mostCorners)
        , m_reporter(reporter)
    {
    }

    bool isOpen() const { return m_isOpen; }
    /// Begins a new polygon at the pen.
    void open(Point pen);
    void close() { m_isOpen = false; }
    /// Closes and forgets the polygon.
    void reset();

    /// The next corner. Past the limit corners are left out, with one warning.
    void add(Point at, bool isPenDown, bool endsVector);
    /// Ends the subpolygon in progress with an edge to its start, which is where the pen then stands; nothing when
    /// there was none.
    std::optional<Point> closeSubpolygon(bool isPenDown);
    /// A circle comes, a subpolygon by itself, so the one in progress ends: by closeSubpolygon() if the pen drew any of
    /// it; a mere move with the pen up is forgotten.
    std::optional<Point> endBeforeCircle(bool isPenDown);
    /// Puts another polygon into the buffer: rectangles and wedges do so, whatever the mode.
    void replace(Polygon polygon) { m_polygon = std::move(polygon); }

    const Polygon& polygon() const { return m_polygon; }

private:
    const std::size_t m_mostCorners;
    Reporter& m_reporter;
    Polygon m_polygon;
    bool m_isOpen = false;
    bool m_isFull = false;
};

} // namespace quillrip::hpgl
