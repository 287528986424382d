#include "quillrip/hpgl/line_pattern.h"
#include "tests/hpgl/plot_sheet.h"

#include <gtest/gtest.h>

namespace quillrip::test {
namespace {

using hpgl::DashedLine;
using hpgl::DashPen;
using hpgl::LinePattern;
using hpgl::LineVertex;

/// A meter that these lines do not exhaust.
WorkMeter& plenty()
{
    static WorkMeter s_meter;
    return s_meter;
}

const Rect kEverything { -1e6, -1e6, 1e6, 1e6 };
constexpr DashPen kThin { 1 };

/// Start and end of every dash along the x axis.
std::vector<std::pair<double, double>> dashesOf(const DashedLine& line)
{
    std::vector<std::pair<double, double>> dashes;
    std::size_t at = 0;
    for (const Path::Verb verb : line.dashes.verbs()) {
        const double x = line.dashes.points()[at++].x;
        if (verb == Path::Verb::Move)
            dashes.push_back({ x, x });
        else
            dashes.back().second = x;
    }
    return dashes;
}

TEST(HpglLinePattern, RepeatsAndGoesOnInTheNextVector)
{
    double phase = 0;
    const LinePattern pattern { { .5, .5 }, 10, false };
    const DashedLine line
        = cutIntoDashes({ { { 0, 0 } }, { { 12, 0 } }, { { 20, 0 } } }, pattern, kEverything, kThin, plenty(), phase);
    const auto dashes = dashesOf(line);
    ASSERT_EQ(dashes.size(), 2u);
    EXPECT_NEAR(dashes[0].second, 5, 1e-9);
    EXPECT_NEAR(dashes[1].first, 10, 1e-9);
    EXPECT_NEAR(dashes[1].second, 15, 1e-9);
    EXPECT_NEAR(phase, 0, 1e-9);
}

TEST(HpglLinePattern, ThePhaseIsCarriedToTheNextLine)
{
    double phase = 0;
    const LinePattern pattern { { .5, .5 }, 10, false };
    cutIntoDashes({ { { 0, 0 } }, { { 7, 0 } } }, pattern, kEverything, kThin, plenty(), phase);
    EXPECT_NEAR(phase, 7, 1e-9);
    const auto dashes
        = dashesOf(cutIntoDashes({ { { 7, 0 } }, { { 20, 0 } } }, pattern, kEverything, kThin, plenty(), phase));
    ASSERT_FALSE(dashes.empty());
    EXPECT_NEAR(dashes[0].first, 10, 1e-9);
}

TEST(HpglLinePattern, MoreDashesThanAPenOfThatWidthCanShowAreOneSolidLine)
{
    double phase = 0;
    const LinePattern pattern { { .5, .5 }, 10, false };
    constexpr DashPen absurdlyWide { 1e7 };
    const DashedLine line = cutIntoDashes(
        { { { 0, 0 } }, { { 500, 0 } }, { { 600, 0 } } }, pattern, kEverything, absurdlyWide, plenty(), phase);
    const auto dashes = dashesOf(line);
    ASSERT_EQ(dashes.size(), 3u);
    EXPECT_NEAR(dashes[0].second, 5, 1e-9);
    EXPECT_NEAR(dashes[1].first, 5, 1e-9);
    EXPECT_NEAR(dashes[1].second, 500, 1e-9);
    EXPECT_NEAR(dashes[2].second, 600, 1e-9);
}

TEST(HpglLinePattern, GapsThatThePensCapsCloseAreNone)
{
    const auto dashes = [](LineCap cap, double gap) {
        double phase = 0;
        const LinePattern pattern { { (10 - gap) / 10, gap / 10 }, 10, false };
        return dashesOf(
            cutIntoDashes({ { { 0, 0 } }, { { 200, 0 } } }, pattern, kEverything, { 10, cap }, plenty(), phase));
    };
    EXPECT_EQ(dashes(LineCap::Butt, .5).size(), 20u);
    EXPECT_EQ(dashes(LineCap::Triangle, .5).size(), 20u);
    EXPECT_EQ(dashes(LineCap::Round, 1).size(), 20u); // a notch of a fortieth of a decipoint
    EXPECT_EQ(dashes(LineCap::Square, 9).size(), 1u);
    const auto round = dashes(LineCap::Round, .5);
    ASSERT_EQ(round.size(), 1u);
    EXPECT_NEAR(round[0].first, 0, 1e-9);
    EXPECT_NEAR(round[0].second, 199.5, 1e-9);
}

TEST(HpglLinePattern, GapsAtCornersStay)
{
    double phase = 0;
    const LinePattern pattern { { .5, .5 }, 10, false };
    const DashPen pen { 10, LineCap::Square };
    const auto dashes = dashesOf(
        cutIntoDashes({ { { 0, 0 } }, { { 17, 0 } }, { { 40, 0 } } }, pattern, kEverything, pen, plenty(), phase));
    ASSERT_EQ(dashes.size(), 2u);
    EXPECT_NEAR(dashes[0].second, 15, 1e-9);
    EXPECT_NEAR(dashes[1].first, 20, 1e-9);
}

TEST(HpglLinePattern, AdaptivePatternsFitEveryVector)
{
    double phase = 3;
    const LinePattern pattern { { .5, .5 }, 10, true };
    const auto dashes
        = dashesOf(cutIntoDashes({ { { 0, 0 } }, { { 24, 0 } } }, pattern, kEverything, kThin, plenty(), phase));
    ASSERT_EQ(dashes.size(), 2u);
    EXPECT_NEAR(dashes[0].second, 6, 1e-9);
    EXPECT_NEAR(dashes[1].first, 12, 1e-9);
    EXPECT_EQ(phase, 3);
}

TEST(HpglLinePattern, StretchesWithoutLengthAreDots)
{
    double phase = 0;
    const LinePattern pattern { { .8, .1, 0, .1 }, 10, false };
    const DashedLine line
        = cutIntoDashes({ { { 0, 0 } }, { { 20, 0 } } }, pattern, kEverything, kThin, plenty(), phase);
    ASSERT_EQ(line.dots.size(), 2u);
    EXPECT_NEAR(line.dots[0].x, 9, 1e-9);
    EXPECT_NEAR(line.dots[1].x, 19, 1e-9);
}

TEST(HpglLinePattern, WhatCannotBeSeenCostsNothingAndKeepsThePhase)
{
    double phase = 0;
    const LinePattern pattern { { .5, .5 }, 10, false };
    const DashedLine line
        = cutIntoDashes({ { { -1e9, 0 } }, { { 1e9, 0 } } }, pattern, { 0, 0, 100, 100 }, kThin, plenty(), phase);
    EXPECT_LT(line.dashes.pointCount(), 200u);
    const auto dashes = dashesOf(line);
    ASSERT_FALSE(dashes.empty());
    EXPECT_NEAR(std::fmod(dashes[3].first + 1e9, 10), 0, 1e-4);
}

TEST(HpglLineType, FixedTypesLeaveGaps)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;LT2,10,1;PU0,500;PD1000,500;LT;PU0,800;PD1000,800;PU;"); // 400 units: 200 on, 200 off
    EXPECT_TRUE(sheet.hasLine(100, 505));
    EXPECT_FALSE(sheet.hasInk(300, 505));
    EXPECT_TRUE(sheet.hasLine(500, 505));
    EXPECT_TRUE(sheet.hasLine(300, 805));
}

TEST(HpglLineType, PatternsThatNoDeviceShowsAreSolid)
{
    PlotSheet solid(PixelFormat::Gray8);
    solid.run("IN;SP1;PU100,505;PD900,505;PU;");
    PlotSheet dashed(PixelFormat::Gray8);
    dashed.run("IN;SP1;LT2,.5,1;PU100,505;PD900,505;LT2,.01,1;PU100,705;PD900,705;PU;");
    for (int x = 150; x < 850; x += 10)
        EXPECT_EQ(dashed.color(x, 705), solid.color(x, 505)) << x;
}

TEST(HpglLineType, UserDefinedPatternsReplaceBuiltInOnes)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;UL2,1,3;LT2,10,1;PU0,500;PD1000,500;UL2;PU;LT2;PU0,800;PD1000,800;PU;");
    EXPECT_TRUE(sheet.hasLine(50, 505));
    EXPECT_FALSE(sheet.hasInk(150, 505));
    EXPECT_TRUE(sheet.hasLine(150, 805));
}

