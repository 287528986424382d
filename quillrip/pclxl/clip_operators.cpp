#include "quillrip/pclxl/clip_outline.h"
#include "quillrip/pclxl/machine.h"

#include <algorithm>
#include <cmath>
#include <optional>

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

std::shared_ptr<const Path> outlineOf(const PixelRect& rect)
{
    auto path = std::make_shared<Path>();
    path->rectangle(rect.left, rect.top, rect.right, rect.bottom);
    return path;
}

} // namespace

std::shared_ptr<const ClipRegion> Machine::regionOf(const Path& devicePath)
{
    if (const auto rect = rectangleOf(devicePath))
        return ClipRegion::ofRect(rect->intersected(m_page.bounds));
    if (devicePath.empty())
        return ClipRegion::ofRect({ 0, 0, 0, 0 });
    return ClipRegion::ofPath(devicePath, m_state.clipRule, m_page.bounds);
}

Status Machine::setClip(std::shared_ptr<const ClipRegion> region, std::shared_ptr<const Path> outline, bool isExterior)
{
    if (isExterior) {
        region = region->complement(m_page.bounds);
        outline = nullptr;
    }
    const bool isWholePage = region->isRect() && region->bounds() == m_page.bounds;
    m_state.clip = isWholePage ? nullptr : std::move(region);
    m_state.clipOutline = isWholePage ? nullptr : std::move(outline);
    paintChanged();
    return {};
}

Status Machine::setClipReplace()
{
    auto outline = std::make_shared<const Path>(m_state.path->transformed(m_state.userToDevice));
    auto region = regionOf(*outline);
    return setClip(std::move(region), std::move(outline), m_operands.integer(Attribute::ClipRegion) == 1);
}

Status Machine::setClipIntersect()
{
    auto region = regionOf(m_state.path->transformed(m_state.userToDevice));
    if (m_operands.integer(Attribute::ClipRegion) == 1)
        region = region->complement(m_page.bounds);
    if (m_state.clip)
        region = m_state.clip->intersected(*region);
    return setClip(std::move(region), nullptr, false);
}

Status Machine::setClipRectangle()
{
    const std::array<double, 4>& n = m_operands.find(Attribute::BoundingBox)->numbers;
    Path box;
    box.rectangle(n[0], n[1], n[2], n[3]);
    auto outline = std::make_shared<const Path>(box.transformed(m_state.userToDevice));
    auto region = regionOf(*outline);
    return setClip(std::move(region), std::move(outline), m_operands.integer(Attribute::ClipRegion) == 1);
}

Status Machine::setClipToPage()
{
    m_state.clip = nullptr;
    m_state.clipOutline = nullptr;
    paintChanged();
    return {};
}

Status Machine::setClipMode()
{
    m_state.clipRule = m_operands.integer(Attribute::ClipMode) == 1 ? FillRule::EvenOdd : FillRule::NonZero;
    return {};
}

Status Machine::setPathToClip()
{
    std::shared_ptr<const Path> outline = m_state.clipOutline;
    if (!outline && !m_state.clip)
        outline = outlineOf(m_page.bounds);
    else if (!outline && m_state.clip->isRect())
        outline = outlineOf(m_state.clip->bounds());
    else if (!outline)
        outline = std::make_shared<const Path>(outlineOfRegion(*m_state.clip, m_limits.pathPoints));
    m_state.path.clear();
    m_state.path.edit() = outline->transformed(m_state.userToDevice.inverted());
    m_state.cursor.reset();
    m_state.pathIsOpenAtCursor = false;
    return {};
}

} // namespace quillrip::pclxl
