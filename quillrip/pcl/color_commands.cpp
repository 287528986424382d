#include "quillrip/pcl/command_handlers.h"
#include "quillrip/pcl/error_state.h"
#include "quillrip/pcl/machine.h"
#include "quillrip/pcl/state.h"

#include <algorithm>
#include <memory>

namespace quillrip::pcl {

void setSimpleColor(Machine& machine, const Command& command)
{
    State& state = machine.state();
    constexpr int kBlackAndInks = -4;
    if (command.value.integer() == kBlackAndInks)
        machine.recogniseInkjet();
    if (auto palette = Palette::simple(command.value.integer())) {
        state.palettes.replaceActive(std::move(*palette));
        state.raster.componentData.clear();
    }
}

void configureImageData(Machine& machine, const Command& command)
{
    State& state = machine.state();
    const auto model = ColorModel::parse(command.data);
    if (!model) {
        machine.errors().warn("pcl.image-data", "image data configured in a way that is not defined, skipped");
        return;
    }
    state.palettes.replaceActive(Palette::forModel(*model));
    state.raster.componentData.clear();
}

void setColorComponent(Machine& machine, const Command& command)
{
    machine.state().colorComponents[static_cast<std::size_t>(command.terminator - 'A')]
        = std::clamp(command.value.number, -32767.0, 32767.0);
}

void assignColor(Machine& machine, const Command& command)
{
    State& state = machine.state();
    const int index = command.value.integer();
    if (index >= 0 && static_cast<std::size_t>(index) < state.palettes.active().size()
        && isOfEarliestInkjets(state.raster.resolution) && state.palettes.active().isFixed()) {
        // The colour ink-jets of 180 dpi let the palette of their three planes be programmed.
        state.palettes.edit().setReflectance(static_cast<std::size_t>(index), state.colorComponents);
        state.colorComponents = { 0, 0, 0 };
        return;
    }
    const Palette& active = state.palettes.active();
    if (index >= 0 && static_cast<std::size_t>(index) < active.size() && !active.isFixed())
        state.palettes.edit().setComponents(static_cast<std::size_t>(index), state.colorComponents);
    state.colorComponents = { 0, 0, 0 };
}

void setForeground(Machine& machine, const Command& command)
{
    State& state = machine.state();
    if (command.value.number >= 0)
        state.foreground = state.palettes.active().color(static_cast<std::size_t>(command.value.integer()));
}

void pushOrPopPalette(Machine& machine, const Command& command)
{
    State& state = machine.state();
    const int operation = command.value.integer();
    if (operation == 0)
        state.palettes.push(machine.limits().stateDepth);
    else if (operation == 1)
        state.palettes.pop();
}

void selectPalette(Machine& machine, const Command& command)
{
    machine.state().palettes.select(command.value.integer());
}

void setPaletteControlId(Machine& machine, const Command& command)
{
    machine.state().paletteControlId = std::clamp(command.value.integer(), 0, 32767);
}

void controlPalettes(Machine& machine, const Command& command)
{
    State& state = machine.state();
    switch (command.value.integer()) {
    case 0:
        state.palettes.removeAll();
        break;
    case 1:
        state.palettes.clearStack();
        break;
    case 2:
        state.palettes.remove(state.paletteControlId);
        break;
    case 6:
        state.palettes.copyActiveTo(state.paletteControlId);
        break;
    default:
        break;
    }
}

void setRenderAlgorithm(Machine& machine, const Command& command)
{
    const int algorithm = command.value.integer();
    if (algorithm >= 0 && algorithm <= 19)
        machine.state().palettes.edit().setRenderAlgorithm(algorithm);
}

void setGamma(Machine& machine, const Command& command)
{
    if (command.value.number >= 0 && command.value.number <= 4)
        machine.state().palettes.edit().setGamma(command.value.number);
}

void downloadLookup(Machine& machine, const Command& command)
{
    const std::shared_ptr<const ColorLookup> lookup = ColorLookup::parse(command.data);
    if (!lookup && !command.data.empty()) {
        machine.errors().warn("pcl.lookup-table", "colour lookup tables of a wrong size were skipped");
        return;
    }
    machine.state().palettes.edit().setLookup(lookup);
}

void setMonochrome(Machine& machine, const Command& command)
{
    const int mode = command.value.integer();
    if (mode == 0 || mode == 1)
        machine.state().isMonochrome = mode == 1;
}

} // namespace quillrip::pcl
