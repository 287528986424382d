#include "quillrip/pcl/page_sizes.h"

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

/// What ink-jets have beside those, and the numbers that mean other sheets to them.
constexpr std::array kInkjetPageSizes {
    inches(4, 11, 14, 3300, 4200), inches(7, 8, 10, 2400, 3000), inches(15, 5.5, 8.5, 1650, 2550), // Statement
    inches(16, 13, 19, 3900, 5700), // Super B
    millimetres(43, 91, 128, 1075, 1512), // JIS B7
    millimetres(63, 88, 125, 1039, 1476), // B7
    millimetres(65, 176, 250, 2078, 2952), // B5
    millimetres(72, 200, 148, 2362, 1748), // double postcard, fed unfolded
    millimetres(73, 105, 148, 1240, 1748), // A6
    inches(78, 3, 5, 900, 1500), // card
    inches(83, 3.625, 6.5, 1087, 1950), // No. 6 3/4 envelope
    millimetres(110, 120, 235, 1417, 2775), // Chou 3 envelope
    millimetres(111, 90, 205, 1063, 2421), // Chou 4 envelope
    millimetres(113, 240, 332, 2834, 3921), // Kaku 2 envelope
    inches(114, 4.375, 6, 1312, 1800), // card envelope
    inches(117, 12, 12, 3600, 3600), millimetres(119, 120, 165, 1417, 1948), // cabinet photo
    inches(121, 3.5, 5, 1050, 1500), // photo L
    inches(122, 5, 7, 1500, 2100), // photo
    millimetres(126, 127, 178, 1500, 2102), // photo 2L
};

/// Sheets of large-format printers, which have no code of their own.
constexpr std::array kLargeSheets {
    inches(kCustomPaperCode, 12, 18, 3600, 5400), // architects' B
    millimetres(kCustomPaperCode, 329, 483, 3886, 5705), // A3+
    inches(kCustomPaperCode, 17, 22, 5100, 6600), // C
    millimetres(kCustomPaperCode, 420, 594, 4960, 7016), // A2
    inches(kCustomPaperCode, 18, 24, 5400, 7200), // architects' C
    millimetres(kCustomPaperCode, 500, 707, 5906, 8350), // B2
    millimetres(kCustomPaperCode, 594, 841, 7016, 9933), // A1
    inches(kCustomPaperCode, 22, 34, 6600, 10200), // D
    inches(kCustomPaperCode, 24, 36, 7200, 10800), // architects' D
    millimetres(kCustomPaperCode, 707, 1000, 8350, 11811), // B1
    inches(kCustomPaperCode, 30, 42, 9000, 12600), // architects' E1
    inches(kCustomPaperCode, 34, 44, 10200, 13200), // E
    millimetres(kCustomPaperCode, 841, 1189, 9933, 14043), // A0
    inches(kCustomPaperCode, 36, 48, 10800, 14400), // architects' E
};

/// Sizes that a page length in lines may choose, the common ones first.
constexpr std::array kSizesByLength { 2, 26, 3, 1, 6, 27, 80, 81, 90, 91, 100, 25 };

template <typename Table> const PageSize* findIn(const Table& table, int code)
{
    const auto found
        = std::find_if(table.begin(), table.end(), [code](const PageSize& size) { return size.code == code; });
    return found != table.end() ? &*found : nullptr;
}

} // namespace

InternalUnits inUnits(double number, double unit) { return std::llround(std::clamp(number, -1e6, 1e6) * unit); }

const PageSize* findPageSize(int code, PrinterFamily family)
{
    // A number that only ink-jets know tells enough, whatever the job has shown of itself. A negative one is the same
    // sheet, fed the other way round.
    const int sheet = std::abs(code);
    const PageSize* ofInkjets = findIn(kInkjetPageSizes, sheet);
    const PageSize* common = findIn(kPageSizes, sheet);
    return family == PrinterFamily::Laser ? (common ? common : ofInkjets) : (ofInkjets ? ofInkjets : common);
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

const PageSize* findPageSizeByMeasure(InternalUnits width, InternalUnits length)
{
    const auto fits = [width, length](const PageSize& size) {
        const InternalUnits spare = size.dotsLong * kUnitsPerDot - length;
        return std::llabs(size.dotsWide * kUnitsPerDot - width) <= kUnitsPerInch / 20 && spare >= -kUnitsPerDot
            && spare <= kUnitsPerInch / 6;
    };
    const auto in = [&fits](const auto& table) -> const PageSize* {
        const auto found = std::find_if(table.begin(), table.end(), fits);
        return found != table.end() ? &*found : nullptr;
    };
    for (const PageSize* size : { in(kPageSizes), in(kInkjetPageSizes), in(kLargeSheets) }) {
        if (size)
            return size;
    }
    return nullptr;
}

PageSize customPageSize(double width, double length)
{
    return { kCustomPaperCode, width, length, static_cast<int>(std::lround(width * 300 / 720)),
        static_cast<int>(std::lround(length * 300 / 720)), false };
}

bool isPossible(const PageSize& size)
{
    constexpr int kMarginsDots = 150;
    return size.dotsWide > kMarginsDots && size.dotsLong > kMarginsDots;
}

} // namespace quillrip::pcl
