#include "quillrip/hpgl/page_surface.h"

#include "quillrip/base/units.h"

#include <algorithm>
#include <cmath>

namespace quillrip::hpgl {

namespace {

int toPixel(double value) { return static_cast<int>(std::clamp(value, -1e9, 1e9)); }

/// The pixels that a rectangle of the page covers, those at its edges included when more than a hundredth is inside.
PixelRect toPixels(const Rect& rect, const Matrix& pageToDevice)
{
    const Rect device = pageToDevice.boundsOf(rect);
    constexpr double kSliver = 0.01;
    return { toPixel(std::floor(device.left + kSliver)), toPixel(std::floor(device.top + kSliver)),
        toPixel(std::ceil(device.right - kSliver)), toPixel(std::ceil(device.bottom - kSliver)) };
}

} // namespace

void PageSurface::leavePage()
{
    m_hasCanvas = false;
    m_areaClip.device = m_lineClip.device = nullptr;
}

void PageSurface::setClip(const Rect& areas, const Rect& lines)
{
    m_areaClip = { areas, nullptr };
    m_lineClip = { lines, nullptr };
}

bool PageSurface::begin()
{
    if (m_status != RunStatus::Done)
        return false;
    if (!m_hasCanvas) {
        m_status = m_host.beginMark(m_canvas);
        if (m_status != RunStatus::Done || !m_canvas.painter)
            return false;
        m_hasCanvas = true;
    }
    return true;
}

bool PageSurface::isVisible(const Rect& bounds, const Clip& clip)
{
    // Thin lines and points are as wide as a pixel, so a little beyond the clip still shows.
    constexpr double kSlack = 10;
    const Rect& page = clip.page;
    return !page.empty() && bounds.right >= page.left - kSlack && bounds.left <= page.right + kSlack
        && bounds.bottom >= page.top - kSlack && bounds.top <= page.bottom + kSlack;
}

const PaintState& PageSurface::paintState(const PenInk& ink, Clip& clip)
{
    if (!clip.device)
        clip.device = ClipRegion::ofRect(toPixels(clip.page, m_canvas.pageToDevice));
    if (m_state.clip != clip.device)
        m_state.clip = clip.device;
    m_state.rop = m_host.rasterOperation();
    m_state.sourceTransparent = true;
    m_state.patternTransparent = ink.isTransparent;
    m_state.texture.color = ink.color;
    if (m_canvas.format == PixelFormat::Bilevel && !ink.isArea && ink.color != kWhite)
        m_state.texture.color = kBlack;
    if (m_state.texture.tile != ink.tile)
        m_state.texture.tile = ink.tile;
    if (ink.tile) {
        const Point origin = m_canvas.pageToDevice.apply(ink.anchor);
        m_state.texture.originX = toPixel(std::floor(origin.x + 0.5));
        m_state.texture.originY = toPixel(std::floor(origin.y + 0.5));
    }
    return m_state;
}

void PageSurface::stroke(const Path& path, const StrokeStyle& style, const PenInk& ink)
{
    // Caps reach no farther than the pen is wide; miters do, up to their limit.
    const double reach = style.width * std::max(1.0, style.miterLimit);
    if (isVisible(path.bounds().grown(reach), m_lineClip) && begin())
        m_canvas.painter->strokePath(path, m_canvas.pageToDevice, style, paintState(ink, m_lineClip));
}

void PageSurface::fill(const Path& path, FillRule rule, const PenInk& ink)
{
    if (!isVisible(path.bounds(), m_areaClip) || !begin())
        return;
    const PixelRule pixels = ink.isArea && !m_host.isGridCentred() ? PixelRule::Touched : PixelRule::Centre;
    m_canvas.painter->fillPath(path.transformed(m_canvas.pageToDevice), rule, paintState(ink, m_areaClip), pixels);
}

double PageSurface::pixelPitch() const
{
    const PageCanvas canvas = m_hasCanvas ? m_canvas : m_host.previewCanvas();
    return kDecipointsPerInch / std::max({ 1.0, canvas.resolution.x, canvas.resolution.y });
}

void PageSurface::drawGlyph(const Typeface& face, GlyphId glyph, const Matrix& glyphToPage, const PenInk& ink)
{
    // Two ems all round hold every glyph.
    if (!isVisible(glyphToPage.boundsOf({ -2, -2, 3, 3 }), m_areaClip) || !begin())
        return;
    m_glyphs.draw(m_canvas, face, glyph, glyphToPage * m_canvas.pageToDevice, paintState(ink, m_areaClip));
}

} // namespace quillrip::hpgl
