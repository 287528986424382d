// The character group without the label itself: fonts, sizes, directions.

#include "quillrip/hpgl/label.h"
#include "quillrip/hpgl/machine.h"
#include "quillrip/hpgl/stick_font.h"

#include <algorithm>
#include <cmath>

namespace quillrip::hpgl {

void Machine::defineFont(FontAttributes& attributes)
{
    if (m_operands.empty()) {
        attributes = FontAttributes {};
        return;
    }
    attributes.id = -1;
    for (std::size_t i = 0; i + 1 < operandCount(); i += 2) {
        const int value = clampedInteger(i + 1);
        switch (clampedInteger(i)) {
        case 1:
            if (value >= 0)
                attributes.symbolSet = value;
            break;
        case 2:
            if (value == 0 || value == 1)
                attributes.isProportional = value == 1;
            break;
        case 3:
            if (operand(i + 1) > 0)
                attributes.pitch = clampedReal(i + 1);
            break;
        case 4:
            if (operand(i + 1) > 0)
                attributes.height = clampedReal(i + 1);
            break;
        case 5:
            if (value >= 0)
                attributes.style = value;
            break;
        case 6:
            if ((value >= -7 && value <= 7) || value == kPenWeight)
                attributes.weight = value;
            break;
        case 7:
            if (value >= 0)
                attributes.typeface = value;
            break;
        default:
            break;
        }
    }
}

void Machine::standardFont() { defineFont(m_state.text.standard); }

void Machine::alternateFont() { defineFont(m_state.text.alternate); }

void Machine::selectStandard() { m_state.text.usesAlternate = false; }

void Machine::selectAlternate() { m_state.text.usesAlternate = true; }

/// FI and FN: a soft font of the host by its number.
void Machine::fontById(FontAttributes& attributes)
{
    if (m_operands.empty())
        return;
    const int id = clampedInteger(0);
    const auto font = m_fonts.softFonts().find({ id, {} });
    if (!font)
        return;
    attributes.id = id;
    if (!font->traits().isScalable)
        m_state.text.allowsBitmapFonts = true;
}

void Machine::primaryFont() { fontById(m_state.text.standard); }

void Machine::secondaryFont() { fontById(m_state.text.alternate); }

/// HP-GL's numbered character sets are national variants of ASCII; Roman-8 holds the letters of them all.
void Machine::standardCharacterSet() { m_state.text.standard.symbolSet = kRoman8; }

void Machine::alternateCharacterSet() { m_state.text.alternate.symbolSet = kRoman8; }

void Machine::scalableOrBitmap()
{
    const int mode = clampedInteger(0, 0);
    if (mode == 0 || mode == 1)
        m_state.text.allowsBitmapFonts = mode == 1;
}

void Machine::labelMode()
{
    const int mode = clampedInteger(0, 0);
    if (mode >= 0 && mode <= 3)
        m_state.text.labelMode = mode;
}

/// DT takes the very next byte, whatever it is.
void Machine::defineTerminator()
{
    TextState& text = m_state.text;
    const int byte = m_input->peek();
    if (byte < 0 || byte == kEscape)
        return;
    m_input->get();
    if (byte == ';') {
        text.terminator = TextState {}.terminator;
        text.printsTerminator = TextState {}.printsTerminator;
        return;
    }
    Lexer(*m_input).readNumbers(m_operands, 1);
    if (m_input->peek() == ';')
        m_input->get();
    const int mode = clampedInteger(0, 1);
    if (byte == 0 || byte == '\n' || m_isPolygonMode || (mode != 0 && mode != 1))
        return;
    text.terminator = static_cast<std::uint8_t>(byte);
    text.printsTerminator = mode == 0;
}

void Machine::transparentData()
{
    const int mode = clampedInteger(0, 0);
    if (mode == 0 || mode == 1)
        m_state.text.isTransparent = mode == 1;
}

void Machine::absoluteSize()
{
    CharacterSize& size = m_state.text.size;
    if (m_operands.empty())
        size = CharacterSize {};
    else if (operandCount() >= 2 && clampedReal(0) != 0 && clampedReal(1) != 0)
        size = { CharacterSize::Kind::Centimetres, clampedReal(0), clampedReal(1) };
}

void Machine::relativeSize()
{
    constexpr double kDefaultWidth = 0.75;
    constexpr double kDefaultHeight = 1.5;
    CharacterSize& size = m_state.text.size;
    if (m_operands.empty())
        size = { CharacterSize::Kind::Percent, kDefaultWidth, kDefaultHeight };
    else if (operandCount() >= 2 && clampedReal(0) != 0 && clampedReal(1) != 0)
        size = { CharacterSize::Kind::Percent, clampedReal(0), clampedReal(1) };
}

void Machine::slant() { m_state.text.slant = clampedReal(0, 0); }

void Machine::setDirection(bool isRelative)
{
    TextState& text = m_state.text;
    if (m_operands.empty()) {
        text.run = 1;
        text.rise = 0;
    } else if (operandCount() < 2 || (clampedReal(0) == 0 && clampedReal(1) == 0)) {
        return;
    } else {
        text.run = clampedReal(0);
        text.rise = clampedReal(1);
    }
    text.directionIsRelative = isRelative;
    m_state.carriageReturn = m_state.pen;
}

void Machine::absoluteDirection() { setDirection(false); }

void Machine::relativeDirection() { setDirection(true); }

void Machine::verticalPath()
{
    const int path = clampedInteger(0, 0);
    const int line = clampedInteger(1, 0);
    if (path < 0 || path > 3 || line < 0 || line > 1)
        return;
    m_state.text.path = path;
    m_state.text.lineFeedsLeft = line == 1;
    m_state.carriageReturn = m_state.pen;
}

void Machine::extraSpace()
{
    m_state.text.extraWidth = clampedReal(0, 0);
    m_state.text.extraHeight = clampedReal(1, 0);
}

void Machine::labelOrigin()
{
    const int origin = clampedInteger(0, 1);
    if (origin < 1 || origin > 21 || origin == 10 || origin == 20)
        return;
    m_state.text.origin = origin;
    m_state.carriageReturn = m_state.pen;
}

void Machine::characterFill()
{
    const int mode = clampedInteger(0, 0);
    if (mode < 0 || mode > 3)
        return;
    TextState& text = m_state.text;
    text.fillMode = mode;
    text.hasEdgePen = operandCount() >= 2;
    text.edgePen = std::max(0, clampedInteger(1, 0));
}

/// The font that labels are set in; without a typeface for the stroked ones.
const Font& Machine::currentFont()
{
    const TextState& text = m_state.text;
    const FontAttributes& wanted = text.usesAlternate ? text.alternate : text.standard;
    // Soft fonts may have been replaced since, so only built-in ones are remembered.
    if (m_hasFont && wanted.id < 0 && wanted == m_fontAttributes && text.allowsBitmapFonts == m_fontAllowsBitmaps)
        return m_font;
    m_hasFont = true;
    m_fontAttributes = wanted;
    m_fontAllowsBitmaps = text.allowsBitmapFonts;

    FontRequest request;
    request.symbolSet = static_cast<std::uint16_t>(wanted.symbolSet);
    request.isProportional = wanted.isProportional;
    request.pitch = wanted.pitch;
    request.height = wanted.height;
    request.style = static_cast<std::uint16_t>(wanted.style);
    request.weight = wanted.weight == kPenWeight ? 0 : wanted.weight;
    request.family = static_cast<std::uint16_t>(wanted.typeface);
    SelectionContext context = m_host.fontContext();
    context.allowsBitmapFonts = text.allowsBitmapFonts;
    if (wanted.id >= 0) {
        m_font = m_fonts.selectById({ wanted.id, {} }, request, context);
        if (m_font)
            return m_font;
    }
    if (isStrokedTypeface(wanted.typeface)) {
        m_font = Font {};
        m_font.symbolSet = m_fonts.symbolSet(request.symbolSet);
        m_font.height = wanted.height;
        m_font.pitch = wanted.pitch;
    } else {
        m_font = m_fonts.select(request, context);
    }
    return m_font;
}

LabelMetrics Machine::labelMetrics()
{
    const TextState& text = m_state.text;
    LabelMetrics m;
    m.font = currentFont();
    const FontAttributes& wanted = text.usesAlternate ? text.alternate : text.standard;

    Point direction { text.run, text.rise };
    if (text.directionIsRelative) {
        direction.x *= m_state.p2.x - m_state.p1.x;
        direction.y *= m_state.p2.y - m_state.p1.y;
    }
    const double length = std::hypot(direction.x, direction.y);
    m.along = length > 0 ? direction * (1 / length) : Point { 1, 0 };
    m.up = { -m.along.y, m.along.x };
    m.slant = text.slant;

    double width = 0; // of a character, and height of a capital, where they are given
    double height = 0;
    const bool isSized = text.size.kind != CharacterSize::Kind::FromFont;
    constexpr double kUnitsPerCentimetre = 10 * kPlotterUnitsPerMillimetre;
    if (text.size.kind == CharacterSize::Kind::Centimetres) {
        width = text.size.width * kUnitsPerCentimetre;
        height = text.size.height * kUnitsPerCentimetre;
    } else if (isSized) {
        width = text.size.width / 100 * (m_state.p2.x - m_state.p1.x);
        height = text.size.height / 100 * (m_state.p2.y - m_state.p1.y);
    }

    constexpr double kUnitsPerPoint = kPlotterUnitsPerInch / 72;
    if (!m.font) {
        const double pitch = std::max(wanted.pitch, 0.01);
        m.isArc = wanted.typeface == kArcTypeface;
        m.isProportional = m.isArc;
        m.unitHeight = isSized ? height / kStickCapHeight : wanted.height * kUnitsPerPoint / kStickEm;
        if (isSized)
            m.unitWidth = width / kStickWidth;
        else
            m.unitWidth = m.isArc ? m.unitHeight * kArcNarrowing : kPlotterUnitsPerInch / pitch / kStickCell;
        m.capHeight = kStickCapHeight * m.unitHeight;
        m.lineFeed = kStickLineFeed * m.unitHeight;
        m.cellWidth = (m.isArc ? kArcSpace : kStickCell) * m.unitWidth;
        m.gap = (m.isArc ? kArcGap : kStickCell - kStickWidth) * m.unitWidth;
        m.originOffset = kStickOriginOffset * std::abs(m.unitHeight);
        const double em = std::abs(m.unitHeight) * kStickEm;
        // Medium strokes are a twelfth of the height, bold ones an eighth.
        m.strokeWidth = wanted.weight == kPenWeight ? -1 : em / 12 * std::max(0.25, 1 + wanted.weight / 6.0);
        return m;
    }

    const FontTraits& traits = m.font.face->traits();
    m.isProportional = traits.isProportional;
    const double natural = m.font.unitInches() * kPlotterUnitsPerInch;
    m.unitWidth = m.unitHeight = natural;
    m.capHeight = traits.capHeight * natural;
    m.lineFeed = (traits.isScalable ? m.font.height : traits.height) * kUnitsPerPoint * 4 / 3;
    if (isSized && traits.isScalable) {
        // A nominal character is half an em wide and its capitals are seven tenths high.
        constexpr double kNominalWidth = 0.5;
        constexpr double kNominalCapHeight = 0.7;
        m.unitHeight = height / kNominalCapHeight;
        m.unitWidth = width / kNominalWidth;
        m.capHeight = height;
        m.lineFeed = 2 * height;
    }
    m.stretch = m.unitWidth / natural;
    m.cellWidth = m.font.defaultHmiInches() * kPlotterUnitsPerInch * m.stretch;
    m.originOffset = 0.25 * m.font.height * kUnitsPerPoint;
    if (isSized && traits.isScalable)
        m.originOffset = 0.25 * std::abs(m.unitHeight);
    return m;
}

} // namespace quillrip::hpgl
