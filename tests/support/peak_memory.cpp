#include "tests/support/peak_memory.h"

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> s_inUse { 0 };
std::atomic<std::size_t> s_most { 0 };

void* counted(std::size_t size)
{
    void* const memory = std::malloc(size);
    if (!memory)
        return nullptr;
    const std::size_t inUse = s_inUse += ::malloc_usable_size(memory);
    std::size_t most = s_most;
    while (inUse > most && !s_most.compare_exchange_weak(most, inUse)) { }
    return memory;
}

} // namespace

// Programs that link this count what they allocate; the arrays' and the sized forms come here too.
void* operator new(std::size_t size)
{
    if (void* const memory = counted(size))
        return memory;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return counted(size); }

void operator delete(void* memory) noexcept
{
    if (memory)
        s_inUse -= ::malloc_usable_size(memory);
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }

namespace quillrip::test {

PeakMemory::PeakMemory()
    : m_before(s_inUse)
{
    s_most = m_before;
}

std::size_t PeakMemory::bytes() const { return std::max<std::size_t>(s_most, m_before) - m_before; }

} // namespace quillrip::test
