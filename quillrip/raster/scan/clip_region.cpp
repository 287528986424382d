#include "quillrip/raster/scan/clip_region.h"

#include "quillrip/raster/scan/bilevel_scan.h"

#include <algorithm>

namespace quillrip {

namespace {

constexpr PixelRect kNothing { 0, 0, 0, 0 };

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

    std::shared_ptr<const ClipRegion> finish()
    {
        finishRowsBefore(m_region->m_bounds.bottom);
        if (m_region->m_runs.empty())
            return ofRect(kNothing);
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

std::shared_ptr<const ClipRegion> ClipRegion::ofPath(const Path& devicePath, FillRule rule, const PixelRect& bounds)
{
    if (bounds.empty())
        return ofRect(kNothing);
    EdgeList edges(bounds);
    edges.addPath(devicePath);
    Builder builder(bounds);
    scanCentres(edges, rule, builder);
    return builder.finish();
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
    return builder.finish();
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
    return builder.finish();
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
