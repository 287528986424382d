#include "tests/pcl/printer.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;

namespace {

const std::string kMark = e("*c10a10b0P");

struct SizeRow {
    int code;
    double width;
    double length;
};

} // namespace

TEST(PclPages, PageSizesAreThoseOfTheSheets)
{
    const std::vector<SizeRow> rows { { 1, 7.25, 10.5 }, { 2, 8.5, 11 }, { 3, 8.5, 14 }, { 6, 11, 17 },
        { 25, 148 / 25.4, 210 / 25.4 }, { 26, 210 / 25.4, 297 / 25.4 }, { 27, 297 / 25.4, 420 / 25.4 },
        { 81, 4.125, 9.5 }, { 90, 110 / 25.4, 220 / 25.4 } };
    for (const SizeRow& row : rows) {
        const Printed printed = print(e("E") + e("&l" + std::to_string(row.code) + "A") + kMark);
        ASSERT_EQ(printed.sheets.size(), 1u) << row.code;
        EXPECT_NEAR(printed.sheets[0].width, row.width * 720, 0.01) << row.code;
        EXPECT_NEAR(printed.sheets[0].height, row.length * 720, 0.01) << row.code;
    }
}

TEST(PclPages, ASheetThatIsNotNamedMayTurnOutToBeA4OrLegal)
{
    const auto rowAt = [](int y) { return at(0, y) + e("*t300R") + e("*r1A") + command("*b", "W", "\x80") + e("*rB"); };
    const std::string unnamed = e("E") + e("&l0E");
    const Printed longer = print(unnamed + rowAt(3000) + e("*p+600Y") + e("*r1A") + command("*b", "W", "\x40"));
    ASSERT_EQ(longer.sheets[0].candidates.size(), 2u);
    EXPECT_NEAR(longer.sheets[0].candidates[0].height, 297 / 25.4 * 720, 0.01);
    EXPECT_NEAR(longer.sheets[0].candidates[0].left, 4 / 300.0 * 720, 0.01) << "the logical page begins 4 dots sooner";
    EXPECT_NEAR(longer.sheets[0].candidates[1].height, 14 * 720, 0.01);
    EXPECT_EQ(longer.sheets[0].candidates[1].left, 0);
    EXPECT_TRUE(longer.isBlack(kLeft + 1, 3601));
    EXPECT_EQ(longer.blackPixels(), 2u);
    EXPECT_EQ(print(unnamed + at(0, 4000) + kMark).ink(), (PixelRect { kLeft, 4000, kLeft + 10, 4010 }));
    const std::string toTheEnd = at(0, 5000) + e("*p-10Y") + kMark;
    EXPECT_EQ(print(unnamed + toTheEnd).ink().top, 3290) << "no sheet is as long as that";
    EXPECT_TRUE(print(unnamed + e("&l1O") + kMark).sheets[0].candidates.empty()) << "in landscape it is Letter";
}

TEST(PclPages, ASheetThatIsNamedStaysWhatItIs)
{
    PrinterSettings named;
    named.environment.isPaperNamed = true;
    for (const Printed& printed : { print(kStart + at(0, 3600) + kMark),
             print(e("E") + e("&l0e66P") + at(0, 0) + kMark), print(e("E") + kMark, named) }) {
        ASSERT_FALSE(printed.sheets.empty());
        EXPECT_TRUE(printed.sheets[0].candidates.empty());
        EXPECT_EQ(printed.pages[0].height(), 3300);
    }
}

TEST(PclPages, LinesOfTextEndAtTheFootOfLetterAlsoWhereNoSheetIsNamed)
{
    std::string lines;
    for (int line = 0; line < 70; ++line)
        lines += "x\r\n";
    const Printed text = print(lines);
    ASSERT_EQ(text.pages.size(), 2u);
    EXPECT_EQ(text.pages[0].height(), 3300);
}

TEST(PclPages, UnknownPageSizeIsIgnoredAndEjectsNothing)
{
    const Printed printed = print(kStart + at(0, 0) + kMark + e("&l222A") + at(100, 0) + kMark);
    EXPECT_EQ(printed.pages.size(), 1u);
}

TEST(PclPages, LogicalPageLiesWhereTheOrientationPutsIt)
{
    EXPECT_EQ(print(kStart + at(0, 100) + kMark).ink(), (PixelRect { 75, 100, 85, 110 }));
    EXPECT_EQ(print(e("E") + e("&l26a0o0E") + at(0, 100) + kMark).ink(), (PixelRect { 71, 100, 81, 110 }));
    const Printed landscape = print(e("E") + e("&l2a1o0E") + at(0, 100) + kMark);
    EXPECT_EQ(landscape.ink(), (PixelRect { 60, 100, 70, 110 }));
    EXPECT_EQ(landscape.sheets[0].orientation, 1);
    EXPECT_EQ(landscape.pages[0].width(), 3300);
    EXPECT_EQ(print(e("E") + e("&l26a3o0E") + at(0, 100) + kMark).ink(), (PixelRect { 59, 100, 69, 110 }));
}

