#include "quillrip/raster/paths/stroke_line.h"

#include "quillrip/raster/paths/flatten.h"
#include "quillrip/raster/scan/hairline.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace quillrip {

namespace {

/// Ends of a closed line that are nearer to each other, in device pixels, are one corner: writers round the last point
/// of an ellipse otherwise than its first, and the speck of a line between them, which looks anywhere, would get joins.
constexpr double kSameCorner = 1.0 / 64;

} // namespace

void forEachStrokeLine(const Path& userPath, const Matrix& userToDevice, StrokeLineSink& sink)
{
    StrokeLine line;
    bool hasSegment = false;
    const auto isStartAgain = [&] {
        const Point gap = userToDevice.applyVector(line.vertices.back().at - line.vertices.front().at);
        return std::hypot(gap.x, gap.y) < kSameCorner;
    };
    const auto finish = [&](bool isClosed) {
        if (!line.vertices.empty() && (hasSegment || isClosed)) {
            line.isClosed = isClosed && line.vertices.size() > 2;
            if (line.isClosed && isStartAgain())
                line.vertices.pop_back();
            sink.line(line);
        }
        line.clear();
        hasSegment = false;
    };
    const auto goTo = [&](Point to, bool isSmooth) {
        if (!isFinite(to) || line.vertices.empty() || !sink.wantsMore())
            return;
        line.add(to, isSmooth);
        hasSegment = true;
    };
    Point start;
    userPath.forEach(
        [&](Point to) {
            finish(false);
            start = to;
            if (isFinite(start))
                line.add(start);
        },
        [&](Point to) { goTo(to, false); },
        [&](Point control1, Point control2, Point to) {
            if (line.vertices.empty() || !sink.wantsMore())
                return;
            const Cubic user { line.vertices.back().at, control1, control2, to };
            const Cubic device { userToDevice.apply(user.start), userToDevice.apply(user.control1),
                userToDevice.apply(user.control2), userToDevice.apply(user.end) };
            const int chords = device.chordCount();
            for (int i = 1; i < chords; ++i)
                goTo(user.at(static_cast<double>(i) / chords), true);
            goTo(user.end, false);
        },
        [&] {
            finish(true);
            // What follows a close without a move goes on from the subpath's start.
            if (isFinite(start))
                line.add(start);
        });
    finish(false);
}

namespace {

/// More dashes of one stroke than anybody could tell apart. Wide ones take longer to draw, and fewer make sense.
constexpr double kMostDashes = 1000000;
constexpr double kWideDash = 16; // device pixels
constexpr double kShortestPeriod = 0.1; // device pixels

double largestStretch(const Matrix& m) { return std::max(std::hypot(m.a, m.b), std::hypot(m.c, m.d)); }

} // namespace

bool Dasher::canDash(const StrokeStyle& style, const Matrix& userToDevice)
{
    double period = 0;
    for (const double length : style.dashes) {
        if (!(length >= 0) || !std::isfinite(length))
            return false;
        period += length;
    }
    return period > 0 && std::isfinite(style.dashOffset) && period * largestStretch(userToDevice) >= kShortestPeriod;
}

Dasher::Dasher(const StrokeStyle& style, const Matrix& userToDevice, const PixelRect& area, double penWidth,
    WorkMeter& work, StrokeLineSink& sink)
    : m_lengths(style.dashes)
    , m_offset(style.dashOffset)
    , m_userToDevice(userToDevice)
    , m_area(area)
    // Caps and miters reach beyond a dash's ends.
    , m_margin(penWidth * (isMitred(style.join) ? std::max(1.0, style.miterLimit) : 1))
    // Hairlines have no caps.
    , m_closedGap(penWidth > 1 ? widestClosedGap(style.cap, style.width, kFlatness / largestStretch(userToDevice)) : 0)
    , m_work(work)
    , m_sink(sink)
    , m_budget(static_cast<std::size_t>(kMostDashes / (1 + penWidth / kWideDash)))
{
    if (m_lengths.size() % 2 != 0)
        m_lengths.insert(m_lengths.end(), style.dashes.begin(), style.dashes.end());
    for (const double length : m_lengths)
        m_period += length;
}

