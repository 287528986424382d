#include "quillrip/pclxl/machine.h"

#include <algorithm>
#include <cmath>

namespace quillrip::pclxl {

namespace {

constexpr double kRadiansPerDegree = 0.017453292519943295;
constexpr double kLargestAngle = 360;

/// The transformation set last is applied last.
void moveToEnd(CharacterState& character, CharTransform which)
{
    auto& order = character.order;
    std::rotate(
        std::find(order.begin(), order.end(), which), std::find(order.begin(), order.end(), which) + 1, order.end());
}

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

Status Machine::setFont()
{
    CharacterState& character = m_state.character;
    if (m_operands.has(Attribute::PCLSelectFont)) {
        SelectionContext context;
        context.orientation = m_page.sheet.orientation;
        character.font = m_fonts.selectByEscapeSequence(m_operands.array(Attribute::PCLSelectFont).bytes(), context);
        character.size = character.font.height / 72 * m_session.unitsPerInchY;
        return {};
    }
    for (const Attribute attribute : { Attribute::CharSize, Attribute::SymbolSet })
        if (!m_operands.has(attribute))
            return { Error::MissingAttribute, attribute };
    const double size = m_operands.number(Attribute::CharSize);
    if (!(size > 0))
        return { Error::IllegalAttributeValue, Attribute::CharSize };
    const int symbolSet = m_operands.integer(Attribute::SymbolSet);
    if (symbolSet < 0 || symbolSet > 0xFFFF)
        return { Error::IllegalAttributeValue, Attribute::SymbolSet };
    const std::string name = fontName();
    if (const std::shared_ptr<SoftFont> font = softFont(name)) {
        character.font = {};
        character.font.face = font;
    } else {
        character.font = m_fonts.selectByName(name, static_cast<std::uint16_t>(symbolSet), fontReporter());
    }
    if (!character.font)
        return { Error::FontUndefined, Attribute::FontName };
    character.size = size;
    return {};
}

Status Machine::setCharAngle()
{
    const double angle = m_operands.number(Attribute::CharAngle);
    if (std::abs(angle) > kLargestAngle)
        return { Error::IllegalAttributeValue, Attribute::CharAngle };
    m_state.character.angle = angle;
    moveToEnd(m_state.character, CharTransform::Angle);
    return {};
}

Status Machine::setCharScale()
{
    m_state.character.scale = m_operands.point(Attribute::CharScale);
    moveToEnd(m_state.character, CharTransform::Scale);
    return {};
}

Status Machine::setCharShear()
{
    m_state.character.shear = m_operands.point(Attribute::CharShear);
    moveToEnd(m_state.character, CharTransform::Shear);
    return {};
}

Status Machine::setCharBoldValue()
{
    const double bold = m_operands.number(Attribute::CharBoldValue);
    if (bold < 0 || bold > 1)
        return { Error::IllegalAttributeValue, Attribute::CharBoldValue };
    m_state.character.bold = bold;
    return {};
}

Status Machine::setCharAttributes()
{
    m_state.character.isVertical = m_operands.integer(Attribute::WritingMode) == 1;
    return {};
}

Status Machine::setCharSubMode()
{
    const ByteView modes = m_operands.array(Attribute::CharSubModeArray).bytes();
    for (const std::uint8_t mode : modes)
        if (mode > 1)
            return { Error::IllegalAttributeValue, Attribute::CharSubModeArray };
    m_state.character.substitutesVertically = std::find(modes.begin(), modes.end(), std::uint8_t { 1 }) != modes.end();
    return {};
}

/// Glyph space (y up, one unit the em or an inch) to device pixels, without the place on the page.
Matrix Machine::characterMatrix(bool isTurned) const
{
    const CharacterState& character = m_state.character;
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
    Matrix toDevice = m_state.userToDevice;
    if (!face.traits().isScalable) {
        // Bitmaps have a resolution of their own; of the page's matrix only the direction counts.
        const Resolution dpi = m_page.canvas.resolution;
        toDevice = Matrix::quarterTurns(4 - m_state.quarterTurns) * Matrix::scaling(dpi.x, dpi.y);
    }
    toDevice.e = toDevice.f = 0;
    return m * toDevice;
}

Status Machine::text() { return showText(TextUse::Paint); }

Status Machine::textPath() { return showText(TextUse::Outline); }

/// The cursor moves by the spacing arrays alone; the widths in the font do not count.
Status Machine::showText(TextUse use)
{
    const CharacterState& character = m_state.character;
    if (!character.font)
        return Error::NoCurrentFont;
    if (!m_state.cursor)
        return Error::CurrentCursorUndefined;
    const Typeface& face = *character.font.face;
    if (use == TextUse::Outline && !face.traits().isScalable)
        return { Error::IllegalOperatorSequence, Attribute::TextData };
    const ArrayView codes = m_operands.array(Attribute::TextData);
    const ArrayView advancesX = m_operands.array(Attribute::XSpacingData);
    const ArrayView advancesY = m_operands.array(Attribute::YSpacingData);
    for (const auto& [advances, attribute] :
        { std::pair { &advancesX, Attribute::XSpacingData }, std::pair { &advancesY, Attribute::YSpacingData } })
        if (m_operands.has(attribute) && advances->size() != codes.size())
            return { Error::IllegalArraySize, attribute };

    const bool isVisible = use == TextUse::Outline || m_state.brush.kind != Ink::Kind::None;
    const Matrix upright = characterMatrix(false);
    const Matrix turned = character.isVertical ? characterMatrix(true) : upright;
    Point cursor = *m_state.cursor;
    for (std::size_t i = 0; i < codes.size(); ++i) {
        if (isVisible) {
            const Font::Lookup found = character.font.find(codes.code(i));
            GlyphId glyph = found.glyph;
            if (glyph == kNoGlyph) {
                warn("pclxl.undefined-character", "text holds codes that the font has no character for");
            } else {
                const bool usesForms = character.isVertical || character.substitutesVertically;
                const GlyphId form = usesForms ? face.verticalForm(glyph) : glyph;
                const bool isTurned = character.isVertical && form == glyph && !face.staysUpright(found.faceCode);
                Matrix glyphToDevice = isTurned ? turned : upright;
                const Point place = m_state.userToDevice.apply(cursor);
                glyphToDevice.e += place.x;
                glyphToDevice.f += place.y;
                const Status status = showGlyph(form, glyphToDevice, use);
                if (!status.isOk())
                    return status;
            }
        }
        if (!advancesX.empty())
            cursor.x += advancesX.at(i);
        if (!advancesY.empty())
            cursor.y += advancesY.at(i);
    }
    if (!std::isfinite(cursor.x) || !std::isfinite(cursor.y))
        return { Error::IllegalAttributeValue, Attribute::XSpacingData };
    m_state.cursor = cursor;
    m_state.pathIsOpenAtCursor = false;
    return {};
}

Status Machine::showGlyph(GlyphId glyph, const Matrix& glyphToDevice, TextUse use)
{
    const CharacterState& character = m_state.character;
    const Typeface& face = *character.font.face;
    if (!glyphToDevice.isInvertible() || std::abs(glyphToDevice.e) > 1e6 || std::abs(glyphToDevice.f) > 1e6)
        return {};
    if (use == TextUse::Outline) {
        Path outline;
        if (!face.outline(glyph, outline))
            return {};
        const Status status = checkPathSize(outline.pointCount());
        if (status.isOk())
            m_state.path.edit().append(outline.transformed(glyphToDevice * m_state.userToDevice.inverted()));
        return status;
    }
    if (face.traits().isScalable && GlyphCache::isTooLarge(face, glyphToDevice)) {
        Path outline;
        if (!face.outline(glyph, outline))
            return {};
        fillDevicePath(outline.transformed(glyphToDevice), FillRule::NonZero);
        if (character.bold > 0) {
            StrokeStyle pen;
            pen.width = character.bold;
            pen.join = LineJoin::Round;
            m_page.canvas.painter->strokePath(outline, glyphToDevice, pen, brushPaint());
        }
        return {};
    }
    const GlyphMask::Depth depth
        = m_page.canvas.format == PixelFormat::Bilevel ? GlyphMask::Depth::Bits : GlyphMask::Depth::Coverage;
    GlyphStyle style;
    style.bold = character.bold;
    const PlacedGlyph placed = m_glyphs.place(face, glyph, glyphToDevice, depth, style);
    if (placed.mask)
        m_page.canvas.painter->drawMask(*placed.mask, placed.x, placed.y, brushPaint());
    return {};
}

} // namespace quillrip::pclxl
