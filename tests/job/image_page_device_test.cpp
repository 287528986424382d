#include "quillrip/job/image_page_device.h"

#include "tests/job/collecting_sink.h"

#include <gtest/gtest.h>

namespace quillrip {
namespace {

constexpr double kInch = 720;

/// Letter that nobody named, at 100 dots to the inch: it may be 8 x 12 inches, of which the left edge lies a tenth of
/// an inch to the right, or 8.5 x 14.
SheetRequest guessedSheet()
{
    SheetRequest sheet;
    sheet.candidates = { { 8 * kInch, 12 * kInch, 0.1 * kInch }, { 8.5 * kInch, 14 * kInch, 0 } };
    return sheet;
}

/// The image of a page on that sheet with one black rectangle.
PageBitmap imageWith(const PixelRect& black, PageSettings settings = {})
{
    settings.resolution = { 100, 100 };
    test::CollectingSink sink;
    ImagePageDevice device(sink, settings, {});
    PageCanvas canvas;
    EXPECT_EQ(device.beginPage(guessedSheet(), canvas), RunStatus::Done);
    canvas.painter->fillRect(black, {});
    EXPECT_EQ(device.endPage(), RunStatus::Done);
    return std::move(sink.pages.at(0));
}

TEST(ImagePageDevice, AGuessedSheetStaysWhenAllLiesOnIt)
{
    const PageBitmap page = imageWith({ 50, 1000, 60, 1100 });
    EXPECT_EQ(page.width(), 850);
    EXPECT_EQ(page.height(), 1100);
    EXPECT_EQ(test::inkCount(page), 1000);
}

TEST(ImagePageDevice, AGuessedSheetCutsWhatOverrunsItByAQuarterInch)
{
    EXPECT_EQ(imageWith({ 50, 1000, 60, 1125 }).height(), 1100);
    EXPECT_NE(imageWith({ 50, 1000, 60, 1126 }).height(), 1100);
}

TEST(ImagePageDevice, AGuessedSheetBecomesTheFirstCandidateThatHoldsAll)
{
    const PageBitmap page = imageWith({ 50, 1000, 60, 1200 });
    EXPECT_EQ(page.width(), 800);
    EXPECT_EQ(page.height(), 1200);
    EXPECT_EQ(test::inkCount(page, { 40, 1000, 50, 1200 }), 2000) << "a tenth of an inch further left";
    EXPECT_EQ(test::inkCount(page), 2000);
    for (const PixelRect& wide : { PixelRect { 9, 1000, 60, 1200 }, PixelRect { 50, 1000, 811, 1200 } }) {
        const PageBitmap whole = imageWith(wide);
        EXPECT_EQ(whole.width(), 850);
        EXPECT_EQ(whole.height(), 1400);
        EXPECT_EQ(test::inkCount(whole), wide.width() * wide.height());
    }
    EXPECT_EQ(imageWith({ 50, 1000, 60, 1201 }).height(), 1400);
}

TEST(ImagePageDevice, AnImageOfGivenSizeShowsTheRequestedSheet)
{
    PageSettings settings;
    settings.width = 850;
    settings.height = 1100;
    const PageBitmap page = imageWith({ 50, 1000, 60, 1300 }, settings);
    EXPECT_EQ(page.width(), 850);
    EXPECT_EQ(page.height(), 1100);
}

TEST(ImagePageDevice, AFaxOfAGuessedSheetIsAsWideAsAnyFax)
{
    PageSettings settings;
    settings.fax = FaxMode::Fine;
    const PageBitmap page = imageWith({ 100, 2000, 110, 2300 }, settings);
    EXPECT_EQ(page.width(), 1728);
    EXPECT_EQ(page.height(), 2352) << "12 inches of 196 dots";
    // The 8 inches lie in the fax's middle: 3 pixels beyond Letter's left edge become 48 before the smaller sheet's, of
    // which a tenth of an inch is lost.
    EXPECT_EQ(test::inkCount(page, { 100 + 3 + 48 - 20, 2000, 100 + 3 + 48 - 20 + 10, 2300 }), 3000);
}

TEST(ImagePageDevice, AGuessedSheetStaysWhereALongerOneIsAboveTheLimit)
{
    PageSettings settings;
    settings.resolution = { 100, 100 };
    Limits limits;
    limits.pageBytes = 850 * 3 * 1200;
    test::CollectingSink sink;
    ImagePageDevice device(sink, settings, limits);
    PageCanvas canvas;
    EXPECT_EQ(device.beginPage(guessedSheet(), canvas), RunStatus::Done) << "the requested sheet has room";
    EXPECT_EQ(device.reason(), "") << "nothing went wrong";
    canvas.painter->fillRect({ 0, 1000, 10, 1300 }, {});
    EXPECT_EQ(device.endPage(), RunStatus::Done);
    EXPECT_EQ(sink.pages.at(0).height(), 1100);
}

// Metafiles name sheets of kilometres. Only the sanitizers see it when such a number becomes an int.
TEST(ImagePageDevice, ASheetThatNoIntegerCanTellIsAboveTheLimit)
{
    test::CollectingSink sink;
    ImagePageDevice device(sink, {}, {});
    for (const double edge : { 1e12, 1e300 }) {
        SheetRequest sheet;
        sheet.width = edge;
        sheet.height = edge;
        PageCanvas canvas;
        EXPECT_EQ(device.beginPage(sheet, canvas), RunStatus::LimitExceeded);
        EXPECT_NE(device.reason(), "");
    }
}

} // namespace
} // namespace quillrip
