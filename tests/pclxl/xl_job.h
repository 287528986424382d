#pragma once

#include "quillrip/fonts/font_library.h"
#include "quillrip/pclxl/interpreter.h"
#include "tests/pclxl/stream_builder.h"
#include "tests/support/memory_page_device.h"
#include "tests/support/recording_sink.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace quillrip::test {

/// One interpreter with all that it needs. The device has 100 pixels an inch, as sessions of XlStream have units.
struct XlJob {
    explicit XlJob(PixelFormat format = PixelFormat::Bilevel, const Limits& limits = {},
        const pclxl::Environment& environment = {}, double resolution = 100)
        : device(format, resolution)
        , fonts(limits)
        , interpreter(device, sink, limits, fonts, environment)
    {
        device.useMeter(limits.work);
    }

    pclxl::Interpreter::End run(const std::vector<std::uint8_t>& bytes)
    {
        MemoryInputStream input { ByteView(bytes) };
        return interpreter.run(input);
    }
    pclxl::Interpreter::End run(const XlStream& stream) { return run(stream.bytes()); }

    std::size_t pageCount() const { return device.pages().size(); }
    std::string art(std::size_t page, int width, int height) const
    {
        return device.textArt(page, { 0, 0, width, height });
    }
    Rgb pixel(std::size_t page, int x, int y) const { return device.pages().at(page).pixel(x, y); }

    MemoryPageDevice device;
    RecordingSink sink;
    FontLibrary fonts;
    pclxl::Interpreter interpreter;
};

/// A page in a session in a stream, with whatever is drawn on it.
inline XlStream onePage(
    int width, int height, const XlStream& contents, pclxl::ByteOrder order = pclxl::ByteOrder::LittleEndian)
{
    XlStream stream = XlStream::withHeader(order);
    stream.beginSession().openDataSource().beginPage(width, height);
    stream.append(contents);
    stream.endPage().endSession();
    return stream;
}

} // namespace quillrip::test
