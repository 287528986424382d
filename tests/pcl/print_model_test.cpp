#include "tests/pcl/printer.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;

namespace {

/// Pattern 5: a 4 x 4 tile with ink in the left half of the first row only.
std::string userPattern(int id = 5)
{
    return e("*c" + std::to_string(id) + "G") + command("*c", "W", bytes({ 0, 0, 1, 0, 0, 4, 0, 4, 0xC0, 0, 0, 0 }));
}

std::string image(std::initializer_list<int> rows)
{
    std::string job = e("*t300R") + e("*r8s" + std::to_string(rows.size()) + "t1A");
    for (const int row : rows)
        job += command("*b", "W", bytes({ row }));
    return job + e("*rC");
}

} // namespace

TEST(PclPrintModel, RectanglesInUnitsAndDecipoints)
{
    EXPECT_EQ(print(kStart + at(10, 20) + e("*c30a40b0P")).ink(), (PixelRect { 85, 20, 115, 60 }));
    EXPECT_EQ(print(kStart + at(10, 20) + e("*c72h96v0P")).ink(), (PixelRect { 85, 20, 115, 60 }));
    // Part of a dot counts as a whole one.
    EXPECT_EQ(print(kStart + at(10, 20) + e("*c1h1v0P")).ink(), (PixelRect { 85, 20, 86, 21 }));
    EXPECT_EQ(print(kStart + at(10, 20) + e("*c0a10b0P")).pages.size(), 0u);
}

TEST(PclPrintModel, RulesAreSeenOnCoarseDevices)
{
    PrinterSettings coarse;
    coarse.dotsPerInch = 72;
    EXPECT_GT(print(kStart + at(10, 20) + e("*c1a300b0P"), coarse).blackPixels(), 50u);
}

TEST(PclPrintModel, WhiteRectanglesErase)
{
    const Printed printed = print(kStart + at(0, 0) + e("*c20a20b0P") + e("*v0n0O") + at(5, 5) + e("*c10a10b1P"));
    EXPECT_EQ(printed.blackPixels(), 300u);
}

TEST(PclPrintModel, UserPatternsTileFromTheLogicalPagesCorner)
{
    const Printed printed = print(kStart + userPattern() + at(3, 3) + e("*c8a8b5g4P"));
    EXPECT_EQ(printed.art({ 75, 0, 87, 12 }),
        "............\n............\n............\n............\n"
        "....##..##..\n............\n............\n............\n"
        "....##..##..\n............\n............\n............\n");
}

TEST(PclPrintModel, PatternReferenceMovesTheTiles)
{
    const Printed printed = print(kStart + userPattern() + at(1, 1) + e("*p0R") + e("*c5a5b5g4P"));
    EXPECT_EQ(printed.art({ 75, 0, 82, 7 }), ".......\n.##..#.\n.......\n.......\n.......\n.##..#.\n.......\n");
}

TEST(PclPrintModel, PatternsTurnWithThePrintDirection)
{
    const std::string turned = kStart + userPattern() + e("&a90P");
    const Printed following = print(turned + at(3284, 4) + e("*c8a8b5g4P"));
    EXPECT_EQ(following.art({ 79, 8, 87, 12 }), "........\n........\n#...#...\n#...#...\n");
    const Printed upright = print(kStart + userPattern() + e("*p1R") + e("&a90P") + at(3284, 4) + e("*c8a8b5g4P"));
    EXPECT_EQ(upright.ink().height() % 4, 1);
}

TEST(PclPrintModel, TransparencyModes)
{
    const std::string ground = at(0, 0) + e("*c8a4b0P");
    const std::string pattern = userPattern() + e("*v4T");
    // Ink where the pattern has none stays black under a transparent pattern, white under an opaque one.
    EXPECT_EQ(print(kStart + ground + pattern + e("*v0n0O") + at(0, 0) + image({ 0xFF })).blackPixels(), 32u);
    const Printed opaquePattern = print(kStart + ground + pattern + e("*v0n1O") + at(0, 0) + image({ 0xF0 }));
    EXPECT_EQ(opaquePattern.art({ 75, 0, 83, 1 }), "##..####\n");
    const Printed opaqueSource = print(kStart + ground + e("*v1n1O") + at(0, 0) + image({ 0xF0 }));
    EXPECT_EQ(opaqueSource.art({ 75, 0, 83, 1 }), "####....\n");
}

