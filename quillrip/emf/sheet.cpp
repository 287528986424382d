#include "quillrip/emf/sheet.h"

#include "quillrip/base/units.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace quillrip::emf {

namespace {

constexpr double kDecipointsPerMillimeter = 720 / kMillimetresPerInch;
/// Printable areas come in whole millimetres.
constexpr double kRounding = 1;

bool fits(Size area, Size sheet)
{
    return area.width <= sheet.width + kRounding && area.height <= sheet.height + kRounding;
}

Size turned(Size size) { return { size.height, size.width }; }

/// Letter, Legal, A4, A3, A5, A6, Executive, Tabloid, B4 and B5 of JIS.
constexpr std::array<int, 10> kUsualPapers { 1, 5, 9, 8, 11, 70, 7, 3, 12, 13 };

/// The usual sheet with the narrowest edges around the area; nothing where all are too small or far too large.
std::optional<Size> nearestSheet(Size area)
{
    constexpr double kWidestSlack = 30; // mm, both edges together
    std::optional<Size> best;
    double least = 0;
    for (const int paper : kUsualPapers) {
        const Size upright = sheetOfPaperNumber(paper);
        for (const Size sheet : { upright, turned(upright) }) {
            const double slackX = sheet.width - area.width;
            const double slackY = sheet.height - area.height;
            if (!fits(area, sheet) || slackX > kWidestSlack || slackY > kWidestSlack)
                continue;
            if (!best || slackX + slackY < least) {
                best = sheet;
                least = slackX + slackY;
            }
        }
    }
    return best;
}

SheetRequest requestOf(Size sheet)
{
    // A page that is wider than high is printed across a sheet that is fed upright.
    const bool isAcross = sheet.width > sheet.height;
    SheetRequest request;
    request.width = std::min(sheet.width, sheet.height) * kDecipointsPerMillimeter;
    request.height = std::max(sheet.width, sheet.height) * kDecipointsPerMillimeter;
    request.orientation = isAcross ? 1 : 0;
    return request;
}

} // namespace

std::optional<SheetPlan> planFrame(const MetafileHeader& header)
{
    constexpr double kFrameUnits = 100; // per millimetre
    const Size scale = header.pixelsPerMillimeter();
    double left = header.frame.left / kFrameUnits;
    double top = header.frame.top / kFrameUnits;
    Size size { (double(header.frame.right) - header.frame.left) / kFrameUnits,
        (double(header.frame.bottom) - header.frame.top) / kFrameUnits };
    if (!header.hasFrame()) {
        if (!header.hasBounds())
            return std::nullopt;
        left = header.bounds.left / scale.width;
        top = header.bounds.top / scale.height;
        size = { (double(header.bounds.right) - header.bounds.left + 1) / scale.width,
            (double(header.bounds.bottom) - header.bounds.top + 1) / scale.height };
    }
    SheetPlan plan;
    plan.request = requestOf(size);
    plan.referenceToPage = Matrix::scaling(1 / scale.width, 1 / scale.height) * Matrix::translation(-left, -top)
        * Matrix::scaling(kDecipointsPerMillimeter, kDecipointsPerMillimeter);
    return plan;
}

SheetPlan planSheet(const MetafileHeader& header, const std::optional<Devmode>& settings)
{
    const Size area = header.printableArea();
    SheetPlan plan;
    std::optional<Size> sheet;
    const std::vector<Size> candidates = settings ? settings->sheets() : std::vector<Size>();
    for (const bool isTurned : { false, true }) {
        for (const Size& candidate : candidates) {
            const Size size = isTurned ? turned(candidate) : candidate;
            if (!sheet && fits(area, size))
                sheet = size;
        }
    }
    if (!sheet && settings) {
        sheet = nearestSheet(area);
        plan.isGuessed = true;
    }
    if (!sheet)
        sheet = area;
    const Size resolution = header.dotsPerInch();
    const double offsetX = std::max(0.0, (sheet->width - area.width) / 2);
    const double offsetY = std::max(0.0, (sheet->height - area.height) / 2);
    plan.request = requestOf(*sheet);
    plan.referenceToPage
        = Matrix::scaling(kMillimetresPerInch / resolution.width, kMillimetresPerInch / resolution.height)
        * Matrix::translation(offsetX, offsetY) * Matrix::scaling(kDecipointsPerMillimeter, kDecipointsPerMillimeter);
    return plan;
}

} // namespace quillrip::emf
