#pragma once

#include "quillrip/base/page_bitmap.h"

#include <cstddef>
#include <cstdint>

namespace quillrip {

// A page's rows store ink (0 = white); most files want light (0 = black). None of these reads past the row's pixels,
// and rows that were never marked are not read at all: reading them would make the system map their memory.

/// The row as light, page.rowBytes() bytes; bits behind the last pixel are 0.
void lightRow(const PageBitmap& page, int y, std::uint8_t* light);

/// The same with a byte a pixel, 0 or 255, of a bilevel page: page.width() bytes.
void lightRowAsGray(const PageBitmap& page, int y, std::uint8_t* gray);

/// The same of an Rgb24 page with the pixels' bytes as blue, green, red.
void lightRowAsBgr(const PageBitmap& page, int y, std::uint8_t* bgr);

/// The same of an Rgb24 page as three runs of page.width() bytes: red, green, blue. Each run starts `planeStride`
/// bytes after the one before.
void lightRowAsPlanes(const PageBitmap& page, int y, std::uint8_t* planes, std::size_t planeStride);

/// The bytes of a row that hold ink, half open, nothing white at either end; both 0 for a white row. Only what the
/// painter said to have touched is looked at.
struct ByteExtent {
    std::size_t left = 0;
    std::size_t right = 0;
    bool empty() const { return left >= right; }
};
ByteExtent inkExtent(const PageBitmap& page, int y);

} // namespace quillrip
