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
    MiterBevel, ///< the same by its other name in HP-GL/2: mitred, bevelled beyond the limit
    Triangle,
    Round,
    Bevel,
    None, ///< segments end on their own
    MiterClipped, ///< mitred, cut off square at the limit
};

/// Lengths in user units.
struct StrokeStyle {
    double width = 1;
    LineCap cap = LineCap::Butt;
    LineJoin join = LineJoin::Miter;
    double miterLimit = 10; ///< miter length / line width
    std::vector<double> dashes; ///< on, off, on, off ...; empty: solid. All zero counts as solid
    double dashOffset = 0; ///< distance into the dashes at which a subpath starts
};

} // namespace quillrip
