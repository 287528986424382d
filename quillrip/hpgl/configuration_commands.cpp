// Scaling points, scaling, windows and rotation, initialisation.

#include "quillrip/hpgl/command.h"
#include "quillrip/hpgl/commands.h"
#include "quillrip/hpgl/plotter.h"

#include <algorithm>
#include <cmath>

namespace quillrip::hpgl::commands {

void initialise(Plotter& plotter, Command&) { plotter.initialiseWithPalette(); }

void useDefaults(Plotter& plotter, Command&)
{
    plotter.useDefaults();
    plotter.host.setRasterOperation(kDefaultRasterOperation);
}

void inputPoints(Plotter& plotter, Command& command)
{
    if (command.empty()) {
        plotter.useDefaultPoints();
        return;
    }
    if (command.count() < 2)
        return;
    const Point p1 { std::round(command.operand(0)), std::round(command.operand(1)) };
    const Point p2 { std::round(command.operand(2)), std::round(command.operand(3)) };
    plotter.coordinates.setPoints(p1, command.count() >= 4 ? &p2 : nullptr);
    if (plotter.listener && command.count() >= 4)
        plotter.listener->plotWindow(false, p1, p2);
}

void inputRelativePoints(Plotter& plotter, Command& command)
{
    if (command.empty()) {
        plotter.coordinates.useDefaultPoints();
        return;
    }
    if (command.count() < 2)
        return;
    const Point size = plotter.coordinates.rotatedFrameSize();
    const auto place = [&](std::size_t i) {
        return Point { command.clampedReal(i) * size.x / 100, command.clampedReal(i + 1) * size.y / 100 };
    };
    const Point p2 = place(2);
    plotter.coordinates.setPoints(place(0), command.count() >= 4 ? &p2 : nullptr);
}

void scale(Plotter& plotter, Command& command)
{
    if (command.empty()) {
        plotter.inks.freezeHatching();
        plotter.coordinates.setScaling({});
        return;
    }
    if (command.count() < 4)
        return;
    Scaling scaling;
    switch (command.clampedInteger(4, 0)) {
    case 0:
        scaling.kind = Scaling::Kind::Anisotropic;
        break;
    case 1:
        scaling.kind = Scaling::Kind::Isotropic;
        break;
    case 2:
        scaling.kind = Scaling::Kind::PointFactor;
        break;
    default:
        return;
    }
    scaling.xMin = command.operand(0);
    scaling.xMax = command.operand(1);
    scaling.yMin = command.operand(2);
    scaling.yMax = command.operand(3);
    const bool isDegenerate = scaling.kind == Scaling::Kind::PointFactor
        ? scaling.xMax == 0 || scaling.yMax == 0
        : scaling.xMin == scaling.xMax || scaling.yMin == scaling.yMax;
    if (isDegenerate)
        return;
    if (command.count() >= 7) {
        scaling.left = std::clamp(command.operand(5), 0.0, 100.0);
        scaling.bottom = std::clamp(command.operand(6), 0.0, 100.0);
    }
    if (plotter.listener)
        plotter.listener->scaled();
    plotter.coordinates.setScaling(scaling);
}

void inputWindow(Plotter& plotter, Command& command)
{
    Coordinates& coordinates = plotter.coordinates;
    if (command.empty()) {
        coordinates.openWindow();
    } else if (command.count() >= 4) {
        const Point corner1 { command.operand(0), command.operand(1) };
        const Point corner2 { command.operand(2), command.operand(3) };
        coordinates.setWindow(corner1, corner2);
        if (plotter.listener)
            plotter.listener->plotWindow(true, coordinates.toPlotter(corner1), coordinates.toPlotter(corner2));
    }
}

void rotate(Plotter& plotter, Command& command)
{
    const double angle = command.operand(0);
    const int turns = static_cast<int>(std::lround(std::clamp(angle, -1.0, 1000.0) / 90));
    if (angle < 0 || turns > 3 || std::abs(turns * 90 - angle) >= 0.5)
        return;
    State& state = plotter.state;
    const Point pen = plotter.coordinates.toPage(state.pen);
    plotter.updateFrame();
    plotter.coordinates.rotate(turns);
    state.pen = plotter.coordinates.fromPage(pen);
    state.carriageReturn = state.pen;
}

} // namespace quillrip::hpgl::commands
