#include "quillrip/emf/plus/shapes.h"
#include "tests/emf/plus/plus_job.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::emf::plus;
using namespace quillrip::emf::plus::test;

namespace {

constexpr std::uint32_t kBlackArgb = 0xFF000000;
constexpr std::uint32_t kRedArgb = 0xFFFF0000;
constexpr Rgb kRed { 255, 0, 0 };

} // namespace

TEST(EmfPlusDrawing, HalfOpaqueRedOnWhite)
{
    Records records = header();
    fillRect(records, 0x80FF0000, 10, 10, 15, 14);
    Sheet sheet;
    sheet.play(records);
    EXPECT_EQ(sheet.marked(), (PixelRect { 10, 10, 25, 24 }));
    EXPECT_EQ(sheet.pixel(10, 10), (Rgb { 255, 127, 127 }));
}

TEST(EmfPlusDrawing, HalfOpaqueBlackIsTheNearestGrey)
{
    Records records = header();
    fillRect(records, 0x80000000, 0, 0, 5, 5);
    Sheet sheet(10, 10, PixelFormat::Gray8);
    sheet.play(records);
    EXPECT_EQ(sheet.pixel(2, 2), (Rgb { 127, 127, 127 }));
}

TEST(EmfPlusDrawing, RectanglesWithoutAreaAreNotFilled)
{
    Records records = header();
    fillRect(records, kRedArgb, 10, 10, -5, 5);
    fillRect(records, kRedArgb, 10, 10, 5, 0);
    Sheet sheet;
    EXPECT_EQ(sheet.play(records).markedCount(), 0U);
}

TEST(EmfPlusDrawing, ShortIntegersAndManyRectangles)
{
    Records records = header();
    records.add(0x400A, kColor | kIntegers, Fields().u32({ kRedArgb, 2 }).u16({ 1, 2, 3, 4, 20, 20, 2, 2 }));
    Sheet sheet;
    sheet.play(records);
    EXPECT_EQ(sheet.markedCount(), 16U);
    EXPECT_EQ(sheet.pixel(21, 21), kRed);
}

TEST(EmfPlusDrawing, ClearFillsTheClipAndReplaces)
{
    Records records = header();
    fillRect(records, kBlackArgb, 0, 0, 40, 40);
    records.add(0x4032, 0, Fields().f32({ 5, 5, 10, 10 })).add(0x4009, 0, Fields().u32({ 0x80FF0000 }));
    Sheet sheet;
    sheet.play(records);
    EXPECT_EQ(sheet.pixel(5, 5), (Rgb { 255, 127, 127 }));
    EXPECT_EQ(sheet.pixel(15, 15), kBlack);
}

TEST(EmfPlusDrawing, SourceCopyShowsThePaperThroughAlpha)
{
    Records records = header();
    fillRect(records, kRedArgb, 0, 0, 10, 10);
    records.add(0x4023, 1);
    fillRect(records, 0x80000000, 0, 0, 10, 10);
    Sheet sheet;
    EXPECT_EQ(sheet.play(records).pixel(4, 4), (Rgb { 127, 127, 127 }));
}

TEST(EmfPlusDrawing, SelfCrossingPathsAreAlternating)
{
    Records records = header();
    records.object(3, 0,
        path({ { 0, 0 }, { 30, 0 }, { 30, 30 }, { 0, 30 }, { 10, 10 }, { 20, 10 }, { 20, 20 }, { 10, 20 } },
            { 0, 1, 1, 0x81, 0, 1, 1, 0x81 }));
    records.add(0x4014, kColor, Fields().u32({ kRedArgb }));
    Sheet sheet;
    sheet.play(records);
    EXPECT_EQ(sheet.pixel(5, 5), kRed);
    EXPECT_TRUE(sheet.isWhite(15, 15));
}

