#include "quillrip/pcl/machine.h"

#include <algorithm>
#include <cmath>

namespace quillrip::pcl {

namespace {

constexpr std::uint8_t kEscape = 0x1B;
constexpr int kUtf8Parsing = 83;

/// Whether a byte is the first of two, by text parsing method.
bool isLeadByte(int method, std::uint8_t byte)
{
    switch (method) {
    case 21:
        return byte >= 0x21;
    case 31:
        return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
    case 38:
        return byte >= 0x80;
    default:
        return false;
    }
}

} // namespace

void Machine::setTextParsing(const Command& command)
{
    const int method = command.value.integer();
    switch (method) {
    case 0:
    case 1:
    case 21:
    case 31:
    case 38:
    case kUtf8Parsing:
        m_state.textParsing = method;
        break;
    case 1008:
        m_state.textParsing = kUtf8Parsing;
        break;
    default:
        return;
    }
    m_leadByte = -1;
    m_utf8Missing = 0;
}

void Machine::setTextPath(const Command& command)
{
    const int path = command.value.integer();
    if (path == 0 || path == -1)
        m_state.isVerticalText = path == -1;
}

void Machine::text(std::uint8_t byte)
{
    // In ink-jet raster languages what looks like text is what is left of a broken command.
    if (!m_environment.rasterOnly)
        textByte(byte, false);
}

void Machine::textByte(std::uint8_t byte, bool isTransparent)
{
    if (m_state.textParsing == kUtf8Parsing && (byte >= 0x80 || m_utf8Missing > 0)) {
        utf8Byte(byte);
        return;
    }
    if (m_leadByte >= 0) {
        const std::uint32_t code = (static_cast<std::uint32_t>(m_leadByte) << 8) | byte;
        m_leadByte = -1;
        printCode(currentFont(), code, isTransparent);
    } else if (isLeadByte(m_state.textParsing, byte)) {
        m_leadByte = byte;
    } else {
        printCode(currentFont(), byte, isTransparent);
    }
}

void Machine::flushLeadByte()
{
    if (m_leadByte < 0)
        return;
    const auto code = static_cast<std::uint32_t>(m_leadByte);
    m_leadByte = -1;
    printCode(currentFont(), code, true);
}

void Machine::utf8Byte(std::uint8_t byte)
{
    if (byte >= 0x80 && byte < 0xC0 && m_utf8Missing > 0) {
        m_utf8Code = (m_utf8Code << 6) | (byte & 0x3Fu);
        if (--m_utf8Missing > 0)
            return;
        Font font = currentFont();
        if (font.face->traits().domain == CodeDomain::Unicode)
            font.symbolSet = m_fonts.symbolSet(kUnicodeSymbolSet);
        printCode(font, m_utf8Code, false);
        return;
    }
    m_utf8Missing = byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : byte >= 0xC0 ? 1 : 0;
    m_utf8Code = byte & (0x3Fu >> m_utf8Missing);
    if (byte < 0x80)
        printCode(currentFont(), byte, false); // a sequence broken off by ASCII
}

void Machine::printCode(const Font& font, std::uint32_t code, bool isTransparent)
{
    Font::Lookup found = font.find(code);
    // A space moves by the column width, unless a soft font has a glyph of its own for it.
    const bool isBuiltInSpace = code == ' ' && !dynamic_cast<const SoftFont*>(font.face.get());
    if (!found.isPrintable || isBuiltInSpace) {
        if (!isTransparent && code != ' ')
            return;
        found.glyph = kNoGlyph;
    }
    const bool hasOwnWidth = found.glyph != kNoGlyph && font.face->traits().isProportional;
    const InternalUnits width
        = hasOwnWidth ? std::llround(font.advanceInches(found.glyph) * kUnitsPerInch) : columnWidth();
    if (!makeRoom(width))
        return;
    Position at = m_cursor;
    // After a backspace over a proportional character the next one goes into its middle.
    const auto backspaced = m_backspaced;
    m_backspaced.isPending = false;
    if (backspaced.isPending && hasOwnWidth)
        at.x += (backspaced.advance - width) / 2;
    noteUnderlineOf(font);
    if (found.glyph != kNoGlyph)
        drawGlyph(font, found, at, width);
    if (backspaced.isPending && hasOwnWidth)
        advance(backspaced.x - m_cursor.x);
    else
        advance(width);
    m_lastAdvance = width;
}

void Machine::advance(InternalUnits distance)
{
    m_cursor.x += distance;
    m_underlineRun.to = std::max(m_underlineRun.to, m_cursor.x);
}

// False: the character is not printed, for it would cross the right margin.
bool Machine::makeRoom(InternalUnits width)
{
    if (m_isClippedAtMargin)
        return false;
    const InternalUnits boundary = m_isBeyondMargin ? pageWidth() : m_state.text.right;
    if (m_cursor.x + width <= boundary)
        return true;
    if (m_state.wrapsLines) {
        carriageReturn();
        lineFeed(m_state.lineSpacing);
        return true;
    }
    m_cursor.x = boundary;
    m_isClippedAtMargin = true;
    return false;
}

void Machine::drawGlyph(const Font& font, const Font::Lookup& found, Position at, InternalUnits width)
{
    Painter* painter = painterForMark();
    if (!painter)
        return;
    const Matrix& toDevice = unitsToDevice();
    const double unit = font.unitInches() * static_cast<double>(kUnitsPerInch);
    Matrix glyphToUnits = Matrix::scaling(unit, -unit);
    GlyphId glyph = found.glyph;
    const double advanceUnits = static_cast<double>(width) / unit;
    if (m_state.isVerticalText && advanceUnits > 0.75 && !font.face->staysUpright(found.faceCode)) {
        // A quarter turn counter-clockwise about the middle of the character's cell.
        glyph = font.face->verticalForm(glyph);
        const double middleX = advanceUnits / 2;
        const double middleY = 0.5 - font.face->verticalDescender();
        glyphToUnits = Matrix { 0, 1, -1, 0, middleX + middleY, middleY - middleX } * glyphToUnits;
    }
    Matrix glyphToDevice = glyphToUnits * toDevice;
    const Point offset = toDevice.applyVector({ glyphToUnits.e, glyphToUnits.f });
    const Point reference = toDevice.apply({ static_cast<double>(at.x), static_cast<double>(at.y) });
    // Characters stand on whole device pixels, so equal ones look alike.
    glyphToDevice.e = std::floor(reference.x + 0.5 + 1e-6) + offset.x;
    glyphToDevice.f = std::floor(reference.y + 0.5 + 1e-6) + offset.y;
    if (!std::isfinite(glyphToDevice.e) || std::abs(glyphToDevice.e) > 1e7 || std::abs(glyphToDevice.f) > 1e7)
        return;
    const PaintState state = paintState(m_state.pattern);
    if (GlyphCache::isTooLarge(*font.face, glyphToDevice)) {
        Path path;
        if (font.face->outline(glyph, path))
            painter->fillPath(path.transformed(glyphToDevice), FillRule::NonZero, state);
        return;
    }
    const GlyphMask::Depth depth
        = m_canvas.format == PixelFormat::Bilevel ? GlyphMask::Depth::Bits : GlyphMask::Depth::Coverage;
    const PlacedGlyph placed = m_glyphs.place(*font.face, glyph, glyphToDevice, depth);
    if (placed.mask)
        painter->drawMask(*placed.mask, placed.x, placed.y, state);
}

void Machine::transparentText(const Command& command)
{
    for (const std::uint8_t byte : command.data) {
        if (failed())
            return;
        textByte(byte, true);
    }
    flushLeadByte();
}

void Machine::displayFunctionsOn(const Command&)
{
    m_displaysFunctions = true;
    m_displaySawEscape = false;
}

void Machine::displayFunctionsOff(const Command&) { m_displaysFunctions = false; }

void Machine::displayByte(Tokenizer& tokenizer)
{
    const int byte = tokenizer.stream().get();
    if (byte < 0)
        return;
    textByte(static_cast<std::uint8_t>(byte), true);
    if (byte == 0x0D) {
        carriageReturn();
        lineFeed(m_state.lineSpacing);
    }
    if (m_displaySawEscape && byte == 'Z')
        m_displaysFunctions = false;
    m_displaySawEscape = byte == kEscape;
}

} // namespace quillrip::pcl
