#include "quillrip/image/output_file.h"
#include "quillrip/image/output_files.h"
#include "tests/image/sample_pages.h"

#include <gtest/gtest.h>

#include <array>

#include <sys/stat.h>
#include <unistd.h>

using namespace quillrip;
using namespace quillrip::test;
namespace fs = std::filesystem;

namespace {

const std::vector<std::uint8_t> kHello { 'h', 'e', 'l', 'l', 'o' };

bool appendText(OutputFiles& files, const std::string& text)
{
    return files.append({ reinterpret_cast<const std::uint8_t*>(text.data()), text.size() });
}

} // namespace

/// Both ways of not being seen: files without a name, and hidden names where the system has no such files.
class OutputFileNaming : public testing::TestWithParam<OutputFile::Naming> {
protected:
    std::unique_ptr<OutputFile> create(const std::string& name)
    {
        return OutputFile::create(m_scratch.path(name), m_reason, GetParam());
    }

    ScratchFolder m_scratch;
    std::string m_reason;
};

INSTANTIATE_TEST_SUITE_P(Both, OutputFileNaming,
    testing::Values(OutputFile::Naming::Unnamed, OutputFile::Naming::Hidden),
    [](const auto& info) { return std::string { info.param == OutputFile::Naming::Unnamed ? "Unnamed" : "Hidden" }; });

TEST_P(OutputFileNaming, AppearsWhenPublished)
{
    auto file = create("out");
    ASSERT_TRUE(file) << m_reason;
    ASSERT_TRUE(file->append(kHello));
    EXPECT_FALSE(fs::exists(m_scratch.path("out")));
    ASSERT_TRUE(file->publish()) << file->reason();
    file->settle();
    EXPECT_EQ(readTextFile(m_scratch.path("out")), "hello");
    file.reset();
    EXPECT_EQ(readTextFile(m_scratch.path("out")), "hello");
    EXPECT_EQ(m_scratch.entryCount(), 1u);
}

TEST_P(OutputFileNaming, LeavesNothingWhenDropped)
{
    writeTextFile(m_scratch.path("out"), "former");
    auto file = create("out");
    ASSERT_TRUE(file && file->append(kHello) && file->flush());
    file.reset();
    EXPECT_EQ(readTextFile(m_scratch.path("out")), "former");
    EXPECT_EQ(m_scratch.entryCount(), 1u);
}

TEST_P(OutputFileNaming, TakesTheFormerFilesPlace)
{
    writeTextFile(m_scratch.path("out"), "former, and longer");
    auto file = create("out");
    ASSERT_TRUE(file && file->append(kHello));
    ASSERT_TRUE(file->publish()) << file->reason();
    EXPECT_EQ(readTextFile(m_scratch.path("out")), "hello");
    file->settle();
    EXPECT_EQ(m_scratch.entryCount(), 1u);
}

TEST_P(OutputFileNaming, WithdrawnFilesBringTheFormerOneBack)
{
    writeTextFile(m_scratch.path("old"), "former");
    auto replacing = create("old");
    auto fresh = create("new");
    ASSERT_TRUE(replacing && replacing->append(kHello) && replacing->publish());
    ASSERT_TRUE(fresh && fresh->append(kHello) && fresh->publish());
    fresh->withdraw();
    replacing->withdraw();
    EXPECT_EQ(readTextFile(m_scratch.path("old")), "former");
    EXPECT_FALSE(fs::exists(m_scratch.path("new")));
    replacing.reset();
    fresh.reset();
    EXPECT_EQ(m_scratch.entryCount(), 1u);
}

