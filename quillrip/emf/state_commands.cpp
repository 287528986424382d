// The device context's modes, colours and coordinates.

#include "quillrip/emf/handlers.h"
#include "quillrip/emf/machine.h"
#include "quillrip/emf/record.h"

#include <cmath>
#include <cstdint>

namespace quillrip::emf {

namespace {

constexpr std::size_t kData = 8;

Size sizeAt(const Record& record, std::size_t at) { return { double(record.i32(at)), double(record.i32(at + 4)) }; }

/// Two fractions; false when one has no value.
bool readFactors(const Record& record, double& x, double& y)
{
    const double values[] { double(record.i32(8)), double(record.i32(12)), double(record.i32(16)),
        double(record.i32(20)) };
    for (const double value : values) {
        if (value == 0)
            return false;
    }
    x = values[0] / values[1];
    y = values[2] / values[3];
    return true;
}

} // namespace

void setWindowExtent(Machine& machine, const Record& record)
{
    machine.dc().coordinates.setWindowExtent(sizeAt(record, kData));
}

void setWindowOrigin(Machine& machine, const Record& record)
{
    machine.dc().coordinates.setWindowOrigin(record.point(kData));
}

void setViewportExtent(Machine& machine, const Record& record)
{
    machine.dc().coordinates.setViewportExtent(sizeAt(record, kData));
}

void setViewportOrigin(Machine& machine, const Record& record)
{
    machine.dc().coordinates.setViewportOrigin(record.point(kData));
}

void scaleWindow(Machine& machine, const Record& record)
{
    double x = 1, y = 1;
    if (readFactors(record, x, y))
        machine.dc().coordinates.scaleWindow(x, y);
}

void scaleViewport(Machine& machine, const Record& record)
{
    double x = 1, y = 1;
    if (readFactors(record, x, y))
        machine.dc().coordinates.scaleViewport(x, y);
}

void setMapMode(Machine& machine, const Record& record) { machine.dc().coordinates.setMapMode(record.u32(kData)); }

void setWorldTransform(Machine& machine, const Record& record)
{
    if (!machine.dc().coordinates.setWorld(record.matrix(kData)))
        machine.warn("emf.transform", "world transform with numbers out of reach, ignored");
}

void modifyWorldTransform(Machine& machine, const Record& record)
{
    enum : std::uint32_t { kIdentity = 1, kLeft, kRight, kSet };
    Coordinates& coordinates = machine.dc().coordinates;
    bool isGood = true;
    switch (record.u32(32)) {
    case kIdentity:
        coordinates.setWorld({});
        break;
    case kLeft:
        isGood = coordinates.multiplyWorld(record.matrix(kData), true);
        break;
    case kRight:
        isGood = coordinates.multiplyWorld(record.matrix(kData), false);
        break;
    case kSet:
        isGood = coordinates.setWorld(record.matrix(kData));
        break;
    default:
        isGood = false;
        break;
    }
    if (!isGood)
        machine.warn("emf.transform", "world transform with numbers out of reach, ignored");
}

void setLayout(Machine& machine, const Record& record)
{
    constexpr std::uint32_t kRightToLeft = 1;
    machine.dc().coordinates.setMirrored((record.u32(kData) & kRightToLeft) != 0);
}

void setBrushOrigin(Machine& machine, const Record& record) { machine.dc().brushOrigin = record.point(kData); }

void setBackgroundMode(Machine& machine, const Record& record)
{
    constexpr std::uint32_t kTransparent = 1;
    machine.dc().isOpaque = record.u32(kData) != kTransparent;
}

void setBackgroundColor(Machine& machine, const Record& record) { machine.dc().backgroundColor = record.u32(kData); }

void setTextColor(Machine& machine, const Record& record) { machine.dc().textColor = record.u32(kData); }

void setPolyFillMode(Machine& machine, const Record& record)
{
    constexpr std::uint32_t kWinding = 2;
    machine.dc().fillsAlternate = record.u32(kData) != kWinding;
}

void setRop2(Machine& machine, const Record& record) { machine.dc().rop2 = record.u32(kData); }

void setStretchMode(Machine& machine, const Record& record)
{
    const std::uint32_t mode = record.u32(kData);
    if (mode >= static_cast<std::uint32_t>(StretchMode::And)
        && mode <= static_cast<std::uint32_t>(StretchMode::Halftone))
        machine.dc().stretchMode = static_cast<StretchMode>(mode);
}

void setArcDirection(Machine& machine, const Record& record)
{
    constexpr std::uint32_t kClockwise = 2;
    machine.dc().isClockwise = record.u32(kData) == kClockwise;
}

void setMiterLimit(Machine& machine, const Record& record)
{
    // A whole number in what Windows writes; some writers store a float, whose bits make an enormous number.
    constexpr std::uint32_t kOneAsFloat = 0x3F800000;
    const std::uint32_t value = record.u32(kData);
    const double limit = value >= kOneAsFloat ? double(record.f32(kData)) : double(value);
    if (std::isfinite(limit) && limit >= 1)
        machine.dc().miterLimit = limit;
}

void setColorAdjustment(Machine& machine, const Record& record)
{
    constexpr unsigned kNoGamma = 10000;
    constexpr unsigned kWhite = 10000;
    bool isNeutral = record.u16(10) == 0 && record.u16(20) == 0 && record.u16(22) == kWhite;
    for (const std::size_t gamma : { 14U, 16U, 18U })
        isNeutral = isNeutral && record.u16(gamma) == kNoGamma;
    for (const std::size_t amount : { 24U, 26U, 28U, 30U })
        isNeutral = isNeutral && record.i16(amount) == 0;
    if (!isNeutral)
        machine.warn("emf.color-adjustment", "colour adjustment of stretched images is left out");
}

void saveContext(Machine& machine, const Record&) { machine.save(); }

void restoreContext(Machine& machine, const Record& record) { machine.restore(record.i32(kData)); }

} // namespace quillrip::emf
