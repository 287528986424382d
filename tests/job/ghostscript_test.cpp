#include "tests/job/collecting_sink.h"

#include "quillrip/job/ghostscript.h"

#include <gtest/gtest.h>

namespace quillrip {
namespace {

using test::inkCount;
using test::runBytes;

// Two Letter pages with a black square inch in the corner at the top left, then an A5 page with a red one.
const std::string kDocument = "%!PS-Adobe-3.0\n"
                              "<< /PageSize [612 792] >> setpagedevice\n"
                              "0 720 72 72 rectfill showpage\n"
                              "0 720 72 72 rectfill showpage\n"
                              "<< /PageSize [420 595] >> setpagedevice\n"
                              "1 0 0 setrgbcolor 0 523 72 72 rectfill showpage\n";

class GhostscriptJob : public testing::Test {
protected:
    void SetUp() override
    {
        m_program = findGhostscript();
        if (m_program.empty())
            GTEST_SKIP() << "gs is not on PATH";
    }

    std::string m_program;
};

TEST_F(GhostscriptJob, PagesComeInTheirOwnSizesAndColours)
{
    PageSettings settings;
    settings.resolution = { 72, 36 };
    const test::Run run = runBytes(kDocument, settings, m_program);
    EXPECT_EQ(run.result.outcome, JobOutcome::Done) << run.result.reason;
    ASSERT_EQ(run.sink.pages.size(), 3u);
    EXPECT_EQ(run.sink.pages[0].width(), 612);
    EXPECT_EQ(run.sink.pages[0].height(), 396);
    EXPECT_EQ(run.sink.pages[0].resolution().y, 36);
    EXPECT_EQ(run.sink.pages[2].width(), 420);
    EXPECT_EQ(run.sink.pages[0].pixel(36, 18), (Rgb { 0, 0, 0 }));
    EXPECT_EQ(inkCount(run.sink.pages[0]), 72 * 36);
    EXPECT_EQ(run.sink.pages[2].pixel(36, 18), (Rgb { 255, 0, 0 }));
}

TEST_F(GhostscriptJob, EveryPageGetsTheGivenPixels)
{
    for (const PixelFormat format : { PixelFormat::Bilevel, PixelFormat::Gray8, PixelFormat::Rgb24 }) {
        PageSettings settings;
        settings.format = format;
        settings.width = 153;
        settings.height = 99;
        const test::Run run = runBytes(kDocument, settings, m_program);
        EXPECT_EQ(run.result.outcome, JobOutcome::Done) << run.result.reason;
        ASSERT_EQ(run.sink.pages.size(), 3u);
        for (const PageBitmap& page : run.sink.pages) {
            EXPECT_EQ(page.format(), format);
            EXPECT_EQ(page.width(), 153);
            EXPECT_EQ(page.height(), 99);
        }
        EXPECT_EQ(inkCount(run.sink.pages[1], { 0, 0, 18, 9 }), 18 * 9);
        EXPECT_EQ(inkCount(run.sink.pages[1], { 19, 10, 153, 99 }), 0);
    }
}

TEST_F(GhostscriptJob, FaxesAreCentredAndLieOnTheShortEdge)
{
    PageSettings settings;
    settings.fax = FaxMode::Normal;
    const test::Run run
        = runBytes(kDocument + "<< /PageSize [792 612] >> setpagedevice 0 setgray 0 540 72 72 rectfill showpage\n",
            settings, m_program);
    EXPECT_EQ(run.result.outcome, JobOutcome::Done) << run.result.reason;
    ASSERT_EQ(run.sink.pages.size(), 4u);
    for (const PageBitmap& page : run.sink.pages)
        EXPECT_EQ(page.width(), 1728);
    EXPECT_EQ(run.sink.pages[0].height(), 1078);
    EXPECT_EQ(inkCount(run.sink.pages[0], { 0, 0, 201, 98 }), 201 * 98);
    EXPECT_EQ(inkCount(run.sink.pages[0]), 201 * 98);
    EXPECT_GT(inkCount(run.sink.pages[2], { 269, 0, 270 + 204, 98 }), 0);
    // The top left corner of a landscape page lies at the bottom left as the sheet is fed.
    EXPECT_EQ(run.sink.pages[3].height(), 1078);
    EXPECT_EQ(inkCount(run.sink.pages[3], { 0, 980, 201, 1078 }), 201 * 98);
    EXPECT_NEAR(inkCount(run.sink.pages[3]), 201 * 98, 98);
}

TEST_F(GhostscriptJob, BrokenPostScriptIsDamageAfterItsWholePages)
{
    const test::Run run = runBytes(kDocument + "this-is-no-operator\n", {}, m_program);
    EXPECT_EQ(run.result.outcome, JobOutcome::Damaged);
    EXPECT_EQ(run.result.pages, 3);
    EXPECT_NE(run.result.reason.find("3 pages kept"), std::string::npos) << run.result.reason;
    EXPECT_NE(run.result.reason.find("undefined"), std::string::npos) << run.result.reason;
}

TEST_F(GhostscriptJob, JobsCannotReadOrWriteFiles)
{
    const test::Run reads = runBytes("%!PS\n(/etc/hostname) (r) file pop showpage\n", {}, m_program);
    EXPECT_EQ(reads.result.outcome, JobOutcome::Damaged);
    EXPECT_NE(reads.result.reason.find("invalidfileaccess"), std::string::npos) << reads.result.reason;
    const test::Run writes = runBytes("%!PS\n(/tmp/quillrip-was-here) (w) file closefile showpage\n", {}, m_program);
    EXPECT_NE(writes.result.reason.find("invalidfileaccess"), std::string::npos) << writes.result.reason;
}

TEST_F(GhostscriptJob, WhatAJobPrintsByItselfIsNoPage)
{
    PageSettings settings;
    settings.resolution = { 20, 20 };
    settings.width = 100;
    const test::Run run = runBytes(
        "%!PS\n(P5 1 1 255 noise) = (page-1 1 1) = flush 10 10 30 30 rectfill showpage\n", settings, m_program);
    EXPECT_EQ(run.result.outcome, JobOutcome::Done) << run.result.reason;
    ASSERT_EQ(run.sink.pages.size(), 1u);
    EXPECT_EQ(run.sink.pages[0].width(), 100);
}

TEST_F(GhostscriptJob, LimitsHoldForItsPages)
{
    Limits limits;
    limits.pageBytes = 100000;
    EXPECT_EQ(runBytes(kDocument, {}, m_program, limits).result.outcome, JobOutcome::LimitExceeded);
    limits = {};
    limits.pages = 2;
    PageSettings small;
    small.resolution = { 10, 10 };
    EXPECT_EQ(runBytes(kDocument, small, m_program, limits).result.outcome, JobOutcome::LimitExceeded);
    EXPECT_EQ(runBytes(kDocument, small, m_program, {}, 1).result.outcome, JobOutcome::OutputFailed);
}

TEST(GhostscriptAbsence, IsSaidWithWhatToInstall)
{
    const test::Run run = runBytes(kDocument);
    EXPECT_EQ(run.result.outcome, JobOutcome::NothingToPrint);
    EXPECT_NE(run.result.reason.find("PostScript"), std::string::npos);
    EXPECT_NE(run.result.reason.find("install"), std::string::npos);
    EXPECT_NE(runBytes("%PDF-1.4\n").result.reason.find("PDF"), std::string::npos);
}

} // namespace
} // namespace quillrip
