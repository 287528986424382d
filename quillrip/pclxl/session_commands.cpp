#include "quillrip/base/reporter.h"
#include "quillrip/pclxl/command_table.h"
#include "quillrip/pclxl/commands.h"
#include "quillrip/pclxl/environment.h"
#include "quillrip/pclxl/graphics_stack.h"
#include "quillrip/pclxl/machine.h"
#include "quillrip/pclxl/media.h"
#include "quillrip/pclxl/session.h"

#include <string>

namespace quillrip::pclxl::commands {

Status beginSession(Machine& machine)
{
    const AttributeList& operands = machine.operands();
    const Environment& environment = machine.environment();
    const Point units = operands.point(Attribute::UnitsPerMeasure);
    const double inches = inchesOfMeasure(operands.integer(Attribute::Measure));
    if (!(units.x > 0) || !(units.y > 0))
        return { Error::IllegalAttributeValue, Attribute::UnitsPerMeasure };
    machine.resetSession();
    Session& session = machine.session();
    session.isOpen = true;
    session.unitsPerInch = { units.x / inches, units.y / inches };
    session.medium = { environment.paperWidth, environment.paperHeight };
    session.orientation = environment.orientation;
    machine.state() = {};
    return {};
}

Status endSession(Machine& machine)
{
    if (machine.dataSource().isOpen)
        machine.reporter().warn(
            "pclxl.data-source-not-closed", "the session ends with its data source open (DataSourceNotClosed)");
    machine.resetSession();
    return {};
}

Status openDataSource(Machine& machine)
{
    DataSource& source = machine.dataSource();
    if (source.isOpen)
        machine.reporter().warn("pclxl.data-source-already-open", "a data source is opened while another is open");
    source.isOpen = true;
    source.order = machine.operands().integer(Attribute::DataOrg) == 0 ? ByteOrder::BigEndian : ByteOrder::LittleEndian;
    return {};
}

Status closeDataSource(Machine& machine)
{
    DataSource& source = machine.dataSource();
    if (!source.isOpen)
        machine.reporter().warn(
            "pclxl.data-source-not-open", "a data source is closed that is not open (DataSourceNotOpen)");
    source.isOpen = false;
    return {};
}

Status ignore(Machine&) { return {}; }

/// Hints for a device's own colours.
Status ignoreOnce(Machine& machine)
{
    const char* name = machine.command().name;
    machine.reporter().warn(name, std::string(name) + " has no effect");
    return {};
}

} // namespace quillrip::pclxl::commands
