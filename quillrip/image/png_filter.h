#pragma once

#include "quillrip/base/page_bitmap.h"
#include "quillrip/image/light_rows.h"

#include <cstdint>
#include <vector>

namespace quillrip {

/// The filters of PNG that we use, with the numbers that rows start with.
enum class PngFilter : std::uint8_t { None = 0, Up = 2, Paeth = 4 };

/// A page's rows as PNG wants them compressed: the number of a filter, then the row's bytes after that filter.
class PngRowFilter {
public:
    explicit PngRowFilter(const PageBitmap& page);

    /// 1 + page.rowBytes() bytes to `out`. The page's first row is never filtered. Repeated white rows have the filter
    /// Up, whatever `filter` says: then all bytes behind the first are 0. Bilevel pages have no Paeth.
    void apply(int y, PngFilter filter, std::uint8_t* out);

    /// True for a white row below another one.
    static bool isRepeatedWhite(const PageBitmap& page, int y)
    {
        return y > 0 && page.extent(y).empty() && page.extent(y - 1).empty();
    }

private:
    const PageBitmap& m_page;
    std::size_t m_rowBytes;
    std::vector<std::uint8_t> m_white; ///< stands for rows that the bitmap need not be asked for
    int m_knownRow = -1; ///< whose ink m_known is: the next row asks for it again, as the one above
    ByteExtent m_known;
};

} // namespace quillrip
