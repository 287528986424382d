#include "quillrip/emf/plus/handlers.h"
#include "quillrip/emf/plus/operands.h"
#include "quillrip/emf/plus/shapes.h"

#include <cstdint>
#include <vector>

namespace quillrip::emf::plus {

namespace {

struct CurveOperands {
    double tension;
    std::vector<Point> points;
};

CurveOperands readCurve(const Record& record, FieldReader& fields)
{
    const double tension = fields.f32();
    const std::uint32_t count = fields.u32();
    return { tension, fields.points(pointFormOf(record), count) };
}

} // namespace

void fillClosedCurve(Machine& machine, const Record& record, FieldReader& fields)
{
    const auto paint = readPaint(machine, record, fields);
    const CurveOperands curve = readCurve(record, fields);
    const FillRule rule = record.flags & kWindingFill ? FillRule::NonZero : FillRule::EvenOdd;
    if (!fields.hasFailed() && paint)
        machine.canvas().fill(closedCardinalPath(curve.points, curve.tension), rule, *paint);
}

void drawClosedCurve(Machine& machine, const Record& record, FieldReader& fields)
{
    const CurveOperands curve = readCurve(record, fields);
    if (fields.hasFailed())
        return;
    if (const auto pen = findPen(machine, record.id()))
        machine.canvas().stroke(closedCardinalPath(curve.points, curve.tension), pen);
}

void drawCurve(Machine& machine, const Record& record, FieldReader& fields)
{
    const double tension = fields.f32();
    const std::uint32_t first = fields.u32();
    const std::uint32_t segments = fields.u32();
    const std::uint32_t count = fields.u32();
    const std::vector<Point> points = fields.points(rectFormOf(record), count);
    if (fields.hasFailed())
        return;
    if (const auto pen = findPen(machine, record.id()))
        machine.canvas().stroke(cardinalPath(points, tension, first, segments), pen);
}

void drawBeziers(Machine& machine, const Record& record, FieldReader& fields)
{
    const std::uint32_t count = fields.u32();
    const std::vector<Point> points = fields.points(pointFormOf(record), count);
    if (fields.hasFailed())
        return;
    if (const auto pen = findPen(machine, record.id()))
        machine.canvas().stroke(bezierPath(points), pen);
}

} // namespace quillrip::emf::plus
