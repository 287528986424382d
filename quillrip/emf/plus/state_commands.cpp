#include "quillrip/emf/plus/handlers.h"
#include "quillrip/emf/plus/operands.h"

#include <cstdint>

namespace quillrip::emf::plus {

namespace {

void saveAs(Machine& machine, std::uint32_t index)
{
    if (!machine.states().save(index))
        machine.warn("emfplus.depth", "more states are saved than any drawing needs");
}

void restoreTo(Machine& machine, std::uint32_t index)
{
    if (!machine.states().restore(index))
        machine.warn("emfplus.restore", "a state is restored that was not saved, ignored");
}

/// Coordinates start anew on top of the ones so far; what is painted stays within the clip so far.
void enterContainer(Machine& machine, const Matrix& pageToOuterWorld, Unit unit)
{
    Canvas& canvas = machine.canvas();
    GraphicsState& state = machine.state();
    const PixelRect page = canvas.pageBounds();
    state.container = pageToOuterWorld * state.worldToReference(canvas.device());
    state.world = Matrix();
    state.pageUnit = unit;
    state.pageScale = 1;
    state.outerClip = combine(state.outerClip, state.clip, CombineMode::Intersect, page);
    state.clip = nullptr;
}

} // namespace

void setRenderingOrigin(Machine& machine, const Record&, FieldReader& fields)
{
    const double x = fields.i32();
    const double y = fields.i32();
    if (!fields.hasFailed())
        machine.state().renderingOrigin = { x, y };
}

void setInterpolationMode(Machine& machine, const Record& record, FieldReader&)
{
    constexpr std::uint8_t low = 1;
    constexpr std::uint8_t nearest = 5;
    machine.state().isSmooth = record.id() != low && record.id() != nearest;
}

void setCompositingMode(Machine& machine, const Record& record, FieldReader&)
{
    constexpr std::uint8_t sourceCopy = 1;
    machine.state().replaces = record.id() == sourceCopy;
}

void save(Machine& machine, const Record&, FieldReader& fields)
{
    const std::uint32_t index = fields.u32();
    if (!fields.hasFailed())
        saveAs(machine, index);
}

void restore(Machine& machine, const Record&, FieldReader& fields)
{
    const std::uint32_t index = fields.u32();
    if (!fields.hasFailed())
        restoreTo(machine, index);
}

void beginContainer(Machine& machine, const Record& record, FieldReader& fields)
{
    const RectF to = fields.rectF();
    const RectF from = fields.rectF();
    const std::uint32_t index = fields.u32();
    if (fields.hasFailed() || from.width == 0 || from.height == 0)
        return;
    // The published diagram puts the unit into the high byte, its text and writers into the low one.
    const std::uint32_t number = record.id() != 0 ? record.id() : record.flags >> 8U;
    const Unit unit = number == 0 ? Unit::Pixel : unitOf(number);
    saveAs(machine, index);
    const LogicalDevice& device = machine.canvas().device();
    const Matrix fromUnits = Matrix::translation(-from.x, -from.y)
        * Matrix::scaling(to.width / from.width, to.height / from.height) * Matrix::translation(to.x, to.y);
    const Matrix fromPixels = Matrix::scaling(1 / device.pixelsAcross(unit), 1 / device.pixelsDown(unit)) * fromUnits;
    enterContainer(machine, fromPixels, unit);
}

void beginContainerNoParams(Machine& machine, const Record&, FieldReader& fields)
{
    const std::uint32_t index = fields.u32();
    if (fields.hasFailed())
        return;
    saveAs(machine, index);
    enterContainer(machine, Matrix(), Unit::Pixel);
}

void endContainer(Machine& machine, const Record&, FieldReader& fields)
{
    const std::uint32_t index = fields.u32();
    if (!fields.hasFailed())
        restoreTo(machine, index);
}

} // namespace quillrip::emf::plus
