#include "tests/image/sample_pages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

using namespace quillrip;
using namespace quillrip::test;

namespace {

/// Boxes of flat colour, dither, noise and white (which overpaints), anywhere: what a printed page is made of.
PageBitmap randomPage(std::mt19937& random)
{
    const auto below = [&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    const auto format = static_cast<PixelFormat>(below(3));
    const int width = 1 + below(below(4) == 0 ? 4000 : 300);
    const int height = 1 + below(below(4) == 0 ? 1500 : 200);
    PageBitmap page { format, width, height, { 300, 300 } };
    for (int boxes = below(12); boxes > 0; --boxes) {
        const int top = below(height);
        const int bottom = std::min(height, top + 1 + below(below(2) == 0 ? 8 : height));
        const auto rowBytes = static_cast<int>(page.rowBytes());
        const int left = below(rowBytes);
        const int right = std::min(rowBytes, left + 1 + below(rowBytes));
        const int kind = below(4);
        const auto value = static_cast<std::uint8_t>(random());
        for (int y = top; y < bottom; ++y) {
            std::uint8_t* row = page.row(y);
            for (int i = left; i < right; ++i) {
                const int dither = (i * 5 + y * 3) % 17 < 8 ? 255 : 0;
                row[i] = kind == 0 ? value
                    : kind == 1    ? static_cast<std::uint8_t>(dither)
                    : kind == 2    ? static_cast<std::uint8_t>(random())
                                   : std::uint8_t { 0 };
            }
            if (format == PixelFormat::Bilevel && width % 8 != 0)
                row[rowBytes - 1] = static_cast<std::uint8_t>(row[rowBytes - 1] & 0xFF00 >> width % 8);
            page.touch(y, left * 8 / bitsPerPixel(format),
                std::min(width, (right * 8 + bitsPerPixel(format) - 1) / bitsPerPixel(format)));
        }
    }
    return page;
}

} // namespace

/// Documents of random pages come back as they are; the number names the document.
class RandomDocument : public testing::TestWithParam<unsigned> { };

INSTANTIATE_TEST_SUITE_P(Seeds, RandomDocument, testing::Range(1u, 41u));

TEST_P(RandomDocument, ComesBackAsItIs)
{
    std::mt19937 random { GetParam() };
    static const char* const kExtensions[] = { ".bmp", ".pcx", ".png", ".png", ".tif", ".tif", ".tif" };
    const ScratchFolder scratch;
    auto options = optionsFor(
        scratch.path(std::string { "out" } + kExtensions[random() % 7]), static_cast<TiffCompression>(random() % 8));
    options.threads = 1 + random() % 4;
    std::vector<PageBitmap> pages;
    const auto writer = DocumentWriter::create(options);
    ASSERT_TRUE(writer) << writer.reason();
    for (auto count = 1 + random() % 6; pages.size() < count;) {
        PageBitmap page = randomPage(random);
        if (!reasonAgainst(options, page.format()).empty())
            continue;
        pages.push_back(copyOf(page));
        ASSERT_TRUE(writer->addPage(std::move(page))) << writer->reason();
    }
    ASSERT_TRUE(writer->commit()) << writer->reason();
    std::vector<DecodedImage> images;
    for (int number = 1; number <= (holdsSeveralPages(options.type) ? 1 : writer->pageCount()); ++number)
        for (auto& image : decodeFile(pagePath(options, number)))
            images.push_back(std::move(image));
    ASSERT_EQ(images.size(), pages.size());
    for (std::size_t i = 0; i < pages.size(); ++i)
        EXPECT_TRUE(shows(images[i], pages[i])) << "page " << i + 1 << " of " << options.path;
}
