#include "quillrip/emf/plus/pen_stroke.h"
#include "quillrip/emf/plus/shapes.h"
#include "tests/emf/plus/plus_job.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::emf::plus;
using namespace quillrip::emf::plus::test;

namespace {

constexpr std::uint32_t kInk = 0xFF000000;

PenObject plainPen(double width)
{
    PenObject pen;
    pen.width = width;
    pen.brush = Rgba { 0, 0, 0, 255 };
    return pen;
}

/// The bounds of a line's outline.
Rect outlined(const std::vector<Point>& points, bool isClosed, const PenObject& pen)
{
    const PenStroke stroke = penStroke(polygonPath(points, isClosed), pen, {});
    EXPECT_TRUE(stroke.needsOutline);
    WorkMeter work;
    return strokeOutline(stroke, pen, { 0, 0, 1000, 1000 }, work).bounds();
}

void expectNear(const Rect& rect, double left, double top, double right, double bottom)
{
    constexpr double tolerance = 0.05;
    EXPECT_NEAR(rect.left, left, tolerance);
    EXPECT_NEAR(rect.top, top, tolerance);
    EXPECT_NEAR(rect.right, right, tolerance);
    EXPECT_NEAR(rect.bottom, bottom, tolerance);
}

/// A pen's object with some of its optional fields.
Fields penWith(double width, std::uint32_t flags, const Fields& optional)
{
    return Fields().u32({ kVersion, 0, flags, 0 }).f32({ width }).bytes(optional).bytes(solidBrush(kInk));
}

Sheet& drawLine(Sheet& sheet, const Fields& penObject, double x0, double y0, double x1, double y1)
{
    Records records = header();
    records.object(2, 0, penObject);
    records.add(0x400D, 0, Fields().u32({ 2 }).f32({ x0, y0, x1, y1 }));
    return sheet.play(records);
}

} // namespace

TEST(EmfPlusPen, LinesAreAsWideAsTheWorldSays)
{
    Records records = header();
    records.add(0x402E, 0, Fields().f32({ 2, 3 }));
    records.object(2, 0, pen(4, kInk)).add(0x400D, 0, Fields().u32({ 2 }).f32({ 2, 6, 12, 6 }));
    Sheet sheet;
    EXPECT_EQ(sheet.play(records).marked(), (PixelRect { 4, 12, 24, 24 }));
}

TEST(EmfPlusPen, WidthsInUnitsOfTheirOwnIgnoreTheWorld)
{
    Records records = header();
    records.add(0x402E, 0, Fields().f32({ 2, 3 }));
    constexpr std::uint32_t pixels = 2;
    records.object(2, 0, pen(4, kInk, pixels)).add(0x400D, 0, Fields().u32({ 2 }).f32({ 2, 6, 12, 6 }));
    Sheet sheet;
    EXPECT_EQ(sheet.play(records).marked(), (PixelRect { 4, 16, 24, 20 }));
}

TEST(EmfPlusPen, WidthZeroIsOnePixel)
{
    Sheet sheet;
    EXPECT_EQ(drawLine(sheet, pen(0, kInk), 5, 10, 15, 10).marked().height(), 1);
}

TEST(EmfPlusPen, EveryEndHasItsOwnCap)
{
    Sheet sheet;
    constexpr std::uint32_t bothCaps = 0x0006;
    drawLine(sheet, penWith(4, bothCaps, Fields().u32({ 0, 1 })), 10, 20, 20, 20);
    EXPECT_EQ(sheet.marked(), (PixelRect { 10, 18, 22, 22 }));
}

TEST(EmfPlusPen, AnchorsStandOnTheLinesEnd)
{
    PenObject pen = plainPen(4);
    pen.endCap = Cap::SquareAnchor;
    expectNear(outlined({ { 50, 50 }, { 90, 50 } }, false, pen), 50, 46, 94, 54);
    pen.endCap = Cap::RoundAnchor;
    expectNear(outlined({ { 50, 50 }, { 90, 50 } }, false, pen), 50, 46, 94, 54);
    pen.endCap = Cap::DiamondAnchor;
    expectNear(outlined({ { 50, 50 }, { 90, 50 } }, false, pen), 50, 46, 94, 54);
    // An arrow ends where the line does.
    pen.endCap = Cap::ArrowAnchor;
    expectNear(outlined({ { 50, 50 }, { 90, 50 } }, false, pen), 50, 46, 90, 54);
}

TEST(EmfPlusPen, AnArrowsLineHidesBelowIt)
{
    constexpr std::uint32_t endCap = 0x0004;
    Sheet sheet;
    drawLine(sheet, penWith(4, endCap, Fields().u32({ 0x14 })), 5, 20, 35, 20);
    // The tip is sharp: only the middle of the line is left there.
    EXPECT_TRUE(sheet.isWhite(34, 18));
    EXPECT_FALSE(sheet.isWhite(33, 20));
}

