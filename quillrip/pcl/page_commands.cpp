#include "quillrip/base/units.h"
#include "quillrip/pcl/command_handlers.h"
#include "quillrip/pcl/cursor.h"
#include "quillrip/pcl/font_slots.h"
#include "quillrip/pcl/machine.h"
#include "quillrip/pcl/macro_runner.h"
#include "quillrip/pcl/page.h"
#include "quillrip/pcl/plot_host.h"
#include "quillrip/pcl/state.h"
#include "quillrip/pcl/underline_run.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <optional>

namespace quillrip::pcl {

namespace {

/// The text area's rectangle stays where it is on the sheet when the axes turn.
TextArea turned(const TextArea& area, const LogicalPage& page, int from, int to)
{
    const Position a = page.fromOrientation(page.toOrientation({ area.left, area.top }, from), to);
    const Position b = page.fromOrientation(page.toOrientation({ area.right, area.bottom }, from), to);
    return { std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y) };
}

// What a new size, length or orientation sets back.
void layOutPage(Machine& machine, const LogicalPage& page)
{
    State& state = machine.state();
    state.page = page;
    machine.fonts().resourcesChanged(); // bitmap fonts are chosen by orientation, too
    state.text = turned(defaultTextArea(page), page, 0, state.direction);
    state.isTopMarginSet = false;
    if (!machine.macros().isOverlayPlaying())
        machine.macros().clearOverlay();
    machine.page().applyRegistration();
    machine.cursor().home();
    machine.plot().setDefaultFrame();
}

// An edge of the sheet that has no number of its own, decipoints.
void setCustomEdge(Machine& machine, bool isWidth, double decipoints)
{
    Environment& environment = machine.environment();
    State& state = machine.state();
    if (decipoints <= 0)
        return;
    (isWidth ? environment.customWidth : environment.customLength) = decipoints;
    const PageSize custom = customPageSize(environment.customWidth, environment.customLength);
    if (state.page.size().code == kCustomPaperCode && !machine.page().isOpen() && isPossible(custom)) {
        state.wantsCustomSheet = false;
        layOutPage(machine, LogicalPage(custom, state.page.orientation(), environment.family));
    }
}

// A borderless page begins beyond the sheet's left and upper edges, so that none of them can stay white.
void setBleed(Machine& machine, bool isLeft, InternalUnits distance)
{
    LogicalPage& page = machine.state().page;
    if (machine.page().isOpen() || page.orientation() != 0 || distance > kUnitsPerInch)
        return;
    const InternalUnits left = isLeft ? distance : page.bleedLeft();
    page.setBleed(left, isLeft ? page.bleedTop() : distance);
    machine.state().text = defaultTextArea(page);
    machine.page().geometryChanged();
}

/// On an unmarked page a new top margin or line spacing takes the cursor along.
bool waitsAtHome(Machine& machine) { return !machine.page().isMarked() && machine.cursor().isAtHome(); }

} // namespace

void setPageSize(Machine& machine, const Command& command)
{
    State& state = machine.state();
    const int code = command.value.integer();
    const Environment& environment = machine.environment();
    std::optional<PageSize> size = findPageSize(code, environment.family);
    const PageSize custom = customPageSize(environment.customWidth, environment.customLength);
    if (code == kCustomPaperCode && isPossible(custom))
        size = custom;
    const Environment unsaid;
    state.wantsCustomSheet = code == kCustomPaperCode && environment.customWidth == unsaid.customWidth
        && environment.customLength == unsaid.customLength;
    state.customLength = 0;
    if (!size)
        return;
    machine.ejectPage(false);
    layOutPage(machine, LogicalPage(*size, state.page.orientation(), environment.family));
}

void setPageLength(Machine& machine, const Command& command)
{
    State& state = machine.state();
    if (state.lineSpacing == 0 || command.value.number < 0)
        return;
    const LogicalPage standard = defaultState(machine.environment()).page;
    const InternalUnits length = inUnits(command.value.integer(), static_cast<double>(state.lineSpacing));
    if (state.wantsCustomSheet)
        state.customLength = length;
    LogicalPage page(state.page.size(), state.page.orientation(), state.page.family());
    if (length == 0) {
        page = LogicalPage(standard.size(), state.page.orientation(), state.page.family());
    } else if (std::llabs(page.length() - length) > kUnitsPerInch / 6) {
        std::optional<PageSize> size;
        if (!(state.page.orientation() & 1))
            size = findPageSizeByLength(length);
        if (!size && state.wantsCustomSheet)
            size = findLargeSheetByLength(length);
        if (size)
            page = LogicalPage(*size, state.page.orientation(), state.page.family());
        else
            page.setLength(std::clamp<InternalUnits>(length, kUnitsPerInch, page.length()));
    }
    machine.ejectPage(false);
    layOutPage(machine, page);
}

