#include "quillrip/pcl/command_handlers.h"
#include "quillrip/pcl/machine.h"
#include "quillrip/pcl/macro_runner.h"
#include "quillrip/pcl/state.h"

#include <algorithm>

namespace quillrip::pcl {

void setMacroId(Machine& machine, const Command& command)
{
    State& state = machine.state();
    state.macroKey = {};
    state.macroKey.number = std::clamp(command.value.integer(), 0, 32767);
}

void controlMacro(Machine& machine, const Command& command)
{
    const State& state = machine.state();
    MacroRunner& macros = machine.macros();
    const int action = command.value.integer();
    const bool isDefinition = action == 0 || action == 1 || (action >= 6 && action <= 10);
    // A macro may not change macros while it runs.
    if (isDefinition && macros.isPlaying())
        return;
    const bool concernsOverlay = macros.isOverlay(state.macroKey);
    switch (action) {
    case 0:
        if (concernsOverlay)
            macros.clearOverlay();
        macros.requestRecording(state.macroKey);
        break;
    case 2:
        macros.play(macros.store().find(state.macroKey));
        break;
    case 3:
        machine.callMacro(macros.store().find(state.macroKey));
        break;
    case 4:
        macros.setOverlay(state.macroKey);
        break;
    case 5:
        macros.clearOverlay();
        break;
    case 6:
        macros.store().removeAll();
        macros.clearOverlay();
        break;
    case 7:
        macros.removeTemporary();
        break;
    case 8:
        macros.store().remove(state.macroKey);
        if (concernsOverlay)
            macros.clearOverlay();
        break;
    case 9:
    case 10:
        macros.store().setPermanent(state.macroKey, action == 10);
        break;
    default:
        break;
    }
}

} // namespace quillrip::pcl