Dasher::Phase Dasher::phaseAt(double distance) const
{
    double rest = std::fmod(distance, m_period);
    if (rest < 0)
        rest += m_period;
    Phase phase { 0, m_lengths[0] };
    for (std::size_t i = 0; i < m_lengths.size() && rest >= phase.left && rest > 0; ++i) {
        rest -= phase.left;
        advance(phase);
    }
    phase.left = std::max(0.0, phase.left - rest);
    return phase;
}

void Dasher::advance(Phase& phase) const
{
    phase.index = phase.index + 1 == m_lengths.size() ? 0 : phase.index + 1;
    phase.left = m_lengths[phase.index];
}

void Dasher::line(StrokeLine& line)
{
    if (line.vertices.size() < 2) {
        m_sink.line(line);
        return;
    }
    m_phase = phaseAt(m_offset);
    m_travelled = 0;
    m_dash.clear();
    m_first.clear();
    m_isFirstDash = true;
    m_keepFirst = line.isClosed && m_phase.isOn();
    if (m_phase.isOn())
        m_dash.add(line.vertices.front().at);
    for (std::size_t i = 1; i < line.vertices.size() && m_sink.wantsMore(); ++i)
        dashSegment(line.vertices[i - 1].at, line.vertices[i].at, line.vertices[i].isSmooth);
    if (line.isClosed)
        dashSegment(line.vertices.back().at, line.vertices.front().at, line.vertices.front().isSmooth);

    if (m_keepFirst && !m_isFirstDash) {
        // A dash that runs through the start of a closed line is one dash.
        if (m_dash.vertices.empty())
            m_dash = m_first;
        else
            for (const StrokeLine::Vertex& vertex : m_first.vertices)
                m_dash.add(vertex.at, vertex.isSmooth);
        m_keepFirst = false;
    }
    if (m_isFirstDash && m_keepFirst) {
        m_sink.line(line); // not one gap: the whole outline is a dash
        m_dash.clear();
        return;
    }
    finishDash();
}

void Dasher::finishDash()
{
    if (m_dash.vertices.empty())
        return;
    if (m_isFirstDash && m_keepFirst) {
        m_first = m_dash;
    } else {
        m_dash.isDash = true;
        m_sink.line(m_dash);
    }
    m_isFirstDash = false;
    m_dash.clear();
}

void Dasher::dashSegment(Point from, Point to, bool endIsSmooth)
{
    const Point way = to - from;
    const double length = std::hypot(way.x, way.y);
    if (!(length > 0) || !std::isfinite(length))
        return;
    double done = 0;
    double until = length;
    constexpr double longInPeriods = 64;
    if (length > longInPeriods * m_period) {
        // Of a long segment only the visible part is dashed.
        double begin = 0;
        double end = 1;
        if (!clipLine(m_userToDevice.apply(from), m_userToDevice.apply(to), m_area, m_margin, begin, end))
            begin = end = 1;
        done = begin * length;
        until = end * length;
        if (done > 0) {
            finishDash();
            m_phase = phaseAt(m_offset + m_travelled + done);
            if (m_phase.isOn())
                m_dash.add(from + way * (done / length));
        }
    }
    constexpr std::uint64_t unitsPerDash = 30;
    while (
        done + m_phase.left < until && m_budget > 0 && m_sink.wantsMore() && m_work.allows(Work::Lines, unitsPerDash)) {
        done += m_phase.left;
        const Point at = from + way * (done / length);
        if (m_phase.isOn()) {
            Phase gap = m_phase;
            advance(gap);
            if (gap.left > 0 && gap.left <= m_closedGap && done + gap.left < until) {
                done += gap.left;
                m_phase = gap;
                advance(m_phase);
                continue;
            }
            m_dash.add(at);
            m_dash.dotDirection = way;
            advance(m_phase);
            // A gap of no length is none.
            if (m_phase.left > 0)
                finishDash();
            --m_budget;
        } else {
            advance(m_phase);
            m_dash.add(at);
            m_dash.dotDirection = way;
        }
    }
    m_phase.left -= until - done;
    m_travelled += length;
    if (until < length) {
        finishDash();
        m_phase = phaseAt(m_offset + m_travelled);
        if (!m_phase.isOn())
            return;
    }
    if (m_phase.isOn())
        m_dash.add(to, endIsSmooth);
}

} // namespace quillrip
