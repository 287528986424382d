#pragma once

#include "quillrip/hpgl/surface.h"

#include <functional>

namespace quillrip::hpgl {

/// Draws nothing and tells where every mark would be, as far as the clip lets it be seen.
class ExtentSurface final : public Surface {
public:
    std::function<void(const PageRect&)> onMark;

    void setClip(const PageRect&, const PageRect& lines) override { m_clip = lines; }
    void stroke(const Path& path, const StrokeStyle& style, const PenInk&) override
    {
        mark(boundsOf(path), style.width / 2);
    }
    void fill(const Path& path, FillRule, const PenInk&) override { mark(boundsOf(path), 0); }
    void drawGlyph(const Typeface&, GlyphId, const Matrix& glyphToPage, const PenInk&) override
    {
        // Hardly a glyph is larger than its em.
        PageRect bounds = PageRect::nothing();
        for (const Point corner : { Point { 0, -0.2 }, Point { 0.6, -0.2 }, Point { 0, 0.7 }, Point { 0.6, 0.7 } })
            bounds.include(glyphToPage.apply(corner));
        mark(bounds, 0);
    }
    RunStatus status() const override { return RunStatus::Done; }
    bool needsDetail() const override { return false; }

private:
    void mark(const PageRect& bounds, double reach) const
    {
        const PageRect grown { bounds.left - reach, bounds.top - reach, bounds.right + reach, bounds.bottom + reach };
        const PageRect seen = grown.intersected(m_clip);
        if (seen.left <= seen.right && seen.top <= seen.bottom)
            onMark(seen);
    }

    PageRect m_clip { -1e12, -1e12, 1e12, 1e12 };
};

} // namespace quillrip::hpgl
