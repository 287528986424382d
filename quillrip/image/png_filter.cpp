#include "quillrip/image/png_filter.h"

#include "quillrip/image/light_rows.h"

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
    , m_filtered(m_rowBytes + 1)
{
}

void PngRowFilter::clear()
{
    std::fill(m_filtered.begin() + static_cast<std::ptrdiff_t>(m_dirtyLeft),
        m_filtered.begin() + static_cast<std::ptrdiff_t>(m_dirtyRight), std::uint8_t { 0 });
    m_dirtyLeft = 0;
    m_dirtyRight = 0;
}

const std::uint8_t* PngRowFilter::filtered(int y, PngFilter filter)
{
    clear();
    if (isRepeatedWhite(m_page, y)) {
        m_filtered[0] = static_cast<std::uint8_t>(PngFilter::Up);
    } else if (filter == PngFilter::Paeth && y > 0) {
        m_filtered[0] = static_cast<std::uint8_t>(PngFilter::Paeth);
        applyPaeth(y);
    } else {
        m_filtered[0] = static_cast<std::uint8_t>(PngFilter::None);
        lightRow(m_page, y, &m_filtered[1]);
        m_dirtyLeft = 1;
        m_dirtyRight = m_filtered.size();
    }
    return m_filtered.data();
}

void PngRowFilter::applyPaeth(int y)
{
    const std::size_t bytesPerPixel = m_page.format() == PixelFormat::Rgb24 ? 3 : 1;
    const ByteExtent here = inkExtent(m_page, y);
    const ByteExtent there = inkExtent(m_page, y - 1);
    const std::uint8_t* row = here.empty() ? m_white.data() : m_page.row(y);
    const std::uint8_t* above = there.empty() ? m_white.data() : m_page.row(y - 1);
    // Where this row, the one above and the pixels to their left are white, the result is 0.
    const std::size_t left = here.empty() ? there.left : there.empty() ? here.left : std::min(here.left, there.left);
    const std::size_t right = std::min(std::max(here.right, there.right) + bytesPerPixel, m_rowBytes);
    std::uint8_t* out = &m_filtered[1];
    // What is left of the first pixel counts as black in both rows, so the one above it is the nearest.
    for (std::size_t i = left; i < bytesPerPixel; ++i)
        out[i] = static_cast<std::uint8_t>(above[i] - row[i]);
    paeth(row, above, std::max(left, bytesPerPixel), right, bytesPerPixel, out);
    m_dirtyLeft = left + 1;
    m_dirtyRight = right + 1;
}

} // namespace quillrip
