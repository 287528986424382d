#include "quillrip/pcl/print_model.h"

#include "quillrip/pcl/page.h"
#include "quillrip/pcl/pattern_cache.h"
#include "quillrip/pcl/state.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace quillrip::pcl {

PrintModel::PrintModel(const State& state, const Page& page, PatternCache& patterns)
    : m_state(state)
    , m_page(page)
    , m_patterns(patterns)
{
}

Rgb PrintModel::shown(Rgb color) const { return m_state.isMonochrome ? grayOf(color) : color; }

PaintState PrintModel::paintState(PatternChoice choice)
{
    PaintState state;
    state.rop = m_state.rasterOperation;
    state.sourceTransparent = m_state.sourceTransparent;
    state.patternTransparent = m_state.patternTransparent;
    state.texture.color = shown(m_state.foreground);
    if (choice.kind == PatternKind::Solid)
        return state;
    const int direction = m_state.patternFollowsDirection ? m_state.direction : 0;
    const std::shared_ptr<const PatternTile> tile
        = m_patterns.tile(choice, m_state.palettes.active(), direction, m_page);
    if (!tile)
        return state;
    state.texture.tile = tile;
    const Point reference = m_page.unitsToDevice(0).apply(
        { static_cast<double>(m_state.patternReference.x), static_cast<double>(m_state.patternReference.y) });
    const int x = static_cast<int>(std::floor(std::clamp(reference.x, -1e6, 1e6) + 0.5 + 1e-6));
    const int y = static_cast<int>(std::floor(std::clamp(reference.y, -1e6, 1e6) + 0.5 + 1e-6));
    // The tile's first pixel stands at the reference point; turned, the tile lies on another side of it.
    const int turns = quarterTurnsOf(m_page.unitsToDevice(direction));
    state.texture.originX = turns == 1 || turns == 2 ? x - tile->width : x;
    state.texture.originY = turns == 2 || turns == 3 ? y - tile->height : y;
    return state;
}

} // namespace quillrip::pcl
