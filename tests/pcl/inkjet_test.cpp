// Habits of ink-jets and of their drivers.

#include "tests/pcl/printer.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;

namespace {

const std::string kA4 = e("E") + e("&l26a0O");
const std::string kInkjet = e("*r0Q"); // a command that nobody else has
const std::string kDot = e("*t300R") + e("*r1A") + command("*b", "W", "\x80") + e("*rB");

std::string row(std::initializer_list<int> data) { return command("*b", "W", bytes(data)); }
std::string plane(std::initializer_list<int> data) { return command("*b", "V", bytes(data)); }

/// As entered by the job language as PCL3GUI.
Printed printRaster(const std::string& job)
{
    PrinterSettings settings;
    settings.environment.family = pcl::PrinterFamily::InkjetRaster;
    return print(job, settings);
}

std::string sheetEdge(int setting, int dots)
{
    return command("*o", "W", bytes({ 0x0E, setting, 0, dots / 256, dots % 256 }));
}

void expectSheet(const Printed& printed, double inchesWide, double inchesLong)
{
    ASSERT_FALSE(printed.sheets.empty());
    EXPECT_NEAR(printed.sheets[0].width / 720, inchesWide, 0.01);
    EXPECT_NEAR(printed.sheets[0].height / 720, inchesLong, 0.01);
}

} // namespace

TEST(PclInkjet, RasterLanguageHasNoTextMargin)
{
    // 0.125 inch from the left, 0.07 inch from the top, on every sheet.
    for (const std::string size : { "2", "26" }) {
        const Printed printed = printRaster(e("E") + e("&l" + size + "A") + e("*p0Y") + kDot);
        EXPECT_NEAR(printed.ink().left, 37.5, 1) << size;
        EXPECT_EQ(printed.ink().top, 21) << size;
    }
    EXPECT_EQ(printRaster(kA4 + kDot).ink().top, 21); // and no first line
    const Printed foot = printRaster(kA4 + e("*p3480Y") + kDot);
    EXPECT_EQ(foot.ink().top, 3501);
}

TEST(PclInkjet, RastersOfTheWholePrintableWidthTellTheLeftMargin)
{
    const auto leftOf = [](int width) {
        return printRaster(e("&l2A") + e("*t300R") + e("*r" + std::to_string(width) + "S") + e("*p0Y") + kDot)
            .ink()
            .left;
    };
    EXPECT_EQ(leftOf(2400), 75);
    EXPECT_EQ(leftOf(2398), 76);
    EXPECT_NEAR(leftOf(2475), 37.5, 1);
    EXPECT_NEAR(leftOf(2000), 37.5, 1); // a picture's own width
}

TEST(PclInkjet, MetricSheetsHaveNarrowMarginsAtTheSides)
{
    EXPECT_EQ(print(kA4 + kDot).ink().left, 71);
    EXPECT_EQ(print(kA4 + kInkjet + kDot).ink().left, 38);
    EXPECT_EQ(print(kInkjet + kA4 + kDot).ink().left, 38);
    EXPECT_EQ(print(e("&l2A") + kInkjet + kDot).ink().left, 75);
    // What is on the page already keeps its place.
    EXPECT_EQ(print(kA4 + at(100, 100) + kDot + kInkjet + at(0, 200) + kDot).ink().left, 71);
}

TEST(PclInkjet, RasterWithoutPerforationSkipHasNoTopMargin)
{
    const std::string start = kA4 + e("&l0L") + kInkjet + e("*p0Y");
    EXPECT_EQ(print(start + kDot).ink().top, 0);
    EXPECT_EQ(print(start + e("*t300R") + row({ 0x80 })).ink().top, 0); // begun by its first row
    EXPECT_EQ(print(start + e("*c1a1b0P")).ink().top, 150);
    EXPECT_EQ(print(start + e("*c1a1b0P") + kDot).ink().top, 150);
    EXPECT_EQ(print(kA4 + e("&l1L") + kInkjet + e("*p0Y") + kDot).ink().top, 150);
    EXPECT_EQ(print(kA4 + e("&l0L") + e("&l2E") + kInkjet + e("*p0Y") + kDot).ink().top, 100);
    EXPECT_EQ(print(kA4 + e("&l0L") + e("*p0Y") + kDot).ink().top, 150); // a laser
}

