#include "quillrip/hpgl/pens.h"

#include <algorithm>

namespace quillrip::hpgl {

namespace {

constexpr double kDefaultMillimetres = 0.35;
constexpr double kDefaultPercent = 0.1;
/// No pen is wider than this, in decipoints: a quarter of a kilometre.
constexpr double kWidestPen = 7e6;

} // namespace

void Pens::initialise()
{
    m_selected = m_wasChosen ? -1 : m_firstPen;
    setWidthUnit(false);
}

void Pens::select(int pen)
{
    m_wasChosen = true;
    if (pen >= 0)
        m_selected = pen;
}

void Pens::setWidthUnit(bool isRelative)
{
    m_widthsAreRelative = isRelative;
    m_widths.clear();
}

double Pens::defaultWidth() const { return m_widthsAreRelative ? kDefaultPercent : kDefaultMillimetres; }

void Pens::makeWidths() { m_widths.resize(std::max<std::size_t>(m_palette.size(), 2), defaultWidth()); }

void Pens::setWidths(double width)
{
    makeWidths();
    std::fill(m_widths.begin(), m_widths.end(), width);
}

void Pens::setWidth(int pen, double width)
{
    makeWidths();
    m_widths[static_cast<std::size_t>(m_palette.wrapped(pen))] = width;
}

double Pens::widthDecipoints() const
{
    const auto pen = static_cast<std::size_t>(m_palette.wrapped(std::max(m_selected, 0)));
    const double width = pen < m_widths.size() ? m_widths[pen] : defaultWidth();
    const double plotterUnits
        = m_widthsAreRelative ? width / 100 * m_coordinates.diagonal() : width * kPlotterUnitsPerMillimetre;
    return std::min(m_coordinates.toDecipoints(plotterUnits), kWidestPen);
}

} // namespace quillrip::hpgl
