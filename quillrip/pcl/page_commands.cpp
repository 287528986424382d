#include "quillrip/pcl/machine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace quillrip::pcl {

namespace {

/// The text area's rectangle stays where it is on the sheet when the axes turn.
TextArea turned(const TextArea& area, const PageLayout& page, int from, int to)
{
    const Position a = page.fromOrientation(page.toOrientation({ area.left, area.top }, from), to);
    const Position b = page.fromOrientation(page.toOrientation({ area.right, area.bottom }, from), to);
    return { std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y) };
}

} // namespace

// What a new size, length or orientation sets back.
void Machine::layOutPage(const PageLayout& page)
{
    m_state.page = page;
    softFontsChanged(); // bitmap fonts are chosen by orientation, too
    m_state.text = turned(defaultTextArea(page), page, 0, m_state.direction);
    if (!m_isOverlayRunning)
        m_overlayMacro.reset();
    applyRegistration();
    home();
    defaultFrame();
}

void Machine::setPageSize(const Command& command)
{
    const int code = command.value.integer();
    const PageSize* size = findPageSize(code);
    const PageSize custom = customPageSize(m_environment.customWidth, m_environment.customLength);
    if (code == 101 && custom.dotsWide > 150 && custom.dotsLong > 150)
        size = &custom;
    const Environment unsaid;
    m_state.wantsCustomSheet = code == 101 && m_environment.customWidth == unsaid.customWidth
        && m_environment.customLength == unsaid.customLength;
    if (!size)
        return;
    ejectPage(false);
    layOutPage(PageLayout(*size, m_state.page.orientation()));
}

void Machine::setPageLength(const Command& command)
{
    if (m_state.lineSpacing == 0 || command.value.number < 0)
        return;
    const PageLayout standard = defaultState(m_environment).page;
    const InternalUnits length = inUnits(command.value.integer(), static_cast<double>(m_state.lineSpacing));
    PageLayout page(m_state.page.size(), m_state.page.orientation());
    if (length == 0) {
        page = PageLayout(standard.size(), m_state.page.orientation());
    } else if (std::llabs(page.length() - length) > kUnitsPerInch / 6) {
        const PageSize* size = m_state.page.orientation() & 1 ? nullptr : findPageSizeByLength(length);
        if (!size && m_state.wantsCustomSheet)
            size = findLargeSheetByLength(length);
        if (size)
            page = PageLayout(*size, m_state.page.orientation());
        else
            page.setLength(std::clamp<InternalUnits>(length, kUnitsPerInch, page.length()));
    }
    ejectPage(false);
    layOutPage(page);
}

void Machine::setOrientation(const Command& command)
{
    const int orientation = command.value.integer();
    if (orientation < 0 || orientation > 3 || orientation == m_state.page.orientation())
        return;
    ejectPage(false);
    m_state.direction = 0;
    const PageLayout page(m_state.page.size(), orientation);
    m_state.lineSpacing = defaultLineSpacing(m_environment, page);
    m_state.columnWidth = std::llround(currentFont().defaultHmiInches() * kUnitsPerInch);
    m_state.patternReference = {};
    m_state.patternFollowsDirection = true;
    layOutPage(page);
}

void Machine::setPaperSource(const Command& command)
{
    const int source = command.value.integer();
    if (source < -1 || (source > 8 && source < 20) || source > 39)
        return;
    ejectPage(false);
    home();
}

void Machine::setDuplex(const Command& command)
{
    const int mode = command.value.integer();
    if (mode < 0 || mode > 2 || mode == m_state.duplex)
        return;
    ejectPage(false);
    m_state.duplex = mode;
    m_pagesOnSheet = 0;
    applyRegistration();
    home();
}

void Machine::selectSide(const Command& command)
{
    const int side = command.value.integer();
    if (side < 0 || side > 2)
        return;
    ejectPage(false);
    home();
    const int wanted = side == 2 ? 1 : 0;
    // The side in between stays blank.
    if (m_state.duplex != 0 && side != 0 && wanted != m_pagesOnSheet)
        closePage();
}

void Machine::setPrintDirection(const Command& command)
{
    const int degrees = command.value.integer();
    if (degrees != 0 && degrees != 90 && degrees != 180 && degrees != 270)
        return;
    const int direction = degrees / 90;
    if (direction == m_state.direction)
        return;
    endUnderlineRun();
    const PageLayout& page = m_state.page;
    m_state.text = turned(m_state.text, page, m_state.direction, direction);
    m_cursor = page.fromOrientation(page.toOrientation(m_cursor, m_state.direction), direction);
    m_state.direction = direction;
    geometryChanged();
    beginUnderline();
}

void Machine::setLeftRegistration(const Command& command)
{
    m_state.registrationX = inUnits(command.value.number, kUnitsPerDecipoint);
    applyRegistration();
}

