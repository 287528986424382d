#include "tests/hpgl/plot_sheet.h"

#include <gtest/gtest.h>

namespace quillrip::test {
namespace {

TEST(HpglScaling, LaterScalingPointsActOnTheScale)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;SC0,1,0,1;IP100,100,600,600;PU0,0;PD1,1;PU;");
    EXPECT_TRUE(sheet.hasLine(350, 350));
    EXPECT_TRUE(sheet.hasLine(590, 590));
    EXPECT_FALSE(sheet.hasInk(650, 650));
}

TEST(HpglScaling, IsotropicScalesSitWhereTheyAreTold)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;IP0,0,1000,500;SC0,10,0,10,1,0,0;PU0,0;PD10,10;PU;");
    EXPECT_TRUE(sheet.hasLine(490, 490));
    EXPECT_FALSE(sheet.hasInk(740, 490));
    PlotSheet right;
    right.run("IN;SP1;IP0,0,1000,500;SC0,10,0,10,1,100,0;PU0,0;PD10,10;PU;");
    EXPECT_TRUE(right.hasLine(990, 490));
    EXPECT_TRUE(right.hasLine(505, 5));
}

TEST(HpglScaling, PointFactorsMayBeNegative)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;IR0,100,0,100;SC0,10,0,-10,2;PU10,10;PD10,50;PU;");
    EXPECT_TRUE(sheet.hasLine(100, 1016 - 300));
    EXPECT_FALSE(sheet.hasInk(100, 300));
}

TEST(HpglScaling, DegenerateScalesAreIgnored)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;SC5,5,0,1;PU100,500;PD400,500;PU;");
    EXPECT_TRUE(sheet.hasLine(250, 505));
}

TEST(HpglScaling, P2TracksP1)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;IP0,0,400,400;IP300,300;SC0,1,0,1;PU0,0;PD1,1;PU;");
    EXPECT_TRUE(sheet.hasLine(690, 690));
    EXPECT_FALSE(sheet.hasInk(200, 200));
}

TEST(HpglWindow, CutsLinesAndFillsButNotThePensWay)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;IW300,300,600,600;PU100,450;PD900,450;IW;PD900,900;PU;");
    EXPECT_FALSE(sheet.hasInk(200, 455));
    EXPECT_TRUE(sheet.hasLine(450, 455));
    EXPECT_FALSE(sheet.hasInk(700, 455));
    EXPECT_TRUE(sheet.hasLine(900, 700));
}

TEST(HpglWindow, UserWindowsMoveWithTheScalingPointsUntilScaledAnew)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;IP0,0,500,500;SC0,10,0,10;IW0,0,5,5;IP500,500,1000,1000;SC;PU0,600;PD1000,600;PU;");
    EXPECT_FALSE(sheet.hasInk(400, 605));
    EXPECT_TRUE(sheet.hasLine(600, 605));
    EXPECT_FALSE(sheet.hasInk(850, 605));
}

TEST(HpglRotation, TurnsTheAxesIntoTheFrame)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;RO90;IP;SC0,1,0,1;PU0,0;PD.5,0;PU;"); // from the lower right corner up
    EXPECT_TRUE(sheet.hasLine(1010, 300));
    EXPECT_FALSE(sheet.hasInk(1010, 700));
    EXPECT_FALSE(sheet.hasInk(300, 5));
}

TEST(HpglRotation, ThePenStaysWhereItIs)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PU200,300;RO180;PR;PD300,0;PU;");
    EXPECT_TRUE(sheet.hasLine(60, 305)); // +x now runs left
    EXPECT_FALSE(sheet.hasInk(350, 305));
}

TEST(HpglFrame, PlotSizeScalesEverything)
{
    PlotSheet sheet;
    sheet.frame.plotWidth = sheet.frame.plotHeight = 1440;
    sheet.interpreter().plotSizeChanged();
    sheet.run("IN;SP1;PW4;PU0,1000;PD2000,1000;PU;");
    EXPECT_TRUE(sheet.hasLine(990, 505));
    EXPECT_TRUE(sheet.hasLine(500, 530)); // 4 mm become 2
    EXPECT_FALSE(sheet.hasInk(500, 555));
}

TEST(HpglFrame, AnotherFrameDefaultsWhatHangsOnIt)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;IP0,0,100,100;SC0,1,0,1;IW0,0,.1,.1;");
    sheet.frame.width = 360;
    sheet.interpreter().frameChanged();
    sheet.run("PU0,0;PD1,1;PU;"); // the scale is still there
    EXPECT_TRUE(sheet.hasLine(250, 500));
    EXPECT_TRUE(sheet.hasLine(480, 965));
}

TEST(HpglFrame, NothingIsDrawnOutside)
{
    PlotSheet sheet;
    sheet.frame.left = sheet.frame.top = 180;
    sheet.frame.width = sheet.frame.height = 360;
    sheet.run("IN;SP1;PU-500,250;PD5000,250;PU;");
    EXPECT_TRUE(sheet.hasLine(500, 510));
    EXPECT_FALSE(sheet.hasInk(200, 510));
    EXPECT_FALSE(sheet.hasInk(800, 510));
}

TEST(HpglInitialise, DefaultsKeepPenAndScalingPointsAndInDoesNot)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;IP0,0,500,500;DF;SC0,1,0,1;PU0,1;PD1,1;PU;");
    EXPECT_TRUE(sheet.hasLine(250, 505));
    sheet.run("IN;PU0,800;PD1000,800;PU;");
    EXPECT_FALSE(sheet.hasInk(250, 805));
}

TEST(HpglPalette, InitialisingMakesEightPens)
{
    PlotSheet sheet(PixelFormat::Rgb24);
    sheet.run("IN;SP5;PW2;PU100,500;PD400,500;SP9;PD700,500;PU;");
    ASSERT_EQ(sheet.palette.size(), 8u);
    EXPECT_EQ(sheet.color(250, 505), (Rgb { 0, 0, 255 }));
    EXPECT_EQ(sheet.color(550, 505), (Rgb { 255, 0, 0 })); // pen 9 of 8 is pen 2
}

TEST(HpglPalette, SizesArePowersOfTwoAndKeepColours)
{
    PlotSheet sheet;
    sheet.run("IN;PC3,10,20,30;NP9;");
    ASSERT_EQ(sheet.palette.size(), 16u);
    EXPECT_EQ(sheet.palette[3], (Rgb { 10, 20, 30 }));
    EXPECT_EQ(sheet.palette[9], (Rgb { 0, 0, 0 }));
    sheet.run("NP1;NP-4;");
    EXPECT_EQ(sheet.palette.size(), 16u);
    sheet.run("PC3;");
    EXPECT_EQ(sheet.palette[3], (Rgb { 0, 255, 0 }));
}

TEST(HpglPalette, ColourRangeGivesTheScaleOfColours)
{
    PlotSheet sheet;
    sheet.run("IN;CR0,100,0,1000,255,0;PC2,50,500,255;");
    EXPECT_EQ(sheet.palette[2], (Rgb { 128, 128, 0 }));
}

} // namespace
} // namespace quillrip::test
