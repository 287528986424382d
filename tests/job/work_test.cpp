#include "quillrip/job/metered_input.h"
#include "tests/job/collecting_sink.h"
#include "tests/pclxl/stream_builder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace quillrip;
using namespace quillrip::test;
using A = pclxl::Attribute;
using O = pclxl::Operator;

// Jobs of a few bytes that ask for minutes, each against a budget far below: what is charged for them must be near what
// they cost, and the loops inside of a single operator must ask, or the job overshoots its budget.

namespace {

constexpr std::uint64_t kPageBudget = 200'000'000;

struct Spent {
    ConversionResult result;
    std::uint64_t units = 0;
};

Spent run(const std::string& job, const WorkBudget& budget, PixelFormat format = PixelFormat::Rgb24)
{
    Limits limits;
    limits.work = std::make_shared<WorkMeter>(budget);
    PageSettings settings;
    settings.format = format;
    return { runBytes(job, settings, {}, limits).result, limits.work->spent() };
}

Spent run(const std::string& job, PixelFormat format = PixelFormat::Rgb24)
{
    WorkBudget budget;
    budget.page = kPageBudget;
    return run(job, budget, format);
}

Spent run(const XlStream& contents, PixelFormat format = PixelFormat::Rgb24)
{
    XlStream stream = XlStream::withHeader();
    stream.beginSession(300).openDataSource().beginPage(850, 1100).append(contents).endPage().endSession();
    const std::vector<std::uint8_t>& bytes = stream.bytes();
    return run(std::string("\x1b%-12345X@PJL ENTER LANGUAGE=PCLXL\r\n") + std::string(bytes.begin(), bytes.end())
            + "\x1b%-12345X",
        format);
}

/// The budget stopped it, soon after it was reached, and says why.
void expectStopped(const Spent& spent)
{
    EXPECT_EQ(spent.result.status, ConversionStatus::LimitExceeded);
    EXPECT_NE(spent.result.reason.find("asks for more drawing"), std::string::npos) << spent.result.reason;
    EXPECT_LT(spent.units, kPageBudget * 5 / 4);
}

/// A device, or a pipe whose other end says the same for ever.
class EndlessInput final : public InputStream {
public:
    explicit EndlessInput(std::uint8_t byte)
        : m_byte(byte)
    {
    }

protected:
    std::size_t pull(std::uint8_t* to, std::size_t count) override
    {
        std::fill_n(to, count, m_byte);
        return count;
    }

private:
    std::uint8_t m_byte;
};

const std::string kReset = "\x1b"
                           "E";

std::string repeated(const std::string& part, int times)
{
    std::string all;
    for (int i = 0; i < times; ++i)
        all += part;
    return all;
}

} // namespace

TEST(Work, AnInputThatNeverEndsIsStopped)
{
    for (const std::uint8_t byte : { std::uint8_t { 0 }, std::uint8_t { 1 } }) {
        WorkBudget budget;
        budget.page = kPageBudget;
        Limits limits;
        limits.work = std::make_shared<WorkMeter>(budget);
        EndlessInput input(byte);
        CollectingSink sink;
        PageSettings settings;
        settings.resolution = { 10, 10 };
        const ConversionResult result = runJob(input, sink, settings, limits, sink, {}, sink);
        EXPECT_EQ(result.status, ConversionStatus::LimitExceeded) << int { byte };
        EXPECT_EQ(result.reason, "too much of the input belongs to no page") << int { byte };
        EXPECT_LT(limits.work->spent(), kPageBudget * 5 / 4) << int { byte };
    }
}

TEST(Work, AnHonestPageMayHaveHundredsOfMegabytes)
{
    Limits limits;
    EndlessInput input(0);
    MeteredInput metered(input, *limits.work);
    constexpr std::uint64_t length = std::uint64_t { 1 } << 30;
    EXPECT_EQ(metered.skip(length), length);
    EXPECT_EQ(metered.offset(), length);
}

TEST(Work, HatchesOfDashesAreStoppedWithinOneFill)
{
    const std::string plot = "IN;SP1;PW.01;LT2,.007;FT4,20;RA10160,7620;SP0;";
    expectStopped(run(plot));
    expectStopped(run(plot, PixelFormat::Bilevel));
    // Those that no device tells from an area are one.
    EXPECT_EQ(run("IN;SP1;LA1,4;LT2,.001;FT4,1;RA10160,7620;SP0;").result.status, ConversionStatus::Done);
}

TEST(Work, DashedCirclesAreStopped)
{
    expectStopped(run("IN;SP1;LT2,.05;PA5000,4000;" + repeated("CI3000;CI2999;", 1000) + "SP0;"));
}

