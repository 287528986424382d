#include "quillrip/pcl/command_handlers.h"
#include "quillrip/pcl/cursor.h"
#include "quillrip/pcl/font_slots.h"
#include "quillrip/pcl/machine.h"
#include "quillrip/pcl/state.h"
#include "quillrip/pcl/text_printer.h"

#include <cstdint>

namespace quillrip::pcl {

namespace {

double unitOfMeasure(const State& state) { return static_cast<double>(kUnitsPerInch) / state.unitsPerInch; }

void moveHorizontal(Machine& machine, const Value& value, double unit)
{
    Cursor& cursor = machine.cursor();
    const InternalUnits distance = inUnits(value.number, unit);
    cursor.moveToClamped(value.hasSign ? cursor.x() + distance : distance, cursor.y());
}

// Absolute places count from the top margin; `offset` is what rows lie below it.
void moveVertical(Machine& machine, const Value& value, double unit, InternalUnits offset)
{
    Cursor& cursor = machine.cursor();
    const InternalUnits distance = inUnits(value.number, unit);
    const InternalUnits from = value.hasSign ? cursor.y() : machine.state().text.top + offset;
    cursor.moveToClamped(cursor.x(), from + distance);
}

} // namespace

void moveColumns(Machine& machine, const Command& command)
{
    moveHorizontal(machine, command.value, static_cast<double>(machine.fonts().columnWidth()));
}

void moveHorizontalDecipoints(Machine& machine, const Command& command)
{
    moveHorizontal(machine, command.value, kUnitsPerDecipoint);
}

void moveHorizontalUnits(Machine& machine, const Command& command)
{
    moveHorizontal(machine, command.value, unitOfMeasure(machine.state()));
}

void moveRows(Machine& machine, const Command& command)
{
    const InternalUnits spacing = machine.state().lineSpacing;
    moveVertical(machine, command.value, static_cast<double>(spacing), (spacing * 3 + 2) / 4);
}

void moveVerticalDecipoints(Machine& machine, const Command& command)
{
    moveVertical(machine, command.value, kUnitsPerDecipoint, 0);
}

void moveVerticalUnits(Machine& machine, const Command& command)
{
    moveVertical(machine, command.value, unitOfMeasure(machine.state()), 0);
}

void pushOrPopCursor(Machine& machine, const Command& command)
{
    const int operation = command.value.integer();
    if (operation == 0)
        machine.cursor().push();
    else if (operation == 1)
        machine.cursor().pop();
}

void halfLineFeed(Machine& machine, const Command& /*command*/)
{
    machine.cursor().lineFeed(machine.state().lineSpacing / 2);
}

void obeyControlCode(Machine& machine, std::uint8_t code)
{
    State& state = machine.state();
    Cursor& cursor = machine.cursor();
    const int termination = state.lineTermination;
    machine.text().decoder().dropLeadByte();
    switch (code) {
    case 0x08:
        cursor.backspace(machine.fonts().columnWidth());
        break;
    case 0x09:
        cursor.tabulate(machine.fonts().columnWidth());
        break;
    case 0x0A:
        if (termination >= 2)
            cursor.carriageReturn();
        cursor.lineFeed(state.lineSpacing);
        break;
    case 0x0C:
        if (termination >= 2)
            cursor.carriageReturn();
        cursor.formFeed();
        break;
    case 0x0D:
        cursor.carriageReturn();
        if (termination & 1)
            cursor.lineFeed(state.lineSpacing);
        break;
    case 0x0E:
        state.activeFont = 1;
        break;
    case 0x0F:
        state.activeFont = 0;
        break;
    default:
        break; // NUL, BEL and VT do nothing
    }
}

} // namespace quillrip::pcl
