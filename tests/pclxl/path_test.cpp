#include "tests/pclxl/xl_job.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;
using A = pclxl::Attribute;
using O = pclxl::Operator;

namespace {

std::string draw(const XlStream& contents, int width, int height)
{
    XlStream c;
    c.grayBrush(0).nullPen().append(contents);
    XlJob job;
    job.run(onePage(width, height, c));
    return job.pageCount() == 1 ? job.art(0, width, height) : job.sink.message();
}

const char* const kBlock = "......\n"
                           ".####.\n"
                           ".####.\n"
                           "......\n";

TEST(XlPath, LinesComeFromEndPoints)
{
    XlStream c;
    c.cursor(1, 1).lineTo(5, 1).lineTo(5, 3).lineTo(1, 3).op(O::CloseSubPath).op(O::PaintPath);
    EXPECT_EQ(draw(c, 6, 4), kBlock);
}

TEST(XlPath, PointListsHaveAllTypes)
{
    for (const int type : { 0, 1, 2, 3 }) {
        XlStream c;
        c.cursor(1, 1).ubyte(A::NumberOfPoints, 3).ubyte(A::PointType, type).op(O::LinePath);
        if (type < 2)
            c.data({ 5, 1, 5, 3, 1, 3 });
        else
            c.pointData({ 5, 1, 5, 3, 1, 3 });
        c.op(O::PaintPath);
        EXPECT_EQ(draw(c, 6, 4), kBlock) << type;
    }
}

TEST(XlPath, RelativeLinesAreAChain)
{
    XlStream list;
    list.cursor(1, 1).ubyte(A::NumberOfPoints, 3).ubyte(A::PointType, 1).op(O::LineRelPath);
    list.data({ 4, 0, 0, 2, 0xFC, 0 }).op(O::PaintPath);
    EXPECT_EQ(draw(list, 6, 4), kBlock);
    XlStream single;
    single.cursor(1, 1);
    for (const auto& [x, y] : { std::pair { 4, 0 }, std::pair { 0, 2 }, std::pair { -4, 0 } })
        single.xy(A::EndPoint, x, y).op(O::LineRelPath);
    single.op(O::PaintPath);
    EXPECT_EQ(draw(single, 6, 4), kBlock);
}

TEST(XlPath, CurvesOfBothFormsAreTheSame)
{
    XlStream absolute;
    absolute.cursor(2, 2).xy(A::ControlPoint1, 2, 18).xy(A::ControlPoint2, 20, 18).xy(A::EndPoint, 20, 2);
    absolute.op(O::BezierPath).op(O::PaintPath);
    XlStream list;
    list.cursor(2, 2).ubyte(A::NumberOfPoints, 3).ubyte(A::PointType, 3).op(O::BezierPath);
    list.pointData({ 2, 18, 20, 18, 20, 2 }).op(O::PaintPath);
    XlStream relative;
    relative.cursor(2, 2).ubyte(A::NumberOfPoints, 3).ubyte(A::PointType, 1).op(O::BezierRelPath);
    relative.data({ 0, 16, 18, 16, 18, 0 }).op(O::PaintPath);
    const std::string art = draw(absolute, 22, 20);
    EXPECT_NE(art.find("##########"), std::string::npos);
    EXPECT_EQ(draw(list, 22, 20), art);
    EXPECT_EQ(draw(relative, 22, 20), art);
}

TEST(XlPath, RelativeCurvesStartAtTheEndOfTheOneBefore)
{
    XlStream relative;
    relative.cursor(2, 10).ubyte(A::NumberOfPoints, 6).ubyte(A::PointType, 1).op(O::BezierRelPath);
    relative.data({ 0, 0xF8, 10, 0xF8, 10, 0, 0, 8, 10, 8, 10, 0 }).lineTo(22, 18).lineTo(2, 18).op(O::PaintPath);
    XlStream absolute;
    absolute.cursor(2, 10).ubyte(A::NumberOfPoints, 6).ubyte(A::PointType, 3).op(O::BezierPath);
    absolute.pointData({ 2, 2, 12, 2, 12, 10, 12, 18, 22, 18, 22, 10 }).lineTo(22, 18).lineTo(2, 18);
    absolute.op(O::PaintPath);
    EXPECT_NE(draw(absolute, 24, 20).find('#'), std::string::npos);
    EXPECT_EQ(draw(relative, 24, 20), draw(absolute, 24, 20));
}

TEST(XlPath, SetCursorStartsANewSubpath)
{
    XlStream c;
    c.ubyte(A::FillMode, 1).op(O::SetFillMode);
    c.cursor(0, 0).lineTo(6, 0).lineTo(6, 4).lineTo(0, 4);
    c.cursor(1, 1).lineTo(5, 1).lineTo(5, 3).xy(A::Point, -4, 0).op(O::SetCursorRel).lineTo(1, 1).op(O::PaintPath);
    EXPECT_EQ(draw(c, 6, 4), "######\n##...#\n####.#\n######\n"); // the triangle is left out
}

TEST(XlPath, AClosedSubpathContinuesAtItsStart)
{
    XlStream c;
    c.cursor(1, 1).lineTo(3, 1).lineTo(3, 3).lineTo(1, 3).op(O::CloseSubPath);
    c.xy(A::EndPoint, 0, 2).op(O::LineRelPath).xy(A::EndPoint, -1, 0).op(O::LineRelPath).lineTo(0, 1);
    c.op(O::PaintPath);
    EXPECT_EQ(draw(c, 4, 4), "....\n###.\n###.\n....\n");
}

TEST(XlPath, PaintingKeepsThePathAndNewPathDropsIt)
{
    XlStream c;
    c.box(A::BoundingBox, 0, 0, 2, 1).op(O::RectanglePath).grayBrush(255).op(O::PaintPath).grayBrush(0);
    c.op(O::PaintPath).op(O::NewPath).grayBrush(255).op(O::PaintPath);
    EXPECT_EQ(draw(c, 3, 1), "##.\n");
}

TEST(XlPath, FillRulesDiffer)
{
    XlStream c;
    c.box(A::BoundingBox, 0, 0, 6, 3).op(O::RectanglePath).box(A::BoundingBox, 2, 1, 4, 2).op(O::RectanglePath);
    XlStream evenOdd;
    evenOdd.append(c).ubyte(A::FillMode, 1).op(O::SetFillMode).op(O::PaintPath);
    EXPECT_EQ(draw(evenOdd, 6, 3), "######\n##..##\n######\n");
    c.op(O::PaintPath);
    EXPECT_EQ(draw(c, 6, 3), "######\n######\n######\n");
}

TEST(XlPath, ShapesClearPathAndCursor)
{
    XlStream c;
    c.cursor(0, 0).rectangle(0, 0, 1, 1).lineTo(3, 3);
    XlJob job;
    job.run(onePage(4, 4, c));
    EXPECT_TRUE(job.sink.has("pclxl.error.CurrentCursorUndefined"));
}

TEST(XlPath, SegmentsNeedACursorAndTheirAttributes)
{
    const auto errorOf = [](const XlStream& c, const std::string& name) {
        XlJob job;
        job.run(onePage(4, 4, c));
        return job.sink.has("pclxl.error." + name) ? "" : job.sink.message();
    };
    EXPECT_EQ(errorOf(XlStream().lineTo(1, 1), "CurrentCursorUndefined"), "");
    EXPECT_EQ(errorOf(XlStream().xy(A::Point, 1, 1).op(O::SetCursorRel), "CurrentCursorUndefined"), "");
    EXPECT_EQ(errorOf(XlStream().cursor(0, 0).op(O::LinePath), "MissingAttribute"), "");
    EXPECT_EQ(errorOf(XlStream().cursor(0, 0).ubyte(A::NumberOfPoints, 1).op(O::LinePath), "MissingAttribute"), "");
    EXPECT_EQ(errorOf(XlStream().cursor(0, 0).xy(A::EndPoint, 1, 1).ubyte(A::NumberOfPoints, 1).op(O::LinePath),
                  "IllegalAttributeCombination"),
        "");
    EXPECT_EQ(errorOf(XlStream().cursor(0, 0).xy(A::EndPoint, 1, 1).op(O::BezierPath), "MissingAttribute"), "");
    EXPECT_EQ(errorOf(XlStream().cursor(0, 0).ubyte(A::NumberOfPoints, 4).ubyte(A::PointType, 0).op(O::BezierPath),
                  "IllegalAttributeValue"),
        "");
    EXPECT_EQ(
        errorOf(XlStream().cursor(0, 0).ubyte(A::NumberOfPoints, 4).ubyte(A::PointType, 0).op(O::LinePath).data({ 1 }),
            "MissingData"),
        "");
}

TEST(XlPath, APathHasALimit)
{
    Limits limits;
    limits.pathPoints = 1000;
    XlStream c;
    c.cursor(0, 0);
    for (int i = 0; i < 2000; ++i)
        c.lineTo(i % 7, i % 5);
    XlJob job(PixelFormat::Bilevel, limits);
    EXPECT_EQ(job.run(onePage(8, 8, c)), pclxl::Interpreter::End::Failed);
    EXPECT_EQ(job.interpreter.status(), RunStatus::LimitExceeded);
}

TEST(XlShape, AnEllipseFillsItsBox)
{
    XlStream c;
    c.box(A::BoundingBox, 16, 2, 0, 10).op(O::Ellipse); // corners in any order
    EXPECT_EQ(draw(c, 16, 12),
        "................\n"
        "................\n"
        "....########....\n"
        "..############..\n"
        ".##############.\n"
        "################\n"
        "################\n"
        ".##############.\n"
        "..############..\n"
        "....########....\n"
        "................\n"
        "................\n");
}

/// Quarters of a pie with its centre in the middle: top left, top right, bottom left, bottom right.
std::string quarters(O shape, int startX, int startY, int endX, int endY, int direction)
{
    XlStream c;
    c.box(A::BoundingBox, 0, 0, 40, 40).xy(A::StartPoint, startX, startY).xy(A::EndPoint, endX, endY);
    if (direction >= 0)
        c.ubyte(A::ArcDirection, direction);
    c.op(shape);
    XlStream all;
    all.grayBrush(0).nullPen().append(c);
    XlJob job;
    job.run(onePage(40, 40, all));
    if (job.pageCount() != 1)
        return job.sink.message();
    std::string result;
    for (const auto& [x, y] :
        { std::pair { 15, 15 }, std::pair { 24, 15 }, std::pair { 15, 24 }, std::pair { 24, 24 } })
        result += job.pixel(0, x, y) == Rgb {} ? '#' : '.';
    return result;
}

TEST(XlShape, APieRunsCounterClockwiseFromStartToEnd)
{
    EXPECT_EQ(quarters(O::Pie, 60, 20, 20, -20, -1), ".#..");
    EXPECT_EQ(quarters(O::Pie, 60, 20, 20, -20, 0), "#.##");
    EXPECT_EQ(quarters(O::Pie, 20, 0, 0, 20, -1), "#...");
    EXPECT_EQ(quarters(O::Pie, 20, 30, 40, 20, 1), "...#");
    EXPECT_EQ(quarters(O::Pie, 40, 20, 40, 20, -1), "####"); // the same ray twice: all of it
}

TEST(XlShape, AChordIsCutStraight)
{
    XlStream c;
    c.box(A::BoundingBox, 0, 0, 40, 40).xy(A::StartPoint, 40, 20).xy(A::EndPoint, 0, 20).op(O::Chord);
    XlStream all;
    all.grayBrush(0).nullPen().append(c);
    XlJob job;
    job.run(onePage(40, 40, all));
    ASSERT_EQ(job.pageCount(), 1u);
    EXPECT_TRUE((job.pixel(0, 20, 19) == Rgb {}));
    EXPECT_TRUE((job.pixel(0, 20, 21) == Rgb { 255, 255, 255 }));
}

TEST(XlShape, AnArcLeavesTheCursorAtItsEnd)
{
    XlStream c;
    c.box(A::BoundingBox, 0, 0, 20, 20).xy(A::StartPoint, 20, 10).xy(A::EndPoint, 10, 0).op(O::ArcPath);
    c.lineTo(0, 0).lineTo(0, 10).op(O::PaintPath);
    XlStream all;
    all.grayBrush(0).nullPen().append(c);
    XlJob job;
    job.run(onePage(20, 20, all));
    ASSERT_EQ(job.pageCount(), 1u) << job.sink.message();
    EXPECT_TRUE((job.pixel(0, 2, 5) == Rgb {}));
    EXPECT_TRUE((job.pixel(0, 10, 15) == Rgb { 255, 255, 255 }));
}

TEST(XlShape, ARoundRectangleHasRoundCorners)
{
    XlStream c;
    c.box(A::BoundingBox, 0, 0, 12, 8).xy(A::EllipseDimension, 6, 6).op(O::RoundRectangle);
    EXPECT_EQ(draw(c, 12, 8),
        ".##########.\n"
        "############\n"
        "############\n"
        "############\n"
        "############\n"
        "############\n"
        "############\n"
        ".##########.\n");
    XlStream sharp;
    sharp.box(A::BoundingBox, 0, 0, 3, 2).xy(A::EllipseDimension, 0, 6).op(O::RoundRectangle);
    EXPECT_EQ(draw(sharp, 3, 2), "###\n###\n");
}

TEST(XlShape, TheSmallestRectangleMarksAPixel)
{
    XlStream s = XlStream::withHeader();
    s.beginSession(1200).openDataSource().beginPage(3, 1).nullPen().rectangle(14, 2, 15, 3).endPage().endSession();
    XlJob job;
    job.run(s);
    ASSERT_EQ(job.pageCount(), 1u);
    EXPECT_EQ(job.art(0, 3, 1), ".#.\n");
}

TEST(XlScan, RunsArePaintedByTheBrush)
{
    XlStream c;
    c.cursor(1, 0).op(O::BeginScan).uint16(A::NumberOfScanLines, 2).op(O::ScanLineRel);
    c.data({ 0, 0, 1, 2, 0, 2, 1, 1, 1, 1, 1, 0, 3 }).op(O::EndScan);
    EXPECT_EQ(draw(c, 6, 4), "......\n.##.#.\n..###.\n......\n");
}

TEST(XlScan, ShortDataAreAnError)
{
    XlStream c;
    c.op(O::BeginScan).uint16(A::NumberOfScanLines, 60000).op(O::ScanLineRel).data({ 3, 1, 2, 3 });
    EXPECT_NE(draw(c, 4, 4).find("MissingData"), std::string::npos);
    XlStream type;
    type.op(O::BeginScan).op(O::ScanLineRel).data({ 77, 1, 2, 3 });
    EXPECT_NE(draw(type, 4, 4).find("IllegalDataValue"), std::string::npos);
}

} // namespace
