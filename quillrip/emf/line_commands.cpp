// Lines, polygons and curves through points. The records with short points are compact forms of the long ones.

#include "quillrip/emf/handlers.h"
#include "quillrip/emf/machine.h"
#include "quillrip/emf/record.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace quillrip::emf {

namespace {

enum class PointSize { Long, Short };

constexpr std::size_t kCount = 24;
constexpr std::size_t kPoints = 28;

constexpr std::size_t sizeOf(PointSize coding) { return coding == PointSize::Long ? 8 : 4; }

Point pointAt(const Record& record, std::size_t at, PointSize coding)
{
    return coding == PointSize::Long ? record.point(at) : record.shortPoint(at);
}

/// As many points as are there, at most `count`.
std::vector<Point> readPoints(const Record& record, std::size_t at, std::uint64_t count, PointSize coding)
{
    const std::size_t room = record.size() > at ? (record.size() - at) / sizeOf(coding) : 0;
    std::vector<Point> points(static_cast<std::size_t>(std::min<std::uint64_t>(count, room)));
    for (std::size_t i = 0; i < points.size(); ++i)
        points[i] = pointAt(record, at + i * sizeOf(coding), coding);
    return points;
}

std::vector<Point> readPoints(const Record& record, PointSize coding)
{
    return readPoints(record, kPoints, record.u32(kCount), coding);
}

void addLines(Path& path, const std::vector<Point>& points, std::size_t from)
{
    for (std::size_t i = from; i < points.size(); ++i)
        path.lineTo(points[i]);
}

/// Whole curves only.
void addCurves(Path& path, const std::vector<Point>& points, std::size_t from)
{
    for (std::size_t i = from; i + 2 < points.size(); i += 3)
        path.cubicTo(points[i], points[i + 1], points[i + 2]);
}

enum class Figure { Line, Polygon, Curve };

void drawOne(Machine& machine, const Record& record, PointSize coding, Figure figure)
{
    const std::vector<Point> points = readPoints(record, coding);
    const std::size_t fewest = figure == Figure::Curve ? 4 : 2;
    if (points.size() < fewest)
        return;
    Path path;
    path.moveTo(points[0]);
    if (figure == Figure::Curve)
        addCurves(path, points, 1);
    else
        addLines(path, points, 1);
    if (figure == Figure::Polygon)
        path.close();
    machine.figure(path, figure == Figure::Polygon ? Machine::Draw::FillAndStroke : Machine::Draw::Stroke);
}

void continueLine(Machine& machine, const Record& record, PointSize coding)
{
    const std::vector<Point> points = readPoints(record, coding);
    if (points.empty())
        return;
    Path path;
    path.moveTo(machine.dc().position);
    addLines(path, points, 0);
    machine.segments(path, points.back());
}

void continueBezier(Machine& machine, const Record& record, PointSize coding)
{
    const std::vector<Point> points = readPoints(record, coding);
    if (points.size() < 3)
        return;
    Path path;
    path.moveTo(machine.dc().position);
    addCurves(path, points, 0);
    machine.segments(path, path.current());
}

void drawMany(Machine& machine, const Record& record, PointSize coding, bool isPolygon)
{
    constexpr std::size_t kCounts = 32;
    const std::uint64_t figures = record.u32(24);
    if (!record.has(kCounts, figures * 4))
        return machine.warn("emf.counts", "figures whose number goes beyond their record, left out");
    std::size_t at = kCounts + static_cast<std::size_t>(figures) * 4;
    Path path;
    for (std::size_t i = 0; i < figures; ++i) {
        const std::uint32_t count = record.u32(kCounts + 4 * i);
        const std::vector<Point> points = readPoints(record, at, count, coding);
        at += points.size() * sizeOf(coding);
        if (points.size() >= 2) {
            path.moveTo(points[0]);
            addLines(path, points, 1);
            if (isPolygon)
                path.close();
        }
        if (points.size() < count) {
            machine.warn("emf.counts", "figures whose number goes beyond their record, left out");
            break;
        }
    }
    if (!path.empty())
        machine.figure(path, isPolygon ? Machine::Draw::FillAndStroke : Machine::Draw::Stroke);
}

void drawMixed(Machine& machine, const Record& record, PointSize coding)
{
    enum : std::uint8_t { kClose = 1, kLine = 2, kBezier = 4, kMove = 6 };
    const std::uint64_t count = record.u32(kCount);
    const std::vector<Point> points = readPoints(record, coding);
    const std::size_t types = kPoints + points.size() * sizeOf(coding);
    if (points.size() < count || !record.has(types, count))
        return machine.warn("emf.counts", "figures whose number goes beyond their record, left out");
    Path path;
    path.moveTo(machine.dc().position);
    Point end = machine.dc().position;
    std::size_t i = 0;
    while (i < points.size()) {
        const std::uint8_t type = record.u8(types + i);
        const std::uint8_t kind = static_cast<std::uint8_t>(type & ~kClose);
        std::size_t used = 1;
        if (kind == kMove) {
            path.moveTo(points[i]);
        } else if (kind == kLine) {
            path.lineTo(points[i]);
        } else if (kind == kBezier && i + 2 < points.size()) {
            path.cubicTo(points[i], points[i + 1], points[i + 2]);
            used = 3;
        } else {
            break;
        }
        i += used;
        end = points[i - 1];
        if (kind != kMove && (record.u8(types + i - 1) & kClose) != 0)
            path.close();
    }
    machine.segments(path, end);
}

} // namespace

void moveTo(Machine& machine, const Record& record)
{
    machine.dc().position = record.point(8);
    machine.dc().path.needsMove = true;
}

void lineTo(Machine& machine, const Record& record)
{
    const Point to = record.point(8);
    Path path;
    path.moveTo(machine.dc().position);
    path.lineTo(to);
    machine.segments(path, to);
}

void polyline(Machine& machine, const Record& record) { drawOne(machine, record, PointSize::Long, Figure::Line); }
void polyline16(Machine& machine, const Record& record) { drawOne(machine, record, PointSize::Short, Figure::Line); }
void polygon(Machine& machine, const Record& record) { drawOne(machine, record, PointSize::Long, Figure::Polygon); }
void polygon16(Machine& machine, const Record& record) { drawOne(machine, record, PointSize::Short, Figure::Polygon); }
void polylineTo(Machine& machine, const Record& record) { continueLine(machine, record, PointSize::Long); }
void polylineTo16(Machine& machine, const Record& record) { continueLine(machine, record, PointSize::Short); }
void polyBezier(Machine& machine, const Record& record) { drawOne(machine, record, PointSize::Long, Figure::Curve); }
void polyBezier16(Machine& machine, const Record& record) { drawOne(machine, record, PointSize::Short, Figure::Curve); }
void polyBezierTo(Machine& machine, const Record& record) { continueBezier(machine, record, PointSize::Long); }
void polyBezierTo16(Machine& machine, const Record& record) { continueBezier(machine, record, PointSize::Short); }
void polyPolyline(Machine& machine, const Record& record) { drawMany(machine, record, PointSize::Long, false); }
void polyPolyline16(Machine& machine, const Record& record) { drawMany(machine, record, PointSize::Short, false); }
void polyPolygon(Machine& machine, const Record& record) { drawMany(machine, record, PointSize::Long, true); }
void polyPolygon16(Machine& machine, const Record& record) { drawMany(machine, record, PointSize::Short, true); }
void polyDraw(Machine& machine, const Record& record) { drawMixed(machine, record, PointSize::Long); }
void polyDraw16(Machine& machine, const Record& record) { drawMixed(machine, record, PointSize::Short); }

} // namespace quillrip::emf
