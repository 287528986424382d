#include "quillrip/pclxl/commands.h"
#include "quillrip/pclxl/drawing.h"
#include "quillrip/pclxl/machine.h"
#include "quillrip/pclxl/state.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillrip::pclxl::commands {

namespace {

/// The points of a line or curve operator in user space, absolute. `perSegment` is 1 for lines and 3 for curves.
Status readPoints(Machine& machine, bool isRelative, int perSegment, std::vector<Point>& points)
{
    const AttributeList& operands = machine.operands();
    const CurrentPath& path = machine.state().path;
    points.clear();
    Point base = *path.cursor();
    const auto add = [&](Point p) {
        points.push_back(isRelative ? base + p : p);
        if (points.size() % static_cast<std::size_t>(perSegment) == 0)
            base = points.back();
    };
    if (!operands.has(Attribute::NumberOfPoints)) {
        if (operands.has(Attribute::PointType))
            return { Error::IllegalAttributeCombination, Attribute::PointType };
        if (perSegment == 3) {
            for (const Attribute control : { Attribute::ControlPoint1, Attribute::ControlPoint2 }) {
                if (!operands.has(control))
                    return { Error::MissingAttribute, control };
                add(operands.point(control));
            }
        }
        add(operands.point(Attribute::EndPoint));
        return {};
    }

    if (!operands.has(Attribute::PointType))
        return { Error::MissingAttribute, Attribute::PointType };
    const int count = operands.integer(Attribute::NumberOfPoints);
    if (count < 0 || count % perSegment != 0)
        return { Error::IllegalAttributeValue, Attribute::NumberOfPoints };
    const Status size = path.checkRoom(static_cast<std::size_t>(count), machine.limits().pathPoints);
    if (!size.isOk())
        return size;
    const int type = operands.integer(Attribute::PointType);
    EmbeddedData& source = machine.data();
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

Status addPoints(Machine& machine, bool isCurve, bool isRelative)
{
    CurrentPath& path = machine.state().path;
    if (!path.cursor())
        return Error::CurrentCursorUndefined;
    std::vector<Point>& points = machine.points();
    const Status status = readPoints(machine, isRelative, isCurve ? 3 : 1, points);
    if (!status.isOk() || points.empty())
        return status;
    const std::size_t maxPoints = machine.limits().pathPoints;
    return isCurve ? path.addCurves(points, maxPoints) : path.addLines(points, maxPoints);
}

} // namespace

Status setCursor(Machine& machine)
{
    machine.state().path.setCursor(machine.operands().point(Attribute::Point));
    return {};
}

Status setCursorRel(Machine& machine)
{
    CurrentPath& path = machine.state().path;
    if (!path.cursor())
        return Error::CurrentCursorUndefined;
    path.setCursor(*path.cursor() + machine.operands().point(Attribute::Point));
    return {};
}

Status newPath(Machine& machine)
{
    machine.state().path.clear();
    return {};
}

Status closeSubPath(Machine& machine)
{
    machine.state().path.close();
    return {};
}

Status linePath(Machine& machine) { return addPoints(machine, false, false); }

Status lineRelPath(Machine& machine) { return addPoints(machine, false, true); }

Status bezierPath(Machine& machine) { return addPoints(machine, true, false); }

Status bezierRelPath(Machine& machine) { return addPoints(machine, true, true); }

Status paintPath(Machine& machine)
{
    const Path& path = machine.state().path.path();
    if (!path.empty())
        machine.drawing().paint(path);
    return {};
}

} // namespace quillrip::pclxl::commands
