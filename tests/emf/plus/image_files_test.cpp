// Image files of EMF+ objects: rows that are made one at a time, or some at a time, are those of the whole picture.

#include "quillrip/emf/plus/image_files.h"
#include "quillrip/emf/plus/memory_file.h"
#include "tests/support/image_files.h"
#include "tests/support/jpeg_writer.h"
#include "tests/support/spare_heap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <vector>

#include <tiffio.h>

namespace quillrip::emf::plus {
namespace {

using quillrip::test::gifFile;
using quillrip::test::GifForm;
using quillrip::test::pngFile;
using quillrip::test::PngForm;
using quillrip::test::sampleAt;
using quillrip::test::SpareHeap;
using quillrip::test::tiffFile;
using quillrip::test::TiffForm;
using quillrip::test::writeJpeg;
using Bytes = std::vector<std::uint8_t>;

class EmfPlusImageFile : public testing::Test {
protected:
    std::unique_ptr<ImageRows> open(const Bytes& file)
    {
        auto rows = openImageFile(file, m_work, m_problem);
        EXPECT_TRUE(rows) << m_problem;
        return rows;
    }

    WorkMeter m_work;
    std::string m_problem;
};

Bytes rowOf(ImageRows& rows, int y)
{
    Bytes line(rows.shape().rowBytes());
    rows.row(y, line.data());
    return line;
}

Bytes firstPart(const Bytes& file, double part)
{
    return { file.begin(), file.begin() + static_cast<std::ptrdiff_t>(static_cast<double>(file.size()) * part) };
}

/// As GifForm says it: a row of the screen.
Bytes gifRow(const GifForm& form, int y)
{
    Bytes row(static_cast<std::size_t>(form.screenWidth) * 4);
    const int inPicture = y - form.top;
    if (inPicture < 0 || inPicture >= form.height)
        return row;
    for (int x = 0; x < form.width; ++x) {
        const int number = sampleAt(static_cast<std::size_t>(x), inPicture) & ((1 << form.bits) - 1);
        const int column = form.left + x;
        if (column >= form.screenWidth || number == form.transparent)
            continue;
        const Bytes pixel { static_cast<std::uint8_t>(number), static_cast<std::uint8_t>(255 - number), 7, 255 };
        std::copy(pixel.begin(), pixel.end(), row.begin() + std::ptrdiff_t { column } * 4);
    }
    return row;
}

TEST_F(EmfPlusImageFile, GifRowsAreTheSameInPasses)
{
    GifForm form;
    for (const bool isInterlaced : { false, true }) {
        for (const int height : { 1, 2, 3, 5, 23 }) {
            form.isInterlaced = isInterlaced;
            form.height = height;
            SCOPED_TRACE(testing::Message() << "interlaced " << isInterlaced << ", height " << height);
            const Bytes file = gifFile(form);
            const auto rows = open(file);
            for (int y = 0; y < form.screenHeight; ++y)
                ASSERT_EQ(rowOf(*rows, y), gifRow(form, y)) << y;
            for (const int y : { 20, 4, 5, 5, 22, 0 })
                ASSERT_EQ(rowOf(*rows, y), gifRow(form, y)) << y;
            EXPECT_FALSE(rows->isDamaged());
        }
    }
}

TEST_F(EmfPlusImageFile, GifPicturesLieOnTheirScreen)
{
    GifForm form;
    form.left = 3;
    form.top = 4;
    form.width = 40;
    form.height = 10;
    form.transparent = 9;
    const Bytes file = gifFile(form);
    const auto rows = open(file);
    for (int y = 0; y < form.screenHeight; ++y)
        ASSERT_EQ(rowOf(*rows, y), gifRow(form, y)) << y;
}

TEST_F(EmfPlusImageFile, GifPicturesAreOpaqueWhereEveryNumberIsAColorThatIsDrawn)
{
    GifForm form;
    EXPECT_FALSE(open(gifFile(form))->shape().hasAlpha);
    form.transparent = 3;
    EXPECT_TRUE(open(gifFile(form))->shape().hasAlpha);
    form.transparent = -1;
    form.bits = 4;
    EXPECT_TRUE(open(gifFile(form))->shape().hasAlpha);
    form.bits = 8;
    form.height = 22;
    EXPECT_TRUE(open(gifFile(form))->shape().hasAlpha);
}

TEST_F(EmfPlusImageFile, GifRowsBehindTheDamageAreLeftOut)
{
    GifForm form;
    form.height = form.screenHeight = 400;
    for (const bool isInterlaced : { false, true }) {
        form.isInterlaced = isInterlaced;
        SCOPED_TRACE(isInterlaced);
        const Bytes part = firstPart(gifFile(form), 0.6);
        const auto rows = open(part);
        EXPECT_EQ(rowOf(*rows, 8), gifRow(form, 8));
        EXPECT_FALSE(rows->isDamaged());
        EXPECT_EQ(rowOf(*rows, 399), Bytes(37 * 4, 0xFF)) << "white, as all other pixels are opaque";
        EXPECT_TRUE(rows->isDamaged());
        EXPECT_EQ(rowOf(*rows, 1), gifRow(form, 1));
        EXPECT_EQ(rowOf(*rows, 8), gifRow(form, 8));
    }
    form.transparent = 1;
    const Bytes part = firstPart(gifFile(form), 0.6);
    EXPECT_EQ(rowOf(*open(part), 399), Bytes(37 * 4));
}

MemoryFile& fileOf(thandle_t handle) { return *static_cast<MemoryFile*>(handle); }

/// By libtiff's own reader of whole pictures; its colours are multiplied by the alpha. Empty when it cannot be read.
std::vector<std::uint32_t> wholeTiff(const Bytes& file, const TiffForm& form)
{
    MemoryFile memory { file };
    TIFF* const tiff = TIFFClientOpen(
        "image", "r", &memory,
        [](thandle_t handle, void* to, tmsize_t count) {
            return static_cast<tmsize_t>(fileOf(handle).read(to, static_cast<std::size_t>(count)));
        },
        [](thandle_t, void*, tmsize_t) -> tmsize_t { return 0; },
        [](thandle_t handle, toff_t offset, int) -> toff_t { return fileOf(handle).at = offset; },
        [](thandle_t) { return 0; }, [](thandle_t handle) -> toff_t { return fileOf(handle).bytes.size; },
        [](thandle_t handle, void** base, toff_t* size) {
            *base = const_cast<std::uint8_t*>(fileOf(handle).bytes.data);
            *size = fileOf(handle).bytes.size;
            return 1;
        },
        [](thandle_t, void*, toff_t) {});
    const auto width = static_cast<std::uint32_t>(form.width);
    const auto height = static_cast<std::uint32_t>(form.height);
    std::vector<std::uint32_t> pixels(std::size_t { width } * height);
    if (!TIFFReadRGBAImageOriented(tiff, width, height, pixels.data(), ORIENTATION_TOPLEFT, 1))
        pixels.clear();
    TIFFClose(tiff);
    return pixels;
}

void expectTiffRows(const TiffForm& form)
{
    const Bytes file = tiffFile(form);
    const std::vector<std::uint32_t> whole = wholeTiff(file, form);
    ASSERT_FALSE(whole.empty());
    for (const int bandRows : { 1, 4, 7, 16, 1000 }) {
        SCOPED_TRACE(bandRows);
        WorkMeter work;
        std::string problem;
        const auto rows = openTiff(file, work, problem, static_cast<std::size_t>(bandRows * form.width * 4));
        ASSERT_TRUE(rows) << problem;
        EXPECT_EQ(rows->shape().hasAlpha, form.hasAlpha);
        const auto expectRow = [&](int y) {
            const Bytes row = rowOf(*rows, y);
            for (int x = 0; x < form.width; ++x) {
                const std::uint32_t pixel = whole[static_cast<std::size_t>(y * form.width + x)];
                const std::uint8_t* const at = row.data() + std::ptrdiff_t { x } * 4;
                ASSERT_EQ(at[3], TIFFGetA(pixel)) << x << ", " << y;
                if (at[3] == 255) {
                    ASSERT_EQ(at[0] | at[1] << 8U | at[2] << 16U, pixel & 0xFFFFFFU) << x << ", " << y;
                }
            }
        };
        for (int y = 0; y < form.height; ++y)
            expectRow(y);
        for (const int y : { 20, 3, 22, 4 })
            expectRow(y);
        EXPECT_FALSE(rows->isDamaged());
    }
}

TEST_F(EmfPlusImageFile, TiffRowsAreTheSameInBands)
{
    for (const int orientation : { 1, 2, 3, 4, 5, 6, 7, 8 }) {
        for (const int rowsPerStrip : { 1, 5, 8, 23 }) {
            SCOPED_TRACE(testing::Message() << "orientation " << orientation << ", strips of " << rowsPerStrip);
            TiffForm form;
            form.orientation = orientation;
            form.rowsPerStrip = rowsPerStrip;
            expectTiffRows(form);
            form.planes = PLANARCONFIG_SEPARATE;
            expectTiffRows(form);
        }
        SCOPED_TRACE(testing::Message() << "orientation " << orientation << ", tiles");
        TiffForm tiles;
        tiles.orientation = orientation;
        tiles.tileSide = 16;
        expectTiffRows(tiles);
    }
}

TEST_F(EmfPlusImageFile, TiffRowsAreTheSameInBandsWhateverTheyAreMadeOf)
{
    for (const int compression :
        { COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_PACKBITS }) {
        for (const int rowsPerStrip : { 5, 23 }) {
            SCOPED_TRACE(testing::Message() << "compression " << compression << ", strips of " << rowsPerStrip);
            TiffForm form;
            form.compression = compression;
            form.rowsPerStrip = rowsPerStrip;
            expectTiffRows(form);
            form.samples = 4;
            form.hasAlpha = true;
            expectTiffRows(form);
            form.samples = 1;
            form.hasAlpha = false;
            for (const int photometric : { PHOTOMETRIC_MINISBLACK, PHOTOMETRIC_MINISWHITE, PHOTOMETRIC_PALETTE }) {
                form.photometric = photometric;
                for (const int bits : { 1, 4, 8 }) {
                    form.bits = bits;
                    expectTiffRows(form);
                }
            }
        }
    }
    TiffForm fax;
    fax.compression = COMPRESSION_CCITTFAX4;
    fax.photometric = PHOTOMETRIC_MINISWHITE;
    fax.samples = fax.bits = 1;
    fax.rowsPerStrip = 23;
    expectTiffRows(fax);
    TiffForm jpeg;
    jpeg.compression = COMPRESSION_JPEG;
    jpeg.rowsPerStrip = 16;
    expectTiffRows(jpeg);
}

TEST_F(EmfPlusImageFile, TiffRowsBehindTheDamageAreLeftOut)
{
    TiffForm form;
    form.height = 400;
    Bytes file = tiffFile(form);
    const std::size_t half = file.size() / 2;
    std::fill(file.begin() + static_cast<std::ptrdiff_t>(half), file.end(), std::uint8_t { 0 });
    EXPECT_FALSE(openImageFile(file, m_work, m_problem)) << "the directory lies behind the pixels";
    EXPECT_EQ(m_problem, "its TIFF file cannot be read");

    form.compression = COMPRESSION_ADOBE_DEFLATE;
    Bytes coded = tiffFile(form);
    std::fill(coded.begin() + static_cast<std::ptrdiff_t>(coded.size() / 2),
        coded.begin() + static_cast<std::ptrdiff_t>(coded.size() / 2 + 2000), std::uint8_t { 0xFF });
    const std::vector<std::uint32_t> whole = wholeTiff(tiffFile(form), form);
    const auto rows = openTiff(coded, m_work, m_problem, 37 * 4 * 10);
    ASSERT_TRUE(rows) << m_problem;
    EXPECT_EQ(rowOf(*rows, 8)[4], TIFFGetR(whole[8 * 37 + 1]));
    EXPECT_FALSE(rows->isDamaged());
    EXPECT_EQ(rowOf(*rows, 210), Bytes(37 * 4, 0xFF));
    EXPECT_TRUE(rows->isDamaged());
}

TEST_F(EmfPlusImageFile, TiffFilesInCodingsThatAreNotOfMetafilesAreRefused)
{
    ASSERT_TRUE(TIFFIsCODECConfigured(COMPRESSION_LZMA));
    TiffForm form;
    form.compression = COMPRESSION_LZMA;
    EXPECT_FALSE(openImageFile(tiffFile(form), m_work, m_problem));
    EXPECT_EQ(m_problem, "its TIFF file cannot be read");
}

TEST_F(EmfPlusImageFile, TiffPixelsOfManySamplesCostMore)
{
    const auto cost = [](int samples) {
        TiffForm form;
        form.samples = samples;
        form.rowsPerStrip = 23;
        WorkMeter work;
        std::string problem;
        EXPECT_TRUE(openTiff(tiffFile(form), work, problem)) << problem;
        return work.spent(Work::Decoding);
    };
    EXPECT_EQ(cost(3), std::uint64_t { 37 } * 23 * kUnitsPerCodedPixel);
    EXPECT_EQ(cost(40), cost(3) * 10);
}

TEST_F(EmfPlusImageFile, RowsTakeNoMoreRoomThanTheyNeed)
{
    constexpr int side = 2500; // 24 MiB of pixels
    PngForm png;
    png.width = png.height = side;
    png.isBlank = true;
    GifForm gif;
    gif.screenWidth = gif.screenHeight = gif.width = gif.height = side;
    gif.isBlank = true;
    TiffForm tiff;
    tiff.width = tiff.height = side;
    tiff.isBlank = true;
    tiff.compression = COMPRESSION_LZW;
    std::vector<Bytes> files { pngFile(png), gifFile(gif), tiffFile(tiff) };
    png.isInterlaced = gif.isInterlaced = true;
    files.push_back(pngFile(png));
    files.push_back(gifFile(gif));
    for (std::size_t i = 0; i < files.size(); ++i) {
        SCOPED_TRACE(i);
        Bytes row(std::size_t { side } * 4);
        const SpareHeap bound(kTiffBandBytes + (1U << 20));
        const auto rows = open(files[i]);
        for (const int y : { 0, side - 1 })
            rows->row(y, row.data());
        EXPECT_EQ(row[3], 255);
        EXPECT_FALSE(rows->isDamaged());
    }
}

TEST_F(EmfPlusImageFile, StripsThatHaveToBeHeldAreAskedFor)
{
    TiffForm form;
    form.width = form.height = form.rowsPerStrip = 2500;
    form.isBlank = true;
    form.compression = COMPRESSION_LZW;
    const Bytes file = tiffFile(form);
    const SpareHeap bound(16U << 20);
    EXPECT_THROW(openImageFile(file, m_work, m_problem), std::bad_alloc) << "18 MiB in one strip";
}

TEST_F(EmfPlusImageFile, StripsInSeveralScansAreAskedForWithTheirCoefficients)
{
    constexpr int side = 2000; // 11 MiB of samples, 23 of coefficients
    const auto fileOf = [](auto adjust) {
        TiffForm form;
        form.width = form.height = side;
        form.compression = COMPRESSION_JPEG;
        form.coded = writeJpeg(Bytes(std::size_t { side } * side * 3), side, side, 3, JCS_RGB, adjust);
        return tiffFile(form);
    };
    static constexpr std::array<jpeg_scan_info, 3> oneByOne { { { 1, { 0 }, 0, 63, 0, 0 }, { 1, { 1 }, 0, 63, 0, 0 },
        { 1, { 2 }, 0, 63, 0, 0 } } };
    const auto asRgb = [](jpeg_compress_struct& info) { jpeg_set_colorspace(&info, JCS_RGB); };
    const Bytes plain = fileOf(asRgb);
    const Bytes progressive = fileOf([&asRgb](jpeg_compress_struct& info) {
        asRgb(info);
        jpeg_simple_progression(&info);
    });
    const Bytes planes = fileOf([&asRgb](jpeg_compress_struct& info) {
        asRgb(info);
        info.scan_info = oneByOne.data();
        info.num_scans = static_cast<int>(oneByOne.size());
    });
    {
        const SpareHeap bound(30U << 20);
        EXPECT_TRUE(openImageFile(plain, m_work, m_problem)) << m_problem;
        EXPECT_THROW(openImageFile(progressive, m_work, m_problem), std::bad_alloc);
        EXPECT_THROW(openImageFile(planes, m_work, m_problem), std::bad_alloc);
    }
    const auto cost = [this](const Bytes& file) {
        const std::uint64_t before = m_work.spent(Work::Decoding);
        open(file);
        return m_work.spent(Work::Decoding) - before;
    };
    EXPECT_GT(cost(progressive), 10 * cost(plain));
    for (const Bytes& file : { plain, progressive, planes }) {
        const auto rows = open(file);
        EXPECT_EQ(rowOf(*rows, side - 1)[4], 0);
        EXPECT_FALSE(rows->isDamaged());
    }
}

} // namespace
} // namespace quillrip::emf::plus
