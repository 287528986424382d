#include "tests/cli/program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

namespace quillrip::test {
namespace {

using namespace std::string_literals;
using nlohmann::json;
using Names = std::vector<std::string>;

// A raster of eight dots at 75 dpi, and a form feed.
const std::string kPage = "\x1B*t75R\x1B*r1A\x1B*b1W\xFF\x1B*rB\f";
const std::string kReset = "\x1B"
                           "E";

std::string repeated(const std::string& text, int count)
{
    std::string whole;
    while (count-- > 0)
        whole += text;
    return whole;
}

bool beginsWith(const std::string& text, const std::string& start) { return text.compare(0, start.size(), start) == 0; }

// "quillrip: FILE: reason" on one line.
void expectMessage(const Outcome& outcome, const std::string& file)
{
    EXPECT_TRUE(beginsWith(outcome.errors, "quillrip: " + file + ": ")) << outcome.errors;
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
    EXPECT_EQ(outcome.output, "");
}

TEST(Program, WritesEveryTypeOfFile)
{
    const TemporaryFolder folder;
    const std::string job = folder.file("job.pcl", kPage);
    const std::vector<std::pair<std::string, std::string>> starts { { "bmp", "BM" }, { "png", "\x89PNG" },
        { "pcx", "\x0A\x05\x01" }, { "jpg", "\xFF\xD8\xFF" }, { "JPEG", "\xFF\xD8\xFF" }, { "tif", "II*" },
        { "tiff", "II*" } };
    for (const auto& [extension, start] : starts) {
        for (const char* depth : { "1", "8", "24" }) {
            const std::string image = folder.path("image." + extension);
            const Outcome outcome
                = runQuillrip({ "-r", "75x75", "-b", depth, "-writelocal", "n", "-o", image, "-i", job });
            EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
            EXPECT_EQ(outcome.errors, "");
            EXPECT_TRUE(beginsWith(contentOf(image), start)) << extension << " " << depth;
            std::filesystem::remove(image);
        }
    }
    EXPECT_EQ(folder.names(), Names { "job.pcl" });
}

TEST(Program, PagesBehindTheFirstHaveTheirNumberInTheName)
{
    const TemporaryFolder folder;
    const std::string job = folder.file("job.pcl", kPage + kPage + kPage);
    EXPECT_EQ(runQuillrip({ "-r", "75x75", "-o", folder.path("a.b.png"), "-i", job }).exitCode, 0);
    EXPECT_EQ(folder.names(), (Names { "a.b.png", "a.b_p0002.png", "a.b_p0003.png", "job.pcl" }));
    EXPECT_EQ(runQuillrip({ "-r", "75x75", "-o", folder.path("all.tif"), "-i", job }).exitCode, 0);
    EXPECT_EQ(folder.names().size(), 5u);
}

TEST(Program, WrongUsageEndsWithOne)
{
    const TemporaryFolder folder;
    const std::string job = folder.file("job.pcl", kPage);
    EXPECT_EQ(runQuillrip({}).exitCode, 1);
    EXPECT_EQ(runQuillrip({ "-o", folder.path("a.png"), "-i", job, "-b", "2" }).exitCode, 1);
    EXPECT_EQ(runQuillrip({ "-o", folder.path("a.gif"), "-i", job }).exitCode, 1);
    const Outcome fax = runQuillrip({ "-o", folder.path("a.tif"), "-i", job, "-b", "24", "-c", "6" });
    EXPECT_EQ(fax.exitCode, 1);
    EXPECT_EQ(std::count(fax.errors.begin(), fax.errors.end(), '\n'), 1) << fax.errors;
    EXPECT_EQ(folder.names(), Names { "job.pcl" });
}

TEST(Program, OutputThatIsTheInputIsRefused)
{
    const TemporaryFolder folder;
    const std::string job = folder.file("job.png", kPage);
    std::filesystem::create_symlink(job, folder.path("soft.png"));
    std::filesystem::create_hard_link(job, folder.path("hard.png"));
    for (const char* name : { "job.png", "soft.png", "hard.png", "./job.png" }) {
        EXPECT_EQ(runQuillrip({ "-o", folder.path(name), "-i", job }).exitCode, 1) << name;
        EXPECT_EQ(contentOf(job), kPage);
    }
    // The name of a later page can be the input's as well.
    const std::string second = folder.file("x_p0002.png", kPage + kPage);
    EXPECT_EQ(runQuillrip({ "-o", folder.path("x.png"), "-i", second }).exitCode, 3);
    EXPECT_EQ(contentOf(second), kPage + kPage);
    EXPECT_FALSE(std::filesystem::exists(folder.path("x.png")));
}

TEST(Program, InputThatIsNoPrintJobEndsWithTwoAndItsName)
{
    const TemporaryFolder folder;
    const std::string former = folder.file("out.png", "former");
    const std::vector<std::pair<std::string, std::string>> inputs { { "", "empty" }, { "\x89PNG\r\n\x1A\n", "PNG" },
        { "\x1B@", "ESC/P" }, { "\x1B%-12345X@PJL EOJ\n\x1B%-12345X", "no page" }, { "PK\3\4", "ZIP" },
        { "\0\1\2\3\x80\x81\x82\x83"s, "unknown" } };
    for (const auto& [bytes, word] : inputs) {
        const std::string job = folder.file("job.prn", bytes);
        const Outcome outcome = runQuillrip({ "-o", former, "-i", job });
        EXPECT_EQ(outcome.exitCode, 2) << word;
        expectMessage(outcome, job);
        EXPECT_NE(outcome.errors.find(word), std::string::npos) << outcome.errors;
        EXPECT_EQ(contentOf(former), "former");
    }
    EXPECT_EQ(runQuillrip({ "-o", former, "-i", folder.path("missing") }).exitCode, 2);
    EXPECT_EQ(runQuillrip({ "-o", former, "-i", folder.path(".") }).exitCode, 2);
    EXPECT_EQ(folder.names(), (Names { "job.prn", "out.png" }));
}

TEST(Program, TracesCommandsOnStandardErrorWhenAskedTo)
{
    const TemporaryFolder folder;
    const std::string job = folder.file("job.prn", "\x1B%-12345X@PJL SET PAPER=A4\n@PJL ENTER LANGUAGE=PCL\n" + kPage);
    const Outcome silent = runQuillrip({ "-o", folder.path("a.png"), "-i", job });
    EXPECT_EQ(silent.exitCode, 0);
    EXPECT_EQ(silent.errors, "");
    const Outcome traced = runQuillrip({ "--trace", "-o", folder.path("a.png"), "-i", job });
    EXPECT_EQ(traced.exitCode, 0);
    EXPECT_NE(traced.errors.find("       9 @PJL SET PAPER=A4\n"), std::string::npos) << traced.errors;
    EXPECT_NE(traced.errors.find("      27 @PJL ENTER LANGUAGE=PCL\n"), std::string::npos) << traced.errors;
}

TEST(Program, PostScriptWithoutGhostscriptSaysWhatToInstall)
{
    const TemporaryFolder folder;
    const std::string job = folder.file("job.prn", "%!PS\nshowpage\n");
    const Outcome outcome = runQuillrip({ "-o", folder.path("a.png"), "-i", job }, { "PATH=/nonexistent" });
    EXPECT_EQ(outcome.exitCode, 2);
    expectMessage(outcome, job);
    EXPECT_NE(outcome.errors.find("ghostscript"), std::string::npos);
}

TEST(Program, OutputThatCannotBeWrittenEndsWithThree)
{
    const TemporaryFolder folder;
    const std::string job = folder.file("job.pcl", kPage);
    const std::string image = folder.path("missing/a.png");
    const Outcome outcome = runQuillrip({ "-o", image, "-i", job });
    EXPECT_EQ(outcome.exitCode, 3);
    expectMessage(outcome, image);
    std::filesystem::create_directory(folder.path("folder.png"));
    EXPECT_EQ(runQuillrip({ "-o", folder.path("folder.png"), "-i", job }).exitCode, 3);
}

TEST(Program, DamagedJobsKeepTheirWholePages)
{
    const TemporaryFolder folder;
    const std::string job = folder.file("job.pcl", kPage + kPage + "\x1B*t75R\x1B*r1A\x1B*b999W\xFF");
    const Outcome outcome = runQuillrip({ "-r", "75x75", "-o", folder.path("a.png"), "-i", job });
    EXPECT_EQ(outcome.exitCode, 4);
    expectMessage(outcome, job);
    EXPECT_NE(outcome.errors.find("offset"), std::string::npos) << outcome.errors;
    EXPECT_NE(outcome.errors.find("2 pages kept"), std::string::npos) << outcome.errors;
    EXPECT_EQ(folder.names(), (Names { "a.png", "a_p0002.png", "job.pcl" }));
}

TEST(Program, PagesBeyondTheLimitEndWithFiveBeforeTheirMemoryIsTaken)
{
    const TemporaryFolder folder;
    const std::string job = folder.file("job.pcl", kPage + kReset + "\x1B&l27A" + kPage);
    const std::string former = folder.file("a.png", "former");
    const Outcome outcome = runQuillrip({ "-r", "2400x2400", "-o", former, "-i", job });
    EXPECT_EQ(outcome.exitCode, 5);
    expectMessage(outcome, job);
    EXPECT_EQ(contentOf(former), "former");
    EXPECT_EQ(folder.names(), (Names { "a.png", "job.pcl" }));
}

TEST(Program, LimitsOfTheCommandLineEndWithFiveAndLeaveNothing)
{
    const TemporaryFolder folder;
    const std::string job = folder.file("job.pcl", kPage + kPage + kPage);
    const std::string former = folder.file("a.bmp", "former");
    for (const Names& limit : { Names { "-limit-pages", "2" }, Names { "-limit-output", "1" } }) {
        const Outcome outcome = runQuillrip({ "-o", former, "-i", job, limit[0], limit[1] });
        EXPECT_EQ(outcome.exitCode, 5) << limit[0];
        expectMessage(outcome, job);
        EXPECT_EQ(contentOf(former), "former");
        EXPECT_EQ(folder.names(), (Names { "a.bmp", "job.pcl" }));
    }
    EXPECT_EQ(runQuillrip({ "-o", former, "-i", job, "-limit-pages", "3", "-limit-output", "100" }).exitCode, 0);
    // A TIFF is written in another way.
    EXPECT_EQ(runQuillrip({ "-o", folder.path("a.tif"), "-i", job, "-limit-output", "1" }).exitCode, 5);
    EXPECT_EQ(runQuillrip({ "-o", folder.path("a.tif"), "-i", job, "-limit-output", "100" }).exitCode, 0);
}

// And, though it takes longer than a second, without a word about progress: standard error is no terminal.
TEST(Program, ARunThatTakesTooLongEndsWithFive)
{
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo(folder.path("job").c_str(), 0600), 0);
    const int writer = open(folder.path("job").c_str(), O_RDWR | O_CLOEXEC); // a job that never comes
    const Outcome outcome = runQuillrip({ "-o", folder.path("a.png"), "-i", folder.path("job"), "-limit-seconds", "2",
        "--report", folder.path("report") });
    close(writer);
    EXPECT_EQ(outcome.exitCode, 5);
    expectMessage(outcome, folder.path("job"));
    EXPECT_EQ(folder.names(), (Names { "job", "report" }));
    const json line = json::parse(contentOf(folder.path("report")));
    EXPECT_EQ(line.at("exitCode"), 5);
    EXPECT_EQ(line.at("input"), folder.path("job"));
    EXPECT_EQ(line.at("message"), "takes more than 2 seconds (-limit-seconds)");
}

TEST(Program, ThousandsOfBlankPagesAreNoJob)
{
    const TemporaryFolder folder;
    const std::string whiteBox = "\x1B*c9a9b1P\f";
    const std::string job = folder.file("job.pcl", repeated(whiteBox, 2500));
    const Outcome outcome = runQuillrip({ "-r", "10x10", "-o", folder.path("a.png"), "-i", job });
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_NE(outcome.errors.find("blank"), std::string::npos) << outcome.errors;
    EXPECT_EQ(folder.names(), Names { "job.pcl" });
}

TEST(Program, ReadsStandardInput)
{
    const TemporaryFolder folder;
    const std::string job = folder.file("job.pcl", kPage);
    EXPECT_EQ(runQuillrip({ "-r", "75x75", "-o", folder.path("a.png"), "-i", "-" }, {}, job).exitCode, 0);
    EXPECT_TRUE(beginsWith(contentOf(folder.path("a.png")), "\x89PNG"));
    const Outcome outcome = runQuillrip({ "-o", folder.path("b.png"), "-i", "-" });
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.errors, "quillrip: standard input: is empty\n");
}

