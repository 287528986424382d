#include "quillrip/stream/containers.h"

#include <gtest/gtest.h>

#include <string>

namespace quillrip::stream {
namespace {

using namespace std::string_literals;

const std::string kJob = "\x1B"
                         "Ehello\f";

struct Unwrapped {
    std::string job;
    std::string refusal;
    std::uint64_t offset = 0;
};

Unwrapped unwrapped(const std::string& text)
{
    MemoryInputStream input({ reinterpret_cast<const std::uint8_t*>(text.data()), text.size() });
    const Container container = unwrap(input);
    Unwrapped result;
    result.refusal = container.refusal;
    result.offset = container.job(input).offset();
    for (int c = container.job(input).get(); c >= 0; c = container.job(input).get())
        result.job.push_back(static_cast<char>(c));
    return result;
}

TEST(Containers, NothingIsTakenFromABareJob)
{
    EXPECT_EQ(unwrapped(kJob).job, kJob);
    EXPECT_EQ(unwrapped("").job, "");
    const std::string nuls = std::string(600, '\0') + kJob;
    EXPECT_EQ(unwrapped(nuls).job, nuls);
    const std::string prose = "Header\nParagraph\nList\n";
    EXPECT_EQ(unwrapped(prose).job, prose);
}

TEST(Containers, MacBinaryGivesItsDataFork)
{
    std::string header(128, '\0');
    header[1] = 4;
    header.replace(2, 4, "test");
    header[86] = static_cast<char>(kJob.size());
    const Unwrapped result = unwrapped(header + kJob + "resource fork");
    EXPECT_EQ(result.job, kJob);
    EXPECT_EQ(result.offset, 128u);
}

TEST(Containers, LpdCaptureGivesItsDataFile)
{
    const std::string control = "Hhost\nPuser\n";
    const std::string captured = "\2lp\n" + std::string("\2") + std::to_string(control.size()) + " cfA001host\n"
        + control + "\0"s + "\3" + std::to_string(kJob.size()) + " dfA001host\n" + kJob + "\0"s;
    EXPECT_EQ(unwrapped(captured).job, kJob);
    EXPECT_EQ(unwrapped("\2lp\n\3" + std::to_string(kJob.size()) + " dfA001host\n" + kJob + "\0\2"s).job, kJob);
    EXPECT_EQ(unwrapped("\3"s + "0 dfA001host\n" + kJob).job, kJob);
    EXPECT_NE(unwrapped("\2lp\n\2"s + std::to_string(control.size()) + " cfA001host\n" + control + "\0"s).refusal, "");
}

TEST(Containers, IppRequestGivesItsDocument)
{
    const std::string ipp = "\1\1\0\2\0\0\0\1\1\x47\0\x12"s + "attributes-charset" + "\0\5utf-8"s + "\3";
    EXPECT_EQ(unwrapped(ipp + kJob).job, kJob);
    EXPECT_NE(unwrapped(ipp).refusal, "");
    const std::string http = "POST /ipp HTTP/1.1\r\nContent-Type: application/ipp\r\n";
    EXPECT_EQ(unwrapped(http + "\r\n" + ipp + kJob).job, kJob);
    const std::string body = ipp + kJob;
    const auto chunk = [](const std::string& part) {
        char size[16];
        std::snprintf(size, sizeof size, "%zx\r\n", part.size());
        return size + part + "\r\n";
    };
    EXPECT_EQ(unwrapped(http + "Transfer-Encoding: chunked\r\n\r\n" + chunk(body.substr(0, 30)) + chunk(body.substr(30))
                  + "0\r\n\r\n")
                  .job,
        kJob);
}

TEST(Containers, MetafileThatBeginsLikeAnIppRequestIsNone)
{
    const std::string metafile
        = "\1\0\0\0\x6C\0\0\0\1\0\0\0\1\x03"s + std::string(26, '\0') + " EMF" + std::string(100, '\0');
    EXPECT_EQ(unwrapped(metafile).job, metafile);
    EXPECT_EQ(unwrapped(metafile).refusal, "");
}

TEST(Containers, ControlLinesInFrontAreDropped)
{
    EXPECT_EQ(unwrapped("Hhost\nPuser\nJtitle\nldfA001host\nUdfA001host\nNtitle\n" + kJob).job, kJob);
    EXPECT_NE(unwrapped("Hhost\nPuser\nldfA001host\nUdfA001host\n").refusal, "");
}

} // namespace
} // namespace quillrip::stream
