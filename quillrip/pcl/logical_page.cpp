#include "quillrip/pcl/logical_page.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace quillrip::pcl {

namespace {

constexpr PageSize inches(int code, double width, double length, int dotsWide, int dotsLong)
{
    return { code, width * 720, length * 720, dotsWide, dotsLong, false };
}

constexpr PageSize millimetres(int code, double width, double length, int dotsWide, int dotsLong)
{
    return { code, width * 720 / 25.4, length * 720 / 25.4, dotsWide, dotsLong, true };
}

constexpr std::array kPageSizes {
    inches(1, 7.25, 10.5, 2175, 3150), // Executive
    inches(2, 8.5, 11, 2550, 3300), // Letter
    inches(3, 8.5, 14, 2550, 4200), // Legal
    inches(5, 5.5, 8.5, 1650, 2550), // Statement
    inches(6, 11, 17, 3300, 5100), // Ledger
    inches(10, 8.5, 13, 2550, 3900), // Folio
    inches(13, 4, 6, 1200, 1800), // card
    inches(15, 5, 8, 1500, 2400), // card
    millimetres(17, 195, 270, 2303, 3189), // 16K
    millimetres(18, 216, 330, 2551, 3898), // JIS Executive
    millimetres(19, 270, 390, 3189, 4606), // 8K
    millimetres(24, 105, 148, 1240, 1748), // A6
    millimetres(25, 148, 210, 1748, 2480), // A5
    millimetres(26, 210, 297, 2480, 3507), // A4
    millimetres(27, 297, 420, 3507, 4960), // A3
    millimetres(28, 420, 594, 4960, 7016), // A2
    millimetres(44, 128, 182, 1512, 2150), // JIS B6
    millimetres(45, 182, 257, 2150, 3035), // JIS B5
    millimetres(46, 257, 364, 3035, 4299), // JIS B4
    millimetres(71, 100, 148, 1181, 1748), // postcard
    millimetres(72, 148, 200, 1748, 2362), // double postcard
    inches(74, 4, 6, 1200, 1800), // card
    inches(75, 5, 8, 1500, 2400), // card
    millimetres(78, 105, 148, 1240, 1748), // A6 card
    inches(80, 3.875, 7.5, 1162, 2250), // Monarch envelope
    inches(81, 4.125, 9.5, 1237, 2850), // Com-10 envelope
    inches(89, 3.875, 8.875, 1162, 2662), // No. 9 envelope
    millimetres(90, 110, 220, 1299, 2598), // DL envelope
    millimetres(91, 162, 229, 1913, 2704), // C5 envelope
    millimetres(92, 114, 162, 1346, 1913), // C6 envelope
    millimetres(99, 125, 176, 1476, 2078), // B6 envelope
    millimetres(100, 176, 250, 2078, 2952), // B5 envelope
    inches(109, 4.375, 5.75, 1312, 1725), // A2 envelope
    inches(110, 4.375, 5.75, 1312, 1725), // A2 envelope
};

/// What else than Letter lies in the tray when nobody says so, the likeliest first.
constexpr std::array kLongerThanLetter { 26, 3 };

/// Sheets of large-format printers, which have no code of their own.
constexpr std::array kLargeSheets {
    inches(101, 12, 18, 3600, 5400), // architects' B
    millimetres(101, 329, 483, 3886, 5705), // A3+
    inches(101, 17, 22, 5100, 6600), // C
    millimetres(101, 420, 594, 4960, 7016), // A2
    inches(101, 18, 24, 5400, 7200), // architects' C
    millimetres(101, 500, 707, 5906, 8350), // B2
    millimetres(101, 594, 841, 7016, 9933), // A1
    inches(101, 22, 34, 6600, 10200), // D
    inches(101, 24, 36, 7200, 10800), // architects' D
    millimetres(101, 707, 1000, 8350, 11811), // B1
    inches(101, 30, 42, 9000, 12600), // architects' E1
    inches(101, 34, 44, 10200, 13200), // E
    millimetres(101, 841, 1189, 9933, 14043), // A0
    inches(101, 36, 48, 10800, 14400), // architects' E
};

/// Sizes that a page length in lines may choose, the common ones first.
constexpr std::array kSizesByLength { 2, 26, 3, 1, 6, 27, 80, 81, 90, 91, 100, 25 };

int insetDots(const PageSize& size, bool landscape)
{
    if (landscape)
        return size.isMetric ? 59 : 60;
    return size.isMetric ? 71 : 75;
}

} // namespace

InternalUnits inUnits(double number, double unit) { return std::llround(std::clamp(number, -1e6, 1e6) * unit); }

const PageSize* findPageSize(int code)
{
    for (const PageSize& size : kPageSizes) {
        if (size.code == code)
            return &size;
    }
    return nullptr;
}

const PageSize* findPageSizeByLength(InternalUnits length)
{
    for (const int code : kSizesByLength) {
        const PageSize* size = findPageSize(code);
        if (std::llabs(size->dotsLong * kUnitsPerDot - length) <= kUnitsPerInch / 6)
            return size;
    }
    return nullptr;
}

const PageSize* findLargeSheetByLength(InternalUnits length)
{
    // Lines of a sixth of an inch are rounded down to fit the sheet.
    for (const PageSize& size : kLargeSheets) {
        const InternalUnits spare = size.dotsLong * kUnitsPerDot - length;
        if (spare >= -kUnitsPerDot && spare <= kUnitsPerInch / 6)
            return &size;
    }
    return nullptr;
}

PageSize customPageSize(double width, double length)
{
    return { 101, width, length, static_cast<int>(std::lround(width * 300 / 720)),
        static_cast<int>(std::lround(length * 300 / 720)), false };
}

LogicalPage::LogicalPage(const PageSize& size, int orientation)
    : m_size(size)
    , m_orientation(orientation & 3)
{
    const bool landscape = m_orientation & 1;
    const int across = landscape ? size.dotsLong : size.dotsWide;
    const int down = landscape ? size.dotsWide : size.dotsLong;
    const int inset = insetDots(size, landscape);
    m_width = (across - 2 * inset) * kUnitsPerDot;
    m_length = down * kUnitsPerDot;
    m_leftOffset = inset * kUnitsPerDot;
}

LogicalPage LogicalPage::ofPlot(double width, double length)
{
    LogicalPage layout;
    layout.m_size = { 101, std::max(width, 1.0), std::max(length, 1.0), 0, 0, false };
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
    switch (direction & 3) {
    case 1:
        return m_length + m_registrationY;
    case 2:
        return m_width + left;
    case 3:
        return down - m_registrationY;
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
            const PageSize& size = *findPageSize(code);
            // The logical page stays, the sheet's edge does not.
            const InternalUnits left = m_leftOffset - insetDots(size, false) * kUnitsPerDot;
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
    matrix.f = static_cast<double>(origin.y + m_registrationY);
    return matrix * Matrix::scaling(1.0 / kUnitsPerDecipoint, 1.0 / kUnitsPerDecipoint);
}

} // namespace quillrip::pcl
