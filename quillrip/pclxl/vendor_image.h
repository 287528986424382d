#pragma once

#include "quillrip/pclxl/fast_raster.h"
#include "quillrip/pclxl/page_image.h"
#include "quillrip/pclxl/vendor_raster.h"

#include <cstddef>

namespace quillrip::pclxl {

/// An image of vendor raster between its beginning and its end.
struct VendorImage {
    PageImage image;
    StripCoding coding;
};

/// A page of fast raster: one image, to which each strip adds rows, so that strips meet without seams.
struct FastRasterImage {
    PageImage image;
    int resolution = 0; ///< dots per inch
    std::size_t rowBytes = 0;
    int x = 0; ///< dots

    bool takes(const FastRasterStrip& strip) const
    {
        return strip.resolution == resolution && strip.rowBytes == rowBytes && strip.x == x;
    }
};

} // namespace quillrip::pclxl
