#include "tests/hpgl/plot_sheet.h"

#include <gtest/gtest.h>

namespace quillrip::test {
namespace {

TEST(HpglPolygon, OpenPolylinesGetNoClosingEdgeButFillClosed)
{
    PlotSheet edged;
    edged.run("IN;SP1;PU100,100;PM0;PD900,100,900,900;PU;PM2;EP;");
    EXPECT_TRUE(edged.hasLine(500, 105));
    EXPECT_TRUE(edged.hasLine(900, 500));
    EXPECT_FALSE(edged.hasInk(500, 505));
    PlotSheet filled;
    filled.run("IN;SP1;PU100,100;PM0;PD900,100,900,900;PU;PM2;FP;");
    EXPECT_TRUE(filled.hasLine(700, 300));
    EXPECT_FALSE(filled.hasInk(300, 700));
}

TEST(HpglPolygon, ClosingWithThePenDownDrawsTheEdge)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PU100,100;PM0;PD900,100,900,900;PM2;PU;EP;");
    EXPECT_TRUE(sheet.hasLine(500, 505));
}

TEST(HpglPolygon, SubpolygonsMakeHoles)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PU100,100;PM0;PD900,100,900,900,100,900;PM1;PU300,300;PD700,300,700,700,300,700;PM2;FP;");
    EXPECT_TRUE(sheet.hasLine(200, 200));
    EXPECT_FALSE(sheet.hasInk(500, 500));
    EXPECT_FALSE(sheet.hasInk(150, 950));
}

TEST(HpglPolygon, CirclesBehindAMoveStandWhereThePenIs)
{
    // As board plots draw their pads: the polygon begins elsewhere, and a move with the pen up leads to the centre.
    PlotSheet sheet;
    sheet.run("IN;SP1;PU100,900;PM0;PU700,300;CI150;PM2;FP;");
    EXPECT_TRUE(sheet.hasInk(700, 300));
    EXPECT_TRUE(sheet.hasInk(815, 305));
    EXPECT_TRUE(sheet.hasInk(585, 305));
    EXPECT_EQ(sheet.inkCount(540, 140, 860, 460), sheet.inkCount()); // and the move is no edge
}

TEST(HpglPolygon, CirclesCloseWhatThePenHasDrawn)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PU100,100;PM0;PD500,100,500,500;CI60;PM2;PU;EP;");
    EXPECT_TRUE(sheet.hasLine(300, 300)); // the closing edge
    EXPECT_TRUE(sheet.hasLine(160, 100));
    EXPECT_TRUE(sheet.hasLine(40, 100)); // round the first point, where that edge has led
    EXPECT_EQ(sheet.inkCount(510, 510, 1000, 1000), 0);
}

TEST(HpglPolygon, CirclesFollowEachOther)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PM0;PU200,200;CI100;PU800,800;CI100;PM2;FP;");
    EXPECT_TRUE(sheet.hasInk(205, 205));
    EXPECT_TRUE(sheet.hasInk(805, 805));
    EXPECT_FALSE(sheet.hasInk(500, 500));
    EXPECT_FALSE(sheet.hasInk(320, 200));
    EXPECT_FALSE(sheet.hasInk(680, 800));
}

TEST(HpglPolygon, WindingFillsWhatEvenOddLeavesOut)
{
    const std::string star = "IN;SP1;PU100,100;PM0;PD900,100,900,900,100,900,100,100,900,100,900,900,100,900;PM2;";
    PlotSheet evenOdd;
    evenOdd.run(star + "FP;");
    EXPECT_FALSE(evenOdd.hasInk(500, 500));
    PlotSheet winding;
    winding.run(star + "FP1;");
    EXPECT_TRUE(winding.hasLine(500, 500));
}

TEST(HpglPolygon, ACircleIsItsOwnSubpolygonWithoutASpike)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PU500,500;PM0;CI300;PM2;FP;EP;");
    EXPECT_TRUE(sheet.hasLine(700, 500));
    EXPECT_TRUE(sheet.hasLine(500, 300));
    EXPECT_FALSE(sheet.hasInk(500 + 250, 500 + 250));
}

TEST(HpglPolygon, OtherCommandsAreIgnoredWhileItIsDefined)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PU100,100;PM0;PW9;SP0;LBtext\x03"
              "PD900,100,900,900;SM*;PM2;FP;");
    EXPECT_TRUE(sheet.hasLine(700, 300));
    PlotSheet width;
    width.run("IN;SP1;PM0;PW9;PM2;PU100,500;PD900,500;PU;");
    EXPECT_FALSE(width.hasInk(500, 600));
}

TEST(HpglPolygon, InitialisingLeavesPolygonMode)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PM0;PD500,500;IN;SP1;PU100,500;PD400,500;PU;");
    EXPECT_TRUE(sheet.hasLine(250, 505));
}

TEST(HpglRectangle, FillsAndEdgesBothWays)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PU100,100;RA400,300;PU500,500;ER200,300;PU600,100;EA900,300;PU100,600;RR200,100;");
    EXPECT_TRUE(sheet.hasLine(250, 200));
    EXPECT_FALSE(sheet.hasInk(600, 650));
    EXPECT_TRUE(sheet.hasLine(600, 500));
    EXPECT_TRUE(sheet.hasLine(700, 650));
    EXPECT_FALSE(sheet.hasInk(750, 200));
    EXPECT_TRUE(sheet.hasLine(750, 300));
    EXPECT_TRUE(sheet.hasLine(200, 650));
}

TEST(HpglRectangle, StaysInTheBufferForItsEdge)
{
    PlotSheet sheet;
    sheet.run("IN;SP0;PU100,100;RA400,400;SP1;EP;");
    EXPECT_TRUE(sheet.hasLine(250, 100));
    EXPECT_FALSE(sheet.hasInk(250, 250));
}

TEST(HpglWedge, TakesStartAndSweep)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PU500,500;WG300,0,90;");
    EXPECT_TRUE(sheet.hasLine(600, 600));
    EXPECT_FALSE(sheet.hasInk(400, 600));
    EXPECT_FALSE(sheet.hasInk(600, 400));
}

TEST(HpglWedge, NegativeRadiusStartsOnTheOtherSide)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PU500,500;WG-300,0,90;");
    EXPECT_TRUE(sheet.hasLine(400, 400));
    EXPECT_FALSE(sheet.hasInk(600, 600));
}

TEST(HpglWedge, AFullOneHasNoRadii)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PU500,500;EW300,0,360;");
    EXPECT_TRUE(sheet.hasLine(800, 505));
    EXPECT_FALSE(sheet.hasInk(650, 505));
}

} // namespace
} // namespace quillrip::test