TEST(Work, ADashedStrokePaintedAgainAndAgainIsStopped)
{
    XlStream c;
    c.nullBrush().ubyte(A::PenWidth, 20).op(O::SetPenWidth).ubyte(A::LineCapStyle, 1).op(O::SetLineCap);
    c.ubyte(A::LineJoinStyle, 1).op(O::SetLineJoin).words(A::LineDashStyle, { 1, 1 }).op(O::SetLineDash);
    c.op(O::NewPath).cursor(100, 100);
    for (int i = 0; i < 500; ++i)
        c.lineTo(100 + i * 997 % 2000, 100 + i * 613 % 3000);
    for (int i = 0; i < 1000; ++i)
        c.op(O::PaintPath);
    expectStopped(run(c));
    expectStopped(run(c, PixelFormat::Bilevel));
}

TEST(Work, AStarFilledAgainAndAgainIsStopped)
{
    XlStream c;
    c.nullPen().grayBrush(0).op(O::NewPath).cursor(1200, 100);
    for (int i = 1; i < 4000; ++i)
        c.lineTo(static_cast<int>(1200 + 1100 * std::sin(i * 2.9)), static_cast<int>(1500 - 1100 * std::cos(i * 2.9)));
    for (int i = 0; i < 1000; ++i)
        c.op(O::PaintPath);
    expectStopped(run(c));
    expectStopped(run(c, PixelFormat::Bilevel));
}

TEST(Work, RasterOperationsOverThePageCostLittleEach)
{
    XlStream c;
    c.nullPen()
        .rgbBrush(200, 30, 90)
        .ubyte(A::ROP3, 90)
        .op(O::SetROP)
        .op(O::NewPath)
        .box(A::BoundingBox, 0, 0, 2500, 3300);
    c.op(O::RectanglePath);
    for (int i = 0; i < 8; ++i)
        c.op(O::PaintPath);
    const Spent few = run(c);
    EXPECT_EQ(few.result.status, ConversionStatus::Done);
    EXPECT_LT(few.units, kPageBudget);
    for (int i = 0; i < 1000; ++i)
        c.op(O::PaintPath);
    expectStopped(run(c));
}

TEST(Work, RectanglesInPatternsAreStopped)
{
    expectStopped(run(kReset + "\x1b&l0O\x1b*l90O\x1b*c40G\x1b*c2400a3150b" + repeated("2p", 500) + "2P"));
}

TEST(Work, MacrosThatPaintWithoutEndAreStopped)
{
    const std::string job = kReset + "\x1b&f1y0X\x1b*c2400a3150b" + repeated("0p", 20) + "0P\x1b&f1X\x1b&f2y0X\x1b&f"
        + repeated("1y3x", 200) + "1y3X\x1b&f1X\x1b&f3y0X\x1b&f" + repeated("2y3x", 200) + "2y3X\x1b&f1X\x1b&f3y3X";
    expectStopped(run(job));
    expectStopped(run(job, PixelFormat::Bilevel));
}

TEST(Work, MacrosThatMakePagesWithoutEndAreStopped)
{
    const std::string job = kReset + "\x1b&f1y0X\x1b*c2400a3150b0P\f\x1b&f1X\x1b&f2y0X\x1b&f" + repeated("1y3x", 100)
        + "1y3X\x1b&f1X\x1b&f" + repeated("2y3x", 100) + "2y3X";
    WorkBudget budget;
    budget.job = kPageBudget;
    budget.perPage = kPageBudget / 10;
    expectStopped(run(job, budget));
}

TEST(Work, EmptyRowsOfAWideRasterScaledDownAreStopped)
{
    std::string job = kReset + "\x1b*v6W" + std::string("\x00\x03\x00\x08\x08\x08", 6)
        + "\x1b*r65535s65535T\x1b*t2000h2400V\x1b*r3A\x1b*b2M" + repeated("\x1b*bW", 60000) + "\x1b*rC";
    const Spent spent = run(job);
    EXPECT_TRUE(spent.result.status == ConversionStatus::LimitExceeded || spent.units < kPageBudget);
}

TEST(Work, RowsThatADeclaredAreaLacksCostWhatIsSeenOfThem)
{
    const Spent spent = run(kReset + "\x1b*v6W" + std::string("\x00\x03\x00\x08\x08\x08", 6)
        + "\x1b*r65535s65535T\x1b*t2000h2400V\x1b*r3A\x1b*b2M" + repeated("\x1b*bW", 100) + "\x1b*rC");
    EXPECT_EQ(spent.result.status, ConversionStatus::Done);
    EXPECT_LT(spent.units, kPageBudget);
}

