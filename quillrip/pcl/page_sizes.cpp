#include "quillrip/pcl/page_sizes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <utility>

namespace quillrip::pcl {

namespace {

struct Entry {
    int code;
    PaperName paper;
    bool isAcross = false; ///< fed with its long edge first
};

constexpr std::array kPageSizes {
    Entry { 1, PaperName::Executive },
    Entry { 2, PaperName::Letter },
    Entry { 3, PaperName::Legal },
    Entry { 5, PaperName::Statement },
    Entry { 6, PaperName::Ledger },
    Entry { 10, PaperName::Folio },
    Entry { 13, PaperName::Card4x6 },
    Entry { 15, PaperName::Card5x8 },
    Entry { 17, PaperName::Jis16K },
    Entry { 18, PaperName::JisExecutive },
    Entry { 19, PaperName::Jis8K },
    Entry { 24, PaperName::A6 },
    Entry { 25, PaperName::A5 },
    Entry { 26, PaperName::A4 },
    Entry { 27, PaperName::A3 },
    Entry { 28, PaperName::A2 },
    Entry { 44, PaperName::JisB6 },
    Entry { 45, PaperName::JisB5 },
    Entry { 46, PaperName::JisB4 },
    Entry { 71, PaperName::Postcard },
    Entry { 72, PaperName::DoublePostcard },
    Entry { 74, PaperName::Card4x6 },
    Entry { 75, PaperName::Card5x8 },
    Entry { 80, PaperName::Monarch },
    Entry { 81, PaperName::Com10 },
    Entry { 89, PaperName::Com9 },
    Entry { 90, PaperName::DL },
    Entry { 91, PaperName::C5 },
    Entry { 92, PaperName::C6 },
    Entry { 99, PaperName::IsoB6 },
    Entry { 100, PaperName::IsoB5 },
    Entry { 109, PaperName::EnvelopeA2 },
};

/// What ink-jets have beside those, and the numbers that mean other sheets to them.
constexpr std::array kInkjetPageSizes {
    Entry { 4, PaperName::Inch11x14 },
    Entry { 7, PaperName::Inch8x10 },
    Entry { 15, PaperName::Statement },
    Entry { 16, PaperName::SuperB },
    Entry { 43, PaperName::Card91x128 }, // JIS B7
    Entry { 63, PaperName::PhotoL }, // B7
    Entry { 65, PaperName::IsoB5 },
    Entry { 72, PaperName::DoublePostcard, true }, // unfolded
    Entry { 73, PaperName::A6 },
    Entry { 78, PaperName::Card3x5 },
    Entry { 83, PaperName::Com6 },
    Entry { 110, PaperName::Chou3 },
    Entry { 111, PaperName::Chou4 },
    Entry { 113, PaperName::Kaku2 },
    Entry { 114, PaperName::EnvelopeCard },
    Entry { 117, PaperName::Inch12x12 },
    Entry { 119, PaperName::Card120x165 }, // cabinet photo
    Entry { 121, PaperName::Photo35x5 },
    Entry { 122, PaperName::Photo5x7 },
    Entry { 126, PaperName::Photo2L },
};

/// Sheets of large-format printers, which have no code of their own.
constexpr std::array kLargeSheets {
    Entry { kCustomPaperCode, PaperName::ArchB },
    Entry { kCustomPaperCode, PaperName::A3Plus },
    Entry { kCustomPaperCode, PaperName::AnsiC },
    Entry { kCustomPaperCode, PaperName::A2 },
    Entry { kCustomPaperCode, PaperName::ArchC },
    Entry { kCustomPaperCode, PaperName::IsoB2 },
    Entry { kCustomPaperCode, PaperName::A1 },
    Entry { kCustomPaperCode, PaperName::AnsiD },
    Entry { kCustomPaperCode, PaperName::ArchD },
    Entry { kCustomPaperCode, PaperName::IsoB1 },
    Entry { kCustomPaperCode, PaperName::ArchE1 },
    Entry { kCustomPaperCode, PaperName::AnsiE },
    Entry { kCustomPaperCode, PaperName::A0 },
    Entry { kCustomPaperCode, PaperName::ArchE },
};

/// Sizes that a page length in lines may choose, the common ones first.
constexpr std::array kSizesByLength { 2, 26, 3, 1, 6, 27, 80, 81, 90, 91, 100, 25 };

PageSize pageSizeOf(const Entry& entry)
{
    const Paper& paper = paperOf(entry.paper);
    PageSize size { entry.code, paper.width.count, paper.length.count, paper.dotsWide.count, paper.dotsLong.count,
        paper.isMetric };
    if (entry.isAcross) {
        std::swap(size.width, size.length);
        std::swap(size.dotsWide, size.dotsLong);
    }
    return size;
}

/// The first that is as wanted.
template <typename Table, typename Wanted> std::optional<PageSize> findIn(const Table& table, Wanted isWanted)
{
    for (const Entry& entry : table) {
        const PageSize size = pageSizeOf(entry);
        if (isWanted(size))
            return size;
    }
    return std::nullopt;
}

/// So many lines, which were rounded down to a sixth of an inch, fill the sheet.
bool holdsLines(const PageSize& size, InternalUnits length)
{
    const InternalUnits spare = size.dotsLong * kUnitsPerDot - length;
    return spare >= -kUnitsPerDot && spare <= kUnitsPerInch / 6;
}

} // namespace

InternalUnits inUnits(double number, double unit) { return std::llround(std::clamp(number, -1e6, 1e6) * unit); }

std::optional<PageSize> findPageSize(int code, PrinterFamily family)
{
    // A number that only ink-jets know tells enough, whatever the job has shown of itself. A negative one is the same
    // sheet, fed the other way round.
    const auto hasCode = [sheet = std::abs(code)](const PageSize& size) { return size.code == sheet; };
    const std::optional<PageSize> ofInkjets = findIn(kInkjetPageSizes, hasCode);
    const std::optional<PageSize> common = findIn(kPageSizes, hasCode);
    return family == PrinterFamily::Laser ? (common ? common : ofInkjets) : (ofInkjets ? ofInkjets : common);
}

std::optional<PageSize> findPageSizeByLength(InternalUnits length)
{
    for (const int code : kSizesByLength) {
        const std::optional<PageSize> size = findPageSize(code);
        if (std::llabs(size->dotsLong * kUnitsPerDot - length) <= kUnitsPerInch / 6)
            return size;
    }
    return std::nullopt;
}

std::optional<PageSize> findLargeSheetByLength(InternalUnits length)
{
    return findIn(kLargeSheets, [length](const PageSize& size) { return holdsLines(size, length); });
}

std::optional<PageSize> findPageSizeByMeasure(InternalUnits width, InternalUnits length)
{
    const auto fits = [width, length](const PageSize& size) {
        return std::llabs(size.dotsWide * kUnitsPerDot - width) <= kUnitsPerInch / 20 && holdsLines(size, length);
    };
    std::optional<PageSize> found = findIn(kPageSizes, fits);
    if (!found)
        found = findIn(kInkjetPageSizes, fits);
    return found ? found : findIn(kLargeSheets, fits);
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
