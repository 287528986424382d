// Pages, devices, and what only plotters of their own know.

#include "quillrip/hpgl/command.h"
#include "quillrip/hpgl/commands.h"
#include "quillrip/hpgl/lexer.h"
#include "quillrip/hpgl/plotter.h"

namespace quillrip::hpgl::commands {

/// CO and MG: quoted text, which may hold semicolons.
void comment(Plotter&, Command& command)
{
    Lexer lexer(command.input);
    lexer.readText(0);
    lexer.skipOperands();
}

void beginPlot(Plotter& plotter, Command& command)
{
    // Pairs of kind and value; the value of kind 1, the plot's name, is quoted.
    InputStream& input = command.input;
    Lexer lexer(input);
    for (;;) {
        const int byte = input.peek();
        if (byte < 0 || byte == kEscape || isLetter(byte))
            break;
        if (byte == '"') {
            lexer.readText(0);
            continue;
        }
        input.get();
        if (byte == ';')
            break;
    }
    if (!plotter.listener)
        return;
    plotter.leavePage(false);
    if (plotter.status() == RunStatus::Done)
        plotter.initialiseWithPalette();
}

void advancePage(Plotter& plotter, Command& command) { plotter.leavePage(!command.empty()); }

void advanceFrame(Plotter& plotter, Command&) { plotter.leavePage(false); }

void plotSize(Plotter& plotter, Command& command)
{
    if (!plotter.listener || !plotter.listener->plotSize(command.operands))
        return;
    const Point pen = plotter.state.pen;
    plotter.frameChanged();
    plotter.listener->pointsDefaulted();
    plotter.state.pen = plotter.state.carriageReturn = pen;
}

} // namespace quillrip::hpgl::commands