TEST(Work, RowsWiderThanAnyPageAreRefused)
{
    XlStream c;
    c.colorSpace(2).cursor(0, 0).ubyte(A::ColorMapping, 0).ubyte(A::ColorDepth, 2).uint32(A::SourceWidth, 22'000'000);
    c.uint16(A::SourceHeight, 1000).xy(A::DestinationSize, 2000, 1000).op(O::BeginImage);
    c.uint16(A::StartLine, 0).uint16(A::BlockHeight, 1000).ubyte(A::CompressMode, 3).op(O::ReadImage);
    c.data(std::vector<std::uint8_t>(2000));
    EXPECT_EQ(run(c).result.status, ConversionStatus::LimitExceeded);
}

TEST(Work, RowsBelowTheRasterAreStoppedThoughNothingIsPainted)
{
    expectStopped(run(kReset + "\x1b*v6W" + std::string("\x00\x03\x00\x08\x08\x08", 6)
        + "\x1b*r65535s1T\x1b*t2000h2400V\x1b*r3A\x1b*b2M" + repeated("\x1b*bW", 5000) + "\x1b*rC"));
}

TEST(Work, WideRowsOfOneImageAreStoppedWithinIt)
{
    constexpr int kRows = 5000;
    XlStream c;
    c.colorSpace(2).cursor(0, 0).ubyte(A::ColorMapping, 0).ubyte(A::ColorDepth, 2).uint32(A::SourceWidth, 1'000'000);
    c.uint16(A::SourceHeight, kRows).xy(A::DestinationSize, 2000, 1000).op(O::BeginImage);
    c.uint16(A::StartLine, 0).uint16(A::BlockHeight, kRows).ubyte(A::CompressMode, 3).op(O::ReadImage);
    c.data(std::vector<std::uint8_t>(std::size_t { 2 } * kRows)).op(O::EndImage);
    expectStopped(run(c));
}

// Bold letters as high as a page: outlines of their strokes, which no cache of glyphs holds.
TEST(Work, BoldLettersOfTenInchesAreStoppedWithinOneText)
{
    XlStream c;
    c.grayBrush(0)
        .text(A::FontName, "Arial         Bd")
        .real(A::CharSize, 3000)
        .uint16(A::SymbolSet, 629)
        .op(O::SetFont);
    c.real(A::CharBoldValue, 0.9f).op(O::SetCharBoldValue).cursor(100, 3000);
    std::string letters;
    for (int i = 0; i < 10; ++i)
        letters += "ABCDEFGHIJ";
    c.text(A::TextData, letters).op(O::Text);
    expectStopped(run(c));
}

TEST(Work, AStarThroughATinyClipIsStopped)
{
    XlStream star;
    star.op(O::NewPath).cursor(1200, 100);
    for (int i = 1; i < 500; ++i)
        star.lineTo(
            static_cast<int>(1200 + 1100 * std::sin(i * 2.9)), static_cast<int>(1500 - 1100 * std::cos(i * 2.9)));
    for (int i = 0; i < 200; ++i)
        star.op(O::PaintPath);
    const auto define = [](const std::string& name, const XlStream& contents) {
        XlStream s;
        s.text(A::StreamName, name).op(O::BeginStream);
        s.uint32(A::StreamDataLength, static_cast<std::uint32_t>(contents.size())).op(O::ReadStream);
        s.data(contents.bytes(), true);
        return s.op(O::EndStream);
    };
    XlStream many;
    for (int i = 0; i < 100; ++i)
        many.text(A::StreamName, "star").op(O::ExecStream);
    XlStream c = define("star", star);
    c.append(define("many", many)).nullPen().grayBrush(0);
    c.box(A::BoundingBox, 1200, 1500, 1202, 1502).ubyte(A::ClipRegion, 0).op(O::SetClipRectangle);
    for (int i = 0; i < 100; ++i)
        c.text(A::StreamName, "many").op(O::ExecStream);
    expectStopped(run(c));
}

TEST(Work, HonestPagesCostLittle)
{
    std::string text = kReset;
    for (int line = 0; line < 60; ++line)
        text += "The quick brown fox jumps over the lazy dog, and 1,234.56 more words to fill a line.\r\n";
    for (const PixelFormat format : { PixelFormat::Bilevel, PixelFormat::Rgb24 }) {
        const Spent spent = run(text, format);
        EXPECT_EQ(spent.result.status, ConversionStatus::Done);
        EXPECT_LT(spent.units, 30'000'000u);
    }
}
