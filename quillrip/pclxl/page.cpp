#include "quillrip/pclxl/page.h"

#include "quillrip/base/units.h"
#include "quillrip/pclxl/state.h"

#include <cmath>

namespace quillrip::pclxl {

namespace {

// Scales are quotients of small numbers; a half must come out as a half, or pixels at its edge fall to the other side.
double snapped(double value)
{
    const double grid = 1099511627776.0; // 2^40
    const double rounded = std::round(value * grid) / grid;
    return std::abs(rounded - value) <= std::abs(value) * 1e-14 ? rounded : value;
}

Status deviceStatus(RunStatus status)
{
    switch (status) {
    case RunStatus::Done:
        return {};
    case RunStatus::LimitExceeded:
        return Error::LimitExceeded;
    default:
        return Error::OutputFailed;
    }
}

} // namespace

Status Page::open(const SheetRequest& sheet, Point unitsPerInch)
{
    PageCanvas canvas;
    const Status status = deviceStatus(m_device.beginPage(sheet, canvas));
    if (!status.isOk())
        return status;
    const Matrix& toDevice = canvas.pageToDevice;
    const double unitX = kDecipointsPerInch / unitsPerInch.x;
    const double unitY = kDecipointsPerInch / unitsPerInch.y;
    const Matrix matrix { snapped(toDevice.a * unitX), snapped(toDevice.b * unitX), snapped(toDevice.c * unitY),
        snapped(toDevice.d * unitY), toDevice.e, toDevice.f };
    if (!isUsableMatrix(matrix))
        return { Error::IllegalAttributeValue, Attribute::UnitsPerMeasure };
    m_sheet = sheet;
    m_canvas = canvas;
    m_bounds = canvas.painter->page().bounds();
    m_initialMatrix = matrix;
    m_isOpen = true;
    return {};
}

Status Page::deliver()
{
    endPassThrough();
    return deviceStatus(m_device.endPage());
}

void Page::close()
{
    endPassThrough();
    m_isOpen = false;
    m_canvas = {};
}

Status Page::passThrough(PassThroughHandler& handler, EmbeddedData& data)
{
    if (!m_passThrough) {
        m_passThrough = &handler;
        handler.beginPage(m_sheet, m_canvas);
    }
    for (ByteView chunk = data.chunk(); !chunk.empty(); chunk = data.chunk()) {
        const RunStatus status = handler.data(chunk);
        data.take(chunk.size);
        if (status == RunStatus::LimitExceeded || status == RunStatus::OutputFailed)
            return deviceStatus(status);
    }
    return {};
}

void Page::endPassThrough()
{
    if (m_passThrough)
        m_passThrough->endPage();
    m_passThrough = nullptr;
}

} // namespace quillrip::pclxl
