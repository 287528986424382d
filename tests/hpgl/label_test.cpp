#include "quillrip/hpgl/stick_font.h"
#include "tests/hpgl/plot_sheet.h"

#include <gtest/gtest.h>

namespace quillrip::test {
namespace {

// Capitals of SI.5,.5 are 200 units high and 200 wide; the next one follows 300 units later.
const std::string kStart = "IN;SP1;SI.5,.5;";

TEST(HpglLabel, StandsOnThePenAndMovesIt)
{
    PlotSheet sheet;
    sheet.run(kStart + "PU100,500;LBH\x03PD;PR200,0;PU;");
    EXPECT_TRUE(sheet.hasLine(125, 600)); // the left stem
    EXPECT_TRUE(sheet.hasLine(275, 600)); // the right stem
    EXPECT_FALSE(sheet.hasInk(200, 550));
    EXPECT_FALSE(sheet.hasInk(200, 750));
    EXPECT_TRUE(sheet.hasLine(500, 500)); // the line begins a cell farther
    EXPECT_FALSE(sheet.hasInk(350, 500));
}

TEST(HpglLabel, CentredLabelsReturnToTheirPoint)
{
    PlotSheet sheet;
    sheet.run(kStart + "LO5;PU500,500;LBI\x03LBI\x03LO1;PD;PR0,-300;PU;");
    EXPECT_TRUE(sheet.hasLine(500, 450));
    EXPECT_TRUE(sheet.hasLine(500, 300)); // the line goes down from the middle
    EXPECT_EQ(sheet.inkCount(620, 300, 1000, 700), 0);
}

TEST(HpglLabel, OriginsPlaceTheBox)
{
    struct Row {
        int origin;
        double left, bottom, right, top;
    };
    for (const Row& row : { Row { 1, 500, 500, 700, 700 }, Row { 3, 500, 300, 700, 500 }, Row { 7, 300, 500, 500, 700 },
             Row { 9, 300, 300, 500, 500 }, Row { 4, 400, 500, 600, 700 } }) {
        PlotSheet sheet;
        sheet.run(kStart + "LO" + std::to_string(row.origin) + ";PU500,500;LBH\x03");
        const int inside = sheet.inkCount(row.left - 20, row.bottom - 20, row.right + 20, row.top + 20);
        EXPECT_GT(inside, 40) << row.origin;
        EXPECT_EQ(sheet.inkCount(), inside) << row.origin;
    }
}

/// The leftmost column with ink, in plotter units.
int leftOfInk(PlotSheet& sheet)
{
    for (int x = 0; x < 1020; x += 10) {
        if (sheet.inkCount(x, 0, x + 10, 1016) > 0)
            return x;
    }
    return -1;
}

// A scalable face in 48 points, an I of which has a bearing of several pixels.
const std::string kScalable = "IN;SP1;SD1,21,2,1,4,48,7,4148;SS;PU300,300;";

TEST(HpglLabel, InkOfScalableFacesStartsAtThePoint)
{
    for (const char* origin : { "LO1;", "LO2;", "LO3;" }) {
        PlotSheet sheet;
        sheet.run(kScalable + origin + "LBI\x03");
        EXPECT_NEAR(leftOfInk(sheet), 300, 10) << origin;
    }
}

TEST(HpglLabel, Origin21KeepsTheBearing)
{
    PlotSheet sheet;
    sheet.run(kScalable + "LO21;LBI\x03");
    EXPECT_GT(leftOfInk(sheet), 325);
}

TEST(HpglLabel, CarriageReturnAndLineFeedStartTheNextLine)
{
    PlotSheet sheet;
    sheet.run(kStart + "PU100,700;LBHH\r\nH\x03");
    EXPECT_TRUE(sheet.hasLine(125, 400)); // two capital heights lower
    EXPECT_EQ(sheet.inkCount(330, 280, 1000, 520), 0);
}

TEST(HpglLabel, CharacterPlotMovesByCells)
{
    PlotSheet sheet;
    sheet.run(kStart + "PU100,100;CP1,1;PD;PU;CP;PD;PR100,0;PU;");
    EXPECT_TRUE(sheet.hasLine(400, 500)); // one cell right, one line up
    EXPECT_TRUE(sheet.hasLine(150, 100));
}

TEST(HpglLabel, DirectionTurnsTheBaseline)
{
    PlotSheet sheet;
    sheet.run(kStart + "PU500,200;DI0,1;LBH\x03");
    EXPECT_TRUE(sheet.hasLine(400, 225));
    EXPECT_TRUE(sheet.hasLine(400, 375));
    EXPECT_FALSE(sheet.hasInk(600, 300));
}

TEST(HpglLabel, RelativeSizeAndDirectionFollowTheScalingPoints)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;IP0,0,1000,500;SR20,40;DR0,1;PU500,100;LBH\x03");
    EXPECT_TRUE(sheet.hasLine(400, 125));
    EXPECT_TRUE(sheet.hasLine(400, 275));
}

TEST(HpglLabel, NegativeWidthMirrors)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;SI-.5,.5;PU800,500;LBLL\x03");
    EXPECT_TRUE(sheet.hasLine(775, 600)); // the L's stem is on the right
    EXPECT_TRUE(sheet.hasLine(475, 600));
    EXPECT_EQ(sheet.inkCount(820, 400, 1000, 800), 0);
}

