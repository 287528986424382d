// Scaling points, scaling, windows and rotation, initialisation.

#include "quillrip/hpgl/machine.h"

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

void Machine::updateFrame()
{
    m_frame = m_host.pictureFrame();
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

    constexpr double kDecipointsPerUnit = kDecipointsPerInch / kPlotterUnitsPerInch;
    const double scaleX = alongX / f.plotWidth;
    const double scaleY = alongY / f.plotHeight;
    m_plotScale = std::min(scaleX, scaleY);
    const double x = scaleX * kDecipointsPerUnit;
    const double y = scaleY * kDecipointsPerUnit;
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
    m_plotterToPage = rotation(m_state.quarterTurns, frameSize()) * m_frameToPage;
    m_clipIsStale = true;
}

Point Machine::frameSize() const
{
    constexpr double kUnitsPerDecipoint = kPlotterUnitsPerInch / kDecipointsPerInch;
    return { m_frame.plotWidth * kUnitsPerDecipoint, m_frame.plotHeight * kUnitsPerDecipoint };
}

Point Machine::rotatedFrameSize() const
{
    const Point size = frameSize();
    return m_state.quarterTurns & 1 ? Point { size.y, size.x } : size;
}

double Machine::diagonal() const { return std::hypot(m_state.p2.x - m_state.p1.x, m_state.p2.y - m_state.p1.y); }

/// The frame bounds where the pen may go, so lines along its edge show in their full width. The window and the host's
/// own limits cut exactly.
void Machine::updateClip()
{
    const double reach = penWidthDecipoints() / 2;
    if (!m_clipIsStale && reach == m_clipReach)
        return;
    m_clipIsStale = false;
    m_clipReach = reach;
    const PictureFrame& f = m_frame;
    m_clip = { f.clipLeft, f.clipTop, f.clipRight, f.clipBottom };
    const Window& window = m_state.window;
    if (window.kind != Window::Kind::Frame) {
        const bool isUser = window.kind == Window::Kind::UserUnits;
        PageRect rect = PageRect::nothing();
        for (const Point corner : { window.corner1, window.corner2 })
            rect.include(m_plotterToPage.apply(isUser ? m_userToPlotter.apply(corner) : corner));
        m_clip = m_clip.intersected(rect);
    }
    PageRect lineClip = m_clip;
    if (f.cutsAtFrame) {
        const PageRect frame { f.left, f.top, f.left + f.width, f.top + f.height };
        m_clip = m_clip.intersected(frame);
        lineClip = lineClip.intersected(
            { frame.left - reach, frame.top - reach, frame.right + reach, frame.bottom + reach });
    }
    m_surface.setClip(m_clip, lineClip);
}

void Machine::updateScaling()
{
    const Scaling& s = m_state.scaling;
    const Point size = m_state.p2 - m_state.p1;
    UserToPlotter& map = m_userToPlotter;
    switch (s.kind) {
    case Scaling::Kind::Off:
        map = {};
        break;
    case Scaling::Kind::Anisotropic:
        map.scaleX = size.x / (s.xMax - s.xMin);
        map.scaleY = size.y / (s.yMax - s.yMin);
        map.offsetX = m_state.p1.x - s.xMin * map.scaleX;
        map.offsetY = m_state.p1.y - s.yMin * map.scaleY;
        break;
    case Scaling::Kind::Isotropic: {
        const double x = size.x / (s.xMax - s.xMin);
        const double y = size.y / (s.yMax - s.yMin);
        const double scale = std::min(std::abs(x), std::abs(y));
        const double spareX = std::abs(size.x) - scale * std::abs(s.xMax - s.xMin);
        const double spareY = std::abs(size.y) - scale * std::abs(s.yMax - s.yMin);
        map.scaleX = scale * sign(x);
        map.scaleY = scale * sign(y);
        map.offsetX = m_state.p1.x + sign(size.x) * spareX * s.left / 100 - s.xMin * map.scaleX;
        map.offsetY = m_state.p1.y + sign(size.y) * spareY * s.bottom / 100 - s.yMin * map.scaleY;
        break;
    }
    case Scaling::Kind::PointFactor:
        map.scaleX = s.xMax;
        map.scaleY = s.yMax;
        map.offsetX = m_state.p1.x - s.xMin * map.scaleX;
        map.offsetY = m_state.p1.y - s.yMin * map.scaleY;
        break;
    }
    m_clipIsStale = true;
}

void Machine::setDefaultScalingPoints(Point p1, Point p2)
{
    m_hasDefaultScalingPoints = true;
    m_defaultP1 = p1;
    m_defaultP2 = p2;
}

void Machine::defaultScalingPoints()
{
    Point p1;
    Point p2 = rotatedFrameSize();
    if (m_hasDefaultScalingPoints) {
        p1 = m_defaultP1;
        p2 = m_defaultP2;
    }
    setScalingPoints(p1, &p2);
}

void Machine::setScalingPoints(Point p1, const Point* p2)
{
    const Point moved = p1 - m_state.p1;
    Point other = p2 ? *p2 : m_state.p2 + moved;
    if (other.x == p1.x)
        other.x += 1;
    if (other.y == p1.y)
        other.y += 1;
    m_state.p1 = p1;
    m_state.p2 = other;
    updateScaling();
}

void Machine::setDefaults()
{
    State& s = m_state;
    s.isAbsolute = true;
    freezeHatching();
    s.scaling = Scaling {};
    updateScaling();
    s.window = Window {};
    m_clipIsStale = true;
    m_isPolygonMode = false;
    m_polygon.clear();
    s.lineType = LineType {};
    s.linePatterns = {};
    s.lineAttributes = LineAttributes {};
    m_hasRememberedLineType = false;
    s.fill = FillType {};
    s.rasterFills = {};
    s.anchor = {};
    s.screened = ScreenedVectors {};
    s.isTransparent = true;
    s.symbol = -1;
    s.text = TextState {};
    s.carriageReturn = s.pen;
    m_hasFont = false;
}

