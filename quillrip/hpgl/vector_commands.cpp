// Pens and straight vectors.

#include "quillrip/hpgl/machine.h"

#include <algorithm>
#include <cmath>

namespace quillrip::hpgl {

namespace {

/// Where positions end: what the language defines for integers.
constexpr double kFarthest = 1073741823;
/// A line of so many corners is drawn in parts.
constexpr std::size_t kMostLineVertices = std::size_t { 1 } << 18;

} // namespace

/// The pen goes to a place, drawing or not. `endsVector` is false for the small steps of arcs and curves.
void Machine::travelTo(Point to, bool isDrawing, bool endsVector)
{
    to.x = std::clamp(to.x, -kFarthest, kFarthest);
    to.y = std::clamp(to.y, -kFarthest, kFarthest);
    m_hasDotToDraw = false;
    if (m_isPolygonMode) {
        addToPolygon(to, isDrawing, endsVector);
    } else if (!isDrawing) {
        if (!m_line.empty())
            finishLine();
        m_linePhase = 0;
    } else if (m_state.selectedPen >= 0) {
        if (m_line.empty())
            m_line.push_back({ m_plotterToPage.apply(m_state.pen), true });
        m_line.push_back({ m_plotterToPage.apply(to), endsVector });
        if (m_line.size() >= kMostLineVertices)
            finishLine();
    }
    m_state.pen = to;
}

void Machine::plotPoints()
{
    for (std::size_t i = 0; i + 1 < m_operands.size(); i += 2) {
        const Point point { m_operands[i], m_operands[i + 1] };
        travelTo(m_state.isAbsolute ? m_userToPlotter.apply(point) : m_state.pen + m_userToPlotter.applyVector(point),
            m_state.isPenDown);
        if (m_state.symbol >= 0)
            symbolAtPen();
    }
}

void Machine::plotAbsolute()
{
    m_state.isAbsolute = true;
    plotPoints();
    m_state.carriageReturn = m_state.pen;
}

void Machine::plotRelative()
{
    m_state.isAbsolute = false;
    plotPoints();
    m_state.carriageReturn = m_state.pen;
}

void Machine::penUp()
{
    // Lowered and raised without a move: the pen leaves a dot.
    if (m_hasDotToDraw && !m_isPolygonMode) {
        finishLine();
        if (m_state.selectedPen >= 0)
            drawDot(m_plotterToPage.apply(m_state.pen));
    }
    m_hasDotToDraw = false;
    m_state.isPenDown = false;
    plotPoints();
    if (!m_operands.empty())
        m_state.carriageReturn = m_state.pen;
}

void Machine::penDown()
{
    if (!m_state.isPenDown && !m_isContinued)
        m_hasDotToDraw = true;
    m_state.isPenDown = true;
    plotPoints();
    if (!m_operands.empty())
        m_state.carriageReturn = m_state.pen;
}

void Machine::selectPen() { selectPen(m_operands.empty() ? 0 : clampedInteger(0)); }

void Machine::selectPen(int pen)
{
    m_hasSelectedPen = true;
    if (pen >= 0)
        m_state.selectedPen = pen;
}

void Machine::penWidthUnit()
{
    const int unit = clampedInteger(0, 0);
    if (unit != 0 && unit != 1)
        return;
    m_state.widthsAreRelative = unit == 1;
    m_state.penWidths.clear();
}

void Machine::penWidth()
{
    if (m_operands.empty()) {
        m_state.penWidths.clear();
        return;
    }
    const double width = std::max(0.0, clampedReal(0));
    const std::size_t pens = std::max<std::size_t>(m_host.paletteSize(), 2);
    const double standard = m_state.widthsAreRelative ? kDefaultPenPercent : kDefaultPenMillimetres;
    m_state.penWidths.resize(pens, standard);
    if (operandCount() < 2)
        std::fill(m_state.penWidths.begin(), m_state.penWidths.end(), width);
    else if (operand(1) >= 0)
        m_state.penWidths[static_cast<std::size_t>(wrappedPen(clampedInteger(1)))] = width;
}

} // namespace quillrip::hpgl
