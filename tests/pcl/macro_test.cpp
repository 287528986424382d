#include "tests/pcl/printer.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;

namespace {

const std::string kMark = e("*c10a10b0P");

std::string define(int id, const std::string& content)
{
    return e("&f" + std::to_string(id) + "Y") + e("&f0X") + content + e("&f1X");
}

std::string run(int id, int action) { return e("&f" + std::to_string(id) + "y" + std::to_string(action) + "X"); }

constexpr int kExecute = 2;
constexpr int kCall = 3;
constexpr int kOverlay = 4;

} // namespace

TEST(PclMacros, DefinitionPrintsNothing)
{
    EXPECT_EQ(print(kStart + define(1, at(0, 0) + kMark + "text\f")).pages.size(), 0u);
}

TEST(PclMacros, ExecuteLeavesItsChangesCallTakesThemBack)
{
    const std::string macro = define(1, e("&u600D"));
    EXPECT_EQ(print(kStart + macro + run(1, kExecute) + at(600, 600) + kMark).ink().left, 75 + 300);
    EXPECT_EQ(print(kStart + macro + run(1, kCall) + at(600, 600) + kMark).ink().left, 75 + 600);
}

TEST(PclMacros, CallBringsTheCursorBackExecuteDoesNot)
{
    const std::string macro = define(1, at(500, 500));
    EXPECT_EQ(print(kStart + macro + at(100, 100) + run(1, kExecute) + kMark).ink().left, 75 + 500);
    EXPECT_EQ(print(kStart + macro + at(100, 100) + run(1, kCall) + kMark).ink().left, 75 + 100);
}

TEST(PclMacros, DataInsideADefinitionCannotEndIt)
{
    const std::string raster = e("*t300R") + at(0, 0) + e("*r1A") + command("*b", "W", e("&f1X") + e("E")) + e("*rB");
    const Printed printed = print(kStart + define(1, raster + at(100, 0) + kMark) + run(1, kExecute));
    EXPECT_EQ(printed.ink(), (PixelRect { 75 + 3, 0, 75 + 110, 10 }));
}

TEST(PclMacros, ResetIsNotKeptInADefinition)
{
    const Printed printed = print(kStart + define(1, e("&u600D") + e("E") + at(600, 0) + kMark) + run(1, kExecute));
    EXPECT_EQ(printed.ink().left, 75 + 300);
}

TEST(PclMacros, DefinitionMayStartAndEndWithinCombinedSequences)
{
    EXPECT_EQ(print(kStart + "\x1b&f1y0X" + at(7, 7) + kMark + "\x1b&f1x1y2X").ink().left, 75 + 7);
}

TEST(PclMacros, OverlayRunsOnEveryPageUntilDisabled)
{
    const std::string macro = define(1, e("&l0E") + at(200, 0) + kMark) + run(1, kOverlay);
    const Printed printed
        = print(kStart + macro + at(0, 0) + kMark + "\f" + at(0, 50) + kMark + "\f" + e("&f5X") + at(0, 0) + kMark);
    ASSERT_EQ(printed.pages.size(), 3u);
    EXPECT_TRUE(printed.isBlack(275, 0, 0));
    EXPECT_TRUE(printed.isBlack(275, 0, 1));
    EXPECT_FALSE(printed.isBlack(275, 0, 2));
}

TEST(PclMacros, OverlayStartsFromUserDefaultsAndLeavesThePageAlone)
{
    const std::string macro = define(1, at(300, 0) + kMark) + run(1, kOverlay);
    // The page's own unit of measure does not reach the overlay, nor the overlay's default top margin the page.
    const Printed printed = print(kStart + macro + e("&u600D") + at(0, 0) + kMark + "\f" + at(600, 0) + kMark + "\f");
    EXPECT_TRUE(printed.isBlack(375, 150, 0));
    EXPECT_TRUE(printed.isBlack(375, 0, 1));
}

