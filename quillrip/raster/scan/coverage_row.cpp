#include "quillrip/raster/scan/coverage_row.h"

#include "quillrip/raster/scan/edge_list.h"

#include <algorithm>
#include <cstring>

namespace quillrip {

namespace {

/// Heights have 8 bits more than the lines' coordinates, so that the pieces of a flat line add up to its height.
constexpr int kHeightBits = kSubpixelBits + 8;
/// A whole pixel's area: its height, times twice its width.
constexpr int kAreaBits = kHeightBits + kSubpixelBits + 1;

std::uint8_t byteOf(std::int32_t area)
{
    constexpr int spareBits = kAreaBits - 16;
    const std::int32_t share = ((area >> spareBits) * 255 + (1 << 15)) >> 16;
    return static_cast<std::uint8_t>(std::clamp(share, 0, 255));
}

} // namespace

CoverageRow::CoverageRow(const PixelRect& area)
    : m_left(area.left)
    , m_end(area.width() * kSubpixels)
    , m_differences(static_cast<std::size_t>(area.width()) + 2)
    , m_changed((m_differences.size() + 63) / 64)
    , m_bytes(m_differences.size())
{
}

void CoverageRow::addPiece(std::size_t pixel, std::int32_t height, std::int32_t leftPlusRight)
{
    m_differences[pixel] += height * (2 * kSubpixels - leftPlusRight);
    m_differences[pixel + 1] += height * leftPlusRight;
    m_changed[pixel / 64] |= std::uint64_t { 1 } << (pixel % 64);
    m_changed[(pixel + 1) / 64] |= std::uint64_t { 1 } << ((pixel + 1) % 64);
}

void CoverageRow::addRightOf(std::int32_t topX, std::int32_t bottomX, std::int32_t height, std::int32_t sign)
{
    const std::int32_t low = std::min(topX, bottomX) - m_left * kSubpixels;
    const std::int32_t high = std::max(topX, bottomX) - m_left * kSubpixels;
    if (low >= m_end)
        return;
    const std::int32_t wholeHeight = height * (1 << (kHeightBits - kSubpixelBits)) * sign;
    const auto heightUntil = [&](std::int32_t x) {
        return x >= high ? wholeHeight
                         : static_cast<std::int32_t>(std::int64_t { wholeHeight } * (x - low) / (high - low));
    };
    // Left of the row a line counts for all of it, right of it for nothing.
    std::int32_t from = low;
    std::int32_t heightBefore = 0;
    if (low < 0) {
        heightBefore = heightUntil(0);
        addPiece(0, heightBefore, 0);
        if (high <= 0)
            return;
        from = 0;
    }
    const std::int32_t end = std::min(high, m_end);
    // Every pixel on the way takes the part of the height in which the line passes it.
    for (std::int32_t left = from & -kSubpixels; left <= end; left += kSubpixels) {
        const std::int32_t to = std::min(end, left + kSubpixels);
        const std::int32_t heightAfter = heightUntil(to);
        addPiece(static_cast<std::size_t>(left >> kSubpixelBits), heightAfter - heightBefore, from - left + to - left);
        if (to == end)
            return;
        from = to;
        heightBefore = heightAfter;
    }
}

void CoverageRow::emit(int y, SpanSink& sink)
{
    constexpr std::size_t shortGap = 8;
    std::int32_t area = 0;
    std::size_t x = 0; // all before is in the run or emitted
    std::size_t runStart = 0;
    const auto endRun = [&](std::size_t next) {
        if (x > runStart) {
            sink.coverage(
                y, m_left + static_cast<int>(runStart), m_bytes.data() + runStart, static_cast<int>(x - runStart));
        }
        runStart = x = next;
    };
    for (std::size_t group = 0; group < m_changed.size(); ++group) {
        for (std::uint64_t changed = m_changed[group]; changed != 0; changed &= changed - 1) {
            const std::size_t pixel = group * 64 + static_cast<std::size_t>(__builtin_ctzll(changed));
            const std::uint8_t before = byteOf(area);
            if (before == 0 && pixel > x) {
                endRun(pixel);
            } else if (before == 255 && pixel >= x + shortGap) {
                const std::size_t spanStart = x;
                endRun(pixel);
                sink.span(y, m_left + static_cast<int>(spanStart), m_left + static_cast<int>(pixel));
            } else {
                std::memset(m_bytes.data() + x, before, pixel - x);
            }
            area += m_differences[pixel];
            m_differences[pixel] = 0;
            m_bytes[pixel] = byteOf(area);
            x = pixel + 1;
        }
        m_changed[group] = 0;
    }
    // What a side beyond the right end leaves open.
    const auto columns = static_cast<std::size_t>(m_end / kSubpixels);
    const std::uint8_t last = byteOf(area);
    if (last == 255 && x < columns) {
        const std::size_t spanStart = x;
        endRun(columns);
        sink.span(y, m_left + static_cast<int>(spanStart), m_left + static_cast<int>(columns));
    } else if (last != 0 && x < columns) {
        std::memset(m_bytes.data() + x, last, columns - x);
        x = columns;
    }
    endRun(x);
}

} // namespace quillrip
