#include "quillrip/base/input_stream.h"
#include "quillrip/base/work_meter.h"
#include "quillrip/fonts/font_library.h"
#include "quillrip/hpgl/line_pattern.h"
#include "quillrip/hpgl/plot_file.h"
#include "tests/hpgl/plot_sheet.h"
#include "tests/support/memory_page_device.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace quillrip::test {
namespace {

// Plots of a few bytes that ask for years. The budget is a thousandth of a page's, so that the tests are short.
constexpr std::uint64_t kBudget = 60'000'000;

/// A plot file that runs on an account of its own.
struct Charged {
    explicit Charged(const std::string& plot, PixelFormat format = PixelFormat::Rgb24)
    {
        WorkBudget budget;
        budget.page = budget.job = kBudget;
        budget.perPage = 0;
        Limits limits;
        limits.work = work = std::make_shared<WorkMeter>(budget);
        MemoryPageDevice device(format, 100);
        device.useMeter(work);
        FontLibrary fonts;
        RecordingSink diagnostics;
        MemoryInputStream input({ reinterpret_cast<const std::uint8_t*>(plot.data()), plot.size() });
        hpgl::PlotFile file(device, fonts, diagnostics, limits, {});
        end = file.run(input);
        status = file.status();
    }

    std::shared_ptr<WorkMeter> work;
    hpgl::End end = hpgl::End::InputEnded;
    RunStatus status = RunStatus::Done;
};

std::string repeated(const std::string& text, int count)
{
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

/// The job ends soon after its budget, and says what for.
void expectBounded(const std::string& plot, const std::string& kind)
{
    const Charged charged(plot);
    EXPECT_EQ(charged.end, hpgl::End::Failed) << plot.substr(0, 60);
    EXPECT_EQ(charged.status, RunStatus::LimitExceeded) << plot.substr(0, 60);
    EXPECT_LT(charged.work->spent(), kBudget + kBudget / 4) << plot.substr(0, 60);
    EXPECT_NE(charged.work->reason().find(kind), std::string::npos) << charged.work->reason();
}

TEST(HpglWork, HatchesOfDashesEndInsideOfTheirLoops)
{
    expectBounded("IN;SP1;PS11000,8000;LT2,.007;FT4,1;RA11000,8000;", "lines");
    expectBounded("IN;SP1;PS11000,8000;PW.01;LA1,4;LT2,.007;FT4,20;RA11000,8000;", "lines");
}

TEST(HpglWork, HatchesThatNoDeviceTellsFromAreasCostWhatAreasDo)
{
    const Charged area("IN;SP1;PS11000,8000;RA11000,8000;");
    const Charged hatch("IN;SP1;PS11000,8000;LA1,4;LT2,.001;FT4,1;RA11000,8000;");
    EXPECT_EQ(hatch.status, RunStatus::Done);
    EXPECT_LT(hatch.work->spent(), 2 * area.work->spent());
}

TEST(HpglWork, DashedHatchLinesNearerThanPixelsCostNoMore)
{
    // A pixel is ten plotter units.
    const Charged near("IN;SP1;PS11000,8000;LT2,5;FT3,1;RA11000,8000;");
    const Charged atPixels("IN;SP1;PS11000,8000;LT2,5;FT3,10;RA11000,8000;");
    EXPECT_EQ(near.status, RunStatus::Done);
    EXPECT_LT(near.work->spent(), atPixels.work->spent() * 5 / 4);
}

TEST(HpglWork, OneLineStopsAmongItsDashes)
{
    WorkBudget budget;
    budget.page = budget.job = 10'000;
    WorkMeter work(budget);
    hpgl::LinePattern pattern;
    pattern.shares = { .5, .5 };
    pattern.length = 2;
    double phase = 0;
    const hpgl::DashedLine line
        = cutIntoDashes({ { { 0, 0 } }, { { 1e6, 0 } } }, pattern, { 0, 0, 1e6, 10 }, { 1 }, work, phase);
    EXPECT_TRUE(work.isExhausted());
    EXPECT_LT(line.dashes.pointCount(), 500u);
    EXPECT_LT(work.spent(), 11'000u);
}

TEST(HpglWork, HatchLinesAreCharged)
{
    std::string comb = "IN;SP1;PS11000,8000;PW0;PM0;PD;";
    for (int i = 0; i < 500; ++i)
        comb += "PA" + std::to_string(20 * i) + ",8000," + std::to_string(20 * i + 10) + ",0;";
    expectBounded(comb + "PM2;" + repeated("FT3,2,0;FP;", 50), "lines");
}

TEST(HpglWork, DashedCirclesAreCharged)
{
    expectBounded("IN;SP1;PS11000,8000;PU5500,4000;LT2,.01;" + repeated("CI3500;", 2000), "lines");
}

TEST(HpglWork, PolygonsThatAreFilledAgainAreCharged)
{
    std::string star = "IN;SP1;PS11000,8000;PM0;PD;";
    for (int i = 0; i < 2000; ++i)
        star += "PA" + std::to_string(i * 7919 % 11000) + "," + std::to_string(i * 6007 % 8000) + ";";
    expectBounded(star + "PM2;" + repeated("FP;", 3000), "shapes");
    expectBounded(star + "PM2;" + repeated("EP;", 3000), "");
}

TEST(HpglWork, TilesAreChargedWhereMarksAreSmall)
{
    std::string fill = "IN;SP1;PS11000,8000;RF1,255,255,1;FT11,1;";
    expectBounded(fill + repeated("RR1,1;", 3000), "painted areas");
}

TEST(HpglWork, LabelsAreCharged)
{
    expectBounded(
        "IN;SP1;PS11000,8000;SD1,21,2,1,4,48,7,4148;SS;CF1;PU100,100;LB" + std::string(100000, 'M') + "\x03", "");
}

TEST(HpglWork, AnOrdinaryPlotStaysFarBelow)
{
    std::string plot = "IN;SP1;PS11000,8000;LT2,4;";
    for (int i = 0; i < 200; ++i)
        plot += "PU" + std::to_string(50 * i) + ",0;PD" + std::to_string(50 * i) + ",8000;";
    const Charged charged(plot + "FT3,100,45;RA5000,5000;PU100,100;LBA label\x03");
    EXPECT_EQ(charged.end, hpgl::End::InputEnded);
    EXPECT_EQ(charged.status, RunStatus::Done);
    EXPECT_LT(charged.work->spent(), kBudget / 2);
}

} // namespace
} // namespace quillrip::test
