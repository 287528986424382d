#include "quillrip/hpgl/plotter_host.h"

#include "quillrip/fonts/font_library.h"
#include "quillrip/raster/compose/area_patterns.h"

#include <algorithm>

namespace quillrip::hpgl {

Rgb PlotterHost::paletteColor(std::size_t index) const { return m_palette[std::min(index, m_palette.size() - 1)]; }

void PlotterHost::newPalette(std::size_t size) { m_palette.assign(std::max<std::size_t>(size, 2), Rgb {}); }

void PlotterHost::resizePalette(std::size_t size) { m_palette.resize(std::max<std::size_t>(size, 2)); }

void PlotterHost::setPaletteColor(std::size_t index, Rgb color)
{
    if (index < m_palette.size())
        m_palette[index] = color;
}

std::shared_ptr<const PatternTile> PlotterHost::areaPattern(AreaPattern kind, int id, const PageCanvas& canvas)
{
    if (kind != AreaPattern::CrossHatch)
        return nullptr;
    const PatternTile tile = hatchTile(id);
    if (tile.width == 0)
        return nullptr;
    constexpr double kPatternDpi = 300;
    return std::make_shared<const PatternTile>(
        tile.scaled(canvas.resolution.x / kPatternDpi, canvas.resolution.y / kPatternDpi));
}

SelectionContext PlotterHost::fontContext() const
{
    SelectionContext context;
    context.allowsBitmapFonts = false;
    return context;
}

} // namespace quillrip::hpgl
