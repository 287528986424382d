#include "tests/pclxl/vendor_raster_stream.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

using namespace quillrip;
using namespace quillrip::test;
using A = pclxl::Attribute;
using O = pclxl::Operator;
using Bytes = std::vector<std::uint8_t>;

namespace {

constexpr Rgb kWhite { 255, 255, 255 };
constexpr Rgb kBlack { 0, 0, 0 };

TEST(XlVendorRaster, JpegStripsGiveTheirColours)
{
    const std::array<Rgb, 4> colors = { Rgb { 200, 100, 50 }, Rgb { 10, 20, 30 }, kWhite, kBlack };
    Bytes rgb;
    for (int y = 0; y < 8; ++y)
        for (const Rgb color : colors) {
            const Bytes run = flat(color, 8);
            rgb.insert(rgb.end(), run.begin(), run.end());
        }
    XlStream c;
    c.colorSpace(6).cursor(0, 0);
    beginRaster(c, true, 32, 8, imageHeader(flatTables(1)));
    strip(c, 0, 8, colorStrip(rgb, 32, 8, flatTables(1)));
    endRaster(c);
    DrawnPage d(32, 8, c);
    ASSERT_EQ(d.job.pageCount(), 1u) << d.job.sink.message();
    EXPECT_TRUE(d.job.sink.diagnostics.empty());
    for (int i = 0; i < 4; ++i)
        for (const int x : { 0, 7 })
            EXPECT_TRUE(isNear(d.at(8 * i + x, 4), colors[static_cast<std::size_t>(i)], 1)) << i;
}

TEST(XlVendorRaster, EachComponentHasItsTableRowByRow)
{
    // Divisors that differ by table and place: a wrong order multiplies the edges by wrong numbers.
    DivisorTables tables {};
    for (unsigned t = 0; t < 3; ++t)
        for (unsigned i = 0; i < 64; ++i)
            tables[t][i] = 1 + (i * 7 + t * 13) % 12;
    tables[0][8] = 20; // across and down differ most
    tables[0][1] = 1;
    Bytes rgb;
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x) {
            rgb.push_back(static_cast<std::uint8_t>(14 * y));
            rgb.push_back(static_cast<std::uint8_t>(14 * x));
            rgb.push_back(static_cast<std::uint8_t>(7 * (x + y)));
        }
    XlStream c;
    c.cursor(0, 0);
    beginRaster(c, true, 16, 16, imageHeader(tables));
    strip(c, 0, 16, colorStrip(rgb, 16, 16, tables));
    endRaster(c);
    DrawnPage d(16, 16, c);
    ASSERT_EQ(d.job.pageCount(), 1u) << d.job.sink.message();
    int worst = 0;
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x) {
            const Rgb got = d.at(x, y);
            const std::uint8_t* want = rgb.data() + 3 * (16 * y + x);
            worst = std::max(
                { worst, std::abs(got.red - want[0]), std::abs(got.green - want[1]), std::abs(got.blue - want[2]) });
        }
    EXPECT_LE(worst, 16);
}

TEST(XlVendorRaster, DivisorsAbove255Count)
{
    XlStream c;
    c.cursor(0, 0);
    beginRaster(c, false, 8, 8, imageHeader(flatTables(508)));
    // One block whose only coefficient is 1: 508 / 8 above 128.
    strip(c, 0, 8, chunk(0x9021, { 0x5A, 0xFF, 0x00, 0xFF, 0xD9 })); // 010 1 1010, filled up with ones
    endRaster(c);
    DrawnPage d(8, 8, c);
    ASSERT_EQ(d.job.pageCount(), 1u) << d.job.sink.message();
    EXPECT_TRUE(isNear(d.at(4, 4), { 63, 63, 63 }, 1)) << int(d.at(4, 4).red);
}

TEST(XlVendorRaster, TheColourConversionIsTheImages)
{
    XlStream c;
    c.cursor(0, 0);
    beginRaster(c, true, 8, 8, imageHeader(flatTables(1), { 4096, 0, 0, 4096, 4096, 0, 0, 0, 8192 }));
    Bytes samples;
    for (int i = 0; i < 64; ++i)
        samples.insert(samples.end(), { 100, 148, 178 });
    strip(c, 0, 8, chunk(0x9021, withoutHeaders(wholeJpeg(samples, 8, 8, 3, flatTables(1)))));
    endRaster(c);
    DrawnPage d(8, 8, c);
    ASSERT_EQ(d.job.pageCount(), 1u) << d.job.sink.message();
    EXPECT_TRUE((d.at(3, 3) == Rgb { 100, 120, 100 }));
}

