// JPEG and PNG files in bitmaps: their rows, made one at a time, are those of the whole picture.

#include "quillrip/emf/image_rows.h"
#include "quillrip/emf/picture.h"
#include "tests/emf/emf_bench.h"
#include "tests/support/image_files.h"
#include "tests/support/jpeg_writer.h"
#include "tests/support/spare_heap.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <png.h>

namespace quillrip::test {
namespace {

using emf::ImageRows;
using emf::Pixels;

constexpr int kJpeg = 4;
constexpr int kPng = 5;
constexpr std::uint64_t kMostPixels = std::uint64_t { 1 } << 27;

/// All pixels of `color`, or, when it is empty, three channels of anything.
Bytes jpegFile(int width, int height, const Bytes& color = {}, bool isProgressive = false)
{
    const int components = color.size() == 4 ? 4 : 3;
    Bytes pixels(static_cast<std::size_t>(width * height * components));
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = color.empty()
            ? sampleAt(i % static_cast<std::size_t>(width * 3) / 9, static_cast<int>(i) / (width * 3))
            : color[i % color.size()];
    return writeJpeg(pixels, width, height, components, components == 4 ? JCS_CMYK : JCS_RGB,
        [isProgressive](jpeg_compress_struct& info) {
            jpeg_set_quality(&info, 100, TRUE);
            if (isProgressive)
                jpeg_simple_progression(&info);
        });
}

/// By libpng's own reader of whole pictures; as many bytes a pixel as the rows have.
Pixels wholePng(const Bytes& file)
{
    png_image image {};
    image.version = PNG_IMAGE_VERSION;
    EXPECT_TRUE(png_image_begin_read_from_memory(&image, file.data(), file.size()));
    Pixels pixels;
    pixels.hasAlpha = (image.format & PNG_FORMAT_FLAG_ALPHA) != 0;
    image.format = pixels.hasAlpha ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
    pixels.format = pixels.hasAlpha ? Pixels::Format::Rgba32 : Pixels::Format::Rgb24;
    pixels.width = static_cast<int>(image.width);
    pixels.height = static_cast<int>(image.height);
    pixels.stride = pixels.rowBytes();
    pixels.bytes.resize(pixels.stride * image.height);
    EXPECT_TRUE(png_image_finish_read(&image, nullptr, pixels.bytes.data(), 0, nullptr));
    return pixels;
}

class EmfImageRows : public testing::Test {
protected:
    std::unique_ptr<ImageRows> openPng(const Bytes& file)
    {
        return opened(emf::openPng(file, kMostPixels, m_work, m_problem));
    }
    std::unique_ptr<ImageRows> openJpeg(const Bytes& file)
    {
        return opened(emf::openJpeg(file, kMostPixels, m_work, m_problem));
    }
    Pixels wholeJpeg(const Bytes& file) { return emf::pixelsOf(*openJpeg(file)); }

    WorkMeter m_work;
    std::string m_problem;

private:
    std::unique_ptr<ImageRows> opened(std::unique_ptr<ImageRows> rows) const
    {
        EXPECT_TRUE(rows) << m_problem;
        return rows;
    }
};

Bytes rowOf(ImageRows& rows, int y)
{
    Bytes line(rows.shape().rowBytes());
    rows.row(y, line.data());
    return line;
}

Bytes rowOf(const Pixels& pixels, int y) { return Bytes(pixels.row(y), pixels.row(y) + pixels.rowBytes()); }

void expectRows(ImageRows& rows, const Pixels& whole)
{
    EXPECT_EQ(rows.shape().hasAlpha, whole.hasAlpha);
    ASSERT_EQ(rows.shape().width, whole.width);
    ASSERT_EQ(rows.shape().height, whole.height);
    for (int y = 0; y < whole.height; ++y)
        ASSERT_EQ(rowOf(rows, y), rowOf(whole, y)) << y;
    EXPECT_FALSE(rows.isDamaged());
}

TEST_F(EmfImageRows, OfPngFilesAreThoseOfTheWholePicture)
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
                    for (const bool isInterlaced : { false, true }) {
                        SCOPED_TRACE(testing::Message()
                            << "type " << type << ", depth " << depth << ", gamma " << gamma << ", transparent "
                            << hasTransparentColor << ", interlaced " << isInterlaced);
                        PngForm form { 37, 23, type, depth, isInterlaced, gamma, hasTransparentColor };
                        const Bytes file = pngFile(form);
                        // Interlaced files of 16 bits are what the library's reader of whole pictures gets wrong.
                        form.isInterlaced = false;
                        expectRows(*openPng(file), wholePng(pngFile(form)));
                    }
                }
            }
        }
    }
}

