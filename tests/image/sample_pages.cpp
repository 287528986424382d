#include "tests/image/sample_pages.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

namespace quillrip::test {

namespace {

void mark(PageBitmap& page, int x, int y, std::uint8_t red, std::uint8_t green, std::uint8_t blue)
{
    std::uint8_t* row = page.row(y);
    switch (page.format()) {
    case PixelFormat::Bilevel:
        if (red >= 128)
            row[x / 8] = static_cast<std::uint8_t>(row[x / 8] | 0x80 >> x % 8);
        break;
    case PixelFormat::Gray8:
        row[x] = red;
        break;
    case PixelFormat::Rgb24:
        row[3 * x] = red;
        row[3 * x + 1] = green;
        row[3 * x + 2] = blue;
        break;
    }
    page.touch(y, x, x + 1);
}

} // namespace

ScratchFolder::ScratchFolder()
{
    std::string name = testing::TempDir() + "quillrip-image-XXXXXX";
    if (mkdtemp(name.data()) == nullptr)
        std::abort();
    m_folder = name;
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

std::size_t ScratchFolder::entryCount() const
{
    const std::filesystem::directory_iterator entries { m_folder };
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

PageBitmap makePage(PixelFormat format, int width, int height, Content content, unsigned seed, Resolution resolution)
{
    PageBitmap page { format, width, height, resolution };
    // A fast generator, since pages are large: linear congruential, its high byte.
    std::uint64_t state = seed;
    const auto byte = [&state] {
        state = state * 6364136223846793005u + 1442695040888963407u;
        return static_cast<std::uint8_t>(state >> 56);
    };
    if (content == Content::Noise) {
        for (int y = 0; y < height; ++y) {
            for (std::size_t i = 0; i < page.rowBytes(); ++i)
                page.row(y)[i] = byte();
            if (format == PixelFormat::Bilevel && width % 8 != 0)
                page.row(y)[width / 8] = static_cast<std::uint8_t>(page.row(y)[width / 8] & 0xFF00 >> width % 8);
            page.touch(y, 0, width);
        }
        return page;
    }
    std::vector<std::uint8_t> wave;
    for (int i = 0; content == Content::Picture && i < width + height; ++i)
        wave.push_back(static_cast<std::uint8_t>(128 + 100 * std::sin(0.05 * i)));
    for (int y = 0; y < height && content != Content::Blank; ++y) {
        // Lines of text: 5 rows of marks, 4 white ones; margins of an eighth.
        if (content == Content::Text && y % 9 >= 5)
            continue;
        for (int x = 0; x < width; ++x) {
            if (content == Content::Solid)
                mark(page, x, y, 255, 255, 255);
            else if (content == Content::Picture)
                mark(page, x, y, wave[static_cast<std::size_t>(x + y)], static_cast<std::uint8_t>(x),
                    static_cast<std::uint8_t>(y));
            else if (x >= width / 8 && x < width - width / 8 && byte() < 90)
                mark(page, x, y, 255, x % 64 < 32 ? 255 : 30, 255);
        }
    }
    return page;
}

PageBitmap copyOf(const PageBitmap& page)
{
    PageBitmap copy { page.format(), page.width(), page.height(), page.resolution() };
    for (int y = 0; y < page.height(); ++y) {
        if (page.extent(y).empty())
            continue;
        std::memcpy(copy.row(y), page.row(y), page.rowBytes());
        copy.touch(y, page.extent(y).left, page.extent(y).right);
    }
    return copy;
}

void writeTextFile(const std::string& path, const std::string& text) { std::ofstream { path } << text; }

std::string readTextFile(const std::string& path)
{
    std::ifstream in { path };
    return { std::istreambuf_iterator<char> { in }, std::istreambuf_iterator<char> {} };
}

testing::AssertionResult shows(const DecodedImage& image, const PageBitmap& page)
{
    if (image.width != page.width() || image.height != page.height())
        return testing::AssertionFailure()
            << image.width << " x " << image.height << " pixels instead of " << page.width() << " x " << page.height();
    // Not through PageBitmap::pixel(): there are too many.
    for (int y = 0; y < page.height(); ++y) {
        const std::uint8_t* row = page.row(y);
        for (int x = 0; x < page.width(); ++x) {
            const Rgb shown = image.pixel(x, y);
            Rgb ink;
            if (page.format() == PixelFormat::Rgb24)
                ink = { row[3 * x], row[3 * x + 1], row[3 * x + 2] };
            else if (page.format() == PixelFormat::Gray8)
                ink = { row[x], row[x], row[x] };
            else if ((row[x / 8] >> (7 - x % 8) & 1) != 0)
                ink = { 255, 255, 255 };
            if (shown.red + ink.red != 255 || shown.green + ink.green != 255 || shown.blue + ink.blue != 255)
                return testing::AssertionFailure() << "pixel " << x << ", " << y << " differs";
        }
    }
    return testing::AssertionSuccess();
}

testing::AssertionResult write(const DocumentOptions& options, const std::vector<const PageBitmap*>& pages)
{
    const auto writer = DocumentWriter::create(options);
    if (!writer)
        return testing::AssertionFailure() << writer.reason();
    for (const PageBitmap* page : pages)
        if (!writer->addPage(copyOf(*page)))
            return testing::AssertionFailure() << writer->reason();
    if (!writer->commit())
        return testing::AssertionFailure() << writer->reason();
    return testing::AssertionSuccess();
}

DocumentOptions optionsFor(const std::string& path, TiffCompression compression)
{
    DocumentOptions options;
    options.path = path;
    options.type = *fileTypeOfPath(path);
    options.compression = compression;
    return options;
}

} // namespace quillrip::test
