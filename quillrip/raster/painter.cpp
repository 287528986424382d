#include "quillrip/raster/painter.h"

#include "quillrip/raster/compose/compositor.h"
#include "quillrip/raster/images/aligned_image.h"
#include "quillrip/raster/paths/flatten.h"
#include "quillrip/raster/paths/stroke_painter.h"
#include "quillrip/raster/scan/bilevel_scan.h"
#include "quillrip/raster/scan/coverage_scan.h"
#include "quillrip/raster/scan/edge_list.h"
#include "quillrip/raster/scan/span_union.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>

namespace quillrip {

namespace {

/// Work of a mark without its shape and pixels.
constexpr std::uint64_t kUnitsPerMark = 150;

/// Whether a path's points, and all within `reach` of them, miss an area, with a pixel to spare. Curves lie within
/// their control points.
bool liesOutside(const Path& path, const Matrix& toDevice, double reach, const PixelRect& area)
{
    double left = HUGE_VAL, top = HUGE_VAL, right = -HUGE_VAL, bottom = -HUGE_VAL;
    for (const Point& own : path.points()) {
        const Point point = toDevice.apply(own);
        if (!isFinite(point))
            continue;
        left = std::min(left, point.x);
        top = std::min(top, point.y);
        right = std::max(right, point.x);
        bottom = std::max(bottom, point.y);
    }
    const double spare = reach + 1;
    return right < area.left - spare || left > area.right + spare || bottom < area.top - spare
        || top > area.bottom + spare;
}

/// Device pixels that a stroke may reach beyond its path: by its pen, square caps and miters.
double reachOf(const StrokeStyle& style, const Matrix& userToDevice)
{
    const double stretch = std::hypot(userToDevice.a, userToDevice.b) + std::hypot(userToDevice.c, userToDevice.d);
    const double miter = std::isfinite(style.miterLimit) ? style.miterLimit : 10;
    return style.width * stretch * std::max(2.0, miter) + 1;
}

} // namespace

Painter::Painter(PageBitmap& page, std::shared_ptr<WorkMeter> work)
    : m_page(page)
    , m_work(std::move(work))
{
}

Painter::~Painter() = default;

std::unique_ptr<Compositor> Painter::makeCompositor(const PaintState& state)
{
    if (!m_texture || !m_texture->isFor(state.texture))
        m_texture = std::make_shared<DeviceTexture>(state.texture, m_page.format());
    return Compositor::create(m_page, state, m_texture, *m_work);
}

Compositor& Painter::compositorFor(const PaintState& state)
{
    if (!m_compositor || state != m_state) {
        m_compositor = makeCompositor(state);
        m_state = state;
    }
    m_compositor->beginMark();
    return *m_compositor;
}

void Painter::fillRect(const PixelRect& rect, const PaintState& state)
{
    if (!m_work->allows(Work::Pixels, kUnitsPerMark))
        return;
    Compositor& compositor = compositorFor(state);
    const int top = std::max(rect.top, compositor.bounds().top);
    const int bottom = std::min(rect.bottom, compositor.bounds().bottom);
    for (int y = top; y < bottom; ++y)
        compositor.ink(y, rect.left, rect.right);
    compositor.chargePixels();
}

void Painter::fillPath(const Path& devicePath, FillRule rule, const PaintState& state, PixelRule pixels)
{
    if (!m_work->allows(Work::Shapes, kUnitsPerMark + kUnitsPerPathPoint * devicePath.pointCount()))
        return;
    Compositor& compositor = compositorFor(state);
    const PixelRect& area = compositor.bounds();
    if (area.empty() || liesOutside(devicePath, {}, 0, area))
        return;
    paintShape(devicePath, rule, pixels, compositor);
    compositor.chargePixels();
}

void Painter::paintShape(const Path& devicePath, FillRule rule, PixelRule pixels, Compositor& compositor)
{
    const PixelRect& area = compositor.bounds();
    PaintingSink painting(compositor);
    if (m_page.format() != PixelFormat::Bilevel) {
        EdgeList edges(area);
        edges.addPath(devicePath);
        edges.shrinkArea();
        return scanCoverage(edges, rule, painting, *m_work);
    }
    if (pixels == PixelRule::Touched) {
        EdgeList edges(area, EdgeList::Axes::Straight, true);
        edges.addPath(devicePath);
        edges.shrinkArea();
        return scanTouched(edges, rule, painting, *m_work);
    }
    if (compositor.isIdempotent())
        return scanCentresAndThinParts(devicePath, rule, area, painting, *m_work);
    SpanUnion spanUnion(area, painting);
    scanCentresAndThinParts(devicePath, rule, area, spanUnion, *m_work);
    spanUnion.finish();
}

void Painter::strokePath(
    const Path& userPath, const Matrix& userToDevice, const StrokeStyle& style, const PaintState& state)
{
    if (!m_work->allows(Work::Lines, kUnitsPerMark + kUnitsPerPathPoint * userPath.pointCount()))
        return;
    Compositor& compositor = compositorFor(state);
    const PixelRect& area = compositor.bounds();
    if (area.empty() || liesOutside(userPath, userToDevice, reachOf(style, userToDevice), area))
        return;
    if (!m_strokeEdges)
        m_strokeEdges = std::make_unique<EdgeList>(area);
    paintStroke(userPath, userToDevice, style, compositor, *m_strokeEdges);
    compositor.chargePixels();
}

void Painter::drawMask(const GlyphMask& mask, int x, int y, const PaintState& state)
{
    if (mask.width < 1 || mask.height < 1 || !m_work->allows(Work::Glyphs, kUnitsPerMark))
        return;
    Compositor& compositor = compositorFor(state);
    const PixelRect& bounds = compositor.bounds();
    // Far positions are cut here, before they are added up.
    const std::int64_t left = std::int64_t { x } + mask.left;
    const std::int64_t top = std::int64_t { y } + mask.top;
    if (left >= bounds.right || left + mask.width <= bounds.left)
        return;
    const std::int64_t firstRow = std::max<std::int64_t>(0, bounds.top - top);
    const std::int64_t endRow = std::min<std::int64_t>(mask.height, bounds.bottom - top);
    const bool isBits = mask.depth == GlyphMask::Depth::Bits;
    if (firstRow < endRow) {
        const std::int64_t unitsPerPixel = isBits ? 0 : compositor.isSourceTransparent() ? 2 : 15;
        m_work->charge(
            Work::Glyphs, static_cast<std::uint64_t>((endRow - firstRow) * (10 + mask.width * unitsPerPixel)));
    }
    MaskRows rows;
    rows.stride = mask.stride;
    rows.width = mask.width;
    rows.isBits = isBits;
    // A mask may have fewer bytes than it says.
    const std::size_t whole = mask.bytes.size() < rows.rowBytes() ? 0
        : mask.stride == 0                                        ? static_cast<std::size_t>(mask.height)
                           : (mask.bytes.size() - rows.rowBytes()) / mask.stride + 1;
    const std::int64_t lastRow = std::min<std::int64_t>(endRow, static_cast<std::int64_t>(whole));
    if (firstRow < lastRow) {
        rows.bytes = mask.bytes.data() + static_cast<std::size_t>(firstRow) * mask.stride;
        rows.count = static_cast<int>(lastRow - firstRow);
        compositor.mask(static_cast<int>(top + firstRow), static_cast<int>(left), rows);
    }
    compositor.chargePixels();
}

std::unique_ptr<ImagePainter> Painter::beginImage(const ImageGeometry& geometry, const PaintState& state)
{
    const Matrix& m = geometry.imageToDevice;
    const bool isFiniteMatrix = std::isfinite(m.a) && std::isfinite(m.b) && std::isfinite(m.c) && std::isfinite(m.d)
        && std::isfinite(m.e) && std::isfinite(m.f);
    if (geometry.width < 1 || geometry.height == 0 || !isFiniteMatrix)
        return nullptr;
    if (!m_work->allows(Work::Images, kUnitsPerMark))
        return nullptr;
    m_strokeEdges.reset(); // the image may need the memory
    PaintState ownState = state;
    if (geometry.format == ImageFormat::Rgba32)
        ownState.sourceTransparent = false;
    std::unique_ptr<Compositor> compositor = makeCompositor(ownState);
    if (compositor->bounds().empty())
        return nullptr;
    AlignedGeometry aligned;
    bool isVisible = false;
    if (!AlignedGeometry::find(geometry, compositor->bounds(), aligned, isVisible))
        return m.isInvertible() ? makeAffineImage(geometry, std::move(compositor)) : nullptr;
    if (!isVisible)
        return nullptr;
    if (geometry.format != ImageFormat::Mono)
        return makeToneImage(aligned, std::move(compositor));
    // Only on a grey or RGB page can mixed pixels of a bilevel source show as tones.
    const auto needsTones
        = [&](const ImageAxis& axis) { return axis.shrinks() || (geometry.smooth && !axis.isWhole()); };
    if (m_page.format() != PixelFormat::Bilevel && (needsTones(aligned.columns) || needsTones(aligned.lines)))
        return makeToneImage(aligned, std::move(compositor));
    return makeBitImage(aligned, std::move(compositor));
}

} // namespace quillrip
