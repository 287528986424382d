#include "quillrip/image/encoding_pipeline.h"

#include "quillrip/base/heap_account.h"

#include <algorithm>
#include <new>
#include <system_error>

namespace quillrip {

namespace {

constexpr std::size_t kPagesInWork = 2;
/// More than this, and there is only one page in work besides the one that is being drawn, unless pages are of one
/// piece: only side by side can these be encoded on several threads.
constexpr std::size_t kBytesInWork = std::size_t { 16 } << 20;
/// Pieces of a page that are encoded and wait for one before them, per thread.
constexpr int kPiecesAhead = 4;

std::size_t bytesOf(const PageBitmap& page) { return page.stride() * static_cast<std::size_t>(page.height()); }

} // namespace

EncodingPipeline::EncodingPipeline(unsigned threads)
    : m_threadLimit(threads > 0 ? threads : std::clamp(std::thread::hardware_concurrency(), 1u, 4u))
{
    m_spare.reserve(m_threadLimit);
}

EncodingPipeline::~EncodingPipeline()
{
    {
        const std::lock_guard<std::mutex> lock { m_mutex };
        m_isEnding = true;
    }
    m_workChanged.notify_all();
    for (std::thread& thread : m_threads)
        thread.join();
}

bool EncodingPipeline::hasRoomFor(const PageEncoder& encoder) const
{
    if (m_jobs.empty())
        return true;
    std::size_t bytes = bytesOf(encoder.page());
    bool areOfOnePiece = encoder.pieceCount() == 1;
    for (const auto& job : m_jobs) {
        bytes += job->pageBytes;
        areOfOnePiece = areOfOnePiece && job->pieceCount == 1;
    }
    return m_jobs.size() < kPagesInWork && (bytes <= kBytesInWork || areOfOnePiece);
}

bool EncodingPipeline::startThread()
{
    try {
        m_threads.emplace_back([this] { run(); });
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

bool EncodingPipeline::add(std::unique_ptr<PageEncoder> encoder)
{
    std::unique_lock<std::mutex> lock { m_mutex };
    m_progressed.wait(lock, [&] { return m_hasFailed || hasRoomFor(*encoder); });
    if (m_hasFailed)
        return false;
    auto job = std::make_unique<Job>();
    job->pageBytes = bytesOf(encoder->page());
    job->pool = encoder->page().pool();
    job->encoder = std::move(encoder);
    job->pieceCount = job->encoder->pieceCount();
    const auto threads
        = std::min(m_threads.size() + static_cast<std::size_t>(job->pieceCount), std::size_t { m_threadLimit });
    m_jobs.push_back(std::move(job));
    while (m_threads.size() < threads && startThread()) { }
    // A system that gives us no thread at all gets its pages encoded here.
    while (m_threads.empty() && !m_hasFailed && !m_jobs.empty())
        encodeOnePieceOrFail(lock, *m_jobs.front());
    m_workChanged.notify_all();
    return !m_hasFailed;
}

bool EncodingPipeline::drain()
{
    std::unique_lock<std::mutex> lock { m_mutex };
    m_progressed.wait(lock, [this] { return m_hasFailed || m_jobs.empty(); });
    return !m_hasFailed;
}

std::string EncodingPipeline::encodingReason() const
{
    const std::lock_guard<std::mutex> lock { m_mutex };
    return m_isOutOfMemory ? HeapAccount::reason() : m_reason;
}

bool EncodingPipeline::isOutOfMemory() const
{
    const std::lock_guard<std::mutex> lock { m_mutex };
    return m_isOutOfMemory;
}

EncodingPipeline::Job* EncodingPipeline::nextJob()
{
    for (const auto& job : m_jobs)
        if (job->taken < job->pieceCount)
            return job->taken - job->written < kPiecesAhead * static_cast<int>(m_threadLimit) ? job.get() : nullptr;
    return nullptr;
}

void EncodingPipeline::run()
{
    std::unique_lock<std::mutex> lock { m_mutex };
    while (true) {
        Job* job = nullptr;
        m_workChanged.wait(lock, [&] { return m_isEnding || (!m_hasFailed && (job = nextJob()) != nullptr); });
        if (m_isEnding)
            return;
        encodeOnePieceOrFail(lock, *job);
    }
}

void EncodingPipeline::encodeOnePieceOrFail(std::unique_lock<std::mutex>& lock, Job& job)
{
    // No exception may leave a thread, and to keep a sentence about missing memory would need some.
    try {
        encodeOnePiece(lock, job);
    } catch (const std::bad_alloc&) {
        if (!lock.owns_lock())
            lock.lock();
        m_isOutOfMemory = true;
        m_isWriting = false;
        fail();
    }
}

void EncodingPipeline::fail()
{
    m_hasFailed = true;
    for (const auto& job : m_jobs)
        job->pool->expectNoMore();
    m_progressed.notify_all();
    m_workChanged.notify_all();
}

void EncodingPipeline::encodeOnePiece(std::unique_lock<std::mutex>& lock, Job& job)
{
    const int number = job.taken++;
    job.slots.emplace_back();
    EncodedPiece piece = takeSpare();
    lock.unlock();
    const std::string reason = job.encoder->encode(number, piece);
    lock.lock();
    if (!reason.empty()) {
        m_reason = m_reason.empty() ? reason : m_reason;
        fail();
        return;
    }
    // The job is still there: it ends when its last piece, this one perhaps, has been written.
    Job::Slot& slot = job.slots[static_cast<std::size_t>(number - job.written)];
    slot.piece = std::move(piece);
    slot.isDone = true;
    writeWhatIsDone(lock);
}

EncodedPiece EncodingPipeline::takeSpare()
{
    if (m_spare.empty())
        return {};
    EncodedPiece piece = std::move(m_spare.back());
    m_spare.pop_back();
    return piece;
}

void EncodingPipeline::keepSpare(EncodedPiece&& piece)
{
    // Fresh memory is mapped and cleared by the system, which takes as long as filling it.
    if (m_spare.size() < m_threadLimit)
        m_spare.push_back(std::move(piece));
}

void EncodingPipeline::writeWhatIsDone(std::unique_lock<std::mutex>& lock)
{
    if (m_isWriting)
        return;
    m_isWriting = true;
    while (!m_hasFailed && !m_jobs.empty() && !m_jobs.front()->slots.empty() && m_jobs.front()->slots.front().isDone) {
        Job& job = *m_jobs.front();
        EncodedPiece piece = std::move(job.slots.front().piece);
        const bool isFirst = job.written == 0;
        const bool isLast = job.written == job.pieceCount - 1;
        lock.unlock();
        const bool isGood
            = (!isFirst || job.encoder->begin()) && job.encoder->write(piece) && (!isLast || job.encoder->end());
        if (isLast)
            job.encoder.reset(); // frees the page
        else
            job.encoder->freeRowsBefore(job.written + 1);
        lock.lock();
        keepSpare(std::move(piece));
        ++job.written;
        job.slots.pop_front();
        if (isLast)
            m_jobs.pop_front();
        if (!isGood)
            fail();
        if (isLast)
            m_progressed.notify_all();
        m_workChanged.notify_all();
    }
    m_isWriting = false;
}

} // namespace quillrip
