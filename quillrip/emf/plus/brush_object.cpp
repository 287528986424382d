#include "quillrip/emf/plus/brush_object.h"

#include <algorithm>
#include <cstdint>

namespace quillrip::emf::plus {

namespace {

enum BrushType : std::uint32_t { kSolid, kHatch, kTexture, kPathGradient, kLinearGradient };

enum BrushFlag : std::uint32_t {
    kHasPath = 0x01,
    kHasTransform = 0x02,
    kHasPresetColors = 0x04,
    kHasFactorsAcross = 0x08,
    kHasFactorsDown = 0x10,
    kHasFocusScales = 0x40,
};

constexpr std::uint32_t kMostPositions = 65536;
constexpr std::uint32_t kLastHatchStyle = 52;

/// Positions have to rise; what falls back is moved up to the one before.
template <typename Entry> void sortPositions(std::vector<Entry>& entries)
{
    double last = 0;
    for (Entry& entry : entries)
        last = entry.position = std::clamp(entry.position, last, 1.0);
}

std::vector<Blend::Stop> readStops(FieldReader& fields)
{
    const std::uint32_t count = fields.u32();
    std::vector<Blend::Stop> stops;
    if (count > kMostPositions || !fields.has(count, 8)) {
        fields.fail();
        return stops;
    }
    for (const double position : fields.numbers(count))
        stops.push_back({ position, {} });
    for (Blend::Stop& stop : stops)
        stop.color = fields.color();
    sortPositions(stops);
    return stops;
}

std::vector<Blend::Factor> readFactors(FieldReader& fields)
{
    const std::uint32_t count = fields.u32();
    std::vector<Blend::Factor> factors;
    if (count > kMostPositions || !fields.has(count, 8)) {
        fields.fail();
        return factors;
    }
    for (const double position : fields.numbers(count))
        factors.push_back({ position, 0 });
    for (Blend::Factor& factor : factors)
        factor.factor = std::clamp(fields.f32(), 0.0, 1.0);
    sortPositions(factors);
    return factors;
}

/// The entries on both sides of a position, and how far it lies between them.
template <typename Entry> struct Neighbours {
    const Entry& low;
    const Entry& high;
    double part;
};

template <typename Entry> Neighbours<Entry> neighboursOf(const std::vector<Entry>& entries, double position)
{
    const auto high = std::upper_bound(entries.begin(), entries.end(), position,
        [](double value, const Entry& entry) { return value < entry.position; });
    if (high == entries.begin())
        return { entries.front(), entries.front(), 0 };
    if (high == entries.end())
        return { entries.back(), entries.back(), 0 };
    const Entry& low = *(high - 1);
    return { low, *high, (position - low.position) / (high->position - low.position) };
}

std::optional<BrushObject> readHatch(FieldReader& fields)
{
    HatchBrush hatch;
    hatch.style = fields.u32();
    hatch.style = hatch.style > kLastHatchStyle ? 0 : hatch.style;
    hatch.foreground = fields.color();
    hatch.background = fields.color();
    return hatch;
}

std::optional<BrushObject> readTexture(FieldReader& fields)
{
    TextureBrush texture;
    const std::uint32_t flags = fields.u32();
    texture.wrap = wrapModeOf(fields.i32());
    if (flags & kHasTransform)
        texture.toWorld = fields.matrix();
    if (fields.remaining() > 0) {
        if (auto image = readImage(fields.rest()))
            texture.image = std::make_shared<const ImageObject>(std::move(*image));
    }
    return texture;
}

std::optional<BrushObject> readLinearGradient(FieldReader& fields)
{
    LinearGradientBrush gradient;
    const std::uint32_t flags = fields.u32();
    gradient.wrap = wrapModeOf(fields.i32());
    gradient.rect = fields.rectF();
    gradient.blend.start = fields.color();
    gradient.blend.end = fields.color();
    fields.color(); // the two colours once more
    fields.color();
    if (flags & kHasTransform)
        gradient.toWorld = fields.matrix();
    if (flags & kHasPresetColors) {
        gradient.blend.stops = readStops(fields);
        return gradient;
    }
    if (flags & kHasFactorsDown)
        gradient.blend.factors = readFactors(fields);
    if (flags & kHasFactorsAcross)
        gradient.blend.factors = readFactors(fields);
    return gradient;
}

void readBoundary(FieldReader& fields, bool isPath, PathGradientBrush& gradient)
{
    const std::uint32_t length = fields.u32();
    if (!isPath) {
        gradient.boundaryPoints = fields.points(PointForm::Float, length);
        return;
    }
    gradient.boundaryPath = readPath(fields.take(length));
    if (!gradient.boundaryPath)
        fields.fail();
}

std::optional<BrushObject> readPathGradient(FieldReader& fields)
{
    PathGradientBrush gradient;
    const std::uint32_t flags = fields.u32();
    gradient.wrap = wrapModeOf(fields.i32());
    gradient.centerColor = fields.color();
    gradient.center = fields.pointF();
    const std::uint32_t colors = fields.u32();
    if (!fields.has(colors, 4))
        return std::nullopt;
    for (std::uint32_t i = 0; i < colors; ++i)
        gradient.surroundColors.push_back(fields.color());
    readBoundary(fields, flags & kHasPath, gradient);
    if (flags & kHasTransform)
        gradient.toWorld = fields.matrix();
    if (flags & kHasPresetColors)
        gradient.stops = readStops(fields);
    else if (flags & kHasFactorsAcross)
        gradient.factors = readFactors(fields);
    if (flags & kHasFocusScales) {
        fields.u32(); // 2: numbers that follow
        gradient.focusScale = fields.pointF();
    }
    return gradient;
}

} // namespace

WrapMode wrapModeOf(std::int32_t number)
{
    return number >= 0 && number <= static_cast<std::int32_t>(WrapMode::Clamp) ? static_cast<WrapMode>(number)
                                                                               : WrapMode::Tile;
}

Rgba Blend::at(double position) const
{
    if (!stops.empty()) {
        const auto around = neighboursOf(stops, position);
        return mixed(around.low.color, around.high.color, around.part);
    }
    if (factors.empty())
        return mixed(start, end, std::clamp(position, 0.0, 1.0));
    return mixed(start, end, factorAt(position));
}

double Blend::factorAt(double position) const
{
    const auto around = neighboursOf(factors, position);
    return around.low.factor + (around.high.factor - around.low.factor) * around.part;
}

std::optional<BrushObject> readBrush(ByteView object)
{
    FieldReader fields(object);
    fields.u32(); // version
    std::optional<BrushObject> brush;
    switch (fields.u32()) {
    case kSolid:
        brush = fields.color();
        break;
    case kHatch:
        brush = readHatch(fields);
        break;
    case kTexture:
        brush = readTexture(fields);
        break;
    case kPathGradient:
        brush = readPathGradient(fields);
        break;
    case kLinearGradient:
        brush = readLinearGradient(fields);
        break;
    default:
        return std::nullopt;
    }
    return fields.hasFailed() ? std::nullopt : brush;
}

} // namespace quillrip::emf::plus
