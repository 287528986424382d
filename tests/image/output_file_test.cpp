#include "quillrip/image/output_file.h"
#include "quillrip/image/output_files.h"
#include "tests/image/sample_pages.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>

#include <sys/stat.h>
#include <sys/wait.h>
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

std::unique_ptr<OutputFile> createFile(
    const std::string& path, std::string& reason, OutputFile::Naming naming = OutputFile::Naming::Unnamed)
{
    std::shared_ptr<OutputFolder> folder;
    std::string folderPath;
    OutputPlace place;
    return findPlace(path, folder, folderPath, place, reason) ? OutputFile::create(place, reason, naming) : nullptr;
}

bool appears(OutputFile& file) { return file.prepare(false) && file.appear(); }

} // namespace

/// Both ways of not being seen: files without a name, and hidden names where the system has no such files.
class OutputFileNaming : public testing::TestWithParam<OutputFile::Naming> {
protected:
    std::unique_ptr<OutputFile> create(const std::string& name)
    {
        return createFile(m_scratch.path(name), m_reason, GetParam());
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
    ASSERT_TRUE(appears(*file)) << file->reason();
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
    ASSERT_TRUE(appears(*file)) << file->reason();
    EXPECT_EQ(readTextFile(m_scratch.path("out")), "hello");
    file->settle();
    file.reset();
    EXPECT_EQ(m_scratch.entryCount(), 1u);
}

TEST_P(OutputFileNaming, WithdrawnFilesBringTheFormerOneBack)
{
    writeTextFile(m_scratch.path("old"), "former");
    auto replacing = create("old");
    auto fresh = create("new");
    ASSERT_TRUE(replacing && replacing->append(kHello) && appears(*replacing));
    ASSERT_TRUE(fresh && fresh->append(kHello) && appears(*fresh));
    EXPECT_TRUE(fresh->withdraw());
    EXPECT_TRUE(replacing->withdraw());
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
    ASSERT_TRUE(file && file->append(kHello) && appears(*file));
    struct stat status { };
    ASSERT_EQ(stat(m_scratch.path("out").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
}

TEST_P(OutputFileNaming, FollowsALinkAndKeepsIt)
{
    writeTextFile(m_scratch.path("real"), "former");
    fs::create_symlink("real", m_scratch.path("link"));
    auto file = create("link");
    ASSERT_TRUE(file && file->append(kHello) && appears(*file));
    file->settle();
    EXPECT_TRUE(fs::is_symlink(m_scratch.path("link")));
    EXPECT_EQ(readTextFile(m_scratch.path("real")), "hello");
}

TEST_P(OutputFileNaming, KeepsTheModeOfTheFormerFile)
{
    writeTextFile(m_scratch.path("out"), "former");
    ASSERT_EQ(chmod(m_scratch.path("out").c_str(), 0604), 0);
    auto file = create("out");
    ASSERT_TRUE(file && file->append(kHello) && appears(*file));
    EXPECT_EQ(fs::status(m_scratch.path("out")).permissions(), fs::perms { 0604 });
}

TEST_P(OutputFileNaming, WritesIntoTheFolderThatItBeganIn)
{
    fs::create_directory(m_scratch.path("folder"));
    auto file = create("folder/out");
    fs::rename(m_scratch.path("folder"), m_scratch.path("moved"));
    fs::create_directory(m_scratch.path("folder"));
    ASSERT_TRUE(file && file->append(kHello) && appears(*file));
    EXPECT_EQ(readTextFile(m_scratch.path("moved/out")), "hello");
    EXPECT_TRUE(fs::is_empty(m_scratch.path("folder")));
}

TEST_P(OutputFileNaming, FollowsALinkThatLeadsNowhereYet)
{
    fs::create_directory(m_scratch.path("folder"));
    fs::create_symlink("folder/real", m_scratch.path("link"));
    auto file = create("link");
    ASSERT_TRUE(file && file->append(kHello) && appears(*file)) << m_reason;
    EXPECT_TRUE(fs::is_symlink(m_scratch.path("link")));
    EXPECT_EQ(readTextFile(m_scratch.path("folder/real")), "hello");
}

TEST_P(OutputFileNaming, LinksOfOtherUsersAreNotFollowed)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only the superuser can give a link away";
    writeTextFile(m_scratch.path("precious"), "former");
    fs::create_symlink("precious", m_scratch.path("link"));
    ASSERT_EQ(lchown(m_scratch.path("link").c_str(), 12345, 12345), 0);
    EXPECT_FALSE(create("link"));
    EXPECT_EQ(m_reason, "cannot be written: it is a symbolic link that another user has put there");
    EXPECT_EQ(readTextFile(m_scratch.path("precious")), "former");
    // The owner of a folder says what is in it.
    ASSERT_EQ(chown(m_scratch.folder().c_str(), 12345, 12345), 0);
    EXPECT_TRUE(create("link"));
}

TEST_P(OutputFileNaming, WhatAKilledRunLeftIsRemovedByTheNextOne)
{
    writeTextFile(m_scratch.path("out"), "former");
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        auto file = create("out");
        if (file && file->append(kHello) && file->prepare(false))
            raise(SIGKILL);
        _exit(1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(m_scratch.entryCount(), 4u); // the former file, its second name, the new one, the lock
    EXPECT_EQ(readTextFile(m_scratch.path("out")), "former");
    create("other").reset();
    EXPECT_EQ(m_scratch.entryCount(), 4u);
    create("out").reset();
    EXPECT_EQ(m_scratch.entryCount(), 1u);
    EXPECT_EQ(readTextFile(m_scratch.path("out")), "former");
}

TEST_P(OutputFileNaming, RunsOnTheSameNameLeaveEachOtherAlone)
{
    writeTextFile(m_scratch.path("out"), "former");
    auto first = create("out");
    ASSERT_TRUE(first && first->append(kHello) && first->prepare(false));
    auto second = create("out");
    ASSERT_TRUE(second && second->append(std::vector<std::uint8_t> { 'y', 'o', 'u' }) && appears(*second));
    ASSERT_TRUE(first->appear()) << first->reason();
    EXPECT_EQ(readTextFile(m_scratch.path("out")), "hello");
    first.reset();
    second.reset();
    EXPECT_EQ(m_scratch.entryCount(), 1u);
}

TEST_P(OutputFileNaming, AFileThatTookTheNameMeanwhileIsNotReplaced)
{
    auto file = create("out");
    ASSERT_TRUE(file && file->append(kHello) && file->prepare(false));
    writeTextFile(m_scratch.path("out"), "somebody else's");
    EXPECT_FALSE(file->appear());
    file.reset();
    EXPECT_EQ(readTextFile(m_scratch.path("out")), "somebody else's");
    EXPECT_EQ(m_scratch.entryCount(), 1u);
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
    ASSERT_TRUE(file && file->append(kHello) && appears(*file));
    EXPECT_TRUE(fs::exists(m_scratch.path(name + ".png")));
}

TEST_P(OutputFileNaming, AFolderThatTookTheNameMeanwhileIsNotReplaced)
{
    auto file = create("out");
    ASSERT_TRUE(file && file->append(kHello));
    fs::create_directory(m_scratch.path("out"));
    EXPECT_FALSE(appears(*file));
    EXPECT_NE(file->reason(), "");
    file.reset();
    EXPECT_TRUE(fs::is_directory(m_scratch.path("out")));
    EXPECT_EQ(m_scratch.entryCount(), 1u);
}

TEST_P(OutputFileNaming, SeveralFilesAppearTogether)
{
    OutputFiles files { { false, GetParam(), 3 } }; // so few may be open that most have hidden names
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
        OutputFiles files { { false, GetParam(), 2 } };
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
        EXPECT_FALSE(createFile(path, reason)) << path;
        EXPECT_EQ(reason.find("cannot be written: "), 0u) << reason;
    }
}
