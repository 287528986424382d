// What --trace shows of metafiles: each record by its published name, at its place in the input.

#include "tests/emf/emf_bench.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace quillrip::test {
namespace {

bool isTraced(const Played& played, const std::string& line)
{
    const auto& commands = played.report.commands;
    return std::find(commands.begin(), commands.end(), line) != commands.end();
}

TEST(EmfTrace, NamesEachRecordWithItsPlaceAndItsFirstFields)
{
    const Bytes job
        = metafile(rectangle(-7, 2, 30, 40) + record(0x46, { 36, 1, 2, 3, 4, 5, 6, 7, 8, 9 }) + record(0xF00, { 1 }));
    const std::size_t header = job[4];
    const Played played(job);
    EXPECT_TRUE(isTraced(played, std::to_string(header) + " RECTANGLE -7 2 30 40"));
    EXPECT_TRUE(isTraced(played, std::to_string(header + 24) + " COMMENT (8 bytes more) 36 1 2 3 4 5 6 7"));
    EXPECT_TRUE(isTraced(played, std::to_string(header + 72) + " record 0xF00 1"));
}

TEST(EmfTrace, NamesWhatLiesWithinEmfPlusComments)
{
    // A header of EMF+, then FillRects of a record that has no room for its fields.
    const Bytes plus = words({ 0x2B464D45, 0x00014001, 28, 16, 0xDBC01002, 0, 300, 300, 0x8000400A, 12, 0 });
    const Played played(metafile(record(0x46, { static_cast<std::int64_t>(plus.size()) }, plus)));
    const auto& commands = played.report.commands;
    EXPECT_TRUE(std::any_of(commands.begin(), commands.end(),
        [](const std::string& line) { return line.find(" EMF+ Header flags 0x0001, 16 bytes") != std::string::npos; }));
    EXPECT_TRUE(std::any_of(commands.begin(), commands.end(), [](const std::string& line) {
        return line.find(" EMF+ FillRects flags 0x8000, 0 bytes") != std::string::npos;
    }));
}

} // namespace
} // namespace quillrip::test
