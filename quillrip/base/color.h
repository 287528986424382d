#pragma once

#include <cstdint>

namespace quillrip {

/// Red, green and blue as light: 255 shines fully.
struct Rgb {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
};

constexpr bool operator==(Rgb a, Rgb b) { return a.red == b.red && a.green == b.green && a.blue == b.blue; }
constexpr bool operator!=(Rgb a, Rgb b) { return !(a == b); }

constexpr Rgb kWhite { 255, 255, 255 };
constexpr Rgb kBlack { 0, 0, 0 };

/// The light that a colour reflects: 0.299 R + 0.587 G + 0.114 B (ITU-R BT.601), rounded. 255 is white.
constexpr std::uint8_t luminance(Rgb c)
{
    return static_cast<std::uint8_t>((c.red * 19595u + c.green * 38470u + c.blue * 7471u + 32768u) >> 16);
}

/// The grey that a colour is on a page without colours.
constexpr Rgb grayOf(Rgb c)
{
    const std::uint8_t light = luminance(c);
    return { light, light, light };
}

} // namespace quillrip
