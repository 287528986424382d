// Bitmaps: records that copy them, and what lies in them.

#include "quillrip/emf/picture.h"
#include "tests/emf/emf_bench.h"
#include "tests/support/spare_heap.h"

#include <gtest/gtest.h>

namespace quillrip::test {
namespace {

using emf::ColorUsage;
using emf::DibContext;
using emf::Pixels;

/// Rows from the bottom: blue and green, then red and white.
Bytes fourColors() { return { 255, 0, 0, 0, 255, 0, 0, 0, 0, 0, 255, 255, 255, 255, 0, 0 }; }

/// A STRETCHDIBITS record.
Bytes stretch(int height, const Bytes& bits, std::int64_t operation = 0x00CC0020, int width = 20)
{
    const Bytes header = bitmapHeader(2, height, 24);
    return boundedRecord(0x51,
        { 100, 100, 0, 0, 2, 2, 80, 40, 120, static_cast<std::int64_t>(bits.size()), 0, operation, width, 20 },
        header + bits);
}

/// BITBLT and its kin, with the header right behind the fixed part of `fixedSize` bytes.
Bytes blit(std::uint32_t number, std::int64_t operation, int width, int height, const Bytes& header, const Bytes& bits,
    int sourceX = 0, const Bytes& more = {}, std::int64_t usage = 0)
{
    const auto start = 100 + static_cast<std::int64_t>(more.size());
    const auto headerSize = static_cast<std::int64_t>(header.size());
    return boundedRecord(number,
        { 100, 100, width, height, operation, sourceX, 0, bitsOf(1), 0, 0, bitsOf(1), 0, 0, 0xFFFFFF, usage,
            header.empty() ? 0 : start, headerSize, header.empty() ? 0 : start + headerSize,
            static_cast<std::int64_t>(bits.size()) },
        more + header + bits);
}

TEST(EmfBitmap, OperationsWithoutASource)
{
    EXPECT_EQ(play(blit(0x4C, 0x00550009, 10, 10, {}, {})).pixel(105, 105), kBlackPixel);
    EXPECT_EQ(play(blit(0x4C, 0x00550009, 10, 10, {}, {}) + blit(0x4C, 0x00550009, 10, 10, {}, {})).ink(), "");
    EXPECT_EQ(play(blit(0x4C, 0x00AA0029, 10, 10, {}, {})).ink(), "");
    EXPECT_EQ(play(record(0x25, { 0x80000004 }) + blit(0x4C, 0x00F00021, 10, 10, {}, {})).ink(), "100,100,109,109");
}

TEST(EmfBitmap, RowsAreStoredFromTheBottom)
{
    const Played played = play(stretch(2, fourColors()));
    EXPECT_EQ(played.pixel(104, 104), kRedPixel);
    EXPECT_EQ(played.pixel(104, 115), kBluePixel);
    EXPECT_EQ(played.pixel(115, 115), kGreenPixel);
    EXPECT_EQ(played.ink(), "100,100,119,119");
}

TEST(EmfBitmap, NegativeHeightStoresThemFromTheTop)
{
    const Played played = play(stretch(-2, fourColors()));
    EXPECT_EQ(played.pixel(104, 104), kBluePixel);
    EXPECT_EQ(played.pixel(104, 115), kRedPixel);
}

TEST(EmfBitmap, MirroredPictureBeginsWithItsCornersPixel)
{
    const Played played = play(stretch(-2, fourColors(), 0x00CC0020, -20));
    EXPECT_EQ(played.ink(), "81,100,100,119");
    EXPECT_EQ(played.pixel(98, 104), kBluePixel);
}

TEST(EmfBitmap, MissingRowsAreReported)
{
    Bytes half = fourColors();
    half.resize(8);
    const Played played = play(stretch(2, half));
    EXPECT_EQ(played.pixel(104, 115), kBluePixel);
    EXPECT_EQ(played.pixel(104, 104), kWhitePixel);
    EXPECT_TRUE(played.report.has("emf.bitmap"));
}

TEST(EmfBitmap, SourceBeyondThePictureIsCut)
{
    const Bytes black(12 * 4);
    const Played played = play(blit(0x4C, 0x00CC0020, 6, 4, bitmapHeader(4, 4, 24), black, 2));
    EXPECT_EQ(played.ink(), "100,100,101,103");
}

TEST(EmfBitmap, ScansOfATallerBitmap)
{
    // Scans 2 and 3 of four, black and red; the scans count from the bottom.
    const Bytes bits { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 255 };
    const Bytes header = bitmapHeader(4, 4, 24);
    const Played played = play(boundedRecord(0x50, { 100, 100, 0, 0, 4, 4, 76, 40, 116, 24, 0, 2, 2 }, header + bits));
    EXPECT_EQ(played.ink(), "100,100,103,101");
    EXPECT_EQ(played.pixel(101, 100), kRedPixel);
    EXPECT_EQ(played.pixel(101, 101), kBlackPixel);
}

TEST(EmfBitmap, ConstantAlphaMixes)
{
    const Bytes black(12);
    const Bytes sizes = words({ 1, 1 });
    const Bytes blend = blit(0x72, 128 << 16, 10, 10, bitmapHeader(1, 1, 24), { 0, 0, 0, 0 }, 0, sizes);
    EXPECT_EQ(play(blend).pixel(105, 105), (Rgb { 127, 127, 127 }));
}

TEST(EmfBitmap, PixelAlphaIsPremultiplied)
{
    const Bytes sizes = words({ 1, 1 });
    const Bytes blend = blit(
        0x72, 255 << 16 | std::int64_t { 1 } << 24, 10, 10, bitmapHeader(1, 1, 32), { 0, 0, 0x80, 0x80 }, 0, sizes);
    EXPECT_EQ(play(blend).pixel(105, 105), (Rgb { 255, 127, 127 }));
}

TEST(EmfBitmap, OneColorIsLeftOut)
{
    const Bytes sizes = words({ 2, 1 });
    const Bytes bits { 0, 0, 255, 255, 0, 0, 0, 0 }; // red, blue
    const Played played = play(blit(0x74, 0x000000FF, 20, 10, bitmapHeader(2, 1, 24), bits, 0, sizes));
    EXPECT_EQ(played.ink(), "110,100,119,109");
    EXPECT_EQ(played.pixel(115, 105), kBluePixel);
}

TEST(EmfBitmap, MaskChoosesTheOperation)
{
    const Bytes maskHeader = bitmapHeader(2, 1, 1, 0, words({ 0, 0xFFFFFF }));
    const auto masked = [&](std::int64_t operation) {
        const Bytes header = bitmapHeader(2, 1, 24);
        // The picture stands behind the mask's fields, the mask behind the picture.
        const Bytes fields = words({ 0, 0, 0, 128 + 40 + 8, 48, 128 + 40 + 8 + 48, 4 });
        return blit(0x4E, operation, 2, 1, header, Bytes(8), 0, fields) + Bytes();
    };
    const auto withMask = [&](std::int64_t operation) {
        Bytes bytes = masked(operation) + maskHeader + Bytes { 0x80, 0, 0, 0 };
        bytes[4] = static_cast<std::uint8_t>(bytes.size());
        bytes[5] = static_cast<std::uint8_t>(bytes.size() >> 8);
        return bytes;
    };
    EXPECT_EQ(play(withMask(0xAACC0000)).ink(), "100,100,100,100");
    EXPECT_EQ(play(withMask(0xCCAA0000)).ink(), "101,100,101,100");
}

TEST(EmfBitmap, MaskRowsBeginWhereTheRecordSaysAndRepeat)
{
    const auto drawn = [](const Bytes& maskHeader, const Bytes& maskBits) {
        const auto maskAt = static_cast<std::int64_t>(128 + 40 + 32);
        const auto headerSize = static_cast<std::int64_t>(maskHeader.size());
        const Bytes fields
            = words({ 0, 1, 0, maskAt, headerSize, maskAt + headerSize, static_cast<std::int64_t>(maskBits.size()) });
        Bytes bytes
            = blit(0x4E, 0xAACC0000, 2, 4, bitmapHeader(2, 4, 24), Bytes(32), 0, fields) + maskHeader + maskBits;
        bytes[4] = static_cast<std::uint8_t>(bytes.size());
        bytes[5] = static_cast<std::uint8_t>(bytes.size() >> 8);
        return play(bytes);
    };
    // Two rows from the bottom: the right pixel is set, the left one is.
    const Played masked = drawn(bitmapHeader(2, 2, 1, 0, words({ 0, 0xFFFFFF })), { 0x40, 0, 0, 0, 0x80, 0, 0, 0 });
    for (int y = 0; y < 4; ++y) {
        EXPECT_EQ(masked.hasInk(100, 100 + y), y % 2 == 1) << y;
        EXPECT_EQ(masked.hasInk(101, 100 + y), y % 2 == 0) << y;
    }
    EXPECT_EQ(drawn(bitmapHeader(2, 2, 24), Bytes(16)).ink(), "100,100,101,103") << "a mask has one bit a pixel";
}

TEST(EmfBitmap, ParallelogramTurnsThePicture)
{
    const Bytes header = bitmapHeader(2, 2, 24);
    const Bytes turned = boundedRecord(0x4F,
        { 200, 100, 200, 200, 100, 100, 0, 0, 2, 2, bitsOf(1), 0, 0, bitsOf(1), 0, 0, 0, 0, 140, 40, 180, 16, 0, 0, 0,
            0, 0, 0, 0 },
        header + fourColors());
    const Played played = play(turned);
    EXPECT_EQ(played.pixel(190, 110), kRedPixel);
    EXPECT_EQ(played.pixel(110, 110), kBluePixel);
    EXPECT_EQ(played.pixel(190, 190), kWhitePixel);
    EXPECT_EQ(played.pixel(110, 190), kGreenPixel);
}

TEST(EmfBitmap, MonochromeBrushTakesTheTextColors)
{
    const Bytes bits { 0xAA, 0, 0, 0, 0x55, 0, 0, 0, 0xAA, 0, 0, 0, 0x55, 0, 0, 0, 0xAA, 0, 0, 0, 0x55, 0, 0, 0, 0xAA,
        0, 0, 0, 0x55, 0, 0, 0 };
    const Bytes header = bitmapHeader(8, -8, 1, 0, words({ 0, 0xFFFFFF }));
    const Bytes brush = record(0x5D, { 1, 2, 32, 48, 80, 32 }, header + bits) + record(0x25, { 1 }) + nullPen();
    const Played played
        = play(record(0x18, { 0xFF0000 }) + record(0x19, { 0x00FF00 }) + brush + rectangle(0, 0, 16, 16));
    EXPECT_EQ(played.pixel(0, 0), kGreenPixel); // a set bit: background
    EXPECT_EQ(played.pixel(1, 0), kBluePixel); // a clear one: text
    EXPECT_EQ(played.pixel(0, 1), kBluePixel);
}

TEST(EmfPicture, MakesRowsWhenTheyAreAskedFor)
{
    constexpr int width = 1000;
    constexpr int height = 3000;
    const Bytes bits(std::size_t { width } * height * 4, 77);
    WorkMeter work;
    std::string problem;
    const test::SpareHeap bound(16U << 10);
    const emf::Picture picture(bitmapHeader(width, height, 32), bits, {}, work, problem);
    std::vector<std::uint8_t> line;
    for (int y = 0; y < height; ++y)
        ASSERT_EQ(picture.row(y, line)[4 * width - 1], 77);
}

TEST(EmfPicture, ViewsLeaveOutAlphaDivideByItOrHideAColor)
{
    // Two rows from the bottom: blue, green, red, alpha.
    const Bytes header = bitmapHeader(1, 2, 32);
    const Bytes bits { 1, 2, 3, 4, 50, 100, 128, 128 };
    WorkMeter work;
    std::string problem;
    std::vector<std::uint8_t> line;
    const auto row = [&](const emf::Picture& picture, int y) {
        const std::uint8_t* const pixels = picture.row(y, line);
        return Bytes(pixels, pixels + picture.shape().rowBytes());
    };
    emf::Picture picture(header, bits, {}, work, problem);
    EXPECT_EQ(row(picture, 0), (Bytes { 128, 100, 50, 128 }));
    picture.unmultiply();
    EXPECT_EQ(row(picture, 0), (Bytes { 255, 199, 100, 128 }));
    picture.leaveOutAlpha();
    EXPECT_EQ(row(picture, 1), (Bytes { 3, 2, 1 }));
    picture.hide({ 3, 2, 1 });
    EXPECT_EQ(row(picture, 0), (Bytes { 128, 100, 50, 255 }));
    EXPECT_EQ(row(picture, 1), (Bytes { 3, 2, 1, 0 }));
    // Bits become colours, too.
    const Bytes monoBits { 0x01, 0x80, 0, 0 };
    emf::Picture mono(bitmapHeader(9, 1, 1) + Bytes { 10, 20, 30, 0, 40, 50, 60, 0 }, monoBits, {}, work, problem);
    mono.leaveOutAlpha();
    const Bytes colors = row(mono, 0);
    EXPECT_EQ(Bytes(colors.begin(), colors.begin() + 3), (Bytes { 30, 20, 10 }));
    EXPECT_EQ(Bytes(colors.begin() + 21, colors.end()), (Bytes { 60, 50, 40, 60, 50, 40 }));
    mono.hide({ 60, 50, 40 });
    EXPECT_EQ(row(mono, 0)[35], 0);
    EXPECT_EQ(row(mono, 0)[3], 255);
}

TEST(EmfDib, WordsOfFiveAndSixBits)
{
    const Pixels plain = decodedDib(bitmapHeader(2, 1, 16), { 0x00, 0x7C, 0x1F, 0x00 });
    EXPECT_EQ(plain.color(0, 0), kRedPixel);
    EXPECT_EQ(plain.color(1, 0), kBluePixel);
    Bytes header = bitmapHeader(2, 1, 16, 3) + words({ 0xF800, 0x07E0, 0x001F });
    const Pixels masked = decodedDib(header, { 0xE0, 0x07, 0x08, 0x00 });
    EXPECT_EQ(masked.color(0, 0), kGreenPixel);
    EXPECT_EQ(int(masked.color(1, 0).blue), 0x42); // the five bits said again
}

TEST(EmfDib, PaletteNumbersOfTwoBytes)
{
    const std::vector<Rgb> palette { kRedPixel, kGreenPixel, kBluePixel };
    DibContext context;
    context.usage = ColorUsage::PaletteEntries;
    context.palette = &palette;
    Bytes header = bitmapHeader(2, 1, 8) + Bytes { 2, 0, 1, 0 };
    header[32] = 2;
    const Pixels pixels = decodedDib(header, { 0, 1, 0, 0 }, nullptr, context);
    EXPECT_EQ(pixels.color(0, 0), kBluePixel);
    EXPECT_EQ(pixels.color(1, 0), kGreenPixel);
}

TEST(EmfDib, OldHeadersHaveTriples)
{
    const Bytes header { 12, 0, 0, 0, 2, 0, 1, 0, 1, 0, 1, 0, 255, 0, 0, 0, 255, 0 };
    const Pixels pixels = decodedDib(header, { 0x40, 0, 0, 0 });
    EXPECT_EQ(pixels.color(0, 0), kBluePixel);
    EXPECT_EQ(pixels.color(1, 0), kGreenPixel);
}

TEST(EmfDib, TableThatIsLeftOutRunsFromBlackToWhite)
{
    const Pixels mono = decodedDib(bitmapHeader(2, 1, 1), { 0x40, 0, 0, 0 });
    EXPECT_EQ(mono.color(0, 0), kBlackPixel);
    EXPECT_EQ(mono.color(1, 0), kWhitePixel);
    const Pixels sixteen = decodedDib(bitmapHeader(2, 1, 4), { 0x3F, 0, 0, 0 });
    EXPECT_EQ(sixteen.color(0, 0), (Rgb { 51, 51, 51 }));
    EXPECT_EQ(sixteen.color(1, 0), kWhitePixel);
    // Of a table that is there, what is missing is black.
    EXPECT_EQ(decodedDib(bitmapHeader(2, 1, 4) + words({ 0xFF0000 }), { 0x0F, 0, 0, 0 }).color(1, 0), kBlackPixel);
}

TEST(EmfDib, ImpossibleBitmapsAreNamed)
{
    for (const Bytes& header : { bitmapHeader(0, 5, 24), bitmapHeader(5, -2147483647 - 1, 24),
             bitmapHeader(65535, 65535, 24), bitmapHeader(2, 2, 7), bitmapHeader(2, 2, 32, 0xB), Bytes { 40, 0 } }) {
        std::string problem;
        EXPECT_TRUE(decodedDib(header, Bytes(64), &problem).isNull());
        EXPECT_FALSE(problem.empty());
    }
}

TEST(EmfDib, DamagedImageFilesAreNamed)
{
    std::string problem;
    EXPECT_TRUE(decodedDib(bitmapHeader(2, 2, 0, 5), { 0x89, 'P', 'N', 'G', 0, 0 }, &problem).isNull());
    EXPECT_NE(problem.find("PNG"), std::string::npos);
    EXPECT_TRUE(decodedDib(bitmapHeader(2, 2, 0, 4), { 0xFF, 0xD8, 0, 0 }, &problem).isNull());
    EXPECT_NE(problem.find("JPEG"), std::string::npos);
}

} // namespace
} // namespace quillrip::test