TEST(EmfPlusDrawing, RegionsAreFilled)
{
    Records records = header();
    records.object(4, 1,
        Fields().u32({ kVersion, 2, 4, 0x10000000 }).f32({ 0, 0, 30, 30 }).u32({ 0x10000000 }).f32({ 10, 10, 10, 10 }));
    records.add(0x4013, kColor | 1, Fields().u32({ kRedArgb }));
    Sheet sheet;
    EXPECT_EQ(sheet.play(records).markedCount(), 900U - 100U);
    EXPECT_TRUE(sheet.isWhite(19, 19));
    EXPECT_EQ(sheet.pixel(20, 20), kRed);
}

TEST(EmfPlusDrawing, ArcsRunClockwise)
{
    Records records = header();
    records.object(2, 0, pen(2, kRedArgb));
    records.add(0x4012, 0, Fields().f32({ 0, 90, 5, 5, 30, 30 }));
    Sheet sheet;
    const PixelRect marked = sheet.play(records).marked();
    EXPECT_GE(marked.left, 19);
    EXPECT_GE(marked.top, 19);
    EXPECT_GE(marked.right, 35);
    EXPECT_GE(marked.bottom, 35);
}

TEST(EmfPlusDrawing, AnglesOfAnEllipseAreThoseOfTheRays)
{
    // 45 degrees from the centre of an ellipse twice as wide as high: x = y there.
    const Point end = arcPath({ 0, 0, 40, 20 }, 0, 45, ArcKind::Open).current();
    EXPECT_NEAR(end.x - 20, end.y - 10, 1e-9);
    EXPECT_NEAR((end.x - 20) * (end.x - 20) / 400 + (end.y - 10) * (end.y - 10) / 100, 1, 1e-3);
}

TEST(EmfPlusDrawing, CardinalSplinesPassTheirPoints)
{
    const Path spline = cardinalPath({ { 0, 0 }, { 30, 0 }, { 60, 30 } }, 0.5, 0, 2);
    const std::vector<Point> expected { { 0, 0 }, { 5, 0 }, { 20, -5 }, { 30, 0 }, { 40, 5 }, { 55, 25 }, { 60, 30 } };
    ASSERT_EQ(spline.points().size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_NEAR(spline.points()[i].x, expected[i].x, 1e-9) << i;
        EXPECT_NEAR(spline.points()[i].y, expected[i].y, 1e-9) << i;
    }
}

TEST(EmfPlusDrawing, APartOfACurveKnowsItsNeighbours)
{
    const std::vector<Point> points { { 0, 0 }, { 30, 0 }, { 60, 30 }, { 90, 0 } };
    const Path whole = cardinalPath(points, 0.5, 0, 3);
    const Path part = cardinalPath(points, 0.5, 1, 1);
    ASSERT_EQ(part.points().size(), 4U);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(part.points()[i], whole.points()[i + 3]);
    EXPECT_TRUE(cardinalPath(points, 0.5, 3, 1).empty());
    EXPECT_TRUE(cardinalPath(points, 0.5, 0xFFFFFFFF, 0xFFFFFFFF).empty());
    EXPECT_EQ(cardinalPath(points, 0.5, 1, 0xFFFFFFFF).points().size(), 7U);
}

TEST(EmfPlusDrawing, ObjectsThatAreNotThereAreNamed)
{
    Records records = header();
    records.add(0x400A, 0, Fields().u32({ 7, 1 }).f32({ 0, 0, 5, 5 }));
    records.add(0x400F, 7, Fields().f32({ 0, 0, 5, 5 }));
    records.add(0x4014, kColor | 7, Fields().u32({ kRedArgb }));
    Sheet sheet;
    EXPECT_EQ(sheet.play(records).markedCount(), 0U);
    for (const char* kind : { "emfplus.no-brush", "emfplus.no-pen", "emfplus.no-path" })
        EXPECT_TRUE(sheet.diagnostics().has(kind)) << kind;
}

TEST(EmfPlusDrawing, OpaqueMarksStayCrispOnBilevelPages)
{
    Records records = header();
    fillRect(records, kBlackArgb, 3, 4, 10, 11);
    Sheet sheet(40, 40, PixelFormat::Bilevel);
    sheet.play(records);
    EXPECT_EQ(sheet.marked(), (PixelRect { 3, 4, 13, 15 }));
    EXPECT_EQ(sheet.markedCount(), 110U);
}
