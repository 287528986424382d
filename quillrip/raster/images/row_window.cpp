#include "quillrip/raster/images/row_window.h"

#include "quillrip/raster/images/image_source.h"

#include <algorithm>
#include <cstring>

namespace quillrip {

namespace {

std::size_t sourceBytes(ImageFormat format)
{
    return format == ImageFormat::Rgba32 ? 4 : format == ImageFormat::Rgb24 ? 3 : 1;
}

} // namespace

RowWindow::RowWindow(ImageFormat format, int pageChannels, int firstColumn, int endColumn)
    : m_format(format)
    , m_pageChannels(pageChannels)
    , m_firstColumn(format == ImageFormat::Mono ? firstColumn / 8 * 8 : firstColumn)
    , m_columns(endColumn - m_firstColumn)
    , m_rowBytes(rowBytes(format, pageChannels, m_columns))
{
}

std::size_t RowWindow::channels(ImageFormat format, int pageChannels)
{
    if (format == ImageFormat::Mono || format == ImageFormat::Gray8)
        return 1;
    return static_cast<std::size_t>(pageChannels) + (format == ImageFormat::Rgba32 ? 1 : 0);
}

std::size_t RowWindow::rowBytes(ImageFormat format, int pageChannels, std::int64_t columns)
{
    const auto count = static_cast<std::size_t>(columns);
    return format == ImageFormat::Mono ? (count + 7) / 8 : count * channels(format, pageChannels);
}

std::uint8_t* RowWindow::append(std::int64_t count)
{
    const std::size_t at = m_bytes.size();
    m_bytes.resize(at + static_cast<std::size_t>(count) * m_rowBytes);
    m_stored += count;
    return m_bytes.data() + at;
}

void RowWindow::add(const std::uint8_t* pixels)
{
    if (m_repeats > 0)
        append(m_repeats);
    m_repeats = 0;
    std::uint8_t* const ink = append(1);
    const auto first = static_cast<std::size_t>(m_firstColumn);
    if (m_format == ImageFormat::Mono) {
        std::memcpy(ink, pixels + first / 8, m_rowBytes);
        return;
    }
    const std::uint8_t* const from = pixels + first * sourceBytes(m_format);
    const int inkChannels = m_format == ImageFormat::Gray8 ? 1 : m_pageChannels;
    convertRow(from, m_format, m_columns, inkChannels, ink);
    if (m_format == ImageFormat::Rgba32)
        interleaveAlpha(ink, m_columns, inkChannels, from + 3, 4);
}

void RowWindow::addBlank(std::int64_t count)
{
    if (count <= 0)
        return;
    if (m_repeats == 0) {
        append(1);
        --count;
    }
    m_repeats += count;
}

void RowWindow::pass(std::int64_t count) { (m_stored == 0 ? m_first : m_repeats) += count; }

void RowWindow::dropBefore(std::int64_t row)
{
    if (row <= m_first || m_stored == 0)
        return;
    // The last stays, for those that are like it.
    const std::int64_t dropped = std::min(row - m_first, m_stored - (m_repeats > 0 ? 1 : 0));
    m_bytes.erase(
        m_bytes.begin(), m_bytes.begin() + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(dropped) * m_rowBytes));
    m_stored -= dropped;
    m_first += dropped;
    if (m_repeats > 0 && row > m_first) {
        const std::int64_t repeats = std::min(row - m_first, m_repeats);
        m_repeats -= repeats;
        m_first += repeats;
    }
}

} // namespace quillrip