TEST(PclInkjet, EarliestColourModelHasNoTopMargin)
{
    const std::string job = e("&l2A") + e("*t180R") + e("&a0H") + e("&a0V") + e("*r1A") + row({ 0x80 });
    EXPECT_EQ(print(job).ink().top, 0);
}

TEST(PclInkjet, PlanesLeftOutOfARowAreEmptyTransfers)
{
    const std::string start = kStart + e("*r-3U") + e("*t300R") + at(0, 0) + e("*r8s1A");
    const Rgb red { 255, 0, 0 };
    const Rgb cyan { 0, 255, 255 };
    const std::string redRow = plane({ 0, 0 }) + plane({ 0, 0xFF }) + row({ 0, 0xFF });
    // Delta rows: what does not change stays.
    Printed printed = printColor(start + e("*b3M") + redRow + e("*b0W"));
    EXPECT_EQ(printed.color(76, 0), red);
    EXPECT_EQ(printed.color(76, 1), red);
    // The others: nothing sent is no ink.
    printed = printColor(start + e("*b0M") + plane({ 0xFF }) + plane({ 0xFF }) + row({ 0xFF }) + row({ 0xFF }));
    EXPECT_EQ(printed.color(76, 0), kBlack);
    EXPECT_EQ(printed.color(76, 1), cyan);
}

TEST(PclInkjet, SeedRowsOutlastMovesOfTheCursor)
{
    const auto at = [](int y) { return e("*p" + std::to_string(y) + "Y"); };
    const std::string start = e("E") + e("&u300D") + e("*t300R") + e("*r8S") + at(0) + e("*r1A") + e("*b3M");
    const std::string moved = start + row({ 0x00, 0xF0 }) + at(1) + e("*b0W") + at(5) + e("*b0W");
    const Printed printed = printRaster(moved);
    const int top = printed.ink().top;
    for (const int y : { 0, 1, 5 }) {
        EXPECT_TRUE(printed.isBlack(printed.ink().left, top + y)) << y;
        EXPECT_FALSE(printed.isBlack(printed.ink().left + 4, top + y)) << y;
    }
    EXPECT_FALSE(printed.isBlack(printed.ink().left, top + 2));
    // They are zero behind a row offset, a raster's end and on lasers.
    EXPECT_EQ(printRaster(start + row({ 0x00, 0xF0 }) + e("*b0Y") + at(1) + e("*b0W")).ink().bottom, top + 1);
    EXPECT_EQ(
        printRaster(start + row({ 0x00, 0xF0 }) + e("*rC") + e("*r1A") + at(1) + e("*b0W")).ink().bottom, top + 1);
    const Printed laser = print(moved);
    EXPECT_EQ(laser.ink().bottom, laser.ink().top + 1);
}

TEST(PclInkjet, SheetsOfTheirOwnNumbers)
{
    expectSheet(print(e("&l122A") + kDot), 5, 7); // a number that lasers do not have
    expectSheet(print(kInkjet + e("&l110A") + kDot), 120 / 25.4, 235 / 25.4);
    expectSheet(print(e("&l110A") + kInkjet + kDot), 120 / 25.4, 235 / 25.4);
    // Drivers send lasers the same numbers.
    expectSheet(print(e("&l110A") + kDot), 120 / 25.4, 235 / 25.4);
    expectSheet(print(e("&l78A") + kDot), 3, 5);
    expectSheet(print(e("&l109A") + kDot), 4.375, 5.75);
    expectSheet(print(kInkjet + e("&l-81A") + kDot), 4.125, 9.5);
    expectSheet(print(kInkjet + e("&l3A") + kDot), 8.5, 14);
}

TEST(PclInkjet, OwnMeasureOfASheetCountsInTheJobsDots)
{
    // Before and after the sheet is selected, as long as nothing is marked.
    const std::string edges = sheetEdge(5, 2400) + sheetEdge(6, 3600);
    expectSheet(print(e("&l101A") + e("&u600D") + edges + kDot), 4, 6);
    expectSheet(print(e("*t600R") + edges + e("&l101A") + kDot), 4, 6);
    expectSheet(print(e("&l101A") + e("&u600D") + kDot + edges), 8.5, 11);
    expectSheet(printRaster(e("&l101A") + e("&u600D") + e("*t600R") + edges + kDot), 4, 6);
}

