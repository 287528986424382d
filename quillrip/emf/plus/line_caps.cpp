#include "quillrip/emf/plus/line_caps.h"

#include "quillrip/base/units.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace quillrip::emf::plus {

namespace {

// Lengths are half widths of the pen, so a cap's unit, the pen's width, counts 2.
constexpr double kPenWidth = 2;
constexpr double kArrowHalfBase = kPenWidth;
constexpr double kArrowLength = 1.7320508075688772 * kArrowHalfBase; // all sides are equal
constexpr double kAnchorRadius = kPenWidth;

/// Points relative to a line's end.
class EndSpace {
public:
    EndSpace(const LineEnd& end, const Pen& pen)
        : m_end(end)
        , m_pen(pen)
    {
    }

    /// `ahead` along the line outwards, `aside` at a right angle to it.
    Point device(double ahead, double aside) const
    {
        const Point side { m_end.outwards.y, -m_end.outwards.x };
        return m_pen.toDevice.apply(m_end.at + m_end.outwards * ahead + side * aside);
    }

private:
    const LineEnd& m_end;
    const Pen& m_pen;
};

void addCircle(const EndSpace& space, double radius, PieceCollector& sink)
{
    constexpr int corners = 64;
    std::vector<Point> points;
    for (int i = 0; i < corners; ++i) {
        const double angle = 2 * kPi * i / corners;
        points.push_back(space.device(radius * std::cos(angle), radius * std::sin(angle)));
    }
    sink.polygon(points);
}

void addArrowHead(const EndSpace& space, double length, double halfBase, double inset, PieceCollector& sink)
{
    const Point tip = space.device(0, 0);
    const Point middle = space.device(inset - length, 0);
    sink.polygon({ tip, space.device(-length, halfBase), middle });
    sink.polygon({ tip, middle, space.device(-length, -halfBase) });
}

/// A line of a cap, with the pen that draws the line itself.
class CapLines final : public StrokeLineSink {
public:
    CapLines(const StrokeStyle& style, const Pen& pen, PieceCollector& sink)
        : m_outline(style, sink)
        , m_pen(pen)
    {
    }
    void line(StrokeLine& line) override { m_outline.outline(line, m_pen); }

private:
    StrokeOutline m_outline;
    Pen m_pen;
};

void strokeDevicePath(const Path& path, const CustomCap& cap, const Pen& pen, PieceCollector& sink)
{
    StrokeStyle style;
    style.cap = cap.lineStart == Cap::Round ? LineCap::Round : LineCap::Butt;
    style.join = cap.lineJoin == Join::Round ? LineJoin::Round : LineJoin::Miter;
    style.miterLimit = cap.miterLimit;
    CapLines lines(style, pen, sink);
    forEachStrokeLine(path, Matrix(), lines);
}

class Polygons final : public StrokeLineSink {
public:
    explicit Polygons(PieceCollector& sink)
        : m_sink(sink)
    {
    }
    void line(StrokeLine& line) override
    {
        std::vector<Point> points;
        for (const StrokeLine::Vertex& vertex : line.vertices)
            points.push_back(vertex.at);
        m_sink.polygon(points);
    }

private:
    PieceCollector& m_sink;
};

void addCustomCap(const LineEnd& end, const CustomCap& cap, const Pen& pen, PieceCollector& sink)
{
    const EndSpace space(end, pen);
    const double unit = kPenWidth * cap.widthScale;
    if (cap.arrow) {
        const double length = cap.arrow->height * unit;
        const double halfBase = cap.arrow->width * unit / 2;
        if (cap.arrow->isFilled)
            return addArrowHead(space, length, halfBase, cap.arrow->middleInset * unit, sink);
        Path sides;
        sides.moveTo(space.device(-length, halfBase));
        sides.lineTo(space.device(0, 0));
        sides.lineTo(space.device(-length, -halfBase));
        return strokeDevicePath(sides, cap, pen, sink);
    }
    const Point origin = space.device(0, 0);
    const Point across = space.device(0, unit) - origin;
    const Point along = space.device(unit, 0) - origin;
    const Matrix capToDevice { across.x, across.y, along.x, along.y, origin.x, origin.y };
    Polygons polygons(sink);
    forEachStrokeLine(cap.fill.path.transformed(capToDevice), Matrix(), polygons);
    if (!cap.line.path.empty())
        strokeDevicePath(cap.line.path.transformed(capToDevice), cap, pen, sink);
}

} // namespace

double insetOf(Cap cap, const CustomCap* custom)
{
    if (cap == Cap::ArrowAnchor)
        return kArrowLength / kArrowHalfBase;
    if (cap != Cap::Custom || !custom)
        return 0;
    const double unit = kPenWidth * custom->widthScale;
    if (!custom->arrow)
        return std::max(0.0, custom->baseInset * unit);
    // Where the arrow is as wide as the line, that is hidden below it.
    const double halfBase = custom->arrow->width * unit / 2;
    const double length = custom->arrow->height * unit;
    return custom->arrow->isFilled && halfBase > 0 ? std::max(0.0, length * std::min(1.0, 1 / halfBase)) : 0;
}

void addCap(const LineEnd& end, Cap cap, const CustomCap* custom, const Pen& pen, PieceCollector& sink)
{
    const EndSpace space(end, pen);
    switch (cap) {
    case Cap::Flat:
    case Cap::NoAnchor:
        return;
    case Cap::Square:
        return sink.polygon({ space.device(0, 1), space.device(1, 1), space.device(1, -1), space.device(0, -1) });
    case Cap::Round:
        return addCircle(space, 1, sink);
    case Cap::Triangle:
        return sink.polygon({ space.device(0, 1), space.device(1, 0), space.device(0, -1) });
    case Cap::SquareAnchor:
        return sink.polygon({ space.device(kAnchorRadius, kAnchorRadius), space.device(kAnchorRadius, -kAnchorRadius),
            space.device(-kAnchorRadius, -kAnchorRadius), space.device(-kAnchorRadius, kAnchorRadius) });
    case Cap::RoundAnchor:
        return addCircle(space, kAnchorRadius, sink);
    case Cap::DiamondAnchor:
        return sink.polygon({ space.device(kAnchorRadius, 0), space.device(0, -kAnchorRadius),
            space.device(-kAnchorRadius, 0), space.device(0, kAnchorRadius) });
    case Cap::ArrowAnchor:
        return addArrowHead(space, kArrowLength, kArrowHalfBase, 0, sink);
    case Cap::Custom:
        if (custom)
            addCustomCap(end, *custom, pen, sink);
        return;
    }
}

} // namespace quillrip::emf::plus
