#include "quillrip/emf/plus/canvas.h"

#include "quillrip/emf/plus/color_sources.h"
#include "quillrip/emf/plus/pen_stroke.h"
#include "quillrip/emf/plus/shapes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace quillrip::emf::plus {

namespace {

bool operator==(const Matrix& a, const Matrix& b)
{
    return a.a == b.a && a.b == b.b && a.c == b.c && a.d == b.d && a.e == b.e && a.f == b.f;
}

double scaleOf(const Matrix& matrix) { return std::sqrt(std::abs(matrix.determinant())); }

/// The whole pixels of an image that a rectangle of it touches.
PixelRect coveredPixels(const RectF& source, const OpenImage& image)
{
    const auto side
        = [](double value, int size) { return static_cast<int>(std::clamp(value, 0.0, static_cast<double>(size))); };
    constexpr double slack = 1e-4;
    const double left = std::min(source.x, source.right());
    const double top = std::min(source.y, source.bottom());
    return { side(std::floor(left + slack), image.width()), side(std::floor(top + slack), image.height()),
        side(std::ceil(left + std::abs(source.width) - slack), image.width()),
        side(std::ceil(top + std::abs(source.height) - slack), image.height()) };
}

} // namespace

Canvas::Canvas(const Host& host, const StateStack& states, Warn warn)
    : m_host(host)
    , m_states(states)
    , m_warn(std::move(warn))
    , m_images(host.painter.work())
{
}

PixelSet Canvas::clip() const
{
    const PixelRect page = pageBounds();
    const PixelSet inner = combine(state().outerClip, state().clip, CombineMode::Intersect, page);
    return combine(m_host.clip, inner, CombineMode::Intersect, page);
}

std::shared_ptr<const ColorSource> Canvas::textureOf(const TextureBrush& brush, const Matrix& worldToDevice)
{
    if (!brush.image)
        return nullptr;
    std::string problem;
    const auto image = m_images.open(brush.image, problem);
    if (!image) {
        m_warn("emfplus.image", "a texture is not drawn: " + problem);
        return nullptr;
    }
    auto source
        = textureSource(*image, brush.wrap, brush.toWorld * worldToDevice, state().isSmooth, m_host.painter.work());
    warnOfDamage(*image);
    return source;
}

std::shared_ptr<const ColorSource> Canvas::colorsOf(const BrushObject& brush)
{
    const Matrix toDevice = worldToDevice();
    if (const auto* hatch = std::get_if<HatchBrush>(&brush)) {
        const Matrix& toPixels = m_host.referenceToDevice;
        return hatchSource(*hatch, toPixels.apply(state().renderingOrigin), std::hypot(toPixels.a, toPixels.b),
            std::hypot(toPixels.c, toPixels.d));
    }
    if (const auto* texture = std::get_if<TextureBrush>(&brush))
        return textureOf(*texture, toDevice);
    if (const auto* gradient = std::get_if<LinearGradientBrush>(&brush))
        return linearGradientSource(*gradient, toDevice);
    if (const auto* gradient = std::get_if<PathGradientBrush>(&brush))
        return pathGradientSource(*gradient, toDevice);
    return nullptr;
}

std::optional<PaintState> Canvas::paintState(const Paint& paint)
{
    PaintState painting;
    painting.clip = clip();
    const Rgba* color = paint.brush ? std::get_if<Rgba>(&*paint.brush) : &paint.color;
    if (color) {
        const Rgba shown = state().replaces ? overWhite(*color) : *color;
        if (shown.alpha == 0)
            return std::nullopt;
        painting.texture.color = { shown.red, shown.green, shown.blue };
        painting.opacity = shown.alpha;
        m_hasMarked = true;
        return painting;
    }
    const Matrix toDevice = worldToDevice();
    const bool isSame = paint.brush == m_lastBrush && toDevice == m_lastMatrix && state().isSmooth == m_lastIsSmooth
        && state().renderingOrigin == m_lastOrigin;
    if (!isSame) {
        m_lastColors = nullptr; // before the next one asks for room
        m_lastColors = colorsOf(*paint.brush);
        m_lastBrush = paint.brush;
        m_lastMatrix = toDevice;
        m_lastIsSmooth = state().isSmooth;
        m_lastOrigin = state().renderingOrigin;
    }
    if (!m_lastColors)
        return std::nullopt;
    painting.texture.colors = state().replaces ? overWhiteSource(m_lastColors) : m_lastColors;
    m_hasMarked = true;
    return painting;
}

void Canvas::fill(const Path& worldPath, FillRule rule, const Paint& paint)
{
    const auto painting = paintState(paint);
    if (painting)
        m_host.painter.fillPath(worldPath.transformed(worldToDevice()), rule, *painting);
}

void Canvas::fillRegion(const RegionObject& region, const Paint& paint)
{
    auto painting = paintState(paint);
    if (!painting)
        return;
    const PixelRect page = pageBounds();
    const PixelSet pixels = region.pixels(worldToDevice(), page);
    painting->clip = combine(painting->clip, pixels, CombineMode::Intersect, page);
    m_host.painter.fillRect(page, *painting);
}

