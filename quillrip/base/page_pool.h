#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

namespace quillrip {

/// Memory for the pixels of pages. It is mapped, not taken from the heap, which would write the zeros also of places
/// that no page ever marks. What a page gives back, cleaned, the next one takes, since fresh memory for every page
/// costs as much time as drawing text on it. Pages are given back on other threads than they are taken on.
class PagePool {
public:
    PagePool() = default;
    ~PagePool();
    PagePool(const PagePool&) = delete;
    PagePool& operator=(const PagePool&) = delete;

    /// So many bytes, all 0; null when memory is short.
    std::uint8_t* take(std::size_t bytes);
    /// False for so many that cleaning them would cost more memory, in places that were never marked, than it saves
    /// time.
    static bool keeps(std::size_t bytes) { return bytes <= std::size_t { 32 } << 20; }
    /// What take() gave for the same number of bytes; all 0 again if keeps() says so.
    void giveBack(std::uint8_t* pixels, std::size_t bytes);

private:
    struct Block {
        std::uint8_t* pixels;
        std::size_t bytes;
    };

    std::mutex m_mutex;
    std::vector<Block> m_free;
};

} // namespace quillrip
