#pragma once

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

/// Lengths in user units.
struct StrokeStyle {
    double width = 1;
    LineCap cap = LineCap::Butt;
    LineJoin join = LineJoin::Miter;
    double miterLimit = 10; ///< miter length / line width
    std::vector<double> dashes; ///< on, off, on, off ...; empty or all zero: solid. An "on" of 0 is a dot
    double dashOffset = 0; ///< distance into the dashes at which a subpath starts
};

} // namespace quillrip
