#include "quillrip/raster/scan/bilevel_scan.h"

#include "quillrip/raster/paths/flatten.h"
#include "quillrip/raster/scan/sort_nearly.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace quillrip {

namespace {

/// Fixed point numbers with 8 + 32 fraction bits, as edges are followed from row to row.
constexpr int kPreciseBits = kSubpixelBits + 32;
/// Of going through a shape once, for the tables that it takes.
constexpr std::uint64_t kUnitsPerSweep = 200;
constexpr std::uint64_t kUnitsPerEdge = 20;
constexpr std::uint64_t kUnitsPerRow = 15;
constexpr std::uint64_t kUnitsPerMeeting = 6;
/// Of a meeting in a row whose order is another than that of the row above.
constexpr std::uint64_t kUnitsPerSortedMeeting = 100;

constexpr std::int64_t kPrecisePixel = std::int64_t { 1 } << kPreciseBits;

/// The first pixel whose centre is not left of x.
int firstCentre(std::int64_t x) { return static_cast<int>((x + kPrecisePixel / 2 - 1) >> kPreciseBits); }

struct Crossing {
    std::int64_t x = 0;
    std::int64_t step = 0; ///< change of x to the next row
    int endRow = 0;
    std::int32_t winding = 0;
};

bool sortCrossings(std::vector<Crossing>& crossings)
{
    return sortNearly(crossings, [](const Crossing& a, const Crossing& b) { return a.x < b.x; });
}

/// Calls inside(left, right) for each stretch between sorted crossings where the shape is.
template <typename Inside> void eachStretch(const std::vector<Crossing>& crossings, FillRule rule, Inside inside)
{
    const std::int32_t mask = rule == FillRule::EvenOdd ? 1 : -1;
    std::int32_t winding = 0;
    std::int64_t left = 0;
    for (const Crossing& crossing : crossings) {
        const bool wasInside = (winding & mask) != 0;
        winding += crossing.winding;
        const bool isInside = (winding & mask) != 0;
        if (isInside && !wasInside)
            left = crossing.x;
        else if (wasInside && !isInside)
            inside(left, crossing.x);
    }
}

/// Calls visit(row, sorted crossings with the line through the row's centres) for every row that has any.
template <typename Visit> void sweepCentres(const EdgeList& list, WorkMeter& work, Visit visit)
{
    work.charge(Work::Shapes, kUnitsPerSweep + kUnitsPerEdge * list.edges().size());
    constexpr std::int32_t toCentre = kSubpixels / 2;
    const PixelRect& area = list.area();
    const std::vector<std::uint32_t> order = list.orderByRow(toCentre - 1);
    std::vector<Crossing> crossings;
    std::size_t next = 0;
    int row = area.top;
    while (next < order.size() || !crossings.empty()) {
        if (crossings.empty())
            row = std::max(row, list.firstRow(list.edges()[order[next]], toCentre - 1));
        if (row >= area.bottom || !work.allows(Work::Shapes, kUnitsPerRow + kUnitsPerMeeting * crossings.size()))
            return;
        for (; next < order.size(); ++next) {
            const Edge& edge = list.edges()[order[next]];
            if (list.firstRow(edge, toCentre - 1) > row)
                break;
            const int endRow = (edge.bottom + toCentre - 1) >> kSubpixelBits;
            // Of an edge that ends in this row the step is not needed, and may be larger than any number.
            const std::int64_t step = endRow > row + 1 ? edge.slope * kSubpixels : 0;
            if (endRow > row)
                crossings.push_back({ edge.xAt(row * kSubpixels + toCentre), step, endRow, edge.winding });
        }
        if (!crossings.empty()) {
            if (sortCrossings(crossings))
                work.charge(Work::Shapes, kUnitsPerSortedMeeting * crossings.size());
            visit(row, crossings);
        }
        ++row;
        std::size_t kept = 0;
        for (Crossing& crossing : crossings) {
            if (crossing.endRow <= row)
                continue;
            crossing.x += crossing.step;
            crossings[kept++] = crossing;
        }
        crossings.resize(kept);
    }
}

/// Spans of one row that touch or overlap become one.
class RowMerger {
public:
    RowMerger(int y, SpanSink& sink)
        : m_y(y)
        , m_sink(sink)
    {
    }
    RowMerger(const RowMerger&) = delete;
    RowMerger& operator=(const RowMerger&) = delete;

    /// Spans come sorted by `left`.
    void add(int left, int right)
    {
        if (left > m_right) {
            flush();
            m_left = left;
            m_right = right;
        } else {
            m_right = std::max(m_right, right);
        }
    }

