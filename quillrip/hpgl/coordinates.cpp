#include "quillrip/hpgl/coordinates.h"

#include <algorithm>
#include <cmath>

namespace quillrip::hpgl {

namespace {

/// Rotated plotter units to those of the unrotated frame, whose extent is `size`.
Matrix rotation(int quarterTurns, Point size)
{
    switch (quarterTurns & 3) {
    case 1:
        return { 0, 1, -1, 0, size.x, 0 };
    case 2:
        return { -1, 0, 0, -1, size.x, size.y };
    case 3:
        return { 0, -1, 1, 0, 0, size.y };
    default:
        return {};
    }
}

double sign(double value) { return value < 0 ? -1 : 1; }

} // namespace

void Coordinates::setFrame(const PictureFrame& frame)
{
    m_frame = frame;
    PictureFrame& f = m_frame;
    f.width = std::max(f.width, 1.0);
    f.height = std::max(f.height, 1.0);
    const bool isTurned = f.quarterTurns & 1;
    const double alongX = isTurned ? f.height : f.width;
    const double alongY = isTurned ? f.width : f.height;
    if (!(f.plotWidth > 0))
        f.plotWidth = alongX;
    if (!(f.plotHeight > 0))
        f.plotHeight = alongY;

    const double scaleX = alongX / f.plotWidth;
    const double scaleY = alongY / f.plotHeight;
    m_plotScale = std::min(scaleX, scaleY);
    const double x = scaleX * kDecipointsPerPlotterUnit;
    const double y = scaleY * kDecipointsPerPlotterUnit;
    switch (f.quarterTurns & 3) {
    case 1:
        m_frameToPage = { 0, x, y, 0, f.left, f.top };
        break;
    case 2:
        m_frameToPage = { -x, 0, 0, y, f.left + f.width, f.top };
        break;
    case 3:
        m_frameToPage = { 0, -x, -y, 0, f.left + f.width, f.top + f.height };
        break;
    default:
        m_frameToPage = { x, 0, 0, -y, f.left, f.top + f.height };
        break;
    }
    rotate(m_quarterTurns);
}

Point Coordinates::frameSize() const
{
    return { m_frame.plotWidth * kPlotterUnitsPerDecipoint, m_frame.plotHeight * kPlotterUnitsPerDecipoint };
}

Point Coordinates::rotatedFrameSize() const
{
    const Point size = frameSize();
    return m_quarterTurns & 1 ? Point { size.y, size.x } : size;
}

void Coordinates::rotate(int quarterTurns)
{
    m_quarterTurns = quarterTurns;
    m_plotterToPage = rotation(quarterTurns, frameSize()) * m_frameToPage;
    ++m_revision;
}

void Coordinates::setDefaultPoints(Point p1, Point p2)
{
    m_hasDefaultPoints = true;
    m_defaultP1 = p1;
    m_defaultP2 = p2;
}

void Coordinates::useDefaultPoints()
{
    const Point p1 = m_hasDefaultPoints ? m_defaultP1 : Point {};
    const Point p2 = m_hasDefaultPoints ? m_defaultP2 : rotatedFrameSize();
    setPoints(p1, &p2);
}

void Coordinates::setPoints(Point p1, const Point* p2)
{
    Point other = p2 ? *p2 : m_p2 + (p1 - m_p1);
    if (other.x == p1.x)
        other.x += 1;
    if (other.y == p1.y)
        other.y += 1;
    m_p1 = p1;
    m_p2 = other;
    updateScaling();
}

double Coordinates::diagonal() const { return std::hypot(m_p2.x - m_p1.x, m_p2.y - m_p1.y); }

void Coordinates::setScaling(const Scaling& scaling)
{
    freezeWindow();
    m_scaling = scaling;
    updateScaling();
}

void Coordinates::updateScaling()
{
    const Scaling& s = m_scaling;
    const Point size = m_p2 - m_p1;
    UserToPlotter& map = m_userToPlotter;
    switch (s.kind) {
    case Scaling::Kind::Off:
        map = {};
        break;
    case Scaling::Kind::Anisotropic:
        map.scaleX = size.x / (s.xMax - s.xMin);
        map.scaleY = size.y / (s.yMax - s.yMin);
        map.offsetX = m_p1.x - s.xMin * map.scaleX;
        map.offsetY = m_p1.y - s.yMin * map.scaleY;
        break;
    case Scaling::Kind::Isotropic: {
        const double x = size.x / (s.xMax - s.xMin);
        const double y = size.y / (s.yMax - s.yMin);
        const double scale = std::min(std::abs(x), std::abs(y));
        const double spareX = std::abs(size.x) - scale * std::abs(s.xMax - s.xMin);
        const double spareY = std::abs(size.y) - scale * std::abs(s.yMax - s.yMin);
        map.scaleX = scale * sign(x);
        map.scaleY = scale * sign(y);
        map.offsetX = m_p1.x + sign(size.x) * spareX * s.left / 100 - s.xMin * map.scaleX;
        map.offsetY = m_p1.y + sign(size.y) * spareY * s.bottom / 100 - s.yMin * map.scaleY;
        break;
    }
    case Scaling::Kind::PointFactor:
        map.scaleX = s.xMax;
        map.scaleY = s.yMax;
        map.offsetX = m_p1.x - s.xMin * map.scaleX;
        map.offsetY = m_p1.y - s.yMin * map.scaleY;
        break;
    }
    ++m_revision;
}

double Coordinates::userUnit() const { return std::abs(m_userToPlotter.scaleX); }

void Coordinates::setWindow(Point corner1, Point corner2)
{
    changeWindow({ isScaled() ? Window::Kind::UserUnits : Window::Kind::PlotterUnits, corner1, corner2 });
}

void Coordinates::changeWindow(const Window& window)
{
    m_window = window;
    ++m_revision;
}

void Coordinates::freezeWindow()
{
    if (m_window.kind != Window::Kind::UserUnits)
        return;
    m_window.kind = Window::Kind::PlotterUnits;
    m_window.corner1 = toPlotter(m_window.corner1);
    m_window.corner2 = toPlotter(m_window.corner2);
}

Rect Coordinates::window() const
{
    const Rect limits { m_frame.clipLeft, m_frame.clipTop, m_frame.clipRight, m_frame.clipBottom };
    if (m_window.kind == Window::Kind::Frame)
        return limits;
    Rect rect = Rect::nothing();
    for (const Point corner : { m_window.corner1, m_window.corner2 })
        rect.include(toPage(m_window.kind == Window::Kind::UserUnits ? toPlotter(corner) : corner));
    return limits.intersected(rect);
}

} // namespace quillrip::hpgl