TEST_F(EmfImageRows, OfSmallInterlacedFilesNeedNotAllPasses)
{
    for (int width = 1; width <= 9; ++width) {
        for (int height = 1; height <= 9; ++height) {
            SCOPED_TRACE(testing::Message() << width << " x " << height);
            PngForm form;
            form.width = width;
            form.height = height;
            form.isInterlaced = true;
            const Bytes file = pngFile(form);
            expectRows(*openPng(file), wholePng(file));
        }
    }
}

TEST_F(EmfImageRows, MayBeLeftOutAndAskedForAgain)
{
    const auto expectAnyOrder = [](ImageRows& rows, const Pixels& whole) {
        ASSERT_NE(rowOf(whole, 20), rowOf(whole, 7));
        for (const int y : { 20, 21, 7, 8, 8, 22, 0 })
            EXPECT_EQ(rowOf(rows, y), rowOf(whole, y)) << y;
    };
    const Bytes jpeg = jpegFile(37, 40);
    expectAnyOrder(*openJpeg(jpeg), wholeJpeg(jpeg));
    PngForm form;
    for (const bool isInterlaced : { false, true }) {
        form.isInterlaced = isInterlaced;
        const Bytes png = pngFile(form);
        expectAnyOrder(*openPng(png), wholePng(png));
    }
}

TEST_F(EmfImageRows, OfFourInksAreColors)
{
    const Pixels pixels = wholeJpeg(jpegFile(20, 20, { 200, 100, 50, 128 }));
    const Rgb color = pixels.color(10, 10);
    EXPECT_NEAR(color.red, 100, 2);
    EXPECT_NEAR(color.green, 50, 2);
    EXPECT_NEAR(color.blue, 25, 2);
}

TEST_F(EmfImageRows, TakeNoMoreThanARowOfAPass)
{
    constexpr int side = 2000;
    const Bytes jpeg = jpegFile(side, side, { 10, 200, 30 });
    PngForm form;
    form.width = side;
    form.height = side;
    const Bytes png = pngFile(form);
    form.isInterlaced = true;
    const Bytes interlaced = pngFile(form);
    std::vector<std::uint8_t> line;
    const Bytes jpegHeader = bitmapHeader(side, side, 0, kJpeg);
    const Bytes pngHeader = bitmapHeader(side, side, 0, kPng);
    {
        // libjpeg has some lines of blocks.
        const SpareHeap bound(400U << 10);
        const emf::Picture ofJpeg(jpegHeader, jpeg, {}, m_work, m_problem);
        EXPECT_NEAR(ofJpeg.row(side - 1, line)[1], 200, 2);
    }
    {
        const SpareHeap bound(128U << 10);
        const emf::Picture ofPng(pngHeader, png, {}, m_work, m_problem);
        EXPECT_EQ(ofPng.row(side - 1, line)[4], sampleAt(4, side - 1));
    }
    // Seven passes, where the picture has 12 MB.
    const SpareHeap bound(900U << 10);
    const emf::Picture ofPasses(pngHeader, interlaced, {}, m_work, m_problem);
    EXPECT_EQ(ofPasses.row(side - 1, line)[4], sampleAt(4, side - 1));
}

TEST_F(EmfImageRows, AreNotMadeOfFilesThatAreTooLarge)
{
    const Bytes jpeg = jpegFile(37, 23);
    const Bytes png = pngFile({});
    EXPECT_FALSE(emf::openJpeg(jpeg, 37 * 23 - 1, m_work, m_problem));
    EXPECT_EQ(m_problem, "its JPEG file is too large");
    EXPECT_TRUE(emf::openJpeg(jpeg, 37 * 23, m_work, m_problem));
    EXPECT_FALSE(emf::openPng(png, 37 * 23 - 1, m_work, m_problem));
    EXPECT_EQ(m_problem, "its PNG file is too large");
    EXPECT_FALSE(emf::openJpeg(png, kMostPixels, m_work, m_problem));
    EXPECT_EQ(m_problem, "its JPEG file is damaged");
}

TEST_F(EmfImageRows, OfSeveralScansAreThoseOfOne)
{
    constexpr int side = 1000;
    const Bytes file = jpegFile(side, side, {}, true);
    expectRows(*openJpeg(file), wholeJpeg(jpegFile(side, side)));
    // 9 MB of coefficients, of which few are not zero, in an even picture.
    const Bytes even = jpegFile(3 * side, side, { 10, 200, 30 }, true);
    const SpareHeap bound(5U << 20);
    EXPECT_NEAR(rowOf(*openJpeg(even), side - 1)[1], 200, 2);
}

