#include "quillrip/emf/plus/region_object.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace quillrip::emf::plus {

namespace {

constexpr std::uint32_t kRectangleNode = 0x10000000;
constexpr std::uint32_t kPathNode = 0x10000001;
constexpr std::uint32_t kEmptyNode = 0x10000002;
constexpr std::uint32_t kInfiniteNode = 0x10000003;
constexpr std::size_t kMostNodes = 65536;
/// Left operands that wait for their right ones: each holds pixels. Programs that add rectangle after rectangle make
/// trees that are deep on the left, of which none has to wait.
constexpr std::size_t kMostWaiting = 1024;

/// Of the numbers 1 to 5 that a node begins with.
CombineMode modeOf(std::uint32_t type) { return static_cast<CombineMode>(type); }

PathObject pathOf(const RectF& rect)
{
    PathObject path;
    path.path.rectangle(rect.x, rect.y, rect.right(), rect.bottom());
    return path;
}

PixelSet nothing() { return ClipRegion::ofRect({}); }

} // namespace

PixelSet combine(const PixelSet& old, const PixelSet& added, CombineMode mode, const PixelRect& universe)
{
    const auto without = [&universe](const PixelSet& from, const PixelSet& removed) -> PixelSet {
        if (!removed)
            return nothing();
        return from ? from->subtracted(*removed) : removed->complement(universe);
    };
    switch (mode) {
    case CombineMode::Replace:
        return added;
    case CombineMode::Intersect:
        return !old ? added : !added ? old : old->intersected(*added);
    case CombineMode::Union:
        return old && added ? old->united(*added) : nullptr;
    case CombineMode::Xor:
        return !old ? without(nullptr, added) : !added ? without(nullptr, old) : old->exclusive(*added);
    case CombineMode::Exclude:
        return without(old, added);
    case CombineMode::Complement:
        return without(added, old);
    }
    return old;
}

PixelSet pixelsOf(const PathObject& path, const Matrix& toDevice, const PixelRect& universe)
{
    return ClipRegion::ofPath(path.path.transformed(toDevice), path.rule, universe);
}

PixelSet pixelsOf(const RectF& rect, const Matrix& toDevice, const PixelRect& universe)
{
    const bool isUpright = (toDevice.b == 0 && toDevice.c == 0) || (toDevice.a == 0 && toDevice.d == 0);
    if (!isUpright || rect.isEmpty())
        return pixelsOf(pathOf(rect), toDevice, universe);
    const Rect sides = toDevice.boundsOf({ rect.x, rect.y, rect.right(), rect.bottom() });
    const auto firstInside = [](double side, int low, int high) {
        return static_cast<int>(std::clamp(std::ceil(side - 0.5), static_cast<double>(low), static_cast<double>(high)));
    };
    return ClipRegion::ofRect({ firstInside(sides.left, universe.left, universe.right),
        firstInside(sides.top, universe.top, universe.bottom), firstInside(sides.right, universe.left, universe.right),
        firstInside(sides.bottom, universe.top, universe.bottom) });
}

std::optional<RegionObject> readRegion(ByteView object)
{
    FieldReader fields(object);
    fields.u32(); // version
    const std::uint64_t declared = std::uint64_t { fields.u32() } + 1;
    if (declared > kMostNodes || !fields.has(declared, 4))
        return std::nullopt;
    RegionObject region;
    for (std::uint64_t missing = 1; missing > 0; --missing) {
        if (region.nodes.size() >= declared)
            return std::nullopt;
        RegionObject::Node node;
        const std::uint32_t type = fields.u32();
        if (type == kRectangleNode) {
            node.kind = RegionObject::Kind::Rectangle;
            node.rect = fields.rectF();
        } else if (type == kPathNode) {
            node.kind = RegionObject::Kind::Path;
            const auto path = readPath(fields.take(fields.u32()));
            if (!path)
                return std::nullopt;
            node.path = *path;
        } else if (type == kInfiniteNode) {
            node.kind = RegionObject::Kind::Infinite;
        } else if (type >= 1 && type <= 5) {
            node.kind = RegionObject::Kind::Combination;
            node.mode = modeOf(type);
            missing += 2;
        } else if (type != kEmptyNode) {
            return std::nullopt;
        }
        if (fields.hasFailed())
            return std::nullopt;
        region.nodes.push_back(std::move(node));
    }
    return region;
}

PixelSet RegionObject::pixels(const Matrix& toDevice, const PixelRect& universe) const
{
    struct Waiting {
        CombineMode mode;
        bool hasLeft = false;
        PixelSet left;
    };
    std::vector<Waiting> waiting;
    std::size_t lefts = 0;
    for (const Node& node : nodes) {
        PixelSet value;
        switch (node.kind) {
        case Kind::Combination:
            waiting.push_back({ node.mode, false, nullptr });
            continue;
        case Kind::Rectangle:
            value = pixelsOf(node.rect, toDevice, universe);
            break;
        case Kind::Path:
            value = pixelsOf(node.path, toDevice, universe);
            break;
        case Kind::Empty:
            value = nothing();
            break;
        case Kind::Infinite:
            break;
        }
        for (; !waiting.empty() && waiting.back().hasLeft; waiting.pop_back(), --lefts)
            value = combine(waiting.back().left, value, waiting.back().mode, universe);
        if (waiting.empty())
            return value;
        if (++lefts > kMostWaiting)
            return nothing();
        waiting.back().hasLeft = true;
        waiting.back().left = std::move(value);
    }
    return nothing();
}

} // namespace quillrip::emf::plus
