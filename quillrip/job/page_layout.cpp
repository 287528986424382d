#include "quillrip/job/page_layout.h"

#include "quillrip/base/units.h"

#include <algorithm>
#include <cmath>

namespace quillrip {

namespace {

constexpr double kFaxWidth = 1728;
constexpr double kFaxDotsAcross = 204;
constexpr double kFaxDotsDown = 98;
// Letter is 1,734 pixels wide; its outer three on each side are beyond what a printer prints.
constexpr double kWidestUnreducedFax = 1736;

double pixels(double inches, double dotsPerInch) { return std::max(1.0, std::floor(inches * dotsPerInch + 0.5)); }

// The page as read turned counter-clockwise onto a sheet; `across` and `down` are the page's own.
Matrix turned(int quarterTurns, double across, double down)
{
    switch (quarterTurns & 3) {
    case 1:
        return { 0, -1, 1, 0, 0, across };
    case 2:
        return { -1, 0, 0, -1, across, down };
    case 3:
        return { 0, 1, -1, 0, down, 0 };
    default:
        return {};
    }
}

PageLayout faxLayout(FaxMode mode, double across, double down, int orientation)
{
    PageLayout layout;
    layout.format = PixelFormat::Bilevel;
    const bool isWide = across > down;
    if (isWide)
        layout.quarterTurns = (orientation & 1) != 0 ? orientation & 3 : 1;
    const double shortEdge = std::min(across, down) / kDecipointsPerInch;
    const double longEdge = std::max(across, down) / kDecipointsPerInch;
    const double natural = shortEdge * kFaxDotsAcross;
    const double reduction = natural > kWidestUnreducedFax ? kFaxWidth / natural : 1;
    const Resolution drawn { kFaxDotsAcross * reduction, kFaxDotsDown * (mode == FaxMode::Fine ? 2 : 1) * reduction };
    layout.width = kFaxWidth;
    layout.height = pixels(longEdge, drawn.y);
    const double margin = std::floor((kFaxWidth - pixels(shortEdge, drawn.x)) / 2);
    layout.pageToDevice = turned(layout.quarterTurns, across, down)
        * Matrix::scaling(drawn.x / kDecipointsPerInch, drawn.y / kDecipointsPerInch) * Matrix::translation(margin, 0);
    layout.pageResolution = isWide ? Resolution { drawn.y, drawn.x } : drawn;
    layout.imageResolution = { kFaxDotsAcross, kFaxDotsDown * (mode == FaxMode::Fine ? 2 : 1) };
    return layout;
}

} // namespace

PageLayout layoutOf(const PageSettings& settings, const SheetRequest& sheet)
{
    const bool isTurned = (sheet.orientation & 1) != 0;
    // A job may ask for anything; below a decipoint there is no sheet.
    const double across = std::max(1.0, isTurned ? sheet.height : sheet.width);
    const double down = std::max(1.0, isTurned ? sheet.width : sheet.height);
    if (settings.fax != FaxMode::None)
        return faxLayout(settings.fax, across, down, sheet.orientation);

    const double inchesAcross = across / kDecipointsPerInch;
    const double inchesDown = down / kDecipointsPerInch;
    Resolution drawn = settings.resolution;
    if (settings.width)
        drawn.x = *settings.width / inchesAcross;
    if (settings.height)
        drawn.y = *settings.height / inchesDown;
    if (settings.width && !settings.height)
        drawn.y = drawn.x;
    if (settings.height && !settings.width)
        drawn.x = drawn.y;

    PageLayout layout;
    layout.format = settings.format;
    layout.width = settings.width ? *settings.width : pixels(inchesAcross, drawn.x);
    layout.height = settings.height ? *settings.height : pixels(inchesDown, drawn.y);
    layout.pageToDevice = Matrix::scaling(drawn.x / kDecipointsPerInch, drawn.y / kDecipointsPerInch);
    layout.pageResolution = drawn;
    layout.imageResolution = drawn;
    return layout;
}

} // namespace quillrip
