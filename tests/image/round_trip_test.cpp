#include "tests/image/sample_pages.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iterator>
#include <vector>

using namespace quillrip;
using namespace quillrip::test;

namespace {

constexpr PixelFormat kFormats[] = { PixelFormat::Bilevel, PixelFormat::Gray8, PixelFormat::Rgb24 };
constexpr Content kContents[] = { Content::Blank, Content::Solid, Content::Text, Content::Noise, Content::Picture };

struct Kind {
    const char* name;
    const char* extension;
    TiffCompression compression;
};

void PrintTo(const Kind& kind, std::ostream* out) { *out << kind.name; }

constexpr Kind kKinds[] = {
    { "Bmp", ".bmp", TiffCompression::None },
    { "Pcx", ".pcx", TiffCompression::None },
    { "Png", ".png", TiffCompression::None },
    { "TiffNone", ".tif", TiffCompression::None },
    { "TiffPackBits", ".tif", TiffCompression::PackBits },
    { "TiffLzw", ".tif", TiffCompression::Lzw },
    { "TiffLzwPredictor", ".tif", TiffCompression::LzwPredictor },
    { "TiffG3OneD", ".tif", TiffCompression::CcittG3OneD },
    { "TiffG3TwoD", ".tif", TiffCompression::CcittG3TwoD },
    { "TiffG4", ".tif", TiffCompression::CcittG4 },
    { "TiffDeflate", ".tif", TiffCompression::Deflate },
};

} // namespace

class RoundTrip : public testing::TestWithParam<Kind> {
protected:
    DocumentOptions options() const
    {
        return optionsFor(m_scratch.path(std::string { "page" } + GetParam().extension), GetParam().compression);
    }

    ScratchFolder m_scratch;
};

INSTANTIATE_TEST_SUITE_P(
    Lossless, RoundTrip, testing::ValuesIn(kKinds), [](const auto& info) { return std::string { info.param.name }; });

TEST_P(RoundTrip, EveryPixelComesBackAtOddWidths)
{
    for (const PixelFormat format : kFormats) {
        if (!reasonAgainst(options(), format).empty())
            continue;
        for (const int width : { 1, 7, 8, 9, 37, 63, 64, 65, 129 }) {
            for (const Content content : kContents) {
                SCOPED_TRACE(testing::Message()
                    << bitsPerPixel(format) << " bits, " << width << " wide, content " << static_cast<int>(content));
                const PageBitmap page = makePage(format, width, 21, content);
                std::filesystem::remove(options().path); // to replace it would wait for the disk
                ASSERT_TRUE(write(options(), { &page }));
                const auto images = decodeFile(options().path);
                ASSERT_EQ(images.size(), 1u);
                EXPECT_EQ(images[0].bitsPerPixel, bitsPerPixel(format));
                ASSERT_TRUE(shows(images[0], page));
            }
        }
    }
}

TEST_P(RoundTrip, EveryPixelComesBackFromSeveralBandsAndStrips)
{
    // Bands have 1 MiB, pieces and strips less: the smallest pages that have two of each. Those of few bits have so
    // many pixels that each content counts in the whole check's time.
    struct Size {
        PixelFormat format;
        int width;
        int height;
        std::vector<Content> contents;
    };
    const Size sizes[] = { { PixelFormat::Bilevel, 9001, 940, { Content::Text } },
        { PixelFormat::Gray8, 1501, 710, { Content::Text, Content::Noise } },
        { PixelFormat::Rgb24, 1501, 240, { std::begin(kContents), std::end(kContents) } } };
    for (const Size& size : sizes) {
        if (!reasonAgainst(options(), size.format).empty())
            continue;
        for (const Content content : size.contents) {
            SCOPED_TRACE(
                testing::Message() << bitsPerPixel(size.format) << " bits, content " << static_cast<int>(content));
            const PageBitmap page = makePage(size.format, size.width, size.height, content, 3);
            ASSERT_TRUE(write(options(), { &page }));
            const auto images = decodeFile(options().path);
            ASSERT_EQ(images.size(), 1u);
            ASSERT_TRUE(shows(images[0], page));
        }
    }
}

TEST_P(RoundTrip, OneRowAndOneColumnAreImages)
{
    for (const PixelFormat format : kFormats) {
        if (!reasonAgainst(options(), format).empty())
            continue;
        for (const auto& [width, height] : { std::pair { 3000, 1 }, std::pair { 1, 3000 }, std::pair { 1, 1 } }) {
            const PageBitmap page = makePage(format, width, height, Content::Noise);
            ASSERT_TRUE(write(options(), { &page }));
            const auto images = decodeFile(options().path);
            ASSERT_EQ(images.size(), 1u);
            ASSERT_TRUE(shows(images[0], page));
        }
    }
}

TEST_P(RoundTrip, ResolutionIsRecordedForBothAxes)
{
    for (const PixelFormat format : kFormats) {
        if (!reasonAgainst(options(), format).empty())
            continue;
        const PageBitmap page = makePage(format, 20, 20, Content::Text, 1, { 600, 150 });
        ASSERT_TRUE(write(options(), { &page }));
        const auto images = decodeFile(options().path);
        ASSERT_EQ(images.size(), 1u);
        EXPECT_NEAR(images[0].xDotsPerInch, 600, 0.02);
        EXPECT_NEAR(images[0].yDotsPerInch, 150, 0.02);
    }
}

