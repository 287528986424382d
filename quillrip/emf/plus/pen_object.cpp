#include "quillrip/emf/plus/pen_object.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

namespace quillrip::emf::plus {

namespace {

enum PenFlag : std::uint32_t {
    kHasPenTransform = 0x0001,
    kHasStartCap = 0x0002,
    kHasEndCap = 0x0004,
    kHasJoin = 0x0008,
    kHasMiterLimit = 0x0010,
    kHasLineStyle = 0x0020,
    kHasDashCap = 0x0040,
    kHasDashOffset = 0x0080,
    kHasDashes = 0x0100,
    kHasAlignment = 0x0200,
    kHasCompound = 0x0400,
    kHasCustomStart = 0x0800,
    kHasCustomEnd = 0x1000,
};

constexpr std::size_t kMostDashes = 4096;

Cap capOf(std::int32_t number)
{
    switch (number) {
    case 1:
        return Cap::Square;
    case 2:
        return Cap::Round;
    case 3:
        return Cap::Triangle;
    case 0x11:
        return Cap::SquareAnchor;
    case 0x12:
        return Cap::RoundAnchor;
    case 0x13:
        return Cap::DiamondAnchor;
    case 0x14:
        return Cap::ArrowAnchor;
    case 0xFF:
        return Cap::Custom;
    default:
        return Cap::Flat;
    }
}

Join joinOf(std::int32_t number) { return number >= 0 && number <= 3 ? static_cast<Join>(number) : Join::Miter; }

/// In widths of the pen; none for a solid line and for one whose dashes stand in the object.
std::vector<double> dashesOf(std::int32_t lineStyle)
{
    switch (lineStyle) {
    case 1:
        return { 3, 1 };
    case 2:
        return { 1, 1 };
    case 3:
        return { 3, 1, 1, 1 };
    case 4:
        return { 3, 1, 1, 1, 1, 1 };
    default:
        return {};
    }
}

/// Dashes that make no line, or none but a solid one, are left out.
std::vector<double> usable(std::vector<double> dashes)
{
    double sum = 0;
    for (double& length : dashes) {
        length = std::max(length, 0.0);
        sum += length;
    }
    if (!(sum > 0) || dashes.size() > kMostDashes)
        dashes.clear();
    return dashes;
}

/// Pairs of rising parts within the width; anything else means one line.
std::vector<double> usableCompound(std::vector<double> parts)
{
    const bool isInRange = std::all_of(parts.begin(), parts.end(), [](double part) { return part >= 0 && part <= 1; });
    // Office says of every line that it is one line.
    const bool isWhole = parts.size() == 2 && parts[0] == 0 && parts[1] == 1;
    if (isWhole || parts.size() % 2 != 0 || parts.size() > kMostDashes || !isInRange
        || !std::is_sorted(parts.begin(), parts.end()))
        parts.clear();
    return parts;
}

std::shared_ptr<const CustomCap> readSizedCap(FieldReader& fields)
{
    const auto cap = readCustomCap(fields.take(fields.u32()));
    return cap ? std::make_shared<const CustomCap>(*cap) : nullptr;
}

void readCapPaths(FieldReader& fields, CustomCap& cap)
{
    constexpr std::uint32_t hasFill = 1;
    constexpr std::uint32_t hasLine = 2;
    const std::uint32_t flags = fields.u32();
    cap.baseCap = capOf(fields.i32());
    cap.baseInset = fields.f32();
    cap.lineStart = capOf(fields.i32());
    cap.lineEnd = capOf(fields.i32());
    cap.lineJoin = joinOf(fields.i32());
    cap.miterLimit = fields.f32();
    cap.widthScale = fields.f32();
    fields.pointF(); // hot spots, always (0, 0)
    fields.pointF();
    for (const auto& [flag, path] : { std::pair { hasFill, &cap.fill }, std::pair { hasLine, &cap.line } }) {
        if (!(flags & flag))
            continue;
        if (auto read = readPath(fields.take(fields.u32())))
            *path = std::move(*read);
        else
            fields.fail();
    }
}

void readArrow(FieldReader& fields, CustomCap& cap)
{
    CustomCap::Arrow arrow;
    arrow.width = fields.f32();
    arrow.height = fields.f32();
    arrow.middleInset = fields.f32();
    arrow.isFilled = fields.u32() != 0;
    cap.lineStart = capOf(fields.i32());
    cap.lineEnd = capOf(fields.i32());
    cap.lineJoin = joinOf(fields.i32());
    cap.miterLimit = fields.f32();
    cap.widthScale = fields.f32();
    cap.arrow = arrow;
}

} // namespace

std::optional<CustomCap> readCustomCap(ByteView object)
{
    FieldReader fields(object);
    fields.u32(); // version
    CustomCap cap;
    const std::uint32_t type = fields.u32();
    if (type == 0)
        readCapPaths(fields, cap);
    else if (type == 1)
        readArrow(fields, cap);
    else
        return std::nullopt;
    return fields.hasFailed() ? std::nullopt : std::optional { cap };
}

std::optional<PenObject> readPen(ByteView object)
{
    FieldReader fields(object);
    fields.u32(); // version
    fields.u32(); // type, always 0
    PenObject pen;
    const std::uint32_t flags = fields.u32();
    pen.unit = unitOf(fields.u32());
    pen.width = std::abs(fields.f32());
    if (flags & kHasPenTransform)
        pen.shape = fields.matrix();
    if (flags & kHasStartCap)
        pen.startCap = capOf(fields.i32());
    if (flags & kHasEndCap)
        pen.endCap = capOf(fields.i32());
    if (flags & kHasJoin)
        pen.join = joinOf(fields.i32());
    if (flags & kHasMiterLimit)
        pen.miterLimit = std::max(fields.f32(), 1.0);
    if (flags & kHasLineStyle)
        pen.dashes = dashesOf(fields.i32());
    if (flags & kHasDashCap)
        pen.dashCap = capOf(fields.i32());
    if (flags & kHasDashOffset)
        pen.dashOffset = fields.f32();
    if (flags & kHasDashes)
        pen.dashes = usable(fields.countedNumbers());
    if (flags & kHasAlignment) {
        const std::int32_t alignment = fields.i32();
        pen.alignment = alignment >= 0 && alignment <= 4 ? static_cast<PenAlignment>(alignment) : PenAlignment::Center;
    }
    if (flags & kHasCompound)
        pen.compound = usableCompound(fields.countedNumbers());
    if (flags & kHasCustomStart)
        pen.customStart = readSizedCap(fields);
    if (flags & kHasCustomEnd)
        pen.customEnd = readSizedCap(fields);
    if (fields.hasFailed())
        return std::nullopt;
    const auto brush = readBrush(fields.rest());
    if (!brush)
        return std::nullopt;
    pen.brush = *brush;
    return pen;
}

} // namespace quillrip::emf::plus
