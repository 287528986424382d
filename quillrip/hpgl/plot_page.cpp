#include "quillrip/hpgl/plot_page.h"

#include "quillrip/base/paper.h"
#include "quillrip/hpgl/state.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quillrip::hpgl {

namespace {

/// Sizes that a whole sheet can have: half a centimetre to five metres.
constexpr double kSmallestSheet = 200;
constexpr double kLargestSheet = 200000;
/// Drawings may lie beyond a sheet's edge by so much: half a heavy pen, but of small drawings, whose own measure that
/// would be, no more than half an ordinary one.
constexpr double kMostSlack = 80;
constexpr double kLeastSlack = 10;
constexpr double kMargin = 400;

/// Plotter units, long edge first.
Point sheetOf(PaperName name)
{
    const Paper& paper = paperOf(name);
    return { std::round(paper.length.millimetres() * kPlotterUnitsPerMillimetre),
        std::round(paper.width.millimetres() * kPlotterUnitsPerMillimetre) };
}

constexpr std::array<PaperName, 5> kMetricSheets { PaperName::A4, PaperName::A3, PaperName::A2, PaperName::A1,
    PaperName::A0 };
constexpr std::array<PaperName, 5> kInchSheets { PaperName::Letter, PaperName::Ledger, PaperName::AnsiC,
    PaperName::AnsiD, PaperName::AnsiE };
/// By length, for PS with one operand.
constexpr std::array<PaperName, 8> kSheetsByLength { PaperName::Letter, PaperName::A4, PaperName::Legal, PaperName::A3,
    PaperName::Ledger, PaperName::A2, PaperName::A1, PaperName::A0 };

/// A sheet in the plot's own directions and where the rotated system's origin lies on it.
struct Placed {
    Point size;
    Point lowerLeft; ///< in the rotated system
};

// Plotter units count upwards: the side of the smaller y is the lower one.
Point lowOf(const Rect& rect) { return { rect.left, rect.top }; }
Point highOf(const Rect& rect) { return { rect.right, rect.bottom }; }
Point sizeOf(const Rect& rect) { return { rect.width(), rect.height() }; }

bool isNear(double a, double b)
{
    constexpr double kTolerance = 0.015;
    return std::abs(a - b) <= kTolerance * b;
}

double slackOf(const Rect& extent)
{
    constexpr double kShare = 0.01;
    return std::clamp(kShare * std::max(extent.width(), extent.height()), kLeastSlack, kMostSlack);
}

/// The standard sheet that a size is meant to be, or the size itself.
Point snapped(Point size)
{
    for (const auto* sheets : { &kMetricSheets, &kInchSheets }) {
        for (const PaperName name : *sheets) {
            const Point sheet = sheetOf(name);
            if (isNear(size.x, sheet.x) && isNear(size.y, sheet.y))
                return sheet;
            if (isNear(size.x, sheet.y) && isNear(size.y, sheet.x))
                return { sheet.y, sheet.x };
        }
    }
    return size;
}

/// The smallest standard sheet of at least that size, along the x axis first.
std::optional<Point> smallestSheet(Point size, bool isMetric)
{
    for (const PaperName name : isMetric ? kMetricSheets : kInchSheets) {
        const Point sheet = sheetOf(name);
        if (size.x <= sheet.x && size.y <= sheet.y)
            return sheet;
        if (size.x <= sheet.y && size.y <= sheet.x)
            return Point { sheet.y, sheet.x };
    }
    return std::nullopt;
}

/// A sheet that a rectangle of the plot itself stands for.
std::optional<Placed> fromRectangle(const std::optional<Rect>& rect, const Rect& extent, bool isMetric)
{
    if (!rect || !rect->contains(extent, slackOf(extent)))
        return std::nullopt;
    constexpr double kLeast = 2000;
    const Point size = sizeOf(*rect);
    if (size.x < kLeast || size.y < kLeast || size.x > kLargestSheet || size.y > kLargestSheet)
        return std::nullopt;
    constexpr double kAtCorner = 40;
    const bool isAtCorner = std::abs(rect->left) <= kAtCorner && std::abs(rect->top) <= kAtCorner;
    if (isAtCorner)
        return Placed { snapped(size), {} };
    if (rect->left < 0 || rect->top < 0)
        return Placed { size, lowOf(*rect) };
    // Set in from the edges as P1 and P2 of desktop plotters are.
    constexpr double kWidestInset = 1200;
    if (rect->left > kWidestInset || rect->top > kWidestInset)
        return std::nullopt;
    if (const auto sheet = smallestSheet(highOf(*rect), isMetric))
        return Placed { *sheet, {} };
    return std::nullopt;
}

Placed fromExtent(const Rect& extent, bool isMetric)
{
    const Point size = sizeOf(extent);
    const double slack = slackOf(extent);
    if (extent.left >= -slack && extent.top >= -slack) {
        // What reaches farther than a pen does is not cut off: the sheet lies lower.
        const Point lowerLeft { extent.left < -kLeastSlack ? extent.left : 0,
            extent.top < -kLeastSlack ? extent.top : 0 };
        if (const auto sheet = smallestSheet(highOf(extent) - lowerLeft - Point { slack, slack }, isMetric))
            return { *sheet, lowerLeft };
    }
    const auto isCentred = [](double low, double high) {
        constexpr double kLopsided = 0.2;
        return low < 0 && high > 0 && std::abs(low + high) <= kLopsided * (high - low);
    };
    if (isCentred(extent.left, extent.right) && isCentred(extent.top, extent.bottom)) {
        const Point reach { std::max(-extent.left, extent.right), std::max(-extent.top, extent.bottom) };
        if (const auto sheet = smallestSheet(reach * 2, isMetric))
            return { *sheet, *sheet * -0.5 };
    }
    const Point margin { kMargin, kMargin };
    return { size + margin * 2, lowOf(extent) - margin };
}

Placed place(const PlotFacts& facts, const Environment& environment)
{
    const bool isTurned = (facts.quarterTurns & 1) && !facts.hasRaster;
    const auto upright = [&](double length, double width) {
        return Placed { isTurned ? Point { width, length } : Point { length, width }, {} };
    };
    if (environment.paperWidth > 0 && environment.paperHeight > 0) {
        Placed paper = upright(
            environment.paperWidth / kDecipointsPerPlotterUnit, environment.paperHeight / kDecipointsPerPlotterUnit);
        // Raster cannot be turned, so the sheet is fed as the raster needs it.
        const Point needed { facts.plotLength.value_or(facts.extent.right),
            facts.plotWidth.value_or(facts.extent.bottom) };
        if (facts.hasRaster && (needed.x > needed.y) != (paper.size.x > paper.size.y))
            std::swap(paper.size.x, paper.size.y);
        return paper;
    }
    if (facts.plotLength && facts.plotWidth)
        return upright(*facts.plotLength, *facts.plotWidth);
    if (facts.plotLength) {
        for (const PaperName name : kSheetsByLength) {
            const Point sheet = sheetOf(name);
            if (*facts.plotLength <= sheet.x)
                return upright(sheet.x, sheet.y);
        }
        return upright(*facts.plotLength, sheetOf(kSheetsByLength.back()).x);
    }
    const Rect extent = facts.extent.isNothing() ? Rect {} : facts.extent;
    const bool isMetric = environment.prefersMetricPaper;
    const Point assumed = assumedPaper(environment);
    const Placed paper = upright(assumed.x, assumed.y);
    if (facts.usesDefaultPoints && Rect { 0, 0, paper.size.x, paper.size.y }.contains(extent, slackOf(extent)))
        return paper;
    if (const auto window = fromRectangle(facts.inputWindow, extent, isMetric))
        return *window;
    if (const auto points = fromRectangle(facts.inputPoints, extent, isMetric))
        return *points;
    return fromExtent(extent, isMetric);
}

} // namespace

