#include "quillrip/emf/plus/path_object.h"

#include "quillrip/emf/plus/field_reader.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace quillrip::emf::plus {

namespace {

constexpr std::uint32_t kRelativePoints = 0x0800;
constexpr std::uint32_t kWinding = 0x2000;
constexpr std::uint32_t kIntegerPoints = 0x4000;
constexpr std::uint32_t kMostPoints = 16 << 20;

enum PointType : std::uint8_t { kStart = 0, kLine = 1, kBezier = 3 };
constexpr std::uint8_t kTypeMask = 0x0F;
constexpr std::uint8_t kClosesFigure = 0x80;

using Types = std::vector<std::uint8_t>;

bool areTypes(const Types& types)
{
    return std::all_of(types.begin(), types.end(), [](std::uint8_t type) {
        return (type & kTypeMask) == kStart || (type & kTypeMask) == kLine || (type & kTypeMask) == kBezier;
    });
}

/// Runs of equal types: a byte 0x40 with the length in its low six bits (and 0x80 for curves), then the type. Empty
/// when the runs do not fill the points exactly.
Types codedTypes(ByteView bytes, std::size_t count)
{
    Types types;
    types.reserve(count);
    for (std::size_t at = 0; types.size() < count; at += 2) {
        if (at + 1 >= bytes.size || !(bytes[at] & 0x40))
            return {};
        const std::size_t run = bytes[at] & 0x3F;
        if (run > count - types.size())
            return {};
        types.insert(types.end(), run, bytes[at + 1]);
    }
    return areTypes(types) ? types : Types {};
}

/// One byte a point. Empty when they are not all there, or bytes that can only be types follow them.
Types plainTypes(ByteView bytes, std::size_t count)
{
    if (bytes.size < count)
        return {};
    Types types(bytes.begin(), bytes.begin() + count);
    const ByteView padding = bytes.sub(count);
    const bool isPadded = std::all_of(padding.begin(), padding.end(), [](std::uint8_t byte) { return byte == 0; });
    return isPadded && areTypes(types) ? types : Types {};
}

/// Types follow the points at once; behind relative points, whose length is no multiple of 4, some writers align them.
Types readTypes(ByteView object, std::size_t at, std::size_t count, bool areRunsLikely)
{
    const ByteView bytes = object.sub(at);
    Types types;
    if (areRunsLikely)
        types = codedTypes(bytes, count);
    if (types.empty())
        types = plainTypes(bytes, count);
    if (types.empty())
        types = plainTypes(object.sub((at + 3) / 4 * 4), count);
    if (types.empty() && bytes.size >= count) {
        types.assign(bytes.begin(), bytes.begin() + count);
        if (!areTypes(types))
            types.clear();
    }
    return types;
}

Path pathOf(const std::vector<Point>& points, const Types& types)
{
    Path path;
    std::vector<Point> controls; // of the curve that is being collected
    for (std::size_t i = 0; i < points.size(); ++i) {
        const std::uint8_t type = types[i] & kTypeMask;
        if (type == kStart || path.empty()) {
            path.moveTo(points[i]);
            controls.clear();
        } else if (type == kLine) {
            path.lineTo(points[i]);
            controls.clear();
        } else if (controls.size() < 2) {
            controls.push_back(points[i]);
        } else {
            path.cubicTo(controls[0], controls[1], points[i]);
            controls.clear();
        }
        if (types[i] & kClosesFigure && controls.empty())
            path.close();
    }
    return path;
}

} // namespace

std::optional<PathObject> readPath(ByteView object)
{
    FieldReader fields(object);
    fields.u32(); // version
    const std::uint32_t count = fields.u32();
    const std::uint32_t flags = fields.u32();
    if (fields.hasFailed() || count > kMostPoints)
        return std::nullopt;
    const bool isRelative = flags & kRelativePoints;
    const PointForm form = isRelative ? PointForm::Relative
        : flags & kIntegerPoints      ? PointForm::Integer
                                      : PointForm::Float;
    const std::vector<Point> points = fields.points(form, count);
    if (fields.hasFailed())
        return std::nullopt;
    const Types types = readTypes(object, fields.offset(), count, isRelative);
    if (types.size() != points.size())
        return std::nullopt;
    return PathObject { pathOf(points, types), flags & kWinding ? FillRule::NonZero : FillRule::EvenOdd };
}

} // namespace quillrip::emf::plus
