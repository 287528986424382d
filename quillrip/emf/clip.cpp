#include "quillrip/emf/clip.h"

namespace quillrip::emf {

Region combined(const Region& clip, const Region& region, RegionMode mode, const PixelRect& bounds)
{
    if (!region || mode == RegionMode::Copy)
        return region;
    const Region old = clip ? clip : ClipRegion::ofRect(bounds);
    const auto without
        = [&](const Region& from, const Region& taken) { return from->intersected(*taken->complement(bounds)); };
    switch (mode) {
    case RegionMode::And:
        return old->intersected(*region);
    case RegionMode::Or:
        return old->complement(bounds)->intersected(*region->complement(bounds))->complement(bounds);
    case RegionMode::Xor: {
        const Region neither = without(old, region)->complement(bounds);
        return neither->intersected(*without(region, old)->complement(bounds))->complement(bounds);
    }
    case RegionMode::Diff:
        return without(old, region);
    default:
        return clip;
    }
}

Region intersection(const Region& first, const Region& second)
{
    if (!first)
        return second;
    return second ? first->intersected(*second) : first;
}

} // namespace quillrip::emf