Point assumedPaper(const Environment& environment)
{
    if (environment.paperWidth > 0 && environment.paperHeight > 0)
        return { environment.paperWidth / kDecipointsPerPlotterUnit,
            environment.paperHeight / kDecipointsPerPlotterUnit };
    return sheetOf(environment.prefersMetricPaper ? kMetricSheets.front() : kInchSheets.front());
}

PlotPage plotPage(const PlotFacts& facts, const Environment& environment)
{
    Placed placed = place(facts, environment);
    placed.size.x = std::max(placed.size.x, kSmallestSheet);
    placed.size.y = std::max(placed.size.y, kSmallestSheet);

    PlotPage page;
    double reduction = 1;
    if (placed.size.x > kLargestSheet || placed.size.y > kLargestSheet) {
        page.isReduced = true;
        const Point largest = sheetOf(kMetricSheets.back());
        reduction = std::min(largest.x / placed.size.x, largest.y / placed.size.y);
    }
    Point plot = placed.size * kDecipointsPerPlotterUnit;
    if (facts.hasRaster) {
        // From the unrotated system to the one whose x axis runs to the reader's right.
        std::swap(plot.x, plot.y);
        std::swap(placed.lowerLeft.x, placed.lowerLeft.y);
    }
    const Point onPage { std::max(plot.x * reduction, 1.0), std::max(plot.y * reduction, 1.0) };
    page.sheet.width = std::min(onPage.x, onPage.y);
    page.sheet.height = std::max(onPage.x, onPage.y);
    page.sheet.orientation = onPage.x > onPage.y ? 1 : 0;

    PictureFrame& frame = page.frame;
    const int turns = facts.hasRaster ? 1 : facts.hasMixedTurns ? 0 : facts.quarterTurns;
    frame.quarterTurns = turns;
    frame.width = onPage.x;
    frame.height = onPage.y;
    frame.plotWidth = turns & 1 ? plot.y : plot.x;
    frame.plotHeight = turns & 1 ? plot.x : plot.y;
    frame.left = -placed.lowerLeft.x * kDecipointsPerPlotterUnit * reduction;
    frame.top = (facts.hasRaster ? -1 : 1) * placed.lowerLeft.y * kDecipointsPerPlotterUnit * reduction;
    frame.cutsAtFrame = false;
    frame.clipLeft = 0;
    frame.clipTop = 0;
    frame.clipRight = onPage.x;
    frame.clipBottom = onPage.y;
    return page;
}

} // namespace quillrip::hpgl
