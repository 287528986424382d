#include "tests/image/sample_pages.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>

#include <tiffio.h>

using namespace quillrip;
using namespace quillrip::test;

namespace {

struct Entry {
    std::uint32_t type = 0;
    std::uint32_t count = 0;
    std::uint32_t value = 0; ///< or the offset of the values
};
using Directory = std::map<std::uint32_t, Entry>;

/// All directories of a TIFF file with its lowest bytes first, as they are on disk.
std::vector<Directory> directoriesOf(const std::string& path)
{
    const auto bytes = readFile(path);
    std::vector<Directory> directories;
    if (bytes.size() < 8 || bytes[0] != 'I' || bytes[1] != 'I' || u16LittleEndian(bytes, 2) != 42)
        return directories;
    for (std::size_t at = u32LittleEndian(bytes, 4); at != 0 && directories.size() < 1000;) {
        Directory directory;
        const std::uint32_t entries = u16LittleEndian(bytes, at);
        for (std::uint32_t i = 0; i < entries; ++i) {
            const std::size_t entry = at + 2 + std::size_t { i } * 12;
            const std::uint32_t type = u16LittleEndian(bytes, entry + 2);
            const std::uint32_t count = u32LittleEndian(bytes, entry + 4);
            directory[u16LittleEndian(bytes, entry)] = { type, count,
                type == TIFF_SHORT && count == 1 ? u16LittleEndian(bytes, entry + 8)
                                                 : u32LittleEndian(bytes, entry + 8) };
        }
        directories.push_back(directory);
        at = u32LittleEndian(bytes, at + 2 + std::size_t { entries } * 12);
    }
    return directories;
}

std::uint32_t rationalAt(const std::string& path, std::uint32_t offset)
{
    const auto bytes = readFile(path);
    return u32LittleEndian(bytes, offset) / u32LittleEndian(bytes, offset + 4);
}

std::uint32_t pageNumber(std::uint32_t index, std::uint32_t total) { return index | total << 16; }

} // namespace

TEST(TiffDocument, ASinglePageIsNoPageOfSeveral)
{
    const ScratchFolder scratch;
    const PageBitmap page = makePage(PixelFormat::Bilevel, 100, 50, Content::Text);
    ASSERT_TRUE(write(optionsFor(scratch.path("out.tif")), { &page }));
    const auto directories = directoriesOf(scratch.path("out.tif"));
    ASSERT_EQ(directories.size(), 1u);
    EXPECT_EQ(directories[0].at(TIFFTAG_SUBFILETYPE).value, 0u);
    EXPECT_EQ(directories[0].at(TIFFTAG_PAGENUMBER).value, pageNumber(0, 1));
}

TEST(TiffDocument, PagesAreNumberedOutOfTheirTotal)
{
    const ScratchFolder scratch;
    const PageBitmap page = makePage(PixelFormat::Gray8, 100, 50, Content::Text);
    ASSERT_TRUE(
        write(optionsFor(scratch.path("out.tif"), TiffCompression::Lzw), { &page, &page, &page, &page, &page }));
    const auto directories = directoriesOf(scratch.path("out.tif"));
    ASSERT_EQ(directories.size(), 5u);
    for (std::uint32_t i = 0; i < 5; ++i) {
        EXPECT_EQ(directories[i].at(TIFFTAG_SUBFILETYPE).value, std::uint32_t { FILETYPE_PAGE });
        EXPECT_EQ(directories[i].at(TIFFTAG_PAGENUMBER).value, pageNumber(i, 5));
    }
}