TEST(EmfPlusPen, CustomArrowsHaveTheirMeasuresInWidths)
{
    Fields cap;
    cap.u32({ kVersion, 1 }).f32({ 4, 5, 0 }).u32({ 1, 0, 0, 0 }).f32({ 10, 1, 0, 0, 0, 0 });
    const auto custom = readCustomCap(cap);
    ASSERT_TRUE(custom);
    PenObject pen = plainPen(2);
    pen.endCap = Cap::Custom;
    pen.customEnd = std::make_shared<const CustomCap>(*custom);
    expectNear(outlined({ { 50, 50 }, { 50, 90 } }, false, pen), 46, 50, 54, 90);
}

TEST(EmfPlusPen, CustomPathsPointOutwards)
{
    // A triangle whose tip lies one width ahead of the end.
    const Fields triangle = path({ { -2, 0 }, { 2, 0 }, { 0, 1 } }, { 0, 1, 0x81 });
    Fields cap;
    cap.u32({ kVersion, 0, 1, 0 }).f32({ 0 }).u32({ 0, 0, 0 }).f32({ 10, 1, 0, 0, 0, 0 });
    cap.u32({ static_cast<std::uint32_t>(triangle.get().size()) }).bytes(triangle);
    const auto custom = readCustomCap(cap);
    ASSERT_TRUE(custom);
    PenObject pen = plainPen(4);
    pen.endCap = Cap::Custom;
    pen.customEnd = std::make_shared<const CustomCap>(*custom);
    expectNear(outlined({ { 50, 50 }, { 90, 50 } }, false, pen), 50, 42, 94, 58);
    pen.startCap = Cap::Custom;
    pen.customStart = pen.customEnd;
    pen.endCap = Cap::Flat;
    expectNear(outlined({ { 50, 50 }, { 90, 50 } }, false, pen), 46, 42, 90, 58);
}

TEST(EmfPlusPen, InsetPensStayInside)
{
    PenObject pen = plainPen(6);
    pen.alignment = PenAlignment::Inset;
    expectNear(outlined({ { 10, 10 }, { 60, 10 }, { 60, 40 }, { 10, 40 } }, true, pen), 10, 10, 60, 40);
    // Whichever way round the figure goes.
    expectNear(outlined({ { 10, 40 }, { 60, 40 }, { 60, 10 }, { 10, 10 } }, true, pen), 10, 10, 60, 40);
}

TEST(EmfPlusPen, CompoundPensLeaveTheirMiddleFree)
{
    constexpr std::uint32_t compound = 0x0400;
    Sheet sheet;
    drawLine(sheet, penWith(12, compound, Fields().u32({ 4 }).f32({ 0, 0.25, 0.75, 1 })), 5, 20, 35, 20);
    EXPECT_EQ(sheet.marked(), (PixelRect { 5, 14, 35, 26 }));
    EXPECT_FALSE(sheet.isWhite(20, 15));
    EXPECT_TRUE(sheet.isWhite(20, 18));
    EXPECT_TRUE(sheet.isWhite(20, 22));
    EXPECT_FALSE(sheet.isWhite(20, 24));
}

TEST(EmfPlusPen, DashesCountInWidths)
{
    constexpr std::uint32_t lineStyle = 0x0020;
    Sheet sheet;
    drawLine(sheet, penWith(2, lineStyle, Fields().u32({ 1 })), 0, 20, 40, 20);
    EXPECT_FALSE(sheet.isWhite(5, 20));
    EXPECT_TRUE(sheet.isWhite(6, 20));
    EXPECT_TRUE(sheet.isWhite(7, 20));
    EXPECT_FALSE(sheet.isWhite(8, 20));
}

TEST(EmfPlusPen, OverlappingPartsOfAnOutlineAreInkOnce)
{
    // Half opaque, with a cap on one end: the outline's pieces overlap where the line turns back.
    constexpr std::uint32_t endCap = 0x0004;
    const Fields object = Fields().u32({ kVersion, 0, endCap, 0 }).f32({ 6 }).u32({ 1 }).bytes(solidBrush(0x80000000));
    Records records = header();
    records.object(2, 0, object);
    records.add(0x400D, 0, Fields().u32({ 3 }).f32({ 5, 20, 30, 20, 10, 20 }));
    Sheet sheet;
    EXPECT_EQ(sheet.play(records).pixel(15, 20), (Rgb { 127, 127, 127 }));
}

TEST(EmfPlusPen, FlatSpacesDrawNothing)
{
    StrokeSpace flat;
    flat.worldToPage = Matrix::scaling(1, 0);
    EXPECT_TRUE(penStroke(polygonPath({ { 0, 0 }, { 9, 9 } }, false), plainPen(3), flat).path.empty());
}