TEST(Program, ControlCharactersDoNotReachTheTerminal)
{
    const TemporaryFolder folder;
    const Outcome outcome = runQuillrip({ "-o", folder.path("a.png"), "-i", folder.path("\x1B[31mred") });
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.errors.find('\x1B'), std::string::npos);
    EXPECT_NE(outcome.errors.find("?[31mred"), std::string::npos);
}

TEST(Program, FilesOnTheDiskAreTheSameFiles)
{
    const TemporaryFolder folder;
    const std::string job = folder.file("job.pcl", kPage + kPage);
    EXPECT_EQ(runQuillrip({ "-r", "75x75", "-sync", "y", "-o", folder.path("a.png"), "-i", job }).exitCode, 0);
    EXPECT_EQ(folder.names(), (Names { "a.png", "a_p0002.png", "job.pcl" }));
}

TEST(Program, AFormerFileIsReplaced)
{
    const TemporaryFolder folder;
    const std::string job = folder.file("job.pcl", kPage);
    const std::string image = folder.file("a.png", "former");
    EXPECT_EQ(runQuillrip({ "-r", "75x75", "-o", image, "-i", job }).exitCode, 0);
    EXPECT_TRUE(beginsWith(contentOf(image), "\x89PNG"));
}

TEST(Program, UnknownPartsBesideKnownOnesAreAWarning)
{
    const TemporaryFolder folder;
    const std::string job = folder.file("job.prn",
        "\x1B%-12345X@PJL ENTER LANGUAGE=ZJS\nJZJZ...\x1B%-12345X@PJL ENTER LANGUAGE=PCL\n" + kPage + "\x1B%-12345X");
    const Outcome outcome = runQuillrip({ "-r", "75x75", "-o", folder.path("a.png"), "-i", job });
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_NE(outcome.errors.find("warning"), std::string::npos);
    EXPECT_NE(outcome.errors.find("ZjStream"), std::string::npos);
}

