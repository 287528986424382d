#include "quillrip/pclxl/commands.h"
#include "quillrip/pclxl/drawing.h"
#include "quillrip/pclxl/machine.h"
#include "quillrip/pclxl/shapes.h"
#include "quillrip/pclxl/state.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace quillrip::pclxl::commands {

namespace {

Rect boxOf(const AttributeList& operands)
{
    const std::array<double, 4>& n = operands.find(Attribute::BoundingBox)->numbers;
    return { std::min(n[0], n[2]), std::min(n[1], n[3]), std::max(n[0], n[2]), std::max(n[1], n[3]) };
}

template <typename Add> Status addFigure(Machine& machine, std::size_t points, bool isOpen, Add add)
{
    return machine.state().path.addFigure(points, machine.limits().pathPoints, isOpen, add);
}

Status addArc(Machine& machine, ArcKind kind)
{
    const AttributeList& operands = machine.operands();
    // Start and end point give rays from the centre.
    const EllipticArc arc { boxOf(operands), operands.point(Attribute::StartPoint), operands.point(Attribute::EndPoint),
        operands.integer(Attribute::ArcDirection, 1) == 0 };
    return addFigure(machine, kMaxArcPoints, kind == ArcKind::Open, [&](Path& path) { appendArc(path, arc, kind); });
}

/// Shapes are paths of their own: the current path is gone afterwards, and so is the cursor.
Status paintShape(Machine& machine, Status (*append)(Machine&))
{
    CurrentPath& path = machine.state().path;
    path.clear();
    const Status status = append(machine);
    if (status.isOk())
        machine.drawing().paint(path.path());
    path.clearAll();
    return status;
}

/// How many bytes a coordinate or a count of a scan line takes, by the data type of the block.
Element elementOfType(int type) { return type == 2 ? Element::UInt16 : type == 3 ? Element::SInt16 : Element::UByte; }

} // namespace

Status arcPath(Machine& machine) { return addArc(machine, ArcKind::Open); }

Status chordPath(Machine& machine) { return addArc(machine, ArcKind::Chord); }

Status chord(Machine& machine) { return paintShape(machine, chordPath); }

Status piePath(Machine& machine) { return addArc(machine, ArcKind::Pie); }

Status pie(Machine& machine) { return paintShape(machine, piePath); }

Status ellipsePath(Machine& machine)
{
    const Rect box = boxOf(machine.operands());
    return addFigure(machine, kMaxArcPoints, false, [&](Path& path) { appendEllipse(path, box); });
}

Status ellipse(Machine& machine) { return paintShape(machine, ellipsePath); }

Status rectanglePath(Machine& machine)
{
    const Rect box = boxOf(machine.operands());
    return addFigure(machine, kRectanglePoints, false,
        [&](Path& path) { path.rectangle(box.left, box.top, box.right, box.bottom); });
}

Status rectangle(Machine& machine) { return paintShape(machine, rectanglePath); }

Status roundRectanglePath(Machine& machine)
{
    const Rect box = boxOf(machine.operands());
    const Point diameters = machine.operands().point(Attribute::EllipseDimension);
    return addFigure(
        machine, kMaxRoundRectanglePoints, false, [&](Path& path) { appendRoundRectangle(path, box, diameters); });
}

Status roundRectangle(Machine& machine) { return paintShape(machine, roundRectanglePath); }

Status beginScan(Machine& machine)
{
    machine.beginDefinition(Definition::Scan);
    return {};
}

/// A data type byte, then for each scan line: where it starts (relative to the line before), how many runs it has, and
/// each run's start (relative to the run before) and length. A run is one user unit high.
Status scanLineRel(Machine& machine)
{
    const GraphicsState& state = machine.state();
    EmbeddedData& source = machine.data();
    const int type = source.get();
    if (type < 0)
        return Error::MissingData;
    if (type > 3)
        return Error::IllegalDataValue;
    const Element element = elementOfType(type);
    const auto next = [&](double& value) {
        if (!source.readNumber(element, value))
            return false;
        if (type == 1)
            value = static_cast<std::int8_t>(static_cast<std::uint8_t>(value));
        return true;
    };
    const int lines = machine.operands().integer(Attribute::NumberOfScanLines, 1);
    Point at = state.path.cursor() ? *state.path.cursor() : Point {};
    const bool isVisible = !state.brush.isNone();
    for (int line = 0; line < lines; ++line) {
        double dx = 0;
        double dy = 0;
        double runs = 0;
        if (!next(dx) || !next(dy) || !next(runs))
            return Error::MissingData;
        at = at + Point { dx, dy };
        double x = at.x;
        for (int run = 0; run < static_cast<int>(runs); ++run) {
            double skip = 0;
            double length = 0;
            if (!next(skip) || !next(length))
                return Error::MissingData;
            x += skip;
            if (isVisible && length > 0) {
                Path path;
                path.rectangle(x, at.y, x + length, at.y + 1);
                machine.drawing().fill(path.transformed(state.userToDevice), FillRule::NonZero);
            }
            x += length;
        }
    }
    return {};
}

Status endScan(Machine& machine)
{
    machine.endDefinition();
    return {};
}

} // namespace quillrip::pclxl::commands