TEST(PclInkjet, SettingsAreObeyedUpToTheFirstRow)
{
    const Rgb red { 255, 0, 0 };
    const std::string start = kStart + e("*t300R") + at(0, 0) + e("*r1A");
    Printed printed = printColor(start + e("*r-3U") + e("*r8S") + plane({ 0 }) + plane({ 0x80 }) + row({ 0x80 }));
    EXPECT_EQ(printed.color(75, 0), red);
    const std::string direct = command("*v", "W", bytes({ 0, 3, 0, 8, 8, 8 }));
    printed = printColor(start + e("*r1S") + direct + e("*b2Y") + row({ 255, 0, 0 }));
    EXPECT_EQ(printed.color(75, 2), red);
    EXPECT_EQ(printed.color(76, 2), kWhite);
    const std::string inks = bytes({ 2, 3, 1, 44, 1, 44, 0, 2, 1, 44, 1, 44, 0, 2, 1, 44, 1, 44, 0, 2 });
    printed = printColor(start + e("*r8S") + command("*g", "W", inks) + plane({ 0 }) + plane({ 0x80 }) + row({ 0x80 }));
    EXPECT_EQ(printed.color(75, 0), red);
    // Behind it they wait.
    printed = printColor(start + e("*r8S") + row({ 0x80 }) + e("*r-3U") + row({ 0x80 }));
    EXPECT_EQ(printed.color(75, 1), kBlack);
}

TEST(PclInkjet, LightPlanesWithoutAWidthEndAtTheLogicalPage)
{
    // Bytes that are not sent are black in these colours.
    const std::string job
        = kStart + e("*r3U") + e("*t300R") + at(0, 0) + e("*r1A") + plane({ 0 }) + plane({ 0 }) + row({ 0 });
    const Printed printed = printColor(job);
    EXPECT_EQ(printed.color(75 + 2399, 0), kBlack);
    EXPECT_EQ(printed.color(75 + 2400, 0), kWhite);
    EXPECT_EQ(printed.ink(), (PixelRect { 75, 0, 2475, 1 }));
}

TEST(PclInkjet, AWidthThatNoSheetHasEndsAtTheLogicalPage)
{
    // 12288 dots of 180 to the inch; the rows are shorter than even the sheet, and their missing bytes black.
    const std::string job = e("&l2A") + e("*t180R") + e("*r12288S") + e("*r3U") + e("&a0H") + e("&a0V") + e("*r1A")
        + plane({ 0xFF }) + plane({ 0xFF }) + row({ 0xFF });
    const Printed printed = printColor(job);
    expectSheet(printed, 8.5, 11);
    EXPECT_EQ(printed.color(75, 0), kWhite);
    EXPECT_EQ(printed.color(75 + 2399, 0), kBlack);
    EXPECT_EQ(printed.color(75 + 2401, 0), kWhite);
}

TEST(PclInkjet, DropsOfFourLevelInkAddUpLessAndLess)
{
    const std::string inks = bytes({ 2, 1, 1, 44, 1, 44, 0, 4 });
    const Printed printed = printColor(
        kStart + command("*g", "W", inks) + at(0, 0) + e("*r8s1A") + plane({ 0b01010000 }) + row({ 0b00110000 }));
    EXPECT_EQ(printed.color(75, 0), kWhite);
    EXPECT_EQ(printed.color(76, 0).red, 127);
    EXPECT_EQ(printed.color(77, 0).red, 64);
    EXPECT_EQ(printed.color(78, 0), kBlack);
}

TEST(PclInkjet, JobsEnteredAsPclAreALasersWhateverQualityTheyAskFor)
{
    PrinterSettings named;
    named.environment.isLanguageNamed = true;
    for (const std::string quality : { "*o1M", "*b0S", "*r0Q" }) {
        EXPECT_EQ(print(kA4 + e(quality) + kDot, named).ink().left, 71) << quality;
        EXPECT_EQ(print(kA4 + e(quality) + kDot).ink().left, 38) << quality;
    }
}

TEST(PclInkjet, OtherMetricSheetsThanA4KeepTheMarginsOfALaser)
{
    for (const std::string size : { "25", "45", "100" })
        EXPECT_EQ(print(kInkjet + e("&l" + size + "A") + kDot).ink().left, 71) << size;
}