void Machine::initialise()
{
    State& s = m_state;
    s.isPenDown = false;
    m_hasDotToDraw = false;
    s.pen = {};
    s.selectedPen = m_defaultPen;
    s.quarterTurns = 0;
    updateFrame();
    setDefaults();
    defaultScalingPoints();
    s.widthsAreRelative = false;
    s.penWidths.clear();
    s.chordIsDeviation = false;
    m_linePhase = 0;
}

void Machine::initialiseCommand()
{
    initialise();
    if (m_listener)
        m_listener->pointsDefaulted();
    m_state.blackReference = State {}.blackReference;
    m_state.whiteReference = State {}.whiteReference;
    m_host.setRasterOperation(kDefaultRasterOperation);
    m_host.setGridCentred(false);
    constexpr std::size_t kDefaultPens = 8;
    m_host.newPalette(kDefaultPens);
    defaultPalette(0);
}

void Machine::defaultsCommand()
{
    setDefaults();
    m_host.setRasterOperation(kDefaultRasterOperation);
}

void Machine::inputPoints()
{
    if (m_operands.empty()) {
        defaultScalingPoints();
        if (m_listener)
            m_listener->pointsDefaulted();
        return;
    }
    if (operandCount() < 2)
        return;
    const Point p1 { std::round(operand(0)), std::round(operand(1)) };
    const Point p2 { std::round(operand(2)), std::round(operand(3)) };
    setScalingPoints(p1, operandCount() >= 4 ? &p2 : nullptr);
    if (m_listener && operandCount() >= 4)
        m_listener->plotWindow(false, p1, p2);
}

void Machine::inputRelativePoints()
{
    const Point size = rotatedFrameSize();
    if (m_operands.empty()) {
        defaultScalingPoints();
        return;
    }
    if (operandCount() < 2)
        return;
    const auto place = [&](std::size_t i) {
        return Point { clampedReal(i) * size.x / 100, clampedReal(i + 1) * size.y / 100 };
    };
    const Point p2 = place(2);
    setScalingPoints(place(0), operandCount() >= 4 ? &p2 : nullptr);
}

void Machine::scale()
{
    Scaling scaling;
    if (!m_operands.empty()) {
        if (operandCount() < 4)
            return;
        const int type = clampedInteger(4, 0);
        if (type < 0 || type > 2)
            return;
        scaling.kind = type == 0 ? Scaling::Kind::Anisotropic
            : type == 1          ? Scaling::Kind::Isotropic
                                 : Scaling::Kind::PointFactor;
        scaling.xMin = operand(0);
        scaling.xMax = operand(1);
        scaling.yMin = operand(2);
        scaling.yMax = operand(3);
        const bool isDegenerate = type == 2 ? scaling.xMax == 0 || scaling.yMax == 0
                                            : scaling.xMin == scaling.xMax || scaling.yMin == scaling.yMax;
        if (isDegenerate)
            return;
        if (operandCount() >= 7) {
            scaling.left = std::clamp(operand(5), 0.0, 100.0);
            scaling.bottom = std::clamp(operand(6), 0.0, 100.0);
        }
        if (m_listener)
            m_listener->scaled();
    }
    freezeWindow();
    if (scaling.kind == Scaling::Kind::Off)
        freezeHatching();
    m_state.scaling = scaling;
    updateScaling();
}

/// A window in user units stays where it is when the units change.
void Machine::freezeWindow()
{
    Window& window = m_state.window;
    if (window.kind != Window::Kind::UserUnits)
        return;
    window.kind = Window::Kind::PlotterUnits;
    window.corner1 = m_userToPlotter.apply(window.corner1);
    window.corner2 = m_userToPlotter.apply(window.corner2);
}

/// Hatching in user units keeps its distance when scaling is switched off.
void Machine::freezeHatching()
{
    for (Hatching* hatching : { &m_state.fill.parallel, &m_state.fill.cross }) {
        if (hatching->unit != Hatching::Unit::UserUnits)
            continue;
        hatching->spacing *= std::abs(m_userToPlotter.scaleX);
        hatching->unit = Hatching::Unit::PlotterUnits;
    }
}

void Machine::inputWindow()
{
    if (m_operands.empty()) {
        m_state.window = Window {};
    } else if (operandCount() >= 4) {
        const bool isUser = m_state.scaling.kind != Scaling::Kind::Off;
        m_state.window.kind = isUser ? Window::Kind::UserUnits : Window::Kind::PlotterUnits;
        m_state.window.corner1 = { operand(0), operand(1) };
        m_state.window.corner2 = { operand(2), operand(3) };
        if (m_listener) {
            const auto plotter = [&](Point p) { return isUser ? m_userToPlotter.apply(p) : p; };
            m_listener->plotWindow(true, plotter(m_state.window.corner1), plotter(m_state.window.corner2));
        }
    }
    m_clipIsStale = true;
}

void Machine::rotate()
{
    const double angle = operand(0);
    const int turns = static_cast<int>(std::lround(std::clamp(angle, -1.0, 1000.0) / 90));
    if (angle < 0 || turns > 3 || std::abs(turns * 90 - angle) >= 0.5)
        return;
    const Point pen = m_plotterToPage.apply(m_state.pen);
    m_state.quarterTurns = turns;
    updateFrame();
    m_state.pen = m_plotterToPage.inverted().apply(pen);
    m_state.carriageReturn = m_state.pen;
}

} // namespace quillrip::hpgl
