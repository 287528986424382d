#include "quillrip/pclxl/text_setter.h"

#include "quillrip/base/units.h"

#include <cmath>
#include <cstdint>

namespace quillrip::pclxl {

namespace {

constexpr double kFarthestPlace = 1e6; ///< device pixels; no glyph beyond it reaches a page

Matrix rotation(double degrees)
{
    const double quarters = degrees / 90;
    if (quarters == std::floor(quarters))
        return Matrix::quarterTurns(static_cast<int>(quarters) & 3);
    const double c = std::cos(degrees * kRadiansPerDegree);
    const double s = std::sin(degrees * kRadiansPerDegree);
    return { c, s, -s, c, 0, 0 };
}

} // namespace

/// Glyph space (y up, one unit the em or an inch) to device pixels, without the place on the page.
Matrix TextSetter::characterMatrix(bool isTurned)
{
    const CharacterState& character = state().character;
    const Typeface& face = *character.font.face;
    Matrix m;
    if (isTurned) {
        // The em box is turned about its middle: its top comes first along the line.
        const double descender = face.verticalDescender();
        m = { 0, 1, -1, 0, 1 - descender, -descender };
    }
    if (face.traits().isScalable)
        m = m * Matrix::scaling(character.size, character.size);
    for (const CharTransform transform : character.order) {
        switch (transform) {
        case CharTransform::Scale:
            m = m * Matrix::scaling(character.scale.x, character.scale.y);
            break;
        case CharTransform::Shear:
            m = m * Matrix { 1, character.shear.y, character.shear.x, 1, 0, 0 };
            break;
        case CharTransform::Angle:
            if (character.angle != 0)
                m = m * rotation(character.angle);
            break;
        }
    }
    m = m * Matrix::scaling(1, -1);
    Matrix toDevice = state().userToDevice;
    if (!face.traits().isScalable) {
        // Bitmaps have a resolution of their own; of the page's matrix only the direction counts.
        const Resolution dpi = m_page.resolution();
        toDevice = Matrix::quarterTurns(4 - state().quarterTurns) * Matrix::scaling(dpi.x, dpi.y);
    }
    toDevice.e = toDevice.f = 0;
    return m * toDevice;
}

Status TextSetter::set(const TextRun& run, Use use)
{
    const bool isVisible = use == Use::Outline || !state().brush.isNone();
    const Matrix upright = characterMatrix(false);
    const Matrix turned = state().character.isVertical ? characterMatrix(true) : upright;
    Point cursor = *state().path.cursor();
    for (std::size_t i = 0; i < run.codes.size(); ++i) {
        if (isVisible) {
            const Status status = setCode(run.codes.code(i), upright, turned, cursor, use);
            if (!status.isOk())
                return status;
        }
        if (!run.advancesX.empty())
            cursor.x += run.advancesX.at(i);
        if (!run.advancesY.empty())
            cursor.y += run.advancesY.at(i);
    }
    if (!std::isfinite(cursor.x) || !std::isfinite(cursor.y))
        return { Error::IllegalAttributeValue, Attribute::XSpacingData };
    state().path.setCursor(cursor);
    return {};
}

Status TextSetter::setCode(std::uint32_t code, const Matrix& upright, const Matrix& turned, Point at, Use use)
{
    const CharacterState& character = state().character;
    const Typeface& face = *character.font.face;
    const Font::Lookup found = character.font.find(code);
    const GlyphId glyph = found.glyph;
    if (glyph == kNoGlyph) {
        m_reporter.warn("pclxl.undefined-character", "text holds codes that the font has no character for");
        return {};
    }
    const bool usesForms = character.isVertical || character.substitutesVertically;
    const GlyphId form = usesForms ? face.verticalForm(glyph) : glyph;
    const bool isTurned = character.isVertical && form == glyph && !face.staysUpright(found.faceCode);
    Matrix glyphToDevice = isTurned ? turned : upright;
    const Point place = state().userToDevice.apply(at);
    glyphToDevice.e += place.x;
    glyphToDevice.f += place.y;
    if (!glyphToDevice.isInvertible() || std::abs(glyphToDevice.e) > kFarthestPlace
        || std::abs(glyphToDevice.f) > kFarthestPlace)
        return {};
    if (use == Use::Outline)
        return addOutline(form, glyphToDevice);
    drawGlyph(form, glyphToDevice);
    return {};
}

Status TextSetter::addOutline(GlyphId glyph, const Matrix& glyphToDevice)
{
    Path outline;
    const Matrix glyphToUser = glyphToDevice * state().userToDevice.inverted();
    if (!GlyphPainter::appendOutline(*state().character.font.face, glyph, glyphToUser, outline))
        return {};
    return state().path.append(outline, m_limits.pathPoints);
}

void TextSetter::drawGlyph(GlyphId glyph, const Matrix& glyphToDevice)
{
    GlyphStyle style;
    style.bold = state().character.bold;
    m_glyphs.draw(m_page.canvas(), *state().character.font.face, glyph, glyphToDevice, m_drawing.brushPaint(), style,
        [this](const Path& devicePath) { m_drawing.fill(devicePath, FillRule::NonZero); });
}

} // namespace quillrip::pclxl