TEST(PclMacros, PageSizeAndRedefinitionDisableTheOverlay)
{
    const std::string macro = define(1, at(300, 0) + kMark) + run(1, kOverlay);
    EXPECT_EQ(print(kStart + macro + e("&l2A") + at(0, 0) + kMark).blackPixels(), 100u);
    EXPECT_EQ(print(kStart + macro + define(1, "") + at(0, 0) + kMark).blackPixels(), 100u);
    EXPECT_EQ(print(kStart + macro + e("&f8X") + at(0, 0) + kMark).blackPixels(), 100u);
}

TEST(PclMacros, TemporaryMacrosEndWithAResetPermanentOnesStay)
{
    const std::string macro = define(1, at(0, 0) + kMark);
    EXPECT_EQ(print(kStart + macro + kStart + run(1, kExecute)).pages.size(), 0u);
    EXPECT_EQ(print(kStart + macro + e("&f10X") + kStart + run(1, kExecute)).pages.size(), 1u);
    EXPECT_EQ(print(kStart + macro + e("&f10X") + e("&f6X") + run(1, kExecute)).pages.size(), 0u);
}

TEST(PclMacros, ThreeLevelsRunTheFourthIsReported)
{
    const std::string macros
        = define(1, at(0, 0) + kMark) + define(2, run(1, kCall)) + define(3, run(2, kCall)) + define(4, run(3, kCall));
    EXPECT_EQ(print(kStart + macros + run(3, kCall)).pages.size(), 1u);
    const Printed printed = print(kStart + macros + run(4, kCall));
    EXPECT_EQ(printed.pages.size(), 0u);
    EXPECT_TRUE(printed.warnedOf("pcl.macro-depth"));
}

TEST(PclMacros, MacrosThatPaintThePageWithoutEndAreStopped)
{
    // 200 x 200 calls of 20 rectangles: nearly a million pages of ink from five hundred bytes.
    std::string rectangles = "\x1b*c2400a3150b";
    std::string inner = "\x1b&f1y";
    std::string outer = "\x1b&f2y";
    for (int i = 0; i < 20; ++i)
        rectangles += "0p";
    for (int i = 0; i < 200; ++i) {
        inner += "3x";
        outer += "3x";
    }
    PrinterSettings settings;
    settings.dotsPerInch = 36;
    settings.limits.work = std::make_shared<WorkMeter>(WorkBudget { 100'000'000 });
    const Printed printed = print(
        kStart + define(1, rectangles + "0P") + define(2, inner + "3X") + define(3, outer + "3X") + run(3, kCall),
        settings);
    EXPECT_EQ(printed.status, RunStatus::LimitExceeded);
    EXPECT_TRUE(printed.warnedOf("pcl.work"));
}

TEST(PclMacros, FormsOnEveryPageAreNoEndlessPainting)
{
    PrinterSettings settings;
    settings.dotsPerInch = 36;
    settings.limits.work = std::make_shared<WorkMeter>(WorkBudget { 500'000 });
    std::string job = kStart + define(1, e("*c2400a3150b0P")) + run(1, kOverlay);
    for (int i = 0; i < 10; ++i)
        job += run(1, kCall) + "\f";
    EXPECT_EQ(print(job, settings).pages.size(), 10u);
}

TEST(PclMacros, NamesStandForMacrosToo)
{
    const std::string name = command("&n", "W", bytes({ 4 }) + "logo");
    const Printed printed
        = print(kStart + name + e("&f0X") + at(9, 9) + kMark + e("&f1X") + e("&f1Y") + name + e("&f2X"));
    EXPECT_EQ(printed.ink().left, 84);
}

TEST(PclMacros, UniversalExitEndsADefinition)
{
    const Printed printed = print(kStart + e("&f0X") + kMark + e("%-12345X") + kStart + at(0, 0) + kMark);
    EXPECT_EQ(printed.pages.size(), 1u);
}

TEST(PclMacros, CallReturnsToTheFormerPageSize)
{
    const Printed printed = print(kStart + define(1, e("&l26A") + kMark) + run(1, kCall) + at(0, 0) + kMark);
    ASSERT_EQ(printed.sheets.size(), 2u);
    EXPECT_EQ(printed.sheets[1].height, 7920);
}
