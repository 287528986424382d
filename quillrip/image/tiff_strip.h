#pragma once

#include "quillrip/base/page_bitmap.h"
#include "quillrip/image/tiff_layout.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quillrip {

/// Appends one strip of a page, compressed as its layout says, to `out`; an empty string, or what went wrong. Does not
/// need the TIFF file: strips can be encoded on any thread.
std::string encodeTiffStrip(
    const PageBitmap& page, const TiffLayout& layout, std::uint32_t strip, std::vector<std::uint8_t>& out);

/// Replaces `out` by rows of a page as the file has them before they are compressed.
void fillTiffRows(const PageBitmap& page, const TiffLayout& layout, std::uint32_t top, std::uint32_t rows,
    std::vector<std::uint8_t>& out);

} // namespace quillrip
