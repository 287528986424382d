#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace quillrip {

/// What is counted. The limit's message names the kind that took the most.
enum class Work : std::uint8_t {
    Commands, ///< reading and obeying the language
    Recordings, ///< macros and user streams
    Decoding, ///< rows of images out of their compression
    Lines, ///< dashes, hatches, joins and caps
    Shapes, ///< edges in rows
    Pixels, ///< of the page that change
    Images, ///< source pixels
    Glyphs,
};
constexpr std::size_t kKindsOfWork = 8;

/// What a job may cost. Work is counted in units of about a nanosecond of a common processor. An honest page of
/// 600 dpi in RGB takes up to some two thousand million; the defaults are far above.
struct WorkBudget {
    std::uint64_t page = 60'000'000'000; ///< for one page, with all that leads up to it
    std::uint64_t job = 120'000'000'000; ///< for the whole job
    std::uint64_t perPage = 6'000'000'000; ///< what each finished page adds to that, and to the clocks
    /// Recordings make pages of a byte or two. No more of them add something than the input has this many bytes.
    std::uint64_t bytesPerPage = 300;
    /// Clocks stop what the count does not see, and jobs on machines that are slower than their work is worth.
    double processorSeconds = 900;
    double processorSecondsPerPage = 30;
    double wallSeconds = 3600;
    double wallSecondsPerPage = 120;
};

/// One account for all that a job does: drawing, decoding and interpreting charge it, and ask it inside their loops,
/// since a few bytes can ask for years of any of them. Past a limit it stays exhausted: the painter then draws no more,
/// and interpreters end with RunStatus::LimitExceeded.
///
/// Of one thread; the time of the others counts by the clocks only.
class WorkMeter {
public:
    explicit WorkMeter(const WorkBudget& budget = {});

    void charge(Work kind, std::uint64_t units)
    {
        m_spent[static_cast<std::size_t>(kind)] += units;
        m_untilLook -= static_cast<std::int64_t>(units);
        if (m_untilLook <= 0)
            look();
    }
    /// Charges, and says whether there is more. For loops: while (meter.allows(Work::Lines, 50)) ...
    [[nodiscard]] bool allows(Work kind, std::uint64_t units)
    {
        charge(kind, units);
        return !m_isExhausted;
    }
    /// A recording of so many bytes starts to run. What a job says itself is bounded by its length; recordings call
    /// each other.
    [[nodiscard]] bool allowsRecording(std::size_t bytes)
    {
        constexpr std::uint64_t unitsPerRun = 10'000;
        constexpr std::uint64_t unitsPerByte = 30;
        return allows(Work::Recordings, unitsPerRun + unitsPerByte * bytes);
    }
    bool isExhausted() const { return m_isExhausted; }
    /// So many bytes more of the job have been read.
    void addInput(std::uint64_t bytes) { m_input += bytes; }
    /// A page is whole: the next one has its own budget.
    void pageEnded();

    /// Units of the whole job.
    std::uint64_t spent() const;
    std::uint64_t spent(Work kind) const { return m_spent[static_cast<std::size_t>(kind)]; }
    /// Which limit was met, and what met it: a sentence without full stop. Empty before.
    const std::string& reason() const { return m_reason; }

private:
    void look();
    void exhaust(const std::string& limit);
    static double processorSeconds();
    static double wallSeconds();

    WorkBudget m_budget;
    std::array<std::uint64_t, kKindsOfWork> m_spent {};
    std::array<std::uint64_t, kKindsOfWork> m_spentBefore {}; ///< this page
    std::int64_t m_untilLook = 0;
    std::uint64_t m_pages = 0;
    std::uint64_t m_input = 0; ///< bytes
    double m_processorStart;
    double m_wallStart;
    bool m_isExhausted = false;
    std::string m_reason;
};

} // namespace quillrip
