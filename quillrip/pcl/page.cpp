// Pages as the device sees them, and how places on them become device pixels.

#include "quillrip/pcl/machine.h"

#include <algorithm>
#include <cmath>

namespace quillrip::pcl {

namespace {

// Halves round up. The tiny addend keeps a half that arithmetic has made a hair smaller a half.
int rounded(double pixels) { return static_cast<int>(std::floor(std::clamp(pixels, -1e8, 1e8) + 0.5 + 1e-6)); }

} // namespace

PageCanvas Machine::canvas() const { return m_pageIsOpen ? m_canvas : m_device.preview(m_state.page.sheet()); }

bool Machine::ensurePage()
{
    if (m_pageIsOpen)
        return true;
    if (failed())
        return false;
    if (m_pagesBegun >= m_limits.pages) {
        damage("pcl.too-many-pages", "the job has more pages than the limit of " + std::to_string(m_limits.pages));
        fail(RunStatus::LimitExceeded);
        return false;
    }
    const RunStatus status = m_device.beginPage(m_state.page.sheet(), m_canvas);
    if (status != RunStatus::Done) {
        fail(status);
        return false;
    }
    ++m_pagesBegun;
    m_pageIsOpen = true;
    geometryChanged();
    return true;
}

Painter* Machine::painterForMark()
{
    if (!ensurePage())
        return nullptr;
    m_isMarked = true;
    return m_canvas.painter;
}

void Machine::closePage()
{
    if (!ensurePage())
        return;
    m_pageIsOpen = false;
    m_isMarked = false;
    m_replay.pageEnded();
    const RunStatus status = m_device.endPage();
    if (status != RunStatus::Done)
        fail(status);
    m_canvas = {};
    geometryChanged();
    m_pagesOnSheet = m_state.duplex != 0 ? 1 - m_pagesOnSheet : 0;
    applyRegistration();
}

void Machine::ejectPage(bool evenWhenUnmarked)
{
    finishRaster();
    endUnderlineRun();
    if (m_isOverlayRunning || (!evenWhenUnmarked && !m_isMarked))
        return;
    runOverlay();
    closePage();
}

void Machine::runOverlay()
{
    const MacroBytes macro = m_overlayMacro ? m_macros.find(*m_overlayMacro) : nullptr;
    if (!macro || failed())
        return;
    const State saved = m_state;
    const Position cursor = m_cursor;
    State overlay = userDefaults();
    overlay.page = saved.page;
    overlay.registrationX = saved.registrationX;
    overlay.registrationY = saved.registrationY;
    overlay.duplex = saved.duplex;
    overlay.text = defaultTextArea(saved.page);
    m_state = overlay;
    geometryChanged();
    home();
    m_isOverlayRunning = true;
    runMacro(macro);
    finishRaster();
    endUnderlineRun();
    m_isOverlayRunning = false;
    m_state = saved;
    m_cursor = cursor;
    geometryChanged();
    softFontsChanged();
}

const Matrix& Machine::unitsToDevice()
{
    if (m_matrixIsStale) {
        m_unitsToDevice = unitsToDevice(m_state.direction);
        m_matrixIsStale = false;
    }
    return m_unitsToDevice;
}

Matrix Machine::unitsToDevice(int direction) const
{
    return m_state.page.directionToPage(direction) * canvas().pageToDevice;
}

PixelRect Machine::deviceRect(Position from, Position to, int direction) const
{
    const Matrix matrix = unitsToDevice(direction);
    const Point a = matrix.apply({ static_cast<double>(from.x), static_cast<double>(from.y) });
    const Point b = matrix.apply({ static_cast<double>(to.x), static_cast<double>(to.y) });
    return { rounded(std::min(a.x, b.x)), rounded(std::min(a.y, b.y)), rounded(std::max(a.x, b.x)),
        rounded(std::max(a.y, b.y)) };
}

std::shared_ptr<const ClipRegion> Machine::logicalPageClip() const
{
    const InternalUnits bottom = m_state.page.length() + m_state.page.spareLength(0);
    return ClipRegion::ofRect(deviceRect({ 0, 0 }, { m_state.page.width(), bottom }, 0));
}

Position Machine::homePosition() const
{
    return { m_state.text.left, m_state.text.top + (m_state.lineSpacing * 3 + 2) / 4 };
}

void Machine::home()
{
    endUnderlineRun();
    const Position place = homePosition();
    m_cursor = place;
    m_isBeyondMargin = false;
    m_isClippedAtMargin = false;
    m_backspaced.isPending = false;
    beginUnderline();
}

void Machine::moveTo(InternalUnits x, InternalUnits y)
{
    const bool leavesRun = y != m_cursor.y || x < m_cursor.x;
    if (leavesRun)
        endUnderlineRun();
    m_cursor = { x, y };
    m_isBeyondMargin = x >= m_state.text.right;
    m_isClippedAtMargin = false;
    m_backspaced.isPending = false;
    if (leavesRun || !m_underlineRun.isOpen)
        beginUnderline();
    else
        m_underlineRun.to = x;
}

void Machine::moveToClamped(InternalUnits x, InternalUnits y)
{
    if (m_environment.isPlotterRaster) {
        // A plot may lie anywhere about its origin.
        constexpr InternalUnits kFarthest = InternalUnits { 1 } << 40;
        moveTo(std::clamp(x, -kFarthest, kFarthest), std::clamp(y, -kFarthest, kFarthest));
        return;
    }
    // A place that not even the longest sheet has is no sign of that sheet.
    const InternalUnits longest = pageLength() + m_state.page.spareLength(m_state.direction);
    const InternalUnits bottom = y <= longest ? longest : pageLength();
    moveTo(std::clamp<InternalUnits>(x, 0, pageWidth()), std::clamp<InternalUnits>(y, 0, bottom));
}

void Machine::applyRegistration()
{
    // The back of a sheet is seen from the other side: bound at the long edge, left is right; at the short, top is
    // bottom.
    const bool isBack = m_pagesOnSheet == 1;
    const InternalUnits x = isBack && m_state.duplex == 1 ? -m_state.registrationX : m_state.registrationX;
    const InternalUnits y = isBack && m_state.duplex == 2 ? -m_state.registrationY : m_state.registrationY;
    m_state.page.setRegistration(x, y);
    geometryChanged();
}

} // namespace quillrip::pcl
