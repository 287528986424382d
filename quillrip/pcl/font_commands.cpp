#include "quillrip/pcl/command_handlers.h"
#include "quillrip/pcl/font_slots.h"
#include "quillrip/pcl/machine.h"
#include "quillrip/pcl/state.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace quillrip::pcl {

namespace {

FontSlot& slotOf(Machine& machine, const Command& command)
{
    return machine.fonts().slot(command.prefix == ')' ? 1 : 0);
}

} // namespace

void setSymbolSet(Machine& machine, const Command& command)
{
    const int number = command.value.integer();
    if (number < 0 || number > 2047)
        return;
    FontSlot& slot = slotOf(machine, command);
    slot.request.symbolSet = symbolSetNumber(static_cast<unsigned>(number), command.terminator);
    machine.fonts().changed(slot);
}

void selectFontById(Machine& machine, const Command& command)
{
    ResourceKey key;
    key.number = command.value.integer();
    machine.fonts().selectById(slotOf(machine, command), key);
}

void selectDefaultFont(Machine& machine, const Command& command)
{
    FontSlot& slot = slotOf(machine, command);
    const FontRequest standard = machine.userDefaults().fonts[0].request;
    switch (command.value.integer()) {
    case 0:
    case 1:
        slot.request.symbolSet = standard.symbolSet;
        break;
    case 2:
        slot.request.symbolSet = machine.state().fonts[0].request.symbolSet;
        break;
    case 3:
        slot.request = standard;
        break;
    default:
        return;
    }
    machine.fonts().changed(slot);
}

void setSpacing(Machine& machine, const Command& command)
{
    const int spacing = command.value.integer();
    if (spacing != 0 && spacing != 1)
        return;
    slotOf(machine, command).request.isProportional = spacing == 1;
    machine.fonts().changed(slotOf(machine, command));
}

void setPitch(Machine& machine, const Command& command)
{
    if (command.value.number <= 0)
        return;
    slotOf(machine, command).request.pitch = std::clamp(std::round(command.value.number * 100) / 100, 0.1, 576.0);
    machine.fonts().changed(slotOf(machine, command));
}

void setHeight(Machine& machine, const Command& command)
{
    if (command.value.number <= 0)
        return;
    slotOf(machine, command).request.height = std::clamp(std::round(command.value.number * 4) / 4, 0.25, 999.75);
    machine.fonts().changed(slotOf(machine, command));
}

void setStyle(Machine& machine, const Command& command)
{
    const int style = command.value.integer();
    if (style < 0 || style > 32767)
        return;
    slotOf(machine, command).request.style = static_cast<std::uint16_t>(style);
    machine.fonts().changed(slotOf(machine, command));
}

void setWeight(Machine& machine, const Command& command)
{
    slotOf(machine, command).request.weight = std::clamp(command.value.integer(), -7, 7);
    machine.fonts().changed(slotOf(machine, command));
}

void setTypeface(Machine& machine, const Command& command)
{
    const int family = command.value.integer();
    if (family < 0 || family > 65535)
        return;
    slotOf(machine, command).request.family = static_cast<std::uint16_t>(family);
    machine.fonts().changed(slotOf(machine, command));
}

void setPitchMode(Machine& machine, const Command& command)
{
    double pitch = 0;
    switch (command.value.integer()) {
    case 0:
        pitch = 10;
        break;
    case 2:
        pitch = 16.67;
        break;
    case 4:
        pitch = 12;
        break;
    default:
        return;
    }
    for (FontSlot& slot : machine.state().fonts) {
        slot.request.pitch = pitch;
        machine.fonts().changed(slot);
    }
}

} // namespace quillrip::pcl
