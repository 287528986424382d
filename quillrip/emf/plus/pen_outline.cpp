#include "quillrip/emf/plus/line_caps.h"
#include "quillrip/emf/plus/pen_stroke.h"
#include "quillrip/emf/plus/stroke_pieces.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace quillrip::emf::plus {

namespace {

/// In the nib's space the line is two units wide.
constexpr double kWidth = 2;

/// Lines, or dashes of them, to pieces: whole, in the bands of a compound pen, or on the inner side only.
class BodyBuilder final : public StrokeLineSink {
public:
    BodyBuilder(const PenStroke& stroke, const PenObject& object, const Pen& pen, PieceCollector& sink)
        : m_toDevice(stroke.toDevice)
        , m_object(object)
        , m_pen(pen)
        , m_miterLimit(stroke.style.miterLimit)
        , m_outline(stroke.style, sink)
        , m_sink(sink)
    {
    }

    void line(StrokeLine& line) override
    {
        for (StrokeLine::Vertex& vertex : line.vertices)
            vertex.at = m_toDevice.apply(vertex.at);
        line.dotDirection = m_toDevice.applyVector(line.dotDirection);
        const bool isInset = m_object.alignment == PenAlignment::Inset && (line.isClosed || m_isClosedFigure);
        if (m_object.compound.empty() && !isInset)
            return m_outline.outline(line, m_pen);
        std::vector<Point> points;
        for (const StrokeLine::Vertex& vertex : line.vertices) {
            const Point at = m_pen.fromDevice.apply(vertex.at);
            if (points.empty() || std::hypot(at.x - points.back().x, at.y - points.back().y) > 1e-9)
                points.push_back(at);
        }
        // An inset pen lies between the line and its whole width inwards.
        const double outer = isInset ? 0 : -kWidth / 2;
        const double inner = isInset ? (m_turnsLeft ? kWidth : -kWidth) : kWidth / 2;
        const auto distance = [&](double part) { return outer + (inner - outer) * part; };
        if (m_object.compound.empty())
            return addBand(points, line.isClosed, outer, inner, m_miterLimit, m_pen, m_sink);
        for (std::size_t i = 0; i + 1 < m_object.compound.size(); i += 2)
            addBand(points, line.isClosed, distance(m_object.compound[i]), distance(m_object.compound[i + 1]),
                m_miterLimit, m_pen, m_sink);
    }

    /// Of the figure whose lines or dashes come next; `points` in the nib's space.
    void beginFigure(const std::vector<Point>& points, bool isClosed)
    {
        m_isClosedFigure = isClosed;
        m_turnsLeft = doubleArea(points) > 0;
    }

private:
    Matrix m_toDevice;
    const PenObject& m_object;
    const Pen& m_pen;
    double m_miterLimit;
    StrokeOutline m_outline;
    PieceCollector& m_sink;
    bool m_isClosedFigure = false;
    bool m_turnsLeft = true; ///< in the nib's space: its inside lies where positive distances are
};

/// Figures of a path: their ends get caps, what is left between is dashed and given on.
class FigureBuilder final : public StrokeLineSink {
public:
    FigureBuilder(
        const PenStroke& stroke, const PenObject& object, const PixelRect& area, WorkMeter& work, PieceCollector& sink)
        : m_stroke(stroke)
        , m_object(object)
        , m_area(area)
        , m_work(work)
        , m_pen(stroke.style.width, stroke.toDevice)
        , m_sink(sink)
        , m_bodyStyle(withButtEnds(stroke, object))
        , m_body(m_bodyStyle, object, m_pen, sink)
        , m_toNib(stroke.toDevice * m_pen.fromDevice)
        , m_fromNib(m_pen.toDevice * stroke.toDevice.inverted())
    {
    }

    void line(StrokeLine& line) override
    {
        std::vector<Point> points;
        for (const StrokeLine::Vertex& vertex : line.vertices)
            points.push_back(m_toNib.apply(vertex.at));
        m_body.beginFigure(points, line.isClosed);
        if (!line.isClosed && points.size() >= 2)
            addCaps(points, line);
        if (!Dasher::canDash(m_stroke.style, m_stroke.toDevice))
            return m_body.line(line);
        const double penWidth = std::max(m_pen.deviceWidth(), m_pen.deviceHeight());
        Dasher dasher(m_stroke.style, m_stroke.toDevice, m_area, penWidth, m_work, m_body);
        dasher.line(line);
    }

private:
    /// The caps of a solid line are added as pieces of their own.
    static PenStroke withButtEnds(const PenStroke& stroke, const PenObject& object)
    {
        PenStroke body = stroke;
        if (object.dashes.empty())
            body.style.cap = LineCap::Butt;
        return body;
    }

    void addCaps(std::vector<Point>& points, StrokeLine& line)
    {
        const LineEnd start = startOf(points);
        const LineEnd end = endOf(points);
        const double startInset = insetOf(m_object.startCap, m_object.customStart.get());
        const double endInset = insetOf(m_object.endCap, m_object.customEnd.get());
        if (startInset > 0 || endInset > 0) {
            shortenEnd(points, endInset);
            std::reverse(points.begin(), points.end());
            shortenEnd(points, startInset);
            std::reverse(points.begin(), points.end());
            line.vertices.clear();
            for (const Point point : points)
                line.vertices.push_back({ m_fromNib.apply(point), false });
        }
        addCap(start, m_object.startCap, m_object.customStart.get(), m_pen, m_sink);
        addCap(end, m_object.endCap, m_object.customEnd.get(), m_pen, m_sink);
    }

    const PenStroke& m_stroke;
    const PenObject& m_object;
    PixelRect m_area;
    WorkMeter& m_work;
    Pen m_pen;
    PieceCollector& m_sink;
    PenStroke m_bodyStyle;
    BodyBuilder m_body;
    Matrix m_toNib;
    Matrix m_fromNib;
};

} // namespace

Path strokeOutline(const PenStroke& stroke, const PenObject& pen, const PixelRect& area, WorkMeter& work)
{
    PieceCollector pieces;
    if (!stroke.path.empty() && stroke.toDevice.isInvertible()) {
        FigureBuilder figures(stroke, pen, area, work, pieces);
        forEachStrokeLine(stroke.path, stroke.toDevice, figures);
    }
    return pieces.take();
}

} // namespace quillrip::emf::plus
