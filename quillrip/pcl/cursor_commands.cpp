#include "quillrip/pcl/machine.h"

#include <algorithm>
#include <cmath>

namespace quillrip::pcl {

namespace {

constexpr std::size_t kCursorStackDepth = 20;

} // namespace

void Machine::moveHorizontal(const Value& value, double unit)
{
    const InternalUnits distance = inUnits(value.number, unit);
    moveToClamped(value.hasSign ? m_cursor.x + distance : distance, m_cursor.y);
}

// Absolute places count from the top margin; `offset` is what rows lie below it.
void Machine::moveVertical(const Value& value, double unit, InternalUnits offset)
{
    const InternalUnits distance = inUnits(value.number, unit);
    moveToClamped(m_cursor.x, value.hasSign ? m_cursor.y + distance : m_state.text.top + offset + distance);
}

void Machine::moveColumns(const Command& command) { moveHorizontal(command.value, static_cast<double>(columnWidth())); }

void Machine::moveHorizontalDecipoints(const Command& command) { moveHorizontal(command.value, kUnitsPerDecipoint); }

void Machine::moveHorizontalUnits(const Command& command)
{
    moveHorizontal(command.value, static_cast<double>(kUnitsPerInch) / m_state.unitsPerInch);
}

void Machine::moveRows(const Command& command)
{
    moveVertical(command.value, static_cast<double>(m_state.lineSpacing), (m_state.lineSpacing * 3 + 2) / 4);
}

void Machine::moveVerticalDecipoints(const Command& command) { moveVertical(command.value, kUnitsPerDecipoint, 0); }

void Machine::moveVerticalUnits(const Command& command)
{
    moveVertical(command.value, static_cast<double>(kUnitsPerInch) / m_state.unitsPerInch, 0);
}

void Machine::pushOrPopCursor(const Command& command)
{
    const int operation = command.value.integer();
    const PageLayout& page = m_state.page;
    if (operation == 0 && m_cursorStack.size() < kCursorStackDepth) {
        m_cursorStack.push_back(page.toOrientation(m_cursor, m_state.direction));
    } else if (operation == 1 && !m_cursorStack.empty()) {
        const Position place = page.fromOrientation(m_cursorStack.back(), m_state.direction);
        m_cursorStack.pop_back();
        moveTo(place.x, place.y);
    }
}

void Machine::halfLineFeed(const Command&) { lineFeed(m_state.lineSpacing / 2); }

void Machine::carriageReturn() { moveTo(m_state.text.left, m_cursor.y); }

void Machine::lineFeed(InternalUnits distance)
{
    const InternalUnits next = m_cursor.y + distance;
    const InternalUnits end = m_state.skipsPerforation ? m_state.text.bottom : pageLength();
    if (next <= end) {
        moveTo(m_cursor.x, next);
        return;
    }
    ejectPage(true);
    moveTo(m_cursor.x, homePosition().y);
}

void Machine::formFeed()
{
    ejectPage(true);
    moveTo(m_cursor.x, homePosition().y);
}

void Machine::backspace()
{
    const InternalUnits before = m_cursor.x;
    const InternalUnits step = m_lastAdvance > 0 ? m_lastAdvance : columnWidth();
    const InternalUnits stop = before >= m_state.text.left ? m_state.text.left : 0;
    moveTo(std::max(stop, before - step), m_cursor.y);
    m_backspaced = { true, before, step };
}

void Machine::tabulate()
{
    if (m_cursor.x < m_state.text.left) {
        moveTo(m_state.text.left, m_cursor.y);
        return;
    }
    const InternalUnits stop = 8 * columnWidth();
    if (stop <= 0)
        return;
    const InternalUnits next = m_state.text.left + ((m_cursor.x - m_state.text.left) / stop + 1) * stop;
    if (next <= m_state.text.right) {
        moveTo(next, m_cursor.y);
    } else if (m_state.wrapsLines) {
        carriageReturn();
        lineFeed(m_state.lineSpacing);
    } else if (m_cursor.x < m_state.text.right) {
        moveTo(m_state.text.right, m_cursor.y);
    }
}

void Machine::control(std::uint8_t code)
{
    const int termination = m_state.lineTermination;
    m_leadByte = -1;
    switch (code) {
    case 0x08:
        backspace();
        break;
    case 0x09:
        tabulate();
        break;
    case 0x0A:
        if (termination >= 2)
            carriageReturn();
        lineFeed(m_state.lineSpacing);
        break;
    case 0x0C:
        if (termination >= 2)
            carriageReturn();
        formFeed();
        break;
    case 0x0D:
        carriageReturn();
        if (termination & 1)
            lineFeed(m_state.lineSpacing);
        break;
    case 0x0E:
        useFont(1);
        break;
    case 0x0F:
        useFont(0);
        break;
    default:
        break; // NUL, BEL and VT do nothing
    }
}

} // namespace quillrip::pcl
