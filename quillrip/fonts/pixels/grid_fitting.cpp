#include "quillrip/fonts/pixels/grid_fitting.h"

#include "quillrip/fonts/pixels/outline_raster.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace quillrip {

namespace {

/// Shortest edges that count, in em: ends of serifs are shorter, and so are the waists of round letters.
constexpr double kShortestEdge = 0.04;
/// How far an edge may lean, as a tangent.
constexpr double kMostLean = 0.06;
/// Widest stroke, in em; wider pairs of edges are counters or blocks.
constexpr double kWidestStroke = 0.25;
/// Strokes within this share of the usual width get that width.
constexpr double kSameWidth = 0.40;
/// Rounds of the letters stay within their zone while they are lower than this, pixels.
constexpr double kVisibleOvershoot = 1;

/// A border of ink that runs along the cross axis, at one place of the main axis. For upright strokes main is x and
/// cross is y, for level ones the other way round.
struct Edge {
    double at = 0;
    double from = 0; ///< extent along the cross axis, from < to
    double to = 0;
    bool startsInk = false; ///< ink lies on the side of larger main coordinates

    double length() const { return to - from; }
};

struct Stroke {
    double low = 0;
    double high = 0;
    double length = 0;
};

/// Twice the area that the contours enclose; positive when outer contours turn from +x to +y.
double signedArea(const Path& path)
{
    double sum = 0;
    Point start;
    Point last;
    const auto add = [&](Point to) {
        sum += last.x * to.y - to.x * last.y;
        last = to;
    };
    path.forEach([&](Point to) { start = last = to; }, add,
        [&](Point control1, Point control2, Point to) {
            add(control1);
            add(control2);
            add(to);
        },
        [&] { add(start); });
    return sum;
}

/// Finds the edges along one axis.
class EdgeFinder {
public:
    EdgeFinder(const Path& path, bool isUpright, double em)
        : m_isUpright(isUpright)
        , m_em(em)
        , m_turnsLeft(signedArea(path) > 0)
    {
        path.forEach(
            [&](Point to) {
                endContour();
                m_contour = { { turned(to), true } };
            },
            [&](Point to) {
                m_contour.push_back({ turned(to), true });
            },
            [&](Point control1, Point control2, Point to) {
                m_contour.push_back({ turned(control1), false });
                m_contour.push_back({ turned(control2), false });
                m_contour.push_back({ turned(to), true });
            },
            [] {});
        endContour();
        std::sort(m_edges.begin(), m_edges.end(), [](const Edge& a, const Edge& b) { return a.at < b.at; });
    }

    const std::vector<Edge>& edges() const { return m_edges; }

private:
    struct Node {
        Point p; ///< x along the main axis
        bool isOn;
    };

    Point turned(Point p) const { return m_isUpright ? p : Point { p.y, p.x }; }

    void endContour()
    {
        // The closing point often repeats the first.
        if (m_contour.size() > 1 && m_contour.back().isOn && m_contour.back().p == m_contour.front().p)
            m_contour.pop_back();
        addRuns();
        m_contour.clear();
    }

    /// -1, 0, 1: whether the way from one node to the next runs along the axis, and which way. Between the two control
    /// points of a curve there is no border.
    int heading(std::size_t i) const
    {
        const Node& a = m_contour[i];
        const Node& b = m_contour[(i + 1) % m_contour.size()];
        const double along = b.p.y - a.p.y;
        if ((!a.isOn && !b.isOn) || along == 0 || std::abs(b.p.x - a.p.x) > kMostLean * std::abs(along))
            return 0;
        return along > 0 ? 1 : -1;
    }

    /// Straight lines, and the tangents where curves pass their furthest points, joined where they follow each other.
    void addRuns()
    {
        const std::size_t count = m_contour.size();
        if (count < 3)
            return;
        // A run must not be cut where the contour happens to start.
        std::size_t start = 0;
        while (start < count && heading(start) == heading((start + count - 1) % count))
            ++start;
        for (std::size_t i = 0; i < count && start < count;) {
            const std::size_t first = (start + i) % count;
            const int direction = heading(first);
            std::size_t steps = 0;
            while (i + steps < count && heading((first + steps) % count) == direction)
                ++steps;
            i += steps;
            if (direction == 0)
                continue;
            double sum = 0;
            int onPoints = 0;
            for (std::size_t k = 0; k <= steps; ++k) {
                const Node& node = m_contour[(first + k) % count];
                sum += node.isOn ? node.p.x : 0;
                onPoints += node.isOn ? 1 : 0;
            }
            const Point from = m_contour[first].p;
            const Point to = m_contour[(first + steps) % count].p;
            if (onPoints > 0 && std::abs(to.y - from.y) >= kShortestEdge * m_em)
                add({ sum / onPoints, from.y }, { sum / onPoints, to.y });
        }
    }

    void add(Point a, Point b)
    {
        // Seen along an edge towards larger cross coordinates, ink lies to the left of a contour that turns left;
        // turning the axes round swaps the sides.
        const bool goesUp = b.y > a.y;
        const bool inkIsLeft = m_turnsLeft == m_isUpright;
        m_edges.push_back({ (a.x + b.x) / 2, std::min(a.y, b.y), std::max(a.y, b.y), goesUp != inkIsLeft });
    }