TEST(XlVendorRaster, GrayStripsAreInk)
{
    Bytes samples(128, 0);
    std::fill(samples.begin() + 64, samples.end(), std::uint8_t { 155 });
    XlStream c;
    c.colorSpace(8).cursor(0, 0);
    beginRaster(c, false, 8, 16, imageHeader(flatTables(1)));
    strip(c, 0, 16, chunk(0x9021, withoutHeaders(wholeJpeg(samples, 8, 16, 1, flatTables(1)))));
    endRaster(c);
    DrawnPage d(8, 16, c);
    ASSERT_EQ(d.job.pageCount(), 1u) << d.job.sink.message();
    EXPECT_TRUE((d.at(3, 3) == kWhite));
    EXPECT_TRUE((d.at(3, 12) == Rgb { 100, 100, 100 }));
}

TEST(XlVendorRaster, AStripWithHeadersOfItsOwnNeedsNoTables)
{
    XlStream c;
    c.cursor(0, 0);
    beginRaster(c, true, 8, 8, {});
    strip(c, 0, 8, chunk(0x9011, wholeJpeg(asComponents(flat({ 20, 60, 240 }, 64)), 8, 8, 3, flatTables(1))));
    endRaster(c);
    DrawnPage d(8, 8, c);
    ASSERT_EQ(d.job.pageCount(), 1u) << d.job.sink.message();
    EXPECT_TRUE((d.at(3, 3) == Rgb { 20, 60, 240 }));
}

/// Gives one byte at a time.
class Trickle final : public InputStream {
public:
    explicit Trickle(Bytes bytes)
        : m_bytes(std::move(bytes))
    {
    }

protected:
    std::size_t pull(std::uint8_t* to, std::size_t) override
    {
        if (m_next == m_bytes.size())
            return 0;
        *to = m_bytes[m_next++];
        return 1;
    }

private:
    Bytes m_bytes;
    std::size_t m_next = 0;
};

TEST(XlVendorRaster, TheInputsPiecesDoNotMatter)
{
    XlStream c;
    c.cursor(0, 0);
    beginRaster(c, true, 8, 8, {});
    strip(c, 0, 8, chunk(0x9011, wholeJpeg(asComponents(flat({ 20, 60, 240 }, 64)), 8, 8, 3, flatTables(1))));
    endRaster(c);
    Trickle input(onePage(8, 8, c).bytes());
    XlJob job(PixelFormat::Rgb24);
    job.interpreter.run(input);
    ASSERT_EQ(job.pageCount(), 1u) << job.sink.message();
    EXPECT_TRUE((job.pixel(0, 3, 3) == Rgb { 20, 60, 240 }));
}

TEST(XlVendorRaster, StripsStandAtTheCursorByTheirStartLine)
{
    XlStream c;
    c.xy(A::PageOrigin, 3, 2).op(O::SetPageOrigin).cursor(1, 1);
    beginRaster(c, true, 8, 32, imageHeader(flatTables(1)));
    const auto put
        = [&](int start, Rgb color) { strip(c, start, 8, colorStrip(flat(color, 64), 8, 8, flatTables(1))); };
    put(0, { 200, 0, 0 });
    put(8, { 0, 200, 0 });
    put(24, { 0, 0, 200 }); // nothing comes for the rows before
    endRaster(c);
    DrawnPage d(16, 40, c);
    ASSERT_EQ(d.job.pageCount(), 1u) << d.job.sink.message();
    EXPECT_TRUE((d.at(3, 3) == kWhite));
    EXPECT_TRUE((d.at(4, 2) == kWhite));
    for (const int x : { 4, 11 }) {
        EXPECT_TRUE(isNear(d.at(x, 3), { 200, 0, 0 }, 2));
        EXPECT_TRUE(isNear(d.at(x, 10), { 200, 0, 0 }, 2));
        EXPECT_TRUE(isNear(d.at(x, 11), { 0, 200, 0 }, 2));
        EXPECT_TRUE(isNear(d.at(x, 18), { 0, 200, 0 }, 2));
        EXPECT_TRUE((d.at(x, 19) == kWhite));
        EXPECT_TRUE((d.at(x, 26) == kWhite));
        EXPECT_TRUE(isNear(d.at(x, 27), { 0, 0, 200 }, 2));
        EXPECT_TRUE(isNear(d.at(x, 34), { 0, 0, 200 }, 2));
    }
    EXPECT_TRUE((d.at(12, 3) == kWhite));
    EXPECT_TRUE((d.at(4, 35) == kWhite));
}

