#pragma once

#include <algorithm>
#include <chrono>

namespace quillrip {

/// What all programs that one conversion starts may take together: processor time of theirs, and real time, which also
/// passes while a program waits.
class RunBudget {
public:
    using Seconds = std::chrono::duration<double>;

    explicit RunBudget(Seconds processor = std::chrono::minutes(30), Seconds real = std::chrono::hours(1))
        : m_processor(processor)
        , m_deadline(
              std::chrono::steady_clock::now() + std::chrono::duration_cast<std::chrono::steady_clock::duration>(real))
    {
    }

    void spendProcessor(Seconds time) { m_processor -= time; }
    Seconds processorLeft() const { return std::max(m_processor, Seconds::zero()); }
    Seconds realLeft() const
    {
        return std::max<Seconds>(m_deadline - std::chrono::steady_clock::now(), Seconds::zero());
    }
    bool isSpent() const { return processorLeft() == Seconds::zero() || realLeft() == Seconds::zero(); }

private:
    Seconds m_processor;
    std::chrono::steady_clock::time_point m_deadline;
};

} // namespace quillrip
