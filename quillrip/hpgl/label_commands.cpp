// Labels: their text, size, direction and place.

#include "quillrip/hpgl/command.h"
#include "quillrip/hpgl/commands.h"
#include "quillrip/hpgl/label_reader.h"
#include "quillrip/hpgl/lexer.h"
#include "quillrip/hpgl/plotter.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

namespace quillrip::hpgl::commands {

void label(Plotter& plotter, Command& command)
{
    const Point start = plotter.state.pen;
    const Point carriageReturn = plotter.state.carriageReturn;
    LabelReader reader(command.input, plotter.text);
    while (!reader.isComplete()) {
        const std::string text = reader.next();
        if (!plotter.polygon.isOpen() && !text.empty())
            plotter.labels.set(text);
        if (plotter.status() != RunStatus::Done)
            return;
    }
    plotter.labels.endLabel(start, carriageReturn);
    plotter.linePen.forgetTouch();
    plotter.linePen.restartPattern();
}

/// BL keeps a label, PB prints it.
void bufferLabel(Plotter& plotter, Command& command)
{
    LabelReader reader(command.input, plotter.text);
    plotter.labelBuffer = reader.next();
    reader.skip();
}

void printBuffer(Plotter& plotter, Command&)
{
    if (!plotter.labelBuffer.empty())
        plotter.labels.set(plotter.labelBuffer);
}

void writeToDisplay(Plotter& plotter, Command& command) { LabelReader(command.input, plotter.text).skip(); }

void characterPlot(Plotter& plotter, Command& command)
{
    if (command.empty())
        plotter.labels.startNextLine();
    else
        plotter.labels.moveBy(command.clampedReal(0), command.clampedReal(1, 0));
    plotter.linePen.restartPattern();
    plotter.linePen.forgetTouch();
}

void labelMode(Plotter& plotter, Command& command)
{
    const int mode = command.clampedInteger(0, 0);
    if (mode >= 0 && mode <= 3)
        plotter.text.mode = static_cast<LabelMode>(mode);
}

/// DT takes the very next byte, whatever it is.
void defineTerminator(Plotter& plotter, Command& command)
{
    TextState& text = plotter.text;
    InputStream& input = command.input;
    const int byte = input.peek();
    if (byte < 0 || byte == kEscape)
        return;
    input.get();
    if (byte == ';') {
        text.terminator = TextState {}.terminator;
        text.printsTerminator = TextState {}.printsTerminator;
        return;
    }
    Lexer(input).readNumbers(command.operands, 1);
    if (input.peek() == ';')
        input.get();
    const int mode = command.clampedInteger(0, 1);
    if (byte == 0 || byte == '\n' || plotter.polygon.isOpen() || (mode != 0 && mode != 1))
        return;
    text.terminator = static_cast<std::uint8_t>(byte);
    text.printsTerminator = mode == 0;
}

void transparentData(Plotter& plotter, Command& command)
{
    const int mode = command.clampedInteger(0, 0);
    if (mode == 0 || mode == 1)
        plotter.text.isTransparent = mode == 1;
}

namespace {

/// Both of two operands that must not be 0.
bool hasSize(const Command& command)
{
    return command.count() >= 2 && command.clampedReal(0) != 0 && command.clampedReal(1) != 0;
}

void setDirection(Plotter& plotter, const Command& command, bool isRelative)
{
    TextState& text = plotter.text;
    if (command.empty()) {
        text.run = 1;
        text.rise = 0;
    } else if (command.count() < 2 || (command.clampedReal(0) == 0 && command.clampedReal(1) == 0)) {
        return;
    } else {
        text.run = command.clampedReal(0);
        text.rise = command.clampedReal(1);
    }
    text.directionIsRelative = isRelative;
    plotter.state.carriageReturn = plotter.state.pen;
}

} // namespace

void absoluteSize(Plotter& plotter, Command& command)
{
    CharacterSize& size = plotter.text.size;
    if (command.empty())
        size = CharacterSize {};
    else if (hasSize(command))
        size = { CharacterSize::Kind::Centimetres, command.clampedReal(0), command.clampedReal(1) };
}

void relativeSize(Plotter& plotter, Command& command)
{
    constexpr double kDefaultWidth = 0.75;
    constexpr double kDefaultHeight = 1.5;
    CharacterSize& size = plotter.text.size;
    if (command.empty())
        size = { CharacterSize::Kind::Percent, kDefaultWidth, kDefaultHeight };
    else if (hasSize(command))
        size = { CharacterSize::Kind::Percent, command.clampedReal(0), command.clampedReal(1) };
}

void slant(Plotter& plotter, Command& command) { plotter.text.slant = command.clampedReal(0, 0); }

void absoluteDirection(Plotter& plotter, Command& command) { setDirection(plotter, command, false); }

void relativeDirection(Plotter& plotter, Command& command) { setDirection(plotter, command, true); }

void verticalPath(Plotter& plotter, Command& command)
{
    const int path = command.clampedInteger(0, 0);
    const int line = command.clampedInteger(1, 0);
    if (path < 0 || path > 3 || line < 0 || line > 1)
        return;
    plotter.text.path = static_cast<TextPath>(path);
    plotter.text.lineFeedsLeft = line == 1;
    plotter.state.carriageReturn = plotter.state.pen;
}

void extraSpace(Plotter& plotter, Command& command)
{
    plotter.text.extraWidth = command.clampedReal(0, 0);
    plotter.text.extraHeight = command.clampedReal(1, 0);
}

void labelOrigin(Plotter& plotter, Command& command)
{
    const int origin = command.clampedInteger(0, 1);
    if (origin < 1 || origin > 21 || origin == 10 || origin == 20)
        return;
    plotter.text.origin = origin;
    plotter.state.carriageReturn = plotter.state.pen;
}

void characterFill(Plotter& plotter, Command& command)
{
    const int mode = command.clampedInteger(0, 0);
    if (mode < 0 || mode > 3)
        return;
    TextState& text = plotter.text;
    text.fill = static_cast<CharacterFill>(mode);
    text.hasEdgePen = command.count() >= 2;
    text.edgePen = std::max(0, command.clampedInteger(1, 0));
}

/// UC of HP-GL: a character of one's own in a grid of 6 x 16 steps, as relative moves with pen switches between them.
void userCharacter(Plotter& plotter, Command& command)
{
    if (plotter.polygon.isOpen())
        return;
    const LabelMetrics metrics = plotter.fonts.metrics();
    constexpr double kPenSwitch = 99;
    constexpr double kGridWidth = 6;
    constexpr double kGridHeight = 16;
    const Point x = metrics.along * (metrics.cellWidth / kGridWidth);
    const Point y = metrics.up * (metrics.lineFeed / kGridHeight);
    State& state = plotter.state;
    const Point start = state.pen;
    const bool wasDown = state.isPenDown;
    bool isDown = false;
    std::size_t i = 0;
    while (i < command.count()) {
        if (std::abs(command.operand(i)) >= kPenSwitch) {
            isDown = command.operand(i) > 0;
            ++i;
        } else if (i + 1 < command.count()) {
            plotter.arm.travel(state.pen + x * command.operand(i) + y * command.operand(i + 1), isDown);
            i += 2;
        } else {
            break;
        }
    }
    plotter.linePen.end();
    state.pen = start + metrics.along * metrics.cellWidth;
    state.isPenDown = wasDown;
}

} // namespace quillrip::hpgl::commands
