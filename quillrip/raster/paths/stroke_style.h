#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

namespace quillrip {

enum class LineCap {
    Butt,
    Square,
    Triangle,
    Round,
};

enum class LineJoin {
    Miter, ///< beyond the miter limit: bevel
    MiterBevel, ///< the same by its name in HP-GL/2
    Triangle,
    Round,
    Bevel,
    None, ///< segments end on their own
    MiterClipped, ///< beyond the limit: cut off square there; mitred in HP-GL/2
};

constexpr bool isMitred(LineJoin join)
{
    return join == LineJoin::Miter || join == LineJoin::MiterBevel || join == LineJoin::MiterClipped;
}

/// Lengths in user units.
struct StrokeStyle {
    double width = 1;
    LineCap cap = LineCap::Butt;
    LineJoin join = LineJoin::Miter;
    double miterLimit = 10; ///< miter length / line width
    std::vector<double> dashes; ///< on, off, on, off ...; empty or all zero: solid. An "on" of 0 is a dot
    double dashOffset = 0; ///< distance into the dashes at which a subpath starts
};

/// The widest gap in a straight dashed line that the caps at its sides close: what is left open of the line's edge is
/// at most `flatness` deep. All lengths in the same unit.
inline double widestClosedGap(LineCap cap, double width, double flatness)
{
    if (cap == LineCap::Square)
        return width;
    // Two round ends that overlap leave a notch as deep as a chord of the gap's length lies below its arc.
    const double radius = width / 2;
    const double depth = std::min(flatness, radius);
    return cap == LineCap::Round ? 2 * std::sqrt(depth * (2 * radius - depth)) : 0;
}

} // namespace quillrip