TEST(Program, ReportsEveryConversionInALine)
{
    const TemporaryFolder folder;
    const std::string report = folder.path("report.jsonl");
    const std::string job = folder.file(
        "job.prn", "\x1B%-12345X@PJL ENTER LANGUAGE=ZJS\nJZJZ...\x1B%-12345X@PJL ENTER LANGUAGE=PCL\n" + kPage + kPage);
    const std::string damaged = folder.file("damaged.pcl", kPage + "\x1B*t75R\x1B*r1A\x1B*b999W\xFF");
    const auto run = [&](const std::string& input, const std::string& output) {
        const Outcome outcome
            = runQuillrip({ "-r", "75x75", "-q", "--report", report, "-o", folder.path(output), "-i", input });
        EXPECT_EQ(outcome.errors.find("warning"), std::string::npos) << outcome.errors;
        const std::string text = contentOf(report);
        return json::parse(text.substr(text.rfind('\n', text.size() - 2) + 1));
    };
    const json whole = run(job, "a.png");
    EXPECT_EQ(whole.at("exitCode"), 0);
    EXPECT_EQ(whole.at("message"), "");
    EXPECT_EQ(whole.at("input"), job);
    EXPECT_EQ(whole.at("output"), folder.path("a.png"));
    EXPECT_EQ(whole.at("bytes"), contentOf(job).size());
    EXPECT_EQ(whole.at("languages"), json::parse(R"([{"language":"PCL 5","parts":1}])"));
    EXPECT_EQ(whole.at("pages"), 2);
    EXPECT_EQ(whole.at("sizes").size(), 1u);
    EXPECT_EQ(whole.at("warnings").size(), 1u);
    EXPECT_EQ(whole.at("warnings").at(0).at("kind"), "job.passed-over");
    EXPECT_GT(whole.at("peakMemoryBytes"), 1 << 20);
    EXPECT_EQ(run(damaged, "b.png").at("exitCode"), 4);
    EXPECT_EQ(run(damaged, "b.png").at("pages"), 1);
    EXPECT_EQ(run(folder.path("missing"), "c.png").at("exitCode"), 2);
    EXPECT_TRUE(run(folder.path("missing"), "c.png").at("bytes").is_null());
    EXPECT_EQ(run(job, "missing/c.png").at("exitCode"), 3);
    const std::string lines = contentOf(report);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 6);
}

