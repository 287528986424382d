#include "quillrip/hpgl/area_filler.h"

#include "quillrip/hpgl/hatching.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

namespace quillrip::hpgl {

namespace {

constexpr std::size_t kMostHatchCrossings = std::size_t { 4 } << 20;
/// Work of a polygon's corner each time that it is taken from the buffer.
constexpr std::uint64_t kUnitsPerCorner = 20;

} // namespace

AreaFiller::AreaFiller(Surface& surface, State& state, const Coordinates& coordinates, const Pens& pens, Inks& inks,
    PlotClip& clip, LinePen& linePen, WorkMeter& work)
    : m_surface(surface)
    , m_state(state)
    , m_coordinates(coordinates)
    , m_pens(pens)
    , m_inks(inks)
    , m_clip(clip)
    , m_linePen(linePen)
    , m_work(work)
{
}

void AreaFiller::fill(const Polygon& polygon, FillRule rule)
{
    if (polygon.empty() || !m_work.allows(Work::Shapes, kUnitsPerCorner * polygon.size()))
        return;
    const FillType& type = m_inks.fillType();
    constexpr double kRightAngle = 90;
    switch (type.kind) {
    case FillKind::ParallelLines:
        hatch(polygon, rule, type.parallel, 0);
        break;
    case FillKind::CrossedLines:
        hatch(polygon, rule, type.cross, 0);
        hatch(polygon, rule, type.cross, kRightAngle);
        break;
    default:
        fill(polygon.outline(m_coordinates.plotterToPage()), rule);
        break;
    }
}

void AreaFiller::fill(const Path& page, FillRule rule)
{
    std::optional<PenInk> ink = m_inks.ofAreas();
    if (!ink)
        return;
    ink->isArea = true;
    m_state.hasDrawn = true;
    m_linePen.flush();
    m_clip.apply();
    m_surface.fill(page, rule, *ink);
}

void AreaFiller::hatch(const Polygon& polygon, FillRule rule, const Hatching& hatching, double turn)
{
    HatchRequest request;
    request.spacing = hatching.spacing;
    if (hatching.unit == Hatching::Unit::DiagonalPercent)
        request.spacing *= m_coordinates.diagonal() / 100;
    else if (hatching.unit == Hatching::Unit::UserUnits)
        request.spacing *= m_coordinates.userUnit();
    request.angle = hatching.angle;
    if (m_coordinates.isMirrored())
        request.angle = -request.angle;
    request.angle += turn;
    request.anchor = m_inks.anchor();
    request.rule = rule;
    request.atMost = kMostHatchCrossings;
    m_clip.apply();
    request.visible = m_coordinates.plotterToPage().inverted().boundsOf(m_clip.area());

    std::vector<HatchLine> lines;
    const double spacingOnPage = m_coordinates.toDecipoints(request.spacing);
    // Lines that touch each other, or that no device can tell apart, make a solid area.
    constexpr double kFinestSpacing = 0.6;
    const bool isSolid = m_linePen.drawsSolid() && spacingOnPage <= std::max(m_pens.widthDecipoints(), kFinestSpacing);
    // Of dashed lines that overlap within a device pixel, one for each pixel shows what all of them would.
    const double leavesNothingOut = std::min(m_surface.pixelPitch(), m_pens.widthDecipoints());
    if (leavesNothingOut >= 2 * spacingOnPage)
        request.spacing *= std::floor(leavesNothingOut / spacingOnPage);
    if (isSolid || !m_surface.needsDetail() || spacingOnPage <= kFinestSpacing
        || !hpgl::hatch(polygon, request, m_work, lines)) {
        std::optional<PenInk> ink = m_inks.ofLines();
        if (!ink)
            return;
        ink->isArea = true;
        m_surface.fill(polygon.outline(m_coordinates.plotterToPage()), rule, *ink);
        return;
    }
    for (const HatchLine& line : lines)
        m_linePen.drawSeparately(
            { { m_coordinates.toPage(line.from), true }, { m_coordinates.toPage(line.to), true } });
    m_linePen.flush();
}

void AreaFiller::edge(const Polygon& polygon)
{
    if (!m_pens.hasPen() || !m_work.allows(Work::Shapes, kUnitsPerCorner * polygon.size()))
        return;
    std::vector<LineVertex> line;
    for (std::size_t i = 0; i < polygon.subpolygonCount(); ++i) {
        line.clear();
        for (const Polygon::Vertex* vertex = polygon.begin(i); vertex != polygon.end(i); ++vertex) {
            if (vertex != polygon.begin(i) && !vertex->isPenDown) {
                if (line.size() > 1)
                    m_linePen.drawSeparately(line);
                line.clear();
            }
            line.push_back({ m_coordinates.toPage(vertex->at), vertex->endsVector });
        }
        if (line.size() > 1)
            m_linePen.drawSeparately(line);
    }
    m_linePen.flush();
}

} // namespace quillrip::hpgl
