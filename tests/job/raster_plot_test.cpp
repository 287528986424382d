// Plots with raster as large-format drivers write them, from their bytes to pages.

#include "tests/job/collecting_sink.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace quillrip {
namespace {

using test::inkCount;
using test::runBytes;

std::string sample()
{
    std::ifstream file(PRISMO_TEST_DATA "/raster_plot.prn", std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

/// Pixels of a colour in a rectangle.
int countOf(const PageBitmap& page, Rgb color, const PixelRect& rect)
{
    int count = 0;
    for (int y = rect.top; y < rect.bottom; ++y) {
        for (int x = rect.left; x < rect.right; ++x)
            count += page.pixel(x, y) == color;
    }
    return count;
}

// Three inches of two: squares of 20 points in red, blue and green at (40, 150), (60, 150) and (80, 150), a black bar
// of 60 by 12 points at (40, 90), all moved by the driver's margin of a sixth of an inch.
TEST(RasterPlot, SampleOfALargeFormatDriverIsDrawnInReadingOrder)
{
    const std::string job = sample();
    ASSERT_FALSE(job.empty());
    const auto run = runBytes(job);
    EXPECT_EQ(run.result.status, ConversionStatus::Done) << run.result.reason;
    EXPECT_TRUE(run.sink.diagnostics.empty());
    ASSERT_EQ(run.sink.pages.size(), 1u);
    const PageBitmap& page = run.sink.pages[0];
    EXPECT_EQ(page.width(), 600);
    EXPECT_EQ(page.height(), 900);
    // The driver's own dither leaves a few dots at edges.
    EXPECT_EQ(countOf(page, { 255, 0, 0 }, { 120, 150, 195, 220 }), 75 * 70);
    EXPECT_EQ(countOf(page, { 0, 0, 255 }, { 205, 150, 280, 220 }), 75 * 70);
    EXPECT_EQ(countOf(page, { 0, 255, 0 }, { 290, 150, 360, 220 }), 70 * 70);
    EXPECT_EQ(countOf(page, { 0, 0, 0 }, { 120, 430, 360, 470 }), 240 * 40);
    EXPECT_EQ(inkCount(page, { 0, 0, 600, 140 }), 0);
    EXPECT_EQ(inkCount(page, { 0, 0, 115, 900 }), 0);
    EXPECT_EQ(inkCount(page, { 368, 0, 600, 900 }), 0);
    EXPECT_EQ(inkCount(page, { 0, 686, 600, 900 }), 0);
}

TEST(RasterPlot, EveryPageEndsWithAResetAndNoneIsBlank)
{
    const std::string job = sample();
    const auto run = runBytes(job + job);
    EXPECT_EQ(run.result.status, ConversionStatus::Done) << run.result.reason;
    ASSERT_EQ(run.sink.pages.size(), 2u);
    EXPECT_EQ(inkCount(run.sink.pages[0]), inkCount(run.sink.pages[1]));
    EXPECT_EQ(run.sink.pages[1].height(), 900);
}

TEST(RasterPlot, JobLanguageMayNameIt)
{
    for (const std::string name : { "HPGL2", "HP-GL/2", "RTL", "HPRTL", "HP-GL2/RTL" }) {
        const auto run = runBytes("\x1B%-12345X@PJL ENTER LANGUAGE=" + name + "\r\n\x1B"
            + "E\x1B*t300R\x1B*r600s1A\x1B*b2m2W\xB6\xFF\x1B*rC\x1B%-12345X");
        EXPECT_EQ(run.result.status, ConversionStatus::Done) << name << ": " << run.result.reason;
        ASSERT_EQ(run.sink.pages.size(), 1u) << name;
        // 75 bytes of ink, and the page stands upright.
        EXPECT_EQ(inkCount(run.sink.pages[0]), 600) << name;
        EXPECT_EQ(inkCount(run.sink.pages[0], { 0, 0, 600, 1 }), 600) << name;
        EXPECT_GT(run.sink.pages[0].height(), run.sink.pages[0].width()) << name;
    }
}

TEST(RasterPlot, AResetDoesNotEndAPlotThatTheJobLanguageNamed)
{
    // The second page says nothing that tells a plotter's raster from a printer's, but for its name.
    const std::string page = "\x1B*t300R\x1B*r600s1A\x1B*b2m2W\xB6\xFF\x1B*rC\x1B"
                             "E";
    const auto run = runBytes("\x1B%-12345X@PJL ENTER LANGUAGE=RTL\r\n" + page + page + "\x1B%-12345X");
    ASSERT_EQ(run.sink.pages.size(), 2u) << run.result.reason;
    EXPECT_EQ(inkCount(run.sink.pages[1], { 0, 0, 600, 1 }), 600);
    // The name holds to the end of the job, not of the file.
    const auto mixed = runBytes("\x1B%-12345X@PJL ENTER LANGUAGE=RTL\r\n" + page + "\x1B%-12345X" + page);
    ASSERT_EQ(mixed.sink.pages.size(), 2u) << mixed.result.reason;
    EXPECT_EQ(inkCount(mixed.sink.pages[1], { 0, 0, 600, 1 }), 0);
}

TEST(RasterPlot, PclWithEmbeddedPlotsAndRasterStaysPcl)
{
    const std::string rest = "\x1B%0BBP;IN;PS10668;SP1;PU0,0;PD1000,0;\x1B%0A\x1B*t300R\x1B*r1A\x1B*b1W\xFF\x1B*rB\f";
    const auto run = runBytes("\x1B"
                              "E\x1B&l26A"
        + rest);
    ASSERT_EQ(run.sink.pages.size(), 1u) << run.result.reason;
    EXPECT_EQ(run.sink.pages[0].width(), 2480);
    EXPECT_EQ(run.sink.pages[0].height(), 3508);
}

} // namespace
} // namespace quillrip