TEST(XlVendorRaster, AStripRightBelowTheImageIsPassedOver)
{
    XlStream c;
    c.cursor(0, 0);
    beginRaster(c, true, 8, 8, imageHeader(flatTables(1)));
    const Bytes black = colorStrip(flat(kBlack, 64), 8, 8, flatTables(1));
    strip(c, 0, 8, black);
    strip(c, 8, 8, black);
    endRaster(c);
    DrawnPage d(8, 16, c);
    ASSERT_EQ(d.job.pageCount(), 1u) << d.job.sink.message();
    EXPECT_TRUE((d.at(3, 7) == kBlack));
    EXPECT_TRUE((d.at(3, 8) == kWhite));
}

TEST(XlVendorRaster, APageMayEndBeforeItsRasterDoes)
{
    // At half size, so that the painter still holds rows back when the page ends.
    XlStream stream = XlStream::withHeader();
    stream.beginSession(200).openDataSource().beginPage(8, 32).cursor(0, 0);
    beginRaster(stream, true, 8, 64, imageHeader(flatTables(1)));
    strip(stream, 0, 7, colorStrip(flat(kBlack, 56), 8, 7, flatTables(1)));
    stream.endPage().endSession();
    XlJob job(PixelFormat::Rgb24);
    job.run(stream);
    ASSERT_EQ(job.pageCount(), 1u) << job.sink.message();
    EXPECT_TRUE((job.pixel(0, 1, 1) == kBlack));
    EXPECT_LT(job.pixel(0, 1, 3).red, 200);
    EXPECT_TRUE((job.pixel(0, 1, 4) == kWhite));
}

TEST(XlVendorRaster, DamagedStripsAreErrorsByName)
{
    const auto errorOf = [](const Bytes& begin, const Bytes& payload, int start = 0, int rows = 8) {
        XlStream c;
        c.cursor(0, 0);
        beginRaster(c, true, 8, 8, begin);
        strip(c, start, rows, payload);
        endRaster(c);
        DrawnPage d(8, 8, c);
        EXPECT_EQ(d.job.pageCount(), 0u);
        return d.job.sink.message();
    };
    const auto has = [](const std::string& text, const char* what) { return text.find(what) != std::string::npos; };
    const Bytes begin = imageHeader(flatTables(1));
    const Bytes good = colorStrip(flat(kBlack, 64), 8, 8, flatTables(1));
    Bytes cut(good.begin(), good.end() - 4);
    cut[2] = static_cast<std::uint8_t>(cut.size() - 6);
    EXPECT_TRUE(has(errorOf(begin, cut), "MissingData"));
    Bytes tooLong = good;
    tooLong[2] = static_cast<std::uint8_t>(tooLong[2] + 1);
    EXPECT_TRUE(has(errorOf(begin, tooLong), "IllegalDataLength"));
    EXPECT_TRUE(has(errorOf({}, good), "IllegalDataValue"));
    EXPECT_TRUE(has(errorOf(begin, good, 1), "BlockHeight"));
    EXPECT_TRUE(has(errorOf(begin, good, 9), "StartLine"));
    EXPECT_TRUE(has(errorOf(begin, chunk(0x9011, { 0x00, 1 })), "MissingData"));
    EXPECT_TRUE(has(errorOf(begin, chunk(0x9011, {})), "MissingData"));
    EXPECT_TRUE(has(errorOf(begin, chunk(0x9011, wholeJpeg(Bytes(64), 8, 8, 1, flatTables(1)))), "IllegalDataValue"));
    Bytes zero = begin;
    zero[6] = 0;
    EXPECT_TRUE(has(errorOf(zero, good), "IllegalDataValue"));
    EXPECT_TRUE(has(errorOf(chunk(0x8000, Bytes(4)), good), "IllegalDataLength"));
    EXPECT_TRUE(has(errorOf(chunk(0x8001, Bytes(4)), good), "IllegalDataLength"));
}

