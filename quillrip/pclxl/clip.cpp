#include "quillrip/pclxl/clip.h"

#include "quillrip/pclxl/clip_outline.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace quillrip::pclxl {

namespace {

/// The first pixel whose centre lies at or behind an edge.
int firstPixel(double edge) { return static_cast<int>(std::ceil(std::clamp(edge, -1e8, 1e8) - 0.5)); }

/// The pixels of a path that is one upright rectangle, as nearly all clips are.
std::optional<PixelRect> rectangleOf(const Path& path)
{
    using Verb = Path::Verb;
    const auto& verbs = path.verbs();
    const auto& p = path.points();
    std::size_t lines = 0;
    for (std::size_t i = 0; i < verbs.size(); ++i) {
        const bool isLast = i + 1 == verbs.size();
        if ((i == 0) != (verbs[i] == Verb::Move) || verbs[i] == Verb::Cubic || (verbs[i] == Verb::Close && !isLast))
            return std::nullopt;
        lines += verbs[i] == Verb::Line;
    }
    const bool endsAtStart = lines == 4 && p[4] == p[0];
    if (lines != 3 && !endsAtStart)
        return std::nullopt;
    const bool isUpright = (p[0].x == p[1].x && p[1].y == p[2].y && p[2].x == p[3].x && p[3].y == p[0].y)
        || (p[0].y == p[1].y && p[1].x == p[2].x && p[2].y == p[3].y && p[3].x == p[0].x);
    if (!isUpright)
        return std::nullopt;
    return PixelRect { firstPixel(std::min(p[0].x, p[2].x)), firstPixel(std::min(p[0].y, p[2].y)),
        firstPixel(std::max(p[0].x, p[2].x)), firstPixel(std::max(p[0].y, p[2].y)) };
}

} // namespace

std::shared_ptr<const ClipRegion> Clip::regionOf(const Path& devicePath, const ClipGround& ground) const
{
    if (const auto rect = rectangleOf(devicePath))
        return ClipRegion::ofRect(rect->intersected(ground.page));
    if (devicePath.empty())
        return ClipRegion::ofRect({ 0, 0, 0, 0 });
    return ClipRegion::ofPath(devicePath, m_rule, ground.page, &ground.work, ground.edges);
}

void Clip::set(std::shared_ptr<const ClipRegion> region, std::shared_ptr<const Path> outline, const PixelRect& page)
{
    if (region->isRect() && region->bounds() == page) {
        toPage();
        return;
    }
    m_region = std::move(region);
    m_outline = std::move(outline);
}

void Clip::toPage()
{
    m_region = nullptr;
    m_outline = nullptr;
}

void Clip::replace(Path devicePath, const ClipGround& ground, bool isExterior)
{
    auto region = regionOf(devicePath, ground);
    if (isExterior)
        set(region->complement(ground.page), nullptr, ground.page);
    else
        set(std::move(region), std::make_shared<const Path>(std::move(devicePath)), ground.page);
}

void Clip::intersect(const Path& devicePath, const ClipGround& ground, bool isExterior)
{
    auto region = regionOf(devicePath, ground);
    if (isExterior)
        region = region->complement(ground.page);
    if (m_region)
        region = m_region->intersected(*region);
    set(std::move(region), nullptr, ground.page);
}

Path Clip::outline(const PixelRect& page, std::size_t maxPoints) const
{
    if (m_outline)
        return *m_outline;
    if (m_region && !m_region->isRect())
        return outlineOfRegion(*m_region, maxPoints);
    const PixelRect rect = m_region ? m_region->bounds() : page;
    Path path;
    path.rectangle(rect.left, rect.top, rect.right, rect.bottom);
    return path;
}

std::size_t Clip::runCount() const
{
    std::size_t runs = 0;
    if (!m_region || m_region->isRect())
        return runs;
    for (int y = m_region->bounds().top; y < m_region->bounds().bottom; ++y) {
        runs += static_cast<std::size_t>(m_region->end(y) - m_region->begin(y)) + 1;
        if (const ClipFringe* fringe = m_region->fringe())
            runs += static_cast<std::size_t>(fringe->end(y) - fringe->begin(y));
    }
    return runs;
}

} // namespace quillrip::pclxl
