// JPEG and PNG files in bitmaps: their rows, made one at a time, are those of the whole picture.

#include "quillrip/emf/image_rows.h"
#include "quillrip/emf/picture.h"
#include "tests/emf/emf_bench.h"
#include "tests/support/spare_heap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <png.h>

extern "C" {
#include <jpeglib.h>
}

namespace quillrip::test {
namespace {

using emf::ImageRows;
using emf::Pixels;

constexpr int kJpeg = 4;
constexpr int kPng = 5;
constexpr std::uint64_t kMostPixels = std::uint64_t { 1 } << 27;

std::uint8_t sample(std::size_t at) { return static_cast<std::uint8_t>(at * at / 7 + at * 13); }

struct PngForm {
    int width = 37;
    int height = 23;
    int colorType = PNG_COLOR_TYPE_RGB;
    int depth = 8;
    bool isInterlaced = false;
    double gamma = 0; ///< 0: the file names none
    bool hasTransparentColor = false;
};

Bytes pngFile(const PngForm& form)
{
    Bytes file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &file,
        [](png_structp writer, png_bytep bytes, std::size_t count) {
            Bytes& to = *static_cast<Bytes*>(png_get_io_ptr(writer));
            to.insert(to.end(), bytes, bytes + count);
        },
        nullptr);
    // So that a part of the file has a part of the rows.
    png_set_compression_level(png, 0);
    png_set_IHDR(png, info, static_cast<png_uint_32>(form.width), static_cast<png_uint_32>(form.height), form.depth,
        form.colorType, form.isInterlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, 0, 0);
    if (form.gamma > 0)
        png_set_gAMA(png, info, form.gamma);
    const int colors = 1 << std::min(form.depth, 8);
    std::vector<png_color> palette;
    Bytes opacities;
    for (int i = 0; i < colors; ++i) {
        const auto at = static_cast<std::size_t>(i);
        palette.push_back({ sample(at), sample(at + 1), sample(at + 2) });
        opacities.push_back(sample(at + 3));
    }
    if (form.colorType == PNG_COLOR_TYPE_PALETTE)
        png_set_PLTE(png, info, palette.data(), colors);
    png_color_16 transparent {};
    if (form.hasTransparentColor)
        png_set_tRNS(png, info, opacities.data(), colors, &transparent);
    png_write_info(png, info);
    Bytes row(png_get_rowbytes(png, info));
    const int passes = png_set_interlace_handling(png);
    for (int pass = 0; pass < passes; ++pass) {
        for (std::size_t y = 0; y < static_cast<std::size_t>(form.height); ++y) {
            for (std::size_t i = 0; i < row.size(); ++i)
                row[i] = sample(i + y * 31);
            png_write_row(png, row.data());
        }
    }
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return file;
}

/// All pixels of `color`, or, when it is empty, three channels of anything.
Bytes jpegFile(int width, int height, Bytes color = {}, bool isProgressive = false)
{
    jpeg_compress_struct info {};
    jpeg_error_mgr errors {};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &bytes, &size);
    info.image_width = static_cast<JDIMENSION>(width);
    info.image_height = static_cast<JDIMENSION>(height);
    info.input_components = color.size() == 4 ? 4 : 3;
    info.in_color_space = color.size() == 4 ? JCS_CMYK : JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, 100, TRUE);
    if (isProgressive)
        jpeg_simple_progression(&info);
    jpeg_start_compress(&info, TRUE);
    Bytes row(static_cast<std::size_t>(width * info.input_components));
    for (std::size_t y = 0; y < static_cast<std::size_t>(height); ++y) {
        for (std::size_t i = 0; i < row.size(); ++i)
            row[i] = color.empty() ? sample(i / 9 + y) : color[i % color.size()];
        JSAMPROW line = row.data();
        jpeg_write_scanlines(&info, &line, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    const Bytes file(bytes, bytes + size);
    std::free(bytes);
    return file;
}

Bytes rowOf(ImageRows& rows, int y)
{
    Bytes line(rows.shape().rowBytes());
    rows.row(y, line.data());
    return line;
}

Bytes rowOf(const Pixels& pixels, int y) { return Bytes(pixels.row(y), pixels.row(y) + pixels.rowBytes()); }

TEST(EmfImageRows, OfPngFilesAreThoseOfTheWholePicture)
{
    for (const int type : { PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_RGB, PNG_COLOR_TYPE_PALETTE, PNG_COLOR_TYPE_GRAY_ALPHA,
             PNG_COLOR_TYPE_RGB_ALPHA }) {
        for (const int depth : { 1, 2, 4, 8, 16 }) {
            const bool hasDepth = type == PNG_COLOR_TYPE_GRAY || (type == PNG_COLOR_TYPE_PALETTE && depth <= 8)
                || (type != PNG_COLOR_TYPE_PALETTE && depth >= 8);
            for (const double gamma : { 0.0, 1.0, 0.45455 }) {
                for (const bool hasTransparentColor : { false, true }) {
                    if (!hasDepth || (hasTransparentColor && (type & PNG_COLOR_MASK_ALPHA) != 0))
                        continue;
                    SCOPED_TRACE(testing::Message() << "type " << type << ", depth " << depth << ", gamma " << gamma
                                                    << ", transparent " << hasTransparentColor);
                    const Bytes file = pngFile({ 37, 23, type, depth, false, gamma, hasTransparentColor });
                    std::string problem;
                    const Pixels whole = emf::decodePng(file, kMostPixels, problem);
                    ASSERT_EQ(problem, "");
                    const auto rows = emf::openPng(file, kMostPixels, problem);
                    ASSERT_TRUE(rows) << problem;
                    EXPECT_EQ(rows->shape().hasAlpha, whole.hasAlpha);
                    ASSERT_EQ(rows->shape().height, whole.height);
                    for (int y = 0; y < whole.height; ++y)
                        ASSERT_EQ(rowOf(*rows, y), rowOf(whole, y)) << y;
                }
            }
        }
    }
}

TEST(EmfImageRows, MayBeLeftOutAndAskedForAgain)
{
    std::string problem;
    const Bytes jpeg = jpegFile(37, 40);
    const Bytes png = pngFile({});
    const auto jpegRows = emf::openJpeg(jpeg, kMostPixels, problem);
    const auto pngRows = emf::openPng(png, kMostPixels, problem);
    const Pixels jpegWhole = emf::decodeJpeg(jpeg, kMostPixels, problem);
    const Pixels pngWhole = emf::decodePng(png, kMostPixels, problem);
    ASSERT_NE(rowOf(jpegWhole, 20), rowOf(jpegWhole, 7));
    for (const int y : { 20, 21, 7, 8, 8, 22, 0 }) {
        EXPECT_EQ(rowOf(*jpegRows, y), rowOf(jpegWhole, y)) << y;
        EXPECT_EQ(rowOf(*pngRows, y), rowOf(pngWhole, y)) << y;
    }
}

TEST(EmfImageRows, OfFourInksAreColors)
{
    std::string problem;
    const Pixels pixels = emf::decodeJpeg(jpegFile(20, 20, { 200, 100, 50, 128 }), kMostPixels, problem);
    ASSERT_FALSE(pixels.isNull());
    const Rgb color = pixels.color(10, 10);
    EXPECT_NEAR(color.red, 100, 2);
    EXPECT_NEAR(color.green, 50, 2);
    EXPECT_NEAR(color.blue, 25, 2);
}

TEST(EmfImageRows, OfInterlacedFilesAreMadeAtOnce)
{
    PngForm form;
    const Bytes plain = pngFile(form);
    form.isInterlaced = true;
    const Bytes file = pngFile(form);
    std::string problem;
    EXPECT_FALSE(emf::openPng(file, kMostPixels, problem));
    EXPECT_EQ(problem, "");
    const emf::Picture picture(bitmapHeader(37, 23, 0, kPng), file, {}, problem);
    ASSERT_FALSE(picture.isNull()) << problem;
    const Pixels whole = emf::decodePng(plain, kMostPixels, problem);
    std::vector<std::uint8_t> line;
    const std::uint8_t* const row = picture.row(11, line);
    EXPECT_EQ(Bytes(row, row + whole.rowBytes()), rowOf(whole, 11));
}

TEST(EmfImageRows, TakeNoMoreThanARow)
{
    constexpr int side = 2000;
    const Bytes jpeg = jpegFile(side, side, { 10, 200, 30 });
    PngForm form;
    form.width = side;
    form.height = side;
    const Bytes png = pngFile(form);
    std::string problem;
    std::vector<std::uint8_t> line;
    const Bytes jpegHeader = bitmapHeader(side, side, 0, kJpeg);
    const Bytes pngHeader = bitmapHeader(side, side, 0, kPng);
    const SpareHeap bound(64U << 10);
    const emf::Picture ofJpeg(jpegHeader, jpeg, {}, problem);
    EXPECT_NEAR(ofJpeg.row(side - 1, line)[1], 200, 2);
    const emf::Picture ofPng(pngHeader, png, {}, problem);
    EXPECT_EQ(ofPng.row(side - 1, line)[4], sample(4 + std::size_t { side - 1 } * 31));
}

TEST(EmfImageRows, AskTheAccountForTheCoefficientsOfSeveralScans)
{
    constexpr int side = 256;
    const HeapBound account({ HeapAccount::used() + (1U << 20), 0, 0, 1U << 30 });
    const std::uint64_t before = HeapAccount::bound();
    std::string problem;
    EXPECT_TRUE(emf::openJpeg(jpegFile(side, side), kMostPixels, problem));
    EXPECT_TRUE(emf::openPng(pngFile({}), kMostPixels, problem));
    EXPECT_EQ(HeapAccount::bound(), before);
    const Bytes progressive = jpegFile(side, side, {}, true);
    const auto rows = emf::openJpeg(progressive, kMostPixels, problem);
    ASSERT_TRUE(rows) << problem;
    // The brightness of each pixel, and two colours of each four.
    EXPECT_EQ(HeapAccount::bound(), before + std::uint64_t { side } * side * 3 / 2 * sizeof(JCOEF));
}

TEST(EmfImageRows, AreWhiteFromTheDamageOn)
{
    PngForm form;
    form.height = 200;
    const Bytes file = pngFile(form);
    const Bytes half(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(file.size() / 2));
    std::string problem;
    const Pixels whole = emf::decodePng(file, kMostPixels, problem);
    const auto rows = emf::openPng(half, kMostPixels, problem);
    ASSERT_TRUE(rows) << problem;
    EXPECT_EQ(rowOf(*rows, 3), rowOf(whole, 3));
    EXPECT_FALSE(rows->isDamaged());
    EXPECT_EQ(rowOf(*rows, 199), Bytes(37 * 3, 0xFF));
    EXPECT_TRUE(rows->isDamaged());
    EXPECT_EQ(rowOf(*rows, 3), rowOf(whole, 3));

    const auto size = static_cast<std::int64_t>(half.size());
    const Bytes header = bitmapHeader(37, 200, 0, kPng, {}, static_cast<int>(size));
    const Played played = play(
        boundedRecord(0x51, { 100, 100, 0, 0, 37, 200, 80, 40, 120, size, 0, 0x00CC0020, 37, 200 }, header + half));
    EXPECT_TRUE(played.report.has("emf.bitmap"));
    EXPECT_EQ(played.pixel(103, 103), whole.color(3, 3));
    EXPECT_EQ(played.pixel(103, 299), kWhitePixel);
}

} // namespace
} // namespace quillrip::test