TEST(XlVendorRaster, ThePayloadIsTakenWholeWhateverBecomesOfIt)
{
    // The strip fails at its start; an exit within its payload must not be taken for the stream's.
    XlStream c;
    c.cursor(0, 0);
    beginRaster(c, true, 8, 8, {});
    Bytes data(40, 0xFF);
    const std::string text = "\x1b%-12345X";
    std::copy(text.begin(), text.end(), data.begin() + 20);
    strip(c, 9, 1, chunk(0x9011, data));
    XlStream all = onePage(8, 8, c);
    all.universalExit().raw("rest");
    XlJob job;
    MemoryInputStream input { ByteView(all.bytes()) };
    EXPECT_EQ(job.interpreter.run(input), pclxl::Interpreter::End::UniversalExit);
    EXPECT_EQ(input.offset(), all.size() - 4 - 9);
}

TEST(XlVendorRaster, AnInputThatEndsWithinAPayloadIsDamage)
{
    XlStream c;
    c.cursor(0, 0);
    beginRaster(c, true, 8, 8, imageHeader(flatTables(1)));
    strip(c, 0, 8, colorStrip(flat(kBlack, 64), 8, 8, flatTables(1)));
    const Bytes all = onePage(8, 8, c).bytes();
    for (std::size_t size = 1; size < all.size() - 2; size += 3) {
        XlJob job;
        job.run(Bytes(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(size)));
        EXPECT_LE(job.pageCount(), 1u);
    }
    XlJob job;
    job.run(Bytes(all.begin(), all.end() - 12));
    EXPECT_EQ(job.pageCount(), 0u);
    EXPECT_EQ(job.interpreter.status(), RunStatus::Damaged);
}

TEST(XlVendorRaster, RowsThatNoMemoryHoldsEndTheJob)
{
    XlStream c;
    c.cursor(0, 0).uint32(A::SourceWidth, 0x7FFFFFFF).uint16(A::SourceHeight, 1).ubyte(A::VUAttr5, 4);
    vendor(c, 0x4000, {});
    XlJob job;
    EXPECT_EQ(job.run(onePage(8, 8, c)), pclxl::Interpreter::End::Failed);
    EXPECT_EQ(job.interpreter.status(), RunStatus::LimitExceeded);
}

TEST(XlVendorRaster, ItNeedsACursor)
{
    XlStream c;
    beginRaster(c, true, 8, 8, imageHeader(flatTables(1)));
    EXPECT_NE(DrawnPage(8, 8, c).job.sink.message().find("CurrentCursorUndefined"), std::string::npos);
}

TEST(XlVendorRaster, WhatIsNotKnownIsPassedOverWithItsName)
{
    const auto warningOf = [](const XlStream& c, const char* kind = "pclxl.vendor-unique") {
        DrawnPage d(8, 8, c);
        EXPECT_EQ(d.job.pageCount(), 1u) << d.job.sink.message();
        EXPECT_EQ(d.job.device.blackPixelCount(0), 0u);
        return d.job.sink.message(kind);
    };
    const auto has = [](const std::string& text, const char* what) { return text.find(what) != std::string::npos; };
    XlStream unknown;
    vendor(unknown, 0x4003, { 1, 2, 3 });
    EXPECT_TRUE(has(warningOf(unknown), "0x68704003"));
    XlStream stranger;
    stranger.uint32(A::VUExtension, 0x12344001).uint32(A::VUDataLength, 2).op(O::VendorUnique).raw("AB");
    EXPECT_TRUE(has(warningOf(stranger), "0x12344001"));
    XlStream alone;
    strip(alone.cursor(0, 0), 0, 1, chunk(0x9011, { 0x86, 0, 0, 0 }));
    EXPECT_TRUE(has(warningOf(alone), "no image"));
    XlStream code;
    beginRaster(code.cursor(0, 0), true, 8, 8, {});
    strip(code, 0, 8, chunk(0x9031, { 1, 2, 3 }));
    EXPECT_TRUE(has(warningOf(code, "pclxl.vendor-chunk"), "unknown code"));
}

