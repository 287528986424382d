#include "quillrip/pcl/underline_run.h"

#include "quillrip/fonts/font.h"
#include "quillrip/pcl/page.h"
#include "quillrip/pcl/print_model.h"
#include "quillrip/pcl/state.h"

#include <algorithm>

namespace quillrip::pcl {

UnderlineRun::UnderlineRun(const State& state, Page& page, PrintModel& printModel)
    : m_state(state)
    , m_page(page)
    , m_printModel(printModel)
{
}

void UnderlineRun::begin(Position cursor)
{
    m_isOpen = m_state.underline != Underline::Off;
    m_from = cursor;
    m_to = cursor.x;
    const bool isFixed = m_state.underline == Underline::Fixed;
    m_top = isFixed ? 5 * kUnitsPerDot : 0;
    m_thickness = isFixed ? 3 * kUnitsPerDot : 0;
}

// A floating underline runs below the lowest that any font of the line asks for.
void UnderlineRun::note(const Font& font)
{
    if (!m_isOpen || m_state.underline != Underline::Floating)
        return;
    const FontTraits& traits = font.face->traits();
    const bool hasOwn = traits.hasUnderline && traits.underlineThickness > 0;
    double top = 0.2;
    double thickness = 0.05;
    double unit = font.height * kUnitsPerInch / 72; // the defaults are fractions of the height
    if (hasOwn) {
        top = -traits.underlineTop;
        thickness = traits.underlineThickness;
        unit = font.unitInches() * static_cast<double>(kUnitsPerInch);
    }
    m_top = std::max(m_top, inUnits(top, unit));
    m_thickness = std::max(m_thickness, inUnits(thickness, unit));
}

void UnderlineRun::end()
{
    if (!m_isOpen)
        return;
    m_isOpen = false;
    if (m_to <= m_from.x || m_thickness <= 0)
        return;
    Painter* painter = m_page.painterForMark();
    if (!painter)
        return;
    const Position from { m_from.x, m_from.y + m_top };
    PixelRect rect = m_page.deviceRect(from, { m_to, from.y + m_thickness }, m_state.direction);
    rect.right = std::max(rect.right, rect.left + 1);
    rect.bottom = std::max(rect.bottom, rect.top + 1);
    painter->fillRect(rect, m_printModel.paintState(m_state.pattern));
}

} // namespace quillrip::pcl
