// HP-GL/2 on a PCL page: entry, and the picture frame.

#include "quillrip/pcl/command_handlers.h"
#include "quillrip/pcl/cursor.h"
#include "quillrip/pcl/machine.h"
#include "quillrip/pcl/plot_host.h"
#include "quillrip/pcl/plot_visit.h"
#include "quillrip/pcl/state.h"

namespace quillrip::pcl {

namespace {

/// In decipoints or inches: no picture is larger.
constexpr double kLargestMeasure = 32767;

} // namespace

void enterPlot(Machine& machine, const Command& command)
{
    const int mode = command.value.integer();
    if (mode < -1 || mode > 3)
        return;
    if (machine.visit().isOn())
        machine.visit().leave(mode);
    else
        machine.plot().enter(mode == 1 || mode == 3);
}

// HP-GL/2 takes the command itself; elsewhere it only ends a raster, as others do.
void enterPcl(Machine& /*machine*/, const Command& /*command*/) { }

void setFrameSize(Machine& machine, const Command& command)
{
    if (command.value.number < 0 || command.value.number > kLargestMeasure)
        return;
    FrameSettings& frame = machine.state().frame;
    (command.terminator == 'X' ? frame.width : frame.height) = inUnits(command.value.number, kUnitsPerDecipoint);
    machine.plot().frameChanged();
}

void setFrameAnchor(Machine& machine, const Command& command)
{
    if (command.value.integer() != 0)
        return;
    State& state = machine.state();
    state.frame.anchor = state.page.toOrientation(machine.cursor().position(), state.direction);
    machine.plot().frameChanged();
}

void setPlotSize(Machine& machine, const Command& command)
{
    if (command.value.number < 0 || command.value.number > kLargestMeasure)
        return;
    FrameSettings& frame = machine.state().frame;
    (command.terminator == 'K' ? frame.plotWidth : frame.plotHeight) = command.value.number;
    machine.plot().plotSizeChanged();
}

} // namespace quillrip::pcl
