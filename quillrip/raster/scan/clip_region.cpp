#include "quillrip/raster/scan/clip_region.h"

#include "quillrip/raster/compose/bit_words.h"
#include "quillrip/raster/compose/mixing.h"
#include "quillrip/raster/scan/bilevel_scan.h"
#include "quillrip/raster/scan/coverage_scan.h"
#include "quillrip/raster/scan/edge_list.h"

#include <algorithm>

namespace quillrip {

namespace {

constexpr PixelRect kNothing { 0, 0, 0, 0 };

PixelRect boundsOfBoth(const PixelRect& a, const PixelRect& b)
{
    if (a.empty() || b.empty())
        return a.empty() ? b : a;
    return { std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
        std::max(a.bottom, b.bottom) };
}

/// Keeps the pixels that are covered in part.
class FringeSink final : public SpanSink {
public:
    explicit FringeSink(ClipFringe& fringe)
        : m_fringe(fringe)
    {
    }

    void span(int, int, int) override { }
    void coverage(int y, int left, const std::uint8_t* coverage, int count) override
    {
        for (int i = 0; i < count; ++i)
            m_fringe.add(y, left + i, coverage[i]);
    }

private:
    ClipFringe& m_fringe;
};

std::shared_ptr<const ClipFringe> ifAny(ClipFringe fringe)
{
    return fringe.empty() ? nullptr : std::make_shared<const ClipFringe>(std::move(fringe));
}

} // namespace

/// Fills in the runs of a region row by row.
class ClipRegion::Builder final : public SpanSink {
public:
    explicit Builder(const PixelRect& bounds)
        : m_region(std::make_shared<ClipRegion>())
    {
        m_region->m_bounds = bounds.empty() ? kNothing : bounds;
        m_region->m_rowStarts.reserve(static_cast<std::size_t>(m_region->m_bounds.height()) + 1);
        m_region->m_rowStarts.push_back(0);
    }

    /// Rows come in rising order; a row's runs are sorted and apart.
    void span(int y, int left, int right) override
    {
        const PixelRect& bounds = m_region->m_bounds;
        left = std::max(left, bounds.left);
        right = std::min(right, bounds.right);
        if (y < bounds.top || y >= bounds.bottom || left >= right)
            return;
        finishRowsBefore(y);
        m_region->m_runs.push_back({ left, right });
    }

    void coverage(int, int, const std::uint8_t*, int) override { }

    std::shared_ptr<const ClipRegion> finish(std::shared_ptr<const ClipFringe> fringe = nullptr)
    {
        finishRowsBefore(m_region->m_bounds.bottom);
        if (m_region->m_runs.empty() && !fringe)
            return ofRect(kNothing);
        m_region->m_fringe = std::move(fringe);
        return m_region;
    }

private:
    void finishRowsBefore(int y)
    {
        const auto rows = static_cast<std::size_t>(y - m_region->m_bounds.top);
        while (m_region->m_rowStarts.size() <= rows)
            m_region->m_rowStarts.push_back(m_region->m_runs.size());
    }

