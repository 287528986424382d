#include "quillrip/base/page_bitmap.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace quillrip {

PageBitmap::PageBitmap(PixelFormat format, int width, int height, Resolution resolution, std::shared_ptr<PagePool> pool)
    : m_format(format)
    , m_width(width)
    , m_height(height)
    , m_resolution(resolution)
    , m_stride((rowBytes() + 7) / 8 * 8)
    , m_pool(std::move(pool))
{
    while ((m_stride << (m_blockShift + 1)) <= PagePool::kBlockBytes)
        ++m_blockShift;
    const std::size_t rows = std::min(std::size_t { 1 } << m_blockShift, static_cast<std::size_t>(height));
    m_blockBytes = rows * m_stride;
    m_endBlock = blockCount();
    m_extents.resize(static_cast<std::size_t>(height));
    // Not one whose zeros are written: it may be as long as a small page, and never be read.
    m_whiteRow.reset(static_cast<std::uint8_t*>(std::calloc(m_stride, 1)));
    if (!m_whiteRow)
        return;
    m_blocks = std::make_unique<std::uint8_t*[]>(static_cast<std::size_t>(m_endBlock));
}

PageBitmap::~PageBitmap()
{
    if (m_blocks)
        giveBack(m_firstBlock, m_endBlock);
}

PageBitmap::PageBitmap(PageBitmap&& other) noexcept { swap(other); }

PageBitmap& PageBitmap::operator=(PageBitmap&& other) noexcept
{
    PageBitmap taken(std::move(other));
    swap(taken);
    return *this;
}

void PageBitmap::swap(PageBitmap& other) noexcept
{
    std::swap(m_format, other.m_format);
    std::swap(m_width, other.m_width);
    std::swap(m_height, other.m_height);
    std::swap(m_resolution, other.m_resolution);
    std::swap(m_stride, other.m_stride);
    std::swap(m_pool, other.m_pool);
    std::swap(m_blockShift, other.m_blockShift);
    std::swap(m_blockBytes, other.m_blockBytes);
    std::swap(m_blocks, other.m_blocks);
    std::swap(m_firstBlock, other.m_firstBlock);
    std::swap(m_endBlock, other.m_endBlock);
    std::swap(m_isFinished, other.m_isFinished);
    std::swap(m_whiteRow, other.m_whiteRow);
    std::swap(m_extents, other.m_extents);
    std::swap(m_paintedPixels, other.m_paintedPixels);
}

std::uint8_t* PageBitmap::takeBlock(int y)
{
    std::uint8_t*& block = m_blocks[static_cast<unsigned>(y) >> m_blockShift];
    block = m_pool->take(m_blockBytes);
    return block;
}

void PageBitmap::giveBack(int first, int end)
{
    for (int i = first; i < end; ++i) {
        std::uint8_t*& block = m_blocks[static_cast<std::size_t>(i)];
        if (!block)
            continue;
        clearRows(i << m_blockShift, std::min(m_height, (i + 1) << m_blockShift));
        if (m_isFinished)
            m_pool->giveBackExpected(block, m_blockBytes);
        else
            m_pool->giveBack(block, m_blockBytes);
        block = nullptr;
    }
}

void PageBitmap::finish()
{
    if (!m_blocks || m_isFinished)
        return;
    m_isFinished = true;
    const auto isTaken = [](const std::uint8_t* block) { return block != nullptr; };
    const auto blocks = std::count_if(m_blocks.get() + m_firstBlock, m_blocks.get() + m_endBlock, isTaken);
    m_pool->expect(static_cast<std::size_t>(blocks), m_blockBytes);
}

void PageBitmap::keepOnly(int top, int bottom)
{
    const int first = std::clamp(top >> m_blockShift, m_firstBlock, m_endBlock);
    const int end = bottom <= top ? first : std::clamp(((bottom - 1) >> m_blockShift) + 1, first, m_endBlock);
    giveBack(m_firstBlock, first);
    giveBack(end, m_endBlock);
    m_firstBlock = first;
    m_endBlock = end;
}

