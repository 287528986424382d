// Raster between the vectors of a plot (HP RTL): the plot file's page rules, PCL's raster.

#include "quillrip/pcl/plotter_raster.h"

#include "quillrip/fonts/font_library.h"
#include "quillrip/hpgl/plot_file.h"
#include "tests/pcl/printer.h"
#include "tests/support/recording_sink.h"

#include <gtest/gtest.h>

namespace quillrip::test {
namespace {

using hpgl::Environment;
using hpgl::PlotFile;

constexpr Rgb kRed { 255, 0, 0 };
constexpr Rgb kBlue { 0, 0, 255 };

/// A plot at 100 dpi: 254 plotter units are 25 pixels.
class Plotted {
public:
    explicit Plotted(
        const std::string& plot, PixelFormat format = PixelFormat::Rgb24, const Environment& environment = {})
        : device(format, 100)
    {
        MemoryInputStream input({ reinterpret_cast<const std::uint8_t*>(plot.data()), plot.size() });
        FontLibrary fonts;
        const Limits limits;
        PlotFile file(device, fonts, diagnostics, limits, environment, [&limits](FontLibrary& f, DiagnosticSink& sink) {
            return std::make_unique<pcl::PlotterRaster>(f, sink, limits);
        });
        end = file.run(input);
        status = file.status();
    }

    std::size_t pages() const { return device.pages().size(); }
    const PageBitmap& page(std::size_t index = 0) const { return device.pages().at(index); }
    Rgb color(int x, int y, std::size_t index = 0) const { return page(index).pixel(x, y); }
    std::string art(const PixelRect& rect, std::size_t index = 0) const { return device.textArt(index, rect); }

