#include "tests/hpgl/plot_bench.h"

#include <gtest/gtest.h>

namespace quillrip::test {
namespace {

TEST(HpglScaling, LaterScalingPointsActOnTheScale)
{
    PlotBench bench;
    bench.run("IN;SP1;SC0,1,0,1;IP100,100,600,600;PU0,0;PD1,1;PU;");
    EXPECT_TRUE(bench.hasLine(350, 350));
    EXPECT_TRUE(bench.hasLine(590, 590));
    EXPECT_FALSE(bench.hasInk(650, 650));
}

TEST(HpglScaling, IsotropicScalesSitWhereTheyAreTold)
{
    PlotBench bench;
    bench.run("IN;SP1;IP0,0,1000,500;SC0,10,0,10,1,0,0;PU0,0;PD10,10;PU;");
    EXPECT_TRUE(bench.hasLine(490, 490));
    EXPECT_FALSE(bench.hasInk(740, 490));
    PlotBench right;
    right.run("IN;SP1;IP0,0,1000,500;SC0,10,0,10,1,100,0;PU0,0;PD10,10;PU;");
    EXPECT_TRUE(right.hasLine(990, 490));
    EXPECT_TRUE(right.hasLine(505, 5));
}

TEST(HpglScaling, PointFactorsMayBeNegative)
{
    PlotBench bench;
    bench.run("IN;SP1;IR0,100,0,100;SC0,10,0,-10,2;PU10,10;PD10,50;PU;");
    EXPECT_TRUE(bench.hasLine(100, 1016 - 300));
    EXPECT_FALSE(bench.hasInk(100, 300));
}

TEST(HpglScaling, DegenerateScalesAreIgnored)
{
    PlotBench bench;
    bench.run("IN;SP1;SC5,5,0,1;PU100,500;PD400,500;PU;");
    EXPECT_TRUE(bench.hasLine(250, 505));
}

TEST(HpglScaling, P2TracksP1)
{
    PlotBench bench;
    bench.run("IN;SP1;IP0,0,400,400;IP300,300;SC0,1,0,1;PU0,0;PD1,1;PU;");
    EXPECT_TRUE(bench.hasLine(690, 690));
    EXPECT_FALSE(bench.hasInk(200, 200));
}

TEST(HpglWindow, CutsLinesAndFillsButNotThePensWay)
{
    PlotBench bench;
    bench.run("IN;SP1;IW300,300,600,600;PU100,450;PD900,450;IW;PD900,900;PU;");
    EXPECT_FALSE(bench.hasInk(200, 455));
    EXPECT_TRUE(bench.hasLine(450, 455));
    EXPECT_FALSE(bench.hasInk(700, 455));
    EXPECT_TRUE(bench.hasLine(900, 700));
}

TEST(HpglWindow, UserWindowsMoveWithTheScalingPointsUntilScaledAnew)
{
    PlotBench bench;
    bench.run("IN;SP1;IP0,0,500,500;SC0,10,0,10;IW0,0,5,5;IP500,500,1000,1000;SC;PU0,600;PD1000,600;PU;");
    EXPECT_FALSE(bench.hasInk(400, 605));
    EXPECT_TRUE(bench.hasLine(600, 605));
    EXPECT_FALSE(bench.hasInk(850, 605));
}

TEST(HpglRotation, TurnsTheAxesIntoTheFrame)
{
    PlotBench bench;
    bench.run("IN;SP1;RO90;IP;SC0,1,0,1;PU0,0;PD.5,0;PU;"); // from the lower right corner up
    EXPECT_TRUE(bench.hasLine(1010, 300));
    EXPECT_FALSE(bench.hasInk(1010, 700));
    EXPECT_FALSE(bench.hasInk(300, 5));
}

TEST(HpglRotation, ThePenStaysWhereItIs)
{
    PlotBench bench;
    bench.run("IN;SP1;PU200,300;RO180;PR;PD300,0;PU;");
    EXPECT_TRUE(bench.hasLine(60, 305)); // +x now runs left
    EXPECT_FALSE(bench.hasInk(350, 305));
}

TEST(HpglFrame, PlotSizeScalesEverything)
{
    PlotBench bench;
    bench.frame.plotWidth = bench.frame.plotHeight = 1440;
    bench.interpreter().plotSizeChanged();
    bench.run("IN;SP1;PW4;PU0,1000;PD2000,1000;PU;");
    EXPECT_TRUE(bench.hasLine(990, 505));
    EXPECT_TRUE(bench.hasLine(500, 530)); // 4 mm become 2
    EXPECT_FALSE(bench.hasInk(500, 555));
}

TEST(HpglFrame, AnotherFrameDefaultsWhatHangsOnIt)
{
    PlotBench bench;
    bench.run("IN;SP1;IP0,0,100,100;SC0,1,0,1;IW0,0,.1,.1;");
    bench.frame.width = 360;
    bench.interpreter().frameChanged();
    bench.run("PU0,0;PD1,1;PU;"); // the scale is still there
    EXPECT_TRUE(bench.hasLine(250, 500));
    EXPECT_TRUE(bench.hasLine(480, 965));
}

TEST(HpglFrame, NothingIsDrawnOutside)
{
    PlotBench bench;
    bench.frame.left = bench.frame.top = 180;
    bench.frame.width = bench.frame.height = 360;
    bench.run("IN;SP1;PU-500,250;PD5000,250;PU;");
    EXPECT_TRUE(bench.hasLine(500, 510));
    EXPECT_FALSE(bench.hasInk(200, 510));
    EXPECT_FALSE(bench.hasInk(800, 510));
}

TEST(HpglInitialise, DefaultsKeepPenAndScalingPointsAndInDoesNot)
{
    PlotBench bench;
    bench.run("IN;SP1;IP0,0,500,500;DF;SC0,1,0,1;PU0,1;PD1,1;PU;");
    EXPECT_TRUE(bench.hasLine(250, 505));
    bench.run("IN;PU0,800;PD1000,800;PU;");
    EXPECT_FALSE(bench.hasInk(250, 805));
}

TEST(HpglPalette, InitialisingMakesEightPens)
{
    PlotBench bench(PixelFormat::Rgb24);
    bench.run("IN;SP5;PW2;PU100,500;PD400,500;SP9;PD700,500;PU;");
    ASSERT_EQ(bench.palette.size(), 8u);
    EXPECT_EQ(bench.color(250, 505), (Rgb { 0, 0, 255 }));
    EXPECT_EQ(bench.color(550, 505), (Rgb { 255, 0, 0 })); // pen 9 of 8 is pen 2
}

TEST(HpglPalette, SizesArePowersOfTwoAndKeepColours)
{
    PlotBench bench;
    bench.run("IN;PC3,10,20,30;NP9;");
    ASSERT_EQ(bench.palette.size(), 16u);
    EXPECT_EQ(bench.palette[3], (Rgb { 10, 20, 30 }));
    EXPECT_EQ(bench.palette[9], (Rgb { 0, 0, 0 }));
    bench.run("NP1;NP-4;");
    EXPECT_EQ(bench.palette.size(), 16u);
    bench.run("PC3;");
    EXPECT_EQ(bench.palette[3], (Rgb { 0, 255, 0 }));
}

TEST(HpglPalette, ColourRangeGivesTheScaleOfColours)
{
    PlotBench bench;
    bench.run("IN;CR0,100,0,1000,255,0;PC2,50,500,255;");
    EXPECT_EQ(bench.palette[2], (Rgb { 128, 128, 0 }));
}

} // namespace
} // namespace quillrip::test
