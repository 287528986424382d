#include "quillrip/raster/scan/edge_list.h"

#include "quillrip/raster/paths/flatten.h"

#include <algorithm>
#include <cmath>

namespace quillrip {

namespace {

/// Areas end here: beyond is no page, and sums of fixed point numbers would not fit.
constexpr int kFarthest = 1 << 20;
/// Edges are cut only so far outside the area, since a cut edge runs a little differently: its new end is rounded.
constexpr int kReach = 1 << 19;

} // namespace

EdgeList::EdgeList(const PixelRect& area, Axes axes, bool keepLevelEdges)
    : m_axes(axes)
    , m_keepLevelEdges(keepLevelEdges)
{
    restart(area);
}

void EdgeList::restart(const PixelRect& area)
{
    m_area = area.intersected({ -kFarthest, -kFarthest, kFarthest, kFarthest });
    m_left = m_area.left - kReach;
    m_top = m_area.top - kReach;
    m_right = m_area.right + kReach;
    m_bottom = m_area.bottom + kReach;
    m_edges.clear();
    m_sides = { SIZE_MAX, SIZE_MAX };
}

void EdgeList::addPath(const Path& devicePath)
{
    Point start;
    Point current;
    bool isOpen = false;
    const auto goTo = [&](Point to) {
        if (!isFinite(to))
            return;
        addLine(current, to);
        current = to;
    };
    const auto closeSubpath = [&] {
        if (isOpen)
            addLine(current, start);
        current = start;
    };
    devicePath.forEach(
        [&](Point to) {
            closeSubpath();
            isOpen = isFinite(to);
            if (isOpen)
                start = current = to;
        },
        [&](Point to) {
            if (isOpen)
                goTo(to);
        },
        [&](Point control1, Point control2, Point to) {
            if (!isOpen)
                return;
            const Cubic cubic { current, control1, control2, to };
            const int chords = cubic.chordCount();
            for (int i = 1; i < chords; ++i)
                goTo(cubic.at(static_cast<double>(i) / chords));
            goTo(cubic.end);
        },
        closeSubpath);
    closeSubpath();
}

void EdgeList::addConvex(const Point* points, std::size_t count)
{
    double doubleArea = 0;
    double top = HUGE_VAL;
    double bottom = -HUGE_VAL;
    for (std::size_t i = 0; i < count; ++i) {
        if (!isFinite(points[i]))
            return;
        top = std::min(top, points[i].y);
        bottom = std::max(bottom, points[i].y);
        const Point a = points[i] - points[0];
        const Point b = points[i + 1 == count ? 0 : i + 1] - points[0];
        doubleArea += a.x * b.y - a.y * b.x;
    }
    if (m_axes == Axes::Straight && (bottom < m_area.top || top > m_area.bottom))
        return;
    for (std::size_t i = 0; i < count; ++i) {
        const Point a = points[i];
        const Point b = points[i + 1 == count ? 0 : i + 1];
        if (doubleArea >= 0)
            addLine(a, b);
        else
            addLine(b, a);
    }
}

void EdgeList::addLine(Point from, Point to)
{
    if (m_axes == Axes::Swapped) {
        std::swap(from.x, from.y);
        std::swap(to.x, to.y);
    }
    // Above and below nothing is scanned. Cut in floating point: the coordinates may be far beyond the page.
    if (std::max(from.y, to.y) < m_area.top || std::min(from.y, to.y) > m_area.bottom)
        return;
    const auto cutAt = [&](double y) { return from.x + (to.x - from.x) * ((y - from.y) / (to.y - from.y)); };
    const auto cut = [&](Point& p) {
        const double y = std::clamp(p.y, m_top, m_bottom);
        return y == p.y ? p : Point { cutAt(y), y };
    };
    const Point cutFrom = cut(from);
    const Point cutTo = cut(to);
    if (!passesBeside(cutFrom, cutTo))
        addClippedInY(cutFrom, cutTo);
}

/// Past a small clip most edges of a large shape run from above it to below it, on its left or right. Only their
/// winding matters, so one edge on each side stands for all of them.
bool EdgeList::passesBeside(Point from, Point to)
{
    const bool isDown = from.y < to.y;
    const Point& upper = isDown ? from : to;
    const Point& lower = isDown ? to : from;
    const bool isNear = std::min(from.x, to.x) >= m_left && std::max(from.x, to.x) <= m_right;
    if (!(upper.y < m_area.top && lower.y > m_area.bottom && isNear))
        return false;
    // Where the edge is at the area's top and bottom, from its upper end on and times its height: no division.
    const double height = lower.y - upper.y;
    const double atTop = (lower.x - upper.x) * (m_area.top - upper.y);
    const double atBottom = (lower.x - upper.x) * (m_area.bottom - upper.y);
    const bool isLeft = std::max(atTop, atBottom) < (m_area.left - 1 - upper.x) * height;
    const bool isRight = std::min(atTop, atBottom) > (m_area.right + 1 - upper.x) * height;
    if (!isLeft && !isRight)
        return false;
    std::size_t& side = m_sides[isRight ? 1 : 0];
    if (side == SIZE_MAX) {
        side = m_edges.size();
        const std::int32_t x = (isRight ? m_area.right + 1 : m_area.left - 1) * kSubpixels;
        append({ m_area.top * kSubpixels, m_area.bottom * kSubpixels, x, x, 0, 0 });
    }
    m_edges[side].winding += isDown ? 1 : -1;
    return true;
}

void EdgeList::addClippedInY(Point from, Point to)
{
    // Beside the area an edge counts for the winding of the whole row, but where exactly it lies does not matter: it
    // becomes an upright edge at the side.
    if (from.x >= m_left && from.x <= m_right && to.x >= m_left && to.x <= m_right)
        return addFixed(from, to);
    for (const double side : { m_left, m_right }) {
        if ((from.x < side && to.x > side) || (from.x > side && to.x < side)) {
            const Point crossing { side, from.y + (to.y - from.y) * ((side - from.x) / (to.x - from.x)) };
            addClippedInY(from, crossing);
            addClippedInY(crossing, to);
            return;
        }
    }
    from.x = std::clamp(from.x, m_left, m_right);
    to.x = std::clamp(to.x, m_left, m_right);
    addFixed(from, to);
}

void EdgeList::addFixed(Point from, Point to)
{
    if (!isFinite(from) || !isFinite(to))
        return;
    Edge edge;
    edge.top = toSubpixels(from.y);
    edge.bottom = toSubpixels(to.y);
    edge.x = toSubpixels(from.x);
    edge.bottomX = toSubpixels(to.x);
    if (edge.top > edge.bottom) {
        std::swap(edge.top, edge.bottom);
        std::swap(edge.x, edge.bottomX);
        edge.winding = -1;
    }
    if (edge.top < edge.bottom)
        edge.slope = (std::int64_t { edge.bottomX } - edge.x) * (std::int64_t { 1 } << 32) / (edge.bottom - edge.top);
    else if (!m_keepLevelEdges)
        return;
    append(edge);
}

void EdgeList::append(const Edge& edge)
{
    // Thousands of edges are mostly followed by some more, not by as many.
    constexpr std::size_t step = 65536;
    if (m_edges.size() == m_edges.capacity() && m_edges.size() >= step)
        m_edges.reserve(m_edges.size() + std::max(step, m_edges.size() / 4));
    m_edges.push_back(edge);
}

void EdgeList::shrinkArea()
{
    std::int32_t left = INT32_MAX, top = INT32_MAX, right = INT32_MIN, bottom = INT32_MIN;
    for (const Edge& edge : m_edges) {
        left = std::min({ left, edge.x, edge.bottomX });
        right = std::max({ right, edge.x, edge.bottomX });
        top = std::min(top, edge.top);
        bottom = std::max(bottom, edge.bottom);
    }
    if (m_edges.empty()) {
        m_area.right = m_area.left;
        m_area.bottom = m_area.top;
        return;
    }
    // Pixels own their left and top edges, hence one more to the right and below.
    m_area = m_area.intersected(
        { left >> kSubpixelBits, top >> kSubpixelBits, (right >> kSubpixelBits) + 1, (bottom >> kSubpixelBits) + 1 });
    m_area.right = std::max(m_area.left, m_area.right);
    m_area.bottom = std::max(m_area.top, m_area.bottom);
}

std::vector<std::uint32_t> EdgeList::orderByRow(std::int32_t lead) const
{
    const auto bucket = [&](const Edge& edge) { return static_cast<std::size_t>(firstRow(edge, lead) - m_area.top); };
    std::vector<std::uint32_t> starts(static_cast<std::size_t>(m_area.height()) + 2);
    for (const Edge& edge : m_edges)
        ++starts[bucket(edge) + 1];
    for (std::size_t row = 1; row < starts.size(); ++row)
        starts[row] += starts[row - 1];
    std::vector<std::uint32_t> order(m_edges.size());
    for (std::size_t i = 0; i < m_edges.size(); ++i)
        order[starts[bucket(m_edges[i])]++] = static_cast<std::uint32_t>(i);
    return order;
}

} // namespace quillrip
