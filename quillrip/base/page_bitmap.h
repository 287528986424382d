#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/base/color.h"
#include "quillrip/base/geometry.h"
#include "quillrip/base/page_pool.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

namespace quillrip {

enum class PixelFormat : std::uint8_t {
    Bilevel, ///< packed, first pixel in the highest bit of the first byte
    Gray8, ///< one byte a pixel
    Rgb24, ///< three bytes a pixel: red, green, blue
};

constexpr int bitsPerPixel(PixelFormat format)
{
    return format == PixelFormat::Bilevel ? 1 : format == PixelFormat::Gray8 ? 8 : 24;
}

/// Device pixels per inch across and down the bitmap.
struct Resolution {
    double x = 300;
    double y = 300;
};

/// One page's pixels: filled by the painter, read by an encoder, moved from one to the other.
///
/// Every format stores INK, not light: 0 is white in all of them, a set bit or 255 is full ink (for Rgb24: the
/// complements of red, green and blue). So a page is born from zeroed memory, which rows get in blocks when they are
/// first written, and what a page never marks costs neither time nor memory; encoders complement what they read.
///
/// Rows start on 8-byte boundaries; the bits and bytes of a row behind `width` are 0.
class PageBitmap {
public:
    PageBitmap() = default;
    /// `width` and `height` in device pixels, both at least 1. Null pixels (see isNull()) when memory is short. Pages
    /// that come one after the other share a pool.
    PageBitmap(PixelFormat format, int width, int height, Resolution resolution,
        std::shared_ptr<PagePool> pool = std::make_shared<PagePool>());
    ~PageBitmap();
    PageBitmap(PageBitmap&& other) noexcept;
    PageBitmap& operator=(PageBitmap&& other) noexcept;

    bool isNull() const { return !m_blocks; }
    PixelFormat format() const { return m_format; }
    int width() const { return m_width; }
    int height() const { return m_height; }
    Resolution resolution() const { return m_resolution; }
    /// Bytes from one row to the next, a multiple of 8.
    std::size_t stride() const { return m_stride; }
    /// Bytes of a row that hold pixels.
    std::size_t rowBytes() const
    {
        return (static_cast<std::size_t>(m_width) * static_cast<std::size_t>(bitsPerPixel(m_format)) + 7) / 8;
    }
    PixelRect bounds() const { return { 0, 0, m_width, m_height }; }
    const std::shared_ptr<PagePool>& pool() const { return m_pool; }

    const std::uint8_t* row(int y) const
    {
        const std::uint8_t* block = m_blocks[static_cast<unsigned>(y) >> m_blockShift];
        return block ? block + offsetInBlock(y) : m_whiteRow.get();
    }
    /// For writing: the row gets memory if it has none. Throws std::bad_alloc when that is short. May wait for memory
    /// of the page before (see PagePool).
    std::uint8_t* row(int y)
    {
        std::uint8_t* block = m_blocks[static_cast<unsigned>(y) >> m_blockShift];
        return (block ? block : takeBlock(y)) + offsetInBlock(y);
    }
    /// How many rows from y on lie one stride behind each other; those of the next block lie elsewhere.
    int rowsInBlock(int y) const { return (1 << m_blockShift) - (y & ((1 << m_blockShift) - 1)); }

    /// The columns of a row that may hold ink, half open; empty (left >= right) when the row was never marked.
    struct Extent {
        std::int32_t left = INT32_MAX;
        std::int32_t right = 0;
        bool empty() const { return left >= right; }
    };
    Extent extent(int y) const { return m_extents[static_cast<std::size_t>(y)]; }
    /// Whoever writes pixels says so: columns left <= x < right of row y, inside the bitmap.
    void touch(int y, int left, int right)
    {
        Extent& extent = m_extents[static_cast<std::size_t>(y)];
        extent.left = left < extent.left ? left : extent.left;
        extent.right = right > extent.right ? right : extent.right;
        m_paintedPixels += static_cast<std::uint64_t>(std::int64_t { right } - left);
    }
    /// The same columns of the rows top <= y < bottom.
    void touchRows(int top, int bottom, int left, int right)
    {
        for (int y = top; y < bottom; ++y) {
            Extent& extent = m_extents[static_cast<std::size_t>(y)];
            extent.left = left < extent.left ? left : extent.left;
            extent.right = right > extent.right ? right : extent.right;
        }
        m_paintedPixels
            += static_cast<std::uint64_t>((std::int64_t { right } - left) * (std::int64_t { bottom } - top));
    }
    /// All columns of all touch() together: how much has been painted, however often in one place.
    std::uint64_t paintedPixels() const { return m_paintedPixels; }

    /// The colour that a pixel shows; for tests and slow paths.
    Rgb pixel(int x, int y) const;

    /// Whether a pixel of the rectangle, or of its part inside the bitmap, holds ink.
    bool hasInk(const PixelRect& rect) const;
    /// The columns from `left` on of the topmost rows, white where this bitmap has no pixels. Rows that end sooner cost
    /// nothing; null pixels when memory is short.
    PageBitmap cropped(int left, int width, int height) &&;

    /// The page is finished: nothing is marked any more, and all of its memory will come back to the pool as it is
    /// encoded.
    void finish();
    /// Gives back the memory of rows that nobody will read again: all but top <= y < bottom. Other threads may read
    /// those meanwhile. Of a finished page.
    void keepOnly(int top, int bottom);

private:
    struct FreeDeleter {
        void operator()(std::uint8_t* bytes) const { std::free(bytes); }
    };

    std::size_t offsetInBlock(int y) const
    {
        return (static_cast<std::size_t>(y) & ((std::size_t { 1 } << m_blockShift) - 1)) * m_stride;
    }
    int blockCount() const { return m_height == 0 ? 0 : ((m_height - 1) >> m_blockShift) + 1; }
    std::uint8_t* takeBlock(int y);
    /// Gives the blocks first <= index < end back, cleaned.
    void giveBack(int first, int end);
    void swap(PageBitmap& other) noexcept;
    /// Makes the rows from `top` to `bottom` white again.
    void clearRows(int top, int bottom);

    PixelFormat m_format = PixelFormat::Bilevel;
    int m_width = 0;
    int m_height = 0;
    Resolution m_resolution;
    std::size_t m_stride = 0;
    std::shared_ptr<PagePool> m_pool;
    unsigned m_blockShift = 0; ///< binary logarithm of the rows in a block
    std::size_t m_blockBytes = 0;
    std::unique_ptr<std::uint8_t*[]> m_blocks; ///< of the pool; null where no row was written
    int m_firstBlock = 0; ///< those before it have been given back
    int m_endBlock = 0; ///< and those from it on
    bool m_isFinished = false;
    std::unique_ptr<std::uint8_t, FreeDeleter> m_whiteRow; ///< what reads a row without memory
    std::vector<Extent> m_extents;
    std::uint64_t m_paintedPixels = 0;
};

} // namespace quillrip
