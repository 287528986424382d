#include "quillrip/hpgl/plot_file.h"

#include "quillrip/fonts/font_library.h"
#include "quillrip/hpgl/plot_page.h"
#include "tests/hpgl/plot_sheet.h"

#include <gtest/gtest.h>

namespace quillrip::test {
namespace {

using hpgl::Environment;
using hpgl::PlotFile;

/// Prints a plot at 101.6 dpi, where a pixel is ten plotter units.
class Printed {
public:
    explicit Printed(const std::string& plot, Environment environment = {}, Limits limits = {})
        : device(PixelFormat::Bilevel, 101.6)
    {
        MemoryInputStream input({ reinterpret_cast<const std::uint8_t*>(plot.data()), plot.size() });
        FontLibrary fonts;
        PlotFile file(device, fonts, diagnostics, limits, environment);
        end = file.run(input);
        rest = input.offset();
        status = file.status();
    }

    /// Of a page as read, in tenths of plotter units' pixels.
    int width(std::size_t page) const { return device.pages().at(page).width(); }
    int height(std::size_t page) const { return device.pages().at(page).height(); }
    bool hasInk(std::size_t page, double x, double y) const
    {
        const PageBitmap& bitmap = device.pages().at(page);
        const int column = static_cast<int>(x / 10);
        const int row = bitmap.height() - 1 - static_cast<int>(y / 10);
        return column >= 0 && column < bitmap.width() && row >= 0 && row < bitmap.height()
            && bitmap.pixel(column, row) != Rgb { 255, 255, 255 };
    }
    /// Ink there or a pixel beside it.
    bool hasLine(std::size_t page, double x, double y) const
    {
        for (const double dy : { -10.0, 0.0, 10.0 }) {
            for (const double dx : { -10.0, 0.0, 10.0 }) {
                if (hasInk(page, x + dx, y + dy))
                    return true;
            }
        }
        return false;
    }

