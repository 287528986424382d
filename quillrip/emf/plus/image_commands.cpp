#include "quillrip/emf/plus/handlers.h"
#include "quillrip/emf/plus/operands.h"

#include <cstdint>
#include <vector>

namespace quillrip::emf::plus {

namespace {

constexpr std::uint16_t kWithEffect = 0x2000;

/// The number of image attributes, which say what lies beyond the image's edges: nothing of it is drawn there.
RectF readSource(FieldReader& fields)
{
    fields.u32(); // image attributes
    fields.i32(); // the rectangle's unit, always pixels
    return fields.rectF();
}

} // namespace

void drawImage(Machine& machine, const Record& record, FieldReader& fields)
{
    const RectF source = readSource(fields);
    const RectF to = fields.rect(rectFormOf(record));
    if (fields.hasFailed())
        return;
    if (const auto image = findImage(machine, record.id()))
        machine.canvas().image(image, source, { to.x, to.y }, { to.right(), to.y }, { to.x, to.bottom() });
}

void drawImagePoints(Machine& machine, const Record& record, FieldReader& fields)
{
    constexpr std::uint32_t corners = 3;
    const RectF source = readSource(fields);
    const std::uint32_t count = fields.u32();
    const std::vector<Point> points = fields.points(pointFormOf(record), count);
    if (fields.hasFailed() || points.size() < corners)
        return;
    if (record.flags & kWithEffect && !machine.takeEffect())
        machine.warn("emfplus.no-effect", "an image asks for an effect that did not come");
    if (const auto image = findImage(machine, record.id()))
        machine.canvas().image(image, source, points[0], points[1], points[2]);
}

} // namespace quillrip::emf::plus
