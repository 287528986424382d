#include "tests/emf/emf_bench.h"

#include <algorithm>
#include <cstring>

namespace quillrip::test {

namespace {

constexpr std::size_t kSpoolHeader = 16;

void put(Bytes& bytes, std::size_t at, std::int64_t value)
{
    for (std::size_t i = 0; i < 4; ++i)
        bytes[at + i] = static_cast<std::uint8_t>(value >> 8 * i);
}

} // namespace

Bytes words(std::initializer_list<std::int64_t> values)
{
    Bytes bytes(values.size() * 4);
    std::size_t at = 0;
    for (const std::int64_t value : values) {
        put(bytes, at, value);
        at += 4;
    }
    return bytes;
}

std::int64_t bitsOf(float value)
{
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

Bytes operator+(Bytes first, const Bytes& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

Bytes record(std::uint32_t number, std::initializer_list<std::int64_t> values, const Bytes& tail)
{
    Bytes bytes = words({ number, 0 }) + words(values) + tail;
    bytes.resize((bytes.size() + 3) / 4 * 4);
    put(bytes, 4, static_cast<std::int64_t>(bytes.size()));
    return bytes;
}

Bytes boundedRecord(std::uint32_t number, std::initializer_list<std::int64_t> values, const Bytes& tail)
{
    return record(number, { 0, 0, 0, 0 }, words(values) + tail);
}

Bytes metafile(const Bytes& records, const Reference& reference)
{
    const int size = reference.hasMicrometers ? 108 : 88;
    Bytes header = words(
        { 1, size, 0, 0, reference.width - 1, reference.height - 1, 0, 0, reference.frameRight, reference.frameBottom,
            0x464D4520, 0x10000, size + static_cast<std::int64_t>(records.size()) + 20, 1, reference.handles, 0, 0, 0,
            reference.width, reference.height, reference.millimetersX, reference.millimetersY });
    if (reference.hasMicrometers)
        header = header + words({ 0, 0, 0, reference.micrometersX, reference.micrometersY });
    return header + records + record(0x0E, { 0, 16, 20 });
}

Bytes spoolHeader() { return words({ 0x10000, kSpoolHeader, 0, 0 }); }

Bytes spoolRecord(std::uint32_t number, const Bytes& data)
{
    return words({ number, static_cast<std::int64_t>(data.size()) }) + data;
}

Bytes spoolPage(const Bytes& metafile, const Bytes& between)
{
    const Bytes page = spoolRecord(0x0C, metafile) + between;
    return page + spoolRecord(0x0D, words({ static_cast<std::int64_t>(page.size()), 0 }));
}

Bytes devmode(int paper, int orientation, int length, int width)
{
    Bytes data(220);
    const auto put16 = [&](std::size_t at, int value) {
        data[at] = static_cast<std::uint8_t>(value);
        data[at + 1] = static_cast<std::uint8_t>(value >> 8);
    };
    put16(64, 0x0401);
    put16(68, 220);
    put16(72, 3);
    put16(76, orientation);
    put16(78, paper);
    put16(80, length);
    put16(82, width);
    return spoolRecord(3, data);
}

Bytes nullPen() { return record(0x25, { 0x80000008 }); }
Bytes blackBrush() { return record(0x25, { 0x80000004 }); }
Bytes nullBrush() { return record(0x25, { 0x80000005 }); }
Bytes blackPen() { return record(0x25, { 0x80000007 }); }
Bytes rectangle(int left, int top, int right, int bottom) { return record(0x2B, { left, top, right, bottom }); }

Bytes bitmapHeader(int width, int height, int bits, int compression, const Bytes& table, int imageSize)
{
    return words({ 40, width, height, 1 | bits << 16, compression, imageSize, 0, 0,
               static_cast<std::int64_t>(table.size() / 4), 0 })
        + table;
}

emf::Pixels decodedDib(const Bytes& header, const Bytes& bits, std::string* problem, const emf::DibContext& context)
{
    WorkMeter work;
    std::string own;
    const auto rows = emf::openDib(header, bits, context, work, problem ? *problem : own);
    return rows ? emf::pixelsOf(*rows) : emf::Pixels {};
}

Played::Played(const Bytes& job, PixelFormat format, double dotsPerInch, const Limits& limits)
    : device(format, dotsPerInch)
{
    MemoryInputStream input { ByteView(job) };
    emf::Interpreter interpreter(device, report, limits);
    end = interpreter.run(input);
    status = interpreter.status();
}

std::string Played::ink(std::size_t page) const
{
    const PageBitmap& bitmap = device.pages().at(page);
    int left = bitmap.width(), top = bitmap.height(), right = -1, bottom = -1;
    for (int y = 0; y < bitmap.height(); ++y) {
        const PageBitmap::Extent extent = bitmap.extent(y);
        for (int x = extent.left; x < extent.right; ++x) {
            if (bitmap.pixel(x, y) == kWhitePixel)
                continue;
            left = std::min(left, x);
            top = std::min(top, y);
            right = std::max(right, x);
            bottom = std::max(bottom, y);
        }
    }
    if (right < 0)
        return {};
    return std::to_string(left) + ',' + std::to_string(top) + ',' + std::to_string(right) + ','
        + std::to_string(bottom);
}

std::size_t Played::inkCount(std::size_t page) const
{
    const PageBitmap& bitmap = device.pages().at(page);
    std::size_t count = 0;
    for (int y = 0; y < bitmap.height(); ++y) {
        const PageBitmap::Extent extent = bitmap.extent(y);
        for (int x = extent.left; x < extent.right; ++x)
            count += bitmap.pixel(x, y) != kWhitePixel;
    }
    return count;
}

} // namespace quillrip::test
