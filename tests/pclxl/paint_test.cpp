#include "tests/pclxl/xl_job.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;
using A = pclxl::Attribute;
using O = pclxl::Operator;

namespace {

/// The colour of a rectangle that was painted by the given operators.
Rgb painted(const XlStream& contents, PixelFormat format = PixelFormat::Rgb24)
{
    XlStream c;
    c.nullPen().append(contents);
    XlJob job(format);
    job.run(onePage(4, 4, c));
    EXPECT_EQ(job.pageCount(), 1u) << job.sink.message();
    return job.pageCount() == 1 ? job.pixel(0, 1, 1) : Rgb { 1, 2, 3 };
}

std::string errorOf(const XlStream& contents)
{
    XlJob job;
    job.run(onePage(4, 4, contents));
    return job.sink.message();
}

TEST(XlPaint, ColoursComeInEveryForm)
{
    EXPECT_TRUE((painted(XlStream().grayBrush(100).rectangle(0, 0, 4, 4)) == Rgb { 100, 100, 100 }));
    EXPECT_TRUE((painted(XlStream().real(A::GrayLevel, 0.2F).op(O::SetBrushSource).rectangle(0, 0, 4, 4))
        == Rgb { 51, 51, 51 }));
    EXPECT_TRUE((painted(XlStream().colorSpace(2).rgbBrush(9, 8, 7).rectangle(0, 0, 4, 4)) == Rgb { 9, 8, 7 }));
    EXPECT_TRUE((painted(XlStream().reals(A::RGBColor, { 1, 0.2F, 0 }).op(O::SetBrushSource).rectangle(0, 0, 4, 4))
        == Rgb { 255, 51, 0 }));
    EXPECT_TRUE((painted(XlStream()
                             .colorSpace(6)
                             .bytes(A::PrimaryArray, { 15, 3, 0 })
                             .ubyte(A::PrimaryDepth, 1)
                             .op(O::SetBrushSource)
                             .rectangle(0, 0, 4, 4))
        == Rgb { 255, 51, 0 }));
    EXPECT_TRUE((painted(XlStream()
                             .ubyte(A::ColorSpace, 2)
                             .ubyte(A::PaletteDepth, 2)
                             .bytes(A::PaletteData, { 0, 0, 0, 4, 5, 6 })
                             .op(O::SetColorSpace)
                             .ubyte(A::PaletteIndex, 1)
                             .op(O::SetBrushSource)
                             .rectangle(0, 0, 4, 4))
        == Rgb { 4, 5, 6 }));
}

TEST(XlPaint, AColourStaysWhenTheColourSpaceChanges)
{
    EXPECT_TRUE(
        (painted(XlStream().colorSpace(2).rgbBrush(1, 2, 3).colorSpace(1).rectangle(0, 0, 4, 4)) == Rgb { 1, 2, 3 }));
}

TEST(XlPaint, GrayPagesGetTheLuminance)
{
    EXPECT_TRUE(
        (painted(XlStream().rgbBrush(255, 0, 0).rectangle(0, 0, 4, 4), PixelFormat::Gray8) == Rgb { 76, 76, 76 }));
}

TEST(XlPaint, BadColoursAreErrors)
{
    EXPECT_NE(errorOf(XlStream().bytes(A::RGBColor, { 1, 2 }).op(O::SetBrushSource)).find("IllegalArraySize"),
        std::string::npos);
    EXPECT_NE(errorOf(XlStream().uint16(A::GrayLevel, 256).op(O::SetBrushSource)).find("IllegalAttributeValue"),
        std::string::npos);
    EXPECT_NE(
        errorOf(XlStream().ubyte(A::PaletteIndex, 0).op(O::SetBrushSource)).find("MissingPalette"), std::string::npos);
    EXPECT_NE(errorOf(XlStream().sint16(A::PatternSelectID, 5).op(O::SetPenSource)).find("RasterPatternUndefined"),
        std::string::npos);
    EXPECT_NE(errorOf(XlStream().ubyte(A::ColorSpace, 2).ubyte(A::PaletteDepth, 2).op(O::SetColorSpace))
                  .find("IllegalAttributeCombination"),
        std::string::npos);
    EXPECT_NE(errorOf(XlStream()
                          .ubyte(A::ColorSpace, 2)
                          .ubyte(A::PaletteDepth, 2)
                          .bytes(A::PaletteData, { 1, 2 })
                          .op(O::SetColorSpace))
                  .find("IllegalArraySize"),
        std::string::npos);
    EXPECT_NE(errorOf(XlStream().ubyte(A::ColorSpace, 3).op(O::SetColorSpace)).find("IllegalAttributeValue"),
        std::string::npos);
}

TEST(XlPaint, TheBrushFillsAndThePenStrokes)
{
    XlStream c;
    c.grayBrush(128).grayPen(0).ubyte(A::PenWidth, 2).op(O::SetPenWidth).rectangle(2, 2, 8, 6);
    XlJob job(PixelFormat::Rgb24);
    job.run(onePage(10, 8, c));
    EXPECT_EQ(job.art(0, 10, 8),
        "..........\n"
        ".########.\n"
        ".########.\n"
        ".##++++##.\n"
        ".##++++##.\n"
        ".########.\n"
        ".########.\n"
        "..........\n");
    XlStream none;
    none.nullBrush().nullPen().rectangle(0, 0, 8, 8);
    XlJob blank;
    blank.run(onePage(10, 8, none));
    EXPECT_EQ(blank.device.blackPixelCount(0), 0u);
}

TEST(XlPaint, PenWidthFollowsTheScale)
{
    XlStream c;
    c.nullBrush().xy(A::PageScale, 2, 2).op(O::SetPageScale).ubyte(A::PenWidth, 2).op(O::SetPenWidth);
    c.cursor(0, 2).lineTo(3, 2).op(O::PaintPath);
    XlJob job;
    job.run(onePage(6, 8, c));
    EXPECT_EQ(job.art(0, 6, 8), "......\n......\n######\n######\n######\n######\n......\n......\n");
}

TEST(XlPaint, AZeroWidthPenDrawsThinLines)
{
    XlStream c;
    c.nullBrush().ubyte(A::PenWidth, 0).op(O::SetPenWidth).cursor(0, 1).lineTo(6, 1).op(O::PaintPath);
    XlJob job;
    job.run(onePage(6, 3, c));
    const std::size_t black = job.device.blackPixelCount(0);
    EXPECT_GE(black, 6u);
    EXPECT_LE(black, 7u);
}

TEST(XlPaint, DashesAndSolidLines)
{
    XlStream c;
    c.nullBrush().ubyte(A::PenWidth, 2).op(O::SetPenWidth).words(A::LineDashStyle, { 3, 1 });
    c.uint16(A::DashOffset, 1).op(O::SetLineDash).cursor(0, 1).lineTo(10, 1).op(O::PaintPath).op(O::NewPath);
    c.ubyte(A::SolidLine, 0).op(O::SetLineDash).cursor(0, 4).lineTo(10, 4).op(O::PaintPath).op(O::NewPath);
    c.words(A::LineDashStyle, { 2 }).op(O::SetLineDash).cursor(0, 7).lineTo(10, 7).op(O::PaintPath);
    XlJob job;
    job.run(onePage(10, 9, c));
    EXPECT_EQ(job.art(0, 10, 9),
        "##.###.###\n"
        "##.###.###\n"
        "..........\n"
        "##########\n"
        "##########\n"
        "..........\n"
        "##..##..##\n"
        "##..##..##\n"
        "..........\n");
}

TEST(XlPaint, DashesThatCannotBeAreSolid)
{
    for (const std::vector<int>& dashes : { std::vector<int> { 0, 0 }, std::vector<int> {} }) {
        XlStream c;
        c.nullBrush().ubyte(A::PenWidth, 2).op(O::SetPenWidth).words(A::LineDashStyle, dashes).op(O::SetLineDash);
        c.cursor(0, 1).lineTo(10, 1).op(O::PaintPath);
        XlJob job;
        job.run(onePage(10, 2, c));
        EXPECT_EQ(job.device.blackPixelCount(0), 20u);
    }
    XlStream many;
    many.bytes(A::LineDashStyle, std::vector<std::uint8_t>(5000, 1)).op(O::SetLineDash);
    EXPECT_NE(errorOf(many).find("IllegalArraySize"), std::string::npos);
}

TEST(XlPaint, CapsLengthenLines)
{
    const std::size_t black[] = { 20, 0, 24, 0 };
    for (const int cap : { 0, 2 }) {
        XlStream c;
        c.nullBrush().ubyte(A::PenWidth, 2).op(O::SetPenWidth).ubyte(A::LineCapStyle, cap).op(O::SetLineCap);
        c.cursor(5, 5).lineTo(15, 5).op(O::PaintPath);
        XlJob job;
        job.run(onePage(20, 10, c));
        EXPECT_EQ(job.device.blackPixelCount(0), black[cap]) << cap;
    }
}

TEST(XlPaint, JoinsAndMiterLimitShapeCorners)
{
    const auto black = [](int join, int miter) {
        XlStream c;
        c.nullBrush().ubyte(A::PenWidth, 10).op(O::SetPenWidth).ubyte(A::LineJoinStyle, join).op(O::SetLineJoin);
        c.ubyte(A::MiterLength, miter).op(O::SetMiterLimit).cursor(10, 40).lineTo(25, 20).lineTo(40, 40);
        c.op(O::PaintPath);
        XlJob job;
        job.run(onePage(50, 50, c));
        return job.device.blackPixelCount(0);
    };
    const std::size_t miter = black(0, 10);
    const std::size_t round = black(1, 10);
    const std::size_t bevel = black(2, 10);
    const std::size_t none = black(3, 10);
    EXPECT_GT(miter, round);
    EXPECT_GT(round, bevel);
    EXPECT_GT(bevel, none);
    EXPECT_EQ(black(0, 1), bevel);
    EXPECT_EQ(black(0, 0), miter); // 0 stands for the default, 10
    EXPECT_NE(errorOf(XlStream().real(A::MiterLength, 0.5F).op(O::SetMiterLimit)).find("IllegalAttributeValue"),
        std::string::npos);
    EXPECT_NE(errorOf(XlStream().sint16(A::PenWidth, -1).op(O::SetPenWidth)).find("IllegalAttributeValue"),
        std::string::npos);
}

TEST(XlPaint, RasterOperationsSeeSourceTextureAndDestination)
{
    const auto under = [](int rop) {
        XlStream c;
        c.rgbBrush(255, 255, 0).rectangle(0, 0, 4, 4).ubyte(A::ROP3, rop).op(O::SetROP).rgbBrush(255, 0, 255);
        c.rectangle(0, 0, 4, 4);
        return painted(c);
    };
    EXPECT_TRUE((under(252) == Rgb { 255, 0, 255 }));
    EXPECT_TRUE((under(240) == Rgb { 255, 0, 255 }));
    EXPECT_TRUE((under(160) == Rgb { 255, 0, 0 })); // texture AND destination
    EXPECT_TRUE((under(90) == Rgb { 0, 255, 255 })); // texture XOR destination
    EXPECT_TRUE((under(85) == Rgb { 0, 0, 255 })); // NOT destination
    EXPECT_TRUE((under(170) == Rgb { 255, 255, 0 })); // destination
    EXPECT_TRUE((under(204) == Rgb { 0, 0, 0 })); // source: black inside a shape
    EXPECT_NE(errorOf(XlStream().uint16(A::ROP3, 256).op(O::SetROP)).find("IllegalAttributeValue"), std::string::npos);
}

TEST(XlPaint, CellsOfAPictureThatStandsAskewMeetWithoutSeams)
{
    const auto darkest = [](int rop) {
        XlStream c;
        c.nullPen().grayBrush(0).rectangle(0, 0, 40, 40).grayBrush(255).ubyte(A::ROP3, rop).op(O::SetROP);
        for (int i = -4; i < 8; ++i) {
            c.op(O::NewPath).cursor(10 * i, -10).lineTo(10 * i + 10, -10).lineTo(10 * i + 37, 50);
            c.lineTo(10 * i + 27, 50).op(O::PaintPath);
        }
        XlJob job(PixelFormat::Gray8);
        job.run(onePage(40, 40, c));
        int light = 255;
        for (int y = 0; y < 40 && job.pageCount() == 1; ++y)
            for (int x = 0; x < 40; ++x)
                light = std::min<int>(light, job.pixel(0, x, y).red);
        return light;
    };
    EXPECT_EQ(darkest(240), 255);
    EXPECT_LT(darkest(252), 255); // other shapes are smooth
}

TEST(XlPaint, AWhiteBrushPaintsWhateverTheModes)
{
    XlStream c;
    c.grayBrush(0).rectangle(0, 0, 4, 4).ubyte(A::TxMode, 1).op(O::SetSourceTxMode).ubyte(A::TxMode, 1);
    c.op(O::SetPaintTxMode).grayBrush(255).rectangle(0, 0, 4, 4);
    EXPECT_TRUE((painted(c) == Rgb { 255, 255, 255 }));
}

TEST(XlPaint, PushAndPopSaveTheWholeState)
{
    XlStream c;
    c.nullPen().grayBrush(0).box(A::BoundingBox, 0, 0, 1, 1).op(O::RectanglePath).cursor(3, 0).op(O::PushGS);
    c.grayBrush(255).ubyte(A::ROP3, 90).op(O::SetROP).xy(A::PageOrigin, 1, 1).op(O::SetPageOrigin).op(O::NewPath);
    c.box(A::BoundingBox, 0, 0, 1, 1).ubyte(A::ClipRegion, 0).op(O::SetClipRectangle).cursor(0, 0).op(O::PopGS);
    c.lineTo(4, 0).lineTo(4, 1).lineTo(3, 1).op(O::PaintPath);
    XlJob job;
    job.run(onePage(5, 2, c));
    ASSERT_EQ(job.pageCount(), 1u) << job.sink.message();
    EXPECT_EQ(job.art(0, 5, 2), "#..#.\n.....\n");
}

TEST(XlPaint, TheStackHasALimit)
{
    Limits limits;
    limits.stateDepth = 64;
    XlStream c;
    for (int i = 0; i < 64; ++i)
        c.op(O::PushGS);
    XlJob job(PixelFormat::Bilevel, limits);
    job.run(onePage(4, 4, c));
    EXPECT_EQ(job.pageCount(), 1u);
    c.op(O::PushGS);
    XlJob full(PixelFormat::Bilevel, limits);
    full.run(onePage(4, 4, c));
    EXPECT_TRUE(full.sink.has("pclxl.error.MaxGSLevelsExceeded"));
}

TEST(XlPaint, SavedPathsCannotFillTheMemory)
{
    Limits limits;
    limits.pathPoints = 10000;
    XlStream c;
    c.cursor(0, 0);
    for (int i = 0; i < 900; ++i)
        c.lineTo(i % 3, i % 4);
    for (int i = 0; i < 100; ++i)
        c.op(O::PushGS).lineTo(1, 1);
    XlJob job(PixelFormat::Bilevel, limits);
    job.run(onePage(4, 4, c));
    EXPECT_TRUE(job.sink.has("pclxl.error.MaxGSLevelsExceeded"));
}

} // namespace
