#include "quillrip/base/page_pool.h"

#include "quillrip/base/sanitizer.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include <sys/mman.h>

namespace quillrip {

namespace {

/// One is drawn while others are encoded; more come back only where pages differ in size.
constexpr std::size_t kMostFree = 2;

// A sanitizer watches the bounds of what comes from the heap, and of nothing else.

void* mapZeroed(std::size_t bytes)
{
    if (kIsWatchedBySanitizer)
        return std::calloc(bytes, 1);
    void* pixels = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pixels == MAP_FAILED ? nullptr : pixels;
}

void unmap(void* pixels, std::size_t bytes)
{
    if (kIsWatchedBySanitizer)
        std::free(pixels);
    else
        munmap(pixels, bytes);
}

} // namespace

PagePool::~PagePool()
{
    for (const Block& block : m_free)
        unmap(block.pixels, block.bytes);
}

std::uint8_t* PagePool::take(std::size_t bytes)
{
    {
        const std::lock_guard<std::mutex> lock { m_mutex };
        const auto isOfSize = [bytes](const Block& block) { return block.bytes == bytes; };
        const auto found = std::find_if(m_free.begin(), m_free.end(), isOfSize);
        if (found != m_free.end()) {
            std::uint8_t* pixels = found->pixels;
            m_free.erase(found);
            return pixels;
        }
        // A page of another size: those of the old size have probably had their time.
        for (const Block& block : m_free)
            unmap(block.pixels, block.bytes);
        m_free.clear();
    }
    return static_cast<std::uint8_t*>(mapZeroed(bytes));
}

void PagePool::giveBack(std::uint8_t* pixels, std::size_t bytes)
{
    const std::lock_guard<std::mutex> lock { m_mutex };
    // Pages come back in destructors, also when memory is missing.
    try {
        if (keeps(bytes) && m_free.size() < kMostFree) {
            m_free.push_back({ pixels, bytes });
            return;
        }
    } catch (const std::bad_alloc&) {
    }
    unmap(pixels, bytes);
}

} // namespace quillrip
