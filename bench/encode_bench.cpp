// Times the way from finished pages to files, without drawing: encode_bench [-n PAGES] [-c N] OUT PAGE.pnm ...
// The pages (PBM, PGM, PPM, raw) are given to the writer in turn until PAGES are written. Copying a page takes the
// place of drawing it and is part of the time.

#include "quillrip/image/document_writer.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include <sys/resource.h>

using namespace quillrip;

namespace {

constexpr Resolution kResolution { 600, 600 };

/// A raw PNM file; null when it is none.
PageBitmap readPnm(const char* path)
{
    std::ifstream in { path, std::ios::binary };
    std::string magic;
    int width = 0;
    int height = 0;
    in >> magic >> std::ws;
    while (in.peek() == '#') {
        std::string comment;
        std::getline(in, comment);
    }
    in >> width >> height;
    const PixelFormat format = magic == "P4" ? PixelFormat::Bilevel
        : magic == "P5"                      ? PixelFormat::Gray8
                                             : PixelFormat::Rgb24;
    int maximum = 0;
    if (format != PixelFormat::Bilevel)
        in >> maximum;
    in.get();
    if (!in || width < 1 || height < 1)
        return {};
    PageBitmap page { format, width, height, kResolution };
    for (int y = 0; y < height; ++y) {
        std::vector<char> row(page.rowBytes());
        in.read(row.data(), static_cast<std::streamsize>(row.size()));
        bool isBlank = true;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const auto value = static_cast<std::uint8_t>(row[i]);
            const auto ink = format == PixelFormat::Bilevel ? value : static_cast<std::uint8_t>(255 - value);
            isBlank = isBlank && ink == 0;
            row[i] = static_cast<char>(ink);
        }
        if (isBlank)
            continue;
        std::memcpy(page.row(y), row.data(), row.size());
        page.touch(y, 0, width);
    }
    return page;
}

PageBitmap copyOf(const PageBitmap& page)
{
    PageBitmap copy { page.format(), page.width(), page.height(), page.resolution() };
    for (int y = 0; !copy.isNull() && y < page.height(); ++y) {
        if (page.extent(y).empty())
            continue;
        std::memcpy(copy.row(y), page.row(y), page.rowBytes());
        copy.touch(y, 0, page.width());
    }
    return copy;
}

} // namespace

int main(int argc, char** argv)
{
    DocumentOptions options;
    std::size_t pageCount = 20;
    std::vector<PageBitmap> pages;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "-n" && i + 1 < argc) {
            pageCount = std::strtoul(argv[++i], nullptr, 10);
        } else if (argument == "-c" && i + 1 < argc) {
            options.compression = static_cast<TiffCompression>(std::strtol(argv[++i], nullptr, 10));
        } else if (argument == "-t" && i + 1 < argc) {
            options.threads = static_cast<unsigned>(std::strtoul(argv[++i], nullptr, 10));
        } else if (options.path.empty()) {
            options.path = argument;
        } else {
            pages.push_back(readPnm(argv[i]));
            if (pages.back().isNull()) {
                std::fprintf(stderr, "%s: not a raw PNM file\n", argv[i]);
                return 1;
            }
        }
    }
    const auto type = fileTypeOfPath(options.path);
    if (!type || pages.empty()) {
        std::fputs("usage: encode_bench [-n PAGES] [-c N] [-t THREADS] OUT PAGE.pnm ...\n", stderr);
        return 1;
    }
    options.type = *type;

    const auto start = std::chrono::steady_clock::now();
    const auto writer = DocumentWriter::create(options);
    bool isGood = static_cast<bool>(writer);
    for (std::size_t i = 0; isGood && i < pageCount; ++i)
        isGood = writer->addPage(copyOf(pages[i % pages.size()]));
    isGood = isGood && writer->commit();
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    if (!isGood) {
        std::fprintf(stderr, "%s\n", (writer ? writer->reason() : writer.reason()).c_str());
        return 1;
    }
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%zu pages, %.3f s, %ld MiB\n", pageCount, seconds.count(), usage.ru_maxrss / 1024);
    return 0;
}
