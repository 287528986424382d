// Boxes, ellipses, arcs, single pixels and flood fills.

#include "quillrip/emf/handlers.h"
#include "quillrip/emf/machine.h"
#include "quillrip/emf/record.h"
#include "quillrip/raster/scan/flood_region.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace quillrip::emf {

namespace {

constexpr std::size_t kBox = 8;

/// Left <= right, top <= bottom.
struct Frame {
    double left;
    double top;
    double right;
    double bottom;

    Frame shrunk(double by) const
    {
        const double x = std::min(by, (right - left) / 2);
        const double y = std::min(by, (bottom - top) / 2);
        return { left + x, top + y, right - x, bottom - y };
    }
    Point centre() const { return { (left + right) / 2, (top + bottom) / 2 }; }
    double radiusX() const { return (right - left) / 2; }
    double radiusY() const { return (bottom - top) / 2; }
};

Frame frameAt(const Record& record, std::size_t at)
{
    const Box box = record.box(at);
    return { double(std::min(box.left, box.right)), double(std::min(box.top, box.bottom)),
        double(std::max(box.left, box.right)), double(std::max(box.top, box.bottom)) };
}

/// Fills the frame, and strokes it, shrunk by pens that stay inside.
template <typename MakePath> void drawFrame(Machine& machine, const Frame& frame, MakePath makePath)
{
    const double inset = machine.canvas().insetOfPen();
    const Matrix& toReference = machine.dc().coordinates.toReference();
    machine.figure(makePath(frame).transformed(toReference), makePath(frame.shrunk(inset)).transformed(toReference));
}

double fullTurn() { return 2 * std::acos(-1.0); }

double angleOf(Point at, const Frame& frame)
{
    const Point from = at - frame.centre();
    const double x = frame.radiusX() > 0 ? from.x / frame.radiusX() : 0;
    const double y = frame.radiusY() > 0 ? from.y / frame.radiusY() : 0;
    return x == 0 && y == 0 ? 0 : std::atan2(y, x);
}

/// From the start's ray to the end's in the context's direction, from +x towards +y; a whole turn when they are one.
struct Sweep {
    double start;
    double length;
};

Sweep sweepOf(const DeviceContext& dc, const Record& record, const Frame& frame)
{
    const double start = angleOf(record.point(24), frame);
    double length = angleOf(record.point(32), frame) - start;
    // y points down: counter-clockwise is towards negative angles.
    if (dc.isClockwise) {
        while (length <= 0)
            length += fullTurn();
    } else {
        while (length >= 0)
            length -= fullTurn();
    }
    return { start, length };
}

/// Figures run in the direction of arcs, which winding fills and dashes show.
Path cornersOf(const Frame& frame, bool isClockwise)
{
    Path path;
    if (isClockwise) {
        path.rectangle(frame.left, frame.top, frame.right, frame.bottom);
        return path;
    }
    path.moveTo({ frame.right, frame.top });
    path.lineTo({ frame.left, frame.top });
    path.lineTo({ frame.left, frame.bottom });
    path.lineTo({ frame.right, frame.bottom });
    path.close();
    return path;
}

enum class Closing { Open, Chord, Pie };

void drawArc(Machine& machine, const Record& record, Closing closing)
{
    const Frame frame = frameAt(record, kBox);
    const Sweep sweep = sweepOf(machine.dc(), record, frame);
    const auto make = [&](const Frame& box) {
        Path path;
        if (closing == Closing::Pie)
            path.moveTo(box.centre());
        path.arc(box.centre(), box.radiusX(), box.radiusY(), sweep.start, sweep.length, closing != Closing::Pie);
        if (closing != Closing::Open)
            path.close();
        return path;
    };
    if (closing == Closing::Open)
        machine.figure(make(frame), Machine::Draw::Stroke);
    else
        drawFrame(machine, frame, make);
}

} // namespace

void setPixel(Machine& machine, const Record& record)
{
    const DeviceContext& dc = machine.dc();
    const Point at = dc.coordinates.toReference().apply(record.point(8));
    Path pixel;
    pixel.rectangle(at.x, at.y, at.x + 1, at.y + 1);
    machine.canvas().fill(pixel, FillRule::NonZero, PaintMaker::solid(colorOf(record.u32(16), dc)));
}

void rectangle(Machine& machine, const Record& record)
{
    const bool isClockwise = machine.dc().isClockwise;
    drawFrame(machine, frameAt(record, kBox), [&](const Frame& frame) { return cornersOf(frame, isClockwise); });
}

