#include "quillrip/pclxl/commands.h"
#include "quillrip/pclxl/machine.h"
#include "quillrip/pclxl/state.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <vector>

namespace quillrip::pclxl::commands {

namespace {

constexpr std::size_t kMaxDashes = 256;

} // namespace

Status setFillMode(Machine& machine)
{
    machine.state().fillRule
        = machine.operands().integer(Attribute::FillMode) == 1 ? FillRule::EvenOdd : FillRule::NonZero;
    return {};
}

Status setLineDash(Machine& machine)
{
    std::vector<double>& dashes = machine.state().stroke.dashes;
    if (machine.operands().has(Attribute::SolidLine)) {
        dashes.clear();
        return {};
    }
    const ArrayView lengths = machine.operands().array(Attribute::LineDashStyle);
    if (lengths.size() > kMaxDashes)
        return { Error::IllegalArraySize, Attribute::LineDashStyle };
    if (!lengths.isFinite())
        return { Error::IllegalAttributeValue, Attribute::LineDashStyle };
    dashes.clear();
    for (std::size_t i = 0; i < lengths.size(); ++i)
        dashes.push_back(lengths.at(i));
    const double period = std::accumulate(dashes.begin(), dashes.end(), 0.0);
    // Empty, all zero or negative patterns are solid lines, and so are those finer than any page can show.
    const bool isNegative = std::any_of(dashes.begin(), dashes.end(), [](double length) { return length < 0; });
    const Matrix& m = machine.state().userToDevice;
    const double scale = std::max(std::hypot(m.a, m.b), std::hypot(m.c, m.d));
    if (isNegative || !(period > 0) || period * scale < 0.05) {
        dashes.clear();
        return {};
    }
    if (dashes.size() % 2 != 0) {
        const std::vector<double> once = dashes;
        dashes.insert(dashes.end(), once.begin(), once.end());
    }
    const double total = std::accumulate(dashes.begin(), dashes.end(), 0.0);
    const double offset = std::fmod(machine.operands().number(Attribute::DashOffset), total);
    machine.state().stroke.dashOffset = offset < 0 ? offset + total : offset;
    return {};
}

Status setLineCap(Machine& machine)
{
    constexpr LineCap kCaps[] = { LineCap::Butt, LineCap::Round, LineCap::Square, LineCap::Triangle };
    machine.state().stroke.cap = kCaps[machine.operands().integer(Attribute::LineCapStyle)];
    return {};
}

Status setLineJoin(Machine& machine)
{
    constexpr LineJoin kJoins[] = { LineJoin::Miter, LineJoin::Round, LineJoin::Bevel, LineJoin::None };
    machine.state().stroke.join = kJoins[machine.operands().integer(Attribute::LineJoinStyle)];
    return {};
}

Status setMiterLimit(Machine& machine)
{
    const double limit = machine.operands().number(Attribute::MiterLength);
    if (limit != 0 && limit < 1)
        return { Error::IllegalAttributeValue, Attribute::MiterLength };
    machine.state().stroke.miterLimit = limit == 0 ? 10 : limit;
    return {};
}

Status setPenWidth(Machine& machine)
{
    const double width = machine.operands().number(Attribute::PenWidth);
    if (width < 0)
        return { Error::IllegalAttributeValue, Attribute::PenWidth };
    machine.state().stroke.width = width;
    return {};
}

} // namespace quillrip::pclxl::commands
