#include "quillrip/base/page_bitmap.h"

#include <cstdlib>

namespace quillrip {

void PageBitmap::Free::operator()(std::uint8_t* pixels) const { std::free(pixels); }

PageBitmap::PageBitmap(PixelFormat format, int width, int height, Resolution resolution)
    : m_format(format)
    , m_width(width)
    , m_height(height)
    , m_resolution(resolution)
    , m_stride((rowBytes() + 7) / 8 * 8)
{
    m_pixels.reset(static_cast<std::uint8_t*>(std::calloc(static_cast<std::size_t>(height), m_stride)));
    if (m_pixels)
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

} // namespace quillrip
