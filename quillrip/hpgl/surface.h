#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/base/geometry.h"
#include "quillrip/fonts/faces/typeface.h"
#include "quillrip/raster/compose/paint_state.h"
#include "quillrip/raster/painter.h"

#include <memory>

namespace quillrip::hpgl {

/// A rectangle in page space, decipoints, y down.
struct PageRect {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    bool empty() const { return !(left < right && top < bottom); }
    PageRect intersected(const PageRect& other) const
    {
        return { std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
            std::min(bottom, other.bottom) };
    }
    /// As small as it can be with the point inside; start from nothing().
    void include(Point point)
    {
        left = std::min(left, point.x);
        top = std::min(top, point.y);
        right = std::max(right, point.x);
        bottom = std::max(bottom, point.y);
    }
    static PageRect nothing() { return { 1e300, 1e300, -1e300, -1e300 }; }
};

/// What a mark looks like.
struct PenInk {
    Rgb color;
    /// Area fills keep their tone on bilevel pages; lines and letters are as black as a monochrome printer makes them.
    bool isArea = false;
    std::shared_ptr<const PatternTile> tile; ///< device pixels; null: solid
    Point anchor; ///< page space: a corner of the tile lies here
    bool isTransparent = true; ///< white pixels of the tile leave the page as it is
};

/// What a plot is drawn on, in page space. Everything is cut to the clip.
class Surface {
public:
    virtual ~Surface() = default;

    /// One clip for lines, and one for everything else.
    virtual void setClip(const PageRect& areas, const PageRect& lines) = 0;
    virtual void stroke(const Path& path, const StrokeStyle& style, const PenInk& ink) = 0;
    virtual void fill(const Path& path, FillRule rule, const PenInk& ink) = 0;
    /// A glyph of a face by its mask; `glyphToPage` takes glyph space (y up) to page space.
    virtual void drawGlyph(const Typeface& face, GlyphId glyph, const Matrix& glyphToPage, const PenInk& ink) = 0;
    /// Anything but Done: nothing more can be drawn.
    virtual RunStatus status() const = 0;
    /// False: outlines do as well as dashes and hatch lines.
    virtual bool needsDetail() const { return true; }
};

/// The points of a path, curves by their control points.
PageRect boundsOf(const Path& path);

} // namespace quillrip::hpgl
