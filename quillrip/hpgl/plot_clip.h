#pragma once

#include "quillrip/hpgl/coordinates.h"
#include "quillrip/hpgl/pens.h"
#include "quillrip/hpgl/surface.h"

#include <cstdint>

namespace quillrip::hpgl {

/// Keeps the surface's clip true to the coordinates and the pen.
class PlotClip {
public:
    PlotClip(Surface& surface, const Coordinates& coordinates, const Pens& pens)
        : m_surface(surface)
        , m_coordinates(coordinates)
        , m_pens(pens)
    {
    }

    /// Must come before every mark.
    void apply();
    /// What areas are cut to, in page space; as of the last apply().
    const Rect& area() const { return m_area; }

private:
    Surface& m_surface;
    const Coordinates& m_coordinates;
    const Pens& m_pens;
    Rect m_area;
    std::uint64_t m_revision = UINT64_MAX;
    double m_reach = 0; ///< half the pen's width when the clip was made
};

} // namespace quillrip::hpgl
