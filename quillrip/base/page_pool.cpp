#include "quillrip/base/page_pool.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include <sys/mman.h>

// A sanitizer watches the bounds of what comes from the heap, and of nothing else.
#if defined(__SANITIZE_ADDRESS__)
#define QUILLRIP_PAGES_ON_HEAP
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QUILLRIP_PAGES_ON_HEAP
#endif
#endif

namespace quillrip {

namespace {

/// One is drawn while others are encoded; more come back only where pages differ in size.
constexpr std::size_t kMostFree = 2;

#ifdef QUILLRIP_PAGES_ON_HEAP

void* mapZeroed(std::size_t bytes) { return std::calloc(bytes, 1); }
void unmap(void* pixels, std::size_t) { std::free(pixels); }

#else

void* mapZeroed(std::size_t bytes)
{
    void* pixels = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pixels == MAP_FAILED ? nullptr : pixels;
}
void unmap(void* pixels, std::size_t bytes) { munmap(pixels, bytes); }

#endif

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
