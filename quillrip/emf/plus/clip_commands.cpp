#include "quillrip/emf/plus/handlers.h"
#include "quillrip/emf/plus/operands.h"

#include <algorithm>
#include <cmath>

namespace quillrip::emf::plus {

namespace {

CombineMode modeOf(const Record& record)
{
    const unsigned number = record.flags >> 8U & 15U;
    return number <= static_cast<unsigned>(CombineMode::Complement) ? static_cast<CombineMode>(number)
                                                                    : CombineMode::Replace;
}

void clipTo(Machine& machine, const Record& record, const PixelSet& pixels)
{
    PixelSet& clip = machine.state().clip;
    clip = combine(clip, pixels, modeOf(record), machine.canvas().pageBounds());
}

} // namespace

void resetClip(Machine& machine, const Record&, FieldReader&) { machine.state().clip = nullptr; }

void setClipRect(Machine& machine, const Record& record, FieldReader& fields)
{
    const RectF rect = fields.rectF();
    const Canvas& canvas = machine.canvas();
    if (!fields.hasFailed())
        clipTo(machine, record, pixelsOf(rect, canvas.worldToDevice(), canvas.pageBounds()));
}

void setClipPath(Machine& machine, const Record& record, FieldReader&)
{
    const Canvas& canvas = machine.canvas();
    if (const auto path = findPath(machine, record.id()))
        clipTo(machine, record, pixelsOf(*path, canvas.worldToDevice(), canvas.pageBounds()));
}

void setClipRegion(Machine& machine, const Record& record, FieldReader&)
{
    const Canvas& canvas = machine.canvas();
    if (const auto region = findRegion(machine, record.id()))
        clipTo(machine, record, region->pixels(canvas.worldToDevice(), canvas.pageBounds()));
}

void offsetClip(Machine& machine, const Record&, FieldReader& fields)
{
    const Point by = fields.pointF();
    PixelSet& clip = machine.state().clip;
    if (fields.hasFailed() || !clip)
        return;
    const double farthest = 1e6; // nothing of the page is left there
    const Point moved = machine.canvas().worldToDevice().applyVector(by);
    const auto pixels = [farthest](double distance) {
        return static_cast<int>(std::floor(std::clamp(distance, -farthest, farthest) + 0.5));
    };
    clip = clip->moved(pixels(moved.x), pixels(moved.y));
}

} // namespace quillrip::emf::plus
