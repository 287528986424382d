#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/hpgl/surface.h"

#include <vector>

namespace quillrip::hpgl {

/// What a plot file's page size is concluded from; told while the page is drawn. All in plotter units.
class PlotListener {
public:
    virtual ~PlotListener() = default;
    /// PS with its operands as they came. False when it comes too late for the page.
    virtual bool plotSize(const std::vector<double>& operands) = 0;
    /// IP or IW with four operands: a rectangle of the rotated system.
    virtual void plotWindow(bool isInputWindow, Point corner1, Point corner2) = 0;
    /// P1 and P2 went back to where they are without IP.
    virtual void pointsDefaulted() = 0;
    /// SC with operands.
    virtual void scaled() = 0;
    /// PG, AF, AH, BP: the page is finished. `isForced`: also when nothing was drawn.
    virtual void advancePage(bool isForced) = 0;
    /// A raster of the plotter's other language lies there, in page space.
    virtual void rasterCovered(const Rect& raster) = 0;
};

} // namespace quillrip::hpgl
