#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/raster/paths/path.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillrip {

/// Coordinates of the scan converters: 24.8 fixed point.
constexpr int kSubpixelBits = 8;
constexpr std::int32_t kSubpixels = 1 << kSubpixelBits;

/// The nearest; the caller sees to it that they fit.
inline std::int32_t toSubpixels(double pixels)
{
    return static_cast<std::int32_t>(std::floor(pixels * kSubpixels + 0.5));
}

/// Work of a path's point before it is part of an edge.
constexpr std::uint64_t kUnitsPerPathPoint = 20;

/// A straight edge that runs downwards, in 1/256 pixels.
struct Edge {
    std::int32_t top = 0;
    std::int32_t bottom = 0; ///< equal to top only in lists that keep level edges
    std::int32_t x = 0; ///< at the top
    std::int32_t bottomX = 0;
    std::int64_t slope = 0; ///< change of x for one step of y, 32 fraction bits
    std::int32_t winding = 1; ///< +1 if the path runs downwards here, -1 if upwards

    /// x at a height between top and bottom, with 32 fraction bits.
    std::int64_t xAt(std::int32_t y) const
    {
        return std::int64_t { x } * (std::int64_t { 1 } << 32) + (y - top) * slope;
    }
    std::int32_t roundedXAt(std::int32_t y) const
    {
        return static_cast<std::int32_t>((xAt(y) + (std::int64_t { 1 } << 31)) >> 32);
    }
};

/// The edges of a path near a rectangle. Coordinates may be absurd: what is above or below is left out, what is
/// beside it is moved to its sides, and points that are no numbers are skipped.
class EdgeList {
public:
    enum class Axes {
        Straight,
        Swapped, ///< x and y exchanged, for scanning by columns; `area` is in exchanged coordinates too
    };

    EdgeList(const PixelRect& area, Axes axes = Axes::Straight, bool keepLevelEdges = false);

    /// Forgets all edges, but keeps their memory, for those near another rectangle.
    void restart(const PixelRect& area);

    /// Open subpaths are closed.
    void addPath(const Path& devicePath);
    /// A closed polygon whose edges all count so that its inside has positive winding.
    void addConvex(const Point* points, std::size_t count);
    void addLine(Point from, Point to);

    const PixelRect& area() const { return m_area; }
    /// Makes the area no larger than the edges need, so that a small shape on a large page costs little. No more
    /// edges after this.
    void shrinkArea();
    const std::vector<Edge>& edges() const { return m_edges; }
    /// Indices into edges() sorted by the row that they are first needed in, which is the row of their top plus
    /// `lead` (in 1/256 pixels) but not above the area: a counting sort.
    std::vector<std::uint32_t> orderByRow(std::int32_t lead) const;
    int firstRow(const Edge& edge, std::int32_t lead) const
    {
        return std::clamp((edge.top + lead) >> kSubpixelBits, m_area.top, m_area.bottom);
    }

private:
    bool passesBeside(Point from, Point to);
    void addClippedInY(Point from, Point to);
    void addFixed(Point from, Point to);
    void append(const Edge& edge);

    PixelRect m_area;
    Axes m_axes;
    bool m_keepLevelEdges;
    double m_left, m_top, m_right, m_bottom; ///< where edges are cut
    std::vector<Edge> m_edges;
    std::array<std::size_t, 2> m_sides {}; ///< the edges that stand for those that pass on the left and on the right
};

} // namespace quillrip
