#include "quillrip/hpgl/number_reader.h"

#include "quillrip/base/escape_sequence.h"

#include <algorithm>

namespace quillrip::hpgl {

bool NumberReader::isStart(int byte) { return isDigit(byte) || byte == '.' || byte == '-' || byte == '+'; }

bool NumberReader::add(int byte)
{
    constexpr double kFinest = 1e15;
    if ((byte == '-' || byte == '+') && !m_hasBegun) {
        m_isNegative = byte == '-';
    } else if (byte == '.' && !m_isInFraction) {
        m_isInFraction = true;
    } else if (!isDigit(byte)) {
        return false;
    } else if (!m_isInFraction) {
        m_hasDigits = true;
        if (m_whole <= kLargest)
            m_whole = m_whole * 10 + (byte - '0');
    } else {
        m_hasDigits = true;
        if (m_scale < kFinest) {
            m_fraction = m_fraction * 10 + (byte - '0');
            m_scale *= 10;
        }
    }
    m_hasBegun = true;
    return true;
}

double NumberReader::value() const
{
    const double magnitude = std::min(m_whole + m_fraction / m_scale, kLargest);
    return m_isNegative ? -magnitude : magnitude;
}

} // namespace quillrip::hpgl
