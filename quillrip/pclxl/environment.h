#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/base/diagnostics.h"
#include "quillrip/raster/page_device.h"

namespace quillrip::pclxl {

/// Runs the PCL 5 data that a PassThrough operator carries. PCL XL knows the page; what PCL 5 means is known elsewhere.
class PassThroughHandler {
public:
    virtual ~PassThroughHandler() = default;
    /// Before the first data of a page: the page's sheet, and the canvas that the page is being drawn on. The handler
    /// starts from PCL 5's default environment and neither begins nor ends a page.
    virtual void beginPage(const SheetRequest& sheet, const PageCanvas& canvas) = 0;
    /// One run of PCL 5 bytes; it continues the run before it on the same page.
    virtual RunStatus data(ByteView bytes) = 0;
    /// The page is about to be delivered, or dropped.
    virtual void endPage() = 0;
};

/// What the job's wrapper or the program sets before the stream speaks for itself.
struct Environment {
    double paperWidth = 6120; ///< decipoints, portrait; for pages whose stream names no medium (Letter)
    double paperHeight = 7920;
    int orientation = 0; ///< as in SheetRequest; for pages without an Orientation
    PassThroughHandler* passThrough = nullptr; ///< not owned; null: PassThrough data is skipped with a warning
};

} // namespace quillrip::pclxl
