#pragma once

#include "quillrip/base/heap_account.h"
#include "quillrip/base/work_meter.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace quillrip {

/// What a job may ask for. The defaults are far above what an honest job needs; each is checked where the memory or
/// the time is asked for.
struct Limits {
    std::uint64_t pageBytes = std::uint64_t { 1 } << 30; ///< one page's bitmap
    std::uint32_t pages = 100000;
    std::uint64_t outputBytes = 0; ///< all files of the output together; 0: in proportion to the job's bytes
    std::size_t fontBytes = std::size_t { 256 } << 20; ///< all soft fonts together
    std::size_t patternBytes = std::size_t { 64 } << 20; ///< all user patterns together
    std::size_t macroBytes = std::size_t { 64 } << 20; ///< all macros or user streams together
    std::size_t pathPoints = std::size_t { 16 } << 20; ///< one path
    std::size_t imageRowBytes = std::size_t { 4 } << 20; ///< one decoded source row: far wider than any page
    std::uint32_t stateDepth = 1000; ///< saved graphics states
    MemoryBudget memory; ///< all that is not a page's bitmap, together
    /// The job's account of its work. Copies of the limits share it; another job takes another one.
    std::shared_ptr<WorkMeter> work = std::make_shared<WorkMeter>();
};

} // namespace quillrip
