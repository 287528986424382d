#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/base/work_meter.h"
#include "quillrip/fonts/font.h"
#include "quillrip/hpgl/area_filler.h"
#include "quillrip/hpgl/coordinates.h"
#include "quillrip/hpgl/inks.h"
#include "quillrip/hpgl/label.h"
#include "quillrip/hpgl/pens.h"
#include "quillrip/hpgl/plot_clip.h"
#include "quillrip/hpgl/state.h"
#include "quillrip/hpgl/surface.h"

#include <cstdint>

namespace quillrip::hpgl {

/// Draws single characters of labels, stroked or filled.
class CharacterPainter {
public:
    CharacterPainter(Surface& surface, State& state, const TextState& text, const Coordinates& coordinates,
        const Pens& pens, Inks& inks, PlotClip& clip, AreaFiller& areas, WorkMeter& work);

    /// With the character's reference point at a place in plotter units. `glyph`: see LabelItem.
    void draw(const LabelMetrics& metrics, std::uint32_t glyph, Point at);

private:
    void drawStroked(const LabelMetrics& metrics, char32_t character, const Matrix& glyphToPlotter);
    void drawTypeface(const Font& font, GlyphId glyph, const Matrix& glyphToPlotter);

    Surface& m_surface;
    State& m_state;
    const TextState& m_text;
    const Coordinates& m_coordinates;
    const Pens& m_pens;
    Inks& m_inks;
    PlotClip& m_clip;
    AreaFiller& m_areas;
    WorkMeter& m_work;
};

} // namespace quillrip::hpgl
