#include "quillrip/pclxl/fast_raster.h"
#include "tests/pclxl/xl_job.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

using namespace quillrip;
using namespace quillrip::test;
using namespace quillrip::pclxl;
using A = pclxl::Attribute;
using O = pclxl::Operator;
using Bytes = std::vector<std::uint8_t>;

namespace {

class Rows final : public RowSink {
public:
    explicit Rows(std::size_t rowBytes)
        : m_rowBytes(rowBytes)
    {
    }
    void row(const std::uint8_t* pixels) override { rows.emplace_back(pixels, pixels + m_rowBytes); }

    std::vector<Bytes> rows;

private:
    std::size_t m_rowBytes;
};

struct Decoded {
    Error error;
    std::vector<Bytes> rows;
};

Decoded decode(const Bytes& code, std::size_t rowBytes, std::uint32_t rows,
    FastRasterStrip::Code kind = FastRasterStrip::Code::Delta)
{
    MemoryInputStream input { ByteView(code) };
    EmbeddedData data(input, code.size(), ByteOrder::BigEndian);
    FastRasterStrip strip;
    strip.code = kind;
    strip.rowBytes = rowBytes;
    Rows sink(rowBytes);
    const Status status = decodeFastRaster(data, strip, rows, sink);
    return { status.error, sink.rows };
}

TEST(XlFastRaster, LiteralsAreANewByteAndThoseThatFollow)
{
    const Decoded d = decode({ 0x03, 1, 2, 3, 4 }, 4, 1);
    EXPECT_EQ(d.error, Error::None);
    EXPECT_EQ(d.rows, (std::vector<Bytes> { { 1, 2, 3, 4 } }));
}

TEST(XlFastRaster, ACopyComesFromTheRowAboveAndEndsTheRowAtItsEnd)
{
    // Copy one byte, put one; then a copy that reaches the end takes no further byte.
    const Decoded d = decode({ 0x02, 1, 2, 3, 0x08, 9, 0x08, 0x98 }, 3, 3);
    EXPECT_EQ(d.error, Error::MissingData);
    EXPECT_EQ(d.rows, (std::vector<Bytes> { { 1, 2, 3 }, { 1, 9, 3 } }));
    const Decoded whole = decode({ 0x02, 1, 2, 3, 0x18, 0, 0xF8, 0 }, 3, 3);
    EXPECT_EQ(whole.error, Error::None);
    EXPECT_EQ(whole.rows, (std::vector<Bytes> { { 1, 2, 3 }, { 1, 2, 3 }, { 1, 2, 3 } }));
}

TEST(XlFastRaster, ARunRepeatsWhatStandsSixteenBytesBefore)
{
    // Sixteen literals; then a run of a new byte (a seventeenth) and four more.
    Bytes code = { 0x07, 8 };
    Bytes row;
    for (std::uint8_t i = 0; i < 16; ++i)
        row.push_back(static_cast<std::uint8_t>(0x30 + i));
    code.insert(code.begin() + 1, row.front());
    code.insert(code.end(), row.begin() + 1, row.end());
    code.insert(code.end(), { 0x83, 0xAA });
    row.insert(row.end(), { 0xAA, 0x31, 0x32, 0x33, 0x34 });
    EXPECT_EQ(decode(code, 21, 1).rows, (std::vector<Bytes> { row }));
}

TEST(XlFastRaster, TheFirstByteComesFromWhereTheCommandSays)
{
    // The row above is 1 2 3 4; each command puts one byte.
    const Decoded d = decode({ 0x03, 1, 2, 3, 4, 0x20, 0x40, 0x60, 0x00, 7 }, 4, 2);
    EXPECT_EQ(d.error, Error::None);
    ASSERT_EQ(d.rows.size(), 2u);
    EXPECT_EQ(d.rows[1], (Bytes { 2, 1, 1, 7 })); // above at column + 1, at column - 1, the cached one, a new one
    // Nothing is cached yet but FF.
    EXPECT_EQ(decode({ 0x60 }, 1, 1).rows, (std::vector<Bytes> { { 0xFF } }));
}

TEST(XlFastRaster, NumbersGrowByTheirExtensions)
{
    const auto lastOf = [](Bytes command, std::size_t columns) {
        command.push_back(0x5A);
        const Decoded d = decode(command, columns + 1, 1);
        EXPECT_EQ(d.error, Error::None) << columns;
        return d.rows.size() == 1 && d.rows[0][columns] == 0x5A;
    };
    EXPECT_TRUE(lastOf({ 0x18, 0 }, 3));
    EXPECT_TRUE(lastOf({ 0x18, 253 }, 256));
    EXPECT_TRUE(lastOf({ 0x18, 254, 10 }, 267));
    EXPECT_TRUE(lastOf({ 0x18, 255, 0x01, 0x02 }, 516));
    // The count's extension stands behind the new byte.
    const Decoded d = decode({ 0x07, 1, 1, 2, 3, 4, 5, 6, 7, 8, 9 }, 9, 1);
    EXPECT_EQ(d.rows, (std::vector<Bytes> { { 1, 2, 3, 4, 5, 6, 7, 8, 9 } }));
}

TEST(XlFastRaster, RawRowsStandAsTheyAre)
{
    const Decoded d = decode({ 1, 2, 3, 4, 5 }, 2, 3, FastRasterStrip::Code::Raw);
    EXPECT_EQ(d.error, Error::MissingData);
    EXPECT_EQ(d.rows, (std::vector<Bytes> { { 1, 2 }, { 3, 4 } }));
}

TEST(XlFastRaster, NoCodeReachesBeyondItsRow)
{
    for (unsigned command = 0; command < 256; ++command) {
        const Bytes code = { static_cast<std::uint8_t>(command), 255, 255, 255, 255, 255, 255, 255, 1, 2, 3 };
        decode(code, 5, 4);
        decode(code, 17, 4);
    }
}

void put(Bytes& to, std::uint32_t value, int byteCount)
{
    for (int i = byteCount - 1; i >= 0; --i)
        to.push_back(static_cast<std::uint8_t>(value >> 8 * i));
}

/// A strip for the device's 100 dots an inch, of 16 columns.
XlStream strip(int y, std::uint32_t rows, const Bytes& code, int plane = 3, int kind = 24)
{
    Bytes payload = { 0, 1 };
    put(payload, 100, 2);
    put(payload, static_cast<std::uint32_t>(kind), 2);
    payload.insert(payload.end(), { static_cast<std::uint8_t>(plane), 0 });
    put(payload, 0, 4);
    put(payload, static_cast<std::uint32_t>(code.size()), 4);
    put(payload, 16, 2);
    put(payload, rows, 2);
    put(payload, 0, 2);
    put(payload, static_cast<std::uint32_t>(y), 2);
    payload.push_back(1);
    payload.insert(payload.end(), code.begin(), code.end());
    XlStream c;
    c.uint32(A::VUExtension, 0x68702006).uint32(A::VUDataLength, static_cast<std::uint32_t>(payload.size()));
    c.op(O::VendorUnique).raw(payload);
    return c;
}

/// The rows of the page from where strips begin: 1/6 inch is 17 of its pixels.
std::string draw(const XlStream& contents, int rows, PixelFormat format = PixelFormat::Bilevel)
{
    XlJob job(format);
    XlStream page;
    page.colorSpace(7).ubyte(A::ROP3, 204).op(O::SetROP).append(contents);
    job.run(onePage(40, 40, page));
    return job.pageCount() == 1 ? job.device.textArt(0, { 16, 16, 34, 17 + rows }) : job.sink.message();
}

TEST(XlFastRaster, StripsStandASixthOfAnInchFromTheEdges)
{
    // Two rows, then a strip that starts anew two rows below.
    XlStream c = strip(0, 2, { 0x01, 0x80, 0x01, 0x01, 0x03, 0x00 });
    c.append(strip(2, 1, { 0x01, 0xFF, 0xFF }));
    for (const PixelFormat format : { PixelFormat::Bilevel, PixelFormat::Gray8, PixelFormat::Rgb24 })
        EXPECT_EQ(draw(c, 3, format),
            "..................\n"
            ".#..............#.\n"
            ".......##.........\n"
            ".################.\n");
}

TEST(XlFastRaster, RowsBeyondTheSheetAreDropped)
{
    XlJob job;
    job.run(onePage(40, 40, strip(30, 100, Bytes(300, 0x60)).append(strip(60000, 1, { 0x60, 0x60 }))));
    EXPECT_EQ(job.pageCount(), 1u) << job.sink.message();
}

TEST(XlFastRaster, UnknownCodesArePassedOver)
{
    for (const XlStream& c : { strip(0, 1, { 1, 2, 3 }, 0), strip(0, 1, { 1, 2, 3 }, 3, 7) }) {
        XlJob job;
        job.run(onePage(40, 40, c));
        EXPECT_EQ(job.pageCount(), 1u);
        EXPECT_TRUE(job.sink.has("pclxl.vendor-unique"));
        EXPECT_EQ(job.device.blackPixelCount(0), 0u);
    }
}

TEST(XlFastRaster, ShortStripsAreAnError)
{
    XlStream headless;
    headless.uint32(A::VUExtension, 0x68702006)
        .uint32(A::VUDataLength, 4)
        .op(O::VendorUnique)
        .raw(Bytes { 0, 1, 2, 88 });
    for (const XlStream& c : { strip(0, 4, { 0x01, 1, 2 }), headless }) {
        XlJob job;
        job.run(onePage(40, 40, c));
        EXPECT_EQ(job.pageCount(), 0u);
        EXPECT_NE(job.sink.message().find("MissingData"), std::string::npos);
    }
}

} // namespace
