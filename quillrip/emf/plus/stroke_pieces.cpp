#include "quillrip/emf/plus/stroke_pieces.h"

#include <algorithm>
#include <cmath>

namespace quillrip::emf::plus {

namespace {

Point unit(Point vector)
{
    const double length = std::hypot(vector.x, vector.y);
    return length > 0 ? vector * (1 / length) : Point { 1, 0 };
}

Point leftOf(Point direction) { return { -direction.y, direction.x }; }

double doubleArea(const Point* points, std::size_t count)
{
    double sum = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const Point a = points[i];
        const Point b = points[i + 1 == count ? 0 : i + 1];
        sum += a.x * b.y - a.y * b.x;
    }
    return sum;
}

/// Where the sides of two segments meet at a vertex, for a line at a distance of 1; two points where the corner is too
/// sharp for one.
struct Mitre {
    Point before;
    Point behind;
};

Mitre cornerOf(Point direction0, Point direction1, double miterLimit)
{
    const Point normal0 = leftOf(direction0);
    const Point normal1 = leftOf(direction1);
    const double cosine = normal0.x * normal1.x + normal0.y * normal1.y;
    const double halfCosine = std::sqrt(std::max(0.0, (1 + cosine) / 2));
    if (halfCosine * miterLimit < 1 || halfCosine < 1e-6)
        return { normal0, normal1 };
    const Point shared = (normal0 + normal1) * (1 / (1 + cosine));
    return { shared, shared };
}

} // namespace

void PieceCollector::piece(const Point* points, std::size_t count)
{
    if (count < 3)
        return;
    const bool isTurned = doubleArea(points, count) < 0;
    m_path.moveTo(points[0]);
    for (std::size_t i = 1; i < count; ++i)
        m_path.lineTo(points[isTurned ? count - i : i]);
    m_path.close();
}

double doubleArea(const std::vector<Point>& polygon) { return doubleArea(polygon.data(), polygon.size()); }

LineEnd startOf(const std::vector<Point>& line) { return { line[0], unit(line[0] - line[1]) }; }

LineEnd endOf(const std::vector<Point>& line)
{
    const std::size_t last = line.size() - 1;
    return { line[last], unit(line[last] - line[last - 1]) };
}

void shortenEnd(std::vector<Point>& line, double length)
{
    while (length > 0 && line.size() >= 2) {
        const Point end = line.back();
        const Point before = line[line.size() - 2];
        const double segment = std::hypot(end.x - before.x, end.y - before.y);
        if (segment > length) {
            line.back() = end + (before - end) * (length / segment);
            return;
        }
        if (line.size() == 2) {
            line.back() = before + (end - before) * 1e-3;
            return;
        }
        length -= segment;
        line.pop_back();
    }
}

void addBand(const std::vector<Point>& line, bool isClosed, double from, double to, double miterLimit, const Pen& pen,
    PieceCollector& sink)
{
    const std::size_t count = line.size();
    if (count < 2)
        return;
    const std::size_t segments = isClosed ? count : count - 1;
    std::vector<Point> directions;
    for (std::size_t i = 0; i < segments; ++i)
        directions.push_back(unit(line[(i + 1) % count] - line[i]));
    std::vector<Mitre> corners(count);
    for (std::size_t i = 0; i < count; ++i) {
        const bool hasBefore = isClosed || i > 0;
        const bool hasBehind = isClosed || i + 1 < count;
        const Point before = directions[hasBefore ? (i + segments - 1) % segments : i];
        const Point behind = hasBehind ? directions[i] : before;
        corners[i] = cornerOf(before, behind, miterLimit);
    }
    const auto emit = [&](Point a, Point sideA, Point b, Point sideB) {
        std::vector<Point> quad { a + sideA * from, b + sideB * from, b + sideB * to, a + sideA * to };
        for (Point& corner : quad)
            corner = pen.toDevice.apply(corner);
        sink.polygon(quad);
    };
    for (std::size_t i = 0; i < segments; ++i) {
        const std::size_t next = (i + 1) % count;
        emit(line[i], corners[i].behind, line[next], corners[next].before);
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (corners[i].before != corners[i].behind)
            emit(line[i], corners[i].before, line[i], corners[i].behind);
    }
}

} // namespace quillrip::emf::plus
