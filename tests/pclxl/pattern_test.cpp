#include "tests/pclxl/xl_job.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;
using A = pclxl::Attribute;
using O = pclxl::Operator;
using Bytes = std::vector<std::uint8_t>;

namespace {

/// Two by two pixels, black at the left top: "#." over "..".
XlStream dotPattern(int id, int persistence, int size = 2)
{
    XlStream c;
    c.colorSpace(1).ubyte(A::ColorMapping, 0).ubyte(A::ColorDepth, 0).uint16(A::SourceWidth, 2);
    c.uint16(A::SourceHeight, 2).xy(A::DestinationSize, size, size).sint16(A::PatternDefineID, id);
    c.ubyte(A::PatternPersistence, persistence).op(O::BeginRastPattern).uint16(A::StartLine, 0);
    c.uint16(A::BlockHeight, 2).ubyte(A::CompressMode, 0).ubyte(A::PadBytesMultiple, 1).op(O::ReadRastPattern);
    c.data({ 0x40, 0xC0 }).op(O::EndRastPattern);
    return c;
}

XlStream& select(XlStream& c, int id) { return c.sint16(A::PatternSelectID, id).op(O::SetBrushSource); }

std::string draw(const XlStream& contents, int width, int height)
{
    XlJob job;
    job.run(onePage(width, height, contents));
    return job.pageCount() == 1 ? job.art(0, width, height) : job.sink.message();
}

TEST(XlPattern, RepeatsFromTheOrigin)
{
    XlStream c = dotPattern(-3, 0);
    select(c.nullPen(), -3).rectangle(1, 1, 6, 4);
    EXPECT_EQ(draw(c, 7, 5), ".......\n.......\n..#.#..\n.......\n.......\n");
    XlStream moved = dotPattern(1, 0);
    moved.nullPen().sint16(A::PatternSelectID, 1).xy(A::PatternOrigin, 1, 1).op(O::SetBrushSource);
    moved.rectangle(0, 0, 4, 3);
    EXPECT_EQ(draw(moved, 4, 3), "....\n.#.#\n....\n");
}

TEST(XlPattern, ScalesToItsDestination)
{
    XlStream c = dotPattern(1, 0, 4);
    select(c.nullPen(), 1).rectangle(0, 0, 8, 4);
    EXPECT_EQ(draw(c, 8, 4), "##..##..\n##..##..\n........\n........\n");
    XlStream other = dotPattern(1, 0, 4);
    other.nullPen().sint16(A::PatternSelectID, 1).xy(A::NewDestinationSize, 2, 6).op(O::SetBrushSource);
    other.rectangle(0, 0, 4, 6);
    EXPECT_EQ(draw(other, 4, 6), "#.#.\n#.#.\n#.#.\n....\n....\n....\n");
}

TEST(XlPattern, KeepsItsPeriodWhenItIsNoWholeNumber)
{
    // 2.5 pixels a tile: twenty tiles are fifty pixels.
    XlStream s = XlStream::withHeader();
    s.beginSession(200).openDataSource().beginPage(50, 4).append(dotPattern(1, 0, 5)).nullPen();
    select(s, 1).rectangle(0, 0, 100, 2).endPage().endSession();
    XlJob job;
    job.run(s);
    ASSERT_EQ(job.pageCount(), 1u);
    const std::string row = job.art(0, 50, 1);
    int dots = 0;
    for (std::size_t i = 0; i < 50; ++i)
        dots += row[i] == '#' && (i == 0 || row[i - 1] != '#');
    EXPECT_EQ(dots, 20);
}

TEST(XlPattern, OpaqueWhiteCoversAndTransparentWhiteDoesNot)
{
    for (const int mode : { 0, 1 }) {
        XlStream c = dotPattern(1, 0);
        c.nullPen().grayBrush(0).rectangle(0, 0, 4, 1).ubyte(A::TxMode, mode).op(O::SetPaintTxMode);
        select(c, 1).rectangle(0, 0, 4, 2);
        EXPECT_EQ(draw(c, 4, 2), mode == 0 ? "#.#.\n....\n" : "####\n....\n");
    }
}

TEST(XlPattern, TheTilesTurnWithThePage)
{
    XlStream c = dotPattern(1, 0, 4);
    c.nullPen().xy(A::PageOrigin, 0, 8).op(O::SetPageOrigin).sint16(A::PageAngle, 90).op(O::SetPageRotation);
    select(c, 1).rectangle(0, 0, 4, 4);
    EXPECT_EQ(draw(c, 4, 8), "....\n....\n....\n....\n....\n....\n##..\n##..\n");
}

TEST(XlPattern, PensUsePatternsToo)
{
    XlStream c = dotPattern(1, 0);
    c.nullBrush().sint16(A::PatternSelectID, 1).op(O::SetPenSource).ubyte(A::PenWidth, 2).op(O::SetPenWidth);
    c.cursor(0, 1).lineTo(6, 1).op(O::PaintPath);
    EXPECT_EQ(draw(c, 6, 3), "#.#.#.\n......\n......\n");
}

TEST(XlPattern, LivesAsLongAsItsPersistenceSays)
{
    for (const int persistence : { 0, 1, 2 }) {
        XlStream s = XlStream::withHeader();
        s.beginSession().openDataSource().append(dotPattern(7, persistence)).beginPage(2, 2).endPage();
        s.beginPage(2, 2).nullPen();
        select(s, 7).rectangle(0, 0, 2, 2).endPage().endSession();
        s.beginSession().beginPage(2, 2);
        select(s, 7).endPage();
        XlJob job;
        job.run(s);
        EXPECT_TRUE(job.sink.has("pclxl.error.RasterPatternUndefined"));
        EXPECT_EQ(job.pageCount(), persistence == 2 ? 2u : 1u) << persistence;
    }
}

TEST(XlPattern, ASelectedPatternOutlivesItsReplacement)
{
    XlStream c = dotPattern(1, 0);
    select(c.nullPen(), 1).append(dotPattern(1, 0, 8)).rectangle(0, 0, 4, 1);
    EXPECT_EQ(draw(c, 4, 1), "#.#.\n");
}

TEST(XlPattern, ColoursStay)
{
    XlStream c;
    c.colorSpace(2).ubyte(A::ColorMapping, 0).ubyte(A::ColorDepth, 2).uint16(A::SourceWidth, 2);
    c.uint16(A::SourceHeight, 1).xy(A::DestinationSize, 2, 1).sint16(A::PatternDefineID, 1);
    c.ubyte(A::PatternPersistence, 1).op(O::BeginRastPattern).uint16(A::StartLine, 0).uint16(A::BlockHeight, 1);
    c.ubyte(A::CompressMode, 0).op(O::ReadRastPattern).data({ 1, 2, 3, 4, 5, 6, 0, 0 }).op(O::EndRastPattern);
    c.nullPen();
    select(c, 1).rectangle(0, 0, 4, 2);
    XlJob job(PixelFormat::Rgb24);
    job.run(onePage(4, 2, c));
    ASSERT_EQ(job.pageCount(), 1u) << job.sink.message();
    EXPECT_TRUE((job.pixel(0, 2, 1) == Rgb { 1, 2, 3 }));
    EXPECT_TRUE((job.pixel(0, 3, 0) == Rgb { 4, 5, 6 }));
}

TEST(XlPattern, MemoryForPatternsIsLimited)
{
    Limits limits;
    limits.patternBytes = 1000;
    XlStream c;
    for (int i = 0; i < 300; ++i)
        c.append(dotPattern(i, 0));
    XlJob job(PixelFormat::Bilevel, limits);
    job.run(onePage(2, 2, c));
    EXPECT_TRUE(job.sink.has("pclxl.error.InsufficientMemory"));
    XlStream same;
    for (int i = 0; i < 300; ++i)
        same.append(dotPattern(1, 0));
    XlJob replaced(PixelFormat::Bilevel, limits);
    replaced.run(onePage(2, 2, same));
    EXPECT_EQ(replaced.pageCount(), 1u);
}

TEST(XlPattern, TilesThatCannotBeMadeAreBlackWithAWarning)
{
    Limits limits;
    limits.patternBytes = 1000;
    XlStream c = dotPattern(1, 0, 30000);
    select(c.nullPen(), 1).rectangle(0, 0, 2, 1);
    XlJob job(PixelFormat::Bilevel, limits);
    job.run(onePage(2, 1, c));
    EXPECT_TRUE(job.sink.has("pclxl.pattern-size"));
    EXPECT_EQ(job.art(0, 2, 1), "##\n");
}

} // namespace
