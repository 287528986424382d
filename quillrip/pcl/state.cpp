#include "quillrip/pcl/state.h"

#include <algorithm>
#include <cstdint>

namespace quillrip::pcl {

namespace {

constexpr InternalUnits kDefaultMargin = kUnitsPerInch / 2;
constexpr int kLetter = 2;
constexpr InternalUnits kSixLinesPerInch = kUnitsPerInch / 6;
constexpr int kPlotterDotsPerInch = 300;

} // namespace

InternalUnits defaultTextBottom(InternalUnits top, InternalUnits pageLength)
{
    return std::max(top, pageLength - kDefaultMargin);
}

TextArea defaultTextArea(const LogicalPage& page)
{
    if (page.family() == PrinterFamily::InkjetRaster)
        return { 0, 0, page.width(), page.length() };
    const InternalUnits top = std::min(kDefaultMargin, page.length());
    return { 0, top, page.width(), defaultTextBottom(top, page.length()) };
}

InternalUnits defaultLineSpacing(const Environment& environment, const LogicalPage& page)
{
    if (environment.formLines < 5 || environment.formLines > 128)
        return kSixLinesPerInch;
    return std::max<InternalUnits>(1, (page.length() - 2 * kDefaultMargin) / environment.formLines);
}

std::optional<double> jobResolution(const State& state)
{
    if (state.isUnitSet)
        return state.unitsPerInch;
    if (state.raster.isResolutionSet)
        return state.raster.resolution;
    return std::nullopt;
}

State defaultState(const Environment& environment)
{
    State state;
    if (environment.isPlotterRaster) {
        // The page is the plot's and comes with every visit; the plotter's own dots are the unit until another is set.
        state.text = {};
        state.lineSpacing = 0; // the position is at the origin until something moves it
        state.raster.resolution = state.unitsPerInch = kPlotterDotsPerInch;
        return state;
    }
    std::optional<PageSize> size = findPageSize(environment.pageSize, environment.family);
    const PageSize custom = customPageSize(environment.customWidth, environment.customLength);
    const bool isCustom = environment.pageSize == kCustomPaperCode && isPossible(custom);
    if (!size)
        size = findPageSize(kLetter);
    state.page = LogicalPage(isCustom ? custom : *size, environment.orientation, environment.family);
    if (!environment.isPaperNamed && size->code == kLetter && !isCustom)
        state.page.setGuessed();
    state.text = defaultTextArea(state.page);
    state.lineSpacing = defaultLineSpacing(environment, state.page);
    state.lineTermination = environment.lineTermination;
    state.wrapsLines = environment.wrapLines;
    for (FontSlot& slot : state.fonts) {
        slot.request.symbolSet = static_cast<std::uint16_t>(environment.symbolSet);
        slot.request.pitch = environment.pitch;
        slot.request.height = environment.pointSize;
    }
    return state;
}

} // namespace quillrip::pcl
