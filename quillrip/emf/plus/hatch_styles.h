#pragma once

#include <cstddef>
#include <cstdint>

namespace quillrip::emf::plus {

constexpr std::size_t kHatchStyles = 53;

/// The eight rows of eight pixels of a hatch, the top row in the highest byte, its left pixel in the highest bit; set
/// bits take the foreground colour ([MS-EMFPLUS] 2.1.1.13, HatchStyle). Numbers beyond the list are as 0.
std::uint64_t hatchPattern(std::uint32_t style);

} // namespace quillrip::emf::plus
