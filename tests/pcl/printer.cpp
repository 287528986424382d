#include "tests/pcl/printer.h"

#include "quillrip/fonts/font_library.h"
#include "tests/support/recording_sink.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace quillrip::test {

namespace {

const std::string kUniversalExit = "\x1b%-12345X";

PageBitmap copyOf(const PageBitmap& page)
{
    PageBitmap copy(page.format(), page.width(), page.height(), page.resolution());
    for (int y = 0; y < page.height(); ++y) {
        const PageBitmap::Extent extent = page.extent(y);
        if (extent.empty())
            continue;
        std::copy_n(page.row(y), page.stride(), copy.row(y));
        copy.touch(y, extent.left, extent.right);
    }
    return copy;
}

} // namespace

const std::string kStart = "\x1b"
                           "E\x1b&l2a0o0E";

std::string e(const std::string& sequence) { return "\x1b" + sequence; }

std::string at(int x, int y) { return e("*p" + std::to_string(x) + "x" + std::to_string(y) + "Y"); }

std::string bytes(std::initializer_list<int> values)
{
    std::string result;
    for (const int value : values)
        result.push_back(static_cast<char>(value));
    return result;
}

std::string command(const std::string& prefix, const std::string& terminator, const std::string& data)
{
    return e(prefix + std::to_string(data.size()) + terminator) + data;
}

bool Printed::warnedOf(const std::string& kind) const
{
    return std::any_of(diagnostics.begin(), diagnostics.end(), [&kind](const Diagnostic& d) { return d.kind == kind; });
}

bool Printed::isBlack(int x, int y, std::size_t page) const { return color(x, y, page) == Rgb { 0, 0, 0 }; }

Rgb Printed::color(int x, int y, std::size_t page) const { return pages.at(page).pixel(x, y); }

std::size_t Printed::blackPixels(std::size_t page) const { return blackPixelCount(pages.at(page)); }

PixelRect Printed::ink(std::size_t page) const
{
    const PageBitmap& bitmap = pages.at(page);
    PixelRect box { bitmap.width(), bitmap.height(), 0, 0 };
    for (int y = 0; y < bitmap.height(); ++y) {
        const PageBitmap::Extent extent = bitmap.extent(y);
        for (int x = extent.left; x < extent.right; ++x) {
            if (bitmap.pixel(x, y) != Rgb { 255, 255, 255 })
                box = { std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1),
                    std::max(box.bottom, y + 1) };
        }
    }
    return box;
}

std::string Printed::art(const PixelRect& rect, std::size_t page) const { return textArt(pages.at(page), rect); }

Printed print(const std::string& job, const PrinterSettings& settings)
{
    Printed printed;
    RecordingSink recorder;
    MemoryPageDevice device { settings.format, settings.dotsPerInch };
    device.useMeter(settings.limits.work);
    FontLibrary fonts { settings.limits, &recorder };
    pcl::Interpreter interpreter { device, recorder, settings.limits, fonts, settings.environment };
    const auto* data = reinterpret_cast<const std::uint8_t*>(job.data());
    MemoryInputStream input { ByteView { data, job.size() } };
    auto end = interpreter.run(input);
    while (end == pcl::Interpreter::End::UniversalExit) {
        const ByteView exit = input.window(kUniversalExit.size());
        EXPECT_EQ(std::string(exit.begin(), exit.begin() + kUniversalExit.size()), kUniversalExit);
        input.skip(kUniversalExit.size());
        ++printed.universalExits;
        end = interpreter.run(input);
    }
    const RunStatus last = interpreter.finish();
    printed.status = interpreter.status() == RunStatus::Done ? last : interpreter.status();
    for (const PageBitmap& page : device.pages())
        printed.pages.push_back(copyOf(page));
    printed.sheets = device.sheets();
    printed.diagnostics = std::move(recorder.diagnostics);
    return printed;
}

Printed printColor(const std::string& job)
{
    PrinterSettings settings;
    settings.format = PixelFormat::Rgb24;
    return print(job, settings);
}

} // namespace quillrip::test
