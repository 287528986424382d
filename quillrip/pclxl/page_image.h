#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/pclxl/drawing.h"
#include "quillrip/pclxl/image_source.h"
#include "quillrip/raster/images/image_painter.h"

#include <cstdint>
#include <memory>

namespace quillrip::pclxl {

/// An image that is being painted on the page, row by row.
class PageImage {
public:
    /// The source pixels cover `size` user units from `corner` on. What the graphics state says now holds for the whole
    /// image.
    PageImage(
        ImageSource source, Point corner, Point size, const GraphicsState& state, const Page& page, Drawing& drawing);

    ImageSource& source() { return m_source; }
    /// Rows come from here on; those left out stay unpainted.
    void goToRow(std::uint32_t row);
    /// A row of the source, as its layout has it.
    void paintRow(const std::uint8_t* pixels);
    void finish();

private:
    ImageSource m_source;
    Painter& m_painter;
    Matrix m_imageToDevice; ///< source pixels to device pixels
    PaintState m_paint;
    bool m_isVisible = false; ///< the destination is no point or line
    std::unique_ptr<ImagePainter> m_rows; ///< null while no row has come, or when nothing can be seen
    std::int64_t m_nextRow = -1; ///< the row that the painter expects; -1: no row has come
};

} // namespace quillrip::pclxl
