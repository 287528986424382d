#pragma once

#include "quillrip/base/limits.h"
#include "quillrip/base/reporter.h"
#include "quillrip/pclxl/graphics_stack.h"
#include "quillrip/pclxl/page.h"
#include "quillrip/pclxl/pixel_converter.h"
#include "quillrip/raster/compose/paint_state.h"
#include "quillrip/raster/paths/path.h"
#include "quillrip/raster/paths/stroke_style.h"

namespace quillrip::pclxl {

/// Puts marks on the open page with the brush, the pen, the clip and the raster operation of the graphics state.
class Drawing {
public:
    Drawing(Page& page, GraphicsStack& graphics, const Limits& limits, Reporter& reporter)
        : m_page(page)
        , m_graphics(graphics)
        , m_limits(limits)
        , m_reporter(reporter)
    {
    }

    /// To be told when brush, pen, clip, matrix, raster operation or paint transparency have changed.
    void stateChanged() { m_brushIsValid = m_penIsValid = false; }

    /// Fills a path of user space and strokes it, as far as brush and pen are no null ones.
    void paint(const Path& userPath);
    /// With the brush, whatever kind it is.
    void fill(const Path& devicePath, FillRule rule);
    const PaintState& brushPaint();
    /// How an image of the converter's pixels is painted; the brush is its texture.
    PaintState imagePaint(const PixelConverter& converter);

private:
    const GraphicsState& state() const { return m_graphics.state(); }
    const PaintState& penPaint();
    PaintState paintOf(const Ink& ink);
    Texture textureOf(const Ink& ink);
    const StrokeStyle& drawableStroke();
    bool fillCell(const Path& devicePath, FillRule rule);

    Page& m_page;
    GraphicsStack& m_graphics;
    const Limits& m_limits;
    Reporter& m_reporter;
    PaintState m_brushPaint;
    PaintState m_penPaint;
    bool m_brushIsValid = false;
    bool m_penIsValid = false;
    StrokeStyle m_plainStroke; ///< the state's stroke without its dashes, for widths that hide them
};

} // namespace quillrip::pclxl
