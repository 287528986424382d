#include "quillrip/pclxl/machine.h"

#include <algorithm>
#include <cmath>

namespace quillrip::pclxl {

namespace {

struct Box {
    double left, top, right, bottom;
};

Box boxOf(const AttributeList& operands)
{
    const std::array<double, 4>& n = operands.find(Attribute::BoundingBox)->numbers;
    return { std::min(n[0], n[2]), std::min(n[1], n[3]), std::max(n[0], n[2]), std::max(n[1], n[3]) };
}

/// How many bytes a coordinate or a count of a scan line takes, by the data type of the block.
Element elementOfType(int type) { return type == 2 ? Element::UInt16 : type == 3 ? Element::SInt16 : Element::UByte; }

} // namespace

/// Shapes are paths of their own: the current path is gone afterwards, and so is the cursor.
Status Machine::paintShape(Status (Machine::*append)())
{
    m_state.path.clear();
    const Status status = (this->*append)();
    if (status.isOk())
        paint(*m_state.path);
    m_state.path.clear();
    m_state.cursor.reset();
    m_state.pathIsOpenAtCursor = false;
    return status;
}

Status Machine::appendArc(ArcKind kind)
{
    const Status status = checkPathSize(20);
    if (!status.isOk())
        return status;
    const Box box = boxOf(m_operands);
    const Point centre { (box.left + box.right) / 2, (box.top + box.bottom) / 2 };
    const double radiusX = (box.right - box.left) / 2;
    const double radiusY = (box.bottom - box.top) / 2;
    // Start and end point give rays from the centre; the angles are those of the ellipse's parameter.
    const auto parameterOf = [&](Attribute attribute) {
        const Point p = m_operands.point(attribute) - centre;
        return p == Point { 0, 0 } ? 0 : std::atan2(p.y * radiusX, p.x * radiusY);
    };
    const double start = parameterOf(Attribute::StartPoint);
    const double end = parameterOf(Attribute::EndPoint);
    const double fullTurn = 2 * std::acos(-1.0);
    const bool isClockwise = m_operands.integer(Attribute::ArcDirection, 1) == 0;
    double sweep = end - start; // y points down: clockwise is positive
    while (isClockwise && sweep <= 1e-12)
        sweep += fullTurn;
    while (!isClockwise && sweep >= -1e-12)
        sweep -= fullTurn;
    sweep = std::clamp(sweep, -fullTurn, fullTurn);

    Path& path = m_state.path.edit();
    if (kind == ArcKind::Pie) {
        path.moveTo(centre);
        path.arc(centre, radiusX, radiusY, start, sweep, false);
    } else {
        path.arc(centre, radiusX, radiusY, start, sweep, true);
    }
    if (kind != ArcKind::Open)
        path.close();
    m_state.cursor = path.current();
    m_state.pathIsOpenAtCursor = kind == ArcKind::Open;
    return {};
}

Status Machine::arcPath() { return appendArc(ArcKind::Open); }

Status Machine::chordPath() { return appendArc(ArcKind::Chord); }

Status Machine::chord() { return paintShape(&Machine::chordPath); }

Status Machine::piePath() { return appendArc(ArcKind::Pie); }

Status Machine::pie() { return paintShape(&Machine::piePath); }

Status Machine::ellipsePath()
{
    const Status status = checkPathSize(20);
    if (!status.isOk())
        return status;
    const Box box = boxOf(m_operands);
    Path& path = m_state.path.edit();
    path.arc({ (box.left + box.right) / 2, (box.top + box.bottom) / 2 }, (box.right - box.left) / 2,
        (box.bottom - box.top) / 2, 0, -2 * std::acos(-1.0), true);
    path.close();
    m_state.cursor = path.current();
    m_state.pathIsOpenAtCursor = false;
    return {};
}

Status Machine::ellipse() { return paintShape(&Machine::ellipsePath); }

Status Machine::rectanglePath()
{
    const Status status = checkPathSize(5);
    if (!status.isOk())
        return status;
    const Box box = boxOf(m_operands);
    Path& path = m_state.path.edit();
    path.rectangle(box.left, box.top, box.right, box.bottom);
    m_state.cursor = path.current();
    m_state.pathIsOpenAtCursor = false;
    return {};
}

Status Machine::rectangle() { return paintShape(&Machine::rectanglePath); }

Status Machine::roundRectanglePath()
{
    const Status status = checkPathSize(24);
    if (!status.isOk())
        return status;
    const Box box = boxOf(m_operands);
    const Point diameters = m_operands.point(Attribute::EllipseDimension);
    const double rx = std::min(std::abs(diameters.x) / 2, (box.right - box.left) / 2);
    const double ry = std::min(std::abs(diameters.y) / 2, (box.bottom - box.top) / 2);
    if (rx <= 0 || ry <= 0)
        return rectanglePath();
    const double quarter = std::acos(0.0);
    Path& path = m_state.path.edit();
    path.arc({ box.left + rx, box.top + ry }, rx, ry, 2 * quarter, quarter, true);
    path.arc({ box.right - rx, box.top + ry }, rx, ry, 3 * quarter, quarter, false);
    path.arc({ box.right - rx, box.bottom - ry }, rx, ry, 0, quarter, false);
    path.arc({ box.left + rx, box.bottom - ry }, rx, ry, quarter, quarter, false);
    path.close();
    m_state.cursor = path.current();
    m_state.pathIsOpenAtCursor = false;
    return {};
}

Status Machine::roundRectangle() { return paintShape(&Machine::roundRectanglePath); }

Status Machine::beginScan()
{
    m_definition = Definition::Scan;
    return {};
}

/// A data type byte, then for each scan line: where it starts (relative to the line before), how many runs it has, and
/// each run's start (relative to the run before) and length. A run is one user unit high.
Status Machine::scanLineRel()
{
    EmbeddedData& source = data();
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
    const int lines = m_operands.integer(Attribute::NumberOfScanLines, 1);
    Point at = m_state.cursor ? *m_state.cursor : Point {};
    const bool isVisible = m_state.brush.kind != Ink::Kind::None;
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
                fillDevicePath(path.transformed(m_state.userToDevice), FillRule::NonZero);
            }
            x += length;
        }
    }
    return {};
}

Status Machine::endScan()
{
    m_definition = Definition::None;
    return {};
}

} // namespace quillrip::pclxl
