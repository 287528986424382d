#include "quillrip/pcl/command_handlers.h"
#include "quillrip/pcl/current_raster.h"
#include "quillrip/pcl/error_state.h"
#include "quillrip/pcl/machine.h"
#include "quillrip/pcl/state.h"

#include <algorithm>
#include <cmath>

namespace quillrip::pcl {

namespace {

constexpr int kLargestCount = 65535;
/// No device has more dots to the inch.
constexpr double kLargestResolution = 9600;

} // namespace

void setRasterResolution(Machine& machine, const Command& command)
{
    State& state = machine.state();
    if (command.value.number < 1)
        return;
    state.raster.resolution = std::min(std::trunc(command.value.number), kLargestResolution);
    state.raster.isResolutionSet = true;
    if (!state.raster.componentData.empty())
        state.raster.unitResolution = state.raster.resolution;
    if (isOfEarliestInkjets(state.raster.resolution))
        machine.recogniseInkjet();
    // Plotters count moves in the raster's dots.
    if (machine.environment().isPlotterRaster)
        state.unitsPerInch = static_cast<int>(state.raster.resolution);
}

// Quality, depletion and seed rows: of no meaning for an image, but only PCL 3 ink-jets have them. (Shingling is known
// to ink-jets of PCL 5 as well.) Drivers that serve both kinds send them to lasers, too, having entered plain PCL.
void noteInkjet(Machine& machine, const Command& /*command*/)
{
    if (!machine.environment().isLanguageNamed)
        machine.recogniseInkjet();
}

void setPresentation(Machine& machine, const Command& command)
{
    const int mode = command.value.integer();
    if (mode == 0 || mode == 3)
        machine.state().raster.presentation = mode;
}

void setSourceHeight(Machine& machine, const Command& command)
{
    if (command.value.number >= 0)
        machine.state().raster.height = std::min(command.value.integer(), kLargestCount);
}

void setSourceWidth(Machine& machine, const Command& command)
{
    if (command.value.number >= 0)
        machine.state().raster.width = std::min(command.value.integer(), kLargestCount);
}

void setDestinationSize(Machine& machine, const Command& command)
{
    State& state = machine.state();
    if (command.value.number < 0)
        return;
    const InternalUnits size = inUnits(std::min(command.value.number, 32767.0), kUnitsPerDecipoint);
    (command.terminator == 'H' ? state.raster.destinationWidth : state.raster.destinationHeight) = size;
}

void setCompression(Machine& machine, const Command& command)
{
    if (command.value.number >= 0)
        machine.state().raster.compression = command.value.integer();
}

void configureRasterData(Machine& machine, const Command& command)
{
    machine.recogniseInkjet();
    if (RasterLayout::forComponents(command.data, 1) && RasterLayout::resolutionOf(command.data))
        machine.state().raster.setComponents(command.data);
    else
        machine.errors().warn(
            "pcl.raster-configuration", "a raster data configuration that is not understood was skipped");
}

void startRaster(Machine& machine, const Command& command)
{
    const int mode = command.value.integer();
    if (mode < 0 || mode > 3)
        return;
    machine.raster().start(mode);
}

void endRaster(Machine& machine, const Command& command)
{
    State& state = machine.state();
    // The raster itself has been ended already, as by any command that is no part of it.
    if (command.terminator == 'C') {
        state.raster.compression = 0;
        state.raster.leftMargin = 0;
    }
}

void moveRasterRows(Machine& machine, const Command& command)
{
    machine.raster().skipRows(std::min(command.value.integer(), 32767));
}

void transferPlane(Machine& machine, const Command& command) { machine.raster().transferPlane(command.data); }

void transferRow(Machine& machine, const Command& command) { machine.raster().transferRow(command.data); }

} // namespace quillrip::pcl