void PageBitmap::clearRows(int top, int bottom)
{
    const std::size_t depth = static_cast<std::size_t>(bitsPerPixel(m_format));
    for (int y = top; y < bottom; ++y) {
        const Extent touched = extent(y);
        if (touched.empty())
            continue;
        const std::size_t first = static_cast<std::size_t>(touched.left) * depth / 8;
        const std::size_t last = (static_cast<std::size_t>(touched.right) * depth + 7) / 8;
        if (std::uint8_t* block = m_blocks[static_cast<unsigned>(y) >> m_blockShift])
            std::memset(block + offsetInBlock(y) + first, 0, last - first);
    }
}

Rgb PageBitmap::pixel(int x, int y) const
{
    const auto light = [](unsigned ink) { return static_cast<std::uint8_t>(255 - ink); };
    const std::uint8_t* at = row(y);
    switch (m_format) {
    case PixelFormat::Bilevel: {
        const auto value = light((at[x / 8] >> (7 - x % 8)) & 1 ? 255 : 0);
        return { value, value, value };
    }
    case PixelFormat::Gray8:
        return { light(at[x]), light(at[x]), light(at[x]) };
    case PixelFormat::Rgb24:
        break;
    }
    at += 3 * static_cast<std::size_t>(x);
    return { light(at[0]), light(at[1]), light(at[2]) };
}

bool PageBitmap::hasInk(const PixelRect& rect) const
{
    const PixelRect inside = rect.intersected(bounds());
    const int depth = bitsPerPixel(m_format);
    for (int y = inside.top; y < inside.bottom; ++y) {
        const int left = std::max(inside.left, extent(y).left);
        const int right = std::min(inside.right, extent(y).right);
        if (left >= right)
            continue;
        const std::int64_t firstBit = std::int64_t { left } * depth;
        const std::int64_t lastBit = std::int64_t { right } * depth - 1;
        for (std::int64_t i = firstBit / 8; i <= lastBit / 8; ++i) {
            unsigned byte = row(y)[i];
            if (i == firstBit / 8)
                byte &= 0xFFu >> firstBit % 8;
            if (i == lastBit / 8)
                byte &= 0xFF00u >> (lastBit % 8 + 1);
            if (byte != 0)
                return true;
        }
    }
    return false;
}

PageBitmap PageBitmap::cropped(int left, int width, int height) &&
{
    if (left == 0 && width == m_width && height <= m_height) {
        clearRows(height, m_height);
        m_height = height;
        giveBack(blockCount(), m_endBlock);
        m_endBlock = blockCount();
        m_extents.resize(static_cast<std::size_t>(height));
        return std::move(*this);
    }
    PageBitmap result(m_format, width, height, m_resolution, m_pool);
    if (result.isNull())
        return result;
    const std::int64_t depth = bitsPerPixel(m_format);
    const auto stride = static_cast<std::int64_t>(m_stride);
    for (int y = 0; y < std::min(height, m_height); ++y) {
        if (extent(y).empty())
            continue;
        const int first = std::max(0, extent(y).left - left);
        const int last = std::min(width, extent(y).right - left);
        if (first >= last)
            continue;
        const std::uint8_t* from = std::as_const(*this).row(y);
        std::uint8_t* to = result.row(y);
        const auto byteAt = [&](std::int64_t i) { return i < 0 || i >= stride ? 0u : from[i]; };
        for (std::int64_t i = first * depth / 8; i <= (last * depth - 1) / 8; ++i) {
            const std::int64_t bit = left * depth + i * 8;
            const std::int64_t at = bit >> 3;
            to[i] = static_cast<std::uint8_t>((byteAt(at) << 8 | byteAt(at + 1)) >> (8 - (bit & 7)));
        }
        // What lies beyond the last column is white by contract.
        if (const std::int64_t rest = width * depth % 8)
            to[width * depth / 8] &= static_cast<std::uint8_t>(0xFF00u >> rest);
        result.touch(y, first, last);
    }
    return result;
}

} // namespace quillrip
