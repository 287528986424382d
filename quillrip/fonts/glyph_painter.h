#pragma once

#include "quillrip/fonts/pixels/glyph_cache.h"
#include "quillrip/raster/page_device.h"

#include <functional>

namespace quillrip {

/// Draws glyphs on pages, for all languages: small ones by masks that are kept, large ones as filled outlines. One
/// painter serves all pages of a job, which share the masks.
class GlyphPainter {
public:
    /// How the outline of a large glyph, in device pixels, is filled where the language has a way of its own.
    using OutlineFill = std::function<void(const Path& devicePath)>;

    /// `glyphToDevice` takes glyph space (y up) to device pixels, with its translation at the reference point. Nothing
    /// is drawn for kNoGlyph, for glyphs without marks, and for a matrix that is singular, no number, or farther than
    /// ten million pixels away.
    void draw(const PageCanvas& canvas, const Typeface& face, GlyphId glyph, const Matrix& glyphToDevice,
        const PaintState& state, const GlyphStyle& style = {}, const OutlineFill& fill = {});

    /// Appends the glyph's outline, taken through any matrix, to a path. False when it has none: a bitmap, a blank, or
    /// one that draw() would not draw either.
    static bool appendOutline(const Typeface& face, GlyphId glyph, const Matrix& glyphToPath, Path& path);

    const GlyphCache& cache() const { return m_cache; }

private:
    GlyphCache m_cache;
};

} // namespace quillrip