    MemoryPageDevice device;
    RecordingSink diagnostics;
    PlotFile::End end = PlotFile::End::InputEnded;
    RunStatus status = RunStatus::Done;
};

std::string row(const std::string& data) { return command("*b", "W", data); }
std::string plane(const std::string& data) { return command("*b", "V", data); }

/// One inch along the plotter's x axis by half an inch along its y axis: read upright, 50 pixels wide and 100 high.
const std::string kPage = e("%-1B") + "BP;IN;PS1016,508;";
/// To the raster language, with the position at the pen; rows of 8 dots of a pixel each.
const std::string kRaster = e("%1A") + e("*t100R") + e("*r8S") + e("*r1A");
const std::string kEnd = e("*rC");
/// A shape that looks the same from no two sides.
const std::string kShape = row("\xF0") + row("\x80") + row("\x80");
const std::string kShapeArt = "####....\n"
                              "#.......\n"
                              "#.......\n";

TEST(PlotterRaster, RowsRunAlongThePlottersYAxisAndAdvanceAlongItsXAxis)
{
    const Plotted plotted(kPage + "PU0,0;" + kRaster + kShape + kEnd + e("%0B") + "PG;");
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_EQ(plotted.page().width(), 50);
    EXPECT_EQ(plotted.page().height(), 100);
    EXPECT_EQ(plotted.art({ 0, 0, 8, 3 }), kShapeArt);
    EXPECT_EQ(plotted.device.blackPixelCount(0), 6u);
    EXPECT_TRUE(plotted.diagnostics.empty());
}

TEST(PlotterRaster, APlotThatIsWiderThanLongLiesAcross)
{
    const Plotted plotted(e("%-1B") + "IN;PS508,1016;" + kRaster + kShape + kEnd);
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_EQ(plotted.page().width(), 100);
    EXPECT_EQ(plotted.page().height(), 50);
    EXPECT_EQ(plotted.art({ 0, 0, 8, 3 }), kShapeArt);
}

TEST(PlotterRaster, ThePenIsTheOrigin)
{
    const Plotted plotted(kPage + "PU508,254;" + kRaster + kShape + kEnd);
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_EQ(plotted.art({ 25, 50, 33, 53 }), kShapeArt);
    EXPECT_EQ(plotted.device.blackPixelCount(0), 6u);
}

TEST(PlotterRaster, VectorsLieWhereTheRasterIs)
{
    // The filled square's corner with the least x and y is the pen of the raster.
    const std::string square = "SP1;PU254,254;RA508,508;";
    const Plotted plotted(kPage + square + "SP2;NP8;PU254,254;" + kRaster + row("\xFF") + kEnd);
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_EQ(plotted.color(27, 27), kBlack);
    EXPECT_EQ(plotted.color(48, 48), kBlack);
    EXPECT_EQ(plotted.color(23, 27), kWhite);
    EXPECT_EQ(plotted.color(27, 23), kWhite);
    EXPECT_EQ(plotted.color(27, 53), kWhite);
}

TEST(PlotterRaster, RotationTurnsTheVectorsAndNotTheRaster)
{
    // Under RO90 and IP the point (0, 0) is at the largest x and the least y: the lower left corner as read.
    const Plotted plotted(kPage + "RO90;IP;SP1;PU0,0;RA254,254;PU0,508;" + kRaster + kShape + kEnd);
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_EQ(plotted.page().width(), 50);
    EXPECT_EQ(plotted.color(2, 97), kBlack);
    EXPECT_EQ(plotted.color(22, 77), kBlack);
    EXPECT_EQ(plotted.color(28, 97), kWhite);
    // The pen, half an inch up, is half an inch down the page.
    EXPECT_EQ(plotted.art({ 0, 50, 8, 53 }), kShapeArt);
}

TEST(PlotterRaster, EvenEntryGoesOnWhereTheRasterEnded)
{
    const Plotted plotted(kPage + "PU254,254;" + kRaster + row("\xFF") + kEnd + e("%0B") + "PU0,0;" + e("%0A")
        + e("*p25X") + e("*r1A") + row("\xF0") + kEnd);
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_EQ(plotted.art({ 25, 25, 33, 27 }), "########\n####....\n");
    EXPECT_EQ(plotted.device.blackPixelCount(0), 12u);
}

TEST(PlotterRaster, OddReturnTakesThePenToTheEndOfTheRaster)
{
    // 25 rows further on, an area begins where the pen then is.
    const Plotted plotted(
        kPage + "SP1;PU254,254;" + kRaster + row("\x80") + e("*b24Y") + kEnd + e("*p25X") + e("%1B") + "RR254,127;");
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_EQ(plotted.color(25, 25), kBlack);
    EXPECT_EQ(plotted.color(27, 48), kWhite);
    EXPECT_EQ(plotted.color(27, 52), kBlack);
    EXPECT_EQ(plotted.color(35, 73), kBlack);
    EXPECT_EQ(plotted.color(27, 77), kWhite);
    EXPECT_EQ(plotted.color(40, 52), kWhite);
}

TEST(PlotterRaster, AllMethodsMakeTheSameRows)
{
    const std::string want = "########\n####....\n";
    const auto art = [](const std::string& method, const std::string& first, const std::string& second) {
        const Plotted plotted(kPage + kRaster + e("*b" + method + "M") + first + second + kEnd);
        EXPECT_EQ(plotted.pages(), 1u);
        EXPECT_TRUE(plotted.diagnostics.empty());
        return plotted.art({ 0, 0, 8, 2 });
    };
    EXPECT_EQ(art("0", row("\xFF"), row("\xF0")), want);
    EXPECT_EQ(art("1", row(bytes({ 0, 0xFF })), row(bytes({ 0, 0xF0 }))), want);
    EXPECT_EQ(art("2", row(bytes({ 0, 0xFF })), row(bytes({ 0, 0xF0 }))), want);
    EXPECT_EQ(art("3", row(bytes({ 0, 0xFF })), row(bytes({ 0, 0xF0 }))), want);
    EXPECT_EQ(art("9", row(bytes({ 0, 0xFF })), row(bytes({ 0, 0xF0 }))), want);
    EXPECT_EQ(art("5", row(bytes({ 0, 0, 1, 0xFF, 0, 0, 1, 0xF0 })), {}), want);
}

TEST(PlotterRaster, TheReservedMethodMakesNoRow)
{
    const Plotted plotted(kPage + kRaster + row("\xFF") + e("*b4M") + row("\xFF") + e("*b0M") + row("\xF0") + kEnd);
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_EQ(plotted.art({ 0, 0, 8, 2 }), "########\n####....\n");
}

TEST(PlotterRaster, PlanesAreColoursOfTheConfiguredSpace)
{
    const std::string configured = e("%1A") + command("*v", "W", bytes({ 0, 0, 3, 8, 8, 8 })) + e("*t100R") + e("*r8S")
        + e("*r1A") + plane("\xF0") + plane("\xC0") + row("\xC0") + kEnd;
    const Plotted plotted(kPage + configured);
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_EQ(plotted.color(0, 0), kWhite);
    EXPECT_EQ(plotted.color(2, 0), kRed);
    EXPECT_EQ(plotted.color(4, 0), kBlack);
    EXPECT_EQ(plotted.color(8, 0), kWhite);
}

TEST(PlotterRaster, SimpleColoursAndDirectPixels)
{
    const Plotted simple(kPage + e("%1A") + e("*r-3U") + e("*t100R") + e("*r8S") + e("*r1A") + plane("\x80")
        + plane("\xC0") + row("\x00") + kEnd);
    ASSERT_EQ(simple.pages(), 1u);
    EXPECT_EQ(simple.color(0, 0), kBlue);
    EXPECT_EQ(simple.color(1, 0), (Rgb { 255, 0, 255 }));
    EXPECT_EQ(simple.color(2, 0), kWhite);

    const Plotted direct(kPage + e("%1A") + command("*v", "W", bytes({ 0, 3, 0, 8, 8, 8 })) + e("*t100R") + e("*r2S")
        + e("*r1A") + row(bytes({ 10, 20, 30, 255, 0, 0 })) + kEnd);
    ASSERT_EQ(direct.pages(), 1u);
    EXPECT_EQ(direct.color(0, 0), (Rgb { 10, 20, 30 }));
    EXPECT_EQ(direct.color(1, 0), kRed);
}

TEST(PlotterRaster, OnePlaneTakesTheFirstTwoPens)
{
    const Plotted plotted(kPage + "PC1,0,0,255;" + kRaster + row("\xF0") + kEnd);
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_EQ(plotted.color(0, 0), kBlue);
    EXPECT_EQ(plotted.color(4, 0), kWhite);
}

TEST(PlotterRaster, PensFollowThePaletteOfTheRaster)
{
    // A palette of two colours, the second of them red, is pen 1's too.
    const std::string palette = command("*v", "W", bytes({ 0, 1, 1, 8, 8, 8 })) + e("*v255a0b0c1I");
    const Plotted plotted(kPage + e("%1A") + palette + e("%0B") + "SP1;PU0,0;RA254,254;");
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_EQ(plotted.color(10, 40), kRed);
}

TEST(PlotterRaster, ColoursOfTheRasterOutliveVectorsThatLeaveThemAlone)
{
    const std::string configured = command("*v", "W", bytes({ 0, 3, 8, 8, 8, 8 }));
    const std::string pixel = kRaster + row(bytes({ 10, 20, 30 })) + kEnd;
    const Plotted left(kPage + e("%1A") + configured + e("%0B") + "SP7;PU0,0;" + pixel);
    ASSERT_EQ(left.pages(), 1u);
    EXPECT_EQ(left.color(0, 0), (Rgb { 10, 20, 30 }));
    // New pens are another palette, of one plane here.
    const Plotted replaced(kPage + e("%1A") + configured + e("%0B") + "IN;PU0,0;" + pixel);
    ASSERT_EQ(replaced.pages(), 1u);
    EXPECT_EQ(replaced.color(0, 0), kWhite);
    EXPECT_EQ(replaced.color(4, 0), kBlack);
}

TEST(PlotterRaster, LogicalOperationIsSharedWithTheVectors)
{
    // 85 turns the destination over, whatever is drawn.
    const Plotted byVector(kPage + "SP1;PU0,0;RA254,254;MC1,85;" + kRaster + row("\xFF") + kEnd, PixelFormat::Bilevel);
    ASSERT_EQ(byVector.pages(), 1u);
    EXPECT_EQ(byVector.art({ 0, 0, 10, 2 }), "........##\n##########\n");
    const Plotted byRaster(
        kPage + "SP1;PU0,0;RA254,254;" + e("%1A") + e("*l85O") + e("%0B") + "PU0,0;RA254,254;", PixelFormat::Bilevel);
    ASSERT_EQ(byRaster.pages(), 1u);
    EXPECT_EQ(byRaster.color(10, 40), kWhite);
}

TEST(PlotterRaster, MovesCountTheRastersDots)
{
    const Plotted plotted(
        kPage + e("%1A") + e("*t50R") + e("*r8S") + e("*p5x10Y") + e("*p+3X") + e("*r1A") + row("\x80") + kEnd);
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_EQ(plotted.art({ 15, 19, 19, 23 }), "....\n.##.\n.##.\n....\n");
    const Plotted negative(kPage + "PU254,254;" + e("%1A") + e("&a0N") + e("*t100R") + e("*r8S") + e("*p-10x-5Y")
        + e("*r1A") + row("\xFF") + kEnd);
    ASSERT_EQ(negative.pages(), 1u);
    EXPECT_EQ(negative.art({ 14, 19, 24, 21 }), "..........\n.########.\n");
}

TEST(PlotterRaster, RasterMayBeginBeyondTheEdges)
{
    const Plotted plotted(kPage + "PU-254,-254;" + e("%1A") + e("*t100R") + e("*r32S") + e("*r1A")
        + row("\xFF\xFF\xFF\xFF") + e("*b24Y") + row("\xFF\xFF\xFF\xFF") + kEnd);
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_EQ(plotted.art({ 0, 0, 9, 2 }), "#######..\n.........\n");
    EXPECT_EQ(plotted.device.blackPixelCount(0), 7u);
}

TEST(PlotterRaster, EveryPageHasItsOwn)
{
    const std::string page = "BP;IN;PS1016,508;PU0,0;" + kRaster + kShape + kEnd + e("%0B") + "PG;";
    const std::string wide = "BP;IN;PS508,1016;PU0,0;" + kRaster + row("\xFF") + kEnd + e("%0B") + "PG;";
    const Plotted plotted(e("%-1B") + page + wide + "BP;IN;PS1016,508;SP1;PU0,0;PD508,0;PG;");
    ASSERT_EQ(plotted.pages(), 3u);
    EXPECT_EQ(plotted.art({ 0, 0, 8, 3 }, 0), kShapeArt);
    EXPECT_EQ(plotted.page(1).width(), 100);
    EXPECT_EQ(plotted.art({ 0, 0, 8, 1 }, 1), "########\n");
    EXPECT_EQ(plotted.page(2).width(), 100);
}

TEST(PlotterRaster, WithoutASizeTheSheetHoldsTheRaster)
{
    const std::string plot = e("%-1B") + "IN;PU0,0;" + e("%1A") + e("*t100R") + e("*r700S") + e("*r1A") + row("\xFF")
        + e("*b1000Y") + row("\xFF") + kEnd;
    const Plotted metric(plot);
    ASSERT_EQ(metric.pages(), 1u);
    EXPECT_NEAR(metric.page().width(), 827, 1);
    EXPECT_NEAR(metric.page().height(), 1169, 1);
    EXPECT_EQ(metric.art({ 0, 0, 8, 1 }), "########\n");
    EXPECT_EQ(metric.art({ 0, 1001, 8, 1002 }), "########\n");

    // Longer than a sheet of A4: the next one, and the raster still at its upper left.
    const Plotted longer(e("%-1B") + "IN;PU0,0;" + e("%1A") + e("*t100R") + e("*r700S") + e("*r1A") + row("\xFF")
        + e("*b1500Y") + row("\xFF") + kEnd);
    ASSERT_EQ(longer.pages(), 1u);
    EXPECT_NEAR(longer.page().height(), 1654, 1);
    EXPECT_EQ(longer.art({ 0, 0, 8, 1 }), "########\n");
    EXPECT_EQ(longer.art({ 0, 1501, 8, 1502 }), "########\n");
}

TEST(PlotterRaster, ThePaperOfTheJobIsFedAsTheRasterNeedsIt)
{
    Environment paper;
    paper.paperWidth = 8419;
    paper.paperHeight = 5953;
    const std::string wide = e("%-1B") + "IN;PS8400,11880;" + kRaster + kShape + kEnd;
    const Plotted across(wide, PixelFormat::Bilevel, paper);
    ASSERT_EQ(across.pages(), 1u);
    EXPECT_NEAR(across.page().width(), 1169, 1);
    const Plotted upright(e("%-1B") + "IN;PS11880,8400;" + kRaster + kShape + kEnd, PixelFormat::Bilevel, paper);
    ASSERT_EQ(upright.pages(), 1u);
    EXPECT_NEAR(upright.page().width(), 827, 1);
}

TEST(PlotterRaster, ARasterWithoutWidthIsAsWideAsThePlot)
{
    const Plotted plotted(
        kPage + e("%1A") + e("*t100R") + e("*r1A") + row("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF") + kEnd);
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_EQ(plotted.device.blackPixelCount(0), 50u);
}

TEST(PlotterRaster, DataMayLookLikeCommands)
{
    // The second row of the combined sequence holds a reset and an exit.
    const std::string tricky = e("E") + e("%-12345X");
    const Plotted plotted(kPage + e("%1A") + e("*t100R") + e("*r88S") + e("*r1A") + e("*b0m2w") + "\xFF\xFF"
        + std::to_string(tricky.size()) + "w" + tricky + "1W" + "\xFF" + kEnd + e("%0B") + "SP1;PU762,0;RA1016,254;");
    EXPECT_EQ(plotted.end, PlotFile::End::InputEnded);
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_EQ(plotted.art({ 0, 2, 10, 3 }), "########..\n");
    EXPECT_EQ(plotted.color(10, 90), kBlack);
}

TEST(PlotterRaster, ADestinationHeightHasNoData)
{
    // ESC*t#V and ESC&a#V end like a transfer of a plane.
    const Plotted plotted(kPage + e("%1A") + e("*t100R") + e("*t720V") + e("&a180V") + e("*r8S") + e("*r1A")
        + row("\xFF") + kEnd + e("E") + "SP1;PU0,0;RA254,254;");
    EXPECT_EQ(plotted.end, PlotFile::End::Reset);
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_EQ(plotted.art({ 0, 24, 8, 26 }), "........\n########\n");
    EXPECT_EQ(plotted.device.blackPixelCount(0), 8u);
}

TEST(PlotterRaster, ScalesToADestination)
{
    const Plotted plotted(
        kPage + e("%1A") + e("*r2S") + e("*r1T") + e("*t72H") + e("*t36V") + e("*r3A") + row("\x80") + kEnd);
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_EQ(plotted.art({ 0, 0, 7, 6 }), "#####..\n#####..\n#####..\n#####..\n#####..\n.......\n");
}

TEST(PlotterRaster, WhatPrintersDoBesidesRasterIsPassedOver)
{
    const Plotted plotted(kPage + "PU0,0;" + e("%1A") + e("&l1o26A") + "Text\r\n\f" + e("&a90P") + e("*t100R")
        + e("(s0P") + e("*c100a100b0P") + e("*r8S") + e("*r1A") + kShape + kEnd);
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_EQ(plotted.art({ 0, 0, 8, 3 }), kShapeArt);
    EXPECT_EQ(plotted.device.blackPixelCount(0), 6u);
}

TEST(PlotterRaster, RasterMaySetItselfUpBeforeThePlotBegins)
{
    const Plotted plotted(e("*rbC") + e("*t50R") + e("*r8S") + e("%0B") + "BP5,1PS1016,508PUPA0,0" + e("%1A")
        + e("&a1N") + e("*r1A") + row("\x80") + e("*rbC") + e("%0B") + "PG;");
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_EQ(plotted.art({ 0, 0, 3, 3 }), "##.\n##.\n...\n");
    EXPECT_TRUE(plotted.diagnostics.empty());
}

TEST(PlotterRaster, VectorsGoOnBehindRasterCommandsThatNoSwitchAnnounced)
{
    const Plotted plotted(e("*t100R") + e("&a1N") + "\r\nIN;PS1016,508;SP1;PU0,0;RA254,254;");
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_EQ(plotted.page().width(), 100);
    EXPECT_EQ(plotted.color(10, 40), kBlack);
}

TEST(PlotterRaster, RasterAloneIsAPlotToo)
{
    const Plotted plotted(e("*t100R") + e("*r800s1A") + kShape + kEnd);
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_NEAR(plotted.page().width(), 827, 1);
    EXPECT_EQ(plotted.art({ 0, 0, 8, 3 }), kShapeArt);
}

TEST(PlotterRaster, DataThatAreCutLoseTheOpenPageOnly)
{
    const Plotted plotted(kPage + "PU0,0;" + kRaster + kShape + kEnd + e("%0B") + "PG;PU0,0;" + kRaster + row("\xFF")
        + e("*b100W") + "\xFF");
    EXPECT_EQ(plotted.end, PlotFile::End::Failed);
    EXPECT_EQ(plotted.status, RunStatus::Damaged);
    EXPECT_EQ(plotted.pages(), 1u);
    EXPECT_TRUE(plotted.diagnostics.has("pcl.input-cut"));
}

TEST(PlotterRaster, UnknownMethodsAreReported)
{
    const Plotted plotted(kPage + kRaster + row("\xFF") + e("*b77M") + row("\xFF") + kEnd);
    ASSERT_EQ(plotted.pages(), 1u);
    EXPECT_TRUE(plotted.diagnostics.has("pcl.raster-method"));
    EXPECT_EQ(plotted.device.blackPixelCount(0), 8u);
}

} // namespace
} // namespace quillrip::test
