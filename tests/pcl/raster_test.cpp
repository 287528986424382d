#include "tests/pcl/printer.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;

namespace {

std::string row(std::initializer_list<int> data) { return command("*b", "W", bytes(data)); }

} // namespace

TEST(PclRaster, OneDotOf150DpiCoversFourPixelsAt300)
{
    const Printed printed = print(kStart + e("*t150R") + at(10, 20) + e("*r1A") + row({ 0x80 }) + e("*rB") + "\f");
    EXPECT_EQ(printed.art({ 84, 19, 89, 23 }), ".....\n.##..\n.##..\n.....\n");
    EXPECT_EQ(printed.blackPixels(), 4u);
}

TEST(PclRaster, RowsAreCopiedAtTheirOwnResolution)
{
    const Printed printed = print(kStart + e("*t300R") + at(0, 10) + e("*r1A") + row({ 0xA5 }) + row({ 0x18 }));
    EXPECT_EQ(printed.art({ 75, 10, 83, 12 }), "#.#..#.#\n...##...\n");
}

TEST(PclRaster, CursorEndsBelowTheLastRow)
{
    const std::string mark = e("*c1a1b0P");
    const Printed printed
        = print(kStart + e("*t300R") + at(8, 10) + e("*r1A") + row({ 0 }) + row({ 0 }) + e("*rB") + mark);
    EXPECT_EQ(printed.ink(), (PixelRect { 83, 12, 84, 13 }));
    const Printed declared = print(kStart + e("*t300R") + at(8, 10) + e("*r8s20t1A") + row({ 0 }) + e("*rB") + mark);
    EXPECT_EQ(declared.ink(), (PixelRect { 83, 30, 84, 31 }));
}

TEST(PclRaster, RowOffsetSkipsAndClearsTheSeed)
{
    const Printed printed
        = print(kStart + e("*t300R") + at(0, 10) + e("*r1A") + e("*b3M") + command("*b", "W", bytes({ 0, 0xC0 }))
            + e("*b0W") + e("*b2Y") + e("*b0W") + command("*b", "W", bytes({ 0, 0x03 })));
    EXPECT_EQ(printed.art({ 75, 10, 83, 16 }), "##......\n##......\n........\n........\n........\n......##\n");
}

TEST(PclRaster, RowOffsetOfNothingClearsTheSeedToo)
{
    const Printed printed = print(kStart + e("*t300R") + at(0, 10) + e("*r1A") + e("*b3M")
        + command("*b", "W", bytes({ 0, 0xC0 })) + e("*b0Y") + e("*b0W"));
    EXPECT_EQ(printed.ink(), (PixelRect { 75, 10, 77, 11 }));
}

TEST(PclRaster, StartMarginIsTheCursorOrTheLeftMargin)
{
    EXPECT_EQ(print(kStart + e("*t300R") + at(40, 10) + e("*r1A") + row({ 0x80 })).ink().left, 115);
    EXPECT_EQ(print(kStart + e("*t300R") + at(40, 10) + e("*r0A") + row({ 0x80 })).ink().left, 75);
    EXPECT_EQ(print(kStart + e("&a2L") + e("*t300R") + at(400, 10) + e("*r0A") + row({ 0x80 })).ink().left, 135);
}

TEST(PclRaster, TransferOutsideRasterModeStartsItWithTheFormerMargin)
{
    const Printed printed
        = print(kStart + e("*t300R") + at(40, 10) + e("*r1A") + row({ 0x80 }) + e("*rB") + at(200, 50) + row({ 0x80 }));
    EXPECT_TRUE(printed.isBlack(115, 10));
    EXPECT_TRUE(printed.isBlack(115, 50));
    const Printed reset
        = print(kStart + e("*t300R") + at(40, 10) + e("*r1A") + row({ 0x80 }) + e("*rC") + at(200, 50) + row({ 0x80 }));
    EXPECT_TRUE(reset.isBlack(75, 50));
}

