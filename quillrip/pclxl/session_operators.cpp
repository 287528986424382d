#include "quillrip/pclxl/machine.h"

#include <cmath>

namespace quillrip::pclxl {

Status Machine::beginSession()
{
    const Point units = m_operands.point(Attribute::UnitsPerMeasure);
    const double inches = inchesOfMeasure(m_operands.integer(Attribute::Measure));
    if (!(units.x > 0) || !(units.y > 0))
        return { Error::IllegalAttributeValue, Attribute::UnitsPerMeasure };
    resetSession();
    m_session.isOpen = true;
    m_session.unitsPerInchX = units.x / inches;
    m_session.unitsPerInchY = units.y / inches;
    m_session.medium = { m_environment.paperWidth, m_environment.paperHeight };
    m_session.orientation = m_environment.orientation;
    m_state = {};
    return {};
}

Status Machine::endSession()
{
    if (m_dataSourceIsOpen)
        warn("pclxl.data-source-not-closed", "the session ends with its data source open (DataSourceNotClosed)");
    resetSession();
    return {};
}

Status Machine::openDataSource()
{
    if (m_dataSourceIsOpen)
        warn("pclxl.data-source-already-open", "a data source is opened while another is open");
    m_dataSourceIsOpen = true;
    m_dataOrder = m_operands.integer(Attribute::DataOrg) == 0 ? ByteOrder::BigEndian : ByteOrder::LittleEndian;
    return {};
}

Status Machine::closeDataSource()
{
    if (!m_dataSourceIsOpen)
        warn("pclxl.data-source-not-open", "a data source is closed that is not open (DataSourceNotOpen)");
    m_dataSourceIsOpen = false;
    return {};
}

Status Machine::ignoreOperator() { return {}; }

/// Hints for a device's own colours.
Status Machine::ignoreOnce()
{
    warn(m_entry->name, std::string(m_entry->name) + " has no effect");
    return {};
}

} // namespace quillrip::pclxl
