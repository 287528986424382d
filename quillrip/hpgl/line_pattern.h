#pragma once

#include "quillrip/base/work_meter.h"
#include "quillrip/hpgl/surface.h"
#include "quillrip/raster/paths/stroke_style.h"

#include <vector>

namespace quillrip::hpgl {

/// A corner of a line that the pen draws, in page space.
struct LineVertex {
    Point at;
    /// The vector from the vertex before ends here; false inside an arc or a curve that is drawn in small steps.
    bool endsVector = true;
};

/// A line type: shares of the pattern with the pen down, up, down, up ..., adding up to 1.
struct LinePattern {
    std::vector<double> shares;
    double length = 0; ///< decipoints
    bool isAdaptive = false; ///< every vector holds a whole number of patterns
};

/// The built-in line types 1 to 8.
const std::vector<double>& builtInLinePattern(int type);

/// A line cut into dashes.
struct DashedLine {
    Path dashes;
    std::vector<Point> dots; ///< pen-down stretches without length
};

/// What the dashes are drawn with.
struct DashPen {
    double width = 0; ///< decipoints
    LineCap cap = LineCap::Butt;
};

/// Cuts a line of at least two vertices. `phase` is how far into the pattern it starts and, afterwards, ends
/// (decipoints; untouched by adaptive patterns). Dashes far outside `visible` are left out, and gaps within a vector
/// that the pen's caps close. A line that would need absurdly many dashes, fewer the wider the pen is, is solid behind
/// those. Every dash is charged; there are none when the meter is exhausted.
DashedLine cutIntoDashes(const std::vector<LineVertex>& line, const LinePattern& pattern, const Rect& visible,
    const DashPen& pen, WorkMeter& work, double& phase);

} // namespace quillrip::hpgl
