#include "quillrip/pcl/page.h"

#include "quillrip/pcl/error_state.h"
#include "quillrip/pcl/state.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace quillrip::pcl {

namespace {

// Halves round up. The tiny addend keeps a half that arithmetic has made a hair smaller a half.
int rounded(double pixels) { return static_cast<int>(std::floor(std::clamp(pixels, -1e8, 1e8) + 0.5 + 1e-6)); }

} // namespace

Page::Page(PageDevice& device, const Limits& limits, State& state, ErrorState& errors)
    : m_device(device)
    , m_limits(limits)
    , m_state(state)
    , m_errors(errors)
{
}

PageCanvas Page::canvas() const { return m_isOpen ? m_canvas : m_device.preview(m_state.page.sheet()); }

bool Page::ensureOpen()
{
    if (m_isOpen)
        return true;
    if (m_errors.failed())
        return false;
    if (m_begun >= m_limits.pages) {
        m_errors.damage(
            "pcl.too-many-pages", "the job has more pages than the limit of " + std::to_string(m_limits.pages));
        m_errors.fail(RunStatus::LimitExceeded);
        return false;
    }
    const RunStatus status = m_device.beginPage(m_state.page.sheet(), m_canvas);
    if (status != RunStatus::Done) {
        m_errors.fail(status);
        return false;
    }
    ++m_begun;
    m_isOpen = true;
    geometryChanged();
    return true;
}

Painter* Page::painterForMark()
{
    if (!ensureOpen())
        return nullptr;
    m_isMarked = true;
    return m_canvas.painter;
}

void Page::close()
{
    m_isOpen = false;
    m_isMarked = false;
    m_errors.fail(m_device.endPage());
    m_canvas = {};
    m_isBack = m_state.duplex != 0 && !m_isBack;
    applyRegistration();
}

void Page::giveBack()
{
    m_isOpen = false;
    m_isMarked = false;
    m_begun = 0;
    m_canvas = {};
    geometryChanged();
}

const Matrix& Page::unitsToDevice()
{
    if (m_matrixIsStale) {
        m_unitsToDevice = unitsToDevice(m_state.direction);
        m_matrixIsStale = false;
    }
    return m_unitsToDevice;
}

Matrix Page::unitsToDevice(int direction) const
{
    return m_state.page.directionToPage(direction) * canvas().pageToDevice;
}

PixelRect Page::deviceRect(Position from, Position to, int direction) const
{
    const Matrix matrix = unitsToDevice(direction);
    const Point a = matrix.apply({ static_cast<double>(from.x), static_cast<double>(from.y) });
    const Point b = matrix.apply({ static_cast<double>(to.x), static_cast<double>(to.y) });
    return { rounded(std::min(a.x, b.x)), rounded(std::min(a.y, b.y)), rounded(std::max(a.x, b.x)),
        rounded(std::max(a.y, b.y)) };
}

std::shared_ptr<const ClipRegion> Page::logicalPageClip() const
{
    const InternalUnits bottom = m_state.page.length() + m_state.page.spareLength(0);
    return ClipRegion::ofRect(deviceRect({ 0, 0 }, { m_state.page.width(), bottom }, 0));
}

void Page::applyRegistration()
{
    // The back of a sheet is seen from the other side: bound at the long edge, left is right; at the short, top is
    // bottom.
    const InternalUnits x = m_isBack && m_state.duplex == 1 ? -m_state.registrationX : m_state.registrationX;
    const InternalUnits y = m_isBack && m_state.duplex == 2 ? -m_state.registrationY : m_state.registrationY;
    m_state.page.setRegistration(x, y);
    geometryChanged();
}

} // namespace quillrip::pcl
