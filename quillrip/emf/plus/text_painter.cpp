#include "quillrip/emf/plus/text_painter.h"

#include "quillrip/emf/plus/shapes.h"
#include "quillrip/fonts/glyph_painter.h"

namespace quillrip::emf::plus {

SizedFont TextPainter::select(const FontObject& object) const
{
    constexpr int bold = 700;
    constexpr int regular = 400;
    WindowsFontRequest request;
    request.face = object.family;
    request.weight = object.isBold ? bold : regular;
    request.isItalic = object.isItalic;
    SizedFont font;
    font.font = m_canvas.host().fonts.select(request, m_reporter);
    font.em = object.emSize;
    if (object.unit != Unit::World) {
        // Sizes with a length of their own stay what they are whatever the page counts in.
        const GraphicsState& state = m_canvas.state();
        const LogicalDevice& device = m_canvas.device();
        const double pageUnit = device.pixelsDown(state.pageUnit) * state.pageScale;
        font.em *= pageUnit > 0 ? device.pixelsDown(object.unit) / pageUnit : 1;
    }
    font.isUnderlined = object.isUnderlined;
    font.isStruckOut = object.isStruckOut;
    return font;
}

void TextPainter::draw(const SizedFont& font, const std::vector<TextGlyph>& glyphs, const Matrix& shape,
    const Paint& paint, const TextPlace& place) const
{
    const auto painting = paintState(paint, place);
    if (!painting)
        return;
    const Host& host = m_canvas.host();
    const PageCanvas page { &host.painter, Matrix(), host.format, {} };
    Matrix turned = shape;
    turned.e = turned.f = 0;
    const Matrix toDevice = place.toWorld * m_canvas.worldToDevice();
    for (const TextGlyph& glyph : glyphs) {
        if (!glyph.glyph.face)
            continue;
        const Matrix glyphSpace
            = Matrix { font.font.stretch(), 0, glyph.glyph.slant, 1, 0, 0 } * Matrix::scaling(font.em, -font.em);
        const Matrix matrix = Matrix::translation(glyph.glyph.shift.x, glyph.glyph.shift.y) * glyphSpace * turned
            * Matrix::translation(glyph.at.x, glyph.at.y) * toDevice;
        host.glyphs.draw(page, *glyph.glyph.face, glyph.glyph.id, matrix, *painting, { glyph.glyph.bold });
    }
}

void TextPainter::underline(
    const SizedFont& font, Point start, double length, const Paint& paint, const TextPlace& place) const
{
    const WindowsFontMetrics& metrics = font.font.metrics();
    bar({ start.x, start.y - metrics.underlineTop * font.em, length, metrics.underlineThickness * font.em }, paint,
        place);
}

void TextPainter::strikeOut(
    const SizedFont& font, Point start, double length, const Paint& paint, const TextPlace& place) const
{
    const WindowsFontMetrics& metrics = font.font.metrics();
    bar({ start.x, start.y - metrics.strikeoutTop * font.em, length, metrics.strikeoutThickness * font.em }, paint,
        place);
}

void TextPainter::bar(const RectF& rect, const Paint& paint, const TextPlace& place) const
{
    if (const auto painting = paintState(paint, place))
        m_canvas.host().painter.fillPath(
            rectanglePath(rect).transformed(place.toWorld * m_canvas.worldToDevice()), FillRule::NonZero, *painting);
}

std::optional<PaintState> TextPainter::paintState(const Paint& paint, const TextPlace& place) const
{
    auto painting = m_canvas.paintState(paint);
    if (painting)
        painting->clip = combine(painting->clip, place.within, CombineMode::Intersect, m_canvas.pageBounds());
    return painting;
}

} // namespace quillrip::emf::plus
