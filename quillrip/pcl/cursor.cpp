#include "quillrip/pcl/cursor.h"

#include "quillrip/pcl/environment.h"
#include "quillrip/pcl/state.h"
#include "quillrip/pcl/underline_run.h"

#include <algorithm>
#include <utility>

namespace quillrip::pcl {

namespace {

constexpr std::size_t kStackDepth = 20;

} // namespace

Cursor::Cursor(State& state, const Environment& environment, UnderlineRun& underline, std::function<void()> endPage)
    : m_state(state)
    , m_environment(environment)
    , m_underline(underline)
    , m_endPage(std::move(endPage))
{
}

Position Cursor::homePosition() const
{
    // Where there is no text there is no first line.
    const bool hasLines = m_environment.family != PrinterFamily::InkjetRaster;
    return { m_state.text.left, m_state.text.top + (hasLines ? (m_state.lineSpacing * 3 + 2) / 4 : 0) };
}

void Cursor::home()
{
    m_underline.end();
    m_at = homePosition();
    m_isBeyondMargin = false;
    m_isClipped = false;
    m_backspaced.isPending = false;
    m_underline.begin(m_at);
}

void Cursor::moveTo(InternalUnits x, InternalUnits y)
{
    const bool leavesRun = y != m_at.y || x < m_at.x;
    if (leavesRun)
        m_underline.end();
    m_at = { x, y };
    m_isBeyondMargin = x >= m_state.text.right;
    m_isClipped = false;
    m_backspaced.isPending = false;
    if (leavesRun || !m_underline.isOpen())
        m_underline.begin(m_at);
    else
        m_underline.setEnd(x);
}

void Cursor::moveToClamped(InternalUnits x, InternalUnits y)
{
    if (m_environment.isPlotterRaster) {
        // A plot may lie anywhere about its origin.
        constexpr InternalUnits kFarthest = InternalUnits { 1 } << 40;
        moveTo(std::clamp(x, -kFarthest, kFarthest), std::clamp(y, -kFarthest, kFarthest));
        return;
    }
    // A place that not even the longest sheet has is no sign of that sheet.
    const LogicalPage& page = m_state.page;
    const InternalUnits length = page.length(m_state.direction);
    const InternalUnits longest = length + page.spareLength(m_state.direction);
    const InternalUnits bottom = y <= longest ? longest : length;
    moveTo(std::clamp<InternalUnits>(x, 0, page.width(m_state.direction)), std::clamp<InternalUnits>(y, 0, bottom));
}

void Cursor::push()
{
    if (m_stack.size() < kStackDepth)
        m_stack.push_back(m_state.page.toOrientation(m_at, m_state.direction));
}

void Cursor::pop()
{
    if (m_stack.empty())
        return;
    const Position place = m_state.page.fromOrientation(m_stack.back(), m_state.direction);
    m_stack.pop_back();
    moveTo(place.x, place.y);
}

void Cursor::carriageReturn() { moveTo(m_state.text.left, m_at.y); }

void Cursor::lineFeed(InternalUnits distance)
{
    const InternalUnits next = m_at.y + distance;
    const InternalUnits end = m_state.skipsPerforation ? m_state.text.bottom : m_state.page.length(m_state.direction);
    if (next <= end)
        moveTo(m_at.x, next);
    else
        formFeed();
}

void Cursor::formFeed()
{
    m_endPage();
    moveTo(m_at.x, homePosition().y);
}

void Cursor::backspace(InternalUnits columnWidth)
{
    const InternalUnits before = m_at.x;
    const InternalUnits step = m_lastAdvance > 0 ? m_lastAdvance : columnWidth;
    const InternalUnits stop = before >= m_state.text.left ? m_state.text.left : 0;
    moveTo(std::max(stop, before - step), m_at.y);
    m_backspaced = { true, before, step };
}

void Cursor::tabulate(InternalUnits columnWidth)
{
    if (m_at.x < m_state.text.left) {
        moveTo(m_state.text.left, m_at.y);
        return;
    }
    const InternalUnits stop = 8 * columnWidth;
    if (stop <= 0)
        return;
    const InternalUnits next = m_state.text.left + ((m_at.x - m_state.text.left) / stop + 1) * stop;
    if (next <= m_state.text.right) {
        moveTo(next, m_at.y);
    } else if (m_state.wrapsLines) {
        carriageReturn();
        lineFeed(m_state.lineSpacing);
    } else if (m_at.x < m_state.text.right) {
        moveTo(m_state.text.right, m_at.y);
    }
}

bool Cursor::makeRoom(InternalUnits width)
{
    if (m_isClipped)
        return false;
    const InternalUnits boundary = m_isBeyondMargin ? m_state.page.width(m_state.direction) : m_state.text.right;
    if (m_at.x + width <= boundary)
        return true;
    if (m_state.wrapsLines) {
        carriageReturn();
        lineFeed(m_state.lineSpacing);
        return true;
    }
    m_at.x = boundary;
    m_isClipped = true;
    return false;
}

Position Cursor::characterPlace(InternalUnits width, bool hasOwnWidth) const
{
    const bool isOverstrike = m_backspaced.isPending && hasOwnWidth;
    return { m_at.x + (isOverstrike ? (m_backspaced.advance - width) / 2 : 0), m_at.y };
}

void Cursor::passCharacter(InternalUnits width, bool hasOwnWidth)
{
    // After an overstrike the text goes on behind the wider one's place.
    const bool isOverstrike = m_backspaced.isPending && hasOwnWidth;
    m_backspaced.isPending = false;
    advance(isOverstrike ? m_backspaced.x - m_at.x : width);
    m_lastAdvance = width;
}

void Cursor::advance(InternalUnits distance)
{
    m_at.x += distance;
    m_underline.reach(m_at.x);
}

} // namespace quillrip::pcl
