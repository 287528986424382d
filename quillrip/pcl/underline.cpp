#include "quillrip/pcl/machine.h"

#include <algorithm>

namespace quillrip::pcl {

void Machine::setUnderline(const Command& command)
{
    endUnderlineRun();
    m_state.underline = Underline::Off;
    if (command.terminator == 'D') {
        const int kind = command.value.integer();
        if (kind == 0 || kind == 1)
            m_state.underline = Underline::Fixed;
        else if (kind == 3)
            m_state.underline = Underline::Floating;
    }
    beginUnderline();
}

void Machine::beginUnderline()
{
    m_underlineRun = {};
    if (m_state.underline == Underline::Off)
        return;
    m_underlineRun.isOpen = true;
    m_underlineRun.from = m_cursor.x;
    m_underlineRun.to = m_cursor.x;
    if (m_state.underline == Underline::Fixed) {
        m_underlineRun.top = 5 * kUnitsPerDot;
        m_underlineRun.thickness = 3 * kUnitsPerDot;
    }
}

// A floating underline runs below the lowest that any font of the line asks for.
void Machine::noteUnderlineOf(const Font& font)
{
    if (!m_underlineRun.isOpen || m_state.underline != Underline::Floating)
        return;
    const FontTraits& traits = font.face->traits();
    const bool hasOwn = traits.hasUnderline && traits.underlineThickness > 0;
    double top = 0.2;
    double thickness = 0.05;
    double unit = font.height * kUnitsPerInch / 72; // the defaults are fractions of the height
    if (hasOwn) {
        top = -traits.underlineTop;
        thickness = traits.underlineThickness;
        unit = font.unitInches() * static_cast<double>(kUnitsPerInch);
    }
    m_underlineRun.top = std::max(m_underlineRun.top, inUnits(top, unit));
    m_underlineRun.thickness = std::max(m_underlineRun.thickness, inUnits(thickness, unit));
}

void Machine::endUnderlineRun()
{
    const auto run = m_underlineRun;
    m_underlineRun = {};
    if (!run.isOpen || run.to <= run.from || run.thickness <= 0)
        return;
    Painter* painter = painterForMark();
    if (!painter)
        return;
    const Position from { run.from, m_cursor.y + run.top };
    PixelRect rect = deviceRect(from, { run.to, from.y + run.thickness }, m_state.direction);
    rect.right = std::max(rect.right, rect.left + 1);
    rect.bottom = std::max(rect.bottom, rect.top + 1);
    painter->fillRect(rect, paintState(m_state.pattern));
}

} // namespace quillrip::pcl
