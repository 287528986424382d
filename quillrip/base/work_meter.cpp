#include "quillrip/base/work_meter.h"

#include <algorithm>
#include <ctime>
#include <numeric>

namespace quillrip {

namespace {

/// Units between two looks at limits and clocks: a hundredth of a second.
constexpr std::uint64_t kLookEvery = 10'000'000;

constexpr std::array<const char*, kKindsOfWork> kNames { "commands", "macros", "compressed data", "lines", "shapes",
    "painted areas", "images", "characters" };

std::uint64_t sumOf(const std::array<std::uint64_t, kKindsOfWork>& spent)
{
    return std::accumulate(spent.begin(), spent.end(), std::uint64_t { 0 });
}

double secondsOf(clockid_t clock)
{
    timespec now {};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

} // namespace

WorkMeter::WorkMeter(const WorkBudget& budget)
    : m_budget(budget)
    , m_processorStart(processorSeconds())
    , m_wallStart(wallSeconds())
{
    look();
}

void WorkMeter::pageEnded()
{
    m_spentBefore = m_spent;
    ++m_pages;
}

std::uint64_t WorkMeter::spent() const { return sumOf(m_spent); }

void WorkMeter::look()
{
    const std::uint64_t job = spent();
    const std::uint64_t page = job - sumOf(m_spentBefore);
    const std::uint64_t meant = std::min(m_pages, m_input / m_budget.bytesPerPage);
    const std::uint64_t jobLimit = m_budget.job + meant * m_budget.perPage;
    const auto pages = static_cast<double>(meant);
    if (page > m_budget.page)
        exhaust("page " + std::to_string(m_pages + 1) + " asks for more drawing than any page needs");
    else if (job > jobLimit)
        exhaust("the job asks for more drawing than its pages need");
    else if (processorSeconds() - m_processorStart
        > m_budget.processorSeconds + pages * m_budget.processorSecondsPerPage)
        exhaust("the job takes more processor time than its pages need");
    else if (wallSeconds() - m_wallStart > m_budget.wallSeconds + pages * m_budget.wallSecondsPerPage)
        exhaust("the job takes more time than its pages need");
    const std::uint64_t rest
        = std::min(m_budget.page - std::min(page, m_budget.page), jobLimit - std::min(job, jobLimit));
    m_untilLook = static_cast<std::int64_t>(m_isExhausted ? kLookEvery : std::min(kLookEvery, rest + 1));
}

void WorkMeter::exhaust(const std::string& limit)
{
    if (m_isExhausted)
        return;
    m_isExhausted = true;
    std::size_t most = 0;
    for (std::size_t kind = 0; kind < kKindsOfWork; ++kind) {
        if (m_spent[kind] - m_spentBefore[kind] > m_spent[most] - m_spentBefore[most])
            most = kind;
    }
    m_reason = limit + ", most of it for " + kNames[most];
}

double WorkMeter::processorSeconds() { return secondsOf(CLOCK_PROCESS_CPUTIME_ID); }
double WorkMeter::wallSeconds() { return secondsOf(CLOCK_MONOTONIC); }

} // namespace quillrip
