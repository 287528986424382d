#include "quillrip/raster/paths/stroke_painter.h"

#include "quillrip/raster/paths/flatten.h"
#include "quillrip/raster/paths/stroke_outline.h"
#include "quillrip/raster/scan/convex_fill.h"
#include "quillrip/raster/scan/coverage_scan.h"
#include "quillrip/raster/scan/hairline.h"
#include "quillrip/raster/scan/span_union.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace quillrip {

namespace {

/// Segments that leave an axis by less than this, in device pixels, run along it.
constexpr double kAlongAxis = 1.0 / 512;

constexpr std::uint64_t kUnitsPerLine = 50;
constexpr std::uint64_t kUnitsPerVertex = 40;
/// Of a line that is seen to lie above or below the area, and of its vertices.
constexpr std::uint64_t kUnitsPerMissedLine = 10;
constexpr std::uint64_t kUnitsPerMissedVertex = 5;
/// Of a convex piece's vertex: an edge to be filled or kept.
constexpr std::uint64_t kUnitsPerPieceVertex = 20;
/// Of a span of a hairline, or of a piece on a bilevel page.
constexpr std::uint64_t kUnitsPerSpan = 12;

/// In half line widths: how far a join's tip can lie from the line.
double longestMiter(const StrokeStyle& style)
{
    if (!isMitred(style.join))
        return 1;
    return std::isfinite(style.miterLimit) ? std::max(1.0, style.miterLimit) : 10;
}

/// Lines in user space to lines in device space.
class DeviceLines : public StrokeLineSink {
public:
    DeviceLines(
        const Matrix& userToDevice, const Pen& pen, const StrokeStyle& style, const PixelRect& area, WorkMeter& work)
        : m_userToDevice(userToDevice)
        , m_pen(pen)
        , m_capReach(kSpare + std::max(pen.deviceWidth(), pen.deviceHeight()))
        , m_joinReach(m_capReach * longestMiter(style))
        , m_area(area)
        , m_work(work)
    {
    }

    void line(StrokeLine& line) final
    {
        for (StrokeLine::Vertex& vertex : line.vertices)
            vertex.at = m_userToDevice.apply(vertex.at);
        line.dotDirection = m_userToDevice.applyVector(line.dotDirection);
        const std::size_t count = line.vertices.size();
        if (missesArea(line))
            return charge(kUnitsPerMissedLine + kUnitsPerMissedVertex * count);
        if (m_work.allows(Work::Lines, kUnitsPerLine + kUnitsPerVertex * count))
            deviceLine(line);
    }

protected:
    const Pen& pen() const { return m_pen; }
    const PixelRect& area() const { return m_area; }
    void charge(std::uint64_t units) { m_work.charge(Work::Lines, units); }
    virtual void deviceLine(StrokeLine& line) = 0;

private:
    /// Device pixels that a crisp line may move, and more.
    static constexpr double kSpare = 2;

    /// Above or below the area, where nothing is drawn: of a stroke in bands, most of it.
    bool missesArea(const StrokeLine& line) const
    {
        const double reach = line.vertices.size() > 2 ? m_joinReach : m_capReach;
        const double top = m_area.top - reach;
        const double bottom = m_area.bottom + reach;
        bool isAbove = true;
        bool isBelow = true;
        for (const StrokeLine::Vertex& vertex : line.vertices) {
            isAbove = isAbove && vertex.at.y < top;
            isBelow = isBelow && vertex.at.y > bottom;
        }
        return isAbove || isBelow;
    }

