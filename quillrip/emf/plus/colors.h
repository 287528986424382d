#pragma once

#include "quillrip/raster/compose/color_source.h"

#include <cstdint>

namespace quillrip::emf::plus {

/// From the form 0xAARRGGBB; like all colours of EMF+ it is not premultiplied.
constexpr Rgba rgbaOf(std::uint32_t argb)
{
    return { static_cast<std::uint8_t>(argb >> 16), static_cast<std::uint8_t>(argb >> 8),
        static_cast<std::uint8_t>(argb), static_cast<std::uint8_t>(argb >> 24) };
}

constexpr Rgba kTransparent { 0, 0, 0, 0 };

/// The colour `part` of the way from `a` to `b`, each channel for itself and rounded; `part` from 0 to 1.
inline Rgba mixed(Rgba a, Rgba b, double part)
{
    const auto channel = [part](std::uint8_t from, std::uint8_t to) {
        return static_cast<std::uint8_t>(from + (to - from) * part + 0.5);
    };
    return { channel(a.red, b.red), channel(a.green, b.green), channel(a.blue, b.blue), channel(a.alpha, b.alpha) };
}

} // namespace quillrip::emf::plus
