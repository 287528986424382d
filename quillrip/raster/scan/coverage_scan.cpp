#include "quillrip/raster/scan/coverage_scan.h"

#include "quillrip/raster/scan/coverage_row.h"
#include "quillrip/raster/scan/sort_nearly.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace quillrip {

namespace {

/// With more vertices in a row than this, the row is sampled on lines.
constexpr int kMostCuts = 48;
constexpr std::int32_t kSampleHeight = 16;
/// Edges that the strips or lines of one row may meet together. A few dozen bytes can ask for many thousand edges in
/// every row (wide pens, short dashes): such rows are sampled on fewer lines and cut less where edges cross.
constexpr std::size_t kMostMeetings = 32768;

/// Of a shape, for the tables that it takes.
constexpr std::uint64_t kUnitsPerSmoothShape = 400;
constexpr std::uint64_t kUnitsPerSmoothEdge = 30;
constexpr std::uint64_t kUnitsPerSmoothRow = 40;
constexpr std::uint64_t kUnitsPerSmoothMeeting = 25;

/// Heights within a row, in 1/256 pixels, where it is cut.
class Cuts {
public:
    void add(std::int32_t at) { m_bits[static_cast<std::size_t>(at) / 64] |= std::uint64_t { 1 } << (at % 64); }
    int count() const
    {
        int count = 0;
        for (const std::uint64_t bits : m_bits)
            count += __builtin_popcountll(bits);
        return count;
    }
    template <typename Visit> void each(Visit visit) const
    {
        for (std::size_t group = 0; group < m_bits.size(); ++group) {
            for (std::uint64_t bits = m_bits[group]; bits != 0; bits &= bits - 1)
                visit(static_cast<std::int32_t>(group * 64) + __builtin_ctzll(bits));
        }
    }

private:
    std::array<std::uint64_t, kSubpixels / 64> m_bits {};
};

/// An edge between two cuts: where it is at the upper and the lower one.
struct Side {
    const Edge* edge = nullptr;
    std::int32_t topX = 0;
    std::int32_t bottomX = 0;

    std::int64_t order() const { return std::int64_t { topX } + bottomX; }
};

void sortSides(std::vector<Side>& sides)
{
    sortNearly(sides, [](const Side& a, const Side& b) { return a.order() < b.order(); });
}

class CoverageScan {
public:
    CoverageScan(const EdgeList& list, FillRule rule, SpanSink& sink, WorkMeter& work)
        : m_list(list)
        , m_windingMask(rule == FillRule::EvenOdd ? 1 : -1)
        , m_sink(sink)
        , m_work(work)
        , m_row(list.area())
    {
    }

    void run()
    {
        const PixelRect& area = m_list.area();
        m_work.charge(Work::Shapes, kUnitsPerSmoothShape + kUnitsPerSmoothEdge * m_list.edges().size());
        const std::vector<std::uint32_t> order = m_list.orderByRow(0);
        std::size_t next = 0;
        int y = area.top;
        while (next < order.size() || !m_active.empty()) {
            if (m_active.empty())
                y = std::max(y, m_list.firstRow(m_list.edges()[order[next]], 0));
            if (y >= area.bottom
                || !m_work.allows(Work::Shapes, kUnitsPerSmoothRow + kUnitsPerSmoothMeeting * m_meetings))
                return;
            m_meetings = 0;
            const std::int32_t top = y * kSubpixels;
            for (; next < order.size() && m_list.firstRow(m_list.edges()[order[next]], 0) <= y; ++next) {
                const Edge& edge = m_list.edges()[order[next]];
                if (edge.bottom > top)
                    m_incoming.push_back({ &edge, 0, 0 });
            }
            mergeIncoming(top);
            scanRow(top);
            m_row.emit(y, m_sink);
            ++y;
            const auto isOver = [&](const Side& side) { return side.edge->bottom <= top + kSubpixels; };
            m_active.erase(std::remove_if(m_active.begin(), m_active.end(), isOver), m_active.end());
        }
    }

private:
    /// Keeps the sides in the order of the row's top, so that every strip starts nearly sorted.
    void mergeIncoming(std::int32_t top)
    {
        const auto locate
            = [&](Side& side) { side.topX = side.bottomX = side.edge->roundedXAt(std::max(top, side.edge->top)); };
        for (Side& side : m_active)
            locate(side);
        sortSides(m_active);
        if (m_incoming.empty())
            return;
        for (Side& side : m_incoming)
            locate(side);
        const auto isLeft = [](const Side& a, const Side& b) { return a.topX < b.topX; };
        std::sort(m_incoming.begin(), m_incoming.end(), isLeft);
        const auto middle = static_cast<std::ptrdiff_t>(m_active.size());
        m_active.insert(m_active.end(), m_incoming.begin(), m_incoming.end());
        std::inplace_merge(m_active.begin(), m_active.begin() + middle, m_active.end(), isLeft);
        m_incoming.clear();
    }

