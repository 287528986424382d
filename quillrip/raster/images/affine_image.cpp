#include "quillrip/raster/images/affine_sampler.h"
#include "quillrip/raster/images/aligned_image.h"
#include "quillrip/raster/images/row_window.h"
#include "quillrip/raster/paths/flatten.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

namespace quillrip {

namespace {

constexpr std::uint64_t kUnitsPerSample = 8;
/// Rows that a pixel may have its samples in. Larger images that are reduced to a few pixels are sampled at the pixels'
/// centres once so many rows have come.
constexpr std::size_t kMostKeptBytes = std::size_t { 16 } << 20;
/// Rows that come before all pixels that have become known are painted: enough for long spans, and near the processor.
constexpr std::size_t kBatchBytes = std::size_t { 1 } << 20;
constexpr std::int64_t kFewestBatchRows = 16;
constexpr std::size_t kMostBatchBytes = std::size_t { 4 } << 20; ///< but for a single row
constexpr std::int64_t kRowsUnknown = INT32_MAX;

/// Device columns, half open.
struct Columns {
    int begin = 0;
    int end = 0;
    bool empty() const { return begin >= end; }
};

bool isFiniteMatrix(const Matrix& m)
{
    return isFinite(Point { m.a, m.b }) && isFinite(Point { m.c, m.d }) && isFinite(Point { m.e, m.f });
}

/// What is no number is low.
int limited(double value, int low, int high)
{
    return value > low ? value < high ? static_cast<int>(value) : high : low;
}

/// Source rows come in order, so the device pixels that they make known are a strip of the page, slanted as the image
/// is. It is painted as soon as a batch of rows has come, each pixel once, and rows that no later pixel needs are
/// given up.
class AffineImage final : public ImagePainter {
public:
    AffineImage(const ImageGeometry& image, std::unique_ptr<Compositor> compositor, std::int64_t mostBatchRows)
        : m_image(image)
        , m_compositor(std::move(compositor))
        , m_mostBatchRows(mostBatchRows)
        , m_sampler(image, m_compositor->format(), m_compositor->isSourceTransparent())
        , m_mostRows(image.height < 0 ? kRowsUnknown : image.height)
        , m_unitsPerRow(static_cast<std::uint64_t>(image.width)
              * (static_cast<std::uint64_t>(m_sampler.inkChannels()) + (image.format == ImageFormat::Rgba32 ? 1 : 0)))
        , m_box(visibleBox())
        , m_needed(neededPart())
        , m_rows(image.format, m_sampler.inkChannels(), m_needed.left, m_needed.right)
    {
        chooseCapacity();
        m_line.resize(static_cast<std::size_t>(m_box.width()) * static_cast<std::size_t>(m_sampler.inkChannels()));
        m_coverage.resize(static_cast<std::size_t>(m_box.width()));
        m_left.reserve(static_cast<std::size_t>(m_box.height()));
        for (int y = m_box.top; y < m_box.bottom; ++y)
            m_left.push_back(columnsOfImage(y));
        m_top = m_box.top;
        m_bottom = m_box.bottom;
    }

    void row(const std::uint8_t* pixels) override
    {
        if (m_rows.end() >= m_mostRows || !m_compositor->work().allows(Work::Images, m_unitsPerRow))
            return;
        if (m_rows.end() < m_needed.top || m_rows.end() >= m_needed.bottom)
            return m_rows.pass(1);
        if (m_rows.count() >= m_capacity)
            giveUpRows();
        m_rows.add(pixels);
    }

    void blankRows(int count) override
    {
        const auto most = [&](std::int64_t end) {
            const std::int64_t rows = std::min<std::int64_t>(end - m_rows.end(), count);
            count -= static_cast<int>(std::max<std::int64_t>(rows, 0));
            return std::max<std::int64_t>(rows, 0);
        };
        count = static_cast<int>(std::min<std::int64_t>(std::max(count, 0), m_mostRows - m_rows.end()));
        m_rows.pass(most(m_needed.top));
        m_rows.addBlank(most(m_needed.bottom));
        m_rows.pass(count);
    }