void Canvas::stroke(const Path& worldPath, const std::shared_ptr<const PenObject>& pen)
{
    StrokeSpace space;
    space.worldToPage = state().worldToPage(m_device);
    space.pageToDevice = state().container * m_host.referenceToDevice;
    space.pagePixelsPerUnit = m_device.pixelsAcross(pen->unit);
    // One pixel of the recording device, but never less than one of the page.
    space.thinnest = std::max(1.0, scaleOf(m_host.referenceToDevice));
    const PenStroke stroke = penStroke(worldPath, *pen, space);
    if (stroke.path.empty())
        return;
    Paint paint;
    paint.brush = std::shared_ptr<const BrushObject>(pen, &pen->brush);
    const auto painting = paintState(paint);
    if (!painting)
        return;
    if (stroke.needsOutline)
        m_host.painter.fillPath(
            strokeOutline(stroke, *pen, pageBounds(), m_host.painter.work()), FillRule::NonZero, *painting);
    else
        m_host.painter.strokePath(stroke.path, stroke.toDevice, stroke.style, *painting);
}

void Canvas::clear(Rgba color)
{
    PaintState painting;
    painting.clip = clip();
    const Rgba shown = overWhite(color);
    painting.texture.color = { shown.red, shown.green, shown.blue };
    m_host.painter.fillRect(pageBounds(), painting);
    m_hasMarked = true;
}

void Canvas::image(const std::shared_ptr<const ImageObject>& image, const RectF& source, Point upperLeft,
    Point upperRight, Point lowerLeft)
{
    const Matrix toDevice = worldToDevice();
    const Point origin = toDevice.apply(upperLeft);
    const Point across = toDevice.apply(upperRight) - origin;
    const Point down = toDevice.apply(lowerLeft) - origin;
    const Matrix unitSquare { across.x, across.y, down.x, down.y, origin.x, origin.y };
    if (!unitSquare.isInvertible())
        return;
    if (image->kind == ImageObject::Kind::OldMetafile)
        return m_warn("emfplus.old-metafile", "an image is a metafile of the 16-bit kind, which is not drawn");
    if (image->kind == ImageObject::Kind::Metafile) {
        m_hasMarked = true;
        return m_host.playMetafile(image->bytes, unitSquare, clip());
    }
    if (source.width == 0 || source.height == 0)
        return;
    const Matrix fromSource
        = Matrix::translation(-source.x, -source.y) * Matrix::scaling(1 / source.width, 1 / source.height);
    bitmap(image, source, fromSource * unitSquare);
}

void Canvas::bitmap(const std::shared_ptr<const ImageObject>& image, const RectF& source, const Matrix& imageToDevice)
{
    std::string problem;
    const auto opened = m_images.open(image, problem);
    if (!opened)
        return m_warn("emfplus.image", "an image is not drawn: " + problem);
    const PixelRect part = coveredPixels(source, *opened);
    if (part.empty())
        return;
    PaintState painting;
    constexpr std::uint8_t sourceOnly = 0xCC;
    painting.rop = sourceOnly;
    painting.sourceTransparent = false;
    painting.patternTransparent = false;
    painting.clip = clip();
    const bool isWhole = source.x == std::floor(source.x) && source.y == std::floor(source.y)
        && source.width == std::floor(source.width) && source.height == std::floor(source.height);
    if (!isWhole)
        painting.clip = combine(
            painting.clip, pixelsOf(source, imageToDevice, pageBounds()), CombineMode::Intersect, pageBounds());

    const bool replaces = state().replaces || opened->isOpaque();
    ImageGeometry geometry;
    geometry.format = replaces ? ImageFormat::Rgb24 : ImageFormat::Rgba32;
    geometry.width = part.width();
    geometry.height = part.height();
    geometry.imageToDevice = Matrix::translation(part.left, part.top) * imageToDevice;
    geometry.smoothsBlocks = state().isSmooth;
    geometry.dropsPixels = !state().isSmooth;
    const auto painter = m_host.painter.beginImage(geometry, painting);
    if (!painter)
        return;
    m_hasMarked = true;
    std::vector<std::uint8_t> row(static_cast<std::size_t>(part.width()) * 3);
    for (int y = part.top; y < part.bottom; ++y) {
        const std::uint8_t* from = opened->row(y) + static_cast<std::size_t>(part.left) * 4;
        if (!replaces) {
            painter->row(from);
            continue;
        }
        for (std::size_t x = 0; x < row.size(); x += 3, from += 4) {
            const Rgba color = overWhite({ from[0], from[1], from[2], from[3] });
            row[x] = color.red;
            row[x + 1] = color.green;
            row[x + 2] = color.blue;
        }
        painter->row(row.data());
    }
    painter->finish();
    warnOfDamage(*opened);
}

void Canvas::warnOfDamage(const OpenImage& image)
{
    if (image.isDamaged())
        m_warn("emfplus.image", std::string("an image: ") + kDamagedImageFile);
}

} // namespace quillrip::emf::plus
