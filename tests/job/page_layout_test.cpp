#include "quillrip/job/page_layout.h"

#include <gtest/gtest.h>

namespace quillrip {
namespace {

SheetRequest letter(int orientation = 0) { return { 6120, 7920, orientation }; }
SheetRequest a4(int orientation = 0) { return { 210 / 25.4 * 720, 297 / 25.4 * 720, orientation }; }

TEST(PageLayout, SizeIsTheSheetAtTheResolution)
{
    PageSettings settings;
    EXPECT_EQ(layoutOf(settings, letter()).width, 2550);
    EXPECT_EQ(layoutOf(settings, letter()).height, 3300);
    EXPECT_EQ(layoutOf(settings, a4()).width, 2480);
    EXPECT_EQ(layoutOf(settings, a4()).height, 3508);
    settings.resolution = { 600, 300 };
    EXPECT_EQ(layoutOf(settings, letter()).width, 5100);
    EXPECT_EQ(layoutOf(settings, letter()).height, 3300);
}

TEST(PageLayout, LandscapePagesAreLandscapeImages)
{
    const PageLayout layout = layoutOf({}, letter(1));
    EXPECT_EQ(layout.width, 3300);
    EXPECT_EQ(layout.height, 2550);
    EXPECT_EQ(layout.pageToDevice.apply({ 7920, 6120 }), (Point { 3300, 2550 }));
    EXPECT_EQ(layoutOf({}, letter(2)).width, 2550);
    EXPECT_EQ(layoutOf({}, letter(3)).width, 3300);
}

TEST(PageLayout, GivenPixelsAreExactWhateverTheSheet)
{
    PageSettings settings;
    settings.width = 850;
    settings.height = 1100;
    for (const SheetRequest& sheet : { letter(), letter(1), a4() }) {
        const PageLayout layout = layoutOf(settings, sheet);
        EXPECT_EQ(layout.width, 850);
        EXPECT_EQ(layout.height, 1100);
    }
    EXPECT_DOUBLE_EQ(layoutOf(settings, letter()).pageResolution.x, 100);
    EXPECT_DOUBLE_EQ(layoutOf(settings, letter(1)).pageResolution.x, 850 / 11.0);
    EXPECT_DOUBLE_EQ(layoutOf(settings, letter(1)).pageResolution.y, 1100 / 8.5);
}

TEST(PageLayout, OneGivenSideKeepsTheProportions)
{
    PageSettings settings;
    settings.resolution = { 204, 98 };
    settings.width = 850;
    EXPECT_EQ(layoutOf(settings, letter()).width, 850);
    EXPECT_EQ(layoutOf(settings, letter()).height, 1100);
    settings.width.reset();
    settings.height = 1100;
    EXPECT_EQ(layoutOf(settings, letter()).width, 850);
    EXPECT_EQ(layoutOf(settings, letter(1)).width, 1424);
}

TEST(PageLayout, FaxesAre1728PixelsWideAndCentred)
{
    PageSettings settings;
    settings.fax = FaxMode::Normal;
    settings.width = 10;
    const PageLayout onLetter = layoutOf(settings, letter());
    EXPECT_EQ(onLetter.format, PixelFormat::Bilevel);
    EXPECT_EQ(onLetter.width, 1728);
    EXPECT_EQ(onLetter.height, 1078);
    EXPECT_DOUBLE_EQ(onLetter.pageToDevice.apply({ 0, 0 }).x, -3);
    settings.fax = FaxMode::Fine;
    const PageLayout onA4 = layoutOf(settings, a4());
    EXPECT_EQ(onA4.height, 2292);
    EXPECT_DOUBLE_EQ(onA4.pageToDevice.apply({ 0, 0 }).x, 20);
    EXPECT_DOUBLE_EQ(onA4.imageResolution.y, 196);
}

TEST(PageLayout, FaxesOfWideSheetsAreReducedWhole)
{
    PageSettings settings;
    settings.fax = FaxMode::Fine;
    const PageLayout layout = layoutOf(settings, { 11 * 720, 17 * 720, 0 });
    EXPECT_EQ(layout.width, 1728);
    EXPECT_NEAR(layout.pageToDevice.apply({ 11 * 720, 0 }).x, 1728, 0.01);
    EXPECT_NEAR(layout.height, 17 * 196 * 1728 / (11 * 204.0), 0.5);
}

TEST(PageLayout, FaxesKeepTheShortEdgeAcross)
{
    PageSettings settings;
    settings.fax = FaxMode::Normal;
    for (const int orientation : { 1, 3 }) {
        const PageLayout layout = layoutOf(settings, letter(orientation));
        EXPECT_EQ(layout.width, 1728);
        EXPECT_EQ(layout.height, 1078);
        EXPECT_EQ(layout.quarterTurns, orientation);
        EXPECT_DOUBLE_EQ(layout.pageResolution.x, 98);
        EXPECT_DOUBLE_EQ(layout.pageResolution.y, 204);
    }
    // As fed, the top of a landscape page lies at the left edge; of a reverse landscape page, at the right.
    const Point top = layoutOf(settings, letter(1)).pageToDevice.apply({ 3960, 0 });
    EXPECT_NEAR(top.x, -3, 1e-9);
    EXPECT_NEAR(top.y, 539, 1e-9);
    EXPECT_NEAR(layoutOf(settings, letter(3)).pageToDevice.apply({ 3960, 0 }).x, 1731, 1e-9);
    EXPECT_EQ(layoutOf(settings, { 7920, 6120, 0 }).quarterTurns, 1);
    EXPECT_EQ(layoutOf(settings, letter(2)).quarterTurns, 0);
}

TEST(PageLayout, SheetsWithoutSizeStillHaveAPixel)
{
    const PageLayout layout = layoutOf({}, { 0, -5, 0 });
    EXPECT_EQ(layout.width, 1);
    EXPECT_EQ(layout.height, 1);
}

} // namespace
} // namespace quillrip
