#include "quillrip/pcl/text_printer.h"

#include "quillrip/fonts/soft/soft_font.h"
#include "quillrip/pcl/cursor.h"
#include "quillrip/pcl/font_slots.h"
#include "quillrip/pcl/page.h"
#include "quillrip/pcl/print_model.h"
#include "quillrip/pcl/state.h"
#include "quillrip/pcl/underline_run.h"

#include <cmath>
#include <memory>

namespace quillrip::pcl {

TextPrinter::TextPrinter(const Surroundings& surroundings)
    : m_state(surroundings.state)
    , m_fonts(surroundings.fonts)
    , m_cursor(surroundings.cursor)
    , m_page(surroundings.page)
    , m_printModel(surroundings.printModel)
    , m_underline(surroundings.underline)
    , m_glyphs(m_fonts.library().glyphs())
{
}

void TextPrinter::print(std::uint8_t byte, bool isTransparent)
{
    if (const auto code = m_decoder.take(byte, m_state.textParsing))
        printCode(*code, isTransparent && !code->isUnicode);
}

void TextPrinter::flush()
{
    if (const auto code = m_decoder.flush())
        printCode(*code, true);
}

void TextPrinter::printCode(CharacterDecoder::Code code, bool isTransparent)
{
    if (!code.isUnicode) {
        printCode(m_fonts.current(), code.value, isTransparent);
        return;
    }
    Font font = m_fonts.current();
    if (font.face->traits().domain == CodeDomain::Unicode)
        font.symbolSet = m_fonts.library().symbolSet(kUnicodeSymbolSet);
    printCode(font, code.value, isTransparent);
}

void TextPrinter::printCode(const Font& font, std::uint32_t code, bool isTransparent)
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
        = hasOwnWidth ? std::llround(font.advanceInches(found.glyph) * kUnitsPerInch) : m_fonts.columnWidth();
    if (!m_cursor.makeRoom(width))
        return;
    m_underline.note(font);
    if (found.glyph != kNoGlyph)
        drawGlyph(font, found, m_cursor.characterPlace(width, hasOwnWidth), width);
    m_cursor.passCharacter(width, hasOwnWidth);
}

void TextPrinter::drawGlyph(const Font& font, const Font::Lookup& found, Position at, InternalUnits width)
{
    if (!m_page.painterForMark())
        return;
    const Matrix& toDevice = m_page.unitsToDevice();
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
    m_glyphs.draw(m_page.canvas(), *font.face, glyph, glyphToDevice, m_printModel.paintState(m_state.pattern));
}

} // namespace quillrip::pcl
