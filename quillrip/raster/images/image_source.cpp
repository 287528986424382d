#include "quillrip/raster/images/image_source.h"

#include "quillrip/raster/compose/mixing.h"

namespace quillrip {

void convertRow(const std::uint8_t* pixels, ImageFormat format, int width, int channels, std::uint8_t* ink)
{
    const auto complement = [](unsigned light) { return static_cast<std::uint8_t>(255 - light); };
    switch (format) {
    case ImageFormat::Mono:
        for (int x = 0; x < width; ++x)
            ink[x] = (pixels[x / 8] & 0x80 >> (x % 8)) != 0 ? 255 : 0;
        return;
    case ImageFormat::Gray8:
        if (channels == 1) {
            for (int x = 0; x < width; ++x)
                ink[x] = complement(pixels[x]);
            return;
        }
        for (int x = 0; x < width; ++x, ink += 3)
            ink[0] = ink[1] = ink[2] = complement(pixels[x]);
        return;
    case ImageFormat::Rgb24:
        if (channels == 1) {
            for (int x = 0; x < width; ++x, pixels += 3)
                ink[x] = complement(luminance({ pixels[0], pixels[1], pixels[2] }));
            return;
        }
        for (std::ptrdiff_t i = 0; i < std::ptrdiff_t { 3 } * width; ++i)
            ink[i] = complement(pixels[i]);
        return;
    case ImageFormat::Rgba32:
        for (int x = 0; x < width; ++x, pixels += 4) {
            if (channels == 1) {
                *ink++ = complement(luminance({ pixels[0], pixels[1], pixels[2] }));
                continue;
            }
            for (int channel = 0; channel < 3; ++channel)
                *ink++ = complement(pixels[channel]);
        }
        return;
    }
}

void interleaveAlpha(std::uint8_t* ink, int width, int channels, const std::uint8_t* alpha, int alphaStep)
{
    // From the last pixel on, since all move to the right.
    for (std::ptrdiff_t x = width; x-- > 0;) {
        const std::uint8_t share = alpha[x * alphaStep];
        std::uint8_t* to = ink + x * (channels + 1);
        to[channels] = share;
        for (std::ptrdiff_t channel = channels; channel-- > 0;)
            to[channel] = mixed(0, ink[x * channels + channel], share);
    }
}

} // namespace quillrip
