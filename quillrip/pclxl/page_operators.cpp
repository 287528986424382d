#include "quillrip/pclxl/machine.h"

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

bool isUsable(const Matrix& m)
{
    const double limit = 1e9;
    for (const double v : { m.a, m.b, m.c, m.d })
        if (!std::isfinite(v) || std::abs(v) > limit)
            return false;
    return std::isfinite(m.e) && std::isfinite(m.f) && std::abs(m.determinant()) > 1e-18;
}

} // namespace

/// The medium of the page: what BeginPage names, else that of the page before. What a device does not have is a
/// warning, never an error.
Medium Machine::chooseMedium()
{
    if (m_operands.has(Attribute::CustomMediaSize)) {
        const Point size = m_operands.point(Attribute::CustomMediaSize);
        const double unit = 720 * inchesOfMeasure(m_operands.integer(Attribute::CustomMediaSizeUnits));
        // From a grain of rice to a poster of ten metres.
        const auto isSheet = [](double decipoints) { return decipoints >= 7 && decipoints <= 300000; };
        if (isSheet(size.x * unit) && isSheet(size.y * unit))
            return { size.x * unit, size.y * unit };
        warn("pclxl.custom-media-size", "the custom media size is no sheet's (IllegalMediaSize)");
        return m_session.medium;
    }
    const Operand* operand = m_operands.find(Attribute::MediaSize);
    if (!operand)
        return m_session.medium;
    std::optional<Medium> medium;
    bool isDefault = false;
    if (operand->shape == Shape::Scalar) {
        const int number = m_operands.integer(Attribute::MediaSize);
        medium = mediumOfNumber(number);
        isDefault = number == kDefaultMediaSize;
    } else {
        const ByteView bytes = m_operands.array(*operand).bytes();
        const std::string name(bytes.begin(), bytes.end());
        medium = mediumOfName(name);
        isDefault = name == "DEFAULT";
    }
    if (medium)
        return *medium;
    if (isDefault)
        return { m_environment.paperWidth, m_environment.paperHeight };
    warn("pclxl.media-size", "the media size is not known, the page before or the default decides (IllegalMediaSize)");
    return m_session.medium;
}

Status Machine::beginPage()
{
    const Medium medium = chooseMedium();
    int orientation = m_operands.integer(Attribute::Orientation, m_session.orientation);
    if (orientation == 4)
        orientation = m_environment.orientation;
    if (orientation < 0 || orientation > 3) {
        warn("pclxl.orientation", "the orientation is not known, the page before decides (IllegalOrientation)");
        orientation = m_session.orientation;
    }
    m_session.medium = medium;
    m_session.orientation = orientation;

    PageInProgress page;
    page.sheet = { medium.width, medium.height, orientation & 3 };
    const Status status = deviceStatus(m_device.beginPage(page.sheet, page.canvas));
    if (!status.isOk())
        return status;
    page.isOpen = true;
    page.bounds = page.canvas.painter->page().bounds();
    const Matrix& toDevice = page.canvas.pageToDevice;
    const double unitX = 720 / m_session.unitsPerInchX;
    const double unitY = 720 / m_session.unitsPerInchY;
    page.initialMatrix = { snapped(toDevice.a * unitX), snapped(toDevice.b * unitX), snapped(toDevice.c * unitY),
        snapped(toDevice.d * unitY), toDevice.e, toDevice.f };
    if (!isUsable(page.initialMatrix))
        return { Error::IllegalAttributeValue, Attribute::UnitsPerMeasure };
    m_page = page;
    m_state = newState();
    m_stack.clear();
    m_stackCosts.clear();
    m_stackCost = 0;
    paintChanged();
    return {};
}

Status Machine::endPage()
{
    const int copies = m_operands.integer(Attribute::PageCopies, 1);
    endVendorImage();
    if (m_page.hasPassedThrough && m_environment.passThrough)
        m_environment.passThrough->endPage();
    m_page.hasPassedThrough = false;
    for (auto it = m_patterns.begin(); it != m_patterns.end();) {
        if (it->second.endsWithPage) {
            m_patternBytes -= it->second.pattern->tile.pixels.size();
            it = m_patterns.erase(it);
        } else {
            ++it;
        }
    }
    Status status;
    if (copies == 0)
        warn("pclxl.no-copies", "a page of which no copies are wanted is left out");
    else
        status = deviceStatus(m_device.endPage());
    abandonPage();
    return status;
}