TEST(HpglLineType, NinetyNineTakesUpThePreviousTypeWhereItWas)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;LT2,10,1;PU0,500;PD300,500;LT;LT99;PD1000,500;PU;");
    EXPECT_FALSE(sheet.hasInk(350, 505)); // the gap of the first pattern
    EXPECT_TRUE(sheet.hasLine(450, 505));
}

TEST(HpglLineType, ZeroDrawsDotsAtThePoints)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;LT0;PU100,500;PD500,500,900,500;PU;");
    EXPECT_TRUE(sheet.hasLine(505, 505));
    EXPECT_TRUE(sheet.hasLine(905, 505));
    EXPECT_FALSE(sheet.hasInk(300, 505));
}

TEST(HpglLineAttributes, SquareEndsReachHalfAWidthFarther)
{
    PlotSheet butt;
    butt.run("IN;SP1;PW5;PU300,500;PD700,500;PU;");
    EXPECT_FALSE(butt.hasInk(760, 505));
    PlotSheet square;
    square.run("IN;SP1;PW5;LA1,2;PU300,500;PD700,500;PU;");
    EXPECT_TRUE(square.hasLine(760, 505));
}

TEST(HpglLineAttributes, JoinsHoldAcrossCommands)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PW5;PU300,300;PD700,300;PD;PR0,400;PU;");
    EXPECT_TRUE(sheet.hasLine(770, 230)); // the mitre's corner
    PlotSheet bevel;
    bevel.run("IN;SP1;PW5;LA2,5;PU300,300;PD700,300;PD;PR0,400;PU;");
    EXPECT_FALSE(bevel.hasInk(780, 220));
}

