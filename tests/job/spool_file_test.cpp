#include "quillrip/job/spool_file.h"

#include <gtest/gtest.h>

#include <string>
#include <unistd.h>

namespace quillrip {
namespace {

using namespace std::string_literals;

struct Spooled {
    std::string text;
    std::uint64_t stoppedAt = 0;
};

Spooled spooled(const std::string& bytes, bool decodesTagged = true)
{
    MemoryInputStream input({ reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size() });
    SpoolFile file;
    Spooled result;
    EXPECT_TRUE(file.fill(input, decodesTagged));
    result.stoppedAt = input.offset();
    char buffer[4096];
    for (ssize_t got = ::read(file.descriptor(), buffer, sizeof buffer); got > 0;
         got = ::read(file.descriptor(), buffer, sizeof buffer))
        result.text.append(buffer, static_cast<std::size_t>(got));
    return result;
}

const std::string kExit = "\x1B%-12345X";

TEST(SpoolFile, TakesTheJobUpToItsUniversalExit)
{
    const Spooled result = spooled("%!PS\n1 2 add\n" + kExit + "@PJL EOJ\n");
    EXPECT_EQ(result.text, "%!PS\n1 2 add\n");
    EXPECT_EQ(result.stoppedAt, 13u);
    EXPECT_EQ(spooled("%!PS to the end").text, "%!PS to the end");
}

TEST(SpoolFile, ExitsInsideOfBinaryDataAreData)
{
    const std::string binary = "%PDF-1.4 " + kExit + "\x80\x81\x1B\x1B%-1" + std::string(300000, 'z') + kExit + "\1\2";
    EXPECT_EQ(spooled(binary).text, binary);
    EXPECT_EQ(spooled(binary + kExit).text, binary);
}

TEST(SpoolFile, TaggedBinaryDataIsDecoded)
{
    EXPECT_EQ(spooled("\1M%!PS\n\1\x5B\1\x41x\n" + kExit).text, "%!PS\n\x1B\1x\n");
    EXPECT_EQ(spooled("\1M%!", false).text, "\1M%!");
}

} // namespace
} // namespace quillrip
