#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/base/units.h"
#include "quillrip/emf/metafile_header.h"

#include <cstdint>

namespace quillrip::emf {

enum class MapMode : std::uint32_t {
    Text = 1,
    LowMetric,
    HighMetric,
    LowEnglish,
    HighEnglish,
    Twips,
    Isotropic,
    Anisotropic,
};

/// From logical units to pixels of the reference device: world transform, then window to viewport. A value, saved and
/// restored with the device context.
class Coordinates {
public:
    explicit Coordinates(const MetafileHeader& header);

    /// Unknown numbers are ignored. The fixed modes have their own extents.
    void setMapMode(std::uint32_t mode);
    void setWindowOrigin(Point origin);
    void setViewportOrigin(Point origin);
    /// Extents count in the free modes only; those of 0 are ignored.
    void setWindowExtent(Size extent);
    void setViewportExtent(Size extent);
    void scaleWindow(double factorX, double factorY);
    void scaleViewport(double factorX, double factorY);
    /// x runs to the left from the right edge of the device (SETLAYOUT).
    void setMirrored(bool isMirrored);

    /// A transform with numbers that no picture needs is ignored: false.
    bool setWorld(const Matrix& world);
    /// `first`: before what is there; otherwise behind it.
    bool multiplyWorld(const Matrix& factor, bool first);

    /// Of the reference device, across.
    double dotsPerInch() const { return m_pixelsPerMillimeter.width * kMillimetresPerInch; }
    const Matrix& world() const { return m_world; }
    /// May not be invertible.
    const Matrix& toReference() const { return m_toReference; }
    /// Window to viewport without the world transform.
    const Matrix& pageToReference() const { return m_pageToReference; }

private:
    bool isFree() const { return m_mode == MapMode::Isotropic || m_mode == MapMode::Anisotropic; }
    void setFixed(double unitMillimeters);
    void update();

    Size m_device;
    Size m_pixelsPerMillimeter;
    MapMode m_mode = MapMode::Text;
    Point m_windowOrigin;
    Point m_viewportOrigin;
    Size m_windowExtent { 1, 1 };
    Size m_viewportExtent { 1, 1 };
    bool m_isMirrored = false;
    Matrix m_world;
    Matrix m_pageToReference;
    Matrix m_toReference;
};

} // namespace quillrip::emf
