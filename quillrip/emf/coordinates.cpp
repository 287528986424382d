#include "quillrip/emf/coordinates.h"

#include "quillrip/base/units.h"

#include <cmath>

namespace quillrip::emf {

namespace {

/// No picture needs numbers beyond it, and sums of it stay exact enough.
constexpr double kLargest = 1e9;

bool isUsable(const Matrix& m)
{
    for (const double value : { m.a, m.b, m.c, m.d, m.e, m.f }) {
        if (!std::isfinite(value) || std::abs(value) > kLargest)
            return false;
    }
    return true;
}

} // namespace

Coordinates::Coordinates(const MetafileHeader& header)
    : m_device(header.device)
    , m_pixelsPerMillimeter(header.pixelsPerMillimeter())
{
}

void Coordinates::setMapMode(std::uint32_t mode)
{
    if (mode < static_cast<std::uint32_t>(MapMode::Text) || mode > static_cast<std::uint32_t>(MapMode::Anisotropic))
        return;
    const MapMode old = m_mode;
    m_mode = static_cast<MapMode>(mode);
    switch (m_mode) {
    case MapMode::Text:
        m_windowExtent = m_viewportExtent = { 1, 1 };
        break;
    case MapMode::LowMetric:
        setFixed(0.1);
        break;
    case MapMode::HighMetric:
        setFixed(0.01);
        break;
    case MapMode::LowEnglish:
        setFixed(0.01 * kMillimetresPerInch);
        break;
    case MapMode::HighEnglish:
        setFixed(0.001 * kMillimetresPerInch);
        break;
    case MapMode::Twips:
        setFixed(kMillimetresPerInch / 1440);
        break;
    case MapMode::Isotropic:
        if (old != MapMode::Isotropic)
            setFixed(0.1);
        break;
    case MapMode::Anisotropic:
        break;
    }
    update();
}

void Coordinates::setFixed(double unitMillimeters)
{
    m_windowExtent = { 1, 1 };
    m_viewportExtent
        = { unitMillimeters * m_pixelsPerMillimeter.width, -unitMillimeters * m_pixelsPerMillimeter.height };
}

void Coordinates::setWindowOrigin(Point origin)
{
    m_windowOrigin = origin;
    update();
}

void Coordinates::setViewportOrigin(Point origin)
{
    m_viewportOrigin = origin;
    update();
}

void Coordinates::setWindowExtent(Size extent)
{
    if (!isFree() || extent.width == 0 || extent.height == 0)
        return;
    m_windowExtent = extent;
    update();
}

void Coordinates::setViewportExtent(Size extent)
{
    if (!isFree() || extent.width == 0 || extent.height == 0)
        return;
    m_viewportExtent = extent;
    update();
}

void Coordinates::scaleWindow(double factorX, double factorY)
{
    setWindowExtent({ m_windowExtent.width * factorX, m_windowExtent.height * factorY });
}

void Coordinates::scaleViewport(double factorX, double factorY)
{
    setViewportExtent({ m_viewportExtent.width * factorX, m_viewportExtent.height * factorY });
}

void Coordinates::setMirrored(bool isMirrored)
{
    m_isMirrored = isMirrored;
    update();
}

bool Coordinates::setWorld(const Matrix& world)
{
    if (!isUsable(world))
        return false;
    m_world = world;
    update();
    return true;
}

bool Coordinates::multiplyWorld(const Matrix& factor, bool first)
{
    return isUsable(factor) && setWorld(first ? factor * m_world : m_world * factor);
}

void Coordinates::update()
{
    double scaleX = m_viewportExtent.width / m_windowExtent.width;
    double scaleY = m_viewportExtent.height / m_windowExtent.height;
    if (m_mode == MapMode::Isotropic) {
        // Equal lengths on paper: the larger of the two scales gives way.
        const double lengthX = std::abs(scaleX) / m_pixelsPerMillimeter.width;
        const double lengthY = std::abs(scaleY) / m_pixelsPerMillimeter.height;
        if (lengthX > lengthY)
            scaleX *= lengthY / lengthX;
        else if (lengthY > 0)
            scaleY *= lengthX / lengthY;
    }
    m_pageToReference = { scaleX, 0, 0, scaleY, m_viewportOrigin.x - m_windowOrigin.x * scaleX,
        m_viewportOrigin.y - m_windowOrigin.y * scaleY };
    if (m_isMirrored)
        m_pageToReference = m_pageToReference * Matrix { -1, 0, 0, 1, m_device.width, 0 };
    m_toReference = m_world * m_pageToReference;
}

} // namespace quillrip::emf