TEST(HpglLabel, TheTerminatorCanBeChanged)
{
    PlotSheet sheet;
    sheet.run(kStart + "DT*,1;PU100,500;LBH*PD;PR200,0;PU;DT;");
    EXPECT_TRUE(sheet.hasLine(500, 500));
    sheet.run("PA;PU100,100;LBH\x03PD;PR200,0;PU;");
    EXPECT_TRUE(sheet.hasLine(500, 100));
}

TEST(HpglLabel, APrintedTerminatorEndsTheLabelAsWell)
{
    PlotSheet sheet;
    sheet.run(kStart + "DT!,0;PU100,500;LB!PU100,100;PD900,100;PU;");
    EXPECT_TRUE(sheet.hasLine(200, 600)); // the exclamation mark
    EXPECT_TRUE(sheet.hasLine(500, 100));
}

TEST(HpglLabel, WithoutTerminatorItEndsWithTheLanguage)
{
    PlotSheet sheet;
    EXPECT_EQ(sheet.run(kStart + "PU100,500;LBHello\x1b%0A"), hpgl::Interpreter::End::EnterPcl);
    EXPECT_EQ(sheet.run("LBHello\x1b%-12345X"), hpgl::Interpreter::End::UniversalExit);
    EXPECT_EQ(sheet.run("LBHello\x1b"
                        "E"),
        hpgl::Interpreter::End::Reset);
}

TEST(HpglLabel, TextPathsStackCharacters)
{
    PlotSheet sheet;
    sheet.run(kStart + "LO3;DV1;PU100,900;LBHH\x03");
    EXPECT_GT(sheet.inkCount(80, 680, 320, 920), 40);
    EXPECT_GT(sheet.inkCount(80, 280, 320, 520), 40); // a line feed of 400 lower
    EXPECT_EQ(sheet.inkCount(330, 0, 1000, 1000), 0);
}

TEST(HpglLabel, ShiftOutTakesTheAlternateFont)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;SD3,3;AD3,6;PU0,500;LB\x0eHH\x0fH\x03PD;PR50,0;PU;");
    // Twice a sixth of an inch and once a third.
    EXPECT_TRUE(sheet.hasLine(2 * 1016 / 6.0 + 1016 / 3.0 + 25, 500));
}

TEST(HpglLabel, SymbolsMarkEveryPoint)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;SI.2,.2;SM+;PU200,500,500,500;SM;PU800,500;");
    EXPECT_TRUE(sheet.hasLine(200, 500));
    EXPECT_TRUE(sheet.hasLine(500, 500));
    EXPECT_EQ(sheet.inkCount(700, 400, 900, 600), 0);
}

TEST(HpglLabel, ScalableFontsAreSelectedByTheirAttributes)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;SD1,277,2,1,4,30,5,0,6,0,7,4148;PU100,500;LBI\x03PD;PR0,-300;PU;");
    EXPECT_GT(sheet.inkCount(90, 480, 400, 850), 20);
}

TEST(HpglStickFont, HasAsciiAndLatinOne)
{
    for (char32_t c = 0x20; c < 0x100; ++c) {
        if (c >= 0x7F && c < 0xA0)
            continue;
        const hpgl::StickGlyph* const glyph = hpgl::stickGlyph(c);
        ASSERT_NE(glyph, nullptr) << static_cast<unsigned>(c);
        EXPECT_EQ(glyph->strokes.empty(), c == 0x20 || c == 0xA0) << static_cast<unsigned>(c);
    }
    EXPECT_EQ(hpgl::stickGlyph(0x4E00), nullptr);
}

TEST(HpglStickFont, StaysWithinItsCell)
{
    for (const char32_t c : hpgl::stickCharacters()) {
        const hpgl::StickGlyph* const glyph = hpgl::stickGlyph(c);
        for (const Point& point : glyph->strokes.points()) {
            EXPECT_GE(point.x, -1) << static_cast<unsigned>(c);
            EXPECT_LE(point.x, 33) << static_cast<unsigned>(c);
            EXPECT_GE(point.y, -11) << static_cast<unsigned>(c);
            EXPECT_LE(point.y, 45) << static_cast<unsigned>(c);
        }
    }
}

} // namespace
} // namespace quillrip::test
