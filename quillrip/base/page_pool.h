#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

namespace quillrip {

/// Memory for the pixels of pages, in blocks of some rows each. It is mapped, not taken from the heap, which would
/// write the zeros also of places that no page ever marks. What a page gives back, cleaned, the next one takes, since
/// fresh memory for every page costs as much time as drawing text on it. Blocks are given back on other threads than
/// they are taken on.
///
/// The page that is drawn and the one before, which is being encoded, have no more than kBytesAhead besides what the
/// larger one needs by itself: whoever draws gets as far as that, and goes on as blocks of the other page come back.
class PagePool {
public:
    /// Of a block, at most; a row that is longer has one of its own.
    static constexpr std::size_t kBlockBytes = std::size_t { 256 } << 10;
    static constexpr std::size_t kBytesAhead = std::size_t { 8 } << 20;

    PagePool() = default;
    ~PagePool();
    PagePool(const PagePool&) = delete;
    PagePool& operator=(const PagePool&) = delete;

    /// So many bytes, all 0. Throws std::bad_alloc when memory is short.
    std::uint8_t* take(std::size_t bytes);
    /// What take() gave for the same number of bytes; all 0 again.
    void giveBack(std::uint8_t* block, std::size_t bytes);

    /// So many blocks of a finished page will come back whatever the thread does that takes others.
    void expect(std::size_t blocks, std::size_t bytesOfBlock);
    /// giveBack() of one of those.
    void giveBackExpected(std::uint8_t* block, std::size_t bytes);
    /// They will not come back: from now on nobody waits.
    void expectNoMore();

    /// Of all blocks, those that were taken and those that are free.
    std::size_t mappedBytes() const;
    std::size_t takenBytes() const;
    /// Whether take() waits.
    bool hasWaiter() const;

private:
    struct Block {
        std::uint8_t* pixels;
        std::size_t bytes;
    };

    /// One of the free blocks, or null.
    std::uint8_t* takeFree(std::size_t bytes);
    void keepOrUnmap(std::uint8_t* block, std::size_t bytes);
    /// What all blocks may have where waiting helps, if the page that is drawn gets so many bytes more.
    std::size_t mostBytes(std::size_t more) const;
    /// Whether a block of m_wanted bytes may be added to those that there are.
    bool mayMap() const;

    mutable std::mutex m_mutex;
    std::condition_variable m_cameBack;
    std::vector<Block> m_free;
    // All in bytes.
    std::size_t m_mapped = 0;
    std::size_t m_taken = 0;
    std::size_t m_expected = 0; ///< of those that are taken
    std::size_t m_finishedPage = 0; ///< all that the last one had
    std::size_t m_wanted = 0; ///< by whoever took or waits for a block last
    bool m_mayWait = true;
    bool m_hasWaiter = false;
};

} // namespace quillrip