TEST(PclRaster, OtherCommandsEndRasterModeSettingsWait)
{
    // The resolution is not changed inside, the position is, and ends the mode.
    const Printed printed = print(kStart + e("*t300R") + at(0, 10) + e("*r1A") + row({ 0x80 }) + e("*t75R")
        + row({ 0x80 }) + at(0, 50) + row({ 0x80 }));
    EXPECT_EQ(printed.blackPixels(), 3u);
    EXPECT_TRUE(printed.isBlack(75, 11));
    EXPECT_TRUE(printed.isBlack(75, 50));
}

TEST(PclRaster, NullsBetweenRowsAreIgnored)
{
    const Printed printed
        = print(kStart + e("*t300R") + at(5, 10) + e("*r1A") + row({ 0x80 }) + std::string(3, '\0') + row({ 0x80 }));
    EXPECT_EQ(printed.ink(), (PixelRect { 80, 10, 81, 12 }));
}

TEST(PclRaster, AWholePageInOneCombinedSequence)
{
    const Printed printed
        = print(kStart + e("*t300R") + at(0, 10) + e("*r1A") + "\x1b*b0m1w\x80" + "2y1w\x40" + "1W\x20");
    EXPECT_TRUE(printed.isBlack(75, 10));
    EXPECT_TRUE(printed.isBlack(76, 13));
    EXPECT_TRUE(printed.isBlack(77, 14));
    EXPECT_EQ(printed.blackPixels(), 3u);
}

TEST(PclRaster, ASequenceClosedTooEarlyGoesOn)
{
    // Seen from ink-jet drivers: the offset ends with a capital letter, the rows follow without an ESC.
    const Printed printed = print(kStart + e("*t300R") + at(0, 10) + e("*r1A") + "\x1b*b2Y1w\x80" + "1W\x40");
    EXPECT_TRUE(printed.isBlack(75, 12));
    EXPECT_TRUE(printed.isBlack(76, 13));
    EXPECT_EQ(printed.blackPixels(), 2u);
    // Empty rows may come without a count.
    const Printed uncounted = print(kStart + e("*t300R") + at(0, 10) + e("*r1A") + "\x1b*b2Yww1w\x80");
    EXPECT_TRUE(uncounted.isBlack(75, 14));
    EXPECT_EQ(uncounted.blackPixels(), 1u);
    const Printed planes
        = print(kStart + e("*r-3U") + e("*t300R") + at(0, 10) + e("*r8s1A") + "\x1b*b1V\x80" + "1v\x80" + "1W\x80");
    EXPECT_EQ(planes.ink(), (PixelRect { 75, 10, 76, 11 }));
}

TEST(PclRaster, DeclaredAreaClipsAndIsPaddedWithWhite)
{
    const std::string black = at(0, 0) + e("*c40a40b0P");
    const std::string image = at(8, 8) + e("*t300r8S") + e("*r4t1A") + row({ 0x80, 0xFF }) + e("*rB");
    const Printed transparent = print(kStart + black + image);
    EXPECT_EQ(transparent.blackPixels(), 1600u);
    const Printed opaque = print(kStart + black + e("*v1N") + image);
    EXPECT_EQ(opaque.blackPixels(), 1600u - 32 + 9);
    EXPECT_TRUE(opaque.isBlack(83, 8));
}

TEST(PclRaster, RowsBelowTheSheetCountWithoutBeingPainted)
{
    const Printed printed = print(kStart + e("*t75R") + at(0, 3290) + e("*r1A") + row({ 0x80 }) + e("*b5M")
        + command("*b", "W", bytes({ 5, 0xFF, 0xFF, 5, 0xFF, 0xFF })) + e("*rB"));
    EXPECT_EQ(printed.pages.size(), 1u);
    EXPECT_EQ(printed.ink(), (PixelRect { 75, 3290, 79, 3300 }));
}

