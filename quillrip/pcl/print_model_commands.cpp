// Patterns, transparency, logical operations and rectangles.

#include "quillrip/base/units.h"
#include "quillrip/pcl/command_handlers.h"
#include "quillrip/pcl/cursor.h"
#include "quillrip/pcl/error_state.h"
#include "quillrip/pcl/machine.h"
#include "quillrip/pcl/page.h"
#include "quillrip/pcl/pattern_cache.h"
#include "quillrip/pcl/print_model.h"
#include "quillrip/pcl/state.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>

namespace quillrip::pcl {

void setPattern(Machine& machine, const Command& command)
{
    State& state = machine.state();
    const int kind = command.value.integer();
    if (kind < 0 || kind > 4)
        return;
    const PatternChoice choice { static_cast<PatternKind>(kind), state.patternId };
    if (machine.patterns().exists(choice))
        state.pattern = choice;
}

void setPatternId(Machine& machine, const Command& command)
{
    machine.state().patternId = std::clamp(command.value.integer(), 0, 32767);
}

void downloadPattern(Machine& machine, const Command& command)
{
    if (command.data.empty())
        return;
    const std::shared_ptr<const UserPattern> pattern = UserPattern::parse(command.data);
    if (!pattern) {
        machine.errors().warn("pcl.bad-pattern", "a user-defined pattern with an impossible header was skipped");
        return;
    }
    if (!machine.patterns().store().put(machine.state().patternId, pattern)) {
        machine.errors().damage("pcl.pattern-memory", "the job's patterns need more memory than the limit allows");
        machine.errors().fail(RunStatus::LimitExceeded);
    }
}

void controlPatterns(Machine& machine, const Command& command)
{
    State& state = machine.state();
    switch (command.value.integer()) {
    case 0:
        machine.patterns().store().removeAll();
        break;
    case 1:
        machine.patterns().store().removeTemporary();
        break;
    case 2:
        machine.patterns().store().remove(state.patternId);
        break;
    case 4:
        machine.patterns().store().setPermanent(state.patternId, false);
        break;
    case 5:
        machine.patterns().store().setPermanent(state.patternId, true);
        break;
    default:
        break;
    }
    if (!machine.patterns().exists(state.pattern))
        state.pattern = {};
}

void setPatternReference(Machine& machine, const Command& command)
{
    State& state = machine.state();
    const int mode = command.value.integer();
    if (mode != 0 && mode != 1)
        return;
    state.patternReference = state.page.toOrientation(machine.cursor().position(), state.direction);
    state.patternFollowsDirection = mode == 0;
}

void setSourceTransparency(Machine& machine, const Command& command)
{
    const int mode = command.value.integer();
    if (mode == 0 || mode == 1)
        machine.state().sourceTransparent = mode == 0;
}

void setPatternTransparency(Machine& machine, const Command& command)
{
    const int mode = command.value.integer();
    if (mode == 0 || mode == 1)
        machine.state().patternTransparent = mode == 0;
}

void setRasterOperation(Machine& machine, const Command& command)
{
    const int code = command.value.integer();
    if (code >= 0 && code <= 255)
        machine.state().rasterOperation = static_cast<std::uint8_t>(code);
}

void setPixelPlacement(Machine& machine, const Command& command)
{
    const int mode = command.value.integer();
    if (mode == 0 || mode == 1)
        machine.state().isGridCentred = mode == 1;
}

void setRectangleSize(Machine& machine, const Command& command)
{
    State& state = machine.state();
    if (command.value.number < 0)
        return;
    InternalUnits size = 0;
    const bool isDecipoints = command.terminator == 'H' || command.terminator == 'V';
    if (isDecipoints) {
        // A part of a dot counts as a whole one; the dots are those of the device, 1/300 inch where it is coarser.
        const Resolution resolution = machine.page().canvas().resolution;
        const double perInch = std::max(300.0, command.terminator == 'H' ? resolution.x : resolution.y);
        const double dots = std::ceil(std::min(command.value.number, 32767.0) * perInch / kDecipointsPerInch - 1e-6);
        size = inUnits(dots, static_cast<double>(kUnitsPerInch) / perInch);
    } else {
        size
            = inUnits(std::min(command.value.number, 32767.0), static_cast<double>(kUnitsPerInch) / state.unitsPerInch);
    }
    const bool isWidth = command.terminator == 'A' || command.terminator == 'H';
    (isWidth ? state.rectangleWidth : state.rectangleHeight) = size;
}

void fillRectangle(Machine& machine, const Command& command)
{
    State& state = machine.state();
    const int fill = command.value.integer();
    if (fill < 0 || fill > 5 || state.rectangleWidth <= 0 || state.rectangleHeight <= 0)
        return;
    const PatternChoice choice
        = fill == 5 ? state.pattern : PatternChoice { static_cast<PatternKind>(fill), state.patternId };
    if (!machine.patterns().exists(choice))
        return;
    Painter* painter = machine.page().painterForMark();
    if (!painter)
        return;
    const Position from = machine.cursor().position();
    const Position to { from.x + state.rectangleWidth, from.y + state.rectangleHeight };
    PixelRect rect = machine.page().deviceRect(from, to, state.direction);
    // However coarse the device, a rule is seen.
    rect.right = std::max(rect.right, rect.left + 1);
    rect.bottom = std::max(rect.bottom, rect.top + 1);
    PaintState paint = machine.printModel().paintState(choice);
    if (fill == 1) {
        // A white rectangle erases, whatever the transparency modes.
        paint.texture = {};
        paint.texture.color = kWhite;
    }
    paint.clip = machine.page().logicalPageClip();
    painter->fillRect(rect, paint);
}

} // namespace quillrip::pcl
