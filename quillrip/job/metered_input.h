#pragma once

#include "quillrip/base/input_stream.h"
#include "quillrip/base/work_meter.h"

#include <cstddef>
#include <cstdint>

namespace quillrip {

/// An input whose bytes are charged, and add to what the job may keep. What is passed over since no language has it
/// costs next to nothing, and a device or a pipe need never end: when the job's budget is exhausted, the input ends.
class MeteredInput final : public InputStream {
public:
    /// Both must outlive it.
    MeteredInput(InputStream& input, WorkMeter& work)
        : m_input(input)
        , m_work(work)
    {
        m_offsetOfEnd = input.offset();
    }

    /// The budget is exhausted, and reading took most of it.
    bool isTooLong() const;

protected:
    std::size_t pull(std::uint8_t* to, std::size_t count) override;

private:
    InputStream& m_input;
    WorkMeter& m_work;
    std::uint64_t m_charged = 0;
};

} // namespace quillrip