    Matrix m_userToDevice;
    Pen m_pen;
    double m_capReach; ///< device pixels from a line of one segment to its farthest pixel, or more
    double m_joinReach; ///< the same of any line
    PixelRect m_area;
    WorkMeter& m_work;
};

/// Whether all segments run along the device's axes, at least one of them.
bool runsAlongAxes(const StrokeLine& line)
{
    const std::size_t count = line.vertices.size();
    for (std::size_t i = 1; i <= count; ++i) {
        if (i == count && !line.isClosed)
            break;
        const Point way = line.vertices[i == count ? 0 : i].at - line.vertices[i - 1].at;
        if (std::abs(way.x) > kAlongAxis && std::abs(way.y) > kAlongAxis)
            return false;
    }
    return count > 1;
}

/// Moves upright segments sideways and level ones up or down so that their left and upper sides fall between pixels.
void snapToPixels(StrokeLine& line, double widthX, double widthY)
{
    const auto snapped = [](double centre, double width) { return std::floor(centre - width / 2 + 0.5) + width / 2; };
    const std::size_t count = line.vertices.size();
    std::vector<Point> moved(count);
    for (std::size_t i = 0; i < count; ++i)
        moved[i] = line.vertices[i].at;
    for (std::size_t i = 1; i <= count; ++i) {
        if (i == count && !line.isClosed)
            break;
        const std::size_t next = i == count ? 0 : i;
        const Point a = line.vertices[i - 1].at;
        const Point b = line.vertices[next].at;
        const bool isLevel = std::abs(b.x - a.x) >= std::abs(b.y - a.y);
        if (isLevel)
            moved[i - 1].y = moved[next].y = snapped(a.y, widthY);
        else
            moved[i - 1].x = moved[next].x = snapped(a.x, widthX);
    }
    for (std::size_t i = 0; i < count; ++i)
        line.vertices[i].at = moved[i];
}

/// Moves `end` towards `next` by half a pixel, but not beyond `farthest` of the way.
void trimEnd(Point& end, Point next, double farthest)
{
    const Point way = next - end;
    const double length = std::hypot(way.x, way.y);
    end = end + way * (length > 0 ? std::min(0.5 / length, farthest) : 0);
}

class HairlineStroke final : public DeviceLines {
public:
    HairlineStroke(const Matrix& userToDevice, const Pen& pen, const StrokeStyle& style, const PixelRect& area,
        WorkMeter& work, SpanSink& sink)
        : DeviceLines(userToDevice, pen, style, area, work)
        , m_cap(style.cap)
        , m_sink(sink)
    {
    }

private:
    void deviceLine(StrokeLine& line) override
    {
        const std::size_t count = line.vertices.size();
        // A hairline has its ends' pixels. A dash is as long as its gap says, so it ends half a pixel earlier.
        if (line.isDash && count > 1) {
            const Point first = line.vertices[0].at;
            const double farthest = count == 2 ? 0.5 : 1;
            trimEnd(line.vertices[0].at, line.vertices[1].at, farthest);
            trimEnd(line.vertices[count - 1].at, count == 2 ? first : line.vertices[count - 2].at, farthest);
        }
        if (count == 1 && (m_cap != LineCap::Butt || line.isDash))
            draw(line.vertices[0].at, line.vertices[0].at);
        for (std::size_t i = 1; i < count; ++i)
            draw(line.vertices[i - 1].at, line.vertices[i].at);
        if (line.isClosed)
            draw(line.vertices[count - 1].at, line.vertices[0].at);
    }

    void draw(Point from, Point to)
    {
        const double rows = std::min(std::abs(to.y - from.y), static_cast<double>(area().height()));
        charge(kUnitsPerSpan * static_cast<std::uint64_t>(rows >= 0 ? rows : 0));
        drawHairline(from, to, area(), m_sink);
    }

    LineCap m_cap;
    SpanSink& m_sink;
};

class BilevelStroke final : public DeviceLines, private PieceSink, private SpanSink {
public:
    BilevelStroke(const Matrix& userToDevice, const Pen& pen, const StrokeStyle& style, const PixelRect& area,
        WorkMeter& work, SpanSink& sink)
        : DeviceLines(userToDevice, pen, style, area, work)
        , m_sink(sink)
        , m_fill(area, *this)
        , m_outline(style, *this)
    {
    }

private:
    void deviceLine(StrokeLine& line) override
    {
        m_hasMarked = m_hasPieces = false;
        if (pen().isUpright() && runsAlongAxes(line)) {
            const double widthX = std::max(1.0, std::floor(pen().deviceWidth() + 0.5));
            const double widthY = std::max(1.0, std::floor(pen().deviceHeight() + 0.5));
            snapToPixels(line, widthX, widthY);
            m_outline.outline(line, Pen::upright(widthX, widthY));
        } else {
            m_outline.outline(line, pen());
        }
        // A short dash between two pixels' centres.
        const Point start = line.vertices[0].at;
        constexpr double farthest = 1e8;
        if (m_hasPieces && !m_hasMarked && std::abs(start.x) < farthest && std::abs(start.y) < farthest) {
            const int x = static_cast<int>(std::floor(start.x));
            m_sink.span(static_cast<int>(std::floor(start.y)), x, x + 1);
        }
    }

