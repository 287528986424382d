#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/base/page_bitmap.h"
#include "quillrip/raster/painter.h"

#include <vector>

namespace quillrip {

/// A sheet that a page may turn out to be printed on.
struct SheetCandidate {
    double width = 0; ///< decipoints, as in SheetRequest
    double height = 0;
    double left = 0; ///< decipoints that it loses at the left edge of the page as requested
};

/// The sheet that a page is printed on and how the page lies on it.
struct SheetRequest {
    double width = 6120; ///< decipoints across the sheet as fed, short edge first (Letter: 6120 x 7920)
    double height = 7920; ///< decipoints along the sheet
    /// Quarter turns counter-clockwise of the page on the sheet: 0 portrait, 1 landscape, 2 reverse portrait,
    /// 3 reverse landscape. The image shows the page upright.
    int orientation = 0;
    /// Longer sheets, the best first, for a portrait page whose job does not name the sheet: the page becomes the first
    /// on which everything lies that overruns the sheet above.
    std::vector<SheetCandidate> candidates {};
};

/// Where a page is drawn. Page space is the whole sheet turned to reading order: origin at its top left corner as
/// read, x right, y down, in decipoints (1/720 inch).
struct PageCanvas {
    Painter* painter = nullptr; ///< valid until endPage()
    Matrix pageToDevice;
    PixelFormat format = PixelFormat::Rgb24;
    /// Device pixels per inch along page space's x and y axes.
    Resolution resolution;
};

/// What interpreters print to. Pages come one after the other.
class PageDevice {
public:
    virtual ~PageDevice() = default;

    /// The canvas that beginPage() would give, without its painter: for whoever needs the resolution before a mark.
    virtual PageCanvas preview(const SheetRequest& sheet) const = 0;
    /// Starts a white page. Anything but Done ends the job.
    [[nodiscard]] virtual RunStatus beginPage(const SheetRequest& sheet, PageCanvas& canvas) = 0;
    /// Delivers the page. Anything but Done ends the job.
    [[nodiscard]] virtual RunStatus endPage() = 0;
};

} // namespace quillrip