void setOrientation(Machine& machine, const Command& command)
{
    State& state = machine.state();
    const int orientation = command.value.integer();
    if (orientation < 0 || orientation > 3 || orientation == state.page.orientation())
        return;
    machine.ejectPage(false);
    state.direction = 0;
    const LogicalPage page(state.page.size(), orientation, state.page.family());
    state.lineSpacing = defaultLineSpacing(machine.environment(), page);
    state.columnWidth = std::llround(machine.fonts().current().defaultHmiInches() * kUnitsPerInch);
    state.patternReference = {};
    state.patternFollowsDirection = true;
    layOutPage(machine, page);
}

void setPaperSource(Machine& machine, const Command& command)
{
    const int source = command.value.integer();
    if (source < -1 || (source > 8 && source < 20) || source > 39)
        return;
    machine.ejectPage(false);
    machine.cursor().home();
}

void setDuplex(Machine& machine, const Command& command)
{
    State& state = machine.state();
    const int mode = command.value.integer();
    if (mode < 0 || mode > 2 || mode == state.duplex)
        return;
    machine.ejectPage(false);
    state.duplex = mode;
    machine.page().beginSheet();
    machine.page().applyRegistration();
    machine.cursor().home();
}

void selectSide(Machine& machine, const Command& command)
{
    const int side = command.value.integer();
    if (side < 0 || side > 2)
        return;
    machine.ejectPage(false);
    machine.cursor().home();
    // The side in between stays blank.
    if (machine.state().duplex != 0 && side != 0 && (side == 2) != machine.page().isBack())
        machine.closePage();
}

void setPrintDirection(Machine& machine, const Command& command)
{
    State& state = machine.state();
    const int degrees = command.value.integer();
    if (degrees != 0 && degrees != 90 && degrees != 180 && degrees != 270)
        return;
    const int direction = degrees / 90;
    if (direction == state.direction)
        return;
    machine.underline().end();
    const LogicalPage& page = state.page;
    state.text = turned(state.text, page, state.direction, direction);
    const Position place = page.toOrientation(machine.cursor().position(), state.direction);
    machine.cursor().restore(page.fromOrientation(place, direction));
    state.direction = direction;
    machine.page().geometryChanged();
    machine.underline().begin(machine.cursor().position());
}

void setLeftRegistration(Machine& machine, const Command& command)
{
    machine.state().registrationX = inUnits(command.value.number, kUnitsPerDecipoint);
    machine.page().applyRegistration();
}

void setTopRegistration(Machine& machine, const Command& command)
{
    machine.state().registrationY = inUnits(command.value.number, kUnitsPerDecipoint);
    machine.page().applyRegistration();
}

void setTopMargin(Machine& machine, const Command& command)
{
    State& state = machine.state();
    const InternalUnits top = inUnits(command.value.number, static_cast<double>(state.lineSpacing));
    if (state.lineSpacing == 0 || top < 0 || top > state.page.length(state.direction))
        return;
    const bool isAtHome = waitsAtHome(machine);
    state.isTopMarginSet = true;
    state.text.top = top;
    state.text.bottom = defaultTextBottom(top, state.page.length(state.direction));
    if (isAtHome)
        machine.cursor().home();
}

void setTextLength(Machine& machine, const Command& command)
{
    State& state = machine.state();
    const InternalUnits length = inUnits(command.value.number, static_cast<double>(state.lineSpacing));
    if (state.lineSpacing == 0 || length < 0 || state.text.top + length > state.page.length(state.direction))
        return;
    state.text.bottom = state.text.top + length;
}

void setPerforationSkip(Machine& machine, const Command& command)
{
    const int mode = command.value.integer();
    if (mode != 0 && mode != 1)
        return;
    // The margins stay: drivers send this after the top margin and count on it.
    machine.state().skipsPerforation = mode == 1;
}

