#include "quillrip/raster/painter.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

using namespace quillrip;

namespace {

/// Noise in the mask's bits; what lies behind a row's last pixel as well.
GlyphMask noise(GlyphMask::Depth depth, int width, int height, std::mt19937& random)
{
    GlyphMask mask;
    mask.depth = depth;
    mask.left = -3;
    mask.top = -2;
    mask.width = width;
    mask.height = height;
    mask.stride = static_cast<std::size_t>(depth == GlyphMask::Depth::Bits ? (width + 7) / 8 : width);
    for (std::size_t i = 0; i < mask.stride * static_cast<std::size_t>(height); ++i)
        mask.bytes.push_back(
            static_cast<std::uint8_t>(depth == GlyphMask::Depth::Bits ? random() : random() % 2 * 255));
    return mask;
}

bool isInk(const GlyphMask& mask, int x, int y)
{
    const std::uint8_t* row = mask.bytes.data() + static_cast<std::size_t>(y) * mask.stride;
    return mask.depth == GlyphMask::Depth::Bits ? (row[x / 8] >> (7 - x % 8) & 1) != 0 : row[x] != 0;
}

/// Draws on a page that is all ink or all white, and looks at every pixel.
void expectExactly(PixelFormat format, int pageWidth, const GlyphMask& mask, int x, int y, bool isWhiteOnBlack)
{
    constexpr int pageHeight = 12;
    PageBitmap page(format, pageWidth, pageHeight, {});
    Painter painter(page);
    const Rgb black { 0, 0, 0 };
    const Rgb white { 255, 255, 255 };
    PaintState state;
    if (isWhiteOnBlack) {
        painter.fillRect(page.bounds(), state);
        state.texture.color = white;
    }
    painter.drawMask(mask, x, y, state);
    for (int row = 0; row < pageHeight; ++row) {
        for (int column = 0; column < pageWidth; ++column) {
            const int maskX = column - x - mask.left;
            const int maskY = row - y - mask.top;
            const bool isMarked
                = maskX >= 0 && maskX < mask.width && maskY >= 0 && maskY < mask.height && isInk(mask, maskX, maskY);
            const Rgb pixel = page.pixel(column, row);
            ASSERT_EQ(pixel, isMarked != isWhiteOnBlack ? black : white) << column << ", " << row;
            const PageBitmap::Extent extent = page.extent(row);
            ASSERT_TRUE(pixel == white || (column >= extent.left && column < extent.right)) << column << ", " << row;
        }
        // What lies behind the last pixel stays 0.
        for (std::size_t i = page.rowBytes(); i < page.stride(); ++i)
            ASSERT_EQ(page.row(row)[i], 0);
    }
}

} // namespace

TEST(GlyphMask, MarksItsPixelsWhereverItLies)
{
    std::mt19937 random { 11 };
    for (const PixelFormat format : { PixelFormat::Bilevel, PixelFormat::Gray8, PixelFormat::Rgb24 }) {
        for (const GlyphMask::Depth depth : { GlyphMask::Depth::Bits, GlyphMask::Depth::Coverage }) {
            for (const int width : { 1, 7, 8, 9, 55, 56, 57, 64, 120 }) {
                const GlyphMask mask = noise(depth, width, 6, random);
                for (const int pageWidth : { 1, 64, 130, 137 }) {
                    for (int x = -8; x < pageWidth + 8; x += width < 57 && pageWidth < 100 ? 1 : 5) {
                        const int y = static_cast<int>(random() % 16) - 2;
                        SCOPED_TRACE(std::to_string(width) + " wide at " + std::to_string(x) + ", " + std::to_string(y)
                            + " on " + std::to_string(pageWidth) + " of " + std::to_string(bitsPerPixel(format))
                            + " bits");
                        expectExactly(format, pageWidth, mask, x, y, false);
                        expectExactly(format, pageWidth, mask, x, y, true);
                    }
                }
            }
        }
    }
}

TEST(GlyphMask, RowsThatAreMissingAreNotDrawn)
{
    std::mt19937 random { 12 };
    GlyphMask mask = noise(GlyphMask::Depth::Bits, 20, 6, random);
    mask.bytes.assign(mask.stride * 4 - 1, 0xFF);
    PageBitmap page(PixelFormat::Bilevel, 64, 12, {});
    Painter(page).drawMask(mask, 10, 5, {});
    EXPECT_TRUE(page.hasInk({ 0, 0, 64, 6 }));
    EXPECT_FALSE(page.hasInk({ 0, 6, 64, 12 }));
}
