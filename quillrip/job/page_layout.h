#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/base/page_bitmap.h"
#include "quillrip/raster/page_device.h"

#include <cstdint>
#include <optional>

namespace quillrip {

/// The two products of a fax: pixels down the page for the same 1,728 across.
enum class FaxMode : std::uint8_t { None, Normal, Fine };

/// What decides how many pixels a page gets, and of which kind.
struct PageSettings {
    PixelFormat format = PixelFormat::Rgb24;
    Resolution resolution { 300, 300 };
    /// Exact size of every page's image in pixels, whatever its sheet; the resolution follows. One alone keeps the
    /// page's proportions.
    std::optional<int> width;
    std::optional<int> height;
    /// Pages of class F (RFC 2306, profile F): the above then counts for nothing.
    FaxMode fax = FaxMode::None;
};

/// How one sheet becomes an image.
struct PageLayout {
    double width = 0; ///< of the image, whole pixels; a double since a job can ask for any size
    double height = 0;
    PixelFormat format = PixelFormat::Rgb24;
    Matrix pageToDevice; ///< decipoints of the page as read to the image's pixels
    Resolution pageResolution; ///< device pixels per inch along the page's own axes
    Resolution imageResolution; ///< device pixels per inch across and down the image
    int quarterTurns = 0; ///< counter-clockwise, of the page as read in the image
};

/// In reading order; a fax keeps the sheet's short edge across, so its landscape pages lie on their side. A fax of a
/// sheet about as wide as Letter is centred between its edges (some pixels of Letter's white edges are cut); a wider
/// sheet is reduced so that it is there whole.
PageLayout layoutOf(const PageSettings& settings, const SheetRequest& sheet);

} // namespace quillrip