    void scanRow(std::int32_t top)
    {
        const std::int32_t bottom = top + kSubpixels;
        Cuts cuts;
        for (const Side& side : m_active) {
            if (side.edge->top > top)
                cuts.add(side.edge->top - top);
            if (side.edge->bottom < bottom)
                cuts.add(side.edge->bottom - top);
        }
        const int count = cuts.count();
        if (count > kMostCuts || m_active.size() * static_cast<std::size_t>(count + 1) > kMostMeetings)
            return sampleRow(top);
        if (count == 0)
            return addStrip(m_active, top, bottom);
        std::int32_t from = top;
        cuts.each([&](std::int32_t cut) {
            addPartialStrip(from, top + cut);
            from = top + cut;
        });
        addPartialStrip(from, bottom);
    }

    void addPartialStrip(std::int32_t top, std::int32_t bottom)
    {
        m_strip.clear();
        for (const Side& side : m_active) {
            if (side.edge->top <= top && side.edge->bottom >= bottom)
                m_strip.push_back(side);
        }
        addStrip(m_strip, top, bottom);
    }

    /// All sides reach from `top` to `bottom`.
    void addStrip(std::vector<Side>& sides, std::int32_t top, std::int32_t bottom)
    {
        for (Side& side : sides) {
            side.topX = side.edge->roundedXAt(top);
            side.bottomX = side.edge->roundedXAt(bottom);
        }
        sortSides(sides);
        const auto stripsOfHalf = static_cast<std::size_t>(2 * kSubpixels / (bottom - top));
        if (bottom - top > kSampleHeight && sides.size() * stripsOfHalf <= kMostMeetings && crosses(sides)) {
            const std::int32_t middle = top + (bottom - top) / 2;
            addStrip(sides, top, middle);
            return addStrip(sides, middle, bottom);
        }
        addTrapezoids(sides, bottom - top);
    }

    static bool crosses(const std::vector<Side>& sides)
    {
        for (std::size_t i = 1; i < sides.size(); ++i) {
            if (sides[i - 1].topX > sides[i].topX || sides[i - 1].bottomX > sides[i].bottomX)
                return true;
        }
        return false;
    }

    void sampleRow(std::int32_t top)
    {
        std::int32_t height = kSampleHeight;
        while (height < kSubpixels && m_active.size() * static_cast<std::size_t>(kSubpixels / height) > kMostMeetings)
            height *= 2;
        for (std::int32_t line = top + height / 2; line < top + kSubpixels; line += height) {
            m_strip.clear();
            for (const Side& side : m_active) {
                if (side.edge->top > line || side.edge->bottom <= line)
                    continue;
                const std::int32_t x = side.edge->roundedXAt(line);
                m_strip.push_back({ side.edge, x, x });
            }
            sortSides(m_strip);
            addTrapezoids(m_strip, height);
        }
    }

    /// The stretches inside the shape, between sides in order.
    void addTrapezoids(const std::vector<Side>& sides, std::int32_t height)
    {
        m_meetings += sides.size();
        std::int32_t winding = 0;
        for (const Side& side : sides) {
            const bool wasInside = (winding & m_windingMask) != 0;
            winding += side.edge->winding;
            const bool isInside = (winding & m_windingMask) != 0;
            if (isInside != wasInside)
                m_row.addRightOf(side.topX, side.bottomX, height, isInside ? 1 : -1);
        }
    }

    const EdgeList& m_list;
    std::int32_t m_windingMask;
    SpanSink& m_sink;
    WorkMeter& m_work;
    std::size_t m_meetings = 0; ///< of edges with strips or lines of the row before
    CoverageRow m_row;
    std::vector<Side> m_active;
    std::vector<Side> m_incoming;
    std::vector<Side> m_strip;
};

} // namespace

void scanCoverage(const EdgeList& edges, FillRule rule, SpanSink& sink, WorkMeter& work)
{
    CoverageScan(edges, rule, sink, work).run();
}

} // namespace quillrip