    void piece(const Point* points, std::size_t count) override
    {
        m_hasPieces = true;
        charge(kUnitsPerPieceVertex * count + kUnitsPerSpan * m_spans);
        m_spans = 0;
        m_fill.fill(points, count);
    }

    void span(int y, int left, int right) override
    {
        m_hasMarked = true;
        ++m_spans;
        m_sink.span(y, left, right);
    }
    void coverage(int, int, const std::uint8_t*, int) override { }

    SpanSink& m_sink;
    ConvexFill m_fill;
    StrokeOutline m_outline;
    std::uint64_t m_spans = 0; ///< since the last piece
    bool m_hasMarked = false;
    bool m_hasPieces = false;
};

/// Keeps the edges of the pieces in an area until all have come, since they overlap. Above so many it is overfull: it
/// keeps none then and paints nothing.
class CoverageStroke final : public DeviceLines, private PieceSink {
public:
    /// 12 MiB of them: some 30,000 vertices with round joins.
    static constexpr std::size_t kMostEdges = 393216;

    CoverageStroke(const Matrix& userToDevice, const Pen& pen, const StrokeStyle& style, const PixelRect& area,
        WorkMeter& work, EdgeList& edges, SpanSink& sink)
        : DeviceLines(userToDevice, pen, style, area, work)
        , m_work(work)
        , m_sink(sink)
        , m_edges(edges)
        , m_outline(style, *this)
    {
        m_edges.restart(area);
    }

    void finish()
    {
        m_edges.shrinkArea();
        scanCoverage(m_edges, FillRule::NonZero, m_sink, m_work);
        m_edges.restart(area());
    }
    bool wantsMore() const override { return !m_isOverfull; }

private:
    void deviceLine(StrokeLine& line) override
    {
        if (m_isOverfull)
            return;
        if (pen().isUpright() && runsAlongAxes(line))
            snapToPixels(line, pen().deviceWidth(), pen().deviceHeight());
        m_outline.outline(line, pen());
    }

    void piece(const Point* points, std::size_t count) override
    {
        if (m_isOverfull)
            return;
        charge(kUnitsPerPieceVertex * count);
        m_edges.addConvex(points, count);
        if (m_edges.edges().size() <= kMostEdges)
            return;
        // Memory stays bounded at the price of a seam.
        if (area().height() == 1)
            return finish();
        m_edges.restart(area());
        m_isOverfull = true;
    }

    WorkMeter& m_work;
    SpanSink& m_sink;
    EdgeList& m_edges;
    StrokeOutline m_outline;
    bool m_isOverfull = false;
};

} // namespace

void paintStroke(
    const Path& userPath, const Matrix& userToDevice, const StrokeStyle& style, Compositor& compositor, EdgeList& edges)
{
    const PixelRect& area = compositor.bounds();
    WorkMeter& work = compositor.work();
    const Pen pen(style.width, userToDevice);
    const auto run = [&](StrokeLineSink& lines, const PixelRect& part) {
        if (!Dasher::canDash(style, userToDevice))
            return forEachStrokeLine(userPath, userToDevice, lines);
        const double penWidth = std::max(pen.deviceWidth(), pen.deviceHeight());
        Dasher dasher(style, userToDevice, part, penWidth, work, lines);
        forEachStrokeLine(userPath, userToDevice, dasher);
    };

    PaintingSink painting(compositor);
    if (compositor.format() != PixelFormat::Bilevel) {
        // A row's coverage is that of the edges that meet it, whatever else there is.
        std::vector<PixelRect> bands { area };
        while (!bands.empty() && !work.isExhausted()) {
            const PixelRect band = bands.back();
            bands.pop_back();
            CoverageStroke lines(userToDevice, pen, style, band, work, edges, painting);
            run(lines, band);
            if (lines.wantsMore()) {
                lines.finish();
                continue;
            }
            const int middle = band.top + band.height() / 2;
            bands.push_back({ band.left, middle, band.right, band.bottom });
            bands.push_back({ band.left, band.top, band.right, middle });
        }
        return;
    }
    SpanUnion spanUnion(area, painting);
    SpanSink& sink = compositor.isIdempotent() ? static_cast<SpanSink&>(painting) : spanUnion;
    if (pen.isHairline) {
        HairlineStroke lines(userToDevice, pen, style, area, work, sink);
        run(lines, area);
    } else {
        BilevelStroke lines(userToDevice, pen, style, area, work, sink);
        run(lines, area);
    }
    spanUnion.finish();
}

} // namespace quillrip
