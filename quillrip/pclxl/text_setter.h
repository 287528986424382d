#pragma once

#include "quillrip/base/limits.h"
#include "quillrip/base/reporter.h"
#include "quillrip/fonts/glyph_painter.h"
#include "quillrip/pclxl/attribute_list.h"
#include "quillrip/pclxl/drawing.h"
#include "quillrip/pclxl/graphics_stack.h"
#include "quillrip/pclxl/page.h"
#include "quillrip/pclxl/status.h"

#include <cstdint>

namespace quillrip::pclxl {

/// Character codes and how the cursor moves behind each, in user units.
struct TextRun {
    ArrayView codes;
    ArrayView advancesX; ///< empty: none
    ArrayView advancesY;
};

/// Sets text at the cursor in the font of the graphics state: onto the page, or as outlines into the path.
class TextSetter {
public:
    TextSetter(Page& page, GraphicsStack& graphics, Drawing& drawing, GlyphPainter& glyphs, const Limits& limits,
        Reporter& reporter)
        : m_page(page)
        , m_graphics(graphics)
        , m_drawing(drawing)
        , m_glyphs(glyphs)
        , m_limits(limits)
        , m_reporter(reporter)
    {
    }

    enum class Use { Paint, Outline };
    /// There has to be a font and a cursor. The cursor moves by the advances alone; the widths in the font do not
    /// count. IllegalAttributeValue when it leaves all numbers, LimitExceeded when the path grows too long.
    Status set(const TextRun& run, Use use);

private:
    GraphicsState& state() { return m_graphics.state(); }
    Matrix characterMatrix(bool isTurned);
    Status setCode(std::uint32_t code, const Matrix& upright, const Matrix& turned, Point at, Use use);
    Status addOutline(GlyphId glyph, const Matrix& glyphToDevice);
    void drawGlyph(GlyphId glyph, const Matrix& glyphToDevice);

    Page& m_page;
    GraphicsStack& m_graphics;
    Drawing& m_drawing;
    GlyphPainter& m_glyphs;
    const Limits& m_limits;
    Reporter& m_reporter;
};

} // namespace quillrip::pclxl
