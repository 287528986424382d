#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/hpgl/environment.h"
#include "quillrip/hpgl/host.h"
#include "quillrip/raster/page_device.h"

#include <optional>

namespace quillrip::hpgl {

/// What the first reading of a page tells about its size. Rectangles are in
/// plotter units of the rotated system of RO, so that `top` is their lower side.
struct PlotFacts {
    bool isDrawn = false;
    Rect extent = Rect::nothing(); ///< of all marks, pen widths included
    int quarterTurns = 0; ///< RO / 90 of the marks
    bool hasMixedTurns = false; ///< RO changed between marks: `extent` is then in the unrotated system
    /// There is raster among the marks. Its rows run along the plotter's y axis whatever RO says, so that the page is
    /// read with x running down; all rectangles are then in the unrotated system.
    bool hasRaster = false;
    std::optional<double> plotLength; ///< PS
    std::optional<double> plotWidth;
    std::optional<Rect> inputWindow; ///< IW before the first mark
    std::optional<Rect> inputPoints; ///< IP before the first mark
    bool usesDefaultPoints = false; ///< scaled to P1 and P2 as they are without IP
};

/// A page of a plot file: its sheet and the plot's place on it.
struct PlotPage {
    SheetRequest sheet;
    PictureFrame frame;
    bool isReduced = false; ///< the plot is larger than any sheet
};

/// Length and width in plotter units of the sheet that a plotter without further knowledge has: Letter or A4.
Point assumedPaper(const Environment& environment);

/// The sheet for one page. In this order: the environment's paper; PS; a window or P1 and P2 that enclose the
/// drawing; the smallest standard sheet that holds the drawing with the origin at its lower left corner, or in its
/// middle for drawings round the origin; the drawing and a margin of a centimetre.
PlotPage plotPage(const PlotFacts& facts, const Environment& environment);

} // namespace quillrip::hpgl