void roundRectangle(Machine& machine, const Record& record)
{
    const double cornerX = std::abs(double(record.i32(24))) / 2;
    const double cornerY = std::abs(double(record.i32(28))) / 2;
    const bool isClockwise = machine.dc().isClockwise;
    drawFrame(machine, frameAt(record, kBox), [&](const Frame& frame) {
        const double x = std::min(cornerX, frame.radiusX());
        const double y = std::min(cornerY, frame.radiusY());
        if (x == 0 || y == 0)
            return cornersOf(frame, isClockwise);
        const Point rightTop { frame.right - x, frame.top + y };
        const Point leftTop { frame.left + x, frame.top + y };
        const Point leftBottom { frame.left + x, frame.bottom - y };
        const Point rightBottom { frame.right - x, frame.bottom - y };
        const double quarter = fullTurn() / 4;
        Path path;
        if (isClockwise) {
            path.arc(leftTop, x, y, 2 * quarter, quarter, true);
            path.arc(rightTop, x, y, -quarter, quarter, false);
            path.arc(rightBottom, x, y, 0, quarter, false);
            path.arc(leftBottom, x, y, quarter, quarter, false);
        } else {
            path.arc(rightTop, x, y, 0, -quarter, true);
            path.arc(leftTop, x, y, -quarter, -quarter, false);
            path.arc(leftBottom, x, y, -2 * quarter, -quarter, false);
            path.arc(rightBottom, x, y, quarter, -quarter, false);
        }
        path.close();
        return path;
    });
}

void ellipse(Machine& machine, const Record& record)
{
    const double sweep = machine.dc().isClockwise ? fullTurn() : -fullTurn();
    drawFrame(machine, frameAt(record, kBox), [&](const Frame& frame) {
        Path path;
        path.arc(frame.centre(), frame.radiusX(), frame.radiusY(), 0, sweep, true);
        path.close();
        return path;
    });
}

void arc(Machine& machine, const Record& record) { drawArc(machine, record, Closing::Open); }
void chord(Machine& machine, const Record& record) { drawArc(machine, record, Closing::Chord); }
void pie(Machine& machine, const Record& record) { drawArc(machine, record, Closing::Pie); }

void arcTo(Machine& machine, const Record& record)
{
    const Frame frame = frameAt(record, kBox);
    const Sweep sweep = sweepOf(machine.dc(), record, frame);
    Path path;
    path.moveTo(machine.dc().position);
    path.arc(frame.centre(), frame.radiusX(), frame.radiusY(), sweep.start, sweep.length, false);
    machine.segments(path, path.current());
}

void angleArc(Machine& machine, const Record& record)
{
    const double radius = record.u32(16);
    const double start = record.f32(20);
    const double sweep = record.f32(24);
    if (!std::isfinite(start) || !std::isfinite(sweep))
        return;
    constexpr double kDegrees = 360;
    const double toRadians = fullTurn() / kDegrees;
    const double from = -std::remainder(start, kDegrees) * toRadians;
    double length = -sweep * toRadians;
    Path path;
    path.moveTo(machine.dc().position);
    if (std::abs(sweep) > kDegrees) {
        // What goes round more than once covers the whole circle and ends where it ends.
        path.arc(record.point(8), radius, radius, from, std::copysign(fullTurn(), length), false);
        length = std::fmod(length, fullTurn());
    }
    path.arc(record.point(8), radius, radius, from, length, false);
    machine.segments(path, path.current());
}

void floodFill(Machine& machine, const Record& record)
{
    enum : std::uint32_t { kToBorder = 0 };
    Canvas& canvas = machine.canvas();
    const DeviceContext& dc = machine.dc();
    const auto state = canvas.paints().brush(dc, canvas.brush());
    const Point at = canvas.toDevice().apply(dc.coordinates.toReference().apply(record.point(8)) + Point { 0.5, 0.5 });
    const PixelRect bounds = canvas.bounds();
    if (!state || !(at.x >= 0 && at.x < bounds.right && at.y >= 0 && at.y < bounds.bottom))
        return;
    machine.spend(static_cast<std::uint64_t>(bounds.right) * static_cast<std::uint64_t>(bounds.bottom));
    const FloodRule rule = record.u32(20) == kToBorder ? FloodRule::UntilEqual : FloodRule::WhileEqual;
    canvas.fillRegion(floodRegion(canvas.painter().page(), static_cast<int>(at.x), static_cast<int>(at.y),
                          colorOf(record.u32(16), dc), rule, bounds),
        *state);
}

} // namespace quillrip::emf
