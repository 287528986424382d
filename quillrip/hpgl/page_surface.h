#pragma once

#include "quillrip/fonts/glyph_cache.h"
#include "quillrip/hpgl/host.h"
#include "quillrip/hpgl/surface.h"

namespace quillrip::hpgl {

/// Draws on the host's page, which begins with the first mark that is not cut away.
class PageSurface final : public Surface {
public:
    explicit PageSurface(Host& host)
        : m_host(host)
    {
    }

    /// Forgets the canvas: the host may have delivered its page since.
    void leavePage();
    /// Stops the drawing: the page cannot be delivered.
    void fail(RunStatus status) { m_status = status; }

    void setClip(const PageRect& clip) override;
    void stroke(const Path& path, const StrokeStyle& style, const Ink& ink) override;
    void fill(const Path& path, FillRule rule, const Ink& ink) override;
    void drawGlyph(const Typeface& face, GlyphId glyph, const Matrix& glyphToPage, const Ink& ink) override;
    RunStatus status() const override { return m_status; }

private:
    bool begin();
    bool isVisible(const PageRect& bounds) const;
    const PaintState& paintState(const Ink& ink);

    Host& m_host;
    PageCanvas m_canvas;
    bool m_hasCanvas = false;
    PageRect m_clip;
    bool m_clipIsStale = true;
    PaintState m_state;
    GlyphCache m_glyphs;
    RunStatus m_status = RunStatus::Done;
};

} // namespace quillrip::hpgl
