#include "quillrip/image/group4_encoder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <random>
#include <string>
#include <tiffio.h>
#include <unistd.h>

namespace quillrip {
namespace {

/// The same rows coded by libtiff.
std::vector<std::uint8_t> codedByLibrary(const PageBitmap& page)
{
    std::string path = testing::TempDir() + "group4-XXXXXX";
    ::close(::mkstemp(path.data()));
    TIFF* tiff = TIFFOpen(path.c_str(), "wl");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, page.width());
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, page.height());
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 1);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_CCITTFAX4);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, page.height());
    std::vector<std::uint8_t> row(page.rowBytes());
    for (int y = 0; y < page.height(); ++y) {
        std::copy(page.row(y), page.row(y) + row.size(), row.begin());
        TIFFWriteScanline(tiff, row.data(), static_cast<std::uint32_t>(y), 0);
    }
    TIFFClose(tiff);
    tiff = TIFFOpen(path.c_str(), "r");
    std::vector<std::uint8_t> coded(static_cast<std::size_t>(TIFFRawStripSize(tiff, 0)));
    TIFFReadRawStrip(tiff, 0, coded.data(), static_cast<tmsize_t>(coded.size()));
    TIFFClose(tiff);
    ::unlink(path.c_str());
    return coded;
}

std::vector<std::uint8_t> codedByUs(const PageBitmap& page)
{
    std::vector<std::uint8_t> coded;
    encodeGroup4(page, 0, page.height(), coded);
    return coded;
}

void blacken(PageBitmap& page, int y, int left, int right)
{
    for (int x = left; x < right; ++x)
        page.row(y)[x / 8] = static_cast<std::uint8_t>(page.row(y)[x / 8] | 0x80 >> x % 8);
    if (left < right)
        page.touch(y, left, right);
}

TEST(Group4Encoder, EveryRunLengthOfBothColoursIsCodedAsByTheLibrary)
{
    // A white and a black run on one row each, above a row that gives no help.
    PageBitmap page(PixelFormat::Bilevel, 9000, 5600, {});
    for (int y = 0; y < page.height(); y += 2) {
        blacken(page, y, y / 2 + 5, y + 9);
        blacken(page, y, 8999 - y / 2, 9000);
    }
    EXPECT_EQ(codedByUs(page), codedByLibrary(page));
}

TEST(Group4Encoder, RowsThatResembleTheOneAboveAreCodedAsByTheLibrary)
{
    std::mt19937 dice(1);
    for (const int width : { 1, 7, 8, 63, 64, 65, 127, 128, 200, 1728 }) {
        for (int kind = 0; kind < 6; ++kind) {
            PageBitmap page(PixelFormat::Bilevel, width, 60, {});
            for (int y = 0; y < page.height(); ++y) {
                for (int runs = 0; runs < kind * width / 40 + 1; ++runs) {
                    // Where the row above has its runs, moved by a few pixels, or anywhere.
                    const auto place = static_cast<int>(
                        kind < 3 ? (static_cast<unsigned>(runs) * 37 + dice() % 5) : dice() % 100000);
                    const int left = place % width;
                    blacken(page, y, left, std::min(width, left + 1 + static_cast<int>(dice() % 12)));
                }
                if (dice() % 9 == 0)
                    blacken(page, y, 0, width);
            }
            EXPECT_EQ(codedByUs(page), codedByLibrary(page)) << width << " pixels, kind " << kind;
        }
    }
}

TEST(Group4Encoder, WhitePagesAreOneBitARow)
{
    const PageBitmap page(PixelFormat::Bilevel, 100, 16, {});
    EXPECT_EQ(codedByUs(page), (std::vector<std::uint8_t> { 0xFF, 0xFF, 0x00, 0x10, 0x01 }));
}

TEST(Group4Encoder, BlocksBeginWithoutARowAbove)
{
    PageBitmap page(PixelFormat::Bilevel, 40, 4, {});
    for (int y = 0; y < 4; ++y)
        blacken(page, y, 3, 20);
    std::vector<std::uint8_t> lower;
    encodeGroup4(page, 2, 2, lower);
    PageBitmap two(PixelFormat::Bilevel, 40, 2, {});
    for (int y = 0; y < 2; ++y)
        blacken(two, y, 3, 20);
    EXPECT_EQ(lower, codedByUs(two));
}

} // namespace
} // namespace quillrip
