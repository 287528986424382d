#include "quillrip/pclxl/machine.h"

#include <algorithm>
#include <cmath>

namespace quillrip::pclxl {

namespace {

constexpr std::uint8_t kCopyTexture = 240;

} // namespace

Status Machine::setCursor()
{
    m_state.cursor = m_operands.point(Attribute::Point);
    m_state.pathIsOpenAtCursor = false;
    return {};
}

Status Machine::setCursorRel()
{
    if (!m_state.cursor)
        return Error::CurrentCursorUndefined;
    m_state.cursor = *m_state.cursor + m_operands.point(Attribute::Point);
    m_state.pathIsOpenAtCursor = false;
    return {};
}

Status Machine::newPath()
{
    m_state.path.clear();
    m_state.pathIsOpenAtCursor = false;
    return {};
}

Status Machine::closeSubPath()
{
    if (!m_state.pathIsOpenAtCursor)
        return {};
    Path& path = m_state.path.edit();
    path.close();
    m_state.cursor = path.current();
    m_state.pathIsOpenAtCursor = false;
    return {};
}

Status Machine::checkPathSize(std::size_t points)
{
    return m_state.path->pointCount() + points > m_limits.pathPoints ? Status(Error::LimitExceeded) : Status();
}

/// Makes the cursor the end of an open subpath, so that `points` more can be appended.
Status Machine::beginSegment(std::size_t points)
{
    if (!m_state.cursor)
        return Error::CurrentCursorUndefined;
    const Status status = checkPathSize(points + 1);
    if (status.isOk() && !m_state.pathIsOpenAtCursor) {
        m_state.path.edit().moveTo(*m_state.cursor);
        m_state.pathIsOpenAtCursor = true;
    }
    return status;
}

/// The points of a line or curve operator in user space, absolute. `perSegment` is 1 for lines and 3 for curves.
Status Machine::readPoints(bool isRelative, int perSegment, std::vector<Point>& points)
{
    points.clear();
    Point base = *m_state.cursor;
    const auto add = [&](Point p) {
        points.push_back(isRelative ? base + p : p);
        if (points.size() % static_cast<std::size_t>(perSegment) == 0)
            base = points.back();
    };
    if (!m_operands.has(Attribute::NumberOfPoints)) {
        if (m_operands.has(Attribute::PointType))
            return { Error::IllegalAttributeCombination, Attribute::PointType };
        if (perSegment == 3) {
            for (const Attribute control : { Attribute::ControlPoint1, Attribute::ControlPoint2 }) {
                if (!m_operands.has(control))
                    return { Error::MissingAttribute, control };
                add(m_operands.point(control));
            }
        }
        add(m_operands.point(Attribute::EndPoint));
        return {};
    }

    if (!m_operands.has(Attribute::PointType))
        return { Error::MissingAttribute, Attribute::PointType };
    const int count = m_operands.integer(Attribute::NumberOfPoints);
    if (count < 0 || count % perSegment != 0)
        return { Error::IllegalAttributeValue, Attribute::NumberOfPoints };
    const Status size = checkPathSize(static_cast<std::size_t>(count));
    if (!size.isOk())
        return size;
    const int type = m_operands.integer(Attribute::PointType);
    EmbeddedData& source = data();
    for (int i = 0; i < count; ++i) {
        double x = 0;
        double y = 0;
        if (type <= 1) {
            const int first = source.get();
            const int second = source.get();
            if (second < 0)
                return Error::MissingData;
            x = type == 0 ? first : static_cast<std::int8_t>(first);
            y = type == 0 ? second : static_cast<std::int8_t>(second);
        } else {
            const Element element = type == 2 ? Element::UInt16 : Element::SInt16;
            if (!source.readNumber(element, x) || !source.readNumber(element, y))
                return Error::MissingData;
        }
        add({ x, y });
    }
    return {};
}

Status Machine::addPoints(bool isCurve, bool isRelative)
{
    if (!m_state.cursor)
        return Error::CurrentCursorUndefined;
    Status status = readPoints(isRelative, isCurve ? 3 : 1, m_points);
    if (!status.isOk() || m_points.empty())
        return status;
    status = beginSegment(m_points.size());
    if (!status.isOk())
        return status;
    Path& path = m_state.path.edit();
    if (isCurve) {
        for (std::size_t i = 0; i + 2 < m_points.size(); i += 3)
            path.cubicTo(m_points[i], m_points[i + 1], m_points[i + 2]);
    } else {
        for (const Point& p : m_points)
            path.lineTo(p);
    }
    m_state.cursor = m_points.back();
    return {};
}

Status Machine::linePath() { return addPoints(false, false); }

Status Machine::lineRelPath() { return addPoints(false, true); }

Status Machine::bezierPath() { return addPoints(true, false); }

Status Machine::bezierRelPath() { return addPoints(true, true); }

Status Machine::paintPath()
{
    if (!m_state.path->empty())
        paint(*m_state.path);
    return {};
}

/// Fill first, then stroke, so that half of the line lies on the filled area.
void Machine::paint(const Path& userPath)
{
    if (m_state.brush.kind != Ink::Kind::None)
        fillDevicePath(userPath.transformed(m_state.userToDevice), m_state.fillRule);
    if (m_state.pen.kind != Ink::Kind::None)
        m_page.canvas.painter->strokePath(userPath, m_state.userToDevice, drawableStroke(), penPaint());
}

/// Of a pen far wider than any sheet the dashes cannot be told apart, but each would cover the page once more.
const StrokeStyle& Machine::drawableStroke()
{
    constexpr double kWidestDashedPen = 20000; // device pixels
    const Matrix& m = m_state.userToDevice;
    const double scale = std::max(std::hypot(m.a, m.b), std::hypot(m.c, m.d));
    if (m_state.stroke.dashes.empty() || m_state.stroke.width * scale < kWidestDashedPen)
        return m_state.stroke;
    m_plainStroke = m_state.stroke;
    m_plainStroke.dashes.clear();
    return m_plainStroke;
}

/// Copying the texture (240) is how drivers send the cells of a picture that stands askew: neighbours have to meet as
/// pixels do, since through smooth edges the page below would shine.
bool Machine::fillCell(const Path& devicePath, FillRule rule)
{
    if (m_state.rop != kCopyTexture || m_page.canvas.format == PixelFormat::Bilevel || devicePath.empty())
        return false;
    Point low = devicePath.points().front();
    Point high = low;
    for (const Point& p : devicePath.points()) {
        low = { std::min(low.x, p.x), std::min(low.y, p.y) };
        high = { std::max(high.x, p.x), std::max(high.y, p.y) };
    }
    const auto pixel = [](double v) { return static_cast<int>(std::clamp(v, -1e8, 1e8)); };
    const PixelRect box { pixel(std::floor(low.x)), pixel(std::floor(low.y)), pixel(std::ceil(high.x)) + 1,
        pixel(std::ceil(high.y)) + 1 };
    const PixelRect bounds = box.intersected(m_page.bounds);
    if (bounds.empty())
        return true;
    std::shared_ptr<const ClipRegion> region = ClipRegion::ofPath(devicePath, rule, bounds);
    if (region->bounds().empty())
        return false; // thinner than a pixel
    PaintState paint = brushPaint();
    if (paint.clip)
        region = paint.clip->intersected(*region);
    const PixelRect marked = region->bounds();
    paint.clip = std::move(region);
    m_page.canvas.painter->fillRect(marked, paint);
    return true;
}

void Machine::fillDevicePath(const Path& devicePath, FillRule rule)
{
    if (fillCell(devicePath, rule))
        return;
    m_page.canvas.painter->fillPath(devicePath, rule, brushPaint());
}

} // namespace quillrip::pclxl
