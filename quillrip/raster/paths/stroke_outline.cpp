#include "quillrip/raster/paths/stroke_outline.h"

#include "quillrip/base/units.h"
#include "quillrip/raster/paths/flatten.h"

#include <algorithm>
#include <cmath>

namespace quillrip {

namespace {

// In pen space the line is two units wide, so directions of length 1 are also its half width.

Point leftOf(Point direction) { return { -direction.y, direction.x }; }
double dotProduct(Point a, Point b) { return a.x * b.x + a.y * b.y; }
double crossProduct(Point a, Point b) { return a.x * b.y - a.y * b.x; }

/// Rounder than this only pens would need that are larger than pages.
constexpr double kSmallestArcStep = kPi / 200;
/// Where two directions of length 1 differ by less than this, there is no corner.
constexpr double kStraight = 1e-9;

} // namespace

StrokeOutline::StrokeOutline(const StrokeStyle& style, PieceSink& sink)
    : m_cap(style.cap)
    , m_join(style.join)
    , m_miterLimit(std::isfinite(style.miterLimit) ? std::max(1.0, style.miterLimit) : 10)
    , m_sink(sink)
{
}

void StrokeOutline::outline(const StrokeLine& line, const Pen& pen)
{
    m_toDevice = pen.toDevice;
    const double radius = std::max(pen.deviceWidth(), pen.deviceHeight()) / 2;
    m_arcStep = std::clamp(2 * std::sqrt(2 * kFlatness / radius), kSmallestArcStep, kPi / 4);

    m_points.clear();
    m_directions.clear();
    m_smooth.clear();
    const auto goTo = [&](Point to, bool isSmooth) {
        if (!m_points.empty()) {
            const Point way = to - m_points.back();
            const double length = std::hypot(way.x, way.y);
            if (!(length > kStraight))
                return;
            m_directions.push_back(way * (1 / length));
        }
        m_points.push_back(to);
        m_smooth.push_back(isSmooth);
    };
    for (const StrokeLine::Vertex& vertex : line.vertices) {
        const Point at = pen.fromDevice.apply(vertex.at);
        if (isFinite(at))
            goTo(at, vertex.isSmooth);
    }
    if (m_points.empty())
        return;
    if (line.isClosed)
        goTo(m_points.front(), m_smooth.front());
    if (m_directions.empty()) {
        const Point direction = pen.fromDevice.applyVector(line.dotDirection);
        const double length = std::hypot(direction.x, direction.y);
        return dot(m_points.front(), length > 0 ? direction * (1 / length) : Point { 1, 0 }, line.isDash);
    }

    for (std::size_t i = 0; i < m_directions.size(); ++i)
        segment(m_points[i], m_points[i + 1], leftOf(m_directions[i]));
    for (std::size_t i = 1; i < m_directions.size(); ++i)
        join(m_points[i], m_directions[i - 1], m_directions[i], m_smooth[i] ? LineJoin::Miter : m_join);
    if (line.isClosed) {
        join(m_points.front(), m_directions.back(), m_directions.front(), m_smooth.front() ? LineJoin::Miter : m_join);
        return;
    }
    cap(m_points.front(), m_directions.front() * -1);
    cap(m_points.back(), m_directions.back());
}

void StrokeOutline::segment(Point from, Point to, Point normal)
{
    begin();
    add(from + normal);
    add(to + normal);
    add(to - normal);
    add(from - normal);
    emit();
}

void StrokeOutline::join(Point at, Point direction0, Point direction1, LineJoin style)
{
    const double sine = crossProduct(direction0, direction1);
    const double cosine = dotProduct(direction0, direction1);
    if (style == LineJoin::None || (cosine > 0 && std::abs(sine) < kStraight))
        return;
    // The gap is on the outer side of the turn.
    const double side = sine > 0 ? -1 : 1;
    const Point from = leftOf(direction0) * side;
    const Point to = leftOf(direction1) * side;
    const double halfCosine = std::sqrt(std::max(0.0, (1 + cosine) / 2)); // of half the turn
    const double halfSine = std::sqrt(std::max(0.0, (1 - cosine) / 2));
    const Point outwards = halfCosine > kStraight ? (from + to) * (1 / (2 * halfCosine)) : direction0;
    // The miter's length in line widths is the distance of its tip in half widths.
    const bool isWithinLimit = halfCosine * m_miterLimit >= 1;

    if (style == LineJoin::Round)
        return arc(at, from, std::acos(std::clamp(cosine, -1.0, 1.0)) * (sine > 0 ? 1 : -1));
    begin();
    add(at);
    add(at + from);
    if (style == LineJoin::Triangle) {
        add(at + outwards);
    } else if (style != LineJoin::Bevel && isWithinLimit) {
        add(at + outwards * (1 / halfCosine));
    } else if (style == LineJoin::MiterClipped) {
        const double reach = (m_miterLimit - halfCosine) / halfSine;
        add(at + from + direction0 * reach);
        add(at + to - direction1 * reach);
    }
    add(at + to);
    emit();
}

void StrokeOutline::cap(Point at, Point outwards)
{
    const Point normal = leftOf(outwards);
    switch (m_cap) {
    case LineCap::Butt:
        return;
    case LineCap::Square:
        return segment(at, at + outwards, normal);
    case LineCap::Triangle:
        begin();
        add(at + normal);
        add(at + outwards);
        add(at - normal);
        return emit();
    case LineCap::Round:
        return arc(at, normal, -kPi);
    }
}

void StrokeOutline::dot(Point at, Point direction, bool isDash)
{
    if (m_cap != LineCap::Butt) {
        cap(at, direction);
        return cap(at, direction * -1);
    }
    // Without caps a dot has no length, but in a dashed line it stands for itself: a square of the line's width.
    if (isDash)
        segment(at - direction, at + direction, leftOf(direction));
}

void StrokeOutline::arc(Point centre, Point from, double angle)
{
    const int chords = std::max(1, static_cast<int>(std::ceil(std::abs(angle) / m_arcStep)));
    const double step = angle / chords;
    const double cosine = std::cos(step);
    const double sine = std::sin(step);
    begin();
    // Less than half a turn is a sector; half a turn needs no centre.
    if (std::abs(angle) < kPi - kStraight)
        add(centre);
    Point spoke = from;
    add(centre + spoke);
    for (int i = 0; i < chords; ++i) {
        spoke = { spoke.x * cosine - spoke.y * sine, spoke.x * sine + spoke.y * cosine };
        add(centre + spoke);
    }
    emit();
}

void StrokeOutline::begin() { m_piece.clear(); }

void StrokeOutline::add(Point inPenSpace) { m_piece.push_back(m_toDevice.apply(inPenSpace)); }

void StrokeOutline::emit() { m_sink.piece(m_piece.data(), m_piece.size()); }

} // namespace quillrip
