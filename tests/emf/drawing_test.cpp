// Shapes, pens, coordinates, clips and paths. Reference pixels are the page's.

#include "tests/emf/emf_bench.h"

#include <gtest/gtest.h>

namespace quillrip::test {
namespace {

Bytes filled() { return nullPen() + blackBrush(); }

TEST(EmfDrawing, LineLeavesItsLastPixelOut)
{
    EXPECT_EQ(play(blackPen() + record(0x1B, { 300, 300 }) + record(0x36, { 310, 300 })).ink(), "300,300,309,300");
    EXPECT_EQ(play(blackPen() + record(0x1B, { 310, 300 }) + record(0x36, { 300, 300 })).ink(), "301,300,310,300");
}

TEST(EmfDrawing, PenOfARectangleCoversItsEdges)
{
    const Played played = play(blackPen() + nullBrush() + rectangle(300, 300, 599, 599));
    EXPECT_EQ(played.ink(), "300,300,599,599");
    EXPECT_FALSE(played.hasInk(301, 301));
    EXPECT_EQ(played.inkCount(), 4u * 299u);
}

TEST(EmfDrawing, FillUnderAPenHasNoSeam)
{
    const Played played = play(blackPen() + blackBrush() + record(0x2A, { 300, 300, 400, 400 }));
    for (int x = 310; x < 390; ++x)
        EXPECT_EQ(played.pixel(x, 350), kBlackPixel) << x;
    EXPECT_EQ(played.pixel(380, 380), kBlackPixel);
}

TEST(EmfDrawing, WindowAndViewportScale)
{
    const Bytes mapping = record(0x11, { 8 }) + record(0x09, { 1000, 1000 }) + record(0x0B, { 300, 300 });
    EXPECT_EQ(play(filled() + mapping + rectangle(1000, 1000, 1999, 1999)).ink(), "300,300,599,599");
}

TEST(EmfDrawing, MetricModeCountsUpwards)
{
    const Played played = play(filled() + record(0x11, { 2 }) + rectangle(100, -100, 200, -200));
    EXPECT_EQ(played.ink(), "118,118,235,236");
}

TEST(EmfDrawing, WorldTransformTurns)
{
    const Bytes world = record(0x23, { bitsOf(0), bitsOf(1), bitsOf(-1), bitsOf(0), bitsOf(600), bitsOf(0) });
    EXPECT_EQ(play(filled() + world + rectangle(100, 100, 199, 149)).ink(), "451,100,499,198");
}

TEST(EmfDrawing, WorldTransformsMultiplyFromEitherSide)
{
    const auto twice = [](std::uint32_t mode) {
        return record(0x23, { bitsOf(2), 0, 0, bitsOf(2), 0, 0 })
            + record(0x24, { bitsOf(1), 0, 0, bitsOf(1), bitsOf(10), 0, mode });
    };
    EXPECT_EQ(play(filled() + twice(2) + rectangle(0, 0, 20, 20)).ink(), "20,0,59,39");
    EXPECT_EQ(play(filled() + twice(3) + rectangle(0, 0, 20, 20)).ink(), "10,0,49,39");
}

TEST(EmfDrawing, RestoreCountsBack)
{
    const Bytes levels = record(0x0A, { -100, 0 }) + record(0x21) + record(0x0A, { -200, 0 }) + record(0x21)
        + record(0x0A, { -300, 0 }) + record(0x22, { -2 });
    EXPECT_EQ(play(filled() + levels + rectangle(0, 0, 50, 50)).ink(), "100,0,149,49");
}

TEST(EmfDrawing, RestoreOfWhatWasNotSavedIsIgnored)
{
    for (const std::int64_t level : { std::int64_t { -1 }, std::int64_t { 1 }, std::int64_t { -2147483648 } }) {
        const Played played = play(record(0x22, { level }) + filled() + rectangle(0, 0, 50, 50));
        EXPECT_EQ(played.ink(), "0,0,49,49");
        EXPECT_TRUE(played.report.has("emf.restore"));
    }
}

TEST(EmfDrawing, ColorsAreRedFirst)
{
    const Bytes brush = record(0x27, { 1, 0, 0x000000FF, 0 }) + record(0x25, { 1 }) + record(0x28, { 1 });
    const Played played = play(nullPen() + brush + rectangle(100, 100, 200, 200));
    EXPECT_EQ(played.pixel(150, 150), kRedPixel); // deleted, but still selected
}

TEST(EmfDrawing, ObjectsMayBeMoreThanTheHeaderCounts)
{
    Reference few;
    few.handles = 2;
    const auto brush = [](int number) { return record(0x27, { number, 0, 0x000000FF, 0 }) + record(0x25, { number }); };
    const auto drawn = [&](int number) {
        return Played(
            spoolHeader() + spoolPage(metafile(nullPen() + brush(number) + rectangle(100, 100, 200, 200), few)));
    };
    EXPECT_EQ(drawn(11).pixel(150, 150), kRedPixel);
    EXPECT_EQ(drawn(65535).pixel(150, 150), kRedPixel);
    for (const int impossible : { 0, 65536 })
        EXPECT_TRUE(drawn(impossible).report.has("emf.handle")) << impossible;
}

TEST(EmfDrawing, ExclusiveOrTwiceLeavesNoTrace)
{
    const Bytes xorBrush
        = record(0x27, { 1, 0, 0x000000FF, 0 }) + record(0x25, { 1 }) + record(0x14, { 7 }) + nullPen();
    EXPECT_EQ(play(xorBrush + rectangle(0, 0, 50, 50)).pixel(20, 20), (Rgb { 0, 255, 255 }));
    EXPECT_EQ(play(xorBrush + rectangle(0, 0, 50, 50) + rectangle(0, 0, 50, 50)).ink(), "");
    const Bytes circle = record(0x2A, { 10, 10, 95, 70 });
    EXPECT_EQ(play(xorBrush + circle + circle).ink(), "");
    const Bytes line = record(0x14, { 7 }) + record(0x26, { 1, 0, 5, 0, 0x80 }) + record(0x25, { 1 })
        + record(0x1B, { 10, 10 }) + record(0x36, { 90, 41 });
    EXPECT_NE(play(line).ink(), "");
    EXPECT_EQ(play(line + record(0x1B, { 10, 10 }) + record(0x36, { 90, 41 })).ink(), "");
}

TEST(EmfDrawing, InvertingAreaEndsWhereItsLineBegins)
{
    const Bytes inverting = record(0x14, { 6 }) + blackBrush();
    const Bytes shape = record(0x2A, { 100, 100, 200, 180 });
    for (const int width : { 1, 20 }) {
        const Bytes pen = record(0x26, { 1, 0, width, 0, 0 }) + record(0x25, { 1 });
        const Played played = play(inverting + pen + shape);
        for (int x = 101; x < 200; ++x)
            EXPECT_EQ(played.pixel(x, 140), kBlackPixel) << x << ", width " << width;
        const Bytes path = record(0x3B) + shape + record(0x3C) + boundedRecord(0x3F, {});
        EXPECT_EQ(play(inverting + pen + path).inkCount(), played.inkCount()) << width;
    }
}

TEST(EmfDrawing, WidenedPathIsStrokedAlongItsEdge)
{
    const Bytes wide = record(0x26, { 1, 0, 60, 0, 0 }) + record(0x25, { 1 });
    const Bytes curve = record(0x3B) + record(0x2A, { 200, 200, 600, 500 }) + record(0x3C) + record(0x42);
    const Bytes fine = record(0x26, { 2, 0, 5, 0, 0xFF }) + record(0x25, { 2 });
    const Bytes stroke = boundedRecord(0x40, {});
    const Bytes both = boundedRecord(0x3F, {});
    for (const bool isFilled : { false, true }) {
        const Played played = play(wide + curve + fine + blackBrush() + (isFilled ? both : stroke));
        // From the left through the middle: the outer edge, the band of 60 pixels, the inner edge.
        EXPECT_EQ(played.pixel(171, 350), kRedPixel);
        for (int x = 175; x <= 226; ++x)
            EXPECT_EQ(played.pixel(x, 350), isFilled ? kBlackPixel : kWhitePixel) << x;
        EXPECT_EQ(played.pixel(231, 350), kRedPixel);
        EXPECT_EQ(played.pixel(400, 350), kWhitePixel);
        // And nothing within the band above, where its pieces meet.
        for (int y = 175; y <= 225; ++y)
            EXPECT_EQ(played.pixel(400, y), isFilled ? kBlackPixel : kWhitePixel) << y;
    }
}

TEST(EmfDrawing, StarHasAHoleByTheAlternateRule)
{
    // Five points as shorts, two to a number.
    const auto at = [](int x, int y) { return std::int64_t { x } | std::int64_t { y } << 16; };
    const Bytes star = boundedRecord(0x56, { 5, at(150, 50), at(209, 231), at(55, 119), at(245, 119), at(91, 231) });
    EXPECT_FALSE(play(filled() + record(0x13, { 1 }) + star).hasInk(150, 150));
    EXPECT_TRUE(play(filled() + record(0x13, { 2 }) + star).hasInk(150, 150));
}

TEST(EmfDrawing, PieGoesCounterClockwiseUnlessToldOtherwise)
{
    const Bytes pie = record(0x2F, { 0, 0, 200, 200, 200, 100, 100, 0 });
    const Played upperRight = play(filled() + pie);
    EXPECT_TRUE(upperRight.hasInk(140, 60));
    EXPECT_FALSE(upperRight.hasInk(60, 140));
    const Played others = play(filled() + record(0x39, { 2 }) + pie);
    EXPECT_FALSE(others.hasInk(140, 60));
    EXPECT_TRUE(others.hasInk(60, 140));
}

TEST(EmfDrawing, PathsKeepThePlaceWhereTheyWereRecorded)
{
    const Bytes scale = record(0x23, { bitsOf(2), 0, 0, bitsOf(2), 0, 0 });
    const Played played = play(
        filled() + record(0x3B) + rectangle(100, 100, 200, 200) + record(0x3C) + scale + boundedRecord(0x3E, {}));
    EXPECT_EQ(played.ink(), "100,100,199,199");
}

TEST(EmfDrawing, PathStartsAtThePositionSetBefore)
{
    const Bytes path = record(0x1B, { 100, 100 }) + record(0x3B) + record(0x36, { 200, 100 })
        + record(0x36, { 200, 200 }) + record(0x3D) + record(0x3C) + boundedRecord(0x3E, {});
    const Played played = play(filled() + path);
    EXPECT_TRUE(played.hasInk(190, 110));
    EXPECT_FALSE(played.hasInk(110, 190));
}

TEST(EmfDrawing, StemsOfLettersThatAreDrawnAsPathsHaveSoftEdges)
{
    // Two thirds of a pixel wide, on a page of a third of the reference's resolution.
    const auto stem = [](int height, PixelFormat format) {
        const Bytes path = record(0x3B) + record(0x1B, { 300, 300 }) + record(0x36, { 302, 300 })
            + record(0x36, { 302, 300 + height }) + record(0x36, { 300, 300 + height }) + record(0x3D) + record(0x3C);
        return Played(metafile(filled() + path + boundedRecord(0x3E, {})), format, 100).pixel(100, 105).red;
    };
    EXPECT_NEAR(stem(30, PixelFormat::Rgb24), 85, 8);
    EXPECT_EQ(stem(30, PixelFormat::Bilevel), 0);
    EXPECT_EQ(stem(300, PixelFormat::Rgb24), 0); // a rule
}

TEST(EmfDrawing, PathThatDoesNotExistIsNamed) { EXPECT_TRUE(play(boundedRecord(0x3E, {})).report.has("emf.no-path")); }

TEST(EmfDrawing, ClipsCutOutAndCombine)
{
    const Bytes frame = record(0x1E, { 100, 100, 200, 200 }) + record(0x1D, { 120, 120, 180, 180 });
    const Played played = play(filled() + frame + rectangle(0, 0, 1000, 1000));
    EXPECT_EQ(played.ink(), "100,100,199,199");
    EXPECT_EQ(played.inkCount(), 100u * 100u - 60u * 60u);
}

TEST(EmfDrawing, ClipRegionsAreInDevicePixels)
{
    const Bytes mapping = record(0x11, { 8 }) + record(0x09, { 1000, 1000 }) + record(0x0B, { 300, 300 });
    const Bytes region = record(0x4B, { 48, 5, 32, 1, 1, 16, 300, 300, 310, 310, 300, 300, 310, 310 });
    EXPECT_EQ(play(filled() + mapping + region + rectangle(0, 0, 5000, 5000)).ink(), "300,300,309,309");
    EXPECT_EQ(play(filled() + region + record(0x4B, { 0, 5 }) + rectangle(0, 0, 50, 50)).ink(), "0,0,49,49");
}

TEST(EmfDrawing, MetaRegionOutlivesTheClip)
{
    const Bytes clips = record(0x1E, { 100, 100, 200, 200 }) + record(0x1C) + record(0x1E, { 150, 0, 900, 900 })
        + record(0x4B, { 0, 5 });
    EXPECT_EQ(play(filled() + clips + rectangle(0, 0, 1000, 1000)).ink(), "100,100,199,199");
}

TEST(EmfDrawing, RegionsAreFramedAndInverted)
{
    const Bytes frame
        = boundedRecord(0x48, { 48, 0x80000004, 5, 5, 32, 1, 1, 16, 100, 100, 200, 200, 100, 100, 200, 200 });
    const Played framed = play(frame);
    EXPECT_EQ(framed.ink(), "100,100,199,199");
    EXPECT_EQ(framed.inkCount(), 100u * 100u - 90u * 90u);
    const Bytes invert = boundedRecord(0x49, { 48, 32, 1, 1, 16, 100, 100, 200, 200, 100, 100, 200, 200 });
    EXPECT_EQ(play(invert).pixel(150, 150), kBlackPixel);
    EXPECT_EQ(play(invert + invert).ink(), "");
}

TEST(EmfDrawing, HatchesShowTheBackgroundWhereItIsOpaque)
{
    const Bytes hatch = record(0x27, { 1, 2, 0, 0 }) + record(0x25, { 1 }) + record(0x19, { 0xFF }) + nullPen();
    const Played open = play(hatch + record(0x12, { 1 }) + rectangle(0, 0, 80, 80));
    const Played opaque = play(hatch + record(0x12, { 2 }) + rectangle(0, 0, 80, 80));
    EXPECT_EQ(open.inkCount(), 80u * 10u);
    EXPECT_EQ(opaque.inkCount(), 80u * 80u);
    EXPECT_EQ(opaque.pixel(1, 1), kRedPixel);
}

TEST(EmfDrawing, PensThinnerThanAReferencePixelAreThinOnFinerPages)
{
    // Twenty units to the reference pixel, four of the page's pixels to that.
    const auto thicknessOf = [](int width) {
        const Bytes mapping = record(0x11, { 8 }) + record(0x09, { 2000, 2000 }) + record(0x0B, { 100, 100 });
        const Bytes line = record(0x1B, { 2000, 2000 }) + record(0x36, { 2400, 2000 });
        const Played played(metafile(mapping + record(0x26, { 1, 0, width, 0, 0 }) + record(0x25, { 1 }) + line),
            PixelFormat::Rgb24, 1200);
        int rows = 0;
        for (int y = 380; y < 420; ++y)
            rows += played.hasInk(440, y) ? 1 : 0;
        return rows;
    };
    EXPECT_EQ(thicknessOf(0), 4); // a pixel of the reference device
    EXPECT_EQ(thicknessOf(20), 4);
    EXPECT_EQ(thicknessOf(5), 1);
}

TEST(EmfDrawing, OlderPensHaveTheEndsThatTheirStyleAsksFor)
{
    const auto line = [](std::uint32_t style) {
        return play(record(0x26, { 1, style, 20, 0, 0 }) + record(0x25, { 1 }) + record(0x1B, { 300, 300 })
            + record(0x36, { 400, 300 }))
            .ink();
    };
    EXPECT_EQ(line(0), "290,291,410,310");
    EXPECT_EQ(line(0x2200), "300,291,400,310");
}

TEST(EmfDrawing, DashedPensWiderThanAPixelAreSolid)
{
    const Bytes pen = record(0x26, { 1, 1, 10, 0, 0 }) + record(0x25, { 1 });
    const Played played = play(pen + record(0x1B, { 100, 100 }) + record(0x36, { 300, 100 }));
    for (int x = 100; x < 300; ++x)
        EXPECT_TRUE(played.hasInk(x, 100)) << x;
}

TEST(EmfDrawing, GradientsRunFromCornerToCorner)
{
    const Bytes vertices = words({ 0, 0, 0, 0, 256, 20 }) + words({ 0xFF00 | 0xFF00 << 16, 0xFF00 });
    const Bytes gradient = boundedRecord(0x76, { 2, 1, 0 }, vertices + words({ 0, 1, 0 }));
    const Played played = play(gradient);
    for (int x = 0; x < 256; x += 15)
        EXPECT_NEAR(played.pixel(x, 10).red, x, 1) << x;
}

TEST(EmfDrawing, FloodFillStopsAtOtherColors)
{
    const Bytes box = blackPen() + nullBrush() + rectangle(100, 100, 200, 200);
    const Bytes red = record(0x27, { 1, 0, 0xFF, 0 }) + record(0x25, { 1 });
    const Played played = play(box + red + record(0x35, { 150, 150, 0xFFFFFF, 1 }));
    EXPECT_EQ(played.pixel(101, 101), kRedPixel);
    EXPECT_EQ(played.pixel(100, 100), kBlackPixel);
    EXPECT_EQ(played.pixel(99, 99), kWhitePixel);
}

TEST(EmfDrawing, FloodFillStopsAtLinesWithSoftEdges)
{
    const Bytes circle = blackPen() + nullBrush() + record(0x2A, { 100, 100, 201, 165 });
    const Bytes red = record(0x27, { 1, 0, 0xFF, 0 }) + record(0x25, { 1 });
    const Bytes flood = record(0x35, { 150, 130, 0, 0 });
    const Played played = play(circle + red + flood);
    EXPECT_EQ(played.pixel(102, 133), kRedPixel);
    EXPECT_EQ(played.pixel(97, 130), kWhitePixel);
    EXPECT_EQ(played.ink(), play(circle).ink());
    // Over another colour in the way, up to the border.
    const Bytes blue = record(0x27, { 2, 0, 0xFF0000, 0 }) + record(0x25, { 2 }) + nullPen();
    EXPECT_EQ(play(circle + blue + rectangle(140, 120, 160, 140) + red + flood).pixel(130, 130), kRedPixel);
}

TEST(EmfDrawing, SizeAtAnotherResolutionIsTheSame)
{
    const Played played(metafile(filled() + rectangle(300, 300, 600, 600)), PixelFormat::Gray8, 100);
    EXPECT_EQ(played.ink(), "100,100,199,199");
}

} // namespace
} // namespace quillrip::test
