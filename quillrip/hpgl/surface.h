#pragma once

#include "quillrip/base/color.h"
#include "quillrip/base/diagnostics.h"
#include "quillrip/base/geometry.h"
#include "quillrip/fonts/faces/typeface.h"
#include "quillrip/raster/compose/paint_state.h"
#include "quillrip/raster/painter.h"

#include <memory>

namespace quillrip::hpgl {

/// What a mark looks like.
struct PenInk {
    Rgb color;
    /// Area fills keep their tone on bilevel pages; lines and letters are as black as a monochrome printer makes them.
    bool isArea = false;
    std::shared_ptr<const PatternTile> tile; ///< device pixels; null: solid
    Point anchor; ///< page space: a corner of the tile lies here
    bool isTransparent = true; ///< white pixels of the tile leave the page as it is
};

/// What a plot is drawn on, in page space (decipoints, y down). Everything is cut to the clip.
class Surface {
public:
    virtual ~Surface() = default;

    /// One clip for lines, and one for everything else.
    virtual void setClip(const Rect& areas, const Rect& lines) = 0;
    virtual void stroke(const Path& path, const StrokeStyle& style, const PenInk& ink) = 0;
    virtual void fill(const Path& path, FillRule rule, const PenInk& ink) = 0;
    /// A glyph of a face by its mask; `glyphToPage` takes glyph space (y up) to page space.
    virtual void drawGlyph(const Typeface& face, GlyphId glyph, const Matrix& glyphToPage, const PenInk& ink) = 0;
    /// Anything but Done: nothing more can be drawn.
    virtual RunStatus status() const = 0;
    /// False: outlines do as well as dashes and hatch lines.
    virtual bool needsDetail() const { return true; }
    /// How far apart the device's pixels are, the shorter way, in decipoints; 0: it has none.
    virtual double pixelPitch() const { return 0; }
};

} // namespace quillrip::hpgl