void setLeftMargin(Machine& machine, const Command& command)
{
    State& state = machine.state();
    const InternalUnits margin = inUnits(command.value.integer(), static_cast<double>(machine.fonts().columnWidth()));
    if (margin < 0 || margin >= state.text.right)
        return;
    state.text.left = margin;
    if (machine.cursor().x() < margin)
        machine.cursor().moveTo(margin, machine.cursor().y());
}

void setRightMargin(Machine& machine, const Command& command)
{
    State& state = machine.state();
    const auto columnWidth = static_cast<double>(machine.fonts().columnWidth());
    const InternalUnits margin
        = std::min(inUnits(command.value.integer() + 1.0, columnWidth), state.page.width(state.direction));
    if (margin <= state.text.left)
        return;
    state.text.right = margin;
    machine.cursor().moveTo(std::min(machine.cursor().x(), margin), machine.cursor().y());
}

void clearHorizontalMargins(Machine& machine, const Command& /*command*/)
{
    State& state = machine.state();
    state.text.left = 0;
    state.text.right = state.page.width(state.direction);
    machine.cursor().moveTo(machine.cursor().x(), machine.cursor().y());
}

void setColumnWidth(Machine& machine, const Command& command)
{
    if (command.value.number < 0 || command.value.number > 840)
        return;
    machine.fonts().current(); // a selection still to be made must not undo the new width
    machine.state().columnWidth = inUnits(command.value.number, static_cast<double>(kUnitsPerInch) / 120);
}

void setLineSpacing(Machine& machine, const Command& command)
{
    if (command.value.number < 0 || command.value.number > 336)
        return;
    const bool isAtHome = waitsAtHome(machine);
    machine.state().lineSpacing = inUnits(command.value.number, static_cast<double>(kUnitsPerInch) / 48);
    if (isAtHome)
        machine.cursor().home();
}

void setLinesPerInch(Machine& machine, const Command& command)
{
    constexpr std::array kValues { 1, 2, 3, 4, 6, 8, 12, 16, 24, 48 };
    const int lines = command.value.integer() == 0 ? 12 : command.value.integer();
    if (std::find(kValues.begin(), kValues.end(), lines) == kValues.end())
        return;
    const bool isAtHome = waitsAtHome(machine);
    machine.state().lineSpacing = kUnitsPerInch / lines;
    if (isAtHome)
        machine.cursor().home();
}

void setUnitOfMeasure(Machine& machine, const Command& command)
{
    constexpr std::array kValues { 96, 100, 120, 144, 150, 160, 180, 200, 225, 240, 288, 300, 360, 400, 450, 480, 600,
        720, 800, 900, 1200, 1440, 1800, 2400, 3600, 7200 };
    State& state = machine.state();
    state.isUnitSet = true;
    const double wanted = std::clamp(command.value.number, 96.0, 7200.0);
    state.unitsPerInch = *std::min_element(kValues.begin(), kValues.end(),
        [wanted](int a, int b) { return std::abs(a - wanted) / a < std::abs(b - wanted) / b; });
}

void setLineTermination(Machine& machine, const Command& command)
{
    const int mode = command.value.integer();
    if (mode >= 0 && mode <= 3)
        machine.state().lineTermination = mode;
}

void setWrap(Machine& machine, const Command& command)
{
    const int mode = command.value.integer();
    if (mode == 0 || mode == 1)
        machine.state().wrapsLines = mode == 0;
}

// Ink-jet drivers give the measure of a sheet of their own here, an edge at a time, and how far a borderless page goes
// beyond the sheet, in dots of the job's resolution: before or after they select that sheet, but before its first mark.
void extendedSetting(Machine& machine, const Command& command)
{
    const ByteView data = command.data;
    if (data.size != 5 || data[0] != 0x0E || data[2] != 0)
        return;
    const int number = data[3] * 256 + data[4];
    const double inches = number / jobResolution(machine.state()).value_or(kDotsPerInch);
    switch (data[1]) {
    case 0x01:
    case 0x02:
        machine.recogniseInkjet();
        setBleed(machine, data[1] == 0x01, inUnits(inches, kUnitsPerInch));
        break;
    case 0x05:
    case 0x06:
        machine.recogniseInkjet();
        setCustomEdge(machine, data[1] == 0x05, inches * kDecipointsPerInch);
        break;
    case 0x0D:
        // Borderless on models that enlarge the page themselves.
        machine.recogniseInkjet();
        if (number != 0)
            setBleed(machine, true, 0);
        break;
    default:
        break;
    }
}

} // namespace quillrip::pcl
