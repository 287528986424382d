#include "quillrip/hpgl/polygon.h"

#include <algorithm>

namespace quillrip::hpgl {

void Polygon::clear()
{
    m_vertices.clear();
    m_starts.clear();
    m_isOpen = false;
}

void Polygon::add(Point at, bool isPenDown, bool endsVector)
{
    if (!m_isOpen) {
        m_starts.push_back(m_vertices.size());
        m_isOpen = true;
    }
    m_vertices.push_back({ at, isPenDown, endsVector });
}

bool Polygon::closeSubpolygon(bool isPenDown, Point& pen)
{
    if (!m_isOpen)
        return false;
    m_isOpen = false;
    const std::size_t start = m_starts.back();
    if (m_vertices.size() - start < 2) {
        m_vertices.resize(start);
        m_starts.pop_back();
        return false;
    }
    const Point first = m_vertices[start].at;
    if (m_vertices.back().at != first)
        m_vertices.push_back({ first, isPenDown, true });
    pen = first;
    return true;
}

bool Polygon::hasDrawnEdge() const
{
    if (!m_isOpen)
        return false;
    const auto first = m_vertices.begin() + static_cast<std::ptrdiff_t>(m_starts.back());
    return std::any_of(first + 1, m_vertices.end(), [](const Vertex& vertex) { return vertex.isPenDown; });
}

void Polygon::dropSubpolygon()
{
    if (!m_isOpen)
        return;
    m_vertices.resize(m_starts.back());
    m_starts.pop_back();
    m_isOpen = false;
}

Path Polygon::outline(const Matrix& matrix) const
{
    Path path;
    for (std::size_t i = 0; i < m_starts.size(); ++i) {
        const Vertex* const first = begin(i);
        path.moveTo(matrix.apply(first->at));
        for (const Vertex* vertex = first + 1; vertex != end(i); ++vertex)
            path.lineTo(matrix.apply(vertex->at));
        path.close();
    }
    return path;
}

} // namespace quillrip::hpgl
