#include "quillrip/image/png_filter.h"
#include "tests/image/sample_pages.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include <zlib.h>

using namespace quillrip;
using namespace quillrip::test;

namespace {

std::uint32_t u32BigEndian(const std::vector<std::uint8_t>& bytes, std::size_t at)
{
    return static_cast<std::uint32_t>(bytes.at(at)) << 24 | static_cast<std::uint32_t>(bytes.at(at + 1)) << 16
        | static_cast<std::uint32_t>(bytes.at(at + 2)) << 8 | bytes.at(at + 3);
}

struct Chunk {
    std::string type;
    std::vector<std::uint8_t> data;
};

/// All chunks of a PNG file; none when a length or checksum is wrong.
std::vector<Chunk> chunksOf(const std::string& path)
{
    const auto bytes = readFile(path);
    std::vector<Chunk> chunks;
    for (std::size_t at = 8; at + 12 <= bytes.size();) {
        const std::size_t size = u32BigEndian(bytes, at);
        if (size > bytes.size() - at - 12 || crc32_z(0, &bytes[at + 4], size + 4) != u32BigEndian(bytes, at + 8 + size))
            return {};
        const auto data = bytes.begin() + static_cast<std::ptrdiff_t>(at) + 8;
        chunks.push_back({ std::string(data - 4, data), { data, data + static_cast<std::ptrdiff_t>(size) } });
        at += 12 + size;
    }
    return chunks;
}

/// True when the data chunks are one zlib stream, no byte more or less, of so many plain bytes.
bool isOneStream(const std::vector<Chunk>& chunks, std::size_t plainSize)
{
    std::vector<std::uint8_t> stream;
    for (const Chunk& chunk : chunks)
        if (chunk.type == "IDAT")
            stream.insert(stream.end(), chunk.data.begin(), chunk.data.end());
    std::vector<std::uint8_t> plain(plainSize + 1);
    uLongf plainCount = plain.size();
    uLong streamCount = stream.size();
    return uncompress2(plain.data(), &plainCount, stream.data(), &streamCount) == Z_OK && plainCount == plainSize
        && streamCount == stream.size();
}

void drawBox(PageBitmap& page, int left, int top, int right, int bottom, std::uint8_t ink)
{
    for (int y = top; y < bottom; ++y) {
        std::memset(page.row(y) + 3 * left, ink, static_cast<std::size_t>(3 * (right - left)));
        page.touch(y, left, right);
    }
}

/// Round trip, and the stream's form.
void expectWholePng(const PageBitmap& page)
{
    const ScratchFolder scratch;
    const auto options = optionsFor(scratch.path("page.png"));
    ASSERT_TRUE(write(options, { &page }));
    const auto chunks = chunksOf(options.path);
    ASSERT_GE(chunks.size(), 4u);
    EXPECT_EQ(chunks[0].type, "IHDR");
    EXPECT_EQ(chunks[1].type, "pHYs");
    for (std::size_t i = 2; i + 1 < chunks.size(); ++i)
        EXPECT_EQ(chunks[i].type, "IDAT");
    EXPECT_EQ(chunks.back().type, "IEND");
    EXPECT_TRUE(isOneStream(chunks, (page.rowBytes() + 1) * static_cast<std::size_t>(page.height())));
    const auto images = decodeFile(options.path);
    ASSERT_EQ(images.size(), 1u);
    EXPECT_TRUE(shows(images[0], page));
}

} // namespace

TEST(PngEncoder, LongWhiteRunsMayLieAnywhere)
{
    PageBitmap page { PixelFormat::Rgb24, 2000, 1500, { 600, 600 } };
    drawBox(page, 10, 100, 1990, 101, 0x80); // one row between two runs
    drawBox(page, 0, 300, 2000, 420, 0x11);
    drawBox(page, 500, 425, 600, 430, 0xFF); // after a short run
    drawBox(page, 0, 1499, 1, 1500, 0xFF); // the last row
    expectWholePng(page);
}

TEST(PngEncoder, APageMayEndInAWhiteRun)
{
    PageBitmap page { PixelFormat::Rgb24, 2000, 700, { 600, 600 } };
    drawBox(page, 0, 0, 2000, 3, 0x80);
    expectWholePng(page);
}

TEST(PngEncoder, RowsThatWereTouchedButAreWhiteAreNoHarm)
{
    PageBitmap page { PixelFormat::Rgb24, 2000, 700, { 600, 600 } };
    drawBox(page, 0, 100, 2000, 600, 0);
    expectWholePng(page);
}

