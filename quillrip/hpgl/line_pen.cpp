#include "quillrip/hpgl/line_pen.h"

#include "quillrip/base/units.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <utility>

namespace quillrip::hpgl {

namespace {

/// Places on the page beyond this, in decipoints, are drawn here: a quarter of a kilometre away.
constexpr double kFarthestOnPage = 7e6;
/// Finished lines that look the same are handed over together, up to so many points.
constexpr std::size_t kMostGatheredPoints = 512;
/// A line of so many corners is drawn in parts.
constexpr std::size_t kMostLineVertices = std::size_t { 1 } << 18;

/// Work of a line's point before it is painted.
constexpr std::uint64_t kWorkPerPoint = 40;

Point withinReach(Point page)
{
    return { std::clamp(page.x, -kFarthestOnPage, kFarthestOnPage),
        std::clamp(page.y, -kFarthestOnPage, kFarthestOnPage) };
}

} // namespace

LinePen::LinePen(Surface& surface, const Host& host, State& state, const Coordinates& coordinates, const Pens& pens,
    Inks& inks, PlotClip& clip, WorkMeter& work)
    : m_surface(surface)
    , m_host(host)
    , m_state(state)
    , m_coordinates(coordinates)
    , m_pens(pens)
    , m_inks(inks)
    , m_clip(clip)
    , m_work(work)
{
}

void LinePen::drawTo(Point from, Point to, bool endsVector)
{
    if (!m_pens.hasPen())
        return;
    if (m_line.empty())
        m_line.push_back({ m_coordinates.toPage(from), true });
    m_line.push_back({ m_coordinates.toPage(to), endsVector });
    if (m_line.size() >= kMostLineVertices)
        finish();
}

void LinePen::lift()
{
    if (!m_line.empty())
        finish();
    m_phase = 0;
}

void LinePen::finish()
{
    if (m_line.size() > 1) {
        std::vector<LineVertex> line;
        line.swap(m_line);
        draw(line, m_phase);
        line.clear();
        m_line.swap(line); // keeps its memory
    }
    m_line.clear();
}

void LinePen::flush()
{
    if (m_strokes.empty())
        return;
    m_clip.apply();
    if (const std::optional<PenInk> ink = m_inks.ofLines())
        m_surface.stroke(m_strokes, strokeStyle(), *ink);
    m_strokes.clear();
}

void LinePen::end()
{
    finish();
    flush();
}

void LinePen::discard()
{
    m_line.clear();
    m_strokes.clear();
}

void LinePen::drawSeparately(const std::vector<LineVertex>& line)
{
    double phase = 0;
    draw(line, phase);
}

void LinePen::liftFrom(Point plotter)
{
    if (m_hasTouched) {
        finish();
        if (m_pens.hasPen())
            drawDot(m_coordinates.toPage(plotter));
    }
    m_hasTouched = false;
}

void LinePen::useDefaults()
{
    m_type = LineType {};
    m_patterns = {};
    m_attributes = LineAttributes {};
    m_former.isKnown = false;
}

void LinePen::setType(const LineType& type)
{
    m_type = type;
    m_phase = 0;
}

void LinePen::useSolid(Point pen)
{
    if (!m_type.isSolid)
        m_former = { true, m_type, m_phase, pen };
    m_type.isSolid = true;
}

void LinePen::takeUpFormerType(Point pen)
{
    if (!m_former.isKnown || !m_type.isSolid || m_former.pen != pen)
        return;
    m_type = m_former.type;
    m_phase = m_former.phase;
}

double LinePen::patternDecipoints(const PatternLength& length) const
{
    return m_coordinates.toDecipoints(length.isMillimetres ? length.value * kPlotterUnitsPerMillimetre
                                                           : length.value / 100 * m_coordinates.diagonal());
}

bool LinePen::drawsSolid() const
{
    constexpr double kFinestPattern = 0.6; // decipoints: half a dot of a printer's
    return m_type.isSolid || (!m_type.isDotsAtPoints() && patternDecipoints(m_type.length) < kFinestPattern);
}

StrokeStyle LinePen::strokeStyle() const
{
    StrokeStyle style;
    style.width = m_pens.widthDecipoints();
    style.cap = m_attributes.cap;
    style.join = m_attributes.join;
    style.miterLimit = m_attributes.miterLimit;
    return style;
}

void LinePen::draw(const std::vector<LineVertex>& line, double& phase)
{
    m_state.hasDrawn = true;
    if (!m_work.allows(Work::Lines, kWorkPerPoint * line.size()))
        return;
    if (drawsSolid()) {
        gatherSolid(line);
    } else if (m_type.isDotsAtPoints()) {
        for (const LineVertex& vertex : line) {
            if (vertex.endsVector)
                drawDot(withinReach(vertex.at));
        }
    } else if (!m_surface.needsDetail()) {
        for (std::size_t i = 0; i < line.size(); ++i)
            i == 0 ? m_strokes.moveTo(withinReach(line[i].at)) : m_strokes.lineTo(withinReach(line[i].at));
        flush();
    } else {
        gatherDashes(line, phase);
    }
}

void LinePen::gatherSolid(const std::vector<LineVertex>& line)
{
    const Point start = withinReach(line.front().at);
    const bool isPoint = std::all_of(
        line.begin(), line.end(), [&](const LineVertex& vertex) { return withinReach(vertex.at) == start; });
    if (isPoint) {
        drawDot(start);
        return;
    }
    const bool isClosed = line.size() > 3 && line.back().at == line.front().at;
    m_strokes.moveTo(start);
    for (std::size_t i = 1; i + (isClosed ? 1 : 0) < line.size(); ++i)
        m_strokes.lineTo(withinReach(line[i].at));
    if (isClosed)
        m_strokes.close();
    flushWhereNeeded();
}

void LinePen::gatherDashes(std::vector<LineVertex> line, double& phase)
{
    m_clip.apply();
    LinePattern pattern;
    const int type = std::abs(m_type.type);
    const std::vector<double>& own = m_patterns.at(static_cast<std::size_t>(type));
    pattern.shares = own.empty() ? builtInLinePattern(type) : own;
    pattern.length = patternDecipoints(m_type.length);
    pattern.isAdaptive = m_type.type < 0;
    for (LineVertex& vertex : line)
        vertex.at = withinReach(vertex.at);
    const DashPen pen { m_pens.widthDecipoints(), m_attributes.cap };
    const DashedLine dashed = cutIntoDashes(line, pattern, m_clip.area(), pen, m_work, phase);
    m_strokes.append(dashed.dashes);
    for (const Point dot : dashed.dots)
        drawDot(dot);
    flushWhereNeeded();
}

/// Shapes that cross would cancel each other under other operations if they were one.
void LinePen::flushWhereNeeded()
{
    if (m_strokes.pointCount() >= kMostGatheredPoints || m_host.rasterOperation() != kDefaultRasterOperation)
        flush();
}

/// What the pen leaves when it is put down and not moved: its own shape.
void LinePen::drawDot(Point page)
{
    flush();
    m_state.hasDrawn = true;
    const std::optional<PenInk> ink = m_inks.ofLines();
    if (!ink)
        return;
    m_clip.apply();
    const double radius = m_pens.widthDecipoints() / 2;
    Path dot;
    constexpr double kThinnest = 0.5;
    if (m_attributes.cap == LineCap::Round && radius > kThinnest) {
        dot.arc(page, radius, radius, 0, 2 * kPi, true);
        dot.close();
    } else {
        dot.rectangle(page.x - radius, page.y - radius, page.x + radius, page.y + radius);
    }
    m_surface.fill(dot, FillRule::NonZero, *ink);
}

} // namespace quillrip::hpgl
