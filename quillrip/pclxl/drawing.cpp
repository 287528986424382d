#include "quillrip/pclxl/drawing.h"

#include "quillrip/raster/compose/raster_operation.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace quillrip::pclxl {

Texture Drawing::textureOf(const Ink& ink)
{
    Texture texture;
    texture.color = ink.color;
    if (ink.kind == Ink::Kind::Pattern) {
        const DeviceTile tile = deviceTileOf(*ink.pattern, ink.patternOrigin,
            ink.patternSize ? *ink.patternSize : ink.pattern->size, state().userToDevice, m_limits.patternBytes);
        if (!tile.tile)
            m_reporter.warn(
                "pclxl.pattern-size", "a raster pattern has no size that can be drawn, it is painted black");
        texture.tile = tile.tile;
        texture.originX = tile.originX;
        texture.originY = tile.originY;
    }
    return texture;
}

PaintState Drawing::paintOf(const Ink& ink)
{
    PaintState paint;
    paint.rop = state().rop;
    // Shapes, strokes and glyphs have no white source of their own: what lies outside is not touched.
    paint.sourceTransparent = true;
    paint.patternTransparent = state().paintTransparent;
    paint.texture = textureOf(ink);
    paint.clip = state().clip.region();
    return paint;
}

const PaintState& Drawing::brushPaint()
{
    if (!m_brushIsValid) {
        m_brushPaint = paintOf(state().brush);
        m_brushIsValid = true;
    }
    return m_brushPaint;
}

const PaintState& Drawing::penPaint()
{
    if (!m_penIsValid) {
        m_penPaint = paintOf(state().pen);
        m_penIsValid = true;
    }
    return m_penPaint;
}

PaintState Drawing::imagePaint(const PixelConverter& converter)
{
    PaintState paint;
    paint.rop = state().rop;
    paint.sourceTransparent = state().sourceTransparent;
    paint.patternTransparent = state().paintTransparent;
    paint.clip = state().clip.region();
    if (converter.hasInk()) {
        // A copy of a two-coloured source is the same as its ink painted in that colour.
        paint.rop = rop::kTextureOrSource;
        paint.texture.color = converter.ink();
    } else if (!state().brush.isNone()) {
        paint.texture = textureOf(state().brush);
    }
    return paint;
}

/// Fill first, then stroke, so that half of the line lies on the filled area.
void Drawing::paint(const Path& userPath)
{
    if (!state().brush.isNone())
        fill(userPath.transformed(state().userToDevice), state().fillRule);
    if (!state().pen.isNone())
        m_page.painter().strokePath(userPath, state().userToDevice, drawableStroke(), penPaint());
}

/// Of a pen far wider than any sheet the dashes cannot be told apart, but each would cover the page once more.
const StrokeStyle& Drawing::drawableStroke()
{
    constexpr double kWidestDashedPen = 20000; // device pixels
    const StrokeStyle& stroke = state().stroke;
    const Matrix& m = state().userToDevice;
    const double scale = std::max(std::hypot(m.a, m.b), std::hypot(m.c, m.d));
    if (stroke.dashes.empty() || stroke.width * scale < kWidestDashedPen)
        return stroke;
    m_plainStroke = stroke;
    m_plainStroke.dashes.clear();
    return m_plainStroke;
}

void Drawing::fill(const Path& devicePath, FillRule rule)
{
    if (fillCell(devicePath, rule))
        return;
    m_page.painter().fillPath(devicePath, rule, brushPaint());
}

/// Copying the texture is how drivers send the cells of a picture that stands askew: neighbours have to meet as pixels
/// do, since through smooth edges the page below would shine.
bool Drawing::fillCell(const Path& devicePath, FillRule rule)
{
    if (state().rop != rop::kTexture || m_page.format() == PixelFormat::Bilevel || devicePath.empty())
        return false;
    const Rect box = devicePath.bounds();
    const auto pixel = [](double v) { return static_cast<int>(std::clamp(v, -1e8, 1e8)); };
    const PixelRect pixels { pixel(std::floor(box.left)), pixel(std::floor(box.top)), pixel(std::ceil(box.right)) + 1,
        pixel(std::ceil(box.bottom)) + 1 };
    const PixelRect bounds = pixels.intersected(m_page.bounds());
    if (bounds.empty())
        return true;
    std::shared_ptr<const ClipRegion> region = ClipRegion::ofPath(devicePath, rule, bounds, m_limits.work.get());
    if (region->bounds().empty())
        return false; // thinner than a pixel
    PaintState paint = brushPaint();
    if (paint.clip)
        region = paint.clip->intersected(*region);
    const PixelRect marked = region->bounds();
    paint.clip = std::move(region);
    m_page.painter().fillRect(marked, paint);
    return true;
}

} // namespace quillrip::pclxl
