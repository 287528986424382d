#include "tests/pclxl/xl_job.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;
using A = pclxl::Attribute;
using O = pclxl::Operator;

namespace {

TEST(XlPage, EveryMediaSizeHasItsSheet)
{
    struct Media {
        int number;
        double width, height; // millimetres
    };
    const Media media[] = { { 0, 215.9, 279.4 }, { 1, 215.9, 355.6 }, { 2, 210, 297 }, { 3, 184.15, 266.7 },
        { 4, 279.4, 431.8 }, { 5, 297, 420 }, { 6, 104.775, 241.3 }, { 7, 98.425, 190.5 }, { 8, 162, 229 },
        { 9, 110, 220 }, { 10, 257, 364 }, { 11, 182, 257 }, { 12, 176, 250 }, { 13, 182, 257 }, { 14, 100, 148 },
        { 15, 200, 148 }, { 16, 148, 210 }, { 17, 105, 148 }, { 18, 128, 182 }, { 19, 270, 390 }, { 20, 195, 270 },
        { 21, 216, 330 } };
    XlStream s = XlStream::withHeader();
    s.beginSession();
    for (const Media& m : media)
        s.ubyte(A::Orientation, 0).ubyte(A::MediaSize, m.number).op(O::BeginPage).endPage();
    s.op(O::EndSession);
    XlJob job(PixelFormat::Bilevel, {}, {}, 10);
    job.run(s);
    ASSERT_EQ(job.pageCount(), std::size(media)) << job.sink.message();
    for (std::size_t i = 0; i < std::size(media); ++i) {
        EXPECT_NEAR(job.device.sheets()[i].width, media[i].width / 25.4 * 720, 0.1) << media[i].number;
        EXPECT_NEAR(job.device.sheets()[i].height, media[i].height / 25.4 * 720, 0.1) << media[i].number;
    }
}

TEST(XlPage, CustomSizesAreInAnyUnit)
{
    XlStream s = XlStream::withHeader();
    s.beginSession();
    s.realXy(A::CustomMediaSize, 2, 3).ubyte(A::CustomMediaSizeUnits, 0).op(O::BeginPage).endPage();
    s.xy(A::CustomMediaSize, 254, 127).ubyte(A::CustomMediaSizeUnits, 1).op(O::BeginPage).endPage();
    s.xy(A::CustomMediaSize, 254, 508).ubyte(A::CustomMediaSizeUnits, 2).op(O::BeginPage).endPage();
    s.op(O::EndSession);
    XlJob job(PixelFormat::Bilevel, {}, {}, 10);
    job.run(s);
    ASSERT_EQ(job.pageCount(), 3u);
    EXPECT_NEAR(job.device.sheets()[0].height, 2160, 0.01);
    EXPECT_NEAR(job.device.sheets()[1].width, 7200, 0.01);
    EXPECT_NEAR(job.device.sheets()[1].height, 3600, 0.01);
    EXPECT_NEAR(job.device.sheets()[2].width, 720, 0.01);
    EXPECT_NEAR(job.device.sheets()[2].height, 1440, 0.01);
}

TEST(XlPage, MediaNamesAreUnderstood)
{
    XlStream s = XlStream::withHeader();
    s.beginSession();
    for (const char* name : { "A4", "jis b5", "DEFAULT", "NOTHING" })
        s.text(A::MediaSize, name).op(O::BeginPage).endPage();
    s.op(O::EndSession);
    pclxl::Environment environment;
    environment.paperWidth = 1000;
    environment.paperHeight = 2000;
    XlJob job(PixelFormat::Bilevel, {}, environment, 10);
    job.run(s);
    ASSERT_EQ(job.pageCount(), 4u);
    EXPECT_NEAR(job.device.sheets()[0].width, 210 / 25.4 * 720, 0.1);
    EXPECT_NEAR(job.device.sheets()[1].width, 182 / 25.4 * 720, 0.1);
    EXPECT_EQ(job.device.sheets()[2].width, 1000);
    EXPECT_EQ(job.device.sheets()[3].width, 1000); // as the page before
    EXPECT_TRUE(job.sink.has("pclxl.media-size"));
}

TEST(XlPage, WhatIsLeftOutIsAsOnThePageBefore)
{
    XlStream s = XlStream::withHeader();
    s.beginSession().op(O::BeginPage).endPage();
    s.ubyte(A::Orientation, 1).ubyte(A::MediaSize, 16).op(O::BeginPage).endPage().op(O::BeginPage).endPage();
    s.op(O::EndSession).beginSession().op(O::BeginPage).endPage().op(O::EndSession);
    pclxl::Environment environment;
    environment.paperWidth = 4000;
    environment.orientation = 2;
    XlJob job(PixelFormat::Bilevel, {}, environment, 10);
    job.run(s);
    ASSERT_EQ(job.pageCount(), 4u);
    EXPECT_EQ(job.device.sheets()[0].width, 4000);
    EXPECT_EQ(job.device.sheets()[0].orientation, 2);
    EXPECT_NEAR(job.device.sheets()[2].width, 148 / 25.4 * 720, 0.1);
    EXPECT_EQ(job.device.sheets()[2].orientation, 1);
    EXPECT_EQ(job.device.sheets()[3].width, 4000); // a session starts afresh
    EXPECT_EQ(job.device.sheets()[3].orientation, 2);
}

TEST(XlPage, SheetsThatCannotBeAreWarnings)
{
    XlStream s = XlStream::withHeader();
    s.beginSession();
    s.ubyte(A::MediaSize, 16).ubyte(A::Orientation, 9).op(O::BeginPage).endPage();
    s.realXy(A::CustomMediaSize, 0, 1e6F).ubyte(A::CustomMediaSizeUnits, 0).op(O::BeginPage).endPage();
    s.ubyte(A::MediaSize, 200).op(O::BeginPage).endPage().op(O::EndSession);
    XlJob job(PixelFormat::Bilevel, {}, {}, 10);
    job.run(s);
    ASSERT_EQ(job.pageCount(), 3u);
    for (const SheetRequest& sheet : job.device.sheets())
        EXPECT_NEAR(sheet.width, 148 / 25.4 * 720, 0.1);
    EXPECT_EQ(job.interpreter.status(), RunStatus::Done);
    EXPECT_EQ(job.sink.diagnostics.size(), 3u);
}

TEST(XlPage, LandscapeIsAPageInReadingOrder)
{
    XlStream s = XlStream::withHeader();
    s.beginSession().openDataSource().beginPage(6, 10, 1).grayBrush(0).nullPen().rectangle(8, 0, 10, 1);
    s.endPage().endSession();
    XlJob job;
    job.run(s);
    ASSERT_EQ(job.pageCount(), 1u);
    EXPECT_EQ(job.art(0, 11, 2), "........## \n.......... \n");
}

TEST(XlPage, UnitsDifferBetweenTheAxesAndMeasures)
{
    XlStream s = XlStream::withHeader();
    // A quarter of a millimetre across; a pixel of 1/100 inch is 0.254 mm.
    s.realXy(A::UnitsPerMeasure, 1 / 0.254F, 2 / 0.254F).ubyte(A::Measure, 1).op(O::BeginSession);
    s.openDataSource().beginPage(8, 4).grayBrush(0).nullPen().rectangle(1, 2, 3, 6).endPage().endSession();
    XlJob job;
    job.run(s);
    ASSERT_EQ(job.pageCount(), 1u);
    EXPECT_EQ(job.art(0, 8, 4),
        "........\n"
        ".##.....\n"
        ".##.....\n"
        "........\n");
}

TEST(XlPage, OriginScaleAndRotationAccumulate)
{
    XlStream c;
    c.grayBrush(0).nullPen();
    c.xy(A::PageOrigin, 2, 1).op(O::SetPageOrigin).rectangle(0, 0, 1, 1); // (2, 1)
    c.xy(A::PageScale, 2, 2).op(O::SetPageScale).rectangle(1, 1, 2, 2); // (4, 3) to (6, 5)
    c.xy(A::PageOrigin, 2, 3).op(O::SetPageOrigin); // (6, 7)
    c.sint16(A::PageAngle, 90).op(O::SetPageRotation).rectangle(0, 0, 1, 2); // u up, v right: (6, 5) to (10, 7)
    c.op(O::SetPageDefaultCTM).rectangle(0, 0, 1, 1);
    XlJob job;
    job.run(onePage(11, 8, c));
    ASSERT_EQ(job.pageCount(), 1u) << job.sink.message();
    EXPECT_EQ(job.art(0, 11, 8),
        "#..........\n"
        "..#........\n"
        "...........\n"
        "....##.....\n"
        "....##.....\n"
        "......####.\n"
        "......####.\n"
        "...........\n");
}

TEST(XlPage, RotationsByAnyMultipleOfNinetyCancel)
{
    XlStream c;
    c.grayBrush(0).nullPen().sint16(A::PageAngle, 270).op(O::SetPageRotation).sint16(A::PageAngle, -180);
    c.op(O::SetPageRotation).sint16(A::PageAngle, -450).op(O::SetPageRotation).rectangle(1, 0, 3, 1);
    XlJob job;
    job.run(onePage(4, 1, c));
    EXPECT_EQ(job.art(0, 4, 1), ".##.\n");
    XlStream odd;
    odd.sint16(A::PageAngle, 45).op(O::SetPageRotation);
    XlJob refused;
    refused.run(onePage(4, 1, odd));
    EXPECT_TRUE(refused.sink.has("pclxl.error.IllegalAttributeValue"));
}

TEST(XlPage, ScaleInUnitsIsAbsolute)
{
    XlStream c;
    c.grayBrush(0).nullPen().xy(A::PageScale, 3, 3).op(O::SetPageScale);
    c.xy(A::UnitsPerMeasure, 50, 25).ubyte(A::Measure, 0).op(O::SetPageScale).rectangle(1, 0, 2, 1);
    XlJob job;
    job.run(onePage(6, 5, c));
    EXPECT_EQ(job.art(0, 6, 5), "..##..\n..##..\n..##..\n..##..\n......\n");
}

TEST(XlPage, ScalesThatWouldOverflowAreErrors)
{
    XlStream c;
    for (int i = 0; i < 100; ++i)
        c.xy(A::PageScale, 30000, 30000).op(O::SetPageScale);
    XlJob job;
    job.run(onePage(4, 1, c));
    EXPECT_TRUE(job.sink.has("pclxl.error.IllegalAttributeValue"));
    XlStream zero;
    zero.xy(A::PageScale, 0, 1).op(O::SetPageScale);
    XlJob flat;
    flat.run(onePage(4, 1, zero));
    EXPECT_TRUE(flat.sink.has("pclxl.error.IllegalAttributeValue"));
}

TEST(XlPage, APathStaysWhereItIsWhenTheAxesMove)
{
    XlStream c;
    c.grayBrush(0).nullPen().box(A::BoundingBox, 1, 1, 3, 2).op(O::RectanglePath);
    c.xy(A::PageOrigin, 3, 3).op(O::SetPageOrigin).sint16(A::PageAngle, 90).op(O::SetPageRotation).op(O::PaintPath);
    XlJob job;
    job.run(onePage(4, 3, c));
    EXPECT_EQ(job.art(0, 4, 3), "....\n.##.\n....\n");
}

TEST(XlPage, EveryPageStartsWithTheDefaults)
{
    XlStream s = XlStream::withHeader();
    s.beginSession().openDataSource().beginPage(4, 2);
    s.nullBrush().ubyte(A::ROP3, 170).op(O::SetROP).xy(A::PageOrigin, 1, 1).op(O::SetPageOrigin);
    s.box(A::BoundingBox, 0, 0, 1, 1).ubyte(A::ClipRegion, 1).op(O::SetClipRectangle).op(O::PushGS).endPage();
    s.beginPage(4, 2).nullPen().rectangle(0, 0, 2, 1).op(O::PopGS).endPage().endSession();
    XlJob job;
    job.run(s);
    ASSERT_EQ(job.pageCount(), 2u);
    EXPECT_EQ(job.art(1, 4, 2), "##..\n....\n"); // black brush, no clip
    EXPECT_TRUE(job.sink.has("pclxl.pop"));
}

TEST(XlPage, DefaultsComeBackOnRequestAndTheStackStays)
{
    XlStream c;
    c.nullPen().rgbBrush(255, 255, 255).op(O::PushGS).xy(A::PageOrigin, 2, 0).op(O::SetPageOrigin);
    c.op(O::SetDefaultGS).nullPen().rectangle(0, 0, 1, 1).op(O::PopGS).rectangle(0, 0, 1, 1);
    XlJob job;
    job.run(onePage(2, 1, c));
    EXPECT_EQ(job.art(0, 2, 1), "..\n");
    EXPECT_FALSE(job.sink.has("pclxl.pop"));
}

TEST(XlPage, CopiesDoNotMultiplyPagesAndNoneDropsIt)
{
    XlStream s = XlStream::withHeader();
    s.beginSession().beginPage(4, 4).uint16(A::PageCopies, 3).endPage();
    s.beginPage(4, 4).uint16(A::PageCopies, 0).endPage().beginPage(4, 4).endPage().op(O::EndSession);
    XlJob job;
    job.run(s);
    EXPECT_EQ(job.pageCount(), 2u);
    EXPECT_TRUE(job.sink.has("pclxl.no-copies"));
}

class PassThroughRecorder final : public pclxl::PassThroughHandler {
public:
    void beginPage(const SheetRequest&, const PageCanvas& canvas) override
    {
        log += canvas.painter ? "begin " : "no painter ";
    }
    RunStatus data(ByteView bytes) override
    {
        log.append(bytes.begin(), bytes.end());
        return RunStatus::Done;
    }
    void endPage() override { log += " end "; }

    std::string log;
};

TEST(XlPage, PassThroughHandsItsDataOnAndStaysOnThePage)
{
    PassThroughRecorder recorder;
    pclxl::Environment environment;
    environment.passThrough = &recorder;
    XlStream c;
    c.op(O::PassThrough).data({ 'a', 'b' }).data({ 'c' }, true).grayBrush(0).op(O::PassThrough).data({ 'd' });
    XlStream s = onePage(4, 4, c);
    s.append(onePage(4, 4, XlStream()));
    XlJob job(PixelFormat::Bilevel, {}, environment);
    job.run(s);
    EXPECT_EQ(recorder.log, "begin abcd end ");
    EXPECT_EQ(job.pageCount(), 2u);
    XlJob without;
    without.run(onePage(4, 4, c));
    EXPECT_EQ(without.pageCount(), 1u);
    EXPECT_TRUE(without.sink.has("pclxl.pass-through"));
}

} // namespace
