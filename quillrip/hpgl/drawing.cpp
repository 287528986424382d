// From pen movements to strokes on the page, and what ink they are made with.

#include "quillrip/hpgl/machine.h"

#include <algorithm>
#include <cmath>

namespace quillrip::hpgl {

namespace {

constexpr Rgb kWhite { 255, 255, 255 };
/// Places on the page beyond this, in decipoints, are drawn here: a quarter of a kilometre away.
constexpr double kFarthestOnPage = 7e6;
/// Finished lines that look the same are handed over together, up to so many points.
constexpr std::size_t kMostGatheredPoints = 512;

Point withinReach(Point page)
{
    return { std::clamp(page.x, -kFarthestOnPage, kFarthestOnPage),
        std::clamp(page.y, -kFarthestOnPage, kFarthestOnPage) };
}

} // namespace

double Machine::penWidthDecipoints() const
{
    const auto pen = static_cast<std::size_t>(wrappedPen(std::max(m_state.selectedPen, 0)));
    const auto& widths = m_state.penWidths;
    const double standard = m_state.widthsAreRelative ? kDefaultPenPercent : kDefaultPenMillimetres;
    const double width = pen < widths.size() ? widths[pen] : standard;
    const double plotterUnits
        = m_state.widthsAreRelative ? width / 100 * diagonal() : width * kPlotterUnitsPerMillimetre;
    return std::min(plotterUnits * m_plotScale * kDecipointsPerInch / kPlotterUnitsPerInch, kFarthestOnPage);
}

double Machine::patternDecipoints(const PatternLength& length) const
{
    const double plotterUnits
        = length.isMillimetres ? length.value * kPlotterUnitsPerMillimetre : length.value / 100 * diagonal();
    return plotterUnits * m_plotScale * kDecipointsPerInch / kPlotterUnitsPerInch;
}

StrokeStyle Machine::strokeStyle() const
{
    static constexpr LineCap kCaps[] = { LineCap::Butt, LineCap::Square, LineCap::Triangle, LineCap::Round };
    static constexpr LineJoin kJoins[] = { LineJoin::MiterClipped, LineJoin::MiterBevel, LineJoin::Triangle,
        LineJoin::Round, LineJoin::Bevel, LineJoin::None };
    StrokeStyle style;
    style.width = penWidthDecipoints();
    style.cap = kCaps[m_state.lineAttributes.end - 1];
    style.join = kJoins[m_state.lineAttributes.join - 1];
    style.miterLimit = m_state.lineAttributes.miterLimit;
    return style;
}

int Machine::wrappedPen(int pen) const
{
    const int pens = static_cast<int>(std::max<std::size_t>(m_host.paletteSize(), 2));
    if (pen <= 0)
        return 0;
    return pen < pens ? pen : (pen - 1) % (pens - 1) + 1;
}

Rgb Machine::penColor(int pen) const { return m_host.paletteColor(static_cast<std::size_t>(wrappedPen(pen))); }

/// Nothing when the pen leaves no mark: none was selected, or it is white and white is transparent.
std::optional<Ink> Machine::penInk(int pen) const
{
    if (pen < 0)
        return std::nullopt;
    Ink ink;
    ink.color = penColor(pen);
    ink.isTransparent = m_state.isTransparent;
    if (ink.color == kWhite && m_state.isTransparent)
        return std::nullopt;
    return ink;
}

std::optional<Ink> Machine::lineInk()
{
    const ScreenedVectors& screened = m_state.screened;
    switch (screened.type) {
    case 1:
        return shadingInk(screened.shading);
    case 2:
        return rasterInk(screened.rasterFill, screened.usesCurrentPen);
    case 21:
        return storedPatternInk(AreaPattern::CrossHatch, screened.hatchPattern);
    case 22:
        return storedPatternInk(AreaPattern::User, screened.userPattern);
    default:
        return penInk(m_state.selectedPen);
    }
}

/// Draws the line in progress; the next one goes on in the line type.
void Machine::finishLine()
{
    if (m_line.size() > 1) {
        std::vector<LineVertex> line;
        line.swap(m_line);
        drawLine(line, m_linePhase);
        line.clear();
        m_line.swap(line); // keeps its memory
    }
    m_line.clear();
}

void Machine::drawSeparateLine(const std::vector<LineVertex>& line)
{
    double phase = 0;
    drawLine(line, phase);
}

void Machine::drawLine(const std::vector<LineVertex>& line, double& phase)
{
    m_hasDrawn = true;
    if (m_state.lineType.isSolid) {
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
        // Shapes that cross would cancel each other under other operations if they were one.
        if (m_strokes.pointCount() >= kMostGatheredPoints || m_host.rasterOperation() != kDefaultRasterOperation)
            flushStrokes();
        return;
    }
    if (m_state.lineType.type == 0) {
        for (const LineVertex& vertex : line) {
            if (vertex.endsVector)
                drawDot(withinReach(vertex.at));
        }
        return;
    }
    if (!m_surface.needsDetail()) {
        for (std::size_t i = 0; i < line.size(); ++i)
            i == 0 ? m_strokes.moveTo(withinReach(line[i].at)) : m_strokes.lineTo(withinReach(line[i].at));
        flushStrokes();
        return;
    }
    updateClip();
    LinePattern pattern;
    const auto type = static_cast<std::size_t>(std::abs(m_state.lineType.type));
    pattern.shares
        = m_state.linePatterns[type].empty() ? builtInLinePattern(static_cast<int>(type)) : m_state.linePatterns[type];
    pattern.length = patternDecipoints(m_state.lineType.length);
    pattern.isAdaptive = m_state.lineType.type < 0;
    std::vector<LineVertex> reachable = line;
    for (LineVertex& vertex : reachable)
        vertex.at = withinReach(vertex.at);
    const DashedLine dashed = cutIntoDashes(reachable, pattern, m_clip, penWidthDecipoints(), phase);
    m_strokes.append(dashed.dashes);
    for (const Point dot : dashed.dots)
        drawDot(dot);
    if (m_strokes.pointCount() >= kMostGatheredPoints || m_host.rasterOperation() != kDefaultRasterOperation)
        flushStrokes();
}

/// Hands gathered lines to the page. Must come before anything that they were not made with.
void Machine::flushStrokes()
{
    if (m_strokes.empty())
        return;
    updateClip();
    if (const std::optional<Ink> ink = lineInk())
        m_surface.stroke(m_strokes, strokeStyle(), *ink);
    m_strokes.clear();
}

/// What the pen leaves when it is put down and not moved: its own shape.
void Machine::drawDot(Point page)
{
    flushStrokes();
    m_hasDrawn = true;
    const std::optional<Ink> ink = lineInk();
    if (!ink)
        return;
    updateClip();
    const double radius = penWidthDecipoints() / 2;
    Path dot;
    constexpr int kRound = 4;
    constexpr double kThinnest = 0.5;
    if (m_state.lineAttributes.end == kRound && radius > kThinnest) {
        dot.arc(page, radius, radius, 0, 2 * M_PI, true);
        dot.close();
    } else {
        dot.rectangle(page.x - radius, page.y - radius, page.x + radius, page.y + radius);
    }
    m_surface.fill(dot, FillRule::NonZero, *ink);
}

} // namespace quillrip::hpgl