TEST_P(OutputFileNaming, HasTheModeThatTheUserWants)
{
    const mode_t former = umask(027);
    auto file = create("out");
    umask(former);
    ASSERT_TRUE(file && file->append(kHello) && file->publish());
    struct stat status { };
    ASSERT_EQ(stat(m_scratch.path("out").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
}

TEST_P(OutputFileNaming, FollowsALinkAndKeepsIt)
{
    writeTextFile(m_scratch.path("real"), "former");
    fs::create_symlink("real", m_scratch.path("link"));
    auto file = create("link");
    ASSERT_TRUE(file && file->append(kHello) && file->publish());
    file->settle();
    EXPECT_TRUE(fs::is_symlink(m_scratch.path("link")));
    EXPECT_EQ(readTextFile(m_scratch.path("real")), "hello");
}

TEST_P(OutputFileNaming, WritesBeforeTheEndAndReadsBack)
{
    auto file = create("out");
    ASSERT_TRUE(file);
    const std::vector<std::uint8_t> large(700000, 'x');
    ASSERT_TRUE(file->append(kHello) && file->append(large) && file->append(kHello));
    EXPECT_EQ(file->size(), 700010u);
    ASSERT_TRUE(file->writeAt(1, std::vector<std::uint8_t> { 'E' }));
    std::array<std::uint8_t, 5> read {};
    ASSERT_TRUE(file->readAt(0, read.data(), read.size()));
    EXPECT_EQ(std::string(read.begin(), read.end()), "hEllo");
    ASSERT_TRUE(file->readAt(700005, read.data(), read.size()));
    EXPECT_EQ(std::string(read.begin(), read.end()), "hello");
    EXPECT_FALSE(file->readAt(700006, read.data(), read.size())); // beyond the end
}

TEST_P(OutputFileNaming, AcceptsNamesAsLongAsTheSystemDoes)
{
    const std::string name(251, 'n');
    auto file = create(name + ".png");
    ASSERT_TRUE(file && file->append(kHello) && file->publish());
    EXPECT_TRUE(fs::exists(m_scratch.path(name + ".png")));
}

TEST_P(OutputFileNaming, AFolderThatTookTheNameMeanwhileIsNotReplaced)
{
    auto file = create("out");
    ASSERT_TRUE(file && file->append(kHello));
    fs::create_directory(m_scratch.path("out"));
    EXPECT_FALSE(file->publish());
    EXPECT_NE(file->reason(), "");
    file.reset();
    EXPECT_TRUE(fs::is_directory(m_scratch.path("out")));
    EXPECT_EQ(m_scratch.entryCount(), 1u);
}

TEST_P(OutputFileNaming, SeveralFilesAppearTogether)
{
    OutputFiles files { 3, GetParam() }; // so few that most are gathered in one and copied out of it
    for (int i = 0; i < 8; ++i) {
        ASSERT_TRUE(files.begin(m_scratch.path("file" + std::to_string(i))));
        ASSERT_TRUE(appendText(files, "text "));
        ASSERT_TRUE(appendText(files, std::string(static_cast<std::size_t>(i) * 100000, 'z')));
    }
    if (GetParam() == OutputFile::Naming::Unnamed) {
        EXPECT_FALSE(fs::exists(m_scratch.path("file0")));
    }
    ASSERT_TRUE(files.commit()) << files.reason();
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(
            readTextFile(m_scratch.path("file" + std::to_string(i))).size(), 5 + static_cast<std::size_t>(i) * 100000);
    EXPECT_EQ(m_scratch.entryCount(), 8u);
}

TEST_P(OutputFileNaming, WhenOneOfSeveralFailsNoneAppears)
{
    writeTextFile(m_scratch.path("file0"), "former 0");
    writeTextFile(m_scratch.path("file3"), "former 3");
    {
        OutputFiles files { 2, GetParam() };
        for (int i = 0; i < 5; ++i) {
            ASSERT_TRUE(files.begin(m_scratch.path("file" + std::to_string(i))));
            ASSERT_TRUE(appendText(files, "new"));
        }
        fs::create_directory(m_scratch.path("file4"));
        EXPECT_FALSE(files.commit());
        EXPECT_NE(files.reason().find("file4"), std::string::npos) << files.reason();
    }
    EXPECT_EQ(readTextFile(m_scratch.path("file0")), "former 0");
    EXPECT_EQ(readTextFile(m_scratch.path("file3")), "former 3");
    EXPECT_FALSE(fs::exists(m_scratch.path("file1")));
    EXPECT_FALSE(fs::exists(m_scratch.path("file2")));
    EXPECT_EQ(m_scratch.entryCount(), 3u); // the two former files and the folder
}

TEST(OutputFile, NamesThatNoFileCanHaveAreRefused)
{
    const ScratchFolder scratch;
    fs::create_directory(scratch.path("folder"));
    fs::create_symlink("/dev/full", scratch.path("device"));
    ASSERT_EQ(mkfifo(scratch.path("pipe").c_str(), 0600), 0);
    for (const std::string& path : { scratch.path("missing/out"), scratch.path("folder"), scratch.path("folder/"),
             scratch.path("device"), scratch.path("pipe"), std::string {}, scratch.path(std::string(300, 'n')) }) {
        std::string reason;
        EXPECT_FALSE(OutputFile::create(path, reason)) << path;
        EXPECT_EQ(reason.find("cannot be written: "), 0u) << reason;
    }
}
