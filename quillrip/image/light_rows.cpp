#include "quillrip/image/light_rows.h"

#include <array>
#include <cstring>

namespace quillrip {

namespace {

void complement(const std::uint8_t* ink, std::uint8_t* light, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        light[i] = static_cast<std::uint8_t>(~ink[i]);
}

/// For each byte of ink its eight pixels of light.
constexpr std::array<std::array<std::uint8_t, 8>, 256> grayOfBits()
{
    std::array<std::array<std::uint8_t, 8>, 256> table {};
    for (std::size_t bits = 0; bits < 256; ++bits)
        for (std::size_t pixel = 0; pixel < 8; ++pixel)
            table[bits][pixel] = (bits >> (7 - pixel) & 1) != 0 ? 0 : 255;
    return table;
}

constexpr auto kGrayOfBits = grayOfBits();

bool allZero(const std::uint8_t* bytes, std::size_t count)
{
    std::uint64_t sum = 0;
    for (; count >= 8; bytes += 8, count -= 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes, 8);
        sum |= word;
    }
    for (; count > 0; ++bytes, --count)
        sum |= *bytes;
    return sum == 0;
}

} // namespace

void lightRow(const PageBitmap& page, int y, std::uint8_t* light)
{
    if (page.extent(y).empty())
        std::memset(light, 0xFF, page.rowBytes());
    else
        complement(page.row(y), light, page.rowBytes());
    const unsigned unused = static_cast<unsigned>(-page.width()) % 8;
    if (page.format() == PixelFormat::Bilevel)
        light[page.rowBytes() - 1] = static_cast<std::uint8_t>(light[page.rowBytes() - 1] >> unused << unused);
}

void lightRowAsGray(const PageBitmap& page, int y, std::uint8_t* gray)
{
    const auto width = static_cast<std::size_t>(page.width());
    if (page.extent(y).empty()) {
        std::memset(gray, 0xFF, width);
        return;
    }
    const std::uint8_t* ink = page.row(y);
    for (std::size_t i = 0; i < width / 8; ++i)
        std::memcpy(gray + 8 * i, kGrayOfBits[ink[i]].data(), 8);
    if (width % 8 != 0)
        std::memcpy(gray + width / 8 * 8, kGrayOfBits[ink[width / 8]].data(), width % 8);
}

void lightRowAsBgr(const PageBitmap& page, int y, std::uint8_t* bgr)
{
    const auto width = static_cast<std::size_t>(page.width());
    if (page.extent(y).empty()) {
        std::memset(bgr, 0xFF, 3 * width);
        return;
    }
    const std::uint8_t* ink = page.row(y);
    for (std::size_t x = 0; x < width; ++x) {
        bgr[3 * x] = static_cast<std::uint8_t>(~ink[3 * x + 2]);
        bgr[3 * x + 1] = static_cast<std::uint8_t>(~ink[3 * x + 1]);
        bgr[3 * x + 2] = static_cast<std::uint8_t>(~ink[3 * x]);
    }
}

void lightRowAsPlanes(const PageBitmap& page, int y, std::uint8_t* planes, std::size_t planeStride)
{
    const auto width = static_cast<std::size_t>(page.width());
    const bool isBlank = page.extent(y).empty();
    const std::uint8_t* ink = isBlank ? nullptr : page.row(y);
    for (std::size_t plane = 0; plane < 3; ++plane) {
        std::uint8_t* light = planes + plane * planeStride;
        if (isBlank) {
            std::memset(light, 0xFF, width);
            continue;
        }
        for (std::size_t x = 0; x < width; ++x)
            light[x] = static_cast<std::uint8_t>(~ink[3 * x + plane]);
    }
}

ByteExtent inkExtent(const PageBitmap& page, int y)
{
    const PageBitmap::Extent extent = page.extent(y);
    if (extent.empty())
        return {};
    const auto bits = static_cast<std::size_t>(bitsPerPixel(page.format()));
    std::size_t left = static_cast<std::size_t>(extent.left) * bits / 8;
    std::size_t right = (static_cast<std::size_t>(extent.right) * bits + 7) / 8;
    const std::uint8_t* row = page.row(y);
    constexpr std::size_t kBlock = 128;
    while (right - left >= kBlock && allZero(row + left, kBlock))
        left += kBlock;
    while (left < right && row[left] == 0)
        ++left;
    while (right - left >= kBlock && allZero(row + right - kBlock, kBlock))
        right -= kBlock;
    while (left < right && row[right - 1] == 0)
        --right;
    return left < right ? ByteExtent { left, right } : ByteExtent {};
}

} // namespace quillrip
