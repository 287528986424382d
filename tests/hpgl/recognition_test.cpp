#include "quillrip/hpgl/recognition.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace quillrip::hpgl {
namespace {

bool looks(const std::string& text)
{
    return looksLikePlot({ reinterpret_cast<const std::uint8_t*>(text.data()), text.size() });
}

TEST(HpglRecognition, KnowsWhatGeneratorsWrite)
{
    EXPECT_TRUE(looks("BP;IN;PS10668;IP0,0,8128,8128;SC0,10000,0,10000;WU1;SP1;TR0;LT;LA1,4,2,4;"));
    EXPECT_TRUE(looks("IN;SC0,10000,0,7500;SR0.2,0.4;DI0,1;PU100,200;PD300,400;"));
    EXPECT_TRUE(looks("IN;IP0,0,8128,8128;SC0,10000,0,10000;SP1;PA100,100;PD;PA200,200;PU;"));
    EXPECT_TRUE(looks("INNP8SP1SD1,277,2,0;SS;UL2,8,8,9,8;PE<=ab\xc0\xc1;"));
    EXPECT_TRUE(looks(" \r\n;in;sp1;pa 10,10;pd 20,20;"));
    EXPECT_TRUE(looks("BP;IN;\nIP0,8396,11881,0;\nIW0,0,11881,8396;\nSC-3.0126,8.6818,-2.1311,6.1328;\n"));
    EXPECT_TRUE(looks("DF;CO \"made by hand; with care\";SP1;PU0,0;LBany text at all\x03PD1,1;"));
}

TEST(HpglRecognition, InstrumentsBeginAsTheyLike)
{
    const std::string plot = "IN;SP1;PU100,100;PD200,200;PU;";
    EXPECT_TRUE(looks("\x03" + plot));
    EXPECT_TRUE(looks("\x03\x03\x11" + plot));
    EXPECT_TRUE(looks(";;;;" + plot));
    EXPECT_TRUE(looks("OE;" + plot));
    EXPECT_TRUE(looks("OI;OS;SP1;PU100,100;PD200,200;PU;"));
    EXPECT_FALSE(looks("\x03"
                       "Of the beginning, and of lines."));
    EXPECT_FALSE(looks("OE;OI;")); // nothing is drawn
}

TEST(HpglRecognition, DeviceControlsAndPlotterModeDecideAtOnce)
{
    EXPECT_TRUE(looks("\x1b.Y\x1b.I81;;17:"));
    EXPECT_TRUE(looks("\x1b%-1Banything"));
    EXPECT_TRUE(looks("\x1b"
                      "E\x1b%-1BIN"));
}

TEST(HpglRecognition, PclWithPlotsInsideIsNoPlot)
{
    EXPECT_FALSE(looks("\x1b%0BIN;SP1;PU0,0;PD100,100;"));
    EXPECT_FALSE(looks("\x1b%1BIN;SP1;PU0,0;PD100,100;"));
    EXPECT_FALSE(looks("\x1b&l1OIN;SP1;PU0,0;PD100,100;"));
    EXPECT_FALSE(looks("\x1b"
                       "E\x1b&l0OIN;SP1;"));
}

TEST(HpglRecognition, ProseIsText)
{
    EXPECT_FALSE(looks(""));
    EXPECT_FALSE(looks("In the beginning there was a plotter; it drew lines."));
    EXPECT_FALSE(looks("PRICE LIST 2026\r\nSP 100  PEN UP 12.50\r\n"));
    EXPECT_FALSE(looks("PA 19104\r\n"));
    EXPECT_FALSE(looks("PA 19104 Philadelphia\r\nPA 15213 Pittsburgh\r\n"));
    EXPECT_FALSE(looks("SPECIAL OFFER: 10 PENS, 20 PENCILS\n"));
    EXPECT_FALSE(looks("IN;\nOUT;\n1;2;3;4\nSTOCK;ITEM;PRICE\n"));
    EXPECT_FALSE(looks("co author, in print, sp. z o.o., lt. gov.\n"));
    EXPECT_FALSE(looks("IN 12 34\nDF 11 22\nPD HOURS\n"));
    EXPECT_FALSE(looks("INVOICE 4711\n\nRO NO 12, PW 33, LB 44\n"));
}

TEST(HpglRecognition, TextAboutPlotsIsText)
{
    EXPECT_FALSE(looks("The command IN; initialises, SP1; selects a pen, and PD100,100; draws.\n"));
    EXPECT_FALSE(looks("IN initialises the plotter\nSP selects a pen\nPU lifts it\nPD lowers it\n"));
    EXPECT_FALSE(looks("PU;PD;PA;\n- a list of mnemonics\n- without any meaning\n"));
}

TEST(HpglRecognition, CommandsWithoutAnyOperandAreNotEnough)
{
    EXPECT_FALSE(looks("IN;"));
    EXPECT_FALSE(looks("IN;DF;PU;PD;"));
}

bool hasRaster(const std::string& text)
{
    return looksLikeRasterPlot({ reinterpret_cast<const std::uint8_t*>(text.data()), text.size() });
}

/// ESC is written as '@'.
std::string escaped(std::string text)
{
    std::replace(text.begin(), text.end(), '@', '\x1b');
    return text;
}

TEST(HpglRecognition, RasterBehindAPlotsPageIsAPlot)
{
    EXPECT_TRUE(hasRaster(escaped("@*rbC@*t300R@%0BBP5,1PS11176,8636PUPA0,0@%1A@&a1N@*v6W\1\1\3\1\1\1@*r8S@*r1A")));
    EXPECT_TRUE(hasRaster(escaped("@E@%0BBP;IN;PU0,0;@%1A@*r1A@*b1W1@*rC@%0BPG;")));
    EXPECT_TRUE(hasRaster(escaped("@%1BIN;PS6000;PU0,0;@%1A@*b2m1v1w1W")));
    // What a driver leaves behind its reset, with the next page.
    EXPECT_TRUE(hasRaster(escaped("@*rC@%0BPG;@*rbC@*t300R@%0BBP5,1PS11176,8636PUPA0,0@%1A@*r8S@*r1A")));
}

TEST(HpglRecognition, APageOfBothEdgesIsAPlotsWhenItIsLargeOrAPlotBegins)
{
    EXPECT_TRUE(hasRaster(escaped("@E@%0BIN;PS33640,23760;SP1;PU0,0;PD1000,1000;")));
    EXPECT_TRUE(hasRaster(escaped("@%0BBP;IN;PS10000,8000;SP1;PU0,0;")));
    EXPECT_FALSE(hasRaster(escaped("@%0BIN;PS10000,8000;SP1;PU0,0;")));
}

TEST(HpglRecognition, RasterThatNoPrinterIsWideEnoughForIsAPlot)
{
    EXPECT_TRUE(hasRaster(escaped("@E@*t300R@*r10200s1A@*b2W11")));
    EXPECT_FALSE(hasRaster(escaped("@E@*t600R@*r10200s1A@*b2W11")));
    EXPECT_FALSE(hasRaster(escaped("@*rB@*t180R@*r12288S@*r3U@*r1A@*b2W11"))); // nor any plotter
    EXPECT_FALSE(hasRaster(escaped("@E@*t75R@*r2000s1A@*b2W11")));
    EXPECT_FALSE(hasRaster(escaped("@E@*r10200s1A@*b2W11")));
    EXPECT_FALSE(hasRaster(escaped("@E@&l8A@*t300R@*r10200s1A@*b2W11")));
}

TEST(HpglRecognition, PclWithPlotsAndRasterIsPcl)
{
    // Drawing programs send the whole plot to printers too, its page size included.
    EXPECT_FALSE(hasRaster(escaped("@%0B\nBP;IN;PS10668;IP0,1016,8128,9144;SP1;PA0,0;SP0;PG;\n@%0A")));
    EXPECT_FALSE(hasRaster(escaped("@E@%0BIN;SP1;PU0,0;PD100,100;@%0A@*t300R@*r1A@*b1W1@*rB@E")));
    EXPECT_FALSE(hasRaster(escaped("@E@&l26A@%0BBP;IN;PS10668;SP1;@%0A@*r1A@*b1W1")));
    EXPECT_FALSE(hasRaster(escaped("@*t300R@%0BBP;IN;PS10668;@%0A@(10U@*r1A@*b1W1")));
    EXPECT_FALSE(hasRaster(escaped("@*t300R@%0BBP;IN;PS10668;@%0AText@*r1A@*b1W1")));
    EXPECT_FALSE(hasRaster(escaped("@*t300R@*r1A@*b1W1@*rC\f")));
    EXPECT_FALSE(hasRaster("IN;PS33640,23760;PU0,0;"));
    EXPECT_FALSE(hasRaster(""));
}

TEST(HpglRecognition, EveryCutOfARasterPlotIsHarmless)
{
    const std::string plot = escaped("@*rbC@*t300R@%0BBP5,1PS11,8PUPA0,0@%1A@&a1N@*v6W\1\1\3\1\1\1@*b99999W");
    for (std::size_t size = 0; size <= plot.size(); ++size)
        hasRaster(plot.substr(0, size));
}

TEST(HpglRecognition, EveryCutOfAPlotIsHarmless)
{
    const std::string plot = "BP;IN;DT*;LBtext*PE<=ab\xc0\xc1;CO \"x\";SM+;PS1,2;BZ1,2,3,4,5,6;\x1b.Y";
    for (std::size_t size = 0; size <= plot.size(); ++size)
        looks(plot.substr(0, size));
}

} // namespace
} // namespace quillrip::hpgl
