#include "quillrip/emf/plus/color_sources.h"
#include "quillrip/raster/paths/stroke_line.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

namespace quillrip::emf::plus {

namespace {

/// A point of the boundary with its colour, relative to the gradient's centre.
struct BoundaryCorner {
    Point at;
    Rgba color;
};

/// Figures of a path as corners; curves as chords.
class CornerCollector final : public StrokeLineSink {
public:
    void line(StrokeLine& line) override
    {
        if (m_corners.empty()) {
            for (const StrokeLine::Vertex& vertex : line.vertices)
                m_corners.push_back(vertex.at);
        }
    }
    std::vector<Point> take() { return std::move(m_corners); }

private:
    std::vector<Point> m_corners; ///< of the first figure: a boundary is one
};

std::vector<Point> boundaryOf(const PathGradientBrush& brush, const Matrix& toDevice)
{
    if (!brush.boundaryPath)
        return brush.boundaryPoints;
    CornerCollector collector;
    forEachStrokeLine(brush.boundaryPath->path, toDevice, collector);
    return collector.take();
}

/// A direction's place among all directions, rising from 0 to 4 with its angle, without the cost of an angle.
double directionOf(Point p)
{
    const double sum = std::abs(p.x) + std::abs(p.y);
    if (!(sum > 0))
        return 0;
    const double across = p.y / sum;
    return p.x >= 0 ? (p.y >= 0 ? across : 4 + across) : 2 - across;
}

/// The gradient from a boundary to its centre: on the ray from the centre through a point to the boundary, the point's
/// part of the way says how much of each colour it has. The edges are sorted by direction into sectors, so that a point
/// is held against few of them.
class PathGradientSource final : public ColorSource {
public:
    PathGradientSource(const PathGradientBrush& brush, const std::vector<Point>& boundary, const Matrix& toDevice)
        : m_wrap(brush.wrap)
        , m_center(brush.center)
        , m_centerColor(brush.centerColor)
        , m_toBrush(toDevice.inverted())
        , m_focus { std::clamp(brush.focusScale.x, 0.0, 1.0), std::clamp(brush.focusScale.y, 0.0, 1.0) }
        , m_slack(1.5 / std::sqrt(std::abs(toDevice.determinant())))
    {
        m_blend.stops = brush.stops;
        m_blend.factors = brush.factors;
        m_hasOwnColors = !brush.stops.empty();
        for (std::size_t i = 0; i < boundary.size(); ++i) {
            const std::size_t color = std::min(i, brush.surroundColors.size() - 1);
            m_corners.push_back({ boundary[i] - m_center, brush.surroundColors[color] });
            m_bounds.include(boundary[i]);
        }
        sortEdges();
    }

    /// Its edges cross so many directions each that every pixel would be held against many: no shape, but noise.
    bool isTangled() const { return m_sorted > (isSearched() ? kMostSorted / kSearchSteps : kMostSorted); }

    void row(int y, int left, int right, Rgba* pixels) const override
    {
        for (int x = left; x < right; ++x) {
            const Point at = m_toBrush.apply({ x + 0.5, y + 0.5 });
            *pixels++ = colorAt(wrapped(at) - m_center);
        }
    }

private:
    static constexpr std::size_t kSectors = 1024;
    static constexpr std::size_t kMostSorted = kSectors * 128;
    static constexpr int kSearchSteps = 8; ///< to a 256th of the way

    static std::size_t sectorOf(double direction)
    {
        return std::min(static_cast<std::size_t>(direction * (kSectors / 4.0)), kSectors - 1);
    }

    void sortEdges()
    {
        m_sectors.resize(kSectors);
        for (std::size_t i = 0; i < m_corners.size() && !isTangled(); ++i) {
            const Point a = m_corners[i].at;
            const Point b = m_corners[(i + 1) % m_corners.size()].at;
            double from = directionOf(a);
            double to = directionOf(b);
            // The shorter way round is the one that the edge takes as seen from the centre.
            const bool turnsRight = a.x * b.y - a.y * b.x < 0;
            if (turnsRight)
                std::swap(from, to);
            const std::size_t first = sectorOf(from);
            const std::size_t last = sectorOf(to);
            for (std::size_t sector = first;; sector = (sector + 1) % kSectors) {
                m_sectors[sector].push_back(static_cast<std::uint32_t>(i));
                ++m_sorted;
                if (sector == last)
                    break;
            }
        }
    }

    Point wrapped(Point p) const
    {
        if (m_wrap == WrapMode::Clamp)
            return p;
        const auto folded = [](double value, double low, double size, bool isMirrored) {
            const double periods = (value - low) / size;
            const double period = std::floor(periods);
            const double part = periods - period;
            return low + size * (isMirrored && std::fmod(period, 2) != 0 ? 1 - part : part);
        };
        return { folded(
                     p.x, m_bounds.left, m_bounds.width(), m_wrap == WrapMode::FlipX || m_wrap == WrapMode::FlipBoth),
            folded(p.y, m_bounds.top, m_bounds.height(), m_wrap == WrapMode::FlipY || m_wrap == WrapMode::FlipBoth) };
    }

