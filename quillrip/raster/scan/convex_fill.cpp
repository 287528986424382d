#include "quillrip/raster/scan/convex_fill.h"

#include "quillrip/raster/paths/flatten.h"
#include "quillrip/raster/scan/edge_list.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace quillrip {

namespace {

/// Fixed point numbers hold at least this many pixels.
constexpr double kNear = 1 << 20;

/// The part of a convex polygon with sign * coordinate <= sign * limit.
template <typename Coordinate>
void cutPolygon(
    const std::vector<Point>& from, std::vector<Point>& to, double limit, double sign, Coordinate coordinate)
{
    to.clear();
    for (std::size_t i = 0; i < from.size(); ++i) {
        const Point a = from[i];
        const Point b = from[i + 1 == from.size() ? 0 : i + 1];
        const double aBeyond = sign * (coordinate(a) - limit);
        const double bBeyond = sign * (coordinate(b) - limit);
        if (aBeyond <= 0)
            to.push_back(a);
        if ((aBeyond < 0 && bBeyond > 0) || (aBeyond > 0 && bBeyond < 0))
            to.push_back(a + (b - a) * (aBeyond / (aBeyond - bBeyond)));
    }
}

} // namespace

void ConvexFill::fill(const Point* points, std::size_t count)
{
    bool isNear = true;
    for (std::size_t i = 0; i < count; ++i) {
        if (!isFinite(points[i]))
            return;
        isNear = isNear && std::abs(points[i].x) < kNear && std::abs(points[i].y) < kNear;
    }
    if (isNear)
        return fillNear(points, count);
    m_clipped.assign(points, points + count);
    const auto x = [](Point p) { return p.x; };
    const auto y = [](Point p) { return p.y; };
    cutPolygon(m_clipped, m_clipping, m_area.left - 1, -1, x);
    cutPolygon(m_clipping, m_clipped, m_area.right + 1, 1, x);
    cutPolygon(m_clipped, m_clipping, m_area.top - 1, -1, y);
    cutPolygon(m_clipping, m_clipped, m_area.bottom + 1, 1, y);
    for (const Point& point : m_clipped) {
        if (!isFinite(point) || std::abs(point.x) > 2 * kNear || std::abs(point.y) > 2 * kNear)
            return;
    }
    fillNear(m_clipped.data(), m_clipped.size());
}

void ConvexFill::fillNear(const Point* points, std::size_t count)
{
    if (count < 3)
        return;
    constexpr std::int32_t toCentre = kSubpixels / 2;
    const auto firstCentreRow = [](std::int32_t y) { return (y + toCentre - 1) >> kSubpixelBits; };
    std::int32_t top = INT32_MAX;
    std::int32_t bottom = INT32_MIN;
    for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t y = toSubpixels(points[i].y);
        top = std::min(top, y);
        bottom = std::max(bottom, y);
    }
    const int firstRow = std::max(firstCentreRow(top), m_area.top);
    const int endRow = std::min(firstCentreRow(bottom), m_area.bottom);
    if (firstRow >= endRow)
        return;
    m_rows.assign(static_cast<std::size_t>(endRow - firstRow), { INT32_MAX, INT32_MIN });

    std::int32_t fromX = toSubpixels(points[count - 1].x);
    std::int32_t fromY = toSubpixels(points[count - 1].y);
    for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t toX = toSubpixels(points[i].x);
        const std::int32_t toY = toSubpixels(points[i].y);
        const bool isDown = fromY < toY;
        const std::int32_t upperX = isDown ? fromX : toX;
        const std::int32_t upperY = isDown ? fromY : toY;
        const std::int32_t lowerX = isDown ? toX : fromX;
        const std::int32_t lowerY = isDown ? toY : fromY;
        fromX = toX;
        fromY = toY;
        const int begin = std::max(firstCentreRow(upperY), firstRow);
        const int end = std::min(firstCentreRow(lowerY), endRow);
        if (begin >= end)
            continue;
        const std::int64_t slope = (std::int64_t { lowerX } - upperX) * (std::int64_t { 1 } << 32) / (lowerY - upperY);
        std::int64_t x
            = std::int64_t { upperX } * (std::int64_t { 1 } << 32) + (begin * kSubpixels + toCentre - upperY) * slope;
        x += std::int64_t { toCentre } * (std::int64_t { 1 } << 32)
            - 1; // the first centre at or right of x is in the pixel of x + 1/2
        // Of an edge with a single row the step is not needed, and may be larger than any number.
        const std::int64_t step = end > begin + 1 ? slope * kSubpixels : 0;
        for (int row = begin; row < end; ++row, x += step) {
            const int pixel = static_cast<int>(x >> (kSubpixelBits + 32));
            Row& extent = m_rows[static_cast<std::size_t>(row - firstRow)];
            extent.left = std::min(extent.left, pixel);
            extent.right = std::max(extent.right, pixel);
        }
    }
    for (int row = firstRow; row < endRow; ++row) {
        const Row& extent = m_rows[static_cast<std::size_t>(row - firstRow)];
        if (extent.left < extent.right)
            m_sink.span(row, extent.left, extent.right);
    }
}

} // namespace quillrip