TEST(HpglFill, HatchLinesKeepTheirDistanceFromTheAnchor)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PW.1;FT3,100,0;AC0,50;PU100,100;RA900,900;");
    EXPECT_TRUE(sheet.hasLine(500, 455));
    EXPECT_FALSE(sheet.hasInk(500, 505));
    EXPECT_FALSE(sheet.hasInk(50, 455));
    sheet.run("IN;SP1;PW.1;FT4,100,0;PU100,100;RA900,900;");
    EXPECT_TRUE(sheet.hasLine(505, 450));
}

TEST(HpglFill, DashedHatchLinesNeedNotLieNearerThanPixels)
{
    // A pixel is ten plotter units.
    PlotSheet near(PixelFormat::Gray8);
    near.run("IN;SP1;LT2,5;FT3,1;PU100,100;RA900,900;");
    PlotSheet atPixels(PixelFormat::Gray8);
    atPixels.run("IN;SP1;LT2,5;FT3,10;PU100,100;RA900,900;");
    for (int y = 105; y < 900; y += 10) {
        for (int x = 105; x < 900; x += 10)
            EXPECT_EQ(near.color(x, y), atPixels.color(x, y)) << x << "," << y;
    }
    EXPECT_EQ(near.color(115, 505), (Rgb { 0, 0, 0 })); // a dash of 36 units, and its gap
    EXPECT_EQ(near.color(155, 505), (Rgb { 255, 255, 255 }));
}

TEST(HpglFill, HatchingFollowsHoles)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PW.1;FT3,50;PU100,100;PM0;PD900,100,900,900,100,900;PM1;PU300,300;PD700,300,700,700,300,700;"
              "PM2;FP;");
    EXPECT_TRUE(sheet.hasLine(200, 505));
    EXPECT_FALSE(sheet.hasInk(500, 505));
    EXPECT_TRUE(sheet.hasLine(800, 505));
}

TEST(HpglFill, ShadingHasTheToneThatWasAskedFor)
{
    for (const int percent : { 10, 30, 50, 80 }) {
        PlotSheet sheet;
        sheet.run("IN;SP1;PP1;FT10," + std::to_string(percent) + ";PU0,0;RA1000,1000;");
        EXPECT_NEAR(sheet.inkCount() / 10000.0, percent / 100.0, 0.03) << percent;
    }
}

