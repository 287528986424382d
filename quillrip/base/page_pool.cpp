#include "quillrip/base/page_pool.h"

#include "quillrip/base/sanitizer.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include <sys/mman.h>

namespace quillrip {

namespace {

/// Whoever waits goes on when so many blocks are free: to be woken for each would cost more than to wait a little.
constexpr std::size_t kWorthWaking = 8;

// A sanitizer watches the bounds of what comes from the heap, and of nothing else.

std::uint8_t* mapZeroed(std::size_t bytes)
{
    void* block = kIsWatchedBySanitizer
        ? std::calloc(bytes, 1)
        : mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (!block || block == MAP_FAILED)
        throw std::bad_alloc();
    return static_cast<std::uint8_t*>(block);
}

void unmap(std::uint8_t* block, std::size_t bytes)
{
    if (kIsWatchedBySanitizer)
        std::free(block);
    else
        munmap(block, bytes);
}

} // namespace

PagePool::~PagePool()
{
    for (const Block& block : m_free)
        unmap(block.pixels, block.bytes);
}

std::uint8_t* PagePool::takeFree(std::size_t bytes)
{
    const auto isOfSize = [bytes](const Block& block) { return block.bytes == bytes; };
    const auto found = std::find_if(m_free.rbegin(), m_free.rend(), isOfSize);
    if (found == m_free.rend())
        return nullptr;
    std::uint8_t* block = found->pixels;
    m_free.erase(std::next(found).base());
    return block;
}

std::uint8_t* PagePool::take(std::size_t bytes)
{
    std::unique_lock<std::mutex> lock { m_mutex };
    while (true) {
        if (std::uint8_t* block = takeFree(bytes)) {
            m_taken += bytes;
            return block;
        }
        // Those of pages of another size have probably had their time.
        for (const Block& block : m_free) {
            unmap(block.pixels, block.bytes);
            m_mapped -= block.bytes;
        }
        m_free.clear();
        m_wanted = bytes;
        if (mayMap())
            break;
        m_hasWaiter = true;
        m_cameBack.wait(lock, [this] { return mayMap() || m_free.size() >= kWorthWaking; });
        m_hasWaiter = false;
    }
    std::uint8_t* block = mapZeroed(bytes);
    m_mapped += bytes;
    m_taken += bytes;
    return block;
}

std::size_t PagePool::mostBytes(std::size_t more) const
{
    return std::max(m_finishedPage, m_taken - m_expected + more) + kBytesAhead;
}

bool PagePool::mayMap() const { return m_mapped + m_wanted <= mostBytes(m_wanted) || m_expected == 0 || !m_mayWait; }

void PagePool::keepOrUnmap(std::uint8_t* block, std::size_t bytes)
{
    m_taken -= bytes;
    // Pages come back in destructors, also when memory is missing.
    try {
        if (m_mapped <= mostBytes(0)) {
            m_free.push_back({ block, bytes });
            return;
        }
    } catch (const std::bad_alloc&) {
    }
    unmap(block, bytes);
    m_mapped -= bytes;
}

void PagePool::giveBack(std::uint8_t* block, std::size_t bytes)
{
    const std::lock_guard<std::mutex> lock { m_mutex };
    keepOrUnmap(block, bytes);
}

void PagePool::expect(std::size_t blocks, std::size_t bytesOfBlock)
{
    const std::lock_guard<std::mutex> lock { m_mutex };
    m_finishedPage = blocks * bytesOfBlock;
    m_expected += m_finishedPage;
}

void PagePool::giveBackExpected(std::uint8_t* block, std::size_t bytes)
{
    {
        const std::lock_guard<std::mutex> lock { m_mutex };
        m_expected -= bytes;
        keepOrUnmap(block, bytes);
        if (!m_hasWaiter || (!mayMap() && m_free.size() < kWorthWaking))
            return;
    }
    m_cameBack.notify_one();
}

void PagePool::expectNoMore()
{
    {
        const std::lock_guard<std::mutex> lock { m_mutex };
        m_mayWait = false;
    }
    m_cameBack.notify_one();
}

std::size_t PagePool::mappedBytes() const
{
    const std::lock_guard<std::mutex> lock { m_mutex };
    return m_mapped;
}

std::size_t PagePool::takenBytes() const
{
    const std::lock_guard<std::mutex> lock { m_mutex };
    return m_taken;
}

bool PagePool::hasWaiter() const
{
    const std::lock_guard<std::mutex> lock { m_mutex };
    return m_hasWaiter;
}

} // namespace quillrip
