#pragma once

#include "quillrip/base/page_bitmap.h"

#include <cstdint>
#include <vector>

namespace quillrip {

/// The filters of PNG that we use, with the numbers that rows start with.
enum class PngFilter : std::uint8_t { None = 0, Up = 2, Paeth = 4 };

/// A page's rows as PNG wants them compressed: the number of a filter, then the row's bytes after that filter.
class PngRowFilter {
public:
    explicit PngRowFilter(const PageBitmap& page);

    /// 1 + page.rowBytes() bytes; valid until the next call. Up is used for repeated white rows only, whatever
    /// `filter` says: then all bytes behind the first are 0.
    const std::uint8_t* filtered(int y, PngFilter filter);

    /// True for a white row below another one.
    static bool isRepeatedWhite(const PageBitmap& page, int y)
    {
        return y > 0 && page.extent(y).empty() && page.extent(y - 1).empty();
    }

private:
    void clear();
    void applyPaeth(int y);

    const PageBitmap& m_page;
    std::size_t m_rowBytes;
    std::vector<std::uint8_t> m_white; ///< stands for rows that the bitmap need not be asked for
    std::vector<std::uint8_t> m_filtered;
    std::size_t m_dirtyLeft = 0; ///< the bytes of m_filtered that may differ from 0
    std::size_t m_dirtyRight = 0;
};

} // namespace quillrip
