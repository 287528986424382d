#pragma once

#include "quillrip/raster/scan/clip_region.h"

#include <cstdint>
#include <memory>

namespace quillrip::emf {

/// How a region joins the clip (RGN_AND to RGN_COPY, as records number them).
enum class RegionMode : std::uint32_t { And = 1, Or, Xor, Diff, Copy };

using Region = std::shared_ptr<const ClipRegion>;

/// `clip` combined with `region`; a null clip counts as all of `bounds`.
Region combined(const Region& clip, const Region& region, RegionMode mode, const PixelRect& bounds);

/// What lies in both; null stands for everything.
Region intersection(const Region& first, const Region& second);

} // namespace quillrip::emf