void Machine::setTopRegistration(const Command& command)
{
    m_state.registrationY = inUnits(command.value.number, kUnitsPerDecipoint);
    applyRegistration();
}

void Machine::setTopMargin(const Command& command)
{
    const InternalUnits top = inUnits(command.value.number, static_cast<double>(m_state.lineSpacing));
    if (m_state.lineSpacing == 0 || top < 0 || top > pageLength())
        return;
    const bool isAtHome = !m_isMarked && m_cursor == homePosition();
    m_state.text.top = top;
    m_state.text.bottom = defaultTextBottom(top, pageLength());
    if (isAtHome)
        home();
}

void Machine::setTextLength(const Command& command)
{
    const InternalUnits length = inUnits(command.value.number, static_cast<double>(m_state.lineSpacing));
    if (m_state.lineSpacing == 0 || length < 0 || m_state.text.top + length > pageLength())
        return;
    m_state.text.bottom = m_state.text.top + length;
}

void Machine::setPerforationSkip(const Command& command)
{
    const int mode = command.value.integer();
    if (mode != 0 && mode != 1)
        return;
    // The margins stay: drivers send this after the top margin and count on it.
    m_state.skipsPerforation = mode == 1;
}

void Machine::setLeftMargin(const Command& command)
{
    const InternalUnits margin = inUnits(command.value.integer(), static_cast<double>(columnWidth()));
    if (margin < 0 || margin >= m_state.text.right)
        return;
    m_state.text.left = margin;
    if (m_cursor.x < margin)
        moveTo(margin, m_cursor.y);
}

void Machine::setRightMargin(const Command& command)
{
    const InternalUnits margin
        = std::min(inUnits(command.value.integer() + 1.0, static_cast<double>(columnWidth())), pageWidth());
    if (margin <= m_state.text.left)
        return;
    m_state.text.right = margin;
    moveTo(std::min(m_cursor.x, margin), m_cursor.y);
}

void Machine::clearHorizontalMargins(const Command&)
{
    m_state.text.left = 0;
    m_state.text.right = pageWidth();
    moveTo(m_cursor.x, m_cursor.y);
}

void Machine::setColumnWidth(const Command& command)
{
    if (command.value.number < 0 || command.value.number > 840)
        return;
    currentFont(); // a selection still to be made must not undo the new width
    m_state.columnWidth = inUnits(command.value.number, kUnitsPerInch / 120);
}

void Machine::setLineSpacing(const Command& command)
{
    if (command.value.number < 0 || command.value.number > 336)
        return;
    const bool isAtHome = !m_isMarked && m_cursor == homePosition();
    m_state.lineSpacing = inUnits(command.value.number, kUnitsPerInch / 48);
    if (isAtHome)
        home();
}

void Machine::setLinesPerInch(const Command& command)
{
    constexpr std::array kValues { 1, 2, 3, 4, 6, 8, 12, 16, 24, 48 };
    const int lines = command.value.integer() == 0 ? 12 : command.value.integer();
    if (std::find(kValues.begin(), kValues.end(), lines) == kValues.end())
        return;
    const bool isAtHome = !m_isMarked && m_cursor == homePosition();
    m_state.lineSpacing = kUnitsPerInch / lines;
    if (isAtHome)
        home();
}

void Machine::setUnitOfMeasure(const Command& command)
{
    constexpr std::array kValues { 96, 100, 120, 144, 150, 160, 180, 200, 225, 240, 288, 300, 360, 400, 450, 480, 600,
        720, 800, 900, 1200, 1440, 1800, 2400, 3600, 7200 };
    const double wanted = std::clamp(command.value.number, 96.0, 7200.0);
    m_state.unitsPerInch = *std::min_element(kValues.begin(), kValues.end(),
        [wanted](int a, int b) { return std::abs(a - wanted) / a < std::abs(b - wanted) / b; });
}

void Machine::setLineTermination(const Command& command)
{
    const int mode = command.value.integer();
    if (mode >= 0 && mode <= 3)
        m_state.lineTermination = mode;
}

void Machine::setWrap(const Command& command)
{
    const int mode = command.value.integer();
    if (mode == 0 || mode == 1)
        m_state.wrapsLines = mode == 0;
}

// Ink-jet drivers announce a sheet of their own measure here, an edge at a time.
void Machine::extendedSetting(const Command& command)
{
    const ByteView data = command.data;
    if (data.size != 5 || data[0] != 0x0E || data[2] != 0 || (data[1] != 5 && data[1] != 6))
        return;
    const double decipoints = (data[3] * 256 + data[4]) * 720.0 / 300;
    if (decipoints > 0)
        (data[1] == 5 ? m_environment.customWidth : m_environment.customLength) = decipoints;
}

} // namespace quillrip::pcl
