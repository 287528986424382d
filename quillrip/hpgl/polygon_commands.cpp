// Polygon mode, rectangles and wedges.

#include "quillrip/hpgl/command.h"
#include "quillrip/hpgl/commands.h"
#include "quillrip/hpgl/curves.h"
#include "quillrip/hpgl/plotter.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace quillrip::hpgl::commands {

namespace {

enum class Corner { Absolute, Relative };

/// Puts the rectangle from the pen to the opposite corner into the buffer; false without operands.
bool makeRectangle(Plotter& plotter, const Command& command, Corner corner)
{
    if (command.count() < 2)
        return false;
    const Point point { command.operand(0), command.operand(1) };
    const Coordinates& coordinates = plotter.coordinates;
    plotter.polygon.replace(
        plotter.arm.rectangleTo(corner == Corner::Relative ? plotter.state.pen + coordinates.vectorToPlotter(point)
                                                           : coordinates.toPlotter(point)));
    return true;
}

/// Likewise the wedge round the pen.
bool makeWedge(Plotter& plotter, const Command& command)
{
    if (command.count() < 3)
        return false;
    const double length = command.operand(0);
    const double start = std::fmod(command.operand(1), 360.0) * kRadiansPerDegree;
    const double sweep = std::clamp(command.operand(2), -360.0, 360.0);
    const std::optional<double> chord = command.count() > 3 ? std::optional<double>(command.operand(3)) : std::nullopt;
    plotter.polygon.replace(
        plotter.arm.wedge({ plotter.state.pen, { length * std::cos(start), length * std::sin(start) }, sweep,
            chordAngle(chord, std::abs(length), plotter.state.chordIsDeviation) }));
    return true;
}

void fillBuffer(Plotter& plotter, FillRule rule = FillRule::EvenOdd)
{
    plotter.areas.fill(plotter.polygon.polygon(), rule);
}

void edgeBuffer(Plotter& plotter) { plotter.areas.edge(plotter.polygon.polygon()); }

} // namespace

void polygonMode(Plotter& plotter, Command& command)
{
    const int mode = command.clampedInteger(0, 0);
    PolygonBuffer& polygon = plotter.polygon;
    if (mode == 0) {
        polygon.open(plotter.state.pen);
        plotter.linePen.forgetTouch();
    } else if (polygon.isOpen() && (mode == 1 || mode == 2)) {
        if (const std::optional<Point> start = polygon.closeSubpolygon(plotter.state.isPenDown))
            plotter.state.pen = *start;
        if (mode == 2)
            polygon.close();
    }
}

void fillPolygon(Plotter& plotter, Command& command)
{
    const int method = command.clampedInteger(0, 0);
    if (method == 0 || method == 1)
        fillBuffer(plotter, method == 1 ? FillRule::NonZero : FillRule::EvenOdd);
}

void edgePolygon(Plotter& plotter, Command&) { edgeBuffer(plotter); }

void fillRectangleAbsolute(Plotter& plotter, Command& command)
{
    if (makeRectangle(plotter, command, Corner::Absolute))
        fillBuffer(plotter);
}

void fillRectangleRelative(Plotter& plotter, Command& command)
{
    if (makeRectangle(plotter, command, Corner::Relative))
        fillBuffer(plotter);
}

void edgeRectangleAbsolute(Plotter& plotter, Command& command)
{
    if (makeRectangle(plotter, command, Corner::Absolute))
        edgeBuffer(plotter);
}

void edgeRectangleRelative(Plotter& plotter, Command& command)
{
    if (makeRectangle(plotter, command, Corner::Relative))
        edgeBuffer(plotter);
}

void fillWedge(Plotter& plotter, Command& command)
{
    if (makeWedge(plotter, command))
        fillBuffer(plotter);
}

void edgeWedge(Plotter& plotter, Command& command)
{
    if (makeWedge(plotter, command))
        edgeBuffer(plotter);
}

} // namespace quillrip::hpgl::commands
