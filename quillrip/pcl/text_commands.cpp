#include "quillrip/pcl/command_handlers.h"
#include "quillrip/pcl/cursor.h"
#include "quillrip/pcl/error_state.h"
#include "quillrip/pcl/machine.h"
#include "quillrip/pcl/state.h"
#include "quillrip/pcl/text_printer.h"
#include "quillrip/pcl/underline_run.h"

#include <cstdint>

namespace quillrip::pcl {

void setTextParsing(Machine& machine, const Command& command)
{
    const auto method = CharacterDecoder::methodOf(command.value.integer());
    if (!method)
        return;
    machine.state().textParsing = *method;
    machine.text().decoder().reset();
}

void setTextPath(Machine& machine, const Command& command)
{
    const int path = command.value.integer();
    if (path == 0 || path == -1)
        machine.state().isVerticalText = path == -1;
}

void transparentText(Machine& machine, const Command& command)
{
    for (const std::uint8_t byte : command.data) {
        if (machine.errors().failed())
            return;
        machine.text().print(byte, true);
    }
    machine.text().flush();
}

void displayFunctionsOn(Machine& machine, const Command& /*command*/) { machine.displayFunctions().begin(); }

void displayFunctionsOff(Machine& machine, const Command& /*command*/) { machine.displayFunctions().end(); }

void setUnderline(Machine& machine, const Command& command)
{
    machine.underline().end();
    Underline underline = Underline::Off;
    if (command.terminator == 'D') {
        const int kind = command.value.integer();
        if (kind == 0 || kind == 1)
            underline = Underline::Fixed;
        else if (kind == 3)
            underline = Underline::Floating;
    }
    machine.state().underline = underline;
    machine.underline().begin(machine.cursor().position());
}

} // namespace quillrip::pcl