    /// After the row's last span. Not left to a destructor, since a sink can want memory that is not there.
    void flush()
    {
        if (m_left < m_right)
            m_sink.span(m_y, m_left, m_right);
    }

private:
    int m_y;
    SpanSink& m_sink;
    int m_left = INT32_MIN;
    int m_right = INT32_MIN;
};

/// The pixel that holds the middle of a stretch without a centre.
int middlePixel(std::int64_t left, std::int64_t right)
{
    return static_cast<int>((left + (right - left) / 2) >> kPreciseBits);
}

/// A subpath that lies between the lines through all centres is marked by the pixel of its middle.
void markTinySubpaths(const Path& path, SpanSink& sink)
{
    const auto isBetweenCentres
        = [](double low, double high) { return std::ceil(low - 0.5) >= std::ceil(high - 0.5) && high > low; };
    double left = 0, top = 0, right = 0, bottom = 0;
    bool hasPoints = false;
    const auto include = [&](Point p) {
        left = hasPoints ? std::min(left, p.x) : p.x;
        top = hasPoints ? std::min(top, p.y) : p.y;
        right = hasPoints ? std::max(right, p.x) : p.x;
        bottom = hasPoints ? std::max(bottom, p.y) : p.y;
        hasPoints = true;
    };
    const auto finish = [&] {
        constexpr double farthest = 1e8;
        if (hasPoints && std::abs(left) < farthest && std::abs(top) < farthest && isBetweenCentres(left, right)
            && isBetweenCentres(top, bottom)) {
            const int x = static_cast<int>(std::floor((left + right) / 2));
            sink.span(static_cast<int>(std::floor((top + bottom) / 2)), x, x + 1);
        }
        hasPoints = false;
    };
    path.forEach(
        [&](Point to) {
            finish();
            include(to);
        },
        include,
        [&](Point control1, Point control2, Point to) {
            include(control1);
            include(control2);
            include(to);
        },
        [] {});
    finish();
}

} // namespace

void scanCentres(const EdgeList& edges, FillRule rule, SpanSink& sink, WorkMeter& work)
{
    sweepCentres(edges, work, [&](int y, const std::vector<Crossing>& crossings) {
        RowMerger merger(y, sink);
        eachStretch(crossings, rule, [&](std::int64_t left, std::int64_t right) {
            const int first = firstCentre(left);
            const int end = firstCentre(right);
            if (first < end)
                merger.add(first, end);
        });
        merger.flush();
    });
}

void scanCentresAndThinParts(
    const Path& devicePath, FillRule rule, const PixelRect& area, SpanSink& sink, WorkMeter& work)
{
    EdgeList rows(area);
    rows.addPath(devicePath);
    rows.shrinkArea();
    sweepCentres(rows, work, [&](int y, const std::vector<Crossing>& crossings) {
        RowMerger merger(y, sink);
        eachStretch(crossings, rule, [&](std::int64_t left, std::int64_t right) {
            const int first = firstCentre(left);
            const int end = firstCentre(right);
            if (first < end) {
                merger.add(first, end);
            } else if (left < right) {
                const int nearest = middlePixel(left, right);
                merger.add(nearest, nearest + 1);
            }
        });
        merger.flush();
    });
    EdgeList columns({ area.top, area.left, area.bottom, area.right }, EdgeList::Axes::Swapped);
    columns.addPath(devicePath);
    columns.shrinkArea();
    sweepCentres(columns, work, [&](int x, const std::vector<Crossing>& crossings) {
        eachStretch(crossings, rule, [&](std::int64_t top, std::int64_t bottom) {
            if (top < bottom && firstCentre(top) >= firstCentre(bottom))
                sink.span(middlePixel(top, bottom), x, x + 1);
        });
    });
    markTinySubpaths(devicePath, sink);
}

void scanTouched(const EdgeList& list, FillRule rule, SpanSink& sink, WorkMeter& work)
{
    const PixelRect& area = list.area();
    work.charge(Work::Shapes, kUnitsPerSweep);
    const std::vector<std::uint32_t> order = list.orderByRow(0);
    std::vector<std::uint32_t> active;
    std::vector<Crossing> crossings;
    std::vector<std::pair<int, int>> touched;
    std::size_t next = 0;
    int row = area.top;
    while (next < order.size() || !active.empty()) {
        if (active.empty())
            row = std::max(row, list.firstRow(list.edges()[order[next]], 0));
        if (row >= area.bottom || !work.allows(Work::Shapes, kUnitsPerRow + 4 * kUnitsPerMeeting * active.size()))
            return;
        for (; next < order.size() && list.firstRow(list.edges()[order[next]], 0) <= row; ++next)
            active.push_back(order[next]);

        const std::int32_t top = row * kSubpixels;
        const std::int32_t bottom = top + kSubpixels;
        const std::int32_t centre = top + kSubpixels / 2;
        crossings.clear();
        touched.clear();
        std::size_t kept = 0;
        for (const std::uint32_t index : active) {
            const Edge& edge = list.edges()[index];
            if (edge.bottom < top)
                continue;
            const bool isLevel = edge.top == edge.bottom;
            const std::int32_t x0 = isLevel ? edge.x : edge.roundedXAt(std::max(top, edge.top));
            const std::int32_t x1 = isLevel ? edge.bottomX : edge.roundedXAt(std::min(bottom, edge.bottom));
            // The row's lower edge belongs to the next row, so a level edge there does not touch this one.
            if (edge.top < bottom)
                touched.emplace_back(std::min(x0, x1) >> kSubpixelBits, (std::max(x0, x1) >> kSubpixelBits) + 1);
            if (edge.top <= centre && edge.bottom > centre)
                crossings.push_back({ edge.xAt(centre), 0, 0, edge.winding });
            active[kept++] = index;
        }
        active.resize(kept);
        sortCrossings(crossings);
        eachStretch(crossings, rule, [&](std::int64_t left, std::int64_t right) {
            touched.emplace_back(static_cast<int>(left >> kPreciseBits), static_cast<int>(right >> kPreciseBits) + 1);
        });
        std::sort(touched.begin(), touched.end());
        RowMerger merger(row, sink);
        for (const auto& [left, right] : touched)
            merger.add(left, right);
        merger.flush();
        ++row;
    }
}

} // namespace quillrip
