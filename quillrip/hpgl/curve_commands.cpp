// Arcs, circles and Bezier curves.

#include "quillrip/hpgl/command.h"
#include "quillrip/hpgl/commands.h"
#include "quillrip/hpgl/curves.h"
#include "quillrip/hpgl/plotter.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>

namespace quillrip::hpgl::commands {

namespace {

double chord(const Plotter& plotter, const Command& command, std::size_t index, double radius)
{
    const std::optional<double> operand
        = index < command.count() ? std::optional<double>(command.operands[index]) : std::nullopt;
    return chordAngle(operand, radius, plotter.state.chordIsDeviation);
}

/// `middle` and `end` lead from the pen, in user units.
void arcThreePoint(Plotter& plotter, const Command& command, Point middle, Point end)
{
    State& state = plotter.state;
    if (std::optional<Arc> arc = arcThrough(plotter.coordinates, state.pen, middle, end)) {
        arc->chord = chord(plotter, command, 4, lengthOf(arc->radius));
        plotter.arm.follow(*arc);
        return;
    }
    plotter.arm.travel(state.pen + plotter.coordinates.vectorToPlotter(end), state.isPenDown);
    state.carriageReturn = state.pen;
}

double sweepOf(const Command& command) { return std::clamp(command.operand(2), -360.0, 360.0); }

} // namespace

void arcAbsolute(Plotter& plotter, Command& command)
{
    if (command.count() < 3 || !command.isInRange(0) || !command.isInRange(1))
        return;
    const Point centre = plotter.coordinates.toPlotter({ command.operand(0), command.operand(1) });
    const Point radius = plotter.coordinates.vectorToUser(plotter.state.pen - centre);
    plotter.arm.follow({ centre, radius, sweepOf(command), chord(plotter, command, 3, lengthOf(radius)) });
}

void arcRelative(Plotter& plotter, Command& command)
{
    if (command.count() < 3 || !command.isInRange(0) || !command.isInRange(1))
        return;
    const Point toCentre { command.operand(0), command.operand(1) };
    const Point centre = plotter.state.pen + plotter.coordinates.vectorToPlotter(toCentre);
    plotter.arm.follow({ centre, toCentre * -1, sweepOf(command), chord(plotter, command, 3, lengthOf(toCentre)) });
}

void arcThreePointAbsolute(Plotter& plotter, Command& command)
{
    if (command.count() < 4)
        return;
    const Coordinates& coordinates = plotter.coordinates;
    const auto fromPen = [&](std::size_t i) {
        const Point point = coordinates.toPlotter({ command.operand(i), command.operand(i + 1) });
        return coordinates.vectorToUser(point - plotter.state.pen);
    };
    arcThreePoint(plotter, command, fromPen(0), fromPen(2));
}

void arcThreePointRelative(Plotter& plotter, Command& command)
{
    if (command.count() < 4)
        return;
    arcThreePoint(
        plotter, command, { command.operand(0), command.operand(1) }, { command.operand(2), command.operand(3) });
}

void bezierAbsolute(Plotter& plotter, Command& command)
{
    for (std::size_t i = 0; i + 5 < command.count(); i += 6) {
        const auto place = [&](std::size_t at) {
            return plotter.coordinates.toPlotter({ command.operand(at), command.operand(at + 1) });
        };
        plotter.arm.bezier(place(i), place(i + 2), place(i + 4));
    }
    plotter.state.carriageReturn = plotter.state.pen;
}

void bezierRelative(Plotter& plotter, Command& command)
{
    for (std::size_t i = 0; i + 5 < command.count(); i += 6) {
        const Point start = plotter.state.pen;
        const auto place = [&](std::size_t at) {
            return start + plotter.coordinates.vectorToPlotter({ command.operand(at), command.operand(at + 1) });
        };
        plotter.arm.bezier(place(i), place(i + 2), place(i + 4));
    }
    plotter.state.carriageReturn = plotter.state.pen;
}

void circle(Plotter& plotter, Command& command)
{
    if (command.empty())
        return;
    const double radius = command.operand(0);
    plotter.arm.circle(radius, chord(plotter, command, 1, std::abs(radius)));
}

void chordTolerance(Plotter& plotter, Command& command)
{
    const int mode = command.clampedInteger(0, 0);
    if (mode == 0 || mode == 1)
        plotter.state.chordIsDeviation = mode == 1;
}

} // namespace quillrip::hpgl::commands