    void finish() override
    {
        if (m_rows.count() > 0) {
            for (int y = m_top; y < m_bottom; ++y) {
                Columns& left = m_left[static_cast<std::size_t>(y - m_box.top)];
                const Columns image = columnsWithin(m_sampler.toSource().b, m_sampler.toSource().d,
                    m_sampler.toSource().f, static_cast<double>(m_rows.end()), y);
                left = { std::max(left.begin, image.begin), std::min(left.end, image.end) };
                if (!left.empty() && !paint(y, left))
                    break;
            }
        }
        m_compositor->chargePixels();
    }

private:
    /// Device pixels that the image may touch.
    PixelRect visibleBox() const
    {
        const PixelRect& bounds = m_compositor->bounds();
        const Rect shape
            = m_image.imageToDevice.boundsOf({ 0, 0, 1.0 * m_image.width, static_cast<double>(m_mostRows) });
        if (!isFiniteMatrix(m_sampler.toSource()) || !(shape.left <= shape.right && shape.top <= shape.bottom))
            return {};
        return { limited(std::floor(shape.left), bounds.left, bounds.right),
            limited(std::floor(shape.top), bounds.top, bounds.bottom),
            limited(std::ceil(shape.right), bounds.left, bounds.right),
            limited(std::ceil(shape.bottom), bounds.top, bounds.bottom) };
    }

    /// Source pixels that the box may need, with some to spare for rounding.
    PixelRect neededPart() const
    {
        if (m_box.empty())
            return {};
        const Rect part = m_sampler.toSource().boundsOf(
            { 1.0 * m_box.left, 1.0 * m_box.top, 1.0 * m_box.right, 1.0 * m_box.bottom });
        const int rows = static_cast<int>(m_mostRows);
        constexpr double spare = 3;
        PixelRect needed { limited(part.left - spare, 0, m_image.width - 1), limited(part.top - spare, 0, rows - 1), 0,
            0 };
        needed.right = limited(part.right + spare, needed.left + 1, m_image.width);
        needed.bottom = limited(part.bottom + spare, needed.top + 1, rows);
        return needed;
    }

    /// How many rows are held: those that a pixel's samples lie in, and a batch.
    void chooseCapacity()
    {
        const std::size_t rowBytes
            = RowWindow::rowBytes(m_image.format, m_sampler.inkChannels(), std::max(m_needed.width(), 1));
        const auto rowsIn = [&](std::size_t bytes) { return static_cast<std::int64_t>(bytes / rowBytes); };
        constexpr double rounding = 2;
        m_keptRows = static_cast<std::int64_t>(
            std::ceil(std::min(m_sampler.rowsAcrossPixel() + rounding, 1.0 * m_needed.height())));
        m_isTooTall = m_sampler.samples() > 1 && m_keptRows > rowsIn(kMostKeptBytes);
        // Kept rows are moved once a batch.
        const std::int64_t most = std::max<std::int64_t>(rowsIn(kMostBatchBytes), 1);
        const std::int64_t batch = std::min(
            m_mostBatchRows, std::max(rowsIn(kBatchBytes), std::min(std::max(m_keptRows, kFewestBatchRows), most)));
        m_capacity
            = m_isTooTall ? rowsIn(kMostKeptBytes) : std::min<std::int64_t>(m_keptRows + batch, m_needed.height());
        m_rows.reserve(m_capacity);
    }

    /// Makes room for more rows.
    void giveUpRows()
    {
        if (m_isTooTall) {
            m_sampler.takeCentresOnly();
            chooseCapacity();
        }
        paintKnown();
        m_rows.dropBefore(m_rows.end() - m_keptRows);
    }

    /// The columns of device row y, and one to spare at both ends, where a source coordinate, which is
    /// across x + down y + origin, lies between 0 and `end`.
    Columns columnsWithin(double across, double down, double origin, double end, int y) const
    {
        const double one = down * y + origin;
        const double other = down * (y + 1) + origin;
        const double low = -std::max(one, other);
        const double high = end - std::min(one, other);
        if (across == 0)
            return low <= 0 && high >= 0 ? Columns { m_box.left, m_box.right } : Columns {};
        const double first = (across > 0 ? low : high) / across;
        const double last = (across > 0 ? high : low) / across;
        return { limited(std::floor(first) - 1, m_box.left, m_box.right),
            limited(std::ceil(last) + 1, m_box.left, m_box.right) };
    }

    Columns columnsOfImage(int y) const
    {
        const Matrix& m = m_sampler.toSource();
        const Columns across = columnsWithin(m.a, m.c, m.e, m_image.width, y);
        const Columns down = columnsWithin(m.b, m.d, m.f, static_cast<double>(m_mostRows), y);
        return { std::max(across.begin, down.begin), std::min(across.end, down.end) };
    }

