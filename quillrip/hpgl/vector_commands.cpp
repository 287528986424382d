// Straight vectors.

#include "quillrip/hpgl/command.h"
#include "quillrip/hpgl/commands.h"
#include "quillrip/hpgl/plotter.h"

#include <cstddef>

namespace quillrip::hpgl::commands {

namespace {

void plotPoints(Plotter& plotter, const Command& command)
{
    const Coordinates& coordinates = plotter.coordinates;
    State& state = plotter.state;
    for (std::size_t i = 0; i + 1 < command.count(); i += 2) {
        const bool isInRange = command.isInRange(i) && command.isInRange(i + 1);
        if (!isInRange || (state.isLost && !state.isAbsolute)) {
            state.isLost = true;
            continue;
        }
        const Point point { command.operands[i], command.operands[i + 1] };
        if (state.isLost) {
            state.isLost = false;
            plotter.arm.travel(coordinates.toPlotter(point), false);
            continue;
        }
        plotter.arm.travelToPoint(
            state.isAbsolute ? coordinates.toPlotter(point) : state.pen + coordinates.vectorToPlotter(point));
    }
}

/// A tick mark through the pen, `direction` for one percent.
void drawTick(Plotter& plotter, Point direction)
{
    if (!plotter.pens.hasPen() || plotter.polygon.isOpen())
        return;
    const auto page
        = [&](double percent) { return plotter.coordinates.toPage(plotter.state.pen + direction * percent); };
    plotter.linePen.drawSeparately({ { page(-plotter.tickNegative), true }, { page(plotter.tickPositive), true } });
    plotter.linePen.flush();
}

} // namespace

void plotAbsolute(Plotter& plotter, Command& command)
{
    plotter.state.isAbsolute = true;
    plotPoints(plotter, command);
    plotter.state.carriageReturn = plotter.state.pen;
}

void plotRelative(Plotter& plotter, Command& command)
{
    plotter.state.isAbsolute = false;
    plotPoints(plotter, command);
    plotter.state.carriageReturn = plotter.state.pen;
}

void penUp(Plotter& plotter, Command& command)
{
    plotter.arm.lift();
    plotPoints(plotter, command);
    if (!command.empty())
        plotter.state.carriageReturn = plotter.state.pen;
}

void penDown(Plotter& plotter, Command& command)
{
    plotter.arm.lower();
    plotPoints(plotter, command);
    if (!command.empty())
        plotter.state.carriageReturn = plotter.state.pen;
}

void tickLength(Plotter& plotter, Command& command)
{
    constexpr double kDefaultTick = 0.5;
    plotter.tickPositive = plotter.tickNegative = kDefaultTick;
    if (!command.empty()) {
        plotter.tickPositive = command.clampedReal(0);
        plotter.tickNegative = command.clampedReal(1, 0);
    }
}

void tickX(Plotter& plotter, Command&)
{
    drawTick(plotter, { 0, (plotter.coordinates.p2().y - plotter.coordinates.p1().y) / 100 });
}

void tickY(Plotter& plotter, Command&)
{
    drawTick(plotter, { (plotter.coordinates.p2().x - plotter.coordinates.p1().x) / 100, 0 });
}

} // namespace quillrip::hpgl::commands
