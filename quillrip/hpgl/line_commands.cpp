// How lines look: types, ends and joins, screening.

#include "quillrip/hpgl/machine.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace quillrip::hpgl {

void Machine::lineType()
{
    LineType& current = m_state.lineType;
    if (m_operands.empty()) {
        if (!current.isSolid) {
            m_rememberedLineType = current;
            m_rememberedPhase = m_linePhase;
            m_rememberedPen = m_state.pen;
            m_hasRememberedLineType = true;
        }
        current.isSolid = true;
        return;
    }
    const int type = clampedInteger(0);
    if (type == 99) {
        if (!m_hasRememberedLineType || !current.isSolid || m_rememberedPen != m_state.pen)
            return;
        current = m_rememberedLineType;
        m_linePhase = m_rememberedPhase;
        return;
    }
    if (type < -8 || type > 8)
        return;
    PatternLength length = current.length;
    if (operandCount() >= 2) {
        length.value = clampedReal(1);
        if (!(length.value > 0))
            return;
    }
    if (operandCount() >= 3) {
        const int mode = clampedInteger(2);
        if (mode != 0 && mode != 1)
            return;
        length.isMillimetres = mode == 1;
    }
    current.isSolid = false;
    current.type = type;
    current.length = length;
    m_linePhase = 0;
}

void Machine::userLineType()
{
    if (m_operands.empty()) {
        m_state.linePatterns = {};
        return;
    }
    const int index = std::abs(clampedInteger(0));
    if (index < 1 || index > 8)
        return;
    std::vector<double>& pattern = m_state.linePatterns[static_cast<std::size_t>(index)];
    if (operandCount() == 1) {
        pattern.clear();
        return;
    }
    constexpr std::size_t kMostGaps = 20;
    std::vector<double> gaps(m_operands.begin() + 1,
        m_operands.begin() + static_cast<std::ptrdiff_t>(std::min(operandCount(), kMostGaps + 1)));
    const double sum = std::accumulate(gaps.begin(), gaps.end(), 0.0);
    if (!(sum > 0) || *std::min_element(gaps.begin(), gaps.end()) < 0)
        return;
    for (double& gap : gaps)
        gap /= sum;
    pattern = std::move(gaps);
}

void Machine::lineAttributes()
{
    if (m_operands.empty())
        m_state.lineAttributes = LineAttributes {};
    LineAttributes& attributes = m_state.lineAttributes;
    for (std::size_t i = 0; i + 1 < operandCount(); i += 2) {
        const int kind = clampedInteger(i);
        const int value = clampedInteger(i + 1);
        if (kind == 1 && value >= 1 && value <= 4)
            attributes.end = value;
        else if (kind == 2 && value >= 1 && value <= 6)
            attributes.join = value;
        else if (kind == 3)
            attributes.miterLimit = std::max(1.0, clampedReal(i + 1));
    }
}

void Machine::screenVectors()
{
    ScreenedVectors& screened = m_state.screened;
    if (m_operands.empty()) {
        screened = ScreenedVectors {};
        return;
    }
    const int type = clampedInteger(0);
    const bool hasOption = operandCount() >= 2;
    const double option = operand(1);
    switch (type) {
    case 0:
        break;
    case 1:
        if (hasOption && (option < 0 || option > 100))
            return;
        if (hasOption)
            screened.shading = option;
        break;
    case 2:
        if (hasOption && (option < 1 || option > 8))
            return;
        if (hasOption)
            screened.rasterFill = clampedInteger(1);
        if (operandCount() >= 3)
            screened.usesCurrentPen = clampedInteger(2) == 1;
        break;
    case 21:
        if (hasOption && (option < 1 || option > 6))
            return;
        if (hasOption)
            screened.hatchPattern = clampedInteger(1);
        break;
    case 22:
        if (hasOption)
            screened.userPattern = clampedInteger(1);
        break;
    default:
        return;
    }
    screened.type = type;
}

/// SM takes one character as it stands, a letter too.
void Machine::symbolMode()
{
    int byte = m_input->peek();
    while (byte == ' ') {
        m_input->get();
        byte = m_input->peek();
    }
    int symbol = -1;
    if (byte >= 0 && byte != kEscape) {
        m_input->get();
        if ((byte >= 33 && byte <= 58) || (byte >= 60 && byte <= 126) || (byte >= 161 && byte <= 254))
            symbol = byte;
        if (byte != ';' && m_input->peek() == ';')
            m_input->get();
    }
    if (!m_isPolygonMode)
        m_state.symbol = symbol;
}

} // namespace quillrip::hpgl
