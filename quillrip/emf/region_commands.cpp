// Clips and areas of rectangles.

#include "quillrip/emf/handlers.h"
#include "quillrip/emf/machine.h"
#include "quillrip/emf/record.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace quillrip::emf {

namespace {

/// Far beyond what a page of fine rectangles needs.
constexpr std::uint32_t kMostRectangles = 1u << 20;

/// The rectangles of region data that starts at `at` and has `bytes` bytes; none when it is none.
std::vector<Box> readRegion(const Record& record, std::size_t at, std::uint64_t bytes)
{
    constexpr std::size_t kHeader = 32;
    constexpr std::size_t kRectangle = 16;
    const Fields data(record.part(at, std::min<std::uint64_t>(bytes, record.size() > at ? record.size() - at : 0)));
    if (data.size() < kHeader)
        return {};
    const std::size_t count
        = std::min<std::size_t>(std::min(data.u32(8), kMostRectangles), (data.size() - kHeader) / kRectangle);
    std::vector<Box> boxes(count);
    for (std::size_t i = 0; i < count; ++i)
        boxes[i] = data.box(kHeader + i * kRectangle);
    return boxes;
}

void addBox(Path& path, const Box& box, const Matrix& toDevice)
{
    Path one;
    one.rectangle(box.left, box.top, box.right, box.bottom);
    path.append(one.transformed(toDevice));
}

/// Edges on the nearest pixels where the matrix runs along the axes, so that bands meet.
Region regionOf(Machine& machine, const std::vector<Box>& boxes, const Matrix& toDevice)
{
    Canvas& canvas = machine.canvas();
    // Rows are gone through, not pixels: a fraction of painting them.
    machine.spend(static_cast<std::uint64_t>(canvas.bounds().bottom) * 16);
    Path path;
    const bool isAligned = toDevice.b == 0 && toDevice.c == 0;
    for (const Box& box : boxes) {
        if (!isAligned) {
            addBox(path, box, toDevice);
            continue;
        }
        const PixelRect pixels = nearestPixels(toDevice.apply({ double(box.left), double(box.top) }),
            toDevice.apply({ double(box.right), double(box.bottom) }));
        if (boxes.size() == 1)
            return ClipRegion::ofRect(pixels.intersected(canvas.bounds()));
        path.rectangle(pixels.left, pixels.top, pixels.right, pixels.bottom);
    }
    return ClipRegion::ofPath(path, FillRule::NonZero, canvas.bounds());
}

/// The nearest, of what is not farther than any page is wide.
int wholePixels(double distance)
{
    constexpr double farthest = 1e6;
    return distance > -farthest ? static_cast<int>(std::floor(std::min(distance, farthest) + 0.5))
                                : static_cast<int>(-farthest);
}

void combineRectangle(Machine& machine, const Record& record, RegionMode mode)
{
    Canvas& canvas = machine.canvas();
    const Region region = regionOf(machine, { record.box(8) }, canvas.logicalToDevice());
    ClipState& clip = machine.dc().clip;
    clip.clip = combined(clip.clip, region, mode, canvas.bounds());
}

void paintWith(Machine& machine, const Brush& brush, const Region& region)
{
    if (auto state = machine.canvas().paints().brush(machine.dc(), brush))
        machine.canvas().fillRegion(region, *state);
}

} // namespace

void intersectClipRect(Machine& machine, const Record& record) { combineRectangle(machine, record, RegionMode::And); }
void excludeClipRect(Machine& machine, const Record& record) { combineRectangle(machine, record, RegionMode::Diff); }

void offsetClip(Machine& machine, const Record& record)
{
    ClipState& clip = machine.dc().clip;
    if (!clip.clip)
        return;
    Canvas& canvas = machine.canvas();
    const Point way = canvas.logicalToDevice().applyVector(record.point(8));
    clip.clip
        = clip.clip->moved(wholePixels(way.x), wholePixels(way.y))->intersected(*ClipRegion::ofRect(canvas.bounds()));
}

void setMetaRegion(Machine& machine, const Record&)
{
    ClipState& clip = machine.dc().clip;
    clip.meta = intersection(clip.meta, clip.clip);
    clip.clip = nullptr;
}

void selectClipRegion(Machine& machine, const Record& record)
{
    const std::uint32_t bytes = record.u32(8);
    const std::uint32_t mode = record.u32(12);
    if (mode < static_cast<std::uint32_t>(RegionMode::And) || mode > static_cast<std::uint32_t>(RegionMode::Copy))
        return;
    ClipState& clip = machine.dc().clip;
    if (bytes == 0) {
        if (mode == static_cast<std::uint32_t>(RegionMode::Copy))
            clip.clip = nullptr;
        return;
    }
    // In pixels of the reference device, whatever the transforms.
    Canvas& canvas = machine.canvas();
    const Region region = regionOf(machine, readRegion(record, 16, bytes), canvas.toDevice());
    clip.clip = combined(clip.clip, region, static_cast<RegionMode>(mode), canvas.bounds());
}

void fillRegion(Machine& machine, const Record& record)
{
    const auto object = machine.objects().find(record.u32(28));
    const Brush* brush = object ? std::get_if<Brush>(object.get()) : nullptr;
    if (!brush)
        return machine.warn("emf.no-brush", "an area is filled with a brush that does not exist, left out");
    paintWith(
        machine, *brush, regionOf(machine, readRegion(record, 32, record.u32(24)), machine.canvas().logicalToDevice()));
}

void frameRegion(Machine& machine, const Record& record)
{
    const auto object = machine.objects().find(record.u32(28));
    const Brush* brush = object ? std::get_if<Brush>(object.get()) : nullptr;
    if (!brush)
        return machine.warn("emf.no-brush", "an area is framed with a brush that does not exist, left out");
    Canvas& canvas = machine.canvas();
    const Region whole = regionOf(machine, readRegion(record, 40, record.u32(24)), canvas.logicalToDevice());
    // The inside is what the area shares with itself moved by the frame's width to each side.
    const Point reach = canvas.logicalToDevice().applyVector(record.point(32));
    const int x = std::max(1, wholePixels(std::abs(reach.x)));
    const int y = std::max(1, wholePixels(std::abs(reach.y)));
    Region inside = whole;
    for (const auto& [right, down] :
        { std::pair { x, 0 }, std::pair { -x, 0 }, std::pair { 0, y }, std::pair { 0, -y } })
        inside = inside->intersected(*whole->moved(right, down));
    paintWith(machine, *brush, whole->intersected(*inside->complement(canvas.bounds())));
}

void invertRegion(Machine& machine, const Record& record)
{
    constexpr std::uint8_t kNotDestination = 0x55;
    PaintState state = PaintMaker::solid({});
    state.rop = kNotDestination;
    machine.canvas().fillRegion(
        regionOf(machine, readRegion(record, 28, record.u32(24)), machine.canvas().logicalToDevice()), state);
}

void paintRegion(Machine& machine, const Record& record)
{
    paintWith(machine, machine.canvas().brush(),
        regionOf(machine, readRegion(record, 28, record.u32(24)), machine.canvas().logicalToDevice()));
}

} // namespace quillrip::emf