TEST(TiffDocument, CompressionsHaveTheirNumbersAndOptions)
{
    struct Row {
        TiffCompression compression;
        PixelFormat format;
        std::uint32_t number;
        std::uint32_t optionTag;
        std::uint32_t option;
    };
    static constexpr Row kRows[] = {
        { TiffCompression::None, PixelFormat::Rgb24, 1, 0, 0 },
        { TiffCompression::PackBits, PixelFormat::Bilevel, 32773, 0, 0 },
        { TiffCompression::Lzw, PixelFormat::Rgb24, 5, TIFFTAG_PREDICTOR, 1 },
        { TiffCompression::LzwPredictor, PixelFormat::Rgb24, 5, TIFFTAG_PREDICTOR, 2 },
        { TiffCompression::LzwPredictor, PixelFormat::Gray8, 5, TIFFTAG_PREDICTOR, 2 },
        { TiffCompression::LzwPredictor, PixelFormat::Bilevel, 5, TIFFTAG_PREDICTOR, 1 },
        { TiffCompression::CcittG3OneD, PixelFormat::Bilevel, 3, TIFFTAG_GROUP3OPTIONS, 4 },
        { TiffCompression::CcittG3TwoD, PixelFormat::Bilevel, 3, TIFFTAG_GROUP3OPTIONS, 5 },
        { TiffCompression::CcittG4, PixelFormat::Bilevel, 4, TIFFTAG_GROUP4OPTIONS, 0 },
        { TiffCompression::Deflate, PixelFormat::Bilevel, 8, TIFFTAG_PREDICTOR, 1 },
        { TiffCompression::Deflate, PixelFormat::Rgb24, 8, TIFFTAG_PREDICTOR, 2 },
    };
    const ScratchFolder scratch;
    for (const Row& row : kRows) {
        SCOPED_TRACE(testing::Message() << "compression " << row.number << ", " << bitsPerPixel(row.format));
        const PageBitmap page = makePage(row.format, 100, 300, Content::Text);
        ASSERT_TRUE(write(optionsFor(scratch.path("out.tif"), row.compression), { &page }));
        const auto directories = directoriesOf(scratch.path("out.tif"));
        ASSERT_EQ(directories.size(), 1u);
        const Directory& directory = directories[0];
        EXPECT_EQ(directory.at(TIFFTAG_COMPRESSION).value, row.number);
        if (row.optionTag != 0) {
            // An absent predictor is 1.
            const bool isAbsent = directory.count(row.optionTag) == 0 && row.optionTag == TIFFTAG_PREDICTOR;
            EXPECT_EQ(isAbsent ? 1 : directory.at(row.optionTag).value, row.option);
        }
        EXPECT_EQ(directory.at(TIFFTAG_PHOTOMETRIC).value,
            row.format == PixelFormat::Bilevel     ? 0u
                : row.format == PixelFormat::Gray8 ? 1u
                                                   : 2u);
        EXPECT_EQ(directory.at(TIFFTAG_SAMPLESPERPIXEL).value, row.format == PixelFormat::Rgb24 ? 3u : 1u);
        EXPECT_EQ(directory.at(TIFFTAG_RESOLUTIONUNIT).value, 2u);
        EXPECT_EQ(directory.at(TIFFTAG_ORIENTATION).value, 1u);
        EXPECT_EQ(directory.at(TIFFTAG_PLANARCONFIG).value, 1u);
    }
}

TEST(TiffDocument, CcittPagesAreOneStrip)
{
    const ScratchFolder scratch;
    const PageBitmap page = makePage(PixelFormat::Bilevel, 3000, 1000, Content::Text);
    ASSERT_TRUE(write(optionsFor(scratch.path("out.tif"), TiffCompression::CcittG4), { &page }));
    const auto directories = directoriesOf(scratch.path("out.tif"));
    ASSERT_EQ(directories.size(), 1u);
    EXPECT_EQ(directories[0].at(TIFFTAG_ROWSPERSTRIP).value, 1000u);
    EXPECT_EQ(directories[0].at(TIFFTAG_STRIPOFFSETS).count, 1u);
}

TEST(TiffDocument, WhatCanPassFourGibibytesBecomesABigTiff)
{
    for (const TiffCompression compression :
        { TiffCompression::None, TiffCompression::Lzw, TiffCompression::CcittG4, TiffCompression::CcittG3OneD }) {
        const ScratchFolder scratch;
        auto options = optionsFor(scratch.path("out.tif"), compression);
        std::vector<PageBitmap> pages;
        std::vector<const PageBitmap*> pointers;
        for (unsigned seed = 1; seed <= 5; ++seed)
            pages.push_back(
                makePage(PixelFormat::Bilevel, 3000, seed % 2 == 0 ? 20 : 700, Content::Text, seed, { 300, 600 }));
        for (const PageBitmap& page : pages)
            pointers.push_back(&page);
        ASSERT_TRUE(write(options, pointers));
        EXPECT_EQ(readFile(options.path).at(2), 42);
        options.mostTiffBytes = 1500000; // which the third page can pass
        ASSERT_TRUE(write(options, pointers));
        EXPECT_EQ(readFile(options.path).at(2), 43);
        const auto images = decodeFile(options.path);
        ASSERT_EQ(images.size(), pages.size());
        for (std::size_t i = 0; i < pages.size(); ++i) {
            EXPECT_TRUE(shows(images[i], pages[i])) << "page " << i + 1;
            EXPECT_NEAR(images[i].yDotsPerInch, 600, 0.02);
        }
        const std::unique_ptr<TIFF, void (*)(TIFF*)> tiff { TIFFOpen(options.path.c_str(), "r"), TIFFClose };
        ASSERT_TRUE(tiff);
        for (std::uint16_t i = 0; i < pages.size(); ++i) {
            std::uint16_t number = 0;
            std::uint16_t total = 0;
            ASSERT_EQ(TIFFSetDirectory(tiff.get(), i), 1);
            ASSERT_EQ(TIFFGetField(tiff.get(), TIFFTAG_PAGENUMBER, &number, &total), 1);
            EXPECT_EQ(number, i);
            EXPECT_EQ(total, pages.size());
        }
    }
}

