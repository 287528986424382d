#pragma once

#include "quillrip/fonts/font.h"
#include "quillrip/fonts/glyph_painter.h"
#include "quillrip/pcl/character_decoder.h"
#include "quillrip/pcl/logical_page.h"

#include <cstdint>

namespace quillrip::pcl {

class Cursor;
class FontSlots;
class Page;
class PrintModel;
class UnderlineRun;
struct State;

/// Prints characters at the cursor.
class TextPrinter {
public:
    struct Surroundings {
        State& state;
        FontSlots& fonts;
        Cursor& cursor;
        Page& page;
        PrintModel& printModel;
        UnderlineRun& underline;
    };
    /// All references must outlive the printer.
    explicit TextPrinter(const Surroundings& surroundings);

    /// One byte of text. Transparent: codes that are none of the font's still take their place.
    void print(std::uint8_t byte, bool isTransparent);
    /// Prints a lead byte that nothing followed.
    void flush();

    CharacterDecoder& decoder() { return m_decoder; }

private:
    void printCode(CharacterDecoder::Code code, bool isTransparent);
    void printCode(const Font& font, std::uint32_t code, bool isTransparent);
    void drawGlyph(const Font& font, const Font::Lookup& found, Position at, InternalUnits width);

    State& m_state;
    FontSlots& m_fonts;
    Cursor& m_cursor;
    Page& m_page;
    PrintModel& m_printModel;
    UnderlineRun& m_underline;
    CharacterDecoder m_decoder;
    GlyphPainter& m_glyphs;
};

} // namespace quillrip::pcl