TEST(PclPrintModel, RasterOperationsFollowTheirTruthTables)
{
    const std::string ground = at(0, 0) + e("*c4a1b0P"); // left half of eight black
    const auto printed = [&](int code) {
        return print(kStart + ground + e("*l" + std::to_string(code) + "O") + e("*v1n1O") + at(0, 0) + image({ 0x33 }))
            .art({ 75, 0, 83, 1 });
    };
    EXPECT_EQ(printed(252), "..##..##\n"); // texture or source
    EXPECT_EQ(printed(170), "####....\n"); // destination
    EXPECT_EQ(printed(102), "..##..##\n" == printed(252) ? printed(102) : "");
    EXPECT_EQ(printed(0), "########\n");
    EXPECT_EQ(printed(255), "........\n");
    EXPECT_EQ(printed(136),
        "######"
        "##\n" == printed(0)
            ? "####..##\n"
            : "");
    EXPECT_EQ(printed(85), "....####\n"); // the other way round
}

TEST(PclPrintModel, ShadingHasMoreInkLevelByLevel)
{
    std::size_t before = 0;
    for (const int percent : { 1, 5, 15, 30, 50, 70, 90, 100 }) {
        const Printed printed = print(kStart + at(0, 0) + e("*c160a160b" + std::to_string(percent) + "g2P"));
        EXPECT_GT(printed.blackPixels(), before) << percent;
        before = printed.blackPixels();
    }
    EXPECT_EQ(before, 160u * 160u);
}

TEST(PclPrintModel, PatternsKeepTheirSizeAtOtherResolutions)
{
    PrinterSettings fine;
    fine.dotsPerInch = 600;
    const std::string job = kStart + at(0, 0) + e("*c160a160b30g2P");
    EXPECT_EQ(print(job, fine).blackPixels(), 4 * print(job).blackPixels());
}

TEST(PclPrintModel, ShadesKeepTheirToneOnCoarseDevices)
{
    for (const double dotsPerInch : { 72.0, 100.0, 200.0 }) {
        PrinterSettings coarse;
        coarse.dotsPerInch = dotsPerInch;
        for (int hatch = 1; hatch <= 6; ++hatch) {
            const Printed printed = print(kStart + at(0, 0) + e("*c600a600b" + std::to_string(hatch) + "g3P"), coarse);
            const double share = static_cast<double>(printed.blackPixels()) / (4 * dotsPerInch * dotsPerInch);
            EXPECT_GT(share, 0.08) << hatch;
            EXPECT_LT(share, 0.3) << hatch;
        }
    }
}

TEST(PclPrintModel, InvalidPatternsDrawNothing)
{
    EXPECT_EQ(print(kStart + at(0, 0) + e("*c9a9b0g2P")).pages.size(), 0u);
    EXPECT_EQ(print(kStart + at(0, 0) + e("*c9a9b7g3P")).pages.size(), 0u);
    EXPECT_EQ(print(kStart + at(0, 0) + e("*c9a9b77g4P")).pages.size(), 0u);
    EXPECT_TRUE(
        print(kStart + e("*c5G") + command("*c", "W", bytes({ 9, 0, 1, 0, 0, 4, 0, 4 }))).warnedOf("pcl.bad-pattern"));
}

TEST(PclPrintModel, DownloadsMayBeLongerThanRows)
{
    constexpr std::size_t kWidth = 2000;
    constexpr std::size_t kHeight = 2500;
    std::string data = bytes({ 1, 0, 8, 0, kHeight >> 8, kHeight & 255, kWidth >> 8, kWidth & 255 });
    data += std::string(kWidth * (kHeight - 1), '\0') + std::string(kWidth, '\1');
    const Printed printed
        = printColor(kStart + e("*r3U") + e("*c5G") + command("*c", "W", data) + at(0, 0) + e("*c4a2500b5g4P"));
    EXPECT_EQ(printed.color(75, kHeight - 1), (Rgb { 255, 0, 0 }));
}

TEST(PclPrintModel, CurrentPatternFillsRectanglesAndIsDeletedWithItsData)
{
    const std::string fill = at(0, 0) + e("*c4a4b5P");
    EXPECT_EQ(print(kStart + userPattern() + e("*v4T") + fill).blackPixels(), 2u);
    EXPECT_EQ(print(kStart + userPattern() + e("*v4T") + e("*c2Q") + fill).blackPixels(), 16u);
}

TEST(PclPrintModel, PermanentPatternsOutliveAReset)
{
    const std::string fill = at(0, 0) + e("*c4a4b5g4P");
    EXPECT_EQ(print(kStart + userPattern() + kStart + fill).pages.size(), 0u);
    EXPECT_EQ(print(kStart + userPattern() + e("*c5Q") + kStart + fill).blackPixels(), 2u);
}

TEST(PclPrintModel, ColourPatternsTakeThePalettesColours)
{
    const std::string pattern = e("*c5G") + command("*c", "W", bytes({ 1, 0, 8, 0, 0, 1, 0, 2, 1, 2 }));
    const Printed printed = printColor(kStart + e("*r3U") + pattern + at(0, 0) + e("*c2a1b5g4P"));
    EXPECT_EQ(printed.color(75, 0), (Rgb { 255, 0, 0 }));
    EXPECT_EQ(printed.color(76, 0), (Rgb { 0, 255, 0 }));
}
