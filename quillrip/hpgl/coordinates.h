#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/hpgl/host.h"
#include "quillrip/hpgl/state.h"
#include "quillrip/hpgl/surface.h"

#include <cstdint>

namespace quillrip::hpgl {

/// Where places lie: user units, plotter units of the rotated system, page space (decipoints), and the rectangles that
/// tie them together: the host's picture frame, P1 and P2, the window.
class Coordinates {
public:
    void setFrame(const PictureFrame& frame);
    const PictureFrame& frame() const { return m_frame; }
    Point frameSize() const; ///< of the plot at RO0, plotter units
    Point rotatedFrameSize() const;

    // P1 and P2, plotter units
    /// Other defaults than the frame's corners, in force from the next useDefaultPoints().
    void setDefaultPoints(Point p1, Point p2);
    void useDefaultPoints();
    /// Without `p2` that one moves along with P1. Points that share a coordinate are moved apart.
    void setPoints(Point p1, const Point* p2);
    Point p1() const { return m_p1; }
    Point p2() const { return m_p2; }
    double diagonal() const; ///< from P1 to P2

    void setScaling(const Scaling& scaling);
    bool isScaled() const { return m_scaling.kind != Scaling::Kind::Off; }

    void openWindow() { changeWindow({}); } ///< to all that the frame shows
    /// Corners in the units in force; the window stays where it is when those change.
    void setWindow(Point corner1, Point corner2);

    int quarterTurns() const { return m_quarterTurns; } ///< RO / 90
    void rotate(int quarterTurns);

    Point toPlotter(Point user) const { return m_userToPlotter.apply(user); }
    Point vectorToPlotter(Point user) const { return m_userToPlotter.applyVector(user); }
    Point vectorToUser(Point plotter) const { return m_userToPlotter.revertVector(plotter); }
    Point toPage(Point plotter) const { return m_plotterToPage.apply(plotter); }
    Point vectorToPage(Point plotter) const { return m_plotterToPage.applyVector(plotter); }
    Point fromPage(Point page) const { return m_plotterToPage.inverted().apply(page); }
    const Matrix& plotterToPage() const { return m_plotterToPage; }
    const Matrix& frameToPage() const { return m_frameToPage; } ///< at RO0
    /// Plotter units to a user unit along the x axis, without its sign.
    double userUnit() const;
    /// User units turn the other way than plotter units.
    bool isMirrored() const { return m_userToPlotter.scaleX * m_userToPlotter.scaleY < 0; }
    /// A metric length on the page, by the smaller of the frame's scale factors.
    double toDecipoints(double plotterUnits) const
    {
        return plotterUnits * m_plotScale * kDecipointsPerInch / kPlotterUnitsPerInch;
    }

    /// What of the page may be marked, apart from the picture frame's own edges: the host's limits and the window.
    Rect window() const;
    /// Another number after every change that moves the window or the frame.
    std::uint64_t revision() const { return m_revision; }

private:
    /// x' = scale x + offset for both axes: user units to plotter units.
    struct UserToPlotter {
        double scaleX = 1;
        double scaleY = 1;
        double offsetX = 0;
        double offsetY = 0;

        Point apply(Point user) const { return { user.x * scaleX + offsetX, user.y * scaleY + offsetY }; }
        Point applyVector(Point user) const { return { user.x * scaleX, user.y * scaleY }; }
        Point revertVector(Point plotter) const { return { plotter.x / scaleX, plotter.y / scaleY }; }
    };

    void updateScaling();
    void changeWindow(const Window& window);
    void freezeWindow();

    PictureFrame m_frame;
    Matrix m_frameToPage;
    Matrix m_plotterToPage;
    double m_plotScale = 1;
    int m_quarterTurns = 0;
    Point m_p1;
    Point m_p2;
    bool m_hasDefaultPoints = false;
    Point m_defaultP1;
    Point m_defaultP2;
    Scaling m_scaling;
    UserToPlotter m_userToPlotter;
    Window m_window;
    std::uint64_t m_revision = 0;
};

} // namespace quillrip::hpgl
