#pragma once

#include "quillrip/base/page_bitmap.h"

#include <cstdint>
#include <vector>

namespace quillrip {

/// Appends rows of a bilevel page, coded as ITU-T T.6 says (Group 4), with the end of block behind them and filled to
/// whole bytes, highest bit first. The first row refers to a white one. `top` and `rows` lie inside the page.
void encodeGroup4(const PageBitmap& page, int top, int rows, std::vector<std::uint8_t>& out);

} // namespace quillrip