TEST_P(RoundTrip, PagesOfOneDocumentMayDiffer)
{
    std::vector<PageBitmap> pages;
    pages.push_back(makePage(PixelFormat::Bilevel, 100, 40, Content::Text));
    pages.push_back(makePage(PixelFormat::Bilevel, 37, 90, Content::Noise, 1, { 600, 600 }));
    const bool takesColour = reasonAgainst(options(), PixelFormat::Rgb24).empty();
    pages.push_back(makePage(takesColour ? PixelFormat::Rgb24 : PixelFormat::Bilevel, 61, 62, Content::Picture));
    ASSERT_TRUE(write(options(), { &pages[0], &pages[1], &pages[2] }));
    std::vector<DecodedImage> images;
    for (int page = 1; page <= (holdsSeveralPages(options().type) ? 1 : 3); ++page)
        for (auto& image : decodeFile(pagePath(options(), page)))
            images.push_back(std::move(image));
    ASSERT_EQ(images.size(), 3u);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_TRUE(shows(images[i], pages[i])) << "page " << i + 1;
    EXPECT_NEAR(images[1].xDotsPerInch, 600, 0.02);
}

TEST_P(RoundTrip, TheSameJobGivesTheSameBytesOnOneThreadAndOnFour)
{
    const PageBitmap page = makePage(PixelFormat::Bilevel, 9001, 940, Content::Text);
    auto options = this->options();
    options.threads = 1;
    ASSERT_TRUE(write(options, { &page, &page, &page }));
    const auto single = readFile(options.path);
    options.threads = 4;
    ASSERT_TRUE(write(options, { &page, &page, &page }));
    EXPECT_EQ(readFile(options.path), single);
}

namespace {

/// How far the decoded page is from the real one, per channel and pixel on average.
double meanDifference(const DecodedImage& image, const PageBitmap& page)
{
    double sum = 0;
    for (int y = 0; y < page.height(); ++y)
        for (int x = 0; x < page.width(); ++x) {
            const Rgb a = image.pixel(x, y);
            const Rgb b = page.pixel(x, y);
            sum += std::abs(a.red - b.red) + std::abs(a.green - b.green) + std::abs(a.blue - b.blue);
        }
    return sum / (3.0 * page.width() * page.height());
}

} // namespace

TEST(JpegRoundTrip, ShowsThePageAndItsResolution)
{
    const ScratchFolder scratch;
    const auto options = optionsFor(scratch.path("page.jpg"));
    for (const PixelFormat format : kFormats) {
        for (const int width : { 1, 8, 65, 500 }) {
            for (const Content content : { Content::Blank, Content::Solid, Content::Picture }) {
                const PageBitmap page = makePage(format, width, 77, content, 1, { 600, 150 });
                std::filesystem::remove(options.path);
                ASSERT_TRUE(write(options, { &page }));
                const auto images = decodeFile(options.path);
                ASSERT_EQ(images.size(), 1u);
                EXPECT_EQ(images[0].bitsPerPixel, format == PixelFormat::Rgb24 ? 24 : 8);
                EXPECT_EQ(images[0].xDotsPerInch, 600);
                EXPECT_EQ(images[0].yDotsPerInch, 150);
                ASSERT_EQ(images[0].width, width);
                ASSERT_EQ(images[0].height, 77);
                EXPECT_LT(meanDifference(images[0], page), content == Content::Picture ? 3.0 : 0.01);
            }
        }
    }
}

TEST(JpegRoundTrip, BandsAreOneImageHoweverManyThereAre)
{
    const ScratchFolder scratch;
    const auto options = optionsFor(scratch.path("page.jpg"));
    struct Size {
        PixelFormat format;
        int width;
        int height;
    };
    // A band has a megabyte: 344 rows of 1000 pixels in RGB. More than eight of them come back to the first marker.
    const Size sizes[] = { { PixelFormat::Rgb24, 1000, 343 }, { PixelFormat::Rgb24, 1000, 344 },
        { PixelFormat::Rgb24, 1000, 345 }, { PixelFormat::Rgb24, 1000, 344 * 10 + 5 },
        { PixelFormat::Gray8, 1000, 2200 }, { PixelFormat::Bilevel, 1000, 9000 }, { PixelFormat::Rgb24, 50000, 40 } };
    for (const Size& size : sizes) {
        SCOPED_TRACE(std::to_string(size.width) + " x " + std::to_string(size.height));
        const PageBitmap page = makePage(size.format, size.width, size.height, Content::Picture);
        std::filesystem::remove(options.path);
        ASSERT_TRUE(write(options, { &page }));
        const auto images = decodeFile(options.path); // none when the decoder warned
        ASSERT_EQ(images.size(), 1u);
        ASSERT_EQ(images[0].height, size.height);
        EXPECT_LT(meanDifference(images[0], page), 3.0);
    }
}

TEST(JpegRoundTrip, ColourKeepsItsFullResolution)
{
    const ScratchFolder scratch;
    // Red and blue columns, a pixel wide each, on white: with halved colour resolution they would mix to purple.
    PageBitmap page { PixelFormat::Rgb24, 64, 64, { 300, 300 } };
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x)
            page.row(y)[3 * x + (x % 2 == 0 ? 0 : 2)] = 255;
        page.touch(y, 0, 64);
    }
    ASSERT_TRUE(write(optionsFor(scratch.path("page.jpg")), { &page }));
    const auto images = decodeFile(scratch.path("page.jpg"));
    ASSERT_EQ(images.size(), 1u);
    EXPECT_LT(meanDifference(images[0], page), 12);
}
