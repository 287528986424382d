#pragma once

#include <cstdint>

namespace quillrip {

/// a + (b - a) * share / 255, rounded; all 0 to 255.
constexpr std::uint8_t mixed(unsigned a, unsigned b, unsigned share)
{
    const unsigned sum = a * (255 - share) + b * share + 128;
    return static_cast<std::uint8_t>((sum + (sum >> 8)) >> 8);
}

/// Screens 64 tones (ink, 0 to 255) of which so much of alpha covers the page. The tones become flags, 1 = a dot of
/// ink; the result says which pixels are covered, with ink or with white, the first one in the highest bit.
///
/// One threshold decides both: the lowest take ink, the highest white, and those between leave the page as it is. So on
/// white paper the dots are those of the tone that alpha and ink make together, and on black paper likewise.
std::uint64_t screenMixed(const std::uint8_t* thresholds, std::uint8_t* tones, const std::uint8_t* alpha);

} // namespace quillrip
