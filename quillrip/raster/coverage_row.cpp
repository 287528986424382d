#include "quillrip/raster/coverage_row.h"

#include "quillrip/raster/edge_list.h"

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
    : m_origin((area.left - 1) * kSubpixels)
    , m_end((area.width() + 2) * kSubpixels - 1)
    , m_differences(static_cast<std::size_t>(area.width()) + 4)
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
    const std::int32_t low = std::clamp(std::min(topX, bottomX) - m_origin, 0, m_end);
    const std::int32_t high = std::clamp(std::max(topX, bottomX) - m_origin, 0, m_end);
    const std::int32_t wholeHeight = (height << (kHeightBits - kSubpixelBits)) * sign;
    const auto pixelOf = [](std::int32_t x) { return static_cast<std::size_t>(x >> kSubpixelBits); };
    const std::size_t last = pixelOf(high);
    std::size_t pixel = pixelOf(low);
    if (pixel == last) {
        const auto left = static_cast<std::int32_t>(pixel) * kSubpixels;
        return addPiece(pixel, wholeHeight, low - left + high - left);
    }
    // Every pixel on the way takes the part of the height in which the line passes it.
    std::int32_t from = low;
    std::int32_t heightBefore = 0;
    for (; pixel <= last; ++pixel) {
        const auto left = static_cast<std::int32_t>(pixel) * kSubpixels;
        const std::int32_t to = std::min(high, left + kSubpixels);
        const auto heightAfter = static_cast<std::int32_t>(std::int64_t { wholeHeight } * (to - low) / (high - low));
        addPiece(pixel, heightAfter - heightBefore, from - left + to - left);
        from = to;
        heightBefore = heightAfter;
    }
}

void CoverageRow::emit(int y, SpanSink& sink)
{
    constexpr std::size_t shortGap = 8;
    const int firstColumn = m_origin / kSubpixels;
    std::int32_t area = 0;
    std::size_t x = 0; // all before is in the run or emitted
    std::size_t runStart = 0;
    const auto endRun = [&](std::size_t next) {
        if (x > runStart) {
            sink.coverage(
                y, firstColumn + static_cast<int>(runStart), m_bytes.data() + runStart, static_cast<int>(x - runStart));
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
                sink.span(y, firstColumn + static_cast<int>(spanStart), firstColumn + static_cast<int>(pixel));
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
    endRun(x);
}

} // namespace quillrip
