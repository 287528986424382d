#pragma once

#include "quillrip/hpgl/surface.h"

#include <functional>

namespace quillrip::hpgl {

/// Draws nothing and tells where every mark would be, as far as the clip lets it be seen.
class ExtentSurface final : public Surface {
public:
    std::function<void(const Rect&)> onMark;

    void setClip(const Rect&, const Rect& lines) override { m_clip = lines; }
    void stroke(const Path& path, const StrokeStyle& style, const PenInk&) override
    {
        mark(path.bounds(), style.width / 2);
    }
    void fill(const Path& path, FillRule, const PenInk&) override { mark(path.bounds(), 0); }
    void drawGlyph(const Typeface&, GlyphId, const Matrix& glyphToPage, const PenInk&) override
    {
        // Hardly a glyph is larger than its em.
        mark(glyphToPage.boundsOf({ 0, -0.2, 0.6, 0.7 }), 0);
    }
    RunStatus status() const override { return RunStatus::Done; }
    bool needsDetail() const override { return false; }

private:
    void mark(const Rect& bounds, double reach) const
    {
        const Rect seen = bounds.grown(reach).intersected(m_clip);
        if (!seen.isNothing())
            onMark(seen);
    }

    Rect m_clip { -1e12, -1e12, 1e12, 1e12 };
};

} // namespace quillrip::hpgl
