#pragma once

#include "quillrip/base/limits.h"
#include "quillrip/base/page_bitmap.h"

#include <cstddef>
#include <cstdint>

namespace quillrip {

/// Watches what recorded commands do: macros of PCL 5, user streams of PCL XL. What a job says itself is bounded by its
/// length; recordings call each other, so that a few hundred bytes can ask for years of drawing.
class ReplayMeter {
public:
    explicit ReplayMeter(const Limits& limits)
        : m_limits(limits)
    {
    }

    /// A recording of so many bytes starts to run, maybe within another. `page` is the open one or null. False when the
    /// job has run too many, or too much of them for one page.
    [[nodiscard]] bool enter(std::size_t bytes, const PageBitmap* page);
    /// For every enter(), whatever it returned.
    void leave(const PageBitmap* page);
    bool isRunning() const { return m_depth > 0; }
    /// While one runs, now and then: false when recordings have painted too much of the page.
    [[nodiscard]] bool mayGoOn(const PageBitmap* page) const;
    void pageEnded();

private:
    Limits m_limits;
    int m_depth = 0;
    std::uint32_t m_executions = 0; ///< of the job
    std::uint64_t m_jobBytes = 0;
    std::uint64_t m_pageBytes = 0;
    std::uint64_t m_paintedBefore = 0; ///< pixels of the page, when the outermost recording began
    std::uint64_t m_painted = 0; ///< by recordings that have ended
};

} // namespace quillrip
