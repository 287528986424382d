#include "quillrip/base/units.h"
#include "quillrip/emf/plus/handlers.h"
#include "quillrip/emf/plus/operands.h"

#include <cmath>
#include <cstdint>

namespace quillrip::emf::plus {

namespace {

constexpr std::uint16_t kAppends = 0x2000;

/// Numbers that a drawing has no use for must not come about by many small steps either.
bool isUsable(const Matrix& matrix)
{
    constexpr double largest = 1e9;
    for (const double element : { matrix.a, matrix.b, matrix.c, matrix.d, matrix.e, matrix.f }) {
        if (!std::isfinite(element) || std::abs(element) > largest)
            return false;
    }
    return true;
}

/// The new matrix acts on points before the present one, or behind it where the record says so.
void multiply(Machine& machine, const Record& record, const FieldReader& fields, const Matrix& matrix)
{
    if (fields.hasFailed())
        return;
    Matrix& world = machine.state().world;
    const Matrix product = record.flags & kAppends ? world * matrix : matrix * world;
    if (isUsable(product))
        world = product;
    else
        machine.warn("emfplus.transform", "a transform grows beyond any page, ignored");
}

} // namespace

void setWorldTransform(Machine& machine, const Record&, FieldReader& fields)
{
    const Matrix matrix = fields.matrix();
    if (!fields.hasFailed())
        machine.state().world = matrix;
}

void resetWorldTransform(Machine& machine, const Record&, FieldReader&) { machine.state().world = Matrix(); }

void multiplyWorldTransform(Machine& machine, const Record& record, FieldReader& fields)
{
    const Matrix matrix = fields.matrix();
    multiply(machine, record, fields, matrix);
}

void translateWorldTransform(Machine& machine, const Record& record, FieldReader& fields)
{
    const Point by = fields.pointF();
    multiply(machine, record, fields, Matrix::translation(by.x, by.y));
}

void scaleWorldTransform(Machine& machine, const Record& record, FieldReader& fields)
{
    const Point by = fields.pointF();
    multiply(machine, record, fields, Matrix::scaling(by.x, by.y));
}

void rotateWorldTransform(Machine& machine, const Record& record, FieldReader& fields)
{
    const double degrees = fields.f32();
    const double quarters = degrees / 90;
    Matrix rotation;
    if (quarters == std::floor(quarters)) {
        rotation = Matrix::quarterTurns(static_cast<int>(static_cast<std::int64_t>(quarters) & 3));
    } else {
        const double cosine = std::cos(degrees * kRadiansPerDegree);
        const double sine = std::sin(degrees * kRadiansPerDegree);
        rotation = { cosine, sine, -sine, cosine, 0, 0 };
    }
    multiply(machine, record, fields, rotation);
}

void setPageTransform(Machine& machine, const Record& record, FieldReader& fields)
{
    const double scale = fields.f32();
    if (fields.hasFailed() || scale == 0)
        return;
    machine.state().pageUnit = unitOf(record.id());
    machine.state().pageScale = scale;
}

} // namespace quillrip::emf::plus