TEST(PngEncoder, PicturesPatternsAndDrawingsAreEachWhole)
{
    // Several bands of each, on one page: the way of compressing changes between bands.
    PageBitmap page { PixelFormat::Rgb24, 1000, 1600, { 600, 600 } };
    std::srand(1);
    for (int y = 0; y < page.height(); ++y) {
        for (int i = 0; i < 3000; ++i) {
            const int dither = (i / 3 * 7 + y * 13) % 31 < 11 ? 255 : 0;
            const int smooth = (i / 3 + y) / 8 + std::rand() % 3;
            const int drawing = i % 700 == 0 ? 255 : 0;
            page.row(y)[i] = static_cast<std::uint8_t>(y < 500 ? dither : y < 1100 ? smooth : drawing);
        }
        page.touch(y, 0, 1000);
    }
    expectWholePng(page);
}

TEST(PngEncoder, WhitePagesTakeLittleMoreThanDeflateNeeds)
{
    const ScratchFolder scratch;
    const PageBitmap page { PixelFormat::Rgb24, 4960, 7016, { 600, 600 } };
    ASSERT_TRUE(write(optionsFor(scratch.path("page.png")), { &page }));
    // No repetition is longer than 258 bytes or takes less than 2 bits.
    const std::size_t least = page.rowBytes() * 7016 / 258 / 4;
    EXPECT_LT(readFile(scratch.path("page.png")).size(), least + least / 5);
}

TEST(PngRowFilter, PaethIsTheStandardsPredictor)
{
    for (const PixelFormat format : { PixelFormat::Gray8, PixelFormat::Rgb24 }) {
        const int bytesPerPixel = bitsPerPixel(format) / 8;
        for (const Content content : { Content::Noise, Content::Text, Content::Picture, Content::Solid }) {
            const PageBitmap page = makePage(format, 77, 30, content);
            const auto light = [&](int x, int y) {
                return x < 0 || y < 0 ? 0 : 255 - page.row(y)[x]; // outside counts as 0
            };
            PngRowFilter filter { page };
            std::vector<std::uint8_t> row(1 + page.rowBytes());
            for (int y = 1; y < page.height(); ++y) {
                if (PngRowFilter::isRepeatedWhite(page, y))
                    continue;
                filter.apply(y, PngFilter::Paeth, row.data());
                ASSERT_EQ(row[0], 4);
                for (int x = 0; x < 77 * bytesPerPixel; ++x) {
                    const int a = light(x - bytesPerPixel, y);
                    const int b = light(x, y - 1);
                    const int c = x < bytesPerPixel ? 0 : light(x - bytesPerPixel, y - 1);
                    const int estimate = a + b - c;
                    const int da = std::abs(estimate - a);
                    const int db = std::abs(estimate - b);
                    const int dc = std::abs(estimate - c);
                    const int predicted = da <= db && da <= dc ? a : db <= dc ? b : c;
                    ASSERT_EQ(row[1 + static_cast<std::size_t>(x)], static_cast<std::uint8_t>(light(x, y) - predicted))
                        << x << ", " << y;
                }
            }
        }
    }
}

TEST(PngRowFilter, UpIsWhatARowAddsToTheOneAbove)
{
    for (const PixelFormat format : { PixelFormat::Bilevel, PixelFormat::Gray8, PixelFormat::Rgb24 }) {
        for (const Content content : { Content::Noise, Content::Text, Content::Picture }) {
            const PageBitmap page = makePage(format, 77, 30, content);
            PngRowFilter filter { page };
            // What is not written shows.
            std::vector<std::uint8_t> row(1 + page.rowBytes(), 0xEE);
            std::vector<std::uint8_t> light(page.rowBytes());
            std::vector<std::uint8_t> lightAbove(page.rowBytes());
            for (const int y : { 1, 2, 3, 17, 16, 29 }) { // also out of order
                filter.apply(y, PngFilter::Up, row.data());
                lightRow(page, y, light.data());
                lightRow(page, y - 1, lightAbove.data());
                ASSERT_EQ(row[0], 2);
                for (std::size_t i = 0; i < light.size(); ++i)
                    ASSERT_EQ(static_cast<std::uint8_t>(lightAbove[i] + row[1 + i]), light[i]) << i << ", " << y;
            }
        }
    }
}

TEST(PngRowFilter, RepeatedWhiteRowsAreZeros)
{
    const PageBitmap page { PixelFormat::Bilevel, 77, 3, {} };
    PngRowFilter filter { page };
    std::vector<std::uint8_t> row(11, 0xEE);
    filter.apply(0, PngFilter::None, row.data());
    EXPECT_EQ(row[0], 0);
    filter.apply(1, PngFilter::None, row.data());
    EXPECT_EQ(row[0], 2);
    for (std::size_t i = 1; i <= 10; ++i)
        EXPECT_EQ(row[i], 0);
}
