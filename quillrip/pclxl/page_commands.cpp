#include "quillrip/base/reporter.h"
#include "quillrip/base/units.h"
#include "quillrip/pclxl/commands.h"
#include "quillrip/pclxl/drawing.h"
#include "quillrip/pclxl/environment.h"
#include "quillrip/pclxl/graphics_stack.h"
#include "quillrip/pclxl/machine.h"
#include "quillrip/pclxl/media.h"
#include "quillrip/pclxl/page.h"
#include "quillrip/pclxl/pattern_store.h"
#include "quillrip/pclxl/session.h"

#include <cmath>
#include <optional>
#include <string>

namespace quillrip::pclxl::commands {

namespace {

/// The medium of the page: what BeginPage names, else that of the page before. What a device does not have is a
/// warning, never an error.
Medium chooseMedium(Machine& machine)
{
    const AttributeList& operands = machine.operands();
    if (operands.has(Attribute::CustomMediaSize)) {
        const Point size = operands.point(Attribute::CustomMediaSize);
        const double unit = kDecipointsPerInch * inchesOfMeasure(operands.integer(Attribute::CustomMediaSizeUnits));
        // From a grain of rice to a poster of ten metres.
        const auto isSheet = [](double decipoints) { return decipoints >= 7 && decipoints <= 300000; };
        if (isSheet(size.x * unit) && isSheet(size.y * unit))
            return { size.x * unit, size.y * unit };
        machine.reporter().warn("pclxl.custom-media-size", "the custom media size is no sheet's (IllegalMediaSize)");
        return machine.session().medium;
    }
    const Operand* operand = operands.find(Attribute::MediaSize);
    if (!operand)
        return machine.session().medium;
    std::optional<Medium> medium;
    bool isDefault = false;
    if (operand->shape == Shape::Scalar) {
        const int number = operands.integer(Attribute::MediaSize);
        medium = mediumOfNumber(number);
        isDefault = number == kDefaultMediaSize;
    } else {
        const ByteView bytes = operands.array(*operand).bytes();
        const std::string name(bytes.begin(), bytes.end());
        medium = mediumOfName(name);
        isDefault = name == "DEFAULT";
    }
    if (medium)
        return *medium;
    if (isDefault)
        return { machine.environment().paperWidth, machine.environment().paperHeight };
    machine.reporter().warn(
        "pclxl.media-size", "the media size is not known, the page before or the default decides (IllegalMediaSize)");
    return machine.session().medium;
}

GraphicsState firstState(const Page& page)
{
    GraphicsState state;
    state.userToDevice = page.initialMatrix();
    return state;
}

Status changeMatrix(Machine& machine, const Matrix& matrix, Attribute concerned)
{
    if (!machine.state().changeMatrix(matrix))
        return { Error::IllegalAttributeValue, concerned };
    machine.drawing().stateChanged();
    return {};
}

} // namespace

Status beginPage(Machine& machine)
{
    Session& session = machine.session();
    const Medium medium = chooseMedium(machine);
    int orientation = machine.operands().integer(Attribute::Orientation, session.orientation);
    if (orientation == kDefaultOrientation)
        orientation = machine.environment().orientation;
    if (orientation < 0 || orientation > 3) {
        machine.reporter().warn(
            "pclxl.orientation", "the orientation is not known, the page before decides (IllegalOrientation)");
        orientation = session.orientation;
    }
    session.medium = medium;
    session.orientation = orientation;

    SheetRequest sheet;
    sheet.width = medium.width;
    sheet.height = medium.height;
    sheet.orientation = orientation & 3;
    const Status status = machine.page().open(sheet, session.unitsPerInch);
    if (!status.isOk())
        return status;
    machine.graphics().reset(firstState(machine.page()));
    machine.drawing().stateChanged();
    return {};
}

Status endPage(Machine& machine)
{
    machine.endVendorImages();
    machine.patterns().endPage();
    Status status;
    if (machine.operands().integer(Attribute::PageCopies, 1) == 0)
        machine.reporter().warn("pclxl.no-copies", "a page of which no copies are wanted is left out");
    else
        status = machine.page().deliver();
    machine.leavePage();
    return status;
}

Status pushGS(Machine& machine) { return machine.graphics().push(machine.limits()); }

Status popGS(Machine& machine)
{
    if (machine.graphics().pop())
        machine.drawing().stateChanged();
    else
        machine.reporter().warn("pclxl.pop", "PopGS without a matching PushGS is ignored");
    return {};
}

Status setDefaultGS(Machine& machine)
{
    machine.state() = firstState(machine.page());
    machine.drawing().stateChanged();
    return {};
}

Status setPageDefaultCTM(Machine& machine)
{
    machine.state().quarterTurns = 0;
    return changeMatrix(machine, machine.page().initialMatrix(), Attribute::None);
}

Status setPageOrigin(Machine& machine)
{
    const Point origin = machine.operands().point(Attribute::PageOrigin);
    return changeMatrix(
        machine, Matrix::translation(origin.x, origin.y) * machine.state().userToDevice, Attribute::PageOrigin);
}

Status setPageRotation(Machine& machine)
{
    GraphicsState& state = machine.state();
    const double angle = machine.operands().number(Attribute::PageAngle);
    const double turns = angle / 90;
    if (std::abs(angle) > 1e6 || turns != std::floor(turns))
        return { Error::IllegalAttributeValue, Attribute::PageAngle };
    const int k = static_cast<int>(std::fmod(turns, 4) + 4) & 3;
    state.quarterTurns = (state.quarterTurns + k) & 3;
    return changeMatrix(machine, Matrix::quarterTurns(4 - k) * state.userToDevice, Attribute::None);
}

Status setPageScale(Machine& machine)
{
    const AttributeList& operands = machine.operands();
    const GraphicsState& state = machine.state();
    Attribute concerned = Attribute::PageScale;
    Point scale = operands.point(Attribute::PageScale);
    if (operands.has(Attribute::UnitsPerMeasure)) {
        // In absolute terms: a user unit becomes 1 / UnitsPerMeasure, whatever the scale was before.
        concerned = Attribute::UnitsPerMeasure;
        if (!operands.has(Attribute::Measure))
            return { Error::MissingAttribute, Attribute::Measure };
        const Point units = operands.point(Attribute::UnitsPerMeasure);
        if (!(units.x > 0) || !(units.y > 0))
            return { Error::IllegalAttributeValue, concerned };
        const double inches = inchesOfMeasure(operands.integer(Attribute::Measure));
        const Matrix& now = state.userToDevice;
        const Matrix& first = machine.page().initialMatrix();
        const bool isOdd = (state.quarterTurns & 1) != 0;
        const double lengthX = std::hypot(first.a, first.b) * machine.session().unitsPerInch.x;
        const double lengthY = std::hypot(first.c, first.d) * machine.session().unitsPerInch.y;
        scale.x = (isOdd ? lengthY : lengthX) * inches / units.x / std::hypot(now.a, now.b);
        scale.y = (isOdd ? lengthX : lengthY) * inches / units.y / std::hypot(now.c, now.d);
    }
    if (!(scale.x > 0) || !(scale.y > 0))
        return { Error::IllegalAttributeValue, concerned };
    return changeMatrix(machine, Matrix::scaling(scale.x, scale.y) * state.userToDevice, concerned);
}

Status passThrough(Machine& machine)
{
    PassThroughHandler* handler = machine.environment().passThrough;
    if (handler)
        return machine.page().passThrough(*handler, machine.data());
    machine.reporter().warn("pclxl.pass-through", "PCL 5 data within a PCL XL page are passed over");
    return {};
}

} // namespace quillrip::pclxl::commands