TEST_F(EmfImageRows, AreWhiteFromTheDamageOn)
{
    PngForm form;
    form.height = 200;
    const Bytes file = pngFile(form);
    const Bytes half(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(file.size() / 2));
    const Pixels whole = wholePng(file);
    const auto rows = openPng(half);
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

TEST_F(EmfImageRows, OfDamagedInterlacedFilesAreCoarse)
{
    constexpr int kWidth = 256;
    PngForm form;
    form.width = kWidth;
    form.height = 1600;
    form.isInterlaced = true;
    const Bytes file = pngFile(form);
    const Pixels whole = wholePng(file);
    const auto partOf = [&file](double part) {
        return Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(static_cast<double>(file.size()) * part));
    };
    // Of the last pass, which has every other row, the first ones came.
    const Bytes mostly = partOf(0.6);
    const auto rows = openPng(mostly);
    EXPECT_EQ(rowOf(*rows, 1), rowOf(whole, 1));
    EXPECT_FALSE(rows->isDamaged());
    EXPECT_EQ(rowOf(*rows, 1598), rowOf(whole, 1598));
    EXPECT_EQ(rowOf(*rows, 1599), rowOf(whole, 1598));
    EXPECT_TRUE(rows->isDamaged());
    EXPECT_EQ(rowOf(*rows, 1), rowOf(whole, 1));
    EXPECT_FALSE(rows->isDamaged());
    // Of the first two passes, which have four pixels of 64, all came; of the third, some rows.
    const Bytes little = partOf(0.05);
    const auto coarse = openPng(little);
    const Bytes last = rowOf(*coarse, 1599);
    for (int x = 0; x < kWidth; ++x)
        EXPECT_EQ(last[static_cast<std::size_t>(3 * x)], whole.color(x / 4 * 4, 1592).red) << x;
    EXPECT_TRUE(coarse->isDamaged());
    // Not even the first pass did.
    const Bytes hardly = partOf(0.008);
    const auto broken = openPng(hardly);
    EXPECT_EQ(rowOf(*broken, 0)[24], whole.color(8, 0).red);
    EXPECT_EQ(rowOf(*broken, 1599), Bytes(kWidth * 3, 0xFF));
    EXPECT_TRUE(broken->isDamaged());
}

TEST_F(EmfImageRows, CostAPassOrTwo)
{
    const auto cost = [this](ImageRows& rows) {
        const std::uint64_t before = m_work.spent(Work::Decoding);
        emf::pixelsOf(rows);
        return m_work.spent(Work::Decoding) - before;
    };
    constexpr std::uint64_t pass = std::uint64_t { 64 } * 48 * emf::kUnitsPerCodedPixel;
    const Bytes jpeg = jpegFile(64, 48);
    const auto jpegRows = openJpeg(jpeg);
    const std::uint64_t jpegPass = cost(*jpegRows);
    EXPECT_GE(jpegPass, 64U * 48);
    EXPECT_GE(cost(*jpegRows), jpegPass) << "again, as it is decoded again";
    PngForm form;
    form.width = 64;
    form.height = 48;
    const Bytes plain = pngFile(form);
    const auto rows = openPng(plain);
    EXPECT_EQ(cost(*rows), pass);
    EXPECT_EQ(cost(*rows), pass) << "again, as it is decoded again";
    form.isInterlaced = true;
    const Bytes interlaced = pngFile(form);
    const std::uint64_t passes = cost(*openPng(interlaced));
    EXPECT_GT(passes, pass * 3 / 2);
    EXPECT_LE(passes, pass * 2);
}

TEST_F(EmfImageRows, AreWhiteWhenThereIsNoMoreWork)
{
    WorkBudget budget;
    budget.page = 37 * 15 * emf::kUnitsPerCodedPixel;
    WorkMeter work(budget);
    PngForm form;
    for (const bool isInterlaced : { false, true }) {
        form.isInterlaced = isInterlaced;
        const Bytes file = pngFile(form);
        const auto rows = emf::openPng(file, kMostPixels, work, m_problem);
        ASSERT_TRUE(rows);
        EXPECT_EQ(rowOf(*rows, 22), Bytes(37 * 3, 0xFF));
        EXPECT_TRUE(work.isExhausted());
        EXPECT_FALSE(rows->isDamaged());
    }
    WorkMeter less(budget);
    const Bytes jpeg = jpegFile(37, 200);
    const auto rows = emf::openJpeg(jpeg, kMostPixels, less, m_problem);
    ASSERT_TRUE(rows);
    EXPECT_EQ(rowOf(*rows, 199), Bytes(37 * 3, 0xFF));
    EXPECT_TRUE(less.isExhausted());
    EXPECT_FALSE(rows->isDamaged());
    WorkMeter none(WorkBudget { 1 });
    const Bytes progressive = jpegFile(37, 200, {}, true);
    EXPECT_FALSE(emf::openJpeg(progressive, kMostPixels, none, m_problem));
    EXPECT_EQ(m_problem, none.reason());
}

} // namespace
} // namespace quillrip::test
