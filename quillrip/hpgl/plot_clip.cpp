#include "quillrip/hpgl/plot_clip.h"

namespace quillrip::hpgl {

/// The frame bounds where the pen may go, so lines along its edge show in their full width. The window and the host's
/// own limits cut exactly.
void PlotClip::apply()
{
    const double reach = m_pens.widthDecipoints() / 2;
    if (m_coordinates.revision() == m_revision && reach == m_reach)
        return;
    m_revision = m_coordinates.revision();
    m_reach = reach;
    m_area = m_coordinates.window();
    Rect lines = m_area;
    if (const PictureFrame& f = m_coordinates.frame(); f.cutsAtFrame) {
        const Rect frame { f.left, f.top, f.left + f.width, f.top + f.height };
        m_area = m_area.intersected(frame);
        lines = lines.intersected(frame.grown(reach));
    }
    m_surface.setClip(m_area, lines);
}

} // namespace quillrip::hpgl
