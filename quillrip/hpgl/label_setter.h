#pragma once

#include "quillrip/base/work_meter.h"
#include "quillrip/hpgl/character_painter.h"
#include "quillrip/hpgl/label.h"
#include "quillrip/hpgl/label_fonts.h"
#include "quillrip/hpgl/state.h"
#include "quillrip/hpgl/surface.h"

#include <cstdint>
#include <string>

namespace quillrip::hpgl {

/// LB: from bytes to characters in their places. Moves the pen and the carriage return point.
class LabelSetter {
public:
    LabelSetter(const Surface& surface, State& state, TextState& text, LabelFonts& fonts, CharacterPainter& characters,
        WorkMeter& work)
        : m_surface(surface)
        , m_state(state)
        , m_text(text)
        , m_fonts(fonts)
        , m_characters(characters)
        , m_work(work)
    {
    }

    /// Sets text from the pen's place on; the pen ends behind it.
    void set(const std::string& text);
    /// The pen goes where a whole label leaves it that began at these points.
    void endLabel(Point start, Point carriageReturn);
    /// CP: the pen moves by characters and lines, up.
    void moveBy(double characters, double lines);
    /// CP without operands: to the beginning of the next line.
    void startNextLine();
    /// SM: the symbol with its middle on the pen.
    void drawSymbol();

private:
    void obeyControl(std::uint32_t code, LabelLine& line);
    void setLine(LabelLine& line);
    void moveByLines(const LabelMetrics& metrics, double lines);
    void returnCarriage(const LabelMetrics& metrics);

    const Surface& m_surface;
    State& m_state;
    TextState& m_text;
    LabelFonts& m_fonts;
    CharacterPainter& m_characters;
    WorkMeter& m_work;
};

} // namespace quillrip::hpgl
