#include "quillrip/image/page_encoder.h"

#include "quillrip/image/file_encoder.h"
#include "quillrip/image/tiff_document.h"
#include "tests/image/sample_pages.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;

namespace {

using Piece = std::vector<std::uint8_t>;

class FreedRows : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_files.open(m_scratch.path("page")));
        ASSERT_TRUE(m_tiff.open());
    }

    std::unique_ptr<PageEncoder> encoderOf(PageBitmap&& page)
    {
        const PageTarget target { m_files, m_scratch.path("page") };
        const std::string kind = GetParam();
        std::string reason;
        return kind == "Bmp" ? makeBmpEncoder(std::move(page), target, reason)
            : kind == "Pcx"  ? makePcxEncoder(std::move(page), target, reason)
            : kind == "Png"  ? makePngEncoder(std::move(page), target)
            : kind == "Jpeg" ? makeJpegEncoder(std::move(page), target, 90, reason)
                             : m_tiff.makeEncoder(std::move(page));
    }

    ScratchFolder m_scratch;
    OutputFiles m_files { OutputFiles::Options {} };
    DocumentOptions m_options = optionsFor("page.tif", TiffCompression::Deflate);
    TiffDocument m_tiff { m_options, m_files };
};

INSTANTIATE_TEST_SUITE_P(Encoders, FreedRows, testing::Values("Bmp", "Pcx", "Png", "Jpeg", "Tiff"),
    [](const auto& info) { return std::string { info.param }; });

TEST_P(FreedRows, AreNotLookedAtByThePiecesBehind)
{
    // A row of a PNG and its filter's number have 1024 bytes: pieces begin where blocks of the page's memory do.
    for (const Content content : { Content::Noise, Content::Picture }) {
        PageBitmap page = makePage(PixelFormat::Gray8, 1023, 3100, content);
        const auto keeping = encoderOf(copyOf(page));
        const std::shared_ptr<PagePool> pool = page.pool();
        const auto freeing = encoderOf(std::move(page));
        ASSERT_GT(keeping->pieceCount(), 3);
        const std::size_t whole = pool->takenBytes();
        for (int i = 0; i < keeping->pieceCount(); ++i) {
            freeing->freeRowsBefore(i);
            EncodedPiece expected;
            EncodedPiece piece;
            ASSERT_EQ(keeping->encode(i, expected), "");
            ASSERT_EQ(freeing->encode(i, piece), "");
            EXPECT_TRUE(piece.bytes == expected.bytes) << "piece " << i;
        }
        EXPECT_LT(pool->takenBytes(), whole / 2);
    }
}

} // namespace
