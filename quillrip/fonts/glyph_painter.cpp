#include "quillrip/fonts/glyph_painter.h"

#include "quillrip/fonts/pixels/outline_raster.h"

#include <cmath>

namespace quillrip {

namespace {

/// Far beyond every page; places farther away do not fit the pixel counts.
constexpr double kFarAway = 1e7;

bool isDrawable(GlyphId glyph, const Matrix& m)
{
    return glyph != kNoGlyph && m.isInvertible() && std::abs(m.e) <= kFarAway && std::abs(m.f) <= kFarAway;
}

} // namespace

void GlyphPainter::draw(const PageCanvas& canvas, const Typeface& face, GlyphId glyph, const Matrix& glyphToDevice,
    const PaintState& state, const GlyphStyle& style, const OutlineFill& fill)
{
    if (!isDrawable(glyph, glyphToDevice))
        return;
    if (GlyphCache::isTooLarge(face, glyphToDevice)) {
        Path outline;
        if (!face.outline(glyph, outline))
            return;
        if (style.bold > 0)
            outline = emboldened(outline, style.bold, style.bold);
        const Path devicePath = outline.transformed(glyphToDevice);
        if (fill)
            fill(devicePath);
        else
            canvas.painter->fillPath(devicePath, FillRule::NonZero, state);
        return;
    }
    const GlyphMask::Depth depth
        = canvas.format == PixelFormat::Bilevel ? GlyphMask::Depth::Bits : GlyphMask::Depth::Coverage;
    const PlacedGlyph placed = m_cache.place(face, glyph, glyphToDevice, depth, style);
    if (placed.mask)
        canvas.painter->drawMask(*placed.mask, placed.x, placed.y, state);
}

bool GlyphPainter::appendOutline(const Typeface& face, GlyphId glyph, const Matrix& glyphToPath, Path& path)
{
    Path outline;
    if (!isDrawable(glyph, glyphToPath) || !face.outline(glyph, outline))
        return false;
    path.append(outline.transformed(glyphToPath));
    return true;
}

} // namespace quillrip
