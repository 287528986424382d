#include "quillrip/base/page_bitmap.h"

#include <algorithm>
#include <cstdlib>

#include <sys/mman.h>

// A sanitizer watches the bounds of what comes from the heap, and of nothing else.
#if defined(__SANITIZE_ADDRESS__)
#define QUILLRIP_PAGES_ON_HEAP
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QUILLRIP_PAGES_ON_HEAP
#endif
#endif

namespace quillrip {

namespace {

#ifdef QUILLRIP_PAGES_ON_HEAP

void* takeZeroed(std::size_t bytes) { return std::calloc(bytes, 1); }
void giveBack(void* pixels, std::size_t) { std::free(pixels); }

#else

void* takeZeroed(std::size_t bytes)
{
    void* pixels = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pixels == MAP_FAILED ? nullptr : pixels;
}
void giveBack(void* pixels, std::size_t bytes) { munmap(pixels, bytes); }

#endif

} // namespace

void PageBitmap::Unmap::operator()(std::uint8_t* pixels) const { giveBack(pixels, bytes); }

PageBitmap::PageBitmap(PixelFormat format, int width, int height, Resolution resolution)
    : m_format(format)
    , m_width(width)
    , m_height(height)
    , m_resolution(resolution)
    , m_stride((rowBytes() + 7) / 8 * 8)
{
    const std::size_t bytes = static_cast<std::size_t>(height) * m_stride;
    void* pixels = takeZeroed(bytes);
    if (!pixels)
        return;
    m_pixels = { static_cast<std::uint8_t*>(pixels), Unmap { bytes } };
    m_extents.resize(static_cast<std::size_t>(height));
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
    return { light(at[3 * x]), light(at[3 * x + 1]), light(at[3 * x + 2]) };
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
        m_height = height;
        m_extents.resize(static_cast<std::size_t>(height));
        return std::move(*this);
    }
    PageBitmap result(m_format, width, height, m_resolution);
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
        const std::uint8_t* from = row(y);
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