Bytes fixture(const std::string& name)
{
    std::ifstream file(std::string(PRISMO_TEST_DATA) + '/' + name, std::ios::binary);
    const std::string all((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const std::size_t start = all.find(") HP-PCL XL;");
    return start == std::string::npos ? Bytes() : Bytes(all.begin() + static_cast<std::ptrdiff_t>(start), all.end());
}

/// Jobs of a driver for colour lasers, in its two qualities and in colour and gray, from one PostScript page of 72 by
/// 72 points at 600 dpi: three squares of 12 points in red, green and blue from (18, 36), one of (.4, .6, .2) below the
/// first, a ramp, and a line of 0.12 points at 20.04 from 18 to 54.
TEST(XlVendorRaster, ADriversJobsAreDrawnInPlace)
{
    const Rgb red { 255, 0, 0 }, green { 0, 255, 0 }, blue { 0, 0, 255 }, moss { 102, 153, 51 };
    struct Case {
        const char* name;
        int loss;
        std::array<Rgb, 4> squares;
    };
    const auto gray = [](std::uint8_t level) { return Rgb { level, level, level }; };
    const std::array<Rgb, 4> grays { gray(130), gray(220), gray(70), gray(139) };
    for (const Case& c : { Case { "vendor_replacement_colour.prn", 0, { red, green, blue, moss } },
             Case { "vendor_jpeg_colour.prn", 10, { red, green, blue, moss } },
             Case { "vendor_replacement_gray.prn", 0, grays }, Case { "vendor_jpeg_gray.prn", 10, grays } }) {
        XlJob job(PixelFormat::Rgb24, {}, {}, 600);
        EXPECT_EQ(job.run(fixture(c.name)), pclxl::Interpreter::End::UniversalExit);
        ASSERT_EQ(job.pageCount(), 1u) << c.name << job.sink.message();
        EXPECT_TRUE(job.sink.diagnostics.empty()) << c.name;
        const auto is = [&](int x, int y, Rgb color) { return isNear(job.pixel(0, x, y), color, c.loss); };
        for (const int i : { 0, 1, 2 }) {
            EXPECT_TRUE(is(152 + 100 * i, 202, c.squares[static_cast<std::size_t>(i)])) << c.name << i;
            EXPECT_TRUE(is(247 + 100 * i, 250, c.squares[static_cast<std::size_t>(i)])) << c.name << i;
        }
        EXPECT_TRUE(is(160, 390, c.squares[3])) << c.name;
        EXPECT_TRUE(is(200, 432, kBlack)) << c.name; // the line, one row thick
        EXPECT_TRUE(is(200, 434, kWhite)) << c.name;
        EXPECT_TRUE(is(140, 300, kWhite)) << c.name;
        EXPECT_TRUE(is(250, 190, kWhite)) << c.name;
    }
}

/// Of another driver, which sends whole JPEG streams where replacement rows are announced: three flat fields and a
/// ramp.
TEST(XlVendorRaster, ADriversWholeJpegStripsAreDrawn)
{
    XlJob job(PixelFormat::Rgb24, {}, {}, 600);
    EXPECT_EQ(job.run(fixture("vendor_whole_jpeg.prn")), pclxl::Interpreter::End::UniversalExit);
    ASSERT_EQ(job.pageCount(), 1u) << job.sink.message();
    EXPECT_TRUE(job.sink.diagnostics.empty());
    EXPECT_TRUE(isNear(job.pixel(0, 200, 180), { 200, 100, 50 }, 2));
    EXPECT_TRUE(isNear(job.pixel(0, 400, 180), { 20, 60, 240 }, 2));
    EXPECT_TRUE(isNear(job.pixel(0, 600, 180), { 0, 160, 80 }, 2));
    EXPECT_TRUE(isNear(job.pixel(0, 800, 180), { 0, 0, 0 }, 4));
    EXPECT_TRUE(isNear(job.pixel(0, 1200, 180), { 200, 200, 200 }, 4));
}

} // namespace
