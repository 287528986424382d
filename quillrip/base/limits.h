#pragma once

#include <cstddef>
#include <cstdint>

namespace quillrip {

/// What a job may ask for. The defaults are far above what an honest job needs; each is checked where the memory or
/// the time is asked for.
struct Limits {
    std::uint64_t pageBytes = std::uint64_t { 1 } << 30; ///< one page's bitmap
    std::uint32_t pages = 100000;
    std::uint64_t outputBytes = 0; ///< all files of the output together; 0: in proportion to the job's bytes
    std::size_t fontBytes = std::size_t { 256 } << 20; ///< all soft fonts together
    std::size_t patternBytes = std::size_t { 64 } << 20; ///< all user patterns together
    /// All macros or user streams together, and what of them is run for one page.
    std::size_t macroBytes = std::size_t { 64 } << 20;
    std::size_t pathPoints = std::size_t { 16 } << 20; ///< one path
    std::size_t imageRowBytes = std::size_t { 64 } << 20; ///< one decoded source row
    std::uint32_t macroExecutions = 1000000; ///< macro calls of one job: ends a job that calls itself in circles
    std::uint32_t macroCoats = 1000; ///< how many times over macros or user streams may paint one page
    std::uint32_t stateDepth = 1000; ///< saved graphics states
};

} // namespace quillrip