TEST(PclRaster, WidthOfNothingClipsTheWholeImage)
{
    EXPECT_EQ(print(kStart + e("*r0s1A") + row({ 0xFF }) + e("*c1a1b0P")).blackPixels(), 1u);
}

TEST(PclRaster, RasterReachesTheSheetsEdge)
{
    const Printed printed = print(kStart + e("*t300R") + at(2395, 10) + e("*r1A") + row({ 0xFF, 0xFF }));
    EXPECT_EQ(printed.ink(), (PixelRect { 2470, 10, 2486, 11 }));
}

TEST(PclRaster, PresentationFollowsThePageOrTheSheet)
{
    const std::string start = e("E") + e("&l2a1o0E") + e("*t300R") + at(300, 400);
    const Printed along = print(start + e("*r0f1A") + row({ 0xFF }));
    EXPECT_EQ(along.ink(), (PixelRect { 360, 400, 368, 401 }));
    // Along the sheet's short edge: down the landscape page, from right to left.
    const Printed sheet = print(start + e("*r3f1A") + row({ 0xFF }) + row({ 0xF0 }));
    EXPECT_EQ(sheet.ink(), (PixelRect { 358, 400, 360, 408 }));
}

TEST(PclRaster, PrintDirectionTurnsImages)
{
    const Printed printed = print(kStart + e("*t300R") + at(300, 400) + e("&a90P") + e("*r0f1A") + row({ 0xFF }));
    EXPECT_EQ(printed.ink(), (PixelRect { 375, 392, 376, 400 }));
}

TEST(PclRaster, ScalingFillsTheDestination)
{
    const Printed printed = print(kStart + e("*t75R") + at(0, 0) + e("*r8s2T") + e("*t96h24V") + e("*r3A")
        + row({ 0x80 }) + row({ 0x01 }) + e("*rC"));
    EXPECT_EQ(printed.ink(), (PixelRect { 75, 0, 115, 10 }));
    EXPECT_EQ(printed.blackPixels(), 2u * 5 * 5);
    // One side given: the other follows.
    EXPECT_EQ(print(kStart + at(0, 0) + e("*r8s2T") + e("*t96h0V") + e("*r3A") + row({ 0xFF }) + row({ 0xFF })).ink(),
        (PixelRect { 75, 0, 115, 10 }));
}

TEST(PclRaster, HomePositionWithoutAPlace)
{
    EXPECT_EQ(print(kStart + e("*t300R") + e("*r1A") + row({ 0x80 })).ink(), (PixelRect { 75, 38, 76, 39 }));
}

// Their drivers send nothing else: neither resolution nor place.
TEST(PclRaster, BlocksOfCountedReplacementFillThePageFromItsPrintableCorner)
{
    const std::string block = command("*b1030m", "W", bytes({ 0, 2, 1, 0, 0x80, 255 }));
    PrinterSettings settings;
    settings.environment.resolution = 300;
    const Printed printed = print(e("E") + block + block + "\f" + block, settings);
    ASSERT_EQ(printed.pages.size(), 2u);
    // 1/9 and 2/9 inch.
    EXPECT_EQ(printed.ink(), (PixelRect { 33, 67, 34, 70 }));
    EXPECT_EQ(printed.ink(1), (PixelRect { 33, 67, 34, 68 }));
    settings.environment.resolution = 150;
    EXPECT_EQ(print(e("E") + block, settings).blackPixels(), 4u);
    settings.environment.resolution = 0; // 600
    settings.dotsPerInch = 600;
    EXPECT_EQ(print(e("E") + block, settings).blackPixels(), 1u);
}

TEST(PclRaster, UnknownMethodIsReportedOnce)
{
    const Printed printed = print(kStart + e("*r1A") + e("*b8M") + row({ 1, 2 }) + e("*b0M") + row({ 0x80 }));
    EXPECT_TRUE(printed.warnedOf("pcl.raster-method"));
    EXPECT_EQ(printed.status, RunStatus::Done);
}
