#include "tests/pclxl/xl_job.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;
using A = pclxl::Attribute;
using O = pclxl::Operator;

namespace {

/// The page after a black page has been painted through the clip.
std::string through(const XlStream& clip, int width, int height)
{
    XlStream c;
    c.nullPen().grayBrush(0).append(clip).rectangle(-5, -5, 100, 100);
    XlJob job;
    job.run(onePage(width, height, c));
    return job.pageCount() == 1 ? job.art(0, width, height) : job.sink.message();
}

XlStream& rectanglePath(XlStream& c, int left, int top, int right, int bottom)
{
    return c.box(A::BoundingBox, left, top, right, bottom).op(O::RectanglePath);
}

TEST(XlClip, ReplaceTakesThePath)
{
    XlStream c;
    rectanglePath(c, 1, 1, 4, 2).ubyte(A::ClipRegion, 0).op(O::SetClipReplace);
    EXPECT_EQ(through(c, 5, 3), ".....\n.###.\n.....\n");
}

TEST(XlClip, TheOutsideIsLimitedToThePage)
{
    XlStream c;
    rectanglePath(c, 1, 1, 4, 2).ubyte(A::ClipRegion, 1).op(O::SetClipReplace);
    EXPECT_EQ(through(c, 5, 3), "#####\n#...#\n#####\n");
}

TEST(XlClip, IntersectNarrowsAndReplaceWidens)
{
    XlStream c;
    rectanglePath(c, 0, 0, 3, 3).ubyte(A::ClipRegion, 0).op(O::SetClipReplace).op(O::NewPath);
    rectanglePath(c, 2, 1, 5, 3).ubyte(A::ClipRegion, 0).op(O::SetClipIntersect);
    EXPECT_EQ(through(c, 5, 3), ".....\n..#..\n..#..\n");
    XlStream exterior;
    rectanglePath(exterior, 0, 0, 3, 3).ubyte(A::ClipRegion, 0).op(O::SetClipReplace).op(O::NewPath);
    rectanglePath(exterior, 2, 1, 5, 3).ubyte(A::ClipRegion, 1).op(O::SetClipIntersect);
    EXPECT_EQ(through(exterior, 5, 3), "###..\n##...\n##...\n");
    c.ubyte(A::ClipRegion, 0).op(O::SetClipReplace);
    EXPECT_EQ(through(c, 5, 3), ".....\n..###\n..###\n");
}

TEST(XlClip, ARectangleLeavesThePathAlone)
{
    XlStream c;
    rectanglePath(c, 0, 0, 5, 1).box(A::BoundingBox, 1, 0, 3, 3).ubyte(A::ClipRegion, 0).op(O::SetClipRectangle);
    c.op(O::PaintPath).op(O::SetClipToPage).box(A::BoundingBox, 4, 2, 5, 3).ubyte(A::ClipRegion, 0);
    c.op(O::SetClipRectangle);
    EXPECT_EQ(through(c, 5, 3), ".##..\n.....\n....#\n");
}

TEST(XlClip, ClipModeRulesTheRegion)
{
    for (const int mode : { 0, 1 }) {
        XlStream c;
        rectanglePath(c, 0, 0, 5, 3);
        rectanglePath(c, 1, 1, 4, 2);
        c.ubyte(A::FillMode, 1 - mode).op(O::SetFillMode).ubyte(A::ClipMode, mode).op(O::SetClipMode);
        c.ubyte(A::ClipRegion, 0).op(O::SetClipReplace);
        EXPECT_EQ(through(c, 5, 3), mode == 0 ? "#####\n#####\n#####\n" : "#####\n#...#\n#####\n");
    }
}

TEST(XlClip, AnEmptyPathClipsEverything)
{
    XlStream c;
    c.op(O::NewPath).ubyte(A::ClipRegion, 0).op(O::SetClipReplace);
    EXPECT_EQ(through(c, 3, 1), "...\n");
    XlStream outside;
    outside.op(O::NewPath).ubyte(A::ClipRegion, 1).op(O::SetClipReplace);
    EXPECT_EQ(through(outside, 3, 1), "###\n");
}

TEST(XlClip, ItDoesNotMoveWithTheAxes)
{
    XlStream c;
    c.box(A::BoundingBox, 0, 0, 1, 1).ubyte(A::ClipRegion, 0).op(O::SetClipRectangle);
    c.xy(A::PageOrigin, 2, 0).op(O::SetPageOrigin);
    EXPECT_EQ(through(c, 3, 1), "#..\n");
}

TEST(XlClip, ThePathCanBecomeTheClipsOutline)
{
    XlStream whole;
    whole.op(O::SetPathToClip).op(O::PaintPath).grayBrush(255);
    EXPECT_EQ(through(whole, 3, 2), "...\n...\n");
    XlStream c;
    c.box(A::BoundingBox, 0, 0, 3, 2).ubyte(A::ClipRegion, 0).op(O::SetClipRectangle);
    rectanglePath(c, 2, 1, 5, 3).ubyte(A::ClipRegion, 1).op(O::SetClipIntersect); // no rectangle any more
    c.op(O::SetPathToClip).op(O::SetClipToPage).op(O::PaintPath).op(O::NewPath);
    rectanglePath(c, 0, 0, 0, 0).ubyte(A::ClipRegion, 0).op(O::SetClipReplace);
    EXPECT_EQ(through(c, 5, 3), "###..\n##...\n.....\n");
}

TEST(XlClip, ManyClipsCannotFillTheMemory)
{
    Limits limits;
    limits.pathPoints = 20000;
    XlStream c;
    for (int i = 0; i < 200; ++i) {
        c.op(O::NewPath).box(A::BoundingBox, 0, 0, 200, 200 + i).op(O::EllipsePath);
        c.ubyte(A::ClipRegion, 0).op(O::SetClipReplace).op(O::PushGS);
    }
    XlJob job(PixelFormat::Bilevel, limits);
    job.run(onePage(300, 300, c));
    EXPECT_TRUE(job.sink.has("pclxl.error.MaxGSLevelsExceeded"));
}

} // namespace