GraphicsState Machine::newState() const
{
    GraphicsState state;
    state.userToDevice = m_page.initialMatrix;
    return state;
}

Status Machine::setDefaultGS()
{
    m_state = newState();
    paintChanged();
    return {};
}

/// A path and a cursor that exist already stay where they are on the page.
Status Machine::changeMatrix(const Matrix& matrix)
{
    if (!isUsable(matrix))
        return Error::IllegalAttributeValue;
    if (!m_state.path->empty() || m_state.cursor) {
        const Matrix oldToNew = m_state.userToDevice * matrix.inverted();
        if (!m_state.path->empty())
            m_state.path.edit() = m_state.path->transformed(oldToNew);
        if (m_state.cursor)
            m_state.cursor = oldToNew.apply(*m_state.cursor);
    }
    m_state.userToDevice = matrix;
    paintChanged();
    return {};
}

Status Machine::setPageDefaultCTM()
{
    m_state.quarterTurns = 0;
    return changeMatrix(m_page.initialMatrix);
}

Status Machine::setPageOrigin()
{
    const Point origin = m_operands.point(Attribute::PageOrigin);
    const Status status = changeMatrix(Matrix::translation(origin.x, origin.y) * m_state.userToDevice);
    return status.isOk() ? status : Status(status.error, Attribute::PageOrigin);
}

Status Machine::setPageRotation()
{
    const double angle = m_operands.number(Attribute::PageAngle);
    const double turns = angle / 90;
    if (std::abs(angle) > 1e6 || turns != std::floor(turns))
        return { Error::IllegalAttributeValue, Attribute::PageAngle };
    const int k = static_cast<int>(std::fmod(turns, 4) + 4) & 3;
    m_state.quarterTurns = (m_state.quarterTurns + k) & 3;
    return changeMatrix(Matrix::quarterTurns(4 - k) * m_state.userToDevice);
}

Status Machine::setPageScale()
{
    Attribute concerned = Attribute::PageScale;
    Point scale = m_operands.point(Attribute::PageScale);
    if (m_operands.has(Attribute::UnitsPerMeasure)) {
        // In absolute terms: a user unit becomes 1 / UnitsPerMeasure, whatever the scale was before.
        concerned = Attribute::UnitsPerMeasure;
        if (!m_operands.has(Attribute::Measure))
            return { Error::MissingAttribute, Attribute::Measure };
        const Point units = m_operands.point(Attribute::UnitsPerMeasure);
        if (!(units.x > 0) || !(units.y > 0))
            return { Error::IllegalAttributeValue, concerned };
        const double inches = inchesOfMeasure(m_operands.integer(Attribute::Measure));
        const Matrix& now = m_state.userToDevice;
        const Matrix& first = m_page.initialMatrix;
        const bool isOdd = (m_state.quarterTurns & 1) != 0;
        const double lengthX = std::hypot(first.a, first.b) * m_session.unitsPerInchX;
        const double lengthY = std::hypot(first.c, first.d) * m_session.unitsPerInchY;
        scale.x = (isOdd ? lengthY : lengthX) * inches / units.x / std::hypot(now.a, now.b);
        scale.y = (isOdd ? lengthX : lengthY) * inches / units.y / std::hypot(now.c, now.d);
    }
    if (!(scale.x > 0) || !(scale.y > 0))
        return { Error::IllegalAttributeValue, concerned };
    const Status status = changeMatrix(Matrix::scaling(scale.x, scale.y) * m_state.userToDevice);
    return status.isOk() ? status : Status(status.error, concerned);
}

Status Machine::passThrough()
{
    PassThroughHandler* handler = m_environment.passThrough;
    if (!handler) {
        warn("pclxl.pass-through", "PCL 5 data within a PCL XL page are passed over");
        return {};
    }
    if (!m_page.hasPassedThrough) {
        m_page.hasPassedThrough = true;
        handler->beginPage(m_page.sheet, m_page.canvas);
    }
    for (ByteView chunk = data().chunk(); !chunk.empty(); chunk = data().chunk()) {
        const RunStatus status = handler->data(chunk);
        data().take(chunk.size);
        if (status == RunStatus::LimitExceeded || status == RunStatus::OutputFailed)
            return deviceStatus(status);
    }
    return {};
}

} // namespace quillrip::pclxl