    /// Paints what the rows that have come suffice for.
    void paintKnown()
    {
        for (int y = m_top; y < m_bottom; ++y) {
            Columns& left = m_left[static_cast<std::size_t>(y - m_box.top)];
            if (left.empty())
                continue;
            const Columns known = takeKnown(left, y);
            if (!known.empty() && !paint(y, known))
                break;
        }
        const auto isDone = [&](int y) { return m_left[static_cast<std::size_t>(y - m_box.top)].empty(); };
        while (m_top < m_bottom && isDone(m_top))
            ++m_top;
        while (m_top < m_bottom && isDone(m_bottom - 1))
            --m_bottom;
        m_compositor->chargePixels();
    }

    /// Takes off the columns that need no more rows: from the left or the right on, as rows rise with x or fall.
    Columns takeKnown(Columns& left, int y) const
    {
        const auto rows = static_cast<double>(m_rows.end());
        const auto isKnown = [&](int x) { return m_sampler.rowsNeeded(x, y) <= rows; };
        const bool rises = m_sampler.toSource().b >= 0;
        if (!isKnown(rises ? left.begin : left.end - 1))
            return {};
        // Between `known`, which is, and `unknown`, which is not or lies beyond the end.
        int known = rises ? left.begin : left.end - 1;
        int unknown = rises ? left.end : left.begin - 1;
        while (std::abs(unknown - known) > 1) {
            const int middle = known + (unknown - known) / 2;
            (isKnown(middle) ? known : unknown) = middle;
        }
        const Columns taken = rises ? Columns { left.begin, unknown } : Columns { unknown + 1, left.end };
        (rises ? left.begin : left.end) = rises ? taken.end : taken.begin;
        return taken;
    }

    /// False when the job's work is at its end.
    bool paint(int y, Columns columns)
    {
        const auto count = static_cast<std::size_t>(columns.end - columns.begin);
        const std::uint64_t samples = count * static_cast<std::uint64_t>(m_sampler.samples());
        if (!m_compositor->work().allows(Work::Images, samples * kUnitsPerSample))
            return false;
        m_sampler.sample(m_rows, y, columns.begin, columns.end, m_line.data(), m_coverage.data());
        std::size_t first = 0;
        std::size_t end = count;
        while (first < end && m_coverage[first] == 0)
            ++first;
        while (first < end && m_coverage[end - 1] == 0)
            --end;
        if (first < end)
            paintCovered(y, columns.begin, first, end);
        return true;
    }

    /// Columns left + first <= x < left + end.
    void paintCovered(int y, int left, std::size_t first, std::size_t end)
    {
        const std::uint8_t* const ink = m_line.data() + first * static_cast<std::size_t>(m_sampler.inkChannels());
        const std::uint8_t* const coverage = m_coverage.data() + first;
        const int x = left + static_cast<int>(first);
        const auto count = static_cast<int>(end - first);
        if (m_image.format == ImageFormat::Rgba32)
            return m_compositor->blended(y, x, ink, coverage, count);
        if (m_image.format != ImageFormat::Mono)
            return m_compositor->colors(y, x, ink, coverage, count);
        // Bilevel ink is a mask; an opaque one whitens the rest of its box, which only whole pixels can say.
        if (m_compositor->isSourceTransparent())
            return m_compositor->coverage(y, x, ink, count, false);
        for (int from = 0; from < count;) {
            int to = from;
            while (to < count && coverage[to] != 0)
                ++to;
            m_compositor->coverage(y, x + from, ink + from, to - from, true);
            for (from = to; from < count && coverage[from] == 0;)
                ++from;
        }
    }

    ImageGeometry m_image;
    std::unique_ptr<Compositor> m_compositor;
    std::int64_t m_mostBatchRows;
    AffineSampler m_sampler;
    std::int64_t m_mostRows;
    std::uint64_t m_unitsPerRow;
    PixelRect m_box; ///< device pixels
    PixelRect m_needed; ///< source pixels
    RowWindow m_rows;
    std::int64_t m_keptRows = 0; ///< the latest, which pixels still to be painted may need
    bool m_isTooTall = false; ///< those of a single pixel are too many, if the image has as many
    std::int64_t m_capacity = 0; ///< rows that have come before what is known is painted
    std::vector<Columns> m_left; ///< of each row of the box: what is still to be painted
    int m_top = 0; ///< device rows with something left
    int m_bottom = 0;
    std::vector<std::uint8_t> m_line;
    std::vector<std::uint8_t> m_coverage;
};

} // namespace

std::unique_ptr<ImagePainter> makeAffineImage(
    const ImageGeometry& geometry, std::unique_ptr<Compositor> compositor, std::int64_t mostBatchRows)
{
    return std::make_unique<AffineImage>(geometry, std::move(compositor), mostBatchRows);
}

} // namespace quillrip
