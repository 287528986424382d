#include "quillrip/raster/scan/clip_fringe.h"

namespace quillrip {

ClipFringe::ClipFringe(int top, int bottom)
    : m_top(top)
    , m_bottom(bottom)
{
}

void ClipFringe::add(int y, int x, unsigned coverage)
{
    if (coverage == 0 || coverage >= 255 || y < m_top || y >= m_bottom)
        return;
    while (m_rowStarts.size() <= static_cast<std::size_t>(y - m_top))
        m_rowStarts.push_back(m_cells.size());
    m_cells.push_back({ x, static_cast<std::uint8_t>(coverage) });
}

std::size_t ClipFringe::firstOf(int y) const
{
    if (y <= m_top)
        return 0;
    const auto row = static_cast<std::size_t>(y - m_top);
    return row < m_rowStarts.size() ? m_rowStarts[row] : m_cells.size();
}

ClipFringe ClipFringe::moved(int right, int down) const
{
    ClipFringe result = *this;
    result.m_top += down;
    result.m_bottom += down;
    for (Cell& cell : result.m_cells)
        cell.x += right;
    return result;
}

} // namespace quillrip
