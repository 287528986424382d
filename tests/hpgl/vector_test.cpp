#include "tests/hpgl/plot_sheet.h"

#include <gtest/gtest.h>

namespace quillrip::test {
namespace {

using End = hpgl::Interpreter::End;

/// PE numbers of plain integers, base 64.
std::string encoded(std::initializer_list<int> numbers)
{
    std::string text;
    for (const int number : numbers) {
        unsigned value = static_cast<unsigned>(number < 0 ? -number * 2 + 1 : number * 2);
        while (value >= 64) {
            text.push_back(static_cast<char>(63 + value % 64));
            value /= 64;
        }
        text.push_back(static_cast<char>(191 + value));
    }
    return text;
}

TEST(HpglVectors, NothingIsDrawnBeforeAPenIsSelected)
{
    PlotSheet sheet;
    sheet.run("IN;PU100,500;PD400,500;SP1;PD700,500;");
    EXPECT_FALSE(sheet.hasInk(250, 505));
    EXPECT_TRUE(sheet.hasLine(550, 505));
}

TEST(HpglVectors, MovesAloneBeginNoPage)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PU100,500;PA200,200;PG;SP0;");
    EXPECT_FALSE(sheet.isPageBegun());
}

TEST(HpglVectors, RelativeMovesStartAtThePen)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PU100,100;PR;PD300,0,0,300;PU;");
    EXPECT_TRUE(sheet.hasLine(250, 105));
    EXPECT_TRUE(sheet.hasLine(400, 255));
    EXPECT_FALSE(sheet.hasInk(250, 305));
}

TEST(HpglVectors, AnUnpairedCoordinateIsDropped)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PU100,100;PD300,100,300;PU;");
    EXPECT_TRUE(sheet.hasLine(200, 105));
    EXPECT_FALSE(sheet.hasInk(300, 205));
}

TEST(HpglVectors, TerseSyntaxEqualsTheFullOne)
{
    PlotSheet terse;
    PlotSheet full;
    terse.run("INSP1PW1PU100 100PD300-0 300 500PU");
    full.run("IN; SP 1; PW 1; PU 100,100; PD 300,0,300,500; PU;");
    EXPECT_GT(full.inkCount(), 50);
    for (double y = 0; y < 1016; y += 10) {
        for (double x = 0; x < 1016; x += 10)
            ASSERT_EQ(terse.hasInk(x, y), full.hasInk(x, y)) << x << ' ' << y;
    }
}

TEST(HpglVectors, PenWidthIsInMillimetres)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PW5;PU100,500;PD900,500;PU;"); // 200 units
    EXPECT_TRUE(sheet.hasLine(500, 590));
    EXPECT_TRUE(sheet.hasLine(500, 410));
    EXPECT_FALSE(sheet.hasInk(500, 615));
    EXPECT_FALSE(sheet.hasInk(500, 385));
}

TEST(HpglVectors, RelativePenWidthFollowsTheScalingPoints)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;WU1;PW10;IP0,0,300,400;PU100,700;PD900,700;PU;"); // 10 percent of 500
    EXPECT_TRUE(sheet.hasLine(500, 720));
    EXPECT_FALSE(sheet.hasInk(500, 740));
}

TEST(HpglVectors, PenWidthsBelongToPens)
{
    PlotSheet sheet;
    sheet.run("IN;PW.1;PW5,2;SP1;PU100,300;PD900,300;SP2;PU100,700;PD900,700;PU;");
    EXPECT_FALSE(sheet.hasInk(500, 350));
    EXPECT_TRUE(sheet.hasLine(500, 750));
}

TEST(HpglVectors, AMoveOfNoLengthIsADot)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PW2;PU500,500;PD500,500;PU;");
    EXPECT_TRUE(sheet.hasLine(505, 505));
    EXPECT_LE(sheet.inkCount(), 100);
}

TEST(HpglVectors, LoweringAndRaisingThePenIsADot)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PW2;PU500,500;PD;PU;");
    EXPECT_TRUE(sheet.hasLine(505, 505));
}

TEST(HpglVectors, ManyCoordinatesInOneCommandAreAllDrawn)
{
    std::string commands = "IN;SP1;PW.1;PU0,5;PD";
    for (int i = 0; i < 20000; ++i)
        commands += std::to_string(i % 2 ? 0 : 900) + "," + std::to_string(i / 20) + ",";
    PlotSheet sheet;
    sheet.run(commands + ";");
    EXPECT_TRUE(sheet.hasLine(450, 5));
    EXPECT_TRUE(sheet.hasLine(450, 995));
}

TEST(HpglEncoded, PairsAreRelativeAndDrawnUnlessFlagged)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PA0,0;PE<=" + encoded({ 200, 300 }) + encoded({ 400, 0 }) + ";PD600,900;");
    EXPECT_FALSE(sheet.hasInk(100, 155));
    EXPECT_TRUE(sheet.hasLine(400, 300));
    EXPECT_TRUE(sheet.hasLine(600, 600)); // PA is still in force
}

TEST(HpglEncoded, SevenBitNumbersHaveBaseThirtyTwo)
{
    // 300 is 600 in the code: 24 + 18 * 32; 0 is 0.
    PlotSheet sheet;
    std::string pair;
    pair.push_back(static_cast<char>(63 + 24));
    pair.push_back(static_cast<char>(95 + 18));
    pair.push_back(static_cast<char>(95));
    sheet.run("IN;SP1;PU100,500;PE7" + pair + ";PU;");
    EXPECT_TRUE(sheet.hasLine(390, 505));
    EXPECT_FALSE(sheet.hasInk(420, 505));
}

