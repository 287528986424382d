#include "quillrip/base/heap_account.h"

#include <new>

namespace quillrip {

namespace {

/// What the bound is made of. Of the thread that reads the job; others see the bound alone.
struct Terms {
    MemoryBudget budget;
    std::uint64_t input = 0;
    bool isOpen = false;

    std::uint64_t bound() const { return isOpen ? total() : UINT64_MAX; }
    std::uint64_t total() const
    {
        const std::uint64_t most = budget.mostForInput;
        const bool isWithin = budget.perInputByte == 0 || input < most / budget.perInputByte;
        return budget.bytes + (isWithin ? input * budget.perInputByte : most);
    }
};

Terms s_terms;

} // namespace

void HeapAccount::open(const MemoryBudget& budget) noexcept
{
    s_terms = { budget, 0, true };
    s_bound = s_terms.bound();
    s_isRefusing = false;
}

void HeapAccount::close() noexcept
{
    s_terms.isOpen = false;
    s_bound = s_terms.bound();
}

void HeapAccount::addInput(std::uint64_t bytes) noexcept
{
    s_terms.input += bytes;
    s_bound = s_terms.bound();
}

std::string HeapAccount::reason()
{
    if (!s_isRefusing)
        return "there is not enough memory";
    return "the job needs more than " + std::to_string(s_terms.total() >> 20) + " MiB of memory besides its pages";
}

void HeapClaim::add(std::uint64_t bytes)
{
    if (!HeapAccount::take(bytes))
        throw std::bad_alloc {};
    m_bytes += bytes;
}

} // namespace quillrip
