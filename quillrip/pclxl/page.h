#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/pclxl/environment.h"
#include "quillrip/pclxl/status.h"
#include "quillrip/pclxl/tag_reader.h"
#include "quillrip/raster/page_device.h"

namespace quillrip::pclxl {

/// The page between BeginPage and EndPage: the sheet, the canvas it is drawn on, and the user space it starts with.
class Page {
public:
    explicit Page(PageDevice& device)
        : m_device(device)
    {
    }

    /// IllegalAttributeValue when units and sheet give no matrix to compute with; LimitExceeded, OutputFailed.
    Status open(const SheetRequest& sheet, Point unitsPerInch);
    bool isOpen() const { return m_isOpen; }
    /// Hands the page over to be printed; close() follows.
    Status deliver();
    /// No page is open any more, whatever became of it.
    void close();

    // The rest holds of an open page.
    const SheetRequest& sheet() const { return m_sheet; }
    Painter& painter() const { return *m_canvas.painter; }
    const PageCanvas& canvas() const { return m_canvas; }
    PixelFormat format() const { return m_canvas.format; }
    Resolution resolution() const { return m_canvas.resolution; }
    const PixelRect& bounds() const { return m_bounds; }
    const Matrix& initialMatrix() const { return m_initialMatrix; } ///< user units to device pixels

    /// Gives the handler PCL 5 data to draw on this page.
    Status passThrough(PassThroughHandler& handler, EmbeddedData& data);

private:
    void endPassThrough();

    PageDevice& m_device;
    bool m_isOpen = false;
    SheetRequest m_sheet;
    PageCanvas m_canvas;
    PixelRect m_bounds;
    Matrix m_initialMatrix;
    PassThroughHandler* m_passThrough = nullptr; ///< that has begun this page
};

} // namespace quillrip::pclxl
