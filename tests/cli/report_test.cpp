#include "quillrip/cli/conversion_record.h"
#include "quillrip/cli/report_file.h"
#include "tests/cli/program.h"

#include <gtest/gtest.h>

#include <filesystem>

#include <nlohmann/json.hpp>

namespace quillrip::cli {
namespace {

using nlohmann::json;

json parsed(const ConversionRecord& record, int exitCode)
{
    return json::parse(record.line(exitCode, "why", 1.23456, Resources { 0.5, 4096 }));
}

TEST(ConversionRecord, CountsLanguagesAndRunsOfPages)
{
    ConversionRecord record("in", "out.tif");
    for (const char* language : { "PCL 5", "PCL XL", "PCL 5" })
        record.addLanguage(language);
    record.addPage(10, 20, { 75, 75 });
    record.addPage(10, 20, { 75, 75 });
    record.addPage(20, 10, { 75, 75.004 });
    record.addPage(20, 10, { 75, 150 });
    const json line = parsed(record, 4);
    EXPECT_EQ(line.at("languages"), json::parse(R"([{"language":"PCL 5","parts":2},{"language":"PCL XL","parts":1}])"));
    EXPECT_EQ(line.at("pages"), 4);
    EXPECT_EQ(line.at("sizes"), json::parse(R"([
        {"first":1,"pages":2,"width":10,"height":20,"dpiAcross":75.0,"dpiDown":75.0},
        {"first":3,"pages":1,"width":20,"height":10,"dpiAcross":75.0,"dpiDown":75.0},
        {"first":4,"pages":1,"width":20,"height":10,"dpiAcross":75.0,"dpiDown":150.0}])"));
}

TEST(ConversionRecord, TellsOfPagesOnlyWhereTheyAreThere)
{
    ConversionRecord record("in", "out.tif");
    record.addPage(10, 20, { 75, 75 });
    for (const int failed : { 1, 2, 3, 5 }) {
        EXPECT_EQ(parsed(record, failed).at("pages"), 0);
        EXPECT_EQ(parsed(record, failed).at("sizes"), json::array());
    }
    EXPECT_EQ(parsed(record, 0).at("pages"), 1);
}

TEST(ConversionRecord, TellsTimesAndWarnings)
{
    ConversionRecord record("in", "out.tif");
    record.addWarning({ Severity::Warning, 7, "a.kind", "a \"message\"\n" });
    const json line = parsed(record, 0);
    EXPECT_EQ(line.at("seconds"), 1.235);
    EXPECT_EQ(line.at("processorSeconds"), 0.5);
    EXPECT_EQ(line.at("peakMemoryBytes"), 4096);
    EXPECT_EQ(line.at("exitCode"), 0);
    EXPECT_EQ(line.at("message"), "why");
    EXPECT_EQ(line.at("started").get<std::string>().size(), 20u);
    EXPECT_EQ(line.at("warnings"), json::parse(R"([{"kind":"a.kind","offset":7,"message":"a \"message\"\n"}])"));
    EXPECT_FALSE(json::parse(record.line(5, "late", 1, {})).contains("peakMemoryBytes"));
}

TEST(ConversionRecord, LengthOfAFileIsKnownBeforeAndOfAPipeAfterwards)
{
    ConversionRecord record("in", "out.tif");
    EXPECT_TRUE(parsed(record, 2).at("bytes").is_null());
    record.setInputBytesRead(10);
    EXPECT_EQ(parsed(record, 0).at("bytes"), 10);
    ConversionRecord file("in", "out.tif");
    file.setInputBytes(100);
    file.setInputBytesRead(10);
    EXPECT_EQ(parsed(file, 0).at("bytes"), 100);
}

TEST(ConversionRecord, NamesOfAllBytesStayTellable)
{
    ConversionRecord record("caf\xE9\n", "caf\xC3\xA9.tif");
    const std::string text = record.line(0, "", 0, {});
    EXPECT_EQ(text.find('\n'), std::string::npos);
    const json line = json::parse(text);
    EXPECT_EQ(line.at("input"), "caf\xEF\xBF\xBD\n");
    EXPECT_EQ(line.at("inputHex"), "636166e90a");
    EXPECT_EQ(line.at("output"), "caf\xC3\xA9.tif");
    EXPECT_FALSE(line.contains("outputHex"));
}

TEST(ResourceMeter, MemoryIsThisProcessesOwn)
{
    const Resources used = ResourceMeter().used();
    EXPECT_GT(used.peakBytes, std::uint64_t { 1 } << 20);
    EXPECT_LT(used.peakBytes, std::uint64_t { 1 } << 34);
    EXPECT_GT(used.processorSeconds, 0);
}

TEST(ReportFile, LinesAreAppended)
{
    const test::TemporaryFolder folder;
    const std::string path = folder.path("report");
    std::string reason;
    const auto one = ReportFile::open(path, folder.path("job"), reason);
    const auto other = ReportFile::open(path, folder.path("job"), reason);
    ASSERT_TRUE(one && other) << reason;
    EXPECT_TRUE(one->append("first", false, reason));
    EXPECT_TRUE(other->append("second", true, reason));
    EXPECT_TRUE(one->append("third", false, reason));
    EXPECT_EQ(test::contentOf(path), "first\nsecond\nthird\n");
}

TEST(ReportFile, ALineThatWasCutOffDoesNotSwallowTheNext)
{
    const test::TemporaryFolder folder;
    const std::string path = folder.file("report", "whole\nhal");
    std::string reason;
    const auto file = ReportFile::open(path, folder.path("job"), reason);
    ASSERT_TRUE(file) << reason;
    EXPECT_TRUE(file->append("next", false, reason));
    EXPECT_EQ(test::contentOf(path), "whole\nhal\nnext\n");
}

TEST(ReportFile, WhatCannotBeWrittenIsTold)
{
    const test::TemporaryFolder folder;
    std::string reason;
    EXPECT_FALSE(ReportFile::open(folder.path("missing/report"), folder.path("job"), reason));
    EXPECT_EQ(reason, "cannot be written: No such file or directory");
    const auto full = ReportFile::open("/dev/full", folder.path("job"), reason);
    ASSERT_TRUE(full);
    EXPECT_FALSE(full->append("line", false, reason));
    EXPECT_EQ(reason, "cannot be written: No space left on device");
}

TEST(ReportFile, TheInputIsNoReport)
{
    const test::TemporaryFolder folder;
    const std::string job = folder.file("job", "a print job");
    std::filesystem::create_symlink(job, folder.path("report"));
    std::string reason;
    EXPECT_FALSE(ReportFile::open(folder.path("report"), job, reason));
    EXPECT_EQ(reason, "is the input, and cannot be the report");
    EXPECT_EQ(test::contentOf(job), "a print job");
}

} // namespace
} // namespace quillrip::cli
