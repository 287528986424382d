#pragma once

#include "quillrip/base/work_meter.h"
#include "quillrip/hpgl/polygon.h"
#include "quillrip/raster/paths/path.h"

#include <cstddef>
#include <vector>

namespace quillrip::hpgl {

/// One stroke of a hatching, plotter units.
struct HatchLine {
    Point from;
    Point to;
};

struct HatchRequest {
    double spacing = 0; ///< plotter units, above 0
    double angle = 0; ///< degrees, from +x towards +y
    Point anchor; ///< a line goes through here
    FillRule rule = FillRule::EvenOdd;
    Rect visible; ///< lines that miss this rectangle are left out
    std::size_t atMost = 0; ///< crossings with the outline
};

/// The parallel lines that fill a polygon, from edge to edge, in the order of their distance from the anchor. False
/// (and no lines) when there would be too many, or the meter is exhausted by finding them.
bool hatch(const Polygon& polygon, const HatchRequest& request, WorkMeter& work, std::vector<HatchLine>& lines);

} // namespace quillrip::hpgl
