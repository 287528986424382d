#pragma once

#include "quillrip/base/work_meter.h"
#include "quillrip/hpgl/coordinates.h"
#include "quillrip/hpgl/curves.h"
#include "quillrip/hpgl/label_setter.h"
#include "quillrip/hpgl/line_pattern.h"
#include "quillrip/hpgl/line_pen.h"
#include "quillrip/hpgl/polygon.h"
#include "quillrip/hpgl/polygon_buffer.h"
#include "quillrip/hpgl/state.h"

#include <vector>

namespace quillrip::hpgl {

/// Moves the pen: on the page, or through the polygon buffer while that is open.
class PenArm {
public:
    PenArm(State& state, const Coordinates& coordinates, LinePen& linePen, PolygonBuffer& polygon, LabelSetter& labels,
        WorkMeter& work)
        : m_state(state)
        , m_coordinates(coordinates)
        , m_linePen(linePen)
        , m_polygon(polygon)
        , m_labels(labels)
        , m_work(work)
    {
    }

    /// To a place in plotter units, drawing or not. `endsVector` is false for the small steps of arcs and curves.
    void travel(Point to, bool isDrawing, bool endsVector = true);
    /// To a point that commands give, where symbol mode leaves its symbol.
    void travelToPoint(Point to);
    /// Along an arc from the pen, and a full circle round it.
    void follow(const Arc& arc);
    void circle(double radius, double chord);
    void bezier(Point control1, Point control2, Point end);
    /// The pen is put down or lifted. Down and up without a move leaves a dot.
    void lower();
    void lift();

    /// Shapes that are put into the polygon buffer at once, the pen standing at their corner or centre.
    Polygon rectangleTo(Point corner) const;
    Polygon wedge(const Arc& arc) const;

private:
    std::vector<LineVertex> pointsOf(const Arc& arc) const;

    State& m_state;
    const Coordinates& m_coordinates;
    LinePen& m_linePen;
    PolygonBuffer& m_polygon;
    LabelSetter& m_labels;
    WorkMeter& m_work;
};

} // namespace quillrip::hpgl
