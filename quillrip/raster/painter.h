#pragma once

#include "quillrip/base/page_bitmap.h"
#include "quillrip/base/work_meter.h"
#include "quillrip/raster/compose/paint_state.h"
#include "quillrip/raster/glyph_mask.h"
#include "quillrip/raster/images/image_painter.h"
#include "quillrip/raster/paths/path.h"
#include "quillrip/raster/paths/stroke_style.h"
#include "quillrip/raster/scan/clip_region.h"

#include <memory>

namespace quillrip {

class Compositor;
class DeviceTexture;
class EdgeList;

/// Which device pixels a filled shape takes when the page is bilevel (grey and RGB pages take exact area coverage).
enum class PixelRule {
    Centre, ///< those whose centre lies inside, and, for shapes that would vanish, the nearest pixel
    Touched, ///< all that the shape touches: dots on grid intersections, n steps cover n + 1 dots
};

/// Everything that marks a page, for all languages. Coordinates are device pixels, x right, y down; the pixel (x, y)
/// covers the unit square from (x, y) to (x + 1, y + 1). Everything is clipped to the bitmap and to the state's clip.
class Painter {
public:
    /// `work` is charged with all that is drawn; once it is exhausted, marks stop, some in their middle.
    explicit Painter(PageBitmap& page, std::shared_ptr<WorkMeter> work = std::make_shared<WorkMeter>());
    ~Painter();
    Painter(const Painter&) = delete;
    Painter& operator=(const Painter&) = delete;

    PageBitmap& page() { return m_page; }
    const PageBitmap& page() const { return m_page; }
    WorkMeter& work() { return *m_work; }

    /// Whole pixels, all ink.
    void fillRect(const PixelRect& rect, const PaintState& state);

    void fillPath(const Path& devicePath, FillRule rule, const PaintState& state, PixelRule pixels = PixelRule::Centre);

    /// The pen is round or square in user space: `style` gives widths in user units, and the matrix may stretch it.
    /// A line thinner than a device pixel is drawn one pixel wide. The stroke is the union of its parts: where it
    /// crosses itself it is painted once. Lines that only run along the axes are moved by less than half a pixel so
    /// that they are crisp.
    void strokePath(
        const Path& userPath, const Matrix& userToDevice, const StrokeStyle& style, const PaintState& state);

    /// A glyph's mask with its reference point at device pixel (x, y).
    void drawMask(const GlyphMask& mask, int x, int y, const PaintState& state);

    /// Rows of an image, one after the other. Null when nothing of the image can be seen (the rows may then be
    /// dropped). The painter, the page and `state.clip` must outlive it.
    std::unique_ptr<ImagePainter> beginImage(const ImageGeometry& geometry, const PaintState& state);

private:
    void paintShape(const Path& devicePath, FillRule rule, PixelRule pixels, Compositor& compositor);
    /// For one mark. It stays for the next ones that have the same state: glyph after glyph.
    Compositor& compositorFor(const PaintState& state);
    std::unique_ptr<Compositor> makeCompositor(const PaintState& state);

    PageBitmap& m_page;
    std::shared_ptr<WorkMeter> m_work;
    std::shared_ptr<const DeviceTexture> m_texture; ///< of the last state: mostly the next one's too
    PaintState m_state;
    std::unique_ptr<Compositor> m_compositor; ///< for m_state; null at the start
    std::unique_ptr<EdgeList> m_strokeEdges; ///< the memory of the largest stroke; null before the first
};

} // namespace quillrip
