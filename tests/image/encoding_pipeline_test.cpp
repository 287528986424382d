#include "quillrip/image/encoding_pipeline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <new>

using namespace quillrip;

namespace {

/// What the encoders of a test did.
struct Log {
    std::vector<int> written; ///< page * 100 + piece
    std::vector<int> ended;
    std::atomic<int> alive { 0 };
    int mostAlive = 0; ///< as seen whenever a page was added
};

enum class Fault { None, Encoding, Memory, Writing, MemoryWhileWriting };

class FakeEncoder final : public PageEncoder {
public:
    FakeEncoder(int page, int pieces, Log& log, Fault fault = Fault::None)
        : PageEncoder(PageBitmap { PixelFormat::Bilevel, 8, 8, {} })
        , m_page(page)
        , m_pieces(pieces)
        , m_log(log)
        , m_fault(fault)
    {
        m_log.mostAlive = std::max(m_log.mostAlive, ++m_log.alive);
    }
    ~FakeEncoder() override { --m_log.alive; }

    int pieceCount() const override { return m_pieces; }

    std::string encode(int piece, EncodedPiece& encoded) const override
    {
        // Some pieces take longer than those after them.
        volatile int work = 0;
        for (int i = 0; i < (piece % 3 == 0 ? 200000 : 10); ++i)
            work = work + 1;
        if (m_fault == Fault::Memory)
            throw std::bad_alloc {};
        encoded.bytes.assign(1, static_cast<std::uint8_t>(piece));
        return m_fault == Fault::Encoding ? "it went wrong" : "";
    }

    bool begin() override { return true; }
    bool write(const EncodedPiece& piece) override
    {
        if (m_fault == Fault::MemoryWhileWriting)
            throw std::bad_alloc {};
        m_log.written.push_back(m_page * 100 + piece.bytes[0]);
        return m_fault != Fault::Writing;
    }
    bool end() override
    {
        m_log.ended.push_back(m_page);
        return true;
    }

protected:
    RowRange rowsFrom(int) const override { return { 0, page().height() }; }

private:
    int m_page;
    int m_pieces;
    Log& m_log;
    Fault m_fault;
};

} // namespace

TEST(EncodingPipeline, WritesPiecesAndPagesInOrderOnAnyNumberOfThreads)
{
    for (const unsigned threads : { 1u, 2u, 3u, 8u }) {
        Log log;
        EncodingPipeline pipeline { threads };
        std::vector<int> expected;
        for (int page = 0; page < 20; ++page) {
            const int pieces = 1 + page * 7 % 23;
            ASSERT_TRUE(pipeline.add(std::make_unique<FakeEncoder>(page, pieces, log)));
            for (int piece = 0; piece < pieces; ++piece)
                expected.push_back(page * 100 + piece);
        }
        ASSERT_TRUE(pipeline.drain());
        EXPECT_EQ(log.written, expected);
        EXPECT_EQ(log.ended.size(), 20u);
    }
}

TEST(EncodingPipeline, HoldsNoMoreThanTwoPagesBesidesTheNewOne)
{
    Log log;
    EncodingPipeline pipeline { 2 };
    for (int page = 0; page < 50; ++page)
        ASSERT_TRUE(pipeline.add(std::make_unique<FakeEncoder>(page, 2, log)));
    ASSERT_TRUE(pipeline.drain());
    EXPECT_LE(log.mostAlive, 3);
    EXPECT_EQ(log.alive, 0);
}

TEST(EncodingPipeline, FailuresEndItAndSayWhy)
{
    for (const Fault fault : { Fault::Encoding, Fault::Memory, Fault::Writing, Fault::MemoryWhileWriting }) {
        Log log;
        EncodingPipeline pipeline { 2 };
        ASSERT_TRUE(pipeline.add(std::make_unique<FakeEncoder>(0, 3, log)));
        static_cast<void>(pipeline.add(std::make_unique<FakeEncoder>(1, 3, log, fault)));
        EXPECT_FALSE(pipeline.drain());
        EXPECT_FALSE(pipeline.add(std::make_unique<FakeEncoder>(2, 3, log)));
        for (const int page : log.ended)
            EXPECT_EQ(page, 0);
        const std::string expected = fault == Fault::Encoding ? "it went wrong"
            : fault == Fault::Writing                         ? "" // the output knows
                                                              : "there is not enough memory";
        EXPECT_EQ(pipeline.encodingReason(), expected);
    }
}

TEST(EncodingPipeline, MayBeGivenUpAtAnyTime)
{
    Log log;
    for (int pages = 0; pages < 4; ++pages) {
        EncodingPipeline pipeline { 2 };
        for (int page = 0; page < pages; ++page)
            ASSERT_TRUE(pipeline.add(std::make_unique<FakeEncoder>(page, 20, log)));
    }
    EXPECT_EQ(log.alive, 0);
}
