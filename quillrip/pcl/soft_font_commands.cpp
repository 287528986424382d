#include "quillrip/pcl/command_handlers.h"
#include "quillrip/pcl/error_state.h"
#include "quillrip/pcl/font_slots.h"
#include "quillrip/pcl/machine.h"
#include "quillrip/pcl/macro_runner.h"
#include "quillrip/pcl/state.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

namespace quillrip::pcl {

void setFontId(Machine& machine, const Command& command)
{
    State& state = machine.state();
    state.fontKey = {};
    state.fontKey.number = std::clamp(command.value.integer(), 0, 32767);
}

void setCharacterCode(Machine& machine, const Command& command)
{
    machine.state().characterCode = static_cast<std::uint32_t>(std::clamp(command.value.integer(), 0, 65535));
}

void downloadFontHeader(Machine& machine, const Command& command)
{
    State& state = machine.state();
    if (command.data.empty())
        return;
    SoftFontStore& store = machine.fonts().library().softFonts();
    // A header replaces the font of that number even when it turns out to be none.
    store.remove(state.fontKey);
    const std::shared_ptr<SoftFont> font = SoftFont::fromPclHeader(command.data, machine.errors().reporter());
    if (font && !store.put(state.fontKey, font, machine.errors().reporter()))
        machine.errors().fail(RunStatus::LimitExceeded);
    machine.fonts().resourcesChanged();
}

void downloadCharacter(Machine& machine, const Command& command)
{
    State& state = machine.state();
    const std::shared_ptr<SoftFont> font = machine.fonts().library().softFonts().find(state.fontKey);
    if (!font || command.data.empty())
        return;
    if (!machine.fonts().library().softFonts().hasRoomFor(command.data.size)) {
        machine.errors().damage("pcl.font-memory", "the job's fonts need more memory than the limit allows");
        machine.errors().fail(RunStatus::LimitExceeded);
        return;
    }
    font->addPclCharacter(state.characterCode, command.data, machine.errors().reporter());
}

void controlFonts(Machine& machine, const Command& command)
{
    State& state = machine.state();
    SoftFontStore& store = machine.fonts().library().softFonts();
    switch (command.value.integer()) {
    case 0:
        store.removeAll();
        break;
    case 1:
        store.removeTemporary();
        break;
    case 2:
        store.remove(state.fontKey);
        break;
    case 3:
        if (const std::shared_ptr<SoftFont> font = store.find(state.fontKey))
            font->removeCharacter(state.characterCode);
        return;
    case 4:
        store.setPermanent(state.fontKey, false);
        return;
    case 5:
        store.setPermanent(state.fontKey, true);
        return;
    case 6: {
        const auto* inUse = dynamic_cast<const SoftFont*>(machine.fonts().current().face.get());
        if (!inUse) {
            machine.errors().warn("pcl.copy-of-built-in-font", "a copy of a built-in font under a number is not made");
            return;
        }
        if (!store.put(state.fontKey, inUse->copy(), machine.errors().reporter()))
            machine.errors().fail(RunStatus::LimitExceeded);
        break;
    }
    default:
        return;
    }
    machine.fonts().resourcesChanged();
}

void setSymbolSetCode(Machine& machine, const Command& command)
{
    machine.state().symbolSetCode = std::clamp(command.value.integer(), 0, 65535);
}

void defineSymbolSet(Machine& machine, const Command& command)
{
    const std::shared_ptr<const SymbolSet> set = SymbolSet::parse(command.data, machine.errors().reporter());
    if (!set)
        return;
    if (set->number() != machine.state().symbolSetCode) {
        machine.errors().warn(
            "pcl.symbol-set-number", "a symbol set's header names another number than its command, skipped");
        return;
    }
    machine.fonts().library().defineSymbolSet(set);
    machine.fonts().resourcesChanged();
}

void controlSymbolSets(Machine& machine, const Command& command)
{
    const auto number = static_cast<std::uint16_t>(machine.state().symbolSetCode);
    switch (command.value.integer()) {
    case 0:
        machine.fonts().library().removeAllSymbolSets();
        break;
    case 1:
        machine.fonts().library().removeTemporarySymbolSets();
        break;
    case 2:
        machine.fonts().library().removeSymbolSet(number);
        break;
    case 4:
        machine.fonts().library().setSymbolSetPermanent(number, false);
        return;
    case 5:
        machine.fonts().library().setSymbolSetPermanent(number, true);
        return;
    default:
        return;
    }
    machine.fonts().resourcesChanged();
}

// Names instead of numbers, for fonts and macros.
void alphanumericId(Machine& machine, const Command& command)
{
    State& state = machine.state();
    if (command.data.size < 2 || command.data.size > 512)
        return;
    ResourceKey named;
    named.name.assign(command.data.begin() + 1, command.data.end());
    switch (command.data[0]) {
    case 0:
        state.fontKey = named;
        break;
    case 1:
        machine.fonts().library().softFonts().associate(state.fontKey, named);
        machine.fonts().resourcesChanged();
        break;
    case 2:
    case 3:
        machine.fonts().selectById(machine.fonts().slot(command.data[0] - 2u), named);
        break;
    case 4:
        state.macroKey = named;
        break;
    case 5:
        machine.macros().store().associate(state.macroKey, named);
        break;
    case 20:
        machine.fonts().library().softFonts().remove(state.fontKey);
        machine.fonts().resourcesChanged();
        break;
    case 21:
        machine.macros().store().remove(state.macroKey);
        break;
    default:
        break; // media by name and what nobody knows
    }
}

} // namespace quillrip::pcl
