#include "quillrip/pclxl/commands.h"
#include "quillrip/pclxl/drawing.h"
#include "quillrip/pclxl/machine.h"
#include "quillrip/pclxl/page.h"
#include "quillrip/pclxl/state.h"

#include <array>

namespace quillrip::pclxl::commands {

namespace {

bool isExterior(const Machine& machine) { return machine.operands().integer(Attribute::ClipRegion) == 1; }

ClipGround groundOf(Machine& machine)
{
    const Page& page = machine.page();
    return { page.bounds(), clipEdgesOf(page.format()), *machine.limits().work };
}

Path devicePath(const GraphicsState& state) { return state.path.path().transformed(state.userToDevice); }

} // namespace

Status setClipReplace(Machine& machine)
{
    GraphicsState& state = machine.state();
    state.clip.replace(devicePath(state), groundOf(machine), isExterior(machine));
    machine.drawing().stateChanged();
    return {};
}

Status setClipIntersect(Machine& machine)
{
    GraphicsState& state = machine.state();
    state.clip.intersect(devicePath(state), groundOf(machine), isExterior(machine));
    machine.drawing().stateChanged();
    return {};
}

Status setClipRectangle(Machine& machine)
{
    GraphicsState& state = machine.state();
    const std::array<double, 4>& n = machine.operands().find(Attribute::BoundingBox)->numbers;
    Path box;
    box.rectangle(n[0], n[1], n[2], n[3]);
    state.clip.replace(box.transformed(state.userToDevice), groundOf(machine), isExterior(machine));
    machine.drawing().stateChanged();
    return {};
}

Status setClipToPage(Machine& machine)
{
    machine.state().clip.toPage();
    machine.drawing().stateChanged();
    return {};
}

Status setClipMode(Machine& machine)
{
    const bool isEvenOdd = machine.operands().integer(Attribute::ClipMode) == 1;
    machine.state().clip.setRule(isEvenOdd ? FillRule::EvenOdd : FillRule::NonZero);
    return {};
}

Status setPathToClip(Machine& machine)
{
    GraphicsState& state = machine.state();
    const Path outline = state.clip.outline(machine.page().bounds(), machine.limits().pathPoints);
    state.path.replace(outline.transformed(state.userToDevice.inverted()));
    return {};
}

} // namespace quillrip::pclxl::commands
