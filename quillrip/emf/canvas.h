#pragma once

#include "quillrip/emf/clip.h"
#include "quillrip/emf/paint.h"
#include "quillrip/emf/state.h"
#include "quillrip/raster/painter.h"

#include <cstdint>

namespace quillrip::emf {

/// Where a metafile is drawn: the painter, the place of the reference device's pixels on it, and the clip. Paths come
/// in reference pixels; fills cover them as they are, strokes lie half a pixel further right and down, since a
/// coordinate names the middle of a pixel there.
class Canvas {
public:
    /// What an area comes from. Rectangles of shapes cover whole pixels; those of paths can be parts of letters.
    enum class Origin : std::uint8_t { Shape, DrawnPath };

    /// `limit`: beyond it nothing is painted; null: the page. `dc` is the context that holds at the time of drawing.
    Canvas(
        Painter& painter, PixelFormat format, const Matrix& referenceToDevice, Region limit, const DeviceContext& dc);

    Painter& painter() { return m_painter; }
    PixelFormat format() const { return m_format; }
    PixelRect bounds() const { return m_painter.page().bounds(); }
    const Matrix& toDevice() const { return m_toDevice; }
    Matrix logicalToDevice() const { return m_dc.coordinates.toReference() * m_toDevice; }
    PaintMaker& paints() { return m_paints; }

    /// The EMF+ clip that holds behind a GetDC; null: none.
    void setOuterClip(Region clip);
    /// All clips together; null: the whole page.
    const Region& clip();
    /// Pixels whose centres lie inside a path in device pixels.
    Region regionOf(const Path& devicePath, FillRule rule) const;

    /// `state` without its clip, which is the canvas's own.
    void fill(const Path& path, FillRule rule, PaintState state, Origin origin = Origin::Shape);
    /// With the selected brush and the binary operation.
    void fillWithBrush(const Path& path, FillRule rule, Origin origin = Origin::Shape);
    /// With the selected pen and the binary operation.
    void strokeWithPen(const Path& path);
    /// The selected pen along the edge of an area made by widened().
    void strokeWidened(const Path& area);
    /// Both, one after the other. An operation that combines with the page meets each pixel once: the area ends where
    /// the line begins.
    void fillAndStroke(const Path& area, const Path& outline, FillRule rule, Origin origin = Origin::Shape);
    /// The area that a stroke with the selected pen would cover, in reference pixels (WIDENPATH). Not an outline in one
    /// piece: to be filled non-zero.
    Path widened(const Path& path) const;
    void fillRegion(const Region& region, PaintState state);

    const LogicalPen& pen() const { return std::get<LogicalPen>(*m_dc.pen); }
    const Brush& brush() const { return std::get<Brush>(*m_dc.brush); }
    FillRule fillRule() const { return m_dc.fillsAlternate ? FillRule::EvenOdd : FillRule::NonZero; }
    /// How far half of the selected pen reaches, logical units: what PS_INSIDEFRAME shrinks boxes by.
    double insetOfPen() const;

private:
    struct Stroke {
        StrokeStyle style;
        Matrix toReference; ///< pen space to reference pixels
        bool hasGaps = false;
        bool fillsGaps = false; ///< with the background colour
    };
    bool makeStroke(Stroke& stroke) const;
    /// In the pen's space, the ends on whole pixels where the line is made of them.
    Path inPenSpace(const Stroke& stroke, const Path& path) const;
    Matrix penToDevice(const Stroke& stroke) const { return stroke.toReference * m_half * m_toDevice; }
    /// `limit`: null, or beyond it nothing is painted.
    void stroke(const Stroke& stroke, const Path& path, const Region& limit);
    Region strokeRegion(const Stroke& stroke, const StrokeStyle& style, const Path& path) const;
    /// Whole pixels, as operations that combine with the page need them.
    Region areaOf(const Path& path, FillRule rule) const;
    bool hasLine() const;
    bool isHairline(const LogicalPen& pen) const;
    double hairWidth(const LogicalPen& pen) const; ///< reference pixels

    Painter& m_painter;
    PixelFormat m_format;
    Matrix m_toDevice;
    Matrix m_half; ///< reference pixels: from where a coordinate lies to the middle of its pixel
    Region m_limit;
    Region m_outer;
    const DeviceContext& m_dc;
    PaintMaker m_paints;
    Region m_clip; ///< of the three below
    Region m_clipPart;
    Region m_metaPart;
    bool m_isClipKnown = false;
};

/// Edges of device pixels nearest to a rectangle's, so that neighbours meet.
PixelRect nearestPixels(Point corner, Point opposite);

} // namespace quillrip::emf
