#include "quillrip/pcl/logical_page.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>

namespace quillrip::pcl {

namespace {

constexpr int kA4 = 26;

/// What else than Letter lies in the tray when nobody says so, the likeliest first.
constexpr std::array kLongerThanLetter { kA4, 3 };

/// What stays free left and right of the logical page.
InternalUnits insetOf(const PageSize& size, int orientation, PrinterFamily family)
{
    const bool isLandscape = orientation & 1;
    if (isLandscape)
        return (size.isMetric ? 59 : 60) * kUnitsPerDot;
    if (family == PrinterFamily::InkjetRaster)
        return kUnitsPerInch / 8;
    // The carriage prints eight inches: all but these of an A4 sheet.
    if (family == PrinterFamily::Inkjet && size.code == kA4)
        return 38 * kUnitsPerDot;
    return (size.isMetric ? 71 : 75) * kUnitsPerDot;
}

/// The first row that those print who have no text margin, below the sheet's edge.
constexpr InternalUnits kInkjetRasterTop = kUnitsPerInch * 7 / 100;

} // namespace

LogicalPage::LogicalPage(const PageSize& size, int orientation, PrinterFamily family)
    : m_family(family)
    , m_size(size)
    , m_orientation(orientation & 3)
{
    const bool landscape = m_orientation & 1;
    const int across = landscape ? size.dotsLong : size.dotsWide;
    const int down = landscape ? size.dotsWide : size.dotsLong;
    m_leftOffset = insetOf(size, m_orientation, family);
    m_topOffset = family == PrinterFamily::InkjetRaster ? kInkjetRasterTop : 0;
    m_width = across * kUnitsPerDot - 2 * m_leftOffset;
    m_length = down * kUnitsPerDot - m_topOffset;
}

void LogicalPage::setLeftOffset(InternalUnits offset)
{
    m_width += 2 * (m_leftOffset - offset);
    m_leftOffset = offset;
}

void LogicalPage::setBleed(InternalUnits left, InternalUnits top)
{
    setLeftOffset(-left);
    m_length += m_topOffset + top;
    m_topOffset = -top;
}

void LogicalPage::changeFamily(PrinterFamily family)
{
    const std::optional<PageSize> size = findPageSize(m_size.code, family);
    LogicalPage other(size ? *size : m_size, m_orientation, family);
    const bool hasOwnLength = m_length != LogicalPage(m_size, m_orientation, m_family).m_length;
    if (hasOwnLength)
        other.m_length = std::min(other.m_length, m_length);
    other.m_isGuessed = m_isGuessed;
    other.m_registrationX = m_registrationX;
    other.m_registrationY = m_registrationY;
    *this = other;
}

LogicalPage LogicalPage::ofPlot(double width, double length)
{
    LogicalPage layout;
    layout.m_size = { kCustomPaperCode, std::max(width, 1.0), std::max(length, 1.0), 0, 0, false };
    layout.m_width = inUnits(layout.m_size.width, kUnitsPerDecipoint);
    layout.m_length = inUnits(layout.m_size.length, kUnitsPerDecipoint);
    layout.m_leftOffset = 0;
    return layout;
}

void LogicalPage::setRegistration(InternalUnits alongWidth, InternalUnits alongLength)
{
    // Each orientation sees the sheet's edges from another side.
    switch (m_orientation) {
    case 1:
        m_registrationX = -alongLength;
        m_registrationY = alongWidth;
        break;
    case 2:
        m_registrationX = -alongWidth;
        m_registrationY = -alongLength;
        break;
    case 3:
        m_registrationX = alongLength;
        m_registrationY = -alongWidth;
        break;
    default:
        m_registrationX = alongWidth;
        m_registrationY = alongLength;
    }
}

Position LogicalPage::toOrientation(Position place, int direction) const
{
    switch (direction & 3) {
    case 1:
        return { place.y, m_length - place.x };
    case 2:
        return { m_width - place.x, m_length - place.y };
    case 3:
        return { m_width - place.y, place.x };
    default:
        return place;
    }
}

Position LogicalPage::fromOrientation(Position place, int direction) const
{
    switch (direction & 3) {
    case 1:
        return { m_length - place.y, place.x };
    case 2:
        return { m_width - place.x, m_length - place.y };
    case 3:
        return { place.y, m_width - place.x };
    default:
        return place;
    }
}

InternalUnits LogicalPage::reachRight(int direction) const
{
    const bool landscape = m_orientation & 1;
    const InternalUnits across = inUnits(landscape ? m_size.length : m_size.width, kUnitsPerDecipoint);
    const InternalUnits down = inUnits(landscape ? m_size.width : m_size.length, kUnitsPerDecipoint);
    const InternalUnits left = m_leftOffset + m_registrationX;
    const InternalUnits top = m_topOffset + m_registrationY;
    switch (direction & 3) {
    case 1:
        return m_length + top;
    case 2:
        return m_width + left;
    case 3:
        return down - top;
    default:
        return across - left;
    }
}

InternalUnits LogicalPage::reachDown(int direction) const { return reachRight(direction + 3) + spareLength(direction); }

InternalUnits LogicalPage::spareLength(int direction) const
{
    if (!m_isGuessed || m_orientation != 0 || (direction & 3) != 0)
        return 0;
    InternalUnits longest = m_length;
    for (const int code : kLongerThanLetter)
        longest = std::max(longest, findPageSize(code)->dotsLong * kUnitsPerDot);
    return longest - m_length;
}

SheetRequest LogicalPage::sheet() const
{
    SheetRequest request;
    request.width = m_size.width;
    request.height = m_size.length;
    request.orientation = m_orientation;
    if (spareLength(0) > 0) {
        for (const int code : kLongerThanLetter) {
            const PageSize size = *findPageSize(code);
            // The logical page stays, the sheet's edge does not.
            const InternalUnits left = m_leftOffset - insetOf(size, 0, m_family);
            request.candidates.push_back({ size.width, size.length, static_cast<double>(left) / kUnitsPerDecipoint });
        }
    }
    return request;
}

Matrix LogicalPage::directionToPage(int direction) const
{
    const Position origin = toOrientation({ 0, 0 }, direction);
    Matrix matrix = Matrix::quarterTurns(4 - (direction & 3));
    matrix.e = static_cast<double>(origin.x + m_leftOffset + m_registrationX);
    matrix.f = static_cast<double>(origin.y + m_topOffset + m_registrationY);
    return matrix * Matrix::scaling(1.0 / kUnitsPerDecipoint, 1.0 / kUnitsPerDecipoint);
}

} // namespace quillrip::pcl
