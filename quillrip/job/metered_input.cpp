#include "quillrip/job/metered_input.h"

#include "quillrip/base/heap_account.h"

#include <algorithm>
#include <cstdint>

namespace quillrip {

namespace {

// More than the fastest way to pass over a byte takes: with the default budget 15 GB may belong to no page.
constexpr std::uint64_t kUnitsPerByte = 4;

} // namespace

bool MeteredInput::isTooLong() const { return m_work.isExhausted() && m_charged > m_work.spent() / 2; }

std::size_t MeteredInput::pull(std::uint8_t* to, std::size_t count)
{
    if (m_work.isExhausted())
        return 0;
    // No more than there is: a pipe may have nothing else to say for a while.
    const ByteView window = m_input.window(1);
    const std::size_t taken = std::min(count, window.size);
    std::copy_n(window.data, taken, to);
    m_input.skip(taken);
    m_failed = m_input.failed();
    HeapAccount::addInput(taken);
    m_work.addInput(taken);
    m_charged += kUnitsPerByte * taken;
    m_work.charge(Work::Commands, kUnitsPerByte * taken);
    return taken;
}

} // namespace quillrip
