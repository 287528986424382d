#pragma once

#include "quillrip/base/work_meter.h"
#include "quillrip/hpgl/coordinates.h"
#include "quillrip/hpgl/inks.h"
#include "quillrip/hpgl/line_pen.h"
#include "quillrip/hpgl/pens.h"
#include "quillrip/hpgl/plot_clip.h"
#include "quillrip/hpgl/polygon.h"
#include "quillrip/hpgl/surface.h"

namespace quillrip::hpgl {

/// Fills and edges polygons as the fill type and the pen have it.
class AreaFiller {
public:
    AreaFiller(Surface& surface, State& state, const Coordinates& coordinates, const Pens& pens, Inks& inks,
        PlotClip& clip, LinePen& linePen, WorkMeter& work);

    void fill(const Polygon& polygon, FillRule rule);
    /// Fills a shape of the page with anything but hatch lines.
    void fill(const Path& page, FillRule rule);
    /// Draws the edges that were drawn with the pen down.
    void edge(const Polygon& polygon);

private:
    void hatch(const Polygon& polygon, FillRule rule, const Hatching& hatching, double turn);

    Surface& m_surface;
    State& m_state;
    const Coordinates& m_coordinates;
    const Pens& m_pens;
    Inks& m_inks;
    PlotClip& m_clip;
    LinePen& m_linePen;
    WorkMeter& m_work;
};

} // namespace quillrip::hpgl
