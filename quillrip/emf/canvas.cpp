#include "quillrip/emf/canvas.h"

#include "quillrip/raster/paths/stroke_area.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

namespace quillrip::emf {

namespace {

/// Half a pixel of the reference device, or of the page where its pixels are smaller: coordinates name the pixels that
/// the picture is drawn with.
Matrix halfPixel(const Matrix& referenceToDevice)
{
    const auto half = [](double scale) { return scale != 0 ? std::min(0.5, 0.5 / std::abs(scale)) : 0; };
    return Matrix::translation(half(referenceToDevice.a), half(referenceToDevice.d));
}

int nearestEdge(double value)
{
    constexpr double kFarthest = 1e8;
    return static_cast<int>(std::floor(std::clamp(value, -kFarthest, kFarthest) + 0.5));
}

/// The rectangle that a path is, if it is one and runs along the axes.
std::optional<PixelRect> asRectangle(const Path& path)
{
    const auto& points = path.points();
    const auto& verbs = path.verbs();
    const std::size_t lines = verbs.size();
    if (points.size() < 4 || points.size() > 5 || lines < points.size() || lines > points.size() + 1)
        return std::nullopt;
    for (std::size_t i = 0; i < lines; ++i) {
        const Path::Verb expected = i == 0 ? Path::Verb::Move
            : i < points.size()            ? Path::Verb::Line
                                           : Path::Verb::Close;
        if (verbs[i] != expected)
            return std::nullopt;
    }
    if (points.size() == 5 && points[4] != points[0])
        return std::nullopt;
    const auto level = [&](std::size_t a, std::size_t b) { return std::abs(points[a].y - points[b].y) < 1e-6; };
    const auto upright = [&](std::size_t a, std::size_t b) { return std::abs(points[a].x - points[b].x) < 1e-6; };
    const bool isRectangle = (level(0, 1) && upright(1, 2) && level(2, 3) && upright(3, 0))
        || (upright(0, 1) && level(1, 2) && upright(2, 3) && level(3, 0));
    if (!isRectangle)
        return std::nullopt;
    return nearestPixels(points[0], points[2]);
}

/// Small enough for the stem of a letter, a full stop or a dash of text: programs draw letters as paths.
bool isPartOfLetter(const PixelRect& rect)
{
    constexpr int kThickest = 3;
    constexpr int kLongest = 24;
    const int width = rect.right - rect.left;
    const int height = rect.bottom - rect.top;
    return std::min(width, height) <= kThickest && std::max(width, height) <= kLongest;
}

/// What is drawn twice to leave no trace must cover whole pixels.
bool needsDestination(std::uint8_t operation) { return ((operation >> 1) & 0x55) != (operation & 0x55); }

double lengthOf(Point vector) { return std::hypot(vector.x, vector.y); }

/// Lines of one pixel leave the last pixel out and cover all of the first.
Path shiftedBack(const Path& path, double half)
{
    Path result;
    const auto& points = path.points();
    const auto& verbs = path.verbs();
    std::size_t at = 0;
    for (std::size_t i = 0; i < verbs.size(); ++i) {
        switch (verbs[i]) {
        case Path::Verb::Move: {
            Point start = points[at++];
            // Where the figure is open its ends move; closed ones have none.
            std::size_t end = i + 1;
            std::size_t behind = at;
            while (end < verbs.size() && verbs[end] != Path::Verb::Move && verbs[end] != Path::Verb::Close) {
                behind += verbs[end] == Path::Verb::Cubic ? 3 : 1;
                ++end;
            }
            const bool isOpen = end == verbs.size() || verbs[end] == Path::Verb::Move;
            if (isOpen && behind > at && points[behind - 1] != points[at - 1]) {
                const Point along = points[at] - start;
                if (lengthOf(along) > 0)
                    start = start - along * (half / lengthOf(along));
            }
            result.moveTo(start);
            break;
        }
        case Path::Verb::Line: {
            Point to = points[at];
            const bool isLast = i + 1 == verbs.size() || verbs[i + 1] == Path::Verb::Move;
            const Point along = to - points[at - 1];
            if (isLast && lengthOf(along) > 2 * half)
                to = to - along * (half / lengthOf(along));
            result.lineTo(to);
            ++at;
            break;
        }
        case Path::Verb::Cubic:
            result.cubicTo(points[at], points[at + 1], points[at + 2]);
            at += 3;
            break;
        case Path::Verb::Close:
            result.close();
            break;
        }
    }
    return result;
}

std::vector<double> patternOf(LogicalPen::Style style, bool isGeometric)
{
    switch (style) {
    case LogicalPen::Style::Dash:
        return isGeometric ? std::vector<double> { 3, 1 } : std::vector<double> { 18, 6 };
    case LogicalPen::Style::Dot:
        return isGeometric ? std::vector<double> { 1, 1 } : std::vector<double> { 3, 3 };
    case LogicalPen::Style::DashDot:
        return isGeometric ? std::vector<double> { 3, 1, 1, 1 } : std::vector<double> { 9, 6, 3, 6 };
    case LogicalPen::Style::DashDotDot:
        return isGeometric ? std::vector<double> { 3, 1, 1, 1, 1, 1 } : std::vector<double> { 9, 3, 3, 3, 3, 3 };
    case LogicalPen::Style::Alternate:
        return { 1, 1 };
    default:
        return {};
    }
}

} // namespace

PixelRect nearestPixels(Point corner, Point opposite)
{
    const int x = nearestEdge(corner.x);
    const int y = nearestEdge(corner.y);
    const int farX = nearestEdge(opposite.x);
    const int farY = nearestEdge(opposite.y);
    return { std::min(x, farX), std::min(y, farY), std::max(x, farX), std::max(y, farY) };
}

Canvas::Canvas(
    Painter& painter, PixelFormat format, const Matrix& referenceToDevice, Region limit, const DeviceContext& dc)
    : m_painter(painter)
    , m_format(format)
    , m_toDevice(referenceToDevice)
    , m_half(halfPixel(referenceToDevice))
    , m_limit(std::move(limit))
    , m_dc(dc)
    , m_paints(referenceToDevice)
{
}

void Canvas::setOuterClip(Region clip)
{
    if (clip == m_outer)
        return;
    m_outer = std::move(clip);
    m_isClipKnown = false;
}

const Region& Canvas::clip()
{
    if (!m_isClipKnown || m_clipPart != m_dc.clip.clip || m_metaPart != m_dc.clip.meta) {
        m_clipPart = m_dc.clip.clip;
        m_metaPart = m_dc.clip.meta;
        m_clip = intersection(intersection(m_limit, m_outer), intersection(m_clipPart, m_metaPart));
        m_isClipKnown = true;
    }
    return m_clip;
}

Region Canvas::regionOf(const Path& devicePath, FillRule rule) const
{
    if (const auto rect = asRectangle(devicePath))
        return ClipRegion::ofRect(rect->intersected(bounds()));
    return ClipRegion::ofPath(devicePath, rule, bounds(), &m_painter.work(), clipEdgesOf(m_format));
}

void Canvas::fill(const Path& path, FillRule rule, PaintState state, Origin origin)
{
    if (needsDestination(state.rop))
        return fillRegion(areaOf(path, rule), std::move(state));
    const Path devicePath = path.transformed(m_toDevice);
    state.clip = clip();
    const auto rect = asRectangle(devicePath);
    // Beside the soft edges of its neighbours a stem of whole pixels would stand out.
    const bool isSoft
        = rect && origin == Origin::DrawnPath && m_format != PixelFormat::Bilevel && isPartOfLetter(*rect);
    if (rect && !isSoft) {
        // What is thinner than a pixel still shows.
        PixelRect pixels = *rect;
        pixels.right = std::max(pixels.right, pixels.left + 1);
        pixels.bottom = std::max(pixels.bottom, pixels.top + 1);
        m_painter.fillRect(pixels, state);
        return;
    }
    m_painter.fillPath(devicePath, rule, state);
}

Region Canvas::areaOf(const Path& path, FillRule rule) const
{
    const Path devicePath = path.transformed(m_toDevice);
    const auto rect = asRectangle(devicePath);
    return rect ? ClipRegion::ofRect(rect->intersected(bounds()))
                : ClipRegion::ofPath(devicePath, rule, bounds(), &m_painter.work());
}

bool Canvas::hasLine() const
{
    return pen().style != LogicalPen::Style::Null && pen().brush.style != Brush::Style::Null;
}

void Canvas::fillWithBrush(const Path& path, FillRule rule, Origin origin)
{
    if (auto state = m_paints.brush(m_dc, brush()))
        fill(path, rule, std::move(*state), origin);
}

void Canvas::fillAndStroke(const Path& area, const Path& outline, FillRule rule, Origin origin)
{
    if (!hasLine())
        return fillWithBrush(area, rule, origin);
    if (auto state = m_paints.brush(m_dc, brush())) {
        // The area reaches to the middle of the line that follows the same path, half a pixel further than without one.
        const Path reaching = area.transformed(m_half);
        Stroke stroke;
        if (needsDestination(state->rop) && makeStroke(stroke)) {
            StrokeStyle style = stroke.style;
            if (stroke.fillsGaps)
                style.dashes.clear();
            fillRegion(areaOf(reaching, rule)->subtracted(*strokeRegion(stroke, style, outline)), std::move(*state));
        } else {
            fill(reaching, rule, std::move(*state), origin);
        }
    }
    strokeWithPen(outline);
}

void Canvas::fillRegion(const Region& region, PaintState state)
{
    if (!region)
        return;
    state.clip = intersection(clip(), region);
    m_painter.fillRect(state.clip->bounds(), state);
}

bool Canvas::isHairline(const LogicalPen& pen) const
{
    if (pen.isGeometric)
        return false;
    if (!pen.isSimple || pen.width == 0)
        return true;
    const Matrix& m = m_dc.coordinates.toReference();
    return pen.width * lengthOf({ m.a, m.b }) <= 1;
}

// A pixel of the reference device. Drawings of programs that know no device ask for less than a screen's pixel; finer
// pages show that.
double Canvas::hairWidth(const LogicalPen& pen) const
{
    const Matrix& m = m_dc.coordinates.toReference();
    const double width = pen.isSimple ? pen.width * lengthOf({ m.a, m.b }) : 0;
    return width > 0 ? std::min(width, 1.0) : 1.0;
}

double Canvas::insetOfPen() const
{
    return pen().style == LogicalPen::Style::InsideFrame && !isHairline(pen()) ? pen().width / 2 : 0;
}

bool Canvas::makeStroke(Stroke& stroke) const
{
    const LogicalPen& pen = this->pen();
    if (!hasLine())
        return false;
    StrokeStyle& style = stroke.style;
    style.miterLimit = m_dc.miterLimit;
    if (isHairline(pen)) {
        style.width = hairWidth(pen);
        style.cap = LineCap::Butt;
        style.join = LineJoin::Miter;
        if (pen.style == LogicalPen::Style::User) {
            style.dashes = pen.dashes;
        } else {
            style.dashes = patternOf(pen.style, false);
            // A device of many dots per inch would show a grey line.
            const double unit = std::max(1.0, m_dc.coordinates.dotsPerInch() / kScreenDotsPerInch);
            for (double& length : style.dashes)
                length *= unit;
        }
        stroke.hasGaps = !style.dashes.empty();
        stroke.fillsGaps = stroke.hasGaps && pen.isSimple && m_dc.isOpaque;
        return true;
    }
    stroke.toReference = m_dc.coordinates.toReference();
    stroke.toReference.e = stroke.toReference.f = 0;
    if (pen.isSimple) {
        // The older kind of pen is round on the device: only the scale across counts.
        const double scale = lengthOf({ stroke.toReference.a, stroke.toReference.b });
        stroke.toReference = Matrix::scaling(scale, scale);
    }
    if (!stroke.toReference.isInvertible())
        return false;
    style.width = std::max(pen.width, 0.0);
    style.cap = pen.cap == LogicalPen::Cap::Round ? LineCap::Round
        : pen.cap == LogicalPen::Cap::Square      ? LineCap::Square
                                                  : LineCap::Butt;
    style.join = pen.join == LogicalPen::Join::Round ? LineJoin::Round
        : pen.join == LogicalPen::Join::Bevel        ? LineJoin::Bevel
                                                     : LineJoin::Miter;
    if (pen.isSimple)
        return true;
    style.dashes = pen.style == LogicalPen::Style::User ? pen.dashes : patternOf(pen.style, true);
    if (pen.style != LogicalPen::Style::User) {
        for (double& length : style.dashes)
            length *= style.width;
    }
    if (style.dashes.size() % 2 != 0)
        style.dashes.insert(style.dashes.end(), style.dashes.begin(), style.dashes.end());
    stroke.hasGaps = !style.dashes.empty();
    return true;
}

Path Canvas::inPenSpace(const Stroke& stroke, const Path& path) const
{
    // Ends lie on whole pixels, which a line that is thinner than one has nothing to do with.
    const bool hasPixels = isHairline(pen()) && stroke.style.width == 1;
    return hasPixels ? shiftedBack(path, 0.5) : path.transformed(stroke.toReference.inverted());
}

Region Canvas::strokeRegion(const Stroke& stroke, const StrokeStyle& style, const Path& path) const
{
    return ClipRegion::ofPath(
        strokeArea(inPenSpace(stroke, path), penToDevice(stroke), style, bounds(), m_painter.work()), FillRule::NonZero,
        bounds());
}

void Canvas::strokeWithPen(const Path& path)
{
    Stroke stroke;
    if (makeStroke(stroke))
        this->stroke(stroke, path, nullptr);
}

void Canvas::strokeWidened(const Path& area)
{
    Stroke stroke;
    if (!makeStroke(stroke))
        return;
    // The area is in pieces, whose edges within it are none of its own: they lie deeper than half of the line reaches.
    const double across = std::sqrt(std::abs(penToDevice(stroke).determinant()));
    const int reach = std::clamp(static_cast<int>(stroke.style.width * across / 2 + 0.25), 1, 1 << 15);
    const int diagonal = std::max(1, static_cast<int>(std::lround(reach * std::sqrt(0.5))));
    // A pixel whose middle lies where two pieces meet can be in neither; seen from beside it is in one.
    constexpr double kBeside = 1.0 / 16;
    const Path reaching = area.transformed(m_half);
    const Region whole
        = areaOf(reaching, FillRule::NonZero)
              ->united(*areaOf(reaching.transformed(Matrix::translation(kBeside, kBeside / 2)), FillRule::NonZero));
    Region inside = whole;
    for (const int right : { -1, 0, 1 }) {
        for (const int down : { -1, 0, 1 }) {
            const int step = right != 0 && down != 0 ? diagonal : reach;
            inside = inside->intersected(*whole->moved(right * step, down * step));
        }
    }
    this->stroke(stroke, area, inside->complement(bounds()));
}

void Canvas::stroke(const Stroke& stroke, const Path& path, const Region& limit)
{
    auto state = m_paints.brush(m_dc, pen().brush);
    if (!state)
        return;
    state->clip = intersection(clip(), limit);
    const auto paint = [&](const StrokeStyle& style, const PaintState& ink) {
        if (needsDestination(ink.rop))
            return fillRegion(intersection(limit, strokeRegion(stroke, style, path)), ink);
        m_painter.strokePath(inPenSpace(stroke, path), penToDevice(stroke), style, ink);
    };
    if (stroke.fillsGaps) {
        PaintState gaps = *state;
        gaps.texture = {};
        gaps.texture.color = colorOf(m_dc.backgroundColor, m_dc);
        StrokeStyle solid = stroke.style;
        solid.dashes.clear();
        paint(solid, gaps);
    }
    paint(stroke.style, *state);
}

Path Canvas::widened(const Path& path) const
{
    Stroke stroke;
    if (!makeStroke(stroke) || !m_toDevice.isInvertible())
        return {};
    // In device pixels, so that curves become as fine as the page shows them.
    const Matrix toDevice = stroke.toReference * m_toDevice;
    const Path area = strokeArea(
        path.transformed(stroke.toReference.inverted()), toDevice, stroke.style, bounds(), m_painter.work());
    return area.transformed(m_toDevice.inverted());
}

} // namespace quillrip::emf