    bool m_isUpright;
    double m_em;
    bool m_turnsLeft;
    std::vector<Node> m_contour;
    std::vector<Edge> m_edges;
};

/// Pairs an edge where ink starts with the nearest one beyond where it ends and that lies beside it.
std::vector<Stroke> strokesOf(const std::vector<Edge>& edges, double em)
{
    std::vector<Stroke> strokes;
    for (std::size_t i = 0; i < edges.size(); ++i) {
        if (!edges[i].startsInk)
            continue;
        for (std::size_t j = i + 1; j < edges.size() && edges[j].at - edges[i].at <= kWidestStroke * em; ++j) {
            const double overlap = std::min(edges[i].to, edges[j].to) - std::max(edges[i].from, edges[j].from);
            const double shorter = std::min(edges[i].length(), edges[j].length());
            if (edges[j].startsInk || overlap < 0.3 * shorter || edges[j].at <= edges[i].at)
                continue;
            strokes.push_back({ edges[i].at, edges[j].at, edges[i].length() + edges[j].length() });
            break;
        }
    }
    return strokes;
}

/// Places that move, and where to; all else is moved along between its neighbours.
class Anchors {
public:
    void add(double from, double to) { m_anchors.push_back({ from, to }); }

    /// Sorts, and gives up what would turn the order round.
    void settle()
    {
        std::stable_sort(
            m_anchors.begin(), m_anchors.end(), [](const Anchor& a, const Anchor& b) { return a.from < b.from; });
        std::vector<Anchor> kept;
        for (const Anchor& anchor : m_anchors) {
            if (kept.empty() || (anchor.from - kept.back().from > 1e-6 && anchor.to >= kept.back().to))
                kept.push_back(anchor);
        }
        m_anchors = std::move(kept);
    }

