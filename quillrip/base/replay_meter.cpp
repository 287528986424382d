#include "quillrip/base/replay_meter.h"

namespace quillrip {

namespace {

/// What all recordings of a job may read, for each execution allowed.
constexpr std::uint64_t kBytesPerExecution = 4096;

std::uint64_t paintedPixels(const PageBitmap* page) { return page ? page->paintedPixels() : 0; }

} // namespace

bool ReplayMeter::enter(std::size_t bytes, const PageBitmap* page)
{
    if (m_depth++ == 0)
        m_paintedBefore = paintedPixels(page);
    m_jobBytes += bytes;
    m_pageBytes += bytes;
    return ++m_executions <= m_limits.macroExecutions && m_jobBytes <= kBytesPerExecution * m_limits.macroExecutions
        && m_pageBytes <= m_limits.macroBytes;
}

void ReplayMeter::leave(const PageBitmap* page)
{
    if (--m_depth == 0)
        m_painted += paintedPixels(page) - m_paintedBefore;
}

bool ReplayMeter::mayGoOn(const PageBitmap* page) const
{
    if (!page)
        return true;
    const auto pixels = static_cast<std::uint64_t>(page->width()) * static_cast<std::uint64_t>(page->height());
    return m_painted + page->paintedPixels() - m_paintedBefore <= pixels * m_limits.macroCoats;
}

void ReplayMeter::pageEnded() { m_pageBytes = m_paintedBefore = m_painted = 0; }

} // namespace quillrip
