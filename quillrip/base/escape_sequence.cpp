#include "quillrip/base/escape_sequence.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace quillrip {

namespace {

/// Larger numbers mean nothing more, but must neither wrap nor lose their digits' place.
constexpr double kLargestValue = 4294967295.0;
/// Four decimals count, further digits are discarded.
constexpr double kLeastPlace = 0.00005;

} // namespace

bool startsWithUniversalExit(ByteView bytes)
{
    return bytes.size >= kUniversalExitLength && std::memcmp(bytes.data, "\x1B%-12345X", kUniversalExitLength) == 0;
}

int EscapeValue::integer() const
{
    return static_cast<int>(std::clamp(std::trunc(number), -2147483647.0, 2147483647.0));
}

bool EscapeValueReader::add(int byte)
{
    if (byte == '+' || byte == '-') {
        m_value.hasSign = true;
        m_isNegative = byte == '-';
        return true;
    }
    if (byte == '.') {
        m_isInFraction = true;
        return true;
    }
    if (!isDigit(byte))
        return false;
    m_value.hasDigits = true;
    if (!m_isInFraction) {
        m_value.number = std::min(m_value.number * 10 + (byte - '0'), kLargestValue);
    } else if (m_place > kLeastPlace) {
        m_value.number += m_place * (byte - '0');
        m_place /= 10;
    }
    return true;
}

EscapeValue EscapeValueReader::value() const
{
    EscapeValue value = m_value;
    if (m_isNegative)
        value.number = -value.number;
    return value;
}

bool EscapeReader::open()
{
    if (peek() != kEscape || !isParameterisedCharacter(peek(1)))
        return false;
    m_prefix = static_cast<char>(peek(1));
    m_at += 2;
    m_group = isGroupCharacter(peek()) ? static_cast<char>(m_bytes[m_at++]) : '\0';
    m_isOpen = true;
    return true;
}

void EscapeReader::resume(char prefix, char group)
{
    m_prefix = prefix;
    m_group = group;
    m_isOpen = true;
}

std::optional<EscapeParameter> EscapeReader::next()
{
    if (!m_isOpen)
        return std::nullopt;
    EscapeValueReader value;
    while (value.add(peek()))
        ++m_at;
    const int byte = peek();
    m_isOpen = isCombiningCharacter(byte);
    if (!m_isOpen && !isTerminationCharacter(byte))
        return std::nullopt;
    ++m_at;
    return EscapeParameter { m_prefix, m_group, static_cast<char>(m_isOpen ? byte - 0x20 : byte), m_isOpen,
        value.value() };
}

void EscapeReader::skip(std::uint64_t count)
{
    m_at += static_cast<std::size_t>(std::min<std::uint64_t>(count, m_bytes.size - m_at));
}

} // namespace quillrip
