#include "quillrip/hpgl/polygon_buffer.h"

namespace quillrip::hpgl {

void PolygonBuffer::open(Point pen)
{
    m_polygon.clear();
    m_isFull = false;
    m_isOpen = true;
    add(pen, false, true);
}

void PolygonBuffer::reset()
{
    m_isOpen = false;
    m_polygon.clear();
}

void PolygonBuffer::add(Point at, bool isPenDown, bool endsVector)
{
    if (m_polygon.size() < m_mostCorners) {
        m_polygon.add(at, isPenDown, endsVector);
    } else if (!m_isFull) {
        m_isFull = true;
        m_reporter.warn("hpgl.polygon-too-long", "a polygon has more corners than fit the limit, the rest is left out");
    }
}

std::optional<Point> PolygonBuffer::closeSubpolygon(bool isPenDown)
{
    Point start;
    if (!m_polygon.closeSubpolygon(isPenDown, start))
        return std::nullopt;
    return start;
}

std::optional<Point> PolygonBuffer::endBeforeCircle(bool isPenDown)
{
    if (m_polygon.hasDrawnEdge())
        return closeSubpolygon(isPenDown);
    m_polygon.dropSubpolygon();
    return std::nullopt;
}

} // namespace quillrip::hpgl
