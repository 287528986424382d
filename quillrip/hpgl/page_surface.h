#pragma once

#include "quillrip/fonts/glyph_painter.h"
#include "quillrip/hpgl/host.h"
#include "quillrip/hpgl/surface.h"

#include <memory>

namespace quillrip::hpgl {

/// Draws on the host's page, which begins with the first mark that is not cut away.
class PageSurface final : public Surface {
public:
    PageSurface(Host& host, GlyphPainter& glyphs)
        : m_host(host)
        , m_glyphs(glyphs)
    {
    }

    /// Forgets the canvas: the host may have delivered its page since.
    void leavePage();
    /// Stops the drawing: the page cannot be delivered.
    void fail(RunStatus status) { m_status = status; }

    void setClip(const Rect& areas, const Rect& lines) override;
    void stroke(const Path& path, const StrokeStyle& style, const PenInk& ink) override;
    void fill(const Path& path, FillRule rule, const PenInk& ink) override;
    void drawGlyph(const Typeface& face, GlyphId glyph, const Matrix& glyphToPage, const PenInk& ink) override;
    RunStatus status() const override { return m_status; }
    double pixelPitch() const override;

private:
    /// A clip of the page and, once the page has begun, of its pixels.
    struct Clip {
        Rect page;
        std::shared_ptr<const ClipRegion> device;
    };

    bool begin();
    static bool isVisible(const Rect& bounds, const Clip& clip);
    const PaintState& paintState(const PenInk& ink, Clip& clip);

    Host& m_host;
    GlyphPainter& m_glyphs;
    PageCanvas m_canvas;
    bool m_hasCanvas = false;
    Clip m_areaClip;
    Clip m_lineClip;
    PaintState m_state;
    RunStatus m_status = RunStatus::Done;
};

} // namespace quillrip::hpgl