TEST(Program, MessagesToAClosedStandardErrorGoIntoNoFile)
{
    const TemporaryFolder folder;
    const std::string job = folder.file(
        "job.prn", "\x1B%-12345X@PJL ENTER LANGUAGE=ZJS\nJZJZ...\x1B%-12345X@PJL ENTER LANGUAGE=PCL\n" + kPage);
    const std::string command = std::string(QUILLRIP_PROGRAM) + " --report " + folder.path("report") + " -o "
        + folder.path("a.png") + " -i " + job + " 2>&-";
    EXPECT_EQ(std::system(command.c_str()), 0); // NOLINT(cert-env33-c,concurrency-mt-unsafe)
    EXPECT_EQ(json::parse(contentOf(folder.path("report"))).at("warnings").size(), 1u);
}

TEST(Program, AReportThatCannotBeWrittenEndsWithThree)
{
    const TemporaryFolder folder;
    const std::string job = folder.file("job.pcl", kPage);
    const std::string image = folder.path("a.png");
    // It is known before anything is drawn, or, for a disk that is full, when all is done: then the images stay.
    const Outcome refused = runQuillrip({ "-o", image, "-i", job, "--report", folder.path("missing/report") });
    EXPECT_EQ(refused.exitCode, 3);
    expectMessage(refused, folder.path("missing/report"));
    EXPECT_EQ(folder.names(), Names { "job.pcl" });
    const Outcome full = runQuillrip({ "-r", "75x75", "-o", image, "-i", job, "--report", "/dev/full" });
    EXPECT_EQ(full.exitCode, 3);
    expectMessage(full, "/dev/full");
    EXPECT_EQ(folder.names(), (Names { "a.png", "job.pcl" }));
    // What failed anyway keeps its own code.
    EXPECT_EQ(runQuillrip({ "-o", image, "-i", folder.path("x"), "--report", "/dev/full" }).exitCode, 2);
}

TEST(Program, HelpAndVersionGoToStandardOutput)
{
    EXPECT_NE(runQuillrip({ "--help" }).output.find("-faxtif"), std::string::npos);
    const std::string version = runQuillrip({ "--version" }).output;
    EXPECT_TRUE(beginsWith(version, "quillrip "));
    EXPECT_NE(version.find("Confinement"), std::string::npos);
    EXPECT_EQ(runQuillrip({ "--help" }).exitCode, 0);
}

} // namespace
} // namespace quillrip::test
