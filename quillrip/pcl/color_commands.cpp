#include "quillrip/pcl/machine.h"

#include <algorithm>

namespace quillrip::pcl {

namespace {

/// Resolutions that only the 180 dpi colour ink-jets have.
bool isInkjetResolution(double resolution) { return resolution == 90 || resolution == 180; }

} // namespace

Rgb Machine::shown(Rgb color) const
{
    if (!m_state.isMonochrome)
        return color;
    const std::uint8_t light = luminance(color);
    return { light, light, light };
}

void Machine::setSimpleColor(const Command& command)
{
    if (auto palette = Palette::simple(command.value.integer())) {
        m_state.palettes.replaceActive(std::move(*palette));
        m_state.raster.componentData.clear();
    }
}

void Machine::configureImageData(const Command& command)
{
    const auto model = ColorModel::parse(command.data);
    if (!model) {
        warn("pcl.image-data", "image data configured in a way that is not defined, skipped");
        return;
    }
    m_state.palettes.replaceActive(Palette::forModel(*model));
    m_state.raster.componentData.clear();
}

void Machine::setColorComponent(const Command& command)
{
    m_state.colorComponents[static_cast<std::size_t>(command.terminator - 'A')]
        = std::clamp(command.value.number, -32767.0, 32767.0);
}

void Machine::assignColor(const Command& command)
{
    const int index = command.value.integer();
    if (index >= 0 && static_cast<std::size_t>(index) < m_state.palettes.active().size()
        && isInkjetResolution(m_state.raster.resolution) && m_state.palettes.active().isFixed()) {
        // The colour ink-jets of 180 dpi let the palette of their three planes be programmed.
        m_state.palettes.edit().setReflectance(static_cast<std::size_t>(index), m_state.colorComponents);
        m_state.colorComponents = { 0, 0, 0 };
        return;
    }
    const Palette& active = m_state.palettes.active();
    if (index >= 0 && static_cast<std::size_t>(index) < active.size() && !active.isFixed())
        m_state.palettes.edit().setComponents(static_cast<std::size_t>(index), m_state.colorComponents);
    m_state.colorComponents = { 0, 0, 0 };
}

void Machine::setForeground(const Command& command)
{
    if (command.value.number >= 0)
        m_state.foreground = m_state.palettes.active().color(static_cast<std::size_t>(command.value.integer()));
}

void Machine::pushOrPopPalette(const Command& command)
{
    const int operation = command.value.integer();
    if (operation == 0)
        m_state.palettes.push(m_limits.stateDepth);
    else if (operation == 1)
        m_state.palettes.pop();
}

void Machine::selectPalette(const Command& command) { m_state.palettes.select(command.value.integer()); }

void Machine::setPaletteControlId(const Command& command)
{
    m_state.paletteControlId = std::clamp(command.value.integer(), 0, 32767);
}

void Machine::controlPalettes(const Command& command)
{
    switch (command.value.integer()) {
    case 0:
        m_state.palettes.removeAll();
        break;
    case 1:
        m_state.palettes.clearStack();
        break;
    case 2:
        m_state.palettes.remove(m_state.paletteControlId);
        break;
    case 6:
        m_state.palettes.copyActiveTo(m_state.paletteControlId);
        break;
    default:
        break;
    }
}

void Machine::setRenderAlgorithm(const Command& command)
{
    const int algorithm = command.value.integer();
    if (algorithm >= 0 && algorithm <= 19)
        m_state.palettes.edit().setRenderAlgorithm(algorithm);
}

void Machine::setGamma(const Command& command)
{
    if (command.value.number >= 0 && command.value.number <= 4)
        m_state.palettes.edit().setGamma(command.value.number);
}

void Machine::downloadLookup(const Command& command)
{
    const std::shared_ptr<const ColorLookup> lookup = ColorLookup::parse(command.data);
    if (!lookup && !command.data.empty()) {
        warn("pcl.lookup-table", "colour lookup tables of a wrong size were skipped");
        return;
    }
    m_state.palettes.edit().setLookup(lookup);
}

void Machine::setMonochrome(const Command& command)
{
    const int mode = command.value.integer();
    if (mode == 0 || mode == 1)
        m_state.isMonochrome = mode == 1;
}

} // namespace quillrip::pcl