TEST(HpglEncoded, FractionBitsDivideCoordinates)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PU100,500;PE>" + encoded({ 3 }) + encoded({ 2400, 0 }) + ";PU;");
    EXPECT_TRUE(sheet.hasLine(390, 505));
    EXPECT_FALSE(sheet.hasInk(420, 505));
}

TEST(HpglEncoded, PensAreSelectedAndLineEndsIgnored)
{
    PlotSheet sheet(PixelFormat::Rgb24);
    sheet.run("IN;SP1;PU100,500;PE:" + encoded({ 2 }) + "\r\n" + encoded({ 300 }) + "\n" + encoded({ 0 }) + ";PU;");
    EXPECT_EQ(sheet.color(250, 503), (Rgb { 255, 0, 0 }));
}

TEST(HpglEncoded, EscapeEndsTheCommand)
{
    PlotSheet sheet;
    EXPECT_EQ(sheet.run("IN;SP1;PU100,500;PE" + encoded({ 300, 0 }) + "\x1b%0A"), End::EnterPcl);
    EXPECT_TRUE(sheet.hasLine(250, 505));
}

TEST(HpglCurves, AnArcTurnsCounterClockwiseForPositiveAngles)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PU800,500;PD;AA500,500,90;PU;");
    EXPECT_TRUE(sheet.hasLine(500 + 212, 500 + 212));
    EXPECT_TRUE(sheet.hasLine(505, 800));
    EXPECT_FALSE(sheet.hasInk(500 + 212, 500 - 212));
}

TEST(HpglCurves, AnArcThroughThreePointsPassesTheMiddleOne)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PU200,500;PD;AT500,200,800,500;PU;");
    EXPECT_TRUE(sheet.hasLine(500, 200));
    EXPECT_FALSE(sheet.hasInk(500, 800));
    EXPECT_TRUE(sheet.hasLine(500 - 212, 500 - 212));
}

TEST(HpglCurves, PenUpArcsOnlyMove)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PU800,500;AA500,500,90;PD500,900;PU;");
    EXPECT_FALSE(sheet.hasInk(500 + 212, 500 + 212));
    EXPECT_TRUE(sheet.hasLine(500, 850));
}

TEST(HpglCurves, CirclesDrawWhateverThePenStateAndReturn)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PU500,500;CI300;PD500,900;PU;");
    EXPECT_TRUE(sheet.hasLine(800, 500));
    EXPECT_TRUE(sheet.hasLine(200, 500));
    EXPECT_TRUE(sheet.hasLine(500, 850));
    EXPECT_FALSE(sheet.hasInk(650, 500));
}

TEST(HpglCurves, ALargeChordAngleMakesAPolygon)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PU500,500;CI300,90;");
    EXPECT_TRUE(sheet.hasLine(650, 650)); // the middle of a chord
    EXPECT_FALSE(sheet.hasInk(500 + 212, 500 + 212));
}

TEST(HpglCurves, LaterRelativeCurvesStartAtTheEndOfTheFirst)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PU100,100;PD;BR100,0,200,0,300,0,100,0,200,0,300,0;PU;");
    EXPECT_TRUE(sheet.hasLine(390, 105));
    EXPECT_TRUE(sheet.hasLine(690, 105));
    EXPECT_FALSE(sheet.hasInk(750, 105));
}

TEST(HpglSwitch, EachWayOutIsTold)
{
    PlotSheet sheet;
    EXPECT_EQ(sheet.run("IN;SP1"), End::InputEnded);
    EXPECT_EQ(sheet.run("PU\x1b%1A"), End::EnterPcl);
    EXPECT_EQ(sheet.interpreter().enterPclValue(), 1);
    EXPECT_EQ(sheet.run("\x1b%0B\x1b%-12345X"), End::UniversalExit);
    EXPECT_EQ(sheet.run("PD\x1b"
                        "E"),
        End::Reset);
}

TEST(HpglSwitch, StateSurvivesDozensOfVisits)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;PW2;PR;SC0,2,0,-2,2;IR0,100,0,100;\x1b%0A");
    for (int i = 0; i < 40; ++i) {
        sheet.interpreter().setPen({ 100 + i * 10.0, 100 + i * 10.0 });
        EXPECT_EQ(sheet.run("PD10,0;\x1b%0A"), End::EnterPcl);
    }
    // 100 decipoints are 141 units; the scale doubles and points down.
    EXPECT_TRUE(sheet.hasLine(150, 1016 - 141));
    EXPECT_TRUE(sheet.hasLine(145 + 390 * 1.411, 1016 - 141 - 390 * 1.411));
    EXPECT_GE(sheet.inkCount(), 150);
}

TEST(HpglSwitch, ThePenIsTakenOverBothWays)
{
    PlotSheet sheet;
    sheet.interpreter().setPen({ 72, 144 });
    EXPECT_NEAR(sheet.interpreter().pen().x, 72, 1e-9);
    sheet.run("PR1016,0;");
    EXPECT_NEAR(sheet.interpreter().pen().x, 792, 1e-9);
    EXPECT_NEAR(sheet.interpreter().pen().y, 144, 1e-9);
}

TEST(HpglSwitch, AResetForgetsThePenButLeavesTheLogicalOperation)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;");
    sheet.operation = 160; // the page and the pen: one that shows on white paper
    sheet.interpreter().reset();
    sheet.run("PU100,500;PD400,500;PU;");
    EXPECT_EQ(sheet.inkCount(), 0);
    EXPECT_EQ(sheet.operation, 160);
    sheet.run("SP1;PU100,500;PD400,500;PU;");
    EXPECT_GT(sheet.inkCount(), 0);
}

} // namespace
} // namespace quillrip::test
