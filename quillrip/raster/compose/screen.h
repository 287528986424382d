#pragma once

#include <array>
#include <cstdint>

namespace quillrip {

/// The screen that turns tones into dots on a bilevel page: 64 x 64 thresholds, fixed to the device's pixels, so that
/// marks painted one by one join without a seam. A pixel takes ink where its tone's ink (0 to 255) is above the
/// threshold (0 to 254): white stays white and black stays solid.
///
/// It is blue noise (void and cluster, Ulichney 1993) and not a clustered dot: what we make is seen on screens and
/// kept in files, where single pixels neither spread nor vanish as toner does, and detail matters more.
constexpr int kScreenSize = 64;

/// Thresholds in rows; made at build time by make_screen.cpp.
extern const std::array<std::array<std::uint8_t, kScreenSize>, kScreenSize> kScreenThresholds;

/// The thresholds of device row y, for device columns 0 to 63 and so on round.
inline const std::uint8_t* screenRow(int y) { return kScreenThresholds[static_cast<unsigned>(y) % kScreenSize].data(); }

} // namespace quillrip