TEST(PclPages, RegistrationMovesAlongTheSheetsEdges)
{
    EXPECT_EQ(print(kStart + e("&l-180u36Z") + at(0, 100) + kMark).ink(), (PixelRect { 0, 115, 10, 125 }));
    // Landscape: the sheet's width runs down the page, its length from right to left.
    EXPECT_EQ(print(e("E") + e("&l2a1o0E") + e("&l240u120Z") + at(100, 100) + kMark).ink(),
        (PixelRect { 60 + 100 - 50, 200, 60 + 100 - 50 + 10, 210 }));
}

TEST(PclPages, FormFeedEjectsMarkedAndBlankPages)
{
    EXPECT_EQ(print(kStart + kMark + "\f").pages.size(), 1u);
    const Printed blank = print(kStart + "\f\f");
    EXPECT_EQ(blank.pages.size(), 2u);
    EXPECT_EQ(blank.blackPixels(0), 0u);
}

TEST(PclPages, FormFeedBehindAResetThatEjectedAddsNoSheet)
{
    EXPECT_EQ(print(kStart + kMark + e("E") + "\f").pages.size(), 1u);
    EXPECT_EQ(print(kStart + kMark + e("E") + "\f\f").pages.size(), 2u);
    EXPECT_EQ(print(kStart + kMark + e("E") + e("&l0H") + "\f").pages.size(), 2u);
    EXPECT_EQ(print(kStart + "\f").pages.size(), 1u);
}

TEST(PclPages, JobLanguageLinesWithinTheirJobPrintNothing)
{
    PrinterSettings entered;
    entered.environment.isLanguageNamed = true;
    const std::string line = "@PJL COMMENT still the same page\r\n";
    EXPECT_EQ(print(line, entered).pages.size(), 0u);
    const Printed printed = print(kStart + line + at(0, 0) + kMark + line + kMark, entered);
    EXPECT_EQ(printed.pages.size(), 1u);
    EXPECT_EQ(printed.blackPixels(), print(kStart + at(0, 0) + kMark, entered).blackPixels());
    // Nor do they end where a command begins behind them without a new line.
    EXPECT_EQ(print("@PJL SET X=1" + e("&l26A") + kMark, entered).sheets.at(0).height,
        print(e("&l26A") + kMark).sheets.at(0).height);
    EXPECT_GT(
        print("An address: me@PJL is text", entered).blackPixels(), print("An address: me", entered).blackPixels());
    EXPECT_EQ(print(line).pages.size(), 1u); // a listing
}

TEST(PclPages, EndResetAndSizeEjectMarkedPagesOnly)
{
    EXPECT_EQ(print(kStart).pages.size(), 0u);
    EXPECT_EQ(print(kStart + kMark).pages.size(), 1u);
    EXPECT_EQ(print(kStart + kMark + e("E") + e("&l0H")).pages.size(), 1u);
    EXPECT_EQ(print(kStart + kMark + e("&l26A") + kMark).pages.size(), 2u);
    EXPECT_EQ(print(kStart + kMark + e("&l1O") + kMark).pages.size(), 2u);
    EXPECT_EQ(print(kStart + kMark + e("&l0O") + kMark).pages.size(), 1u);
    EXPECT_EQ(print(kStart + kMark + e("&l1H") + kMark).pages.size(), 2u);
    EXPECT_EQ(print(kStart + kMark + e("&l-2H") + kMark).pages.size(), 1u);
    EXPECT_EQ(print(kStart + "   " + e("E")).pages.size(), 0u);
}

TEST(PclPages, CopiesGiveOneImage) { EXPECT_EQ(print(kStart + e("&l3X") + kMark + "\f").pages.size(), 1u); }

TEST(PclPages, DuplexLeavesASideBlankWhenTheOtherIsAskedFor)
{
    EXPECT_EQ(print(kStart + e("&l1S") + kMark + e("&a1G") + kMark).pages.size(), 3u);
    EXPECT_EQ(print(kStart + e("&l1S") + kMark + e("&a2G") + kMark).pages.size(), 2u);
    EXPECT_EQ(print(kStart + kMark + e("&a1G") + kMark).pages.size(), 2u);
}

TEST(PclPages, HomeIsThreeQuartersOfALineBelowTheTopMargin)
{
    EXPECT_EQ(print(e("E") + kMark).ink(), (PixelRect { 75, 188, 85, 198 }));
    EXPECT_EQ(print(kStart + kMark).ink(), (PixelRect { 75, 38, 85, 48 }));
    EXPECT_EQ(print(e("E") + e("&l8D") + kMark).ink().top, 150 + 28);
}