    /// Where the ray from the centre through a point meets the boundary.
    struct Crossing {
        double reach = 0; ///< the boundary's distance, in that of the point; 0: the ray meets none
        Rgba surround {};
    };

    /// `p` is relative to the centre, and not there; likewise below.
    Crossing crossingOf(Point p) const
    {
        Crossing farthest;
        for (const std::uint32_t edge : m_sectors[sectorOf(directionOf(p))]) {
            const BoundaryCorner& a = m_corners[edge];
            const BoundaryCorner& b = m_corners[(edge + 1) % m_corners.size()];
            const Point way = b.at - a.at;
            const double slope = p.x * way.y - p.y * way.x;
            if (slope == 0)
                continue;
            const double along = (a.at.x * p.y - a.at.y * p.x) / slope;
            const double reach = (a.at.x * way.y - a.at.y * way.x) / slope;
            constexpr double tolerance = 1e-9;
            if (along < -tolerance || along > 1 + tolerance || reach <= farthest.reach)
                continue;
            farthest = { reach, mixed(a.color, b.color, std::clamp(along, 0.0, 1.0)) };
        }
        return farthest;
    }

    Rgba colorAt(Point p) const
    {
        const double distance = std::hypot(p.x, p.y);
        if (distance < 1e-9)
            return atCenter();
        const Crossing crossing = crossingOf(p);
        // Pixels on the edge have their centres beyond it as often as not.
        if (!(crossing.reach > 0) || distance - distance * crossing.reach > m_slack)
            return kTransparent;
        if (isSearched())
            return searchedColor(p, crossing.surround);
        const double position = std::max(0.0, 1 - 1 / crossing.reach);
        return blended(m_focus.x < 1 ? std::min(1.0, position / (1 - m_focus.x)) : 1, crossing.surround);
    }

    /// The focus is not the boundary's shape: its points leave the rays on their way to it.
    bool isSearched() const { return m_focus.x != m_focus.y; }

    /// On the way to the focus the boundary shrinks, along either axis by its own scale; it passes the point once.
    Rgba searchedColor(Point p, Rgba surround) const
    {
        double begin = 0;
        double end = 1;
        for (int step = 0; step < kSearchSteps; ++step) {
            const double position = (begin + end) / 2;
            const Crossing crossing
                = crossingOf({ p.x / (1 - position * (1 - m_focus.x)), p.y / (1 - position * (1 - m_focus.y)) });
            if (crossing.reach >= 1) {
                begin = position;
                surround = crossing.surround;
            } else {
                end = position;
            }
        }
        return blended(end < 1 ? begin : 1, surround);
    }

    /// `position` is 0 on the boundary and 1 in the centre.
    Rgba blended(double position, Rgba surround) const
    {
        if (m_hasOwnColors)
            return m_blend.at(position);
        if (m_blend.factors.empty())
            return mixed(surround, m_centerColor, position);
        return mixed(surround, m_centerColor, m_blend.factorAt(position));
    }

    Rgba atCenter() const
    {
        if (m_hasOwnColors)
            return m_blend.at(1);
        return m_blend.factors.empty() ? m_centerColor
                                       : mixed(m_corners.front().color, m_centerColor, m_blend.factorAt(1));
    }

    WrapMode m_wrap;
    Point m_center;
    Rgba m_centerColor;
    Matrix m_toBrush;
    Point m_focus;
    double m_slack; ///< in the brush's space
    Blend m_blend;
    bool m_hasOwnColors = false;
    std::vector<BoundaryCorner> m_corners;
    Rect m_bounds = Rect::nothing();
    std::vector<std::vector<std::uint32_t>> m_sectors; ///< numbers of the edges that each direction may meet
    std::size_t m_sorted = 0; ///< of all sectors
};

} // namespace

std::shared_ptr<const ColorSource> pathGradientSource(const PathGradientBrush& brush, const Matrix& worldToDevice)
{
    constexpr std::size_t mostCorners = 16384;
    const Matrix brushToDevice = brush.toWorld * worldToDevice;
    if (!brushToDevice.isInvertible() || brush.surroundColors.empty())
        return nullptr;
    const std::vector<Point> boundary = boundaryOf(brush, brushToDevice);
    Rect bounds = Rect::nothing();
    for (const Point corner : boundary)
        bounds.include(corner);
    if (boundary.size() < 3 || boundary.size() > mostCorners || bounds.empty())
        return nullptr;
    auto source = std::make_shared<const PathGradientSource>(brush, boundary, brushToDevice);
    return source->isTangled() ? nullptr : source;
}

} // namespace quillrip::emf::plus
