#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/raster/paths/path.h"

#include <cstddef>
#include <vector>

namespace quillrip::hpgl {

/// The polygon buffer: closed outlines in plotter units, every edge with the pen state that drew it.
class Polygon {
public:
    struct Vertex {
        Point at;
        bool isPenDown = false; ///< of the edge that leads here
        bool endsVector = true;
    };

    bool empty() const { return m_vertices.empty(); }
    std::size_t size() const { return m_vertices.size(); }
    void clear();

    /// The next vertex; the first of a subpolygon is reached without an edge.
    void add(Point at, bool isPenDown, bool endsVector);
    /// Ends the subpolygon in progress with an edge to its start, where it does not stand there already. One without
    /// any edge is dropped. Tells where the pen then stands.
    bool closeSubpolygon(bool isPenDown, Point& pen);
    /// The subpolygon in progress has an edge that the pen drew.
    bool hasDrawnEdge() const;
    /// Forgets the subpolygon in progress.
    void dropSubpolygon();

    std::size_t subpolygonCount() const { return m_starts.size(); }
    const Vertex* begin(std::size_t subpolygon) const { return m_vertices.data() + m_starts[subpolygon]; }
    const Vertex* end(std::size_t subpolygon) const
    {
        return m_vertices.data() + (subpolygon + 1 < m_starts.size() ? m_starts[subpolygon + 1] : m_vertices.size());
    }

    /// All outlines as closed subpaths, drawn or not.
    Path outline(const Matrix& matrix) const;

private:
    std::vector<Vertex> m_vertices;
    std::vector<std::size_t> m_starts;
    bool m_isOpen = false;
};

} // namespace quillrip::hpgl