// Large-format printers have no codes for their sheets: their drivers ask for a custom one and give its length in
// lines.
TEST(PclPages, PageLengthOfACustomSheetPicksALargeOne)
{
    const auto sheet = [](const std::string& commands) { return print(e("E") + commands + kMark).sheets[0]; };
    EXPECT_NEAR(sheet(e("&l6d101a140P")).height, 594 / 25.4 * 720, 0.01);
    EXPECT_NEAR(sheet(e("&l6d101a140P")).width, 420 / 25.4 * 720, 0.01);
    EXPECT_NEAR(sheet(e("&l6d101a198P")).height, 841 / 25.4 * 720, 0.01);
    EXPECT_NEAR(sheet(e("&l6d101a216P")).width, 24 * 720, 0.01);
    // Without asking for one, such a length is a form's that runs on over the sheet.
    EXPECT_NEAR(sheet(e("&l6d2a140P")).height, 11 * 720, 0.01);
    PrinterSettings named;
    named.environment.customWidth = 3600;
    named.environment.customLength = 7200;
    EXPECT_NEAR(print(e("E") + e("&l6d101a140P") + kMark, named).sheets[0].height, 7200, 0.01);
}

TEST(PclPages, PageLengthPicksTheSizeOfThatManyLines)
{
    EXPECT_NEAR(print(e("E") + e("&l84P") + kMark).sheets[0].height, 14 * 720, 0.01);
    EXPECT_NEAR(print(e("E") + e("&l70P") + kMark).sheets[0].height, 297 / 25.4 * 720, 0.01);
    EXPECT_NEAR(print(e("E") + e("&l66P") + kMark).sheets[0].height, 11 * 720, 0.01);
    // No sheet is 40 lines long: the sheet stays, the logical page ends earlier.
    const Printed form = print(e("E") + e("&l40p0E") + at(0, 3000) + kMark);
    EXPECT_NEAR(form.sheets[0].height, 11 * 720, 0.01);
    EXPECT_EQ(form.blackPixels(), 0u);
}

TEST(PclPages, PrintDirectionTurnsTheAxes)
{
    const std::string start = kStart + e("&l66F");
    EXPECT_EQ(print(start + e("&a90P") + at(400, 500) + e("*c60a20b0P")).ink(),
        (PixelRect { 75 + 500, 3300 - 460, 75 + 520, 3300 - 400 }));
    EXPECT_EQ(print(start + e("&a180P") + at(400, 500) + e("*c60a20b0P")).ink(),
        (PixelRect { 75 + 2400 - 460, 3300 - 520, 75 + 2400 - 400, 3300 - 500 }));
    EXPECT_EQ(print(start + e("&a270P") + at(400, 500) + e("*c60a20b0P")).ink(),
        (PixelRect { 75 + 2400 - 520, 400, 75 + 2400 - 500, 460 }));
}

TEST(PclPages, PrintDirectionKeepsTheCursorsPlace)
{
    const Printed printed = print(kStart + at(400, 500) + e("&a90P") + e("*c60a20b0P"));
    EXPECT_EQ(printed.ink(), (PixelRect { 75 + 400, 440, 75 + 420, 500 }));
}

TEST(PclPages, RectanglesAreClippedToTheLogicalPage)
{
    const Printed printed = print(kStart + at(2390, 3290) + e("*c100a100b0P"));
    EXPECT_EQ(printed.ink(), (PixelRect { 75 + 2390, 3290, 75 + 2400, 3300 }));
}

TEST(PclPages, UserDefaultsComeFromTheEnvironment)
{
    PrinterSettings settings;
    settings.environment.pageSize = 26;
    settings.environment.orientation = 1;
    const Printed printed = print(kMark, settings);
    EXPECT_NEAR(printed.sheets.at(0).height, 297 / 25.4 * 720, 0.01);
    EXPECT_EQ(printed.sheets[0].orientation, 1);
    settings.environment.pageSize = 101;
    settings.environment.customWidth = 3000;
    settings.environment.customLength = 4000;
    EXPECT_EQ(print(kMark, settings).sheets.at(0).width, 3000);
}

TEST(PclPages, InkjetDriversSendASheetOfTheirOwn)
{
    const Printed printed = print(e("E") + command("*o", "W", bytes({ 0x0E, 5, 0, 1500 / 256, 1500 % 256 }))
        + command("*o", "W", bytes({ 0x0E, 6, 0, 2100 / 256, 2100 % 256 })) + e("&l101A") + kMark);
    EXPECT_EQ(printed.sheets.at(0).width, 3600);
    EXPECT_EQ(printed.sheets[0].height, 5040);
}

TEST(PclPages, UniversalExitIsSeenBehindAnUnfinishedCommand)
{
    EXPECT_EQ(print(kStart + e("*b3") + e("%-12345X")).universalExits, 1);
    EXPECT_EQ(print(kStart + e("") + e("%-12345X")).universalExits, 1);
}

TEST(PclPages, UniversalExitEndsTheStretchAndEjects)
{
    const Printed printed = print(kStart + kMark + e("%-12345X") + kMark);
    EXPECT_EQ(printed.pages.size(), 2u);
    EXPECT_EQ(printed.universalExits, 1);
    EXPECT_EQ(printed.status, RunStatus::Done);
}
