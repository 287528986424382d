#include "quillrip/pclxl/image_decoders.h"
#include "tests/pclxl/stream_builder.h"
#include "tests/support/jpeg_writer.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::pclxl;
using quillrip::test::XlStream;
using Bytes = std::vector<std::uint8_t>;

namespace {

class Rows final : public RowSink {
public:
    explicit Rows(std::size_t rowBytes)
        : m_rowBytes(rowBytes)
    {
    }
    void row(const std::uint8_t* pixels) override { rows.emplace_back(pixels, pixels + m_rowBytes); }

    std::vector<Bytes> rows;

private:
    std::size_t m_rowBytes;
};

BlockLayout layoutOf(std::uint32_t width, int components = 1, std::uint32_t padding = 4)
{
    BlockLayout layout;
    layout.width = width;
    layout.components = components;
    layout.rowBytes = width * static_cast<std::size_t>(components);
    layout.padding = padding;
    return layout;
}

struct Decoded {
    Error error;
    std::vector<Bytes> rows;
};

Decoded decode(Compression compression, const Bytes& contents, const BlockLayout& layout, std::uint32_t rows,
    std::size_t cutBlocksAt = SIZE_MAX, const WorkBudget& budget = {})
{
    XlStream stream;
    for (std::size_t at = 0; at < contents.size(); at += cutBlocksAt == SIZE_MAX ? contents.size() : cutBlocksAt)
        stream.data(Bytes(contents.begin() + static_cast<std::ptrdiff_t>(at),
            contents.begin()
                + static_cast<std::ptrdiff_t>(
                    cutBlocksAt == SIZE_MAX ? contents.size() : std::min(contents.size(), at + cutBlocksAt))));
    MemoryInputStream input { ByteView(stream.bytes()) };
    EmbeddedData data(input, ByteOrder::LittleEndian, ByteOrder::LittleEndian);
    Rows sink(layout.rowBytes);
    SeedRow seed;
    WorkMeter work(budget);
    const Status status = decodeBlock(compression, data, layout, rows, seed, sink, work);
    return { status.error, sink.rows };
}

TEST(XlDecoders, UncompressedRowsArePadded)
{
    const Decoded d = decode(Compression::None, { 1, 2, 3, 0, 4, 5, 6, 0 }, layoutOf(3), 2);
    EXPECT_EQ(d.error, Error::None);
    EXPECT_EQ(d.rows, (std::vector<Bytes> { { 1, 2, 3 }, { 4, 5, 6 } }));
}

TEST(XlDecoders, TheLastRowMayLackItsPadding)
{
    const Decoded d = decode(Compression::None, { 1, 2, 3, 0, 4, 5, 6 }, layoutOf(3), 2);
    EXPECT_EQ(d.error, Error::None);
    EXPECT_EQ(d.rows.size(), 2u);
}

TEST(XlDecoders, PaddingCanBeAnyMultiple)
{
    EXPECT_EQ(decode(Compression::None, { 1, 2, 3, 4, 5, 6 }, layoutOf(3, 1, 1), 2).rows[1], (Bytes { 4, 5, 6 }));
    EXPECT_EQ(layoutOf(3, 1, 7).paddedRowBytes(), 7u);
    EXPECT_EQ(layoutOf(8, 1, 7).paddedRowBytes(), 14u);
}

TEST(XlDecoders, ShortDataKeepTheRowsBefore)
{
    const Decoded d = decode(Compression::None, { 1, 2, 3, 0, 4 }, layoutOf(3), 2);
    EXPECT_EQ(d.error, Error::MissingData);
    EXPECT_EQ(d.rows, (std::vector<Bytes> { { 1, 2, 3 } }));
}

TEST(XlDecoders, RunsAndLiteralsCrossRowsAndBlocks)
{
    // The example of the language: FF, 00 x3, FF, 00 x5, FF x4, 00 00.
    const Bytes code = { 0x00, 0xFF, 0xFE, 0x00, 0x00, 0xFF, 0xFC, 0x00, 0xFD, 0xFF, 0xFF, 0x00 };
    for (const std::size_t cut : { SIZE_MAX, std::size_t { 1 }, std::size_t { 5 } }) {
        const Decoded d = decode(Compression::RunLength, code, layoutOf(4), 4, cut);
        EXPECT_EQ(d.error, Error::None);
        EXPECT_EQ(d.rows,
            (std::vector<Bytes> { { 255, 0, 0, 0 }, { 255, 0, 0, 0 }, { 0, 0, 255, 255 }, { 255, 255, 0, 0 } }));
    }
}

TEST(XlDecoders, RunLengthCode128DoesNothing)
{
    const Decoded d = decode(Compression::RunLength, { 128, 128, 253, 7 }, layoutOf(4), 1);
    EXPECT_EQ(d.rows, (std::vector<Bytes> { { 7, 7, 7, 7 } }));
}

TEST(XlDecoders, DeltaRowsChangeTheRowBefore)
{
    const Bytes code = { 0x09, 0x00, 0xE0, 0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF, 0x00, 0x00, // first, same
        0x03, 0x00, 0x22, 0xAA, 0xBB }; // two bytes at offset 2
    const Decoded d = decode(Compression::DeltaRow, code, layoutOf(8), 3);
    EXPECT_EQ(d.error, Error::None);
    ASSERT_EQ(d.rows.size(), 3u);
    EXPECT_EQ(d.rows[0], (Bytes { 0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF }));
    EXPECT_EQ(d.rows[1], d.rows[0]);
    EXPECT_EQ(d.rows[2], (Bytes { 0x01, 0x23, 0xAA, 0xBB, 0x89, 0xAB, 0xCD, 0xEF }));
}

TEST(XlDecoders, DeltaOffsetsGrowByFurtherBytes)
{
    const Decoded d = decode(Compression::DeltaRow, { 4, 0, 0x1F, 255, 14, 9 }, layoutOf(304), 1);
    ASSERT_EQ(d.rows.size(), 1u);
    for (std::size_t i = 0; i < 304; ++i)
        EXPECT_EQ(d.rows[0][i], i == 300 ? 9 : 0) << i;
}

TEST(XlDecoders, DeltaBytesBeyondTheRowAreDropped)
{
    const Decoded d = decode(Compression::DeltaRow, { 4, 0, 0x43, 1, 2, 3 }, layoutOf(4), 1);
    EXPECT_EQ(d.error, Error::None);
    EXPECT_EQ(d.rows, (std::vector<Bytes> { { 0, 0, 0, 1 } }));
}

TEST(XlDecoders, DeltaRowsThatAreCutMissData)
{
    for (const Bytes& code : { Bytes { 5 }, Bytes { 5, 0, 0x20 }, Bytes { 1, 0, 0x1F }, Bytes { 1, 0, 0x20 } })
        EXPECT_EQ(decode(Compression::DeltaRow, code, layoutOf(4), 1).error, Error::MissingData);
}

TEST(XlDecoders, JpegGivesItsPixels)
{
    const Bytes gray(64, 100);
    const Decoded d = decode(Compression::Jpeg, test::writeJpeg(gray, 8, 8, 1), layoutOf(8), 8, 50);
    EXPECT_EQ(d.error, Error::None);
    ASSERT_EQ(d.rows.size(), 8u);
    EXPECT_NEAR(d.rows[7][7], 100, 1);
    Bytes red;
    for (int i = 0; i < 64; ++i)
        red.insert(red.end(), { 200, 30, 40 });
    const Decoded c = decode(Compression::Jpeg, test::writeJpeg(red, 8, 8, 3), layoutOf(8, 3), 8);
    ASSERT_EQ(c.rows.size(), 8u);
    EXPECT_NEAR(c.rows[3][9], 200, 3);
    EXPECT_NEAR(c.rows[3][10], 30, 3);
    EXPECT_NEAR(c.rows[3][11], 40, 3);
}

TEST(XlDecoders, JpegColoursFollowTheColourSpaceOfTheImage)
{
    Bytes red;
    for (int i = 0; i < 64; ++i)
        red.insert(red.end(), { 255, 0, 0 });
    const Decoded gray = decode(Compression::Jpeg, test::writeJpeg(red, 8, 8, 3), layoutOf(8, 1), 8);
    ASSERT_EQ(gray.rows.size(), 8u);
    EXPECT_NEAR(gray.rows[0][0], 76, 3);
    const Decoded rgb = decode(Compression::Jpeg, test::writeJpeg(Bytes(64, 90), 8, 8, 1), layoutOf(8, 3), 8);
    ASSERT_EQ(rgb.rows.size(), 8u);
    EXPECT_NEAR(rgb.rows[0][2], 90, 1);
}

TEST(XlDecoders, JpegOfAnotherSizeIsCutOrPaddedWhite)
{
    const Bytes jpeg = test::writeJpeg(Bytes(64, 100), 8, 8, 1);
    const Decoded narrow = decode(Compression::Jpeg, jpeg, layoutOf(5), 4);
    ASSERT_EQ(narrow.rows.size(), 4u);
    const Decoded wide = decode(Compression::Jpeg, jpeg, layoutOf(10), 12);
    ASSERT_EQ(wide.rows.size(), 8u);
    EXPECT_NEAR(wide.rows[0][7], 100, 1);
    EXPECT_EQ(wide.rows[0][8], 255);
}

TEST(XlDecoders, JpegEndsWithTheWork)
{
    const Bytes jpeg = test::writeJpeg(Bytes(std::size_t { 64 } * 64, 100), 64, 64, 1);
    WorkBudget budget;
    budget.page = 20'000;
    const Decoded d = decode(Compression::Jpeg, jpeg, layoutOf(64), 64, SIZE_MAX, budget);
    EXPECT_EQ(d.error, Error::LimitExceeded);
    EXPECT_GT(d.rows.size(), 0u);
    EXPECT_LT(d.rows.size(), 64u);
}

TEST(XlDecoders, BrokenJpegIsAnError)
{
    const Bytes jpeg = test::writeJpeg(Bytes(64 * 64, 100), 64, 64, 1);
    EXPECT_EQ(decode(Compression::Jpeg, { 1, 2, 3, 4, 5 }, layoutOf(8), 8).error, Error::IllegalDataValue);
    EXPECT_EQ(decode(Compression::Jpeg, {}, layoutOf(8), 8).error, Error::MissingData);
    for (std::size_t size = 1; size < jpeg.size(); size += 7) {
        const Decoded d = decode(
            Compression::Jpeg, Bytes(jpeg.begin(), jpeg.begin() + static_cast<std::ptrdiff_t>(size)), layoutOf(64), 64);
        EXPECT_TRUE(d.error == Error::MissingData || d.rows.size() == 64) << size;
    }
}

} // namespace