    MemoryPageDevice device;
    RecordingSink diagnostics;
    PlotFile::End end = PlotFile::End::InputEnded;
    std::uint64_t rest = 0;
    RunStatus status = RunStatus::Done;
};

const std::string kBox = "SP1;PU100,100;PD4000,100,4000,3000,100,3000,100,100;PU;";

TEST(HpglPlotFile, PlotSizeIsTheSheet)
{
    const Printed printed("IN;PS6000,4000;" + kBox + "PG;");
    ASSERT_EQ(printed.device.pages().size(), 1u);
    EXPECT_NEAR(printed.width(0), 600, 1);
    EXPECT_NEAR(printed.height(0), 400, 1);
    EXPECT_TRUE(printed.hasLine(0, 2000, 105));
}

TEST(HpglPlotFile, PlotLengthAloneFindsAStandardSheet)
{
    const Printed printed("IN;PS10668;" + kBox + "PG;");
    ASSERT_EQ(printed.device.pages().size(), 1u);
    EXPECT_NEAR(printed.width(0), 1118, 1);
    EXPECT_NEAR(printed.height(0), 864, 1);
}

TEST(HpglPlotFile, WithoutAWordTheSmallestSheetHoldsTheDrawing)
{
    const Printed small("IN;" + kBox);
    ASSERT_EQ(small.device.pages().size(), 1u);
    EXPECT_NEAR(small.width(0), 1188, 1);
    EXPECT_NEAR(small.height(0), 840, 1);
    const Printed large("IN;SP1;PU0,0;PD15000,11000;");
    ASSERT_EQ(large.device.pages().size(), 1u);
    EXPECT_NEAR(large.width(0), 1680, 1);
    Environment inches;
    inches.prefersMetricPaper = false;
    const Printed letter("IN;" + kBox, inches);
    EXPECT_NEAR(letter.width(0), 1118, 1);
}

TEST(HpglPlotFile, SmallDrawingsBelowZeroAreNotCutOff)
{
    // 1.5 mm would be little of a large drawing; of this one it is a sixth.
    const Printed printed("IN;SP1;PW.1;PU-60,-60;PD300,-60,300,300,-60,300,-60,-60;PU;");
    ASSERT_EQ(printed.device.pages().size(), 1u);
    EXPECT_NEAR(printed.width(0), 116, 2); // the drawing and a margin of a centimetre
    for (const double side : { 405.0, 755.0 }) {
        EXPECT_TRUE(printed.hasLine(0, side, 600)) << side;
        EXPECT_TRUE(printed.hasLine(0, 600, side)) << side;
    }
}

TEST(HpglPlotFile, LargeDrawingsALittleBelowZeroKeepTheirSheetAndAreNotCutOff)
{
    const Printed printed("IN;SP1;PW.1;PU-60,-60;PD9000,-60,9000,7000,-60,7000,-60,-60;PU;");
    ASSERT_EQ(printed.device.pages().size(), 1u);
    EXPECT_NEAR(printed.width(0), 1188, 1);
    EXPECT_NEAR(printed.height(0), 840, 1);
    EXPECT_TRUE(printed.hasLine(0, 5, 3000)); // the left side
    EXPECT_TRUE(printed.hasLine(0, 3000, 5)); // the lower one
    EXPECT_TRUE(printed.hasLine(0, 9060, 3000));
}

TEST(HpglPlotFile, MarksBeforeAnyPenArePenOnes)
{
    const Printed putAway("IN;PU1000,1000;PD3000,1000;PU;SP0;");
    ASSERT_EQ(putAway.device.pages().size(), 1u);
    EXPECT_TRUE(putAway.hasLine(0, 2000, 1000));
    const Printed changed("IN;PU1000,1000;PD3000,1000;PU;SP2;PU1000,2000;PD3000,2000;PU;SP0;");
    ASSERT_EQ(changed.device.pages().size(), 1u);
    EXPECT_TRUE(changed.hasLine(0, 2000, 1000));
    EXPECT_TRUE(changed.hasLine(0, 2000, 2000));
}

TEST(HpglPlotFile, APenThatWasPutAwayDrawsNothing)
{
    const Printed printed("IN;SP1;PU1000,1000;PD3000,1000;PU;SP0;PU1000,2000;PD3000,2000;IN;PU1000,3000;PD3000,3000;");
    ASSERT_EQ(printed.device.pages().size(), 1u);
    EXPECT_TRUE(printed.hasLine(0, 2000, 1000));
    EXPECT_FALSE(printed.hasLine(0, 2000, 2000));
    EXPECT_FALSE(printed.hasLine(0, 2000, 3000)); // IN puts it away too
}

TEST(HpglPlotFile, DrawingsRoundTheOriginHaveItInTheMiddle)
{
    const Printed printed("IN;SP1;PU-5000,-3000;PD5000,3000;");
    ASSERT_EQ(printed.device.pages().size(), 1u);
    EXPECT_NEAR(printed.width(0), 1188, 1);
    EXPECT_TRUE(printed.hasLine(0, 5940, 4200));
}

TEST(HpglPlotFile, LopsidedDrawingsGetAMargin)
{
    const Printed printed("IN;SP1;PW.1;PU-100,5000;PD3000,5000,3000,6000;PU;");
    ASSERT_EQ(printed.device.pages().size(), 1u);
    EXPECT_NEAR(printed.width(0), 390, 2);
    EXPECT_TRUE(printed.hasLine(0, 2000, 405));
}

TEST(HpglPlotFile, ScalingPointsRoundTheDrawingAreTheSheet)
{
    const Printed printed("BP;IN;IP0,8396,11881,0;IW0,0,11881,8396;SC0,10,0,10;SP1;PU1,1;PD2,1;PU;");
    ASSERT_EQ(printed.device.pages().size(), 1u);
    EXPECT_NEAR(printed.width(0), 1188, 1);
    EXPECT_NEAR(printed.height(0), 840, 1);
    EXPECT_TRUE(printed.hasLine(0, 1700, 8396 - 835));
}

TEST(HpglPlotFile, RotatedPlotsStandUpright)
{
    const Printed printed("BP;IN;PS6000,4000;RO90;IP;SC0,4000,0,6000;SP1;PU0,5000;PD3000,5000;PU;PG;");
    ASSERT_EQ(printed.device.pages().size(), 1u);
    EXPECT_NEAR(printed.width(0), 400, 1);
    EXPECT_NEAR(printed.height(0), 600, 1);
    EXPECT_TRUE(printed.hasLine(0, 1500, 5005));
}

TEST(HpglPlotFile, PagesEndWhereTheyAreAdvanced)
{
    const Printed printed("IN;" + kBox + "PG;" + kBox + "AF;PG;SP0;PG;");
    EXPECT_EQ(printed.device.pages().size(), 2u);
}

TEST(HpglPlotFile, EveryPageHasItsOwnSize)
{
    const Printed printed("BP;IN;PS6000,5000;" + kBox + "PG;PS5000,4000;" + kBox + "PG;");
    ASSERT_EQ(printed.device.pages().size(), 2u);
    EXPECT_NEAR(printed.width(0), 600, 1);
    EXPECT_NEAR(printed.width(1), 500, 1);
    EXPECT_TRUE(printed.hasLine(1, 2000, 105));
}

TEST(HpglPlotFile, BeginPlotStartsAnew)
{
    const Printed printed("BP1,\"first; plot\",2,1;" + kBox + "SC0,1,0,1;BP;" + kBox);
    ASSERT_EQ(printed.device.pages().size(), 2u);
    EXPECT_TRUE(printed.hasLine(1, 2000, 105));
}

TEST(HpglPlotFile, AnEmptyPlotPrintsNothing)
{
    const Printed printed("IN;SP1;PU500,500;SP0;PG;");
    EXPECT_TRUE(printed.device.pages().empty());
    EXPECT_EQ(printed.status, RunStatus::Done);
}

TEST(HpglPlotFile, APlotWithoutAnyPenIsDrawnAllTheSame)
{
    const Printed printed("IN;PU100,100;PD4000,100;PU;");
    ASSERT_EQ(printed.device.pages().size(), 1u);
    EXPECT_TRUE(printed.hasLine(0, 2000, 105));
}

TEST(HpglPlotFile, OlderPlotsScaleToTheDesktopPlottersPoints)
{
    const Printed printed("\x1b.Y\x1b.I81;;17:\x1b.N;19:IN;SC0,10000,0,7500;SP1;PU0,0;PD10000,0;PUSP0;\x1b.Z");
    ASSERT_EQ(printed.device.pages().size(), 1u);
    EXPECT_NEAR(printed.width(0), 1188, 1);
    EXPECT_TRUE(printed.hasLine(0, 5000, 521));
    EXPECT_FALSE(printed.hasInk(0, 300, 521));
    EXPECT_TRUE(printed.hasLine(0, 700, 521));
}

TEST(HpglPlotFile, SwitchedOffPlottersHearNothing)
{
    const Printed printed("IN;" + kBox + "\x1b.ZPU5000,5000;PD8000,8000;\x1b.YPU0,6000;PD6000,6000;");
    ASSERT_EQ(printed.device.pages().size(), 1u);
    EXPECT_FALSE(printed.hasInk(0, 6500, 6500));
    EXPECT_TRUE(printed.hasLine(0, 3000, 6005));
}

TEST(HpglPlotFile, EndsBeforeAUniversalExitAndBehindAReset)
{
    const std::string plot = "\x1b"
                             "E\x1b%-1BIN;"
        + kBox;
    const Printed universal(plot + "\x1b%-12345X@PJL EOJ");
    EXPECT_EQ(universal.end, PlotFile::End::UniversalExit);
    EXPECT_EQ(universal.rest, plot.size());
    const Printed reset(plot
        + "\x1b"
          "Etext");
    EXPECT_EQ(reset.end, PlotFile::End::Reset);
    EXPECT_EQ(reset.rest, plot.size() + 2);
    EXPECT_EQ(reset.device.pages().size(), 1u);
}

TEST(HpglPlotFile, RasterBetweenPlotsIsPassedOverWithAWarning)
{
    const Printed printed("\x1b%-1BIN;" + kBox
        + "\x1b%0A\x1b*r1A\x1b*b6W\x1b"
          "EPU;;\x1b*rC\x1b%0BPU0,5000;PD4000,5000;");
    ASSERT_EQ(printed.device.pages().size(), 1u);
    EXPECT_TRUE(printed.hasLine(0, 2000, 5005));
    EXPECT_TRUE(printed.diagnostics.has("hpgl.raster-language"));
}

TEST(HpglPlotFile, TheJobsPaperGoesFirst)
{
    Environment environment;
    environment.paperWidth = 7920;
    environment.paperHeight = 6120;
    const Printed printed("IN;PS3000,3000;" + kBox, environment);
    ASSERT_EQ(printed.device.pages().size(), 1u);
    EXPECT_NEAR(printed.width(0), 1118, 1);
}

TEST(HpglPlotFile, DrawingsBeyondAnySheetAreReduced)
{
    const Printed printed("IN;SP1;PU0,0;PD1000000000,500000000;PU;");
    ASSERT_EQ(printed.device.pages().size(), 1u);
    EXPECT_LT(printed.width(0), 5000);
    EXPECT_TRUE(printed.diagnostics.has("hpgl.huge-plot"));
    EXPECT_GT(printed.device.blackPixelCount(0), 1000u);
}

TEST(HpglPlotFile, CoordinatesThatAreNoNumbersOfTheLanguageLoseThePen)
{
    // As a program writes that has divided by zero.
    const std::string nowhere = "-2147483648,-2147483648";
    const std::string broken = "PU" + nowhere + ";PR100,100;CI200;PA;AA" + nowhere + ",90;";
    const Printed whole("IN;" + kBox);
    const Printed printed("IN;" + broken + kBox);
    ASSERT_EQ(printed.device.pages().size(), 1u);
    EXPECT_FALSE(printed.diagnostics.has("hpgl.huge-plot"));
    EXPECT_EQ(printed.width(0), whole.width(0));
    EXPECT_EQ(printed.device.blackPixelCount(0), whole.device.blackPixelCount(0));
    // Found again, it draws.
    const Printed again("IN;SP1;PU" + nowhere + ";PA1000,1000;PD2000,1000;PU;");
    EXPECT_GE(again.device.blackPixelCount(0), 100u);
}

TEST(HpglPlotFile, PlotsBeyondTheMemoryLimitAreDrawnWhole)
{
    Limits limits;
    limits.macroBytes = 64;
    const Printed printed("IN;PS6000,4000;" + kBox + std::string(1000, ' ') + "PU100,2000;PD4000,2000;PU;", {}, limits);
    ASSERT_EQ(printed.device.pages().size(), 1u);
    EXPECT_TRUE(printed.hasLine(0, 2000, 2005));
}

TEST(HpglPlotFile, ARefusedPageEndsTheJob)
{
    const std::string plot = "IN;" + kBox;
    MemoryPageDevice device(PixelFormat::Bilevel, 50);
    device.refuseAfter(0);
    MemoryInputStream input({ reinterpret_cast<const std::uint8_t*>(plot.data()), plot.size() });
    FontLibrary fonts;
    RecordingSink diagnostics;
    PlotFile file(device, fonts, diagnostics, Limits {}, {});
    EXPECT_EQ(file.run(input), PlotFile::End::Failed);
    EXPECT_EQ(file.status(), RunStatus::LimitExceeded);
}

} // namespace
} // namespace quillrip::test
