#include "quillrip/emf/plus/pen_stroke.h"

#include <algorithm>
#include <cmath>

namespace quillrip::emf::plus {

namespace {

LineCap lineCapOf(Cap cap)
{
    switch (cap) {
    case Cap::Square:
        return LineCap::Square;
    case Cap::Round:
        return LineCap::Round;
    case Cap::Triangle:
        return LineCap::Triangle;
    default:
        return LineCap::Butt;
    }
}

LineJoin lineJoinOf(Join join)
{
    switch (join) {
    case Join::Miter:
        return LineJoin::MiterClipped;
    case Join::Bevel:
        return LineJoin::Bevel;
    case Join::Round:
        return LineJoin::Round;
    case Join::MiterBevelled:
        return LineJoin::Miter;
    }
    return LineJoin::MiterClipped;
}

bool isPlain(Cap cap) { return cap == Cap::Flat || cap == Cap::Square || cap == Cap::Round || cap == Cap::Triangle; }

bool hasOpenFigure(const Path& path)
{
    bool isOpen = false;
    bool found = false;
    const auto end = [&] { found = found || isOpen; };
    path.forEach(
        [&](Point) {
            end();
            isOpen = false;
        },
        [&](Point) { isOpen = true; }, [&](Point, Point, Point) { isOpen = true; }, [&] { isOpen = false; });
    end();
    return found;
}

bool needsOutline(const Path& path, const PenObject& pen)
{
    if (!pen.compound.empty() || pen.alignment == PenAlignment::Inset)
        return true;
    if (!hasOpenFigure(path))
        return false;
    if (!isPlain(pen.startCap) || !isPlain(pen.endCap) || pen.startCap != pen.endCap)
        return true;
    return !pen.dashes.empty() && pen.dashCap != pen.startCap;
}

} // namespace

PenStroke penStroke(const Path& worldPath, const PenObject& pen, const StrokeSpace& space)
{
    PenStroke stroke;
    const bool isWorld = pen.unit == Unit::World;
    Matrix toDevice = isWorld ? space.worldToPage * space.pageToDevice : space.pageToDevice;
    Matrix fromWorld = isWorld ? Matrix() : space.worldToPage;
    Matrix nib = pen.shape;
    nib.e = nib.f = 0;
    if (nib.isInvertible()) {
        toDevice = nib * toDevice;
        fromWorld = fromWorld * nib.inverted();
    }
    if (!toDevice.isInvertible())
        return stroke;
    const double deviceUnit = std::sqrt(std::abs(toDevice.determinant()));
    stroke.toDevice = toDevice;
    stroke.path = worldPath.transformed(fromWorld);
    StrokeStyle& style = stroke.style;
    style.width = pen.width * (isWorld ? 1 : space.pagePixelsPerUnit);
    style.width = std::max(style.width, space.thinnest / deviceUnit);
    style.join = lineJoinOf(pen.join);
    style.miterLimit = pen.miterLimit;
    for (const double length : pen.dashes)
        style.dashes.push_back(length * style.width);
    style.dashOffset = pen.dashOffset * style.width;
    style.cap = lineCapOf(pen.dashes.empty() ? pen.startCap : pen.dashCap);
    stroke.needsOutline = needsOutline(stroke.path, pen);
    return stroke;
}

} // namespace quillrip::emf::plus