    double moved(double at) const
    {
        if (m_anchors.empty())
            return at;
        if (at <= m_anchors.front().from)
            return at + m_anchors.front().to - m_anchors.front().from;
        if (at >= m_anchors.back().from)
            return at + m_anchors.back().to - m_anchors.back().from;
        const auto next = std::upper_bound(
            m_anchors.begin(), m_anchors.end(), at, [](double value, const Anchor& a) { return value < a.from; });
        const Anchor& high = *next;
        const Anchor& low = *(next - 1);
        return low.to + (at - low.from) * (high.to - low.to) / (high.from - low.from);
    }

private:
    struct Anchor {
        double from;
        double to;
    };
    std::vector<Anchor> m_anchors;
};

double fittedWidth(double width, double usual)
{
    if (usual > 0 && std::abs(width - usual) <= kSameWidth * usual)
        width = usual;
    return std::max(1.0, std::round(width));
}

/// The strokes that are placed: longer ones first, and none over another.
std::vector<Stroke> apart(std::vector<Stroke> strokes)
{
    std::stable_sort(
        strokes.begin(), strokes.end(), [](const Stroke& a, const Stroke& b) { return a.length > b.length; });
    std::vector<Stroke> kept;
    for (const Stroke& stroke : strokes) {
        if (std::none_of(kept.begin(), kept.end(),
                [&](const Stroke& other) { return stroke.low < other.high && other.low < stroke.high; }))
            kept.push_back(stroke);
    }
    std::sort(kept.begin(), kept.end(), [](const Stroke& a, const Stroke& b) { return a.low < b.low; });
    return kept;
}

Anchors columnAnchors(const Path& outline, const FittingGuide& guide)
{
    Anchors anchors;
    double last = -1e9;
    double lastFrom = -1e9;
    for (const Stroke& stroke : apart(strokesOf(EdgeFinder(outline, true, guide.em).edges(), guide.em))) {
        const double width = fittedWidth(stroke.high - stroke.low, guide.stem);
        double low = std::round((stroke.low + stroke.high - width) / 2);
        // A gap between strokes stays a gap.
        if (low < last + 1 && stroke.low - lastFrom > 0.5)
            low = last + 1;
        anchors.add(stroke.low, low);
        anchors.add(stroke.high, low + width);
        last = low + width;
        lastFrom = stroke.high;
    }
    anchors.settle();
    return anchors;
}

/// Where an edge of a zone goes; nothing for edges outside of all zones.
std::optional<double> zonePlace(double at, const FittingGuide& guide)
{
    constexpr double kSlack = 0.3;
    for (const AlignmentZone& zone : guide.zones) {
        const double low = std::min(zone.flat, zone.round) - kSlack;
        const double high = std::max(zone.flat, zone.round) + kSlack;
        if (at < low || at > high)
            continue;
        const double flat = std::round(zone.flat);
        const bool isRound = std::abs(at - zone.round) < std::abs(at - zone.flat);
        const double overshoot = zone.round - zone.flat;
        return isRound && std::abs(overshoot) >= kVisibleOvershoot ? flat + std::round(overshoot) : flat;
    }
    return std::nullopt;
}

/// Level strokes, and the single edges that stand on a line, from the lowest up.
std::vector<Stroke> rowItems(const Path& outline, const FittingGuide& guide)
{
    const std::vector<Edge> edges = EdgeFinder(outline, false, guide.em).edges();
    std::vector<Stroke> items = apart(strokesOf(edges, guide.em));
    const auto stand = [&](double at) {
        constexpr double kNear = 0.25;
        if (zonePlace(at, guide) && std::none_of(items.begin(), items.end(), [at](const Stroke& item) {
                return at > item.low - kNear && at < item.high + kNear;
            }))
            items.push_back({ at, at, 0 });
    };
    // Ends of stems stand on the lines too, and so does what is highest and lowest, flat or not.
    for (const Edge& edge : edges)
        stand(edge.at);
    if (!outline.empty()) {
        const auto& points = outline.points();
        const auto [low, high]
            = std::minmax_element(points.begin(), points.end(), [](Point a, Point b) { return a.y < b.y; });
        stand(low->y);
        stand(high->y);
    }
    std::sort(items.begin(), items.end(), [](const Stroke& a, const Stroke& b) { return a.low < b.low; });
    return items;
}

Anchors rowAnchors(const Path& outline, const FittingGuide& guide)
{
    // A gap of this many pixels must not close: the dot of an i.
    constexpr double kOpenGap = 0.4;
    Anchors anchors;
    double last = -1e9;
    double lastFrom = -1e9;
    for (const Stroke& item : rowItems(outline, guide)) {
        const std::optional<double> foot = zonePlace(item.low, guide);
        const std::optional<double> head = zonePlace(item.high, guide);
        const bool isEdge = item.low == item.high;
        const double width = isEdge ? 0 : fittedWidth(item.high - item.low, guide.bar);
        double low = std::round((item.low + item.high - width) / 2);
        if (foot && (isEdge || *foot <= 0))
            low = *foot;
        else if (head)
            low = *head - width;
        double high = low + width;
        if (!isEdge && low < last + 1 && item.low - lastFrom > kOpenGap) {
            low = last + 1;
            high = std::max(high, low + 1);
        }
        anchors.add(item.low, low);
        if (!isEdge)
            anchors.add(item.high, high);
        last = high;
        lastFrom = item.high;
    }
    anchors.settle();
    return anchors;
}

template <typename Move> Path mapped(const Path& outline, Move move)
{
    Path result;
    outline.forEach([&](Point to) { result.moveTo(move(to)); }, [&](Point to) { result.lineTo(move(to)); },
        [&](Point control1, Point control2, Point to) { result.cubicTo(move(control1), move(control2), move(to)); },
        [&] { result.close(); });
    return result;
}

double longestStroke(const Path& outline, double em, bool isUpright)
{
    const std::vector<Stroke> strokes = strokesOf(EdgeFinder(outline, isUpright, em).edges(), em);
    const auto longest = std::max_element(
        strokes.begin(), strokes.end(), [](const Stroke& a, const Stroke& b) { return a.length < b.length; });
    return longest == strokes.end() ? 0 : longest->high - longest->low;
}

} // namespace

Path fittedToGrid(const Path& outline, const FittingGuide& guide)
{
    const Anchors columns = columnAnchors(outline, guide);
    const Anchors rows = rowAnchors(outline, guide);
    return mapped(outline, [&](Point p) { return Point { columns.moved(p.x), rows.moved(p.y) }; });
}

Path fittedToRows(const Path& outline, const FittingGuide& guide)
{
    const Anchors rows = rowAnchors(outline, guide);
    return mapped(outline, [&](Point p) { return Point { p.x, rows.moved(p.y) }; });
}

bool rasteriseFitted(
    const Path& shape, const Matrix& glyphToDevice, GlyphMask::Depth depth, const FittingGuide& face, GlyphMask& mask)
{
    // Larger letters have strokes whose widths differ by less than can be seen.
    constexpr double kLargestFittedEm = 250;
    const AxisScale axes = axisScale(glyphToDevice);
    if (!axes.isAligned || axes.x > kLargestFittedEm || axes.y > kLargestFittedEm)
        return rasteriseOutline(shape, glyphToDevice, depth, mask);
    FittingGuide guide;
    guide.em = std::max(axes.x, axes.y);
    guide.stem = face.stem * axes.x;
    guide.bar = face.bar * axes.y;
    for (const AlignmentZone& zone : face.zones)
        guide.zones.push_back({ zone.flat * axes.y, zone.round * axes.y });
    const Path scaled = shape.transformed(Matrix::scaling(axes.x, axes.y));
    const Path fitted = depth == GlyphMask::Depth::Bits ? fittedToGrid(scaled, guide) : fittedToRows(scaled, guide);
    return rasteriseOutline(fitted, axes.turn, depth, mask);
}

double uprightStrokeWidth(const Path& outline, double em) { return longestStroke(outline, em, true); }

double levelStrokeWidth(const Path& outline, double em) { return longestStroke(outline, em, false); }

} // namespace quillrip
