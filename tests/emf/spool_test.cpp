// The container: pages, their settings, and what is cut off.

#include "tests/emf/emf_bench.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace quillrip::test {
namespace {

Bytes square() { return nullPen() + blackBrush() + rectangle(300, 300, 599, 599); }

Reference a4Area()
{
    Reference reference;
    reference.width = 2410;
    reference.height = 3435;
    reference.millimetersX = 204;
    reference.millimetersY = 291;
    reference.micrometersX = 204047;
    reference.micrometersY = 290830;
    reference.frameRight = 20400;
    reference.frameBottom = 29100;
    return reference;
}

TEST(Spool, PageIsPaintedInReferencePixels)
{
    const Played played(spoolHeader() + spoolPage(metafile(square())));
    ASSERT_EQ(played.pages(), 1u);
    EXPECT_EQ(played.ink(), "300,300,598,598");
    EXPECT_TRUE(played.report.empty());
}

TEST(Spool, PagesWithoutCompletionAreThoseOfOlderSystems)
{
    const Bytes page = spoolRecord(0x01, metafile(square()));
    const Played played(spoolHeader() + page + page);
    EXPECT_EQ(played.pages(), 2u);
    EXPECT_FALSE(played.report.hasDamage());
}

TEST(Spool, UnfinishedPageBehindFinishedOnesIsDamageIfItDraws)
{
    const Bytes whole = spoolHeader() + spoolPage(metafile(square()));
    const Played drawing(whole + spoolRecord(0x0C, metafile(square())));
    EXPECT_EQ(drawing.pages(), 2u);
    EXPECT_TRUE(drawing.report.hasDamage());
    const Played empty(whole + spoolRecord(0x0C, metafile(nullPen())));
    EXPECT_EQ(empty.pages(), 1u);
    EXPECT_FALSE(empty.report.hasDamage());
}

TEST(Spool, CutJobKeepsWhatIsWhole)
{
    Bytes job = spoolHeader() + spoolRecord(0x0C, metafile(square()));
    job.resize(job.size() - 10);
    const Played inEnd(job);
    ASSERT_EQ(inEnd.pages(), 1u);
    EXPECT_EQ(inEnd.ink(), "300,300,598,598");
    EXPECT_TRUE(inEnd.report.hasDamage());
    job.resize(job.size() - 20);
    const Played inRectangle(job);
    ASSERT_EQ(inRectangle.pages(), 1u);
    EXPECT_EQ(inRectangle.ink(), "");
    EXPECT_TRUE(inRectangle.report.hasDamage());
}

TEST(Spool, SettingsStandBehindTheirPage)
{
    const Bytes first = spoolPage(metafile(square(), a4Area()), devmode(9));
    const Played played(spoolHeader() + first);
    ASSERT_EQ(played.pages(), 1u);
    // A4 with the printable area in its middle: 2.98 mm and 3.09 mm.
    EXPECT_EQ(played.device.pages()[0].width(), 2480);
    EXPECT_EQ(played.device.pages()[0].height(), 3508);
    EXPECT_EQ(played.ink(), "335,336,633,634");
}

TEST(Spool, SettingsHoldForLaterPages)
{
    const Bytes page = metafile(square(), a4Area());
    const Played played(spoolHeader() + spoolPage(page, devmode(9)) + spoolPage(page));
    ASSERT_EQ(played.pages(), 2u);
    EXPECT_EQ(played.device.pages()[1].width(), 2480);
}

TEST(Spool, PictureDecidesWhichWayTheSheetLies)
{
    Reference across;
    std::swap(across.width, across.height);
    std::swap(across.millimetersX, across.millimetersY);
    std::swap(across.micrometersX, across.micrometersY);
    std::swap(across.frameRight, across.frameBottom);
    const Played played(spoolHeader() + spoolPage(metafile(square(), across), devmode(1, 1)));
    ASSERT_EQ(played.pages(), 1u);
    EXPECT_EQ(played.device.pages()[0].width(), 3300);
    EXPECT_EQ(played.device.pages()[0].height(), 2550);
    EXPECT_EQ(played.ink(), "300,300,598,598");
}

TEST(Spool, OwnSizesGoBeforeNumbersOfPapers)
{
    Reference small;
    small.width = 900;
    small.height = 1140;
    small.millimetersX = 76;
    small.millimetersY = 97;
    small.micrometersX = 76200;
    small.micrometersY = 96520;
    const Played played(spoolHeader() + spoolPage(metafile(square(), small), devmode(256, 1, 1000, 800)));
    ASSERT_EQ(played.pages(), 1u);
    EXPECT_EQ(played.device.pages()[0].width(), 945);
    EXPECT_EQ(played.device.pages()[0].height(), 1181);
}

TEST(Spool, SheetThatIsTooSmallGivesWayToTheNearestStandardOne)
{
    const Played played(spoolHeader() + spoolPage(metafile(square()), devmode(9)));
    ASSERT_EQ(played.pages(), 1u);
    EXPECT_EQ(played.device.pages()[0].width(), 2550);
    EXPECT_TRUE(played.report.has("emf.sheet"));
}

TEST(Spool, CompletionThatPointsBeforeTheFileIsDamage)
{
    const Played played(
        spoolHeader() + spoolRecord(0x0C, metafile(square())) + spoolRecord(0x0D, words({ 0x10000000, 0 })));
    EXPECT_EQ(played.pages(), 1u);
    EXPECT_TRUE(played.report.hasDamage());
}

TEST(Spool, UnknownRecordsArePassedOver)
{
    const Played played(spoolHeader() + spoolPage(metafile(square())) + spoolRecord(0x40, words({ 1, 2, 3 }))
        + spoolPage(metafile(square())));
    EXPECT_EQ(played.pages(), 2u);
    EXPECT_TRUE(played.report.has("emf.spool-unknown"));
    EXPECT_FALSE(played.report.hasDamage());
}

TEST(Spool, SingleMetafileFillsItsFrame)
{
    Reference reference;
    reference.frameRight = 10000;
    reference.frameBottom = 5000;
    reference.width = 2160;
    reference.height = 2790;
    reference.hasMicrometers = false;
    const Played played(
        metafile(nullPen() + blackBrush() + rectangle(100, 100, 200, 200), reference), PixelFormat::Rgb24, 254);
    ASSERT_EQ(played.pages(), 1u);
    EXPECT_EQ(played.device.pages()[0].width(), 1000);
    EXPECT_EQ(played.device.pages()[0].height(), 500);
    EXPECT_EQ(played.ink(), "100,100,199,199");
}

TEST(Spool, AFrameInLogicalUnitsIsFoundByTheFirstMapping)
{
    Reference reference;
    reference.width = 2160;
    reference.height = 2790;
    reference.hasMicrometers = false;
    // Ten units to the pixel, ten pixels to the millimetre.
    const auto play = [&](int unitsToThePixel) {
        const Bytes mapping = record(0x11, { 8 }) + record(0x09, { 100 * unitsToThePixel, 100 * unitsToThePixel })
            + record(0x0B, { 100, 100 });
        Bytes job = metafile(mapping + nullPen() + blackBrush() + rectangle(10000, 10000, 20000, 20000), reference);
        const Bytes bounds = words({ 10000, 10000, 20000, 20000, 100000, 100000, 200000, 200000 });
        std::copy(bounds.begin(), bounds.end(), job.begin() + 8);
        return Played(job, PixelFormat::Rgb24, 25.4);
    };
    const Played mended = play(10);
    ASSERT_EQ(mended.pages(), 1u);
    EXPECT_EQ(mended.device.pages()[0].width(), 100);
    EXPECT_EQ(mended.ink(), "0,0,99,99");
    // A drawing that does lie far beyond its screen keeps its frame.
    EXPECT_EQ(play(1).device.pages()[0].width(), 1000);
    EXPECT_EQ(play(1).ink(), "0,0,999,999");
}

TEST(Spool, EmptyPictureMakesNoPage)
{
    Reference reference;
    reference.frameRight = 0;
    reference.width = 0;
    reference.height = 0;
    const Played played(metafile({}, reference));
    EXPECT_EQ(played.pages(), 0u);
    EXPECT_TRUE(played.report.has("emf.empty"));
}

} // namespace
} // namespace quillrip::test
