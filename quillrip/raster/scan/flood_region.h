#pragma once

#include "quillrip/base/page_bitmap.h"
#include "quillrip/raster/scan/clip_region.h"

#include <memory>

namespace quillrip {

enum class FloodRule {
    WhileEqual, ///< over pixels of the given colour
    UntilEqual, ///< up to pixels of the given colour, and those of soft edges that have a good part of it
};

/// The pixels that a flood fill from (x, y) reaches, over the four neighbours of each pixel, within `bounds` and the
/// page. Empty where it cannot start. The colour is compared as the page shows it: in its tones, or as black and white.
std::shared_ptr<const ClipRegion> floodRegion(
    const PageBitmap& page, int x, int y, Rgb color, FloodRule rule, const PixelRect& bounds);

} // namespace quillrip
