#include "tests/job/collecting_sink.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quillrip {
namespace {

using namespace std::string_literals;
using test::inkCount;
using test::runBytes;

const std::string kExit = "\x1B%-12345X";
const std::string kReset = "\x1B"
                           "E";
// A black rectangle of one inch at the top left of the logical page, and a form feed.
const std::string kPclPage = "\x1B*p0x0Y\x1B*c300a300b0P\f";

PageSettings coarse(PixelFormat format = PixelFormat::Bilevel)
{
    PageSettings settings;
    settings.format = format;
    settings.resolution = { 30, 30 };
    return settings;
}

/// One page of PCL XL with a filled square inch, whole-inch units of 1/100.
std::string pclXlPage()
{
    const auto u16Pair = [](int x, int y) {
        return "\xD1"s + static_cast<char>(x & 255) + static_cast<char>(x >> 8) + static_cast<char>(y & 255)
            + static_cast<char>(y >> 8);
    };
    const auto attribute = [](int number) { return "\xF8"s + static_cast<char>(number); };
    const auto byte = [](int value) { return "\xC0"s + static_cast<char>(value); };
    std::string stream = ") HP-PCL XL;1;1;\n";
    stream += u16Pair(100, 100) + attribute(0x89) + byte(0) + attribute(0x86) + byte(3) + attribute(0x8F) + "\x41";
    stream += byte(0) + attribute(0x88) + byte(1) + attribute(0x82) + "\x48";
    stream += byte(0) + attribute(0x28) + byte(0) + attribute(0x25) + "\x43";
    stream += "\xE1"s + "\0\0\0\0\x64\0\x64\0"s + attribute(0x42) + "\xA0";
    return stream + "\x44\x49\x42";
}

std::string pclJob(const std::string& data) { return kExit + "@PJL ENTER LANGUAGE=PCL\n" + data; }

TEST(JobRunner, JobsAndLanguagesComeInOrder)
{
    const auto run = runBytes(pclJob("\x1B&l26A" + kPclPage) + kExit + "@PJL ENTER LANGUAGE=PCLXL\n" + pclXlPage()
            + kExit + pclJob("\x1B&l1O" + kPclPage) + kExit,
        coarse());
    EXPECT_EQ(run.result.status, ConversionStatus::Done) << run.result.reason;
    EXPECT_EQ(run.sink.languages, (std::vector<std::string> { "PCL 5", "PCL XL", "PCL 5" }));
    ASSERT_EQ(run.sink.pages.size(), 3u);
    EXPECT_EQ(run.sink.pages[0].height(), 351);
    EXPECT_EQ(run.sink.pages[1].width(), 255);
    EXPECT_EQ(run.sink.pages[2].width(), 330);
    for (const PageBitmap& page : run.sink.pages)
        EXPECT_NEAR(inkCount(page), 900, 62);
}

TEST(JobRunner, TheJobLanguageSaysHowFineBareRasterIs)
{
    // 120 rows of 120 black pixels in raster method 1030: the first row, then rows as before.
    std::string block = "\0\x78\1\x8D\xFF"s;
    block.append(119, '\0');
    const std::string raster = "\x1B*b1030m" + std::to_string(block.size()) + "W" + block + "\f";
    const auto ink = [&](const std::string& settings) {
        PageSettings fine = coarse();
        fine.resolution = { 300, 300 };
        const auto run = runBytes(kExit + settings + "@PJL ENTER LANGUAGE=PCL\n" + raster, fine);
        return run.sink.pages.size() == 1 ? inkCount(run.sink.pages[0]) : -1;
    };
    EXPECT_EQ(ink("@PJL SET RESOLUTION = 300\n"), 120 * 120);
    EXPECT_NEAR(ink("@PJL SET RESOLUTION = 600\n"), 60 * 60, 121);
    EXPECT_NEAR(ink("@PJL SET RAS1200MODE = TRUE\n@PJL SET RESOLUTION = 600\n"), 30 * 30, 61);
}

TEST(JobRunner, AnOpenPageOfPclComesBeforeTheNextLanguagesPages)
{
    const auto run
        = runBytes("\x1B*p0x0Y\x1B*c300a600b0P" + kExit + "@PJL ENTER LANGUAGE=PCLXL\n" + pclXlPage(), coarse());
    ASSERT_EQ(run.sink.pages.size(), 2u) << run.result.reason;
    EXPECT_NEAR(inkCount(run.sink.pages[0]), 1800, 100);
    EXPECT_NEAR(inkCount(run.sink.pages[1]), 900, 62);
}

TEST(JobRunner, PaperComesFromTheJobLanguageUntilTheJobSaysOtherwise)
{
    const auto height = [](const std::string& job) {
        const auto run = runBytes(job, coarse());
        return run.sink.pages.size() == 1 ? run.sink.pages[0].height() : -1;
    };
    const std::string set = kExit + "@PJL SET PAPER=LEGAL\n@PJL ENTER LANGUAGE=PCL\n";
    EXPECT_EQ(height(set + kPclPage), 420);
    EXPECT_EQ(height(set + kReset + kPclPage), 420);
    EXPECT_EQ(height(set + "\x1B&l26A" + kPclPage), 351);
    EXPECT_EQ(
        height(kExit
            + "@PJL SET PAPER=CUSTOM\n@PJL SET PAPERWIDTH=3600\n@PJL SET PAPERLENGTH=7200\n@PJL ENTER LANGUAGE=PCL\n"
            + kPclPage),
        300);
    EXPECT_EQ(height(kExit + "@PJL JOB\n@PJL SET PAPER=LEGAL\n@PJL EOJ\n@PJL ENTER LANGUAGE=PCL\n" + kPclPage), 330);
    EXPECT_EQ(height(kExit + "@PJL SET ORIENTATION=LANDSCAPE\n@PJL ENTER LANGUAGE=PCL\n" + kPclPage), 255);
}

// A fax keeps the sheet's short edge across, so a landscape page is turned, and its hatches with it.
TEST(JobRunner, HatchesTurnWithALandscapePageBehindAnUprightOne)
{
    const std::string hatched = "\x1B*p0x0Y\x1B*c300a300b1g3P\f";
    const std::string landscape = "\x1B&l1O" + hatched;
    PageSettings settings;
    settings.fax = FaxMode::Normal;
    const test::Run alone = runBytes(kReset + landscape, settings);
    const test::Run behind = runBytes(kReset + hatched + landscape, settings);
    ASSERT_EQ(alone.sink.pages.size(), 1u);
    ASSERT_EQ(behind.sink.pages.size(), 2u);
    const PageBitmap& wanted = alone.sink.pages[0];
    const PageBitmap& drawn = behind.sink.pages[1];
    ASSERT_GT(inkCount(wanted), 0);
    ASSERT_EQ(drawn.height(), wanted.height());
    for (int y = 0; y < wanted.height(); ++y)
        ASSERT_TRUE(std::equal(wanted.row(y), wanted.row(y) + wanted.rowBytes(), drawn.row(y))) << "row " << y;
}

TEST(JobRunner, PageRangeOfTheJobLineIsKept)
{
    const std::string pages
        = "\x1B&l26A" + kPclPage + "\x1B&l3A" + kPclPage + "\x1B&l2A" + kPclPage + "\x1B&l25A" + kPclPage;
    const auto run = runBytes(kExit + "@PJL JOB START=2 END=3\n@PJL ENTER LANGUAGE=PCL\n" + pages + kExit + "@PJL EOJ\n"
            + kExit + pclJob(kPclPage),
        coarse());
    ASSERT_EQ(run.sink.pages.size(), 3u);
    EXPECT_EQ(run.sink.pages[0].height(), 420);
    EXPECT_EQ(run.sink.pages[1].height(), 330);
    EXPECT_EQ(run.result.pages, 3);
}

TEST(JobRunner, GrayscaleIsThePrintersNotOnlyTheOutputs)
{
    const std::string red = "\x1B*v6W\0\1\x08\x08\x08\x08"s + "\x1B*v255A\x1B*v0B\x1B*v0C\x1B*v7I\x1B*v7S" + kPclPage;
    const auto coloured = runBytes(pclJob(red), coarse(PixelFormat::Rgb24));
    ASSERT_EQ(coloured.sink.pages.size(), 1u) << coloured.result.reason;
    const auto grey = runBytes(
        kExit + "@PJL SET RENDERMODE=GRAYSCALE\n@PJL ENTER LANGUAGE=PCL\n" + red, coarse(PixelFormat::Rgb24));
    ASSERT_EQ(grey.sink.pages.size(), 1u);
    const auto middle = [](const PageBitmap& page) { return page.pixel(20, 30); };
    EXPECT_GT(middle(coloured.sink.pages[0]).red, middle(coloured.sink.pages[0]).green);
    EXPECT_EQ(middle(grey.sink.pages[0]).red, middle(grey.sink.pages[0]).green);
    EXPECT_EQ(middle(grey.sink.pages[0]).red, middle(grey.sink.pages[0]).blue);
    EXPECT_NEAR(middle(grey.sink.pages[0]).red, 76, 2);
}

TEST(JobRunner, ForeignPartsLeaveTheOthersAlone)
{
    const auto run = runBytes(pclJob(kPclPage) + kExit + "@PJL ENTER LANGUAGE=POSTSCRIPT\n%!PS\nshowpage\n" + kExit
            + "@PJL ENTER LANGUAGE=QPDL\n\0\1\2"s + kExit + pclJob(kPclPage),
        coarse());
    EXPECT_EQ(run.result.status, ConversionStatus::Done);
    EXPECT_EQ(run.result.pages, 2);
    ASSERT_EQ(run.sink.diagnostics.size(), 1u);
    EXPECT_EQ(run.sink.diagnostics[0].severity, Severity::Warning);
    EXPECT_NE(run.sink.diagnostics[0].message.find("PostScript"), std::string::npos);
}

TEST(JobRunner, DamageInOneJobLeavesTheNextAlone)
{
    const auto run = runBytes(
        kExit + "@PJL ENTER LANGUAGE=PCLXL\n) HP-PCL XL;1;1;\n\x01\x02\x03\xFF" + kExit + pclJob(kPclPage), coarse());
    EXPECT_EQ(run.result.status, ConversionStatus::Damaged);
    EXPECT_EQ(run.result.pages, 1);
    EXPECT_NE(run.result.reason.find("1 page kept"), std::string::npos) << run.result.reason;
}

TEST(JobRunner, EachKindOfWarningIsHeardOnce)
{
    std::string job;
    for (int part = 0; part < 3; ++part)
        job += kExit + "@PJL ENTER LANGUAGE=PCL\n" + pclXlPage();
    const auto run = runBytes(job, coarse());
    EXPECT_EQ(run.result.pages, 3) << run.result.reason;
    EXPECT_EQ(std::count_if(run.sink.diagnostics.begin(), run.sink.diagnostics.end(),
                  [](const Diagnostic& d) { return d.kind == "pjl.other-language"; }),
        1);
}

TEST(JobRunner, FilesWithoutAPageSaySo)
{
    EXPECT_EQ(runBytes("").result.reason, "is empty");
    for (const std::string& job : { kReset + kExit, kExit + "@PJL SET COPIES=2\n" + kExit, "\r\n\0\0"s, kReset }) {
        const auto run = runBytes(job);
        EXPECT_EQ(run.result.status, ConversionStatus::BadInput);
        EXPECT_NE(run.result.reason.find("no page"), std::string::npos) << run.result.reason;
    }
    EXPECT_NE(runBytes("\x89PNG\r\n\x1A\n").result.reason.find("is a PNG image"), std::string::npos);
    EXPECT_NE(runBytes(kExit + "@PJL ENTER LANGUAGE=ZJS\nJZJZ").result.reason.find("offset 33"), std::string::npos);
}

TEST(JobRunner, FailuresOfTheOutputEndTheJob)
{
    const auto run = runBytes(kPclPage + kPclPage + kPclPage, coarse(), {}, {}, 1);
    EXPECT_EQ(run.result.status, ConversionStatus::OutputFailed);
    EXPECT_EQ(run.result.reason, "the disk is full");
    EXPECT_EQ(run.sink.pages.size(), 1u);
}

TEST(JobRunner, LimitsEndTheJob)
{
    Limits limits;
    limits.pages = 2;
    EXPECT_EQ(runBytes(kPclPage + kPclPage, coarse(), {}, limits).result.status, ConversionStatus::Done);
    EXPECT_EQ(
        runBytes(kPclPage + kPclPage + kPclPage, coarse(), {}, limits).result.status, ConversionStatus::LimitExceeded);
    limits = {};
    limits.pageBytes = 10000;
    const auto run = runBytes(kPclPage, coarse(), {}, limits);
    EXPECT_EQ(run.result.status, ConversionStatus::LimitExceeded);
    // An interpreter's own limit is named, too.
    limits = {};
    limits.work = std::make_shared<WorkMeter>(WorkBudget { 15'000 });
    const auto macros = runBytes("\x1b"
                                 "E\x1b&f0X \x1b&f1X\x1b&f2x2X",
        coarse(), {}, limits);
    EXPECT_EQ(macros.result.status, ConversionStatus::LimitExceeded);
    EXPECT_NE(macros.result.reason.find("macros"), std::string::npos);
    EXPECT_NE(run.result.reason, "");
}

TEST(JobRunner, ContainersAreTakenOff)
{
    const auto run = runBytes("\3"s + std::to_string(kPclPage.size()) + " dfA001host\n" + kPclPage + "\0"s, coarse());
    EXPECT_EQ(run.result.pages, 1) << run.result.reason;
    EXPECT_NE(
        runBytes("Hhost\nPuser\nldfA001host\nUdfA001host\n").result.reason.find("control file"), std::string::npos);
}

TEST(JobRunner, Pcl5InsideOfPclXlDrawsOnItsPage)
{
    const std::string pcl = "\x1B*p0x0Y\x1B*c300a300b0P";
    std::string stream = pclXlPage();
    const std::size_t endPage = stream.size() - 3;
    // PassThrough with its data, in front of EndPage.
    const std::string embedded = "\xBF\xFB"s + static_cast<char>(pcl.size()) + pcl;
    const auto plain = runBytes(stream, coarse());
    ASSERT_EQ(plain.sink.pages.size(), 1u);
    stream.insert(endPage, embedded);
    const auto run = runBytes(stream, coarse());
    ASSERT_EQ(run.sink.pages.size(), 1u) << run.result.reason;
    EXPECT_GT(inkCount(run.sink.pages[0]), inkCount(plain.sink.pages[0]));
}

} // namespace
} // namespace quillrip
