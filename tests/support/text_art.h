#pragma once

#include "quillrip/base/page_bitmap.h"

#include <string>

namespace quillrip::test {

/// A picture of some pixels, a line of text for each row: '.' white, '#' black, '+' anything between. Pixels outside
/// the bitmap show as ' '.
std::string textArt(const PageBitmap& page, const PixelRect& rect);
std::string textArt(const PageBitmap& page);

/// Pixels that are fully black.
std::size_t blackPixelCount(const PageBitmap& page);

} // namespace quillrip::test
