// Pages, devices, and what only plotters of their own know.

#include "quillrip/hpgl/machine.h"

#include <algorithm>
#include <cmath>

namespace quillrip::hpgl {

/// Known, and without effect here: speeds, media, queries, messages.
void Machine::ignore() { }

/// CO and MG: quoted text, which may hold semicolons.
void Machine::comment()
{
    Lexer lexer(*m_input);
    lexer.readText(0);
    lexer.skipOperands();
}

void Machine::beginPlot()
{
    // Pairs of kind and value; the value of kind 1, the plot's name, is quoted.
    Lexer lexer(*m_input);
    for (;;) {
        const int byte = m_input->peek();
        if (byte < 0 || byte == kEscape || isLetter(byte))
            break;
        if (byte == '"') {
            lexer.readText(0);
            continue;
        }
        m_input->get();
        if (byte == ';')
            break;
    }
    if (!m_listener)
        return;
    leavePage(false);
    if (status() == RunStatus::Done)
        initialiseCommand();
}

void Machine::advancePage()
{
    if (m_listener)
        leavePage(!m_operands.empty());
}

void Machine::advanceFrame()
{
    if (m_listener)
        leavePage(false);
}

void Machine::leavePage(bool isForced)
{
    m_listener->advancePage(isForced);
    updateFrame();
}

void Machine::plotSize()
{
    if (!m_listener)
        return;
    if (!m_listener->plotSize(m_operands))
        return;
    const Point pen = m_state.pen;
    frameChanged();
    m_listener->pointsDefaulted();
    m_state.pen = m_state.carriageReturn = pen;
}

void Machine::tickLength()
{
    constexpr double kDefaultTick = 0.5;
    m_tickPositive = m_tickNegative = kDefaultTick;
    if (!m_operands.empty()) {
        m_tickPositive = clampedReal(0);
        m_tickNegative = clampedReal(1, 0);
    }
}

void Machine::tickX()
{
    const double unit = (m_state.p2.y - m_state.p1.y) / 100;
    tick({ 0, unit });
}

void Machine::tickY()
{
    const double unit = (m_state.p2.x - m_state.p1.x) / 100;
    tick({ unit, 0 });
}

/// A tick mark through the pen, `direction` for one percent.
void Machine::tick(Point direction)
{
    if (m_state.selectedPen < 0 || m_isPolygonMode)
        return;
    const auto page = [&](double percent) { return m_plotterToPage.apply(m_state.pen + direction * percent); };
    drawSeparateLine({ { page(-m_tickNegative), true }, { page(m_tickPositive), true } });
    flushStrokes();
}

/// UC of HP-GL: a character of one's own in a grid of 6 x 16 steps, as relative moves with pen switches between them.
void Machine::userCharacter()
{
    if (m_isPolygonMode)
        return;
    const LabelMetrics metrics = labelMetrics();
    constexpr double kPenSwitch = 99;
    constexpr double kGridWidth = 6;
    constexpr double kGridHeight = 16;
    const Point x = metrics.along * (metrics.cellWidth / kGridWidth);
    const Point y = metrics.up * (metrics.lineFeed / kGridHeight);
    const Point start = m_state.pen;
    const bool wasDown = m_state.isPenDown;
    bool isDown = false;
    std::size_t i = 0;
    while (i < operandCount()) {
        if (std::abs(operand(i)) >= kPenSwitch) {
            isDown = operand(i) > 0;
            ++i;
        } else if (i + 1 < operandCount()) {
            travelTo(m_state.pen + x * operand(i) + y * operand(i + 1), isDown);
            i += 2;
        } else {
            break;
        }
    }
    finishLine();
    flushStrokes();
    m_state.pen = start + metrics.along * metrics.cellWidth;
    m_state.isPenDown = wasDown;
}

} // namespace quillrip::hpgl
