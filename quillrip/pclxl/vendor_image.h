#pragma once

#include "quillrip/pclxl/page_image.h"
#include "quillrip/pclxl/vendor_raster.h"

namespace quillrip::pclxl {

/// An image of vendor raster between its beginning and its end.
struct VendorImage {
    PageImage image;
    StripCoding coding;
};

} // namespace quillrip::pclxl
