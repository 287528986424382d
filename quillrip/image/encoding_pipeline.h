#pragma once

#include "quillrip/base/page_bitmap.h"
#include "quillrip/image/page_encoder.h"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace quillrip {

/// Encodes pages on several threads and writes them in order.
///
/// A thread takes the next piece in reading order, of whichever page: a page of many pieces is encoded by all threads
/// together, pages of one piece side by side. Whoever completes the piece that the file waits for writes it, and all
/// that follow it and are done.
class EncodingPipeline {
public:
    explicit EncodingPipeline(unsigned threads);
    /// Gives up what is not written yet.
    ~EncodingPipeline();
    EncodingPipeline(const EncodingPipeline&) = delete;
    EncodingPipeline& operator=(const EncodingPipeline&) = delete;

    /// Waits until there is room, then takes the page. False when encoding or writing failed, now or before.
    [[nodiscard]] bool add(std::unique_ptr<PageEncoder> encoder);
    /// Waits until all is written; false as for add().
    [[nodiscard]] bool drain();

    /// Why encoding failed; empty when it did not, or when the output did.
    std::string encodingReason() const;
    bool isOutOfMemory() const;

private:
    struct Job {
        std::unique_ptr<PageEncoder> encoder;
        std::size_t pageBytes = 0;
        std::shared_ptr<PagePool> pool; ///< of the page, which whoever draws may wait for
        int pieceCount = 0;
        int taken = 0; ///< pieces that a thread has begun
        int written = 0;
        struct Slot {
            EncodedPiece piece;
            bool isDone = false;
        };
        std::deque<Slot> slots; ///< the pieces from `written` to `taken`
    };

    bool hasRoomFor(const PageEncoder& encoder) const;
    Job* nextJob();
    bool startThread();
    void run();
    void encodeOnePiece(std::unique_lock<std::mutex>& lock, Job& job);
    void encodeOnePieceOrFail(std::unique_lock<std::mutex>& lock, Job& job);
    /// Nothing is encoded any more, and nobody waits for that.
    void fail();
    void writeWhatIsDone(std::unique_lock<std::mutex>& lock);
    EncodedPiece takeSpare();
    void keepSpare(EncodedPiece&& piece);

    const unsigned m_threadLimit;
    mutable std::mutex m_mutex;
    std::condition_variable m_workChanged; ///< there may be a piece to take
    std::condition_variable m_progressed; ///< a page was finished, or all is lost
    std::deque<std::unique_ptr<Job>> m_jobs;
    std::vector<EncodedPiece> m_spare; ///< written ones, whose memory the next ones take
    std::vector<std::thread> m_threads;
    std::string m_reason;
    bool m_hasFailed = false;
    bool m_isOutOfMemory = false;
    bool m_isWriting = false;
    bool m_isEnding = false;
};

} // namespace quillrip
