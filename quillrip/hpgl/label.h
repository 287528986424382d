#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/fonts/font.h"

#include <cstdint>
#include <vector>

namespace quillrip::hpgl {

/// How characters of one font are set at this moment. Lengths in plotter units; mirrored text has negative ones.
struct LabelMetrics {
    Font font; ///< its face is null for the stroked fonts
    bool isProportional = false;
    bool isArc = false; ///< of the stroked fonts: the proportional one
    Point along; ///< unit vector of the writing direction
    Point up; ///< unit vector from the baseline towards the capitals' tops
    double unitWidth = 0; ///< of one glyph space unit along the line (stroked fonts: one grid unit)
    double unitHeight = 0;
    double slant = 0;
    double stretch = 1; ///< of natural advances
    double capHeight = 0;
    double lineFeed = 0;
    double cellWidth = 0; ///< advance of the space, extra space not counted
    double gap = 0; ///< part of the advance that is the distance to the next character
    double originOffset = 0; ///< for label origins 11 to 19
    double strokeWidth = 0; ///< stroked fonts; below 0: the pen's
};

/// A character on a label's line.
struct LabelItem {
    std::size_t metrics = 0; ///< index into LabelLine::metrics
    std::uint32_t glyph = kNoGlyph; ///< of a typeface, or the Unicode of a stroked character
    double advance = 0; ///< plotter units, extra space not counted
    double offset = 0; ///< along the text path from the line's start
};

/// Characters between two carriage returns or line feeds, which the label origin places as one.
struct LabelLine {
    std::vector<LabelMetrics> metrics;
    std::vector<LabelItem> items;
    double end = 0; ///< along the text path: where the next character goes
    bool empty() const { return items.empty(); }
};

} // namespace quillrip::hpgl