TEST(HpglFill, AnOpaqueShadeIsATintWhereThePageHoldsTones)
{
    PlotSheet sheet(PixelFormat::Gray8);
    sheet.run("IN;SP1;TR0;FT10,40;PU0,0;RA1000,1000;");
    EXPECT_EQ(sheet.color(500, 500), (Rgb { 153, 153, 153 }));
}

TEST(HpglFill, RasterFillsTakePensOfThePalette)
{
    PlotSheet sheet(PixelFormat::Rgb24);
    sheet.run("IN;SP1;PP1;RF1,12,1,2,2,2,2,2,2,5,5,5,5,5,5;FT11,1;PU0,0;RA1000,1000;");
    int red = 0;
    for (int x = 5; x < 1000; x += 10)
        red += sheet.color(x, 505) == (Rgb { 255, 0, 0 }) ? 1 : 0;
    EXPECT_NEAR(red, 50, 10);
}

TEST(HpglFill, UserPatternsComeFromTheHost)
{
    PlotSheet sheet;
    PatternTile tile;
    tile.width = 2;
    tile.height = 1;
    tile.pixels = { 1, 0 };
    sheet.userPattern = std::make_shared<const PatternTile>(tile);
    sheet.run("IN;SP1;PP1;FT22,7;PU0,0;RA1000,1000;");
    EXPECT_NEAR(sheet.inkCount(), 5000, 200);
}

TEST(HpglFill, OptionsOutOfRangeLeaveTheTypeAlone)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;FT1;FT10,101;FT3,-5;FT99;FT21,9;PU100,100;RA900,900;");
    EXPECT_TRUE(sheet.hasLine(500, 500));
    EXPECT_GE(sheet.inkCount(), 6400);
}

TEST(HpglTransparency, WhiteErasesOnlyWhenOpaque)
{
    const std::string black = "IN;SP1;PU0,0;RA1000,1000;SP0;PU400,400;";
    PlotSheet transparent;
    transparent.run(black + "TR1;RR200,200;");
    EXPECT_TRUE(transparent.hasLine(500, 500));
    PlotSheet opaque;
    opaque.run(black + "TR0;RR200,200;");
    EXPECT_FALSE(opaque.hasInk(500, 500));
    EXPECT_TRUE(opaque.hasLine(300, 500));
}

TEST(HpglMerge, SetsTheSharedLogicalOperation)
{
    PlotSheet sheet;
    sheet.run("IN;MC1,90;");
    EXPECT_EQ(sheet.operation, 90);
    sheet.run("MC1;");
    EXPECT_EQ(sheet.operation, 168);
    sheet.run("MC1,256;");
    EXPECT_EQ(sheet.operation, 252);
    sheet.run("MC1,90;IN;");
    EXPECT_EQ(sheet.operation, 252);
}

TEST(HpglMerge, ExclusiveOrUndoesItself)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;MC1,102;PU100,100;RA900,900;RA900,900;");
    EXPECT_TRUE(sheet.isPageBegun());
    EXPECT_EQ(sheet.inkCount(), 0);
}

TEST(HpglPixelPlacement, GridIntersectionTakesADotMore)
{
    PlotSheet grid;
    grid.run("IN;SP1;PU100,116;RR300,300;");
    PlotSheet centred;
    centred.run("IN;SP1;PP1;PU100,116;RR300,300;");
    EXPECT_EQ(centred.inkCount(), 900);
    EXPECT_GT(grid.inkCount(), 900);
    EXPECT_TRUE(centred.gridCentred);
}

TEST(HpglScreenedVectors, ThinOutLinesButNotFills)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PW10;SV1,25;PU100,300;PD900,300;PU100,600;FT1;RR800,300;");
    const int line = sheet.inkCount(120, 110, 880, 490);
    EXPECT_NEAR(line / (76.0 * 38), 0.25, 0.05);
    EXPECT_TRUE(sheet.hasLine(455, 755));
    EXPECT_TRUE(sheet.hasLine(465, 755));
}

TEST(HpglColour, MonochromePagesShowEveryPenBlack)
{
    PlotSheet sheet;
    sheet.run("IN;SP4;PW3;PU100,500;PD900,500;PU;"); // yellow
    EXPECT_EQ(sheet.inkCount(200, 460, 800, 540), 60 * 8);
}

} // namespace
} // namespace quillrip::test