    std::shared_ptr<ClipRegion> m_region;
};

std::shared_ptr<const ClipRegion> ClipRegion::ofRect(const PixelRect& rect)
{
    auto region = std::make_shared<ClipRegion>();
    region->m_bounds = rect.empty() ? kNothing : rect;
    return region;
}

std::shared_ptr<const ClipRegion> ClipRegion::ofPath(
    const Path& devicePath, FillRule rule, const PixelRect& bounds, WorkMeter* work, ClipEdges edges)
{
    if (bounds.empty())
        return ofRect(kNothing);
    WorkMeter uncounted;
    WorkMeter& meter = work ? *work : uncounted;
    meter.charge(Work::Shapes, kUnitsPerPathPoint * devicePath.pointCount());
    EdgeList list(bounds);
    list.addPath(devicePath);
    Builder builder(bounds);
    scanCentres(list, rule, builder, meter);
    if (edges == ClipEdges::Hard)
        return builder.finish();
    ClipFringe fringe(bounds.top, bounds.bottom);
    FringeSink sink(fringe);
    list.shrinkArea();
    scanCoverage(list, rule, sink, meter);
    return builder.finish(ifAny(std::move(fringe)));
}

std::shared_ptr<const ClipRegion> ClipRegion::intersected(const ClipRegion& other) const
{
    const PixelRect common = m_bounds.intersected(other.m_bounds);
    if (common.empty() || (isRect() && other.isRect()))
        return ofRect(common);
    Builder builder(common);
    for (int y = common.top; y < common.bottom; ++y) {
        const Run whole { common.left, common.right };
        const Run* a = isRect() ? &whole : begin(y);
        const Run* aEnd = isRect() ? &whole + 1 : end(y);
        const Run* b = other.isRect() ? &whole : other.begin(y);
        const Run* bEnd = other.isRect() ? &whole + 1 : other.end(y);
        while (a != aEnd && b != bEnd) {
            builder.span(y, std::max(a->left, b->left), std::min(a->right, b->right));
            if (a->right < b->right)
                ++a;
            else
                ++b;
        }
    }
    return builder.finish(commonFringe(other, common));
}

unsigned ClipRegion::coverageAt(int x, int y, const ClipFringe::Cell*& cell) const
{
    if (m_fringe) {
        const ClipFringe::Cell* last = m_fringe->end(y);
        while (cell != last && cell->x < x)
            ++cell;
        if (cell != last && cell->x == x)
            return cell->coverage;
    }
    return contains(x, y) ? 255 : 0;
}

/// What is inside of both at once: shares multiply, as those of two edges that have nothing to do with each other.
std::shared_ptr<const ClipFringe> ClipRegion::commonFringe(const ClipRegion& other, const PixelRect& common) const
{
    if (!m_fringe && !other.m_fringe)
        return nullptr;
    ClipFringe fringe(common.top, common.bottom);
    for (int y = common.top; y < common.bottom; ++y) {
        const ClipFringe::Cell* a = m_fringe ? m_fringe->begin(y) : nullptr;
        const ClipFringe::Cell* aEnd = m_fringe ? m_fringe->end(y) : nullptr;
        const ClipFringe::Cell* b = other.m_fringe ? other.m_fringe->begin(y) : nullptr;
        const ClipFringe::Cell* bEnd = other.m_fringe ? other.m_fringe->end(y) : nullptr;
        const ClipFringe::Cell* inA = a;
        const ClipFringe::Cell* inB = b;
        while (a != aEnd || b != bEnd) {
            const int x = b == bEnd || (a != aEnd && a->x < b->x) ? a->x : b->x;
            a += a != aEnd && a->x == x ? 1 : 0;
            b += b != bEnd && b->x == x ? 1 : 0;
            if (x >= common.left && x < common.right)
                fringe.add(y, x, mixed(0, coverageAt(x, y, inA), other.coverageAt(x, y, inB)));
        }
    }
    return ifAny(std::move(fringe));
}

std::shared_ptr<const ClipRegion> ClipRegion::complement(const PixelRect& bounds) const
{
    if (bounds.empty())
        return ofRect(kNothing);
    Builder builder(bounds);
    for (int y = bounds.top; y < bounds.bottom; ++y) {
        int left = bounds.left;
        if (y >= m_bounds.top && y < m_bounds.bottom) {
            const Run whole { m_bounds.left, m_bounds.right };
            const Run* run = isRect() ? &whole : begin(y);
            const Run* last = isRect() ? &whole + 1 : end(y);
            for (; run != last; ++run) {
                builder.span(y, left, run->left);
                left = std::max(left, run->right);
            }
        }
        builder.span(y, left, bounds.right);
    }
    if (!m_fringe)
        return builder.finish();
    ClipFringe fringe(bounds.top, bounds.bottom);
    for (int y = bounds.top; y < bounds.bottom; ++y) {
        for (const ClipFringe::Cell* cell = m_fringe->begin(y); cell != m_fringe->end(y); ++cell) {
            if (cell->x >= bounds.left && cell->x < bounds.right)
                fringe.add(y, cell->x, 255u - cell->coverage);
        }
    }
    return builder.finish(ifAny(std::move(fringe)));
}

std::shared_ptr<const ClipRegion> ClipRegion::ofBits(
    const std::uint8_t* bits, std::size_t stride, const PixelRect& bounds)
{
    if (bounds.empty())
        return ofRect(kNothing);
    Builder builder(bounds);
    for (int y = bounds.top; y < bounds.bottom; ++y, bits += stride) {
        const BitRow row(bits, bounds.width());
        int runStart = -1;
        for (int x = 0; x < bounds.width(); x += 64) {
            const std::uint64_t word = row.wordAt(x);
            if (word == (runStart < 0 ? 0 : kAllBits))
                continue;
            for (int i = 0; i < std::min(64, bounds.width() - x); ++i) {
                const bool isIn = (word >> (63 - i) & 1) != 0;
                if (isIn && runStart < 0) {
                    runStart = x + i;
                } else if (!isIn && runStart >= 0) {
                    builder.span(y, bounds.left + runStart, bounds.left + x + i);
                    runStart = -1;
                }
            }
        }
        if (runStart >= 0)
            builder.span(y, bounds.left + runStart, bounds.right);
    }
    return builder.finish();
}

std::pair<const ClipRegion::Run*, const ClipRegion::Run*> ClipRegion::runsAt(int y, Run& whole) const
{
    if (y < m_bounds.top || y >= m_bounds.bottom)
        return { nullptr, nullptr };
    if (!isRect())
        return { begin(y), end(y) };
    whole = { m_bounds.left, m_bounds.right };
    return { &whole, &whole + 1 };
}

template <typename IsIn>
std::shared_ptr<const ClipRegion> ClipRegion::combined(
    const ClipRegion& other, const PixelRect& bounds, IsIn isIn) const
{
    if (bounds.empty())
        return ofRect(kNothing);
    Builder builder(bounds);
    for (int y = bounds.top; y < bounds.bottom; ++y) {
        Run wholeA {};
        Run wholeB {};
        auto [a, aEnd] = runsAt(y, wholeA);
        auto [b, bEnd] = other.runsAt(y, wholeB);
        bool isInA = false;
        bool isInB = false;
        int runStart = 0;
        while (a != aEnd || b != bEnd) {
            const int nextA = a == aEnd ? INT32_MAX : isInA ? a->right : a->left;
            const int nextB = b == bEnd ? INT32_MAX : isInB ? b->right : b->left;
            const int at = std::min(nextA, nextB);
            const bool wasIn = isIn(isInA, isInB);
            if (nextA == at) {
                a += isInA ? 1 : 0;
                isInA = !isInA;
            }
            if (nextB == at) {
                b += isInB ? 1 : 0;
                isInB = !isInB;
            }
            if (isIn(isInA, isInB) == wasIn)
                continue;
            if (wasIn)
                builder.span(y, runStart, at);
            runStart = at;
        }
    }
    return builder.finish();
}

std::shared_ptr<const ClipRegion> ClipRegion::united(const ClipRegion& other) const
{
    return combined(other, boundsOfBoth(m_bounds, other.m_bounds), [](bool a, bool b) { return a || b; });
}

std::shared_ptr<const ClipRegion> ClipRegion::exclusive(const ClipRegion& other) const
{
    return combined(other, boundsOfBoth(m_bounds, other.m_bounds), [](bool a, bool b) { return a != b; });
}

std::shared_ptr<const ClipRegion> ClipRegion::subtracted(const ClipRegion& other) const
{
    return combined(other, m_bounds, [](bool a, bool b) { return a && !b; });
}

std::shared_ptr<const ClipRegion> ClipRegion::moved(int right, int down) const
{
    constexpr int farthest = 1 << 24;
    const auto isNear = [](int at) { return at > -farthest && at < farthest; };
    if (m_bounds.empty() || !isNear(right) || !isNear(down) || !isNear(m_bounds.left) || !isNear(m_bounds.right)
        || !isNear(m_bounds.top) || !isNear(m_bounds.bottom))
        return ofRect(kNothing);
    auto region = std::make_shared<ClipRegion>(*this);
    region->m_bounds = { m_bounds.left + right, m_bounds.top + down, m_bounds.right + right, m_bounds.bottom + down };
    for (Run& run : region->m_runs) {
        run.left += right;
        run.right += right;
    }
    if (m_fringe)
        region->m_fringe = std::make_shared<const ClipFringe>(m_fringe->moved(right, down));
    return region;
}

bool ClipRegion::contains(int x, int y) const
{
    Run whole {};
    const auto [first, last] = runsAt(y, whole);
    const Run* run
        = std::lower_bound(first, last, x, [](const Run& candidate, int column) { return candidate.right <= column; });
    return run != last && run->left <= x;
}

const ClipRegion::Run* ClipRegion::begin(int y) const
{
    return m_runs.data() + m_rowStarts[static_cast<std::size_t>(y - m_bounds.top)];
}

const ClipRegion::Run* ClipRegion::end(int y) const
{
    return m_runs.data() + m_rowStarts[static_cast<std::size_t>(y - m_bounds.top) + 1];
}

} // namespace quillrip