TEST(TiffDocument, ClassFHasTheTagsOfItsProfile)
{
    for (const int verticalResolution : { 98, 196 }) {
        const ScratchFolder scratch;
        auto options = optionsFor(scratch.path("fax.tif"), TiffCompression::Lzw);
        options.fax = true;
        const Resolution resolution { 204, static_cast<double>(verticalResolution) };
        const PageBitmap page
            = makePage(PixelFormat::Bilevel, 1728, 11 * verticalResolution, Content::Text, 1, resolution);
        ASSERT_TRUE(write(options, { &page, &page }));
        const auto directories = directoriesOf(options.path);
        ASSERT_EQ(directories.size(), 2u);
        for (std::uint32_t i = 0; i < 2; ++i) {
            const Directory& directory = directories[i];
            EXPECT_EQ(directory.at(TIFFTAG_SUBFILETYPE).value, 2u);
            EXPECT_EQ(directory.at(TIFFTAG_SUBFILETYPE).type, std::uint32_t { TIFF_LONG });
            EXPECT_EQ(directory.at(TIFFTAG_IMAGEWIDTH).value, 1728u);
            EXPECT_EQ(directory.at(TIFFTAG_IMAGELENGTH).value, static_cast<std::uint32_t>(page.height()));
            EXPECT_EQ(directory.at(TIFFTAG_BITSPERSAMPLE).value, 1u);
            EXPECT_EQ(directory.at(TIFFTAG_COMPRESSION).value, 3u);
            EXPECT_EQ(directory.at(TIFFTAG_PHOTOMETRIC).value, 0u);
            EXPECT_EQ(directory.at(TIFFTAG_FILLORDER).value, 2u);
            EXPECT_EQ(directory.at(TIFFTAG_STRIPOFFSETS).count, 1u);
            EXPECT_EQ(directory.at(TIFFTAG_ORIENTATION).value, 1u);
            EXPECT_EQ(directory.at(TIFFTAG_SAMPLESPERPIXEL).value, 1u);
            EXPECT_EQ(directory.at(TIFFTAG_ROWSPERSTRIP).value, static_cast<std::uint32_t>(page.height()));
            EXPECT_EQ(rationalAt(options.path, directory.at(TIFFTAG_XRESOLUTION).value), 204u);
            EXPECT_EQ(rationalAt(options.path, directory.at(TIFFTAG_YRESOLUTION).value),
                static_cast<std::uint32_t>(verticalResolution));
            EXPECT_EQ(directory.at(TIFFTAG_GROUP3OPTIONS).value, 4u);
            EXPECT_EQ(directory.at(TIFFTAG_RESOLUTIONUNIT).value, 2u);
            EXPECT_EQ(directory.at(TIFFTAG_PAGENUMBER).value, pageNumber(i, 2));
        }
        const auto images = decodeFile(options.path);
        ASSERT_EQ(images.size(), 2u);
        EXPECT_TRUE(shows(images[1], page));
    }
}

TEST(TiffDocument, ASingleFaxPageIsStillAPageOfAFax)
{
    const ScratchFolder scratch;
    auto options = optionsFor(scratch.path("fax.tif"));
    options.fax = true;
    const PageBitmap page = makePage(PixelFormat::Bilevel, 1728, 200, Content::Text);
    ASSERT_TRUE(write(options, { &page }));
    const auto directories = directoriesOf(options.path);
    ASSERT_EQ(directories.size(), 1u);
    EXPECT_EQ(directories[0].at(TIFFTAG_SUBFILETYPE).value, 2u);
    EXPECT_EQ(directories[0].at(TIFFTAG_PAGENUMBER).value, pageNumber(0, 1));
}

TEST(TiffDocument, FaxRowsStartWithAnEolOnAByteBoundary)
{
    const ScratchFolder scratch;
    auto options = optionsFor(scratch.path("fax.tif"));
    options.fax = true;
    const PageBitmap page = makePage(PixelFormat::Bilevel, 1728, 3, Content::Blank);
    ASSERT_TRUE(write(options, { &page }));
    const auto directories = directoriesOf(options.path);
    ASSERT_EQ(directories.size(), 1u);
    const auto bytes = readFile(options.path);
    const std::size_t at = directories[0].at(TIFFTAG_STRIPOFFSETS).value;
    // Each row: an EOL that ends with its byte, 1728 white (make-up code 010011011) and 0 white (00110101), fill
    // bits; lowest bit first.
    const std::vector<std::uint8_t> strip { 0x00, 0x80, 0xB2, 0x59, 0x01, 0x80, 0xB2, 0x59, 0x01, 0x80, 0xB2, 0x59,
        0x01 };
    ASSERT_EQ(directories[0].at(TIFFTAG_STRIPBYTECOUNTS).value, strip.size());
    for (std::size_t i = 0; i < strip.size(); ++i)
        EXPECT_EQ(bytes.at(at + i), strip[i]) << i;
}

TEST(TiffDocument, FaxPagesOfOtherWidthsAreCutOrPaddedOnTheRight)
{
    for (const int width : { 1, 1687, 1727, 1734, 3000 }) {
        const ScratchFolder scratch;
        auto options = optionsFor(scratch.path("fax.tif"));
        options.fax = true;
        const PageBitmap page = makePage(PixelFormat::Bilevel, width, 5, Content::Solid);
        ASSERT_TRUE(write(options, { &page }));
        const auto images = decodeFile(options.path);
        ASSERT_EQ(images.size(), 1u);
        ASSERT_EQ(images[0].width, 1728);
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 1728; ++x)
                ASSERT_EQ(images[0].pixel(x, y).red, x < width ? 0 : 255) << x;
    }
}