TEST(PclInkjet, DoublePostcardsAreFedUnfolded)
{
    expectSheet(print(kInkjet + e("&l72A") + kDot), 200 / 25.4, 148 / 25.4);
    expectSheet(print(e("&l72A") + kDot), 148 / 25.4, 200 / 25.4);
}

TEST(PclInkjet, BorderlessPagesBeginBeyondTheSheet)
{
    // 30 dots beyond the left edge, 18 beyond the top.
    const std::string start = e("E") + e("&l122A") + e("&u300D") + e("*t300R") + e("*r1560S") + sheetEdge(2, 18)
        + sheetEdge(1, 30) + e("*r1A") + e("*p0Y");
    const auto dotAt = [](int x, int y) {
        std::string pixels(195, '\0');
        pixels[static_cast<std::size_t>(x / 8)] = static_cast<char>(0x80 >> x % 8);
        return e("*b" + std::to_string(y) + "Y") + command("*b", "W", pixels);
    };
    const Printed corner = printRaster(start + dotAt(30, 18));
    EXPECT_EQ(corner.ink().left, 0);
    EXPECT_EQ(corner.ink().top, 0);
    EXPECT_EQ(printRaster(start + dotAt(29, 18)).blackPixels(), 0U);
    EXPECT_EQ(printRaster(start + dotAt(30, 17)).blackPixels(), 0U);
    EXPECT_EQ(printRaster(start + dotAt(30 + 1499, 18)).ink().left, 1499);
    expectSheet(corner, 5, 7);
}

TEST(PclInkjet, BorderlessPagesOfModelsThatEnlargeThemBeginInTheCorner)
{
    const auto start = [](int isBorderless) {
        return e("E") + e("&l122A") + e("&u300D") + sheetEdge(0x0D, isBorderless) + e("*p0Y") + kDot;
    };
    EXPECT_EQ(printRaster(start(1)).ink().left, 0);
    EXPECT_EQ(printRaster(start(1)).ink().top, 0);
    EXPECT_EQ(printRaster(start(0)).ink().top, 21);
}

TEST(PclInkjet, SheetsWithoutANumberAreAsLongAsThePageAndAsWideAsTheRasterAllows)
{
    // Lines of a sixth of an inch; the raster goes from margin to margin.
    const auto job = [](int lines, int width, int height) {
        return e("&l101A") + e("&l" + std::to_string(lines) + "P") + e("&l0L") + e("&l0E") + e("*t150R") + e("&a0H")
            + e("&a0V") + e("*r" + std::to_string(width) + "S") + e("*r" + std::to_string(height) + "T") + e("*r1A")
            + row({ 0x80 });
    };
    expectSheet(print(job(54, 825, 1275)), 6, 9);
    expectSheet(print(job(155, 2475, 3800)), 17, 155 / 6.0);
    expectSheet(print(job(34, 514, 797)), 100 / 25.4, 148 / 25.4); // a postcard, whose length is no whole line
    expectSheet(print(job(40, 825, 300)), 8.5, 11); // a picture that does not fill the page
    const Printed card = print(job(54, 825, 1275));
    EXPECT_EQ(card.ink().left, 75);
    EXPECT_EQ(card.ink().top, 0);
}

TEST(PclInkjet, RowsOfFinerInkCountInTheResolutionThatIsSaidBehindIt)
{
    // Black of 600 dots to the inch; widths, rows and offsets of 300: each row is two transfers of twice the pixels.
    const std::string black = command("*g", "W", bytes({ 2, 1, 2, 88, 2, 88, 0, 2 }));
    const std::string start = kStart + black + e("*t300R") + at(0, 0) + e("*r8s1A");
    const std::string both = plane({ 0xFF, 0xFF }) + row({ 0xFF, 0xFF });
    const PixelRect first = print(start + both).ink();
    EXPECT_EQ(first.left, 75);
    EXPECT_EQ(first.right - first.left, 8);
    EXPECT_EQ(first.bottom - first.top, 1);
    EXPECT_EQ(print(start + e("*b6Y") + both).ink().top, 6);
    // What was said before the ink does not count: then a row is one transfer of the ink's own pixels.
    const PixelRect fine = print(kStart + e("*t300R") + black + at(0, 0) + e("*r16s1A") + row({ 0xFF, 0xFF })).ink();
    EXPECT_EQ(fine.right - fine.left, 8);
}
