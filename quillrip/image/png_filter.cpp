#include "quillrip/image/png_filter.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace quillrip {

namespace {

/// Paeth's predictor of PNG: the neighbour nearest to left + above - aboveLeft. It chooses the same neighbour from
/// ink as from light, and light minus predicted light is predicted ink minus ink; so the page's rows are filtered as
/// they are. Written without branches, so that it is computed many bytes at a time.
void paeth(const std::uint8_t* row, const std::uint8_t* above, std::size_t from, std::size_t to,
    std::size_t bytesPerPixel, std::uint8_t* out)
{
    const std::uint8_t* rowLeft = row - bytesPerPixel;
    const std::uint8_t* aboveLeft = above - bytesPerPixel;
    for (std::size_t i = from; i < to; ++i) {
        const auto a = static_cast<std::int16_t>(rowLeft[i]);
        const auto b = static_cast<std::int16_t>(above[i]);
        const auto c = static_cast<std::int16_t>(aboveLeft[i]);
        const auto bc = static_cast<std::int16_t>(b - c);
        const auto ac = static_cast<std::int16_t>(a - c);
        const auto both = static_cast<std::int16_t>(bc + ac);
        const auto pa = static_cast<std::int16_t>(bc < 0 ? -bc : bc);
        const auto pb = static_cast<std::int16_t>(ac < 0 ? -ac : ac);
        const auto pc = static_cast<std::int16_t>(both < 0 ? -both : both);
        const std::int16_t aboveOrCorner = pb <= pc ? b : c;
        const std::int16_t nearest = static_cast<std::int16_t>((pa <= pb) & (pa <= pc)) != 0 ? a : aboveOrCorner;
        out[i] = static_cast<std::uint8_t>(nearest - row[i]);
    }
}

} // namespace

PngRowFilter::PngRowFilter(const PageBitmap& page)
    : m_page(page)
    , m_rowBytes(page.rowBytes())
    , m_white(m_rowBytes)
{
}

void PngRowFilter::apply(int y, PngFilter filter, std::uint8_t* out)
{
    if (y == 0)
        filter = PngFilter::None;
    else if (isRepeatedWhite(m_page, y))
        filter = PngFilter::Up;
    *out++ = static_cast<std::uint8_t>(filter);
    if (filter == PngFilter::None)
        return lightRow(m_page, y, out);

    if (m_knownRow != y - 1)
        m_known = inkExtent(m_page, y - 1);
    const ByteExtent there = m_known;
    m_known = inkExtent(m_page, y);
    m_knownRow = y;
    const ByteExtent here = m_known;
    const std::size_t bytesPerPixel = m_page.format() == PixelFormat::Rgb24 ? 3 : 1;
    const std::uint8_t* row = here.empty() ? m_white.data() : m_page.row(y);
    const std::uint8_t* above = there.empty() ? m_white.data() : m_page.row(y - 1);
    // Where this row, the one above and the pixels to their left are white, the result is 0.
    const std::size_t left = here.empty() ? there.left : there.empty() ? here.left : std::min(here.left, there.left);
    const bool isPaeth = filter == PngFilter::Paeth;
    const std::size_t right = std::min(std::max(here.right, there.right) + (isPaeth ? bytesPerPixel : 0), m_rowBytes);
    if (left >= right) {
        std::memset(out, 0, m_rowBytes);
        return;
    }
    std::memset(out, 0, left);
    std::memset(out + right, 0, m_rowBytes - right);
    if (!isPaeth) {
        for (std::size_t i = left; i < right; ++i)
            out[i] = static_cast<std::uint8_t>(above[i] - row[i]);
        return;
    }
    // What is left of the first pixel counts as black in both rows, so the one above it is the nearest.
    for (std::size_t i = left; i < bytesPerPixel; ++i)
        out[i] = static_cast<std::uint8_t>(above[i] - row[i]);
    paeth(row, above, std::max(left, bytesPerPixel), right, bytesPerPixel, out);
}

} // namespace quillrip
