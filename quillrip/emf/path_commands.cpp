// Paths between BEGINPATH and what uses them up.

#include "quillrip/emf/handlers.h"
#include "quillrip/emf/machine.h"
#include "quillrip/emf/record.h"

#include <cstdint>

namespace quillrip::emf {

namespace {

/// Every figure closed, as areas are.
Path closed(const Path& path)
{
    Path result;
    std::size_t at = 0;
    bool isOpen = false;
    for (const Path::Verb verb : path.verbs()) {
        const Point* points = path.points().data() + at;
        switch (verb) {
        case Path::Verb::Move:
            if (isOpen)
                result.close();
            result.moveTo(points[0]);
            isOpen = false;
            at += 1;
            break;
        case Path::Verb::Line:
            result.lineTo(points[0]);
            isOpen = true;
            at += 1;
            break;
        case Path::Verb::Cubic:
            result.cubicTo(points[0], points[1], points[2]);
            isOpen = true;
            at += 3;
            break;
        case Path::Verb::Close:
            result.close();
            isOpen = false;
            break;
        }
    }
    if (isOpen)
        result.close();
    return result;
}

FillRule ruleOf(Machine& machine, const PathState& state)
{
    return state.isWidened ? FillRule::NonZero : machine.canvas().fillRule();
}

} // namespace

void beginPath(Machine& machine, const Record&)
{
    machine.dc().path = {};
    machine.dc().path.isRecording = true;
}

void endPath(Machine& machine, const Record&)
{
    PathState& path = machine.dc().path;
    path.isDefined = path.isRecording || path.isDefined;
    path.isRecording = false;
}

void abortPath(Machine& machine, const Record&) { machine.dc().path = {}; }

void closeFigure(Machine& machine, const Record&)
{
    PathState& path = machine.dc().path;
    if (!path.isRecording || path.path.empty())
        return;
    if (path.path.verbs().back() != Path::Verb::Close)
        path.path.close();
    path.needsMove = true;
}

void widenPath(Machine& machine, const Record&)
{
    PathState& path = machine.dc().path;
    // A line becomes an area of many times its points, and stays that.
    constexpr std::size_t kGrowth = 32;
    if (!path.isDefined || path.isWidened)
        return;
    if (path.path.pointCount() > machine.job().limits.pathPoints / kGrowth)
        return machine.warn("emf.path", "a path of too many points, not widened");
    path.path = machine.canvas().widened(path.path);
    path.isWidened = true;
}

void fillPath(Machine& machine, const Record&)
{
    const PathState state = machine.takePath();
    machine.canvas().fillWithBrush(state.path, ruleOf(machine, state), Canvas::Origin::DrawnPath);
}

void strokePath(Machine& machine, const Record&)
{
    const PathState state = machine.takePath();
    if (state.isWidened)
        return machine.canvas().strokeWidened(state.path);
    machine.canvas().strokeWithPen(state.path);
}

void strokeAndFillPath(Machine& machine, const Record&)
{
    const PathState state = machine.takePath();
    Canvas& canvas = machine.canvas();
    if (state.isWidened) {
        canvas.fillWithBrush(state.path, FillRule::NonZero, Canvas::Origin::DrawnPath);
        return canvas.strokeWidened(state.path);
    }
    canvas.fillAndStroke(state.path, closed(state.path), canvas.fillRule(), Canvas::Origin::DrawnPath);
}

void selectClipPath(Machine& machine, const Record& record)
{
    const PathState state = machine.takePath();
    const std::uint32_t mode = record.u32(8);
    if (!state.isDefined || mode < static_cast<std::uint32_t>(RegionMode::And)
        || mode > static_cast<std::uint32_t>(RegionMode::Copy))
        return;
    Canvas& canvas = machine.canvas();
    const Region region = canvas.regionOf(state.path.transformed(canvas.toDevice()), ruleOf(machine, state));
    ClipState& clip = machine.dc().clip;
    clip.clip = combined(clip.clip, region, static_cast<RegionMode>(mode), canvas.bounds());
}

} // namespace quillrip::emf
