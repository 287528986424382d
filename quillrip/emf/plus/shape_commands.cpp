#include "quillrip/emf/plus/handlers.h"
#include "quillrip/emf/plus/operands.h"
#include "quillrip/emf/plus/shapes.h"

#include <cstdint>
#include <vector>

namespace quillrip::emf::plus {

namespace {

std::vector<RectF> readRects(const Record& record, FieldReader& fields)
{
    const PointForm form = rectFormOf(record);
    const std::uint32_t count = fields.u32();
    std::vector<RectF> rects;
    if (!fields.has(count, form == PointForm::Integer ? 8 : 16))
        return rects;
    rects.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i)
        rects.push_back(fields.rect(form));
    return rects;
}

std::vector<Point> readPoints(const Record& record, FieldReader& fields)
{
    const std::uint32_t count = fields.u32();
    return fields.points(pointFormOf(record), count);
}

struct ArcOperands {
    double start;
    double sweep;
    RectF rect;
};

ArcOperands readArc(const Record& record, FieldReader& fields)
{
    const double start = fields.f32();
    const double sweep = fields.f32();
    return { start, sweep, fields.rect(rectFormOf(record)) };
}

void drawArcWith(Machine& machine, const Record& record, FieldReader& fields, ArcKind kind)
{
    const ArcOperands arc = readArc(record, fields);
    if (fields.hasFailed() || arc.rect.isEmpty())
        return;
    if (const auto pen = findPen(machine, record.id()))
        machine.canvas().stroke(arcPath(arc.rect, arc.start, arc.sweep, kind), pen);
}

} // namespace

void clear(Machine& machine, const Record&, FieldReader& fields)
{
    const Rgba color = fields.color();
    if (!fields.hasFailed())
        machine.canvas().clear(color);
}

void fillRects(Machine& machine, const Record& record, FieldReader& fields)
{
    const auto paint = readPaint(machine, record, fields);
    const std::vector<RectF> rects = readRects(record, fields);
    if (fields.hasFailed() || !paint)
        return;
    for (const RectF& rect : rects) {
        if (!rect.isEmpty())
            machine.canvas().fill(rectanglePath(rect), FillRule::NonZero, *paint);
    }
}

void drawRects(Machine& machine, const Record& record, FieldReader& fields)
{
    const std::vector<RectF> rects = readRects(record, fields);
    if (fields.hasFailed())
        return;
    const auto pen = findPen(machine, record.id());
    if (!pen)
        return;
    for (const RectF& rect : rects) {
        if (rect.width >= 0 && rect.height >= 0)
            machine.canvas().stroke(rectanglePath(rect), pen);
    }
}

void fillPolygon(Machine& machine, const Record& record, FieldReader& fields)
{
    const auto paint = readPaint(machine, record, fields);
    const std::vector<Point> points = readPoints(record, fields);
    if (!fields.hasFailed() && paint)
        machine.canvas().fill(polygonPath(points, true), FillRule::EvenOdd, *paint);
}

void drawLines(Machine& machine, const Record& record, FieldReader& fields)
{
    const std::vector<Point> points = readPoints(record, fields);
    if (fields.hasFailed())
        return;
    if (const auto pen = findPen(machine, record.id()))
        machine.canvas().stroke(polygonPath(points, record.flags & kClosed), pen);
}

void fillEllipse(Machine& machine, const Record& record, FieldReader& fields)
{
    const auto paint = readPaint(machine, record, fields);
    const RectF rect = fields.rect(rectFormOf(record));
    if (!fields.hasFailed() && paint && !rect.isEmpty())
        machine.canvas().fill(ellipsePath(rect), FillRule::NonZero, *paint);
}

void drawEllipse(Machine& machine, const Record& record, FieldReader& fields)
{
    const RectF rect = fields.rect(rectFormOf(record));
    if (fields.hasFailed() || rect.isEmpty())
        return;
    if (const auto pen = findPen(machine, record.id()))
        machine.canvas().stroke(ellipsePath(rect), pen);
}

void fillPie(Machine& machine, const Record& record, FieldReader& fields)
{
    const auto paint = readPaint(machine, record, fields);
    const ArcOperands arc = readArc(record, fields);
    if (!fields.hasFailed() && paint && !arc.rect.isEmpty())
        machine.canvas().fill(arcPath(arc.rect, arc.start, arc.sweep, ArcKind::Pie), FillRule::NonZero, *paint);
}

void drawPie(Machine& machine, const Record& record, FieldReader& fields)
{
    drawArcWith(machine, record, fields, ArcKind::Pie);
}

void drawArc(Machine& machine, const Record& record, FieldReader& fields)
{
    drawArcWith(machine, record, fields, ArcKind::Open);
}

void fillRegion(Machine& machine, const Record& record, FieldReader& fields)
{
    const auto paint = readPaint(machine, record, fields);
    if (fields.hasFailed() || !paint)
        return;
    if (const auto region = findRegion(machine, record.id()))
        machine.canvas().fillRegion(*region, *paint);
}

void fillPath(Machine& machine, const Record& record, FieldReader& fields)
{
    const auto paint = readPaint(machine, record, fields);
    if (fields.hasFailed() || !paint)
        return;
    if (const auto path = findPath(machine, record.id()))
        machine.canvas().fill(path->path, path->rule, *paint);
}

void drawPath(Machine& machine, const Record& record, FieldReader& fields)
{
    const std::uint32_t penId = fields.u32();
    if (fields.hasFailed())
        return;
    const auto path = findPath(machine, record.id());
    const auto pen = path ? findPen(machine, penId) : nullptr;
    if (pen)
        machine.canvas().stroke(path->path, pen);
}

void strokeFillPath(Machine& machine, const Record&, FieldReader&)
{
    machine.warn("emfplus.stroke-fill", "a StrokeFillPath record is passed over: its form was never published");
}

} // namespace quillrip::emf::plus
