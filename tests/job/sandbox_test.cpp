#include "quillrip/job/sandbox.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillrip {
namespace {

/// In a process of its own, since there is no way back.
int statusOf(const std::function<int()>& action)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(action());
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

constexpr int kNotOffered = 77;

class Sandbox : public testing::Test {
protected:
    Sandbox()
    {
        std::string path = testing::TempDir() + "quillrip-sandbox-XXXXXX";
        m_folder = mkdtemp(path.data());
        std::filesystem::create_directory(m_folder + "/open");
        std::ofstream { m_folder + "/secret" } << "secret";
        std::ofstream { m_folder + "/open/known" } << "known";
    }
    ~Sandbox() override { std::filesystem::remove_all(m_folder); }

    int errorOfOpening(const std::string& name, int flags) const
    {
        const int descriptor = open((m_folder + "/" + name).c_str(), flags | O_CLOEXEC, 0600); // NOLINT
        const int error = descriptor < 0 ? errno : 0;
        if (descriptor >= 0)
            close(descriptor);
        return error;
    }

    std::string m_folder;
};

TEST_F(Sandbox, OnlyWhatTheRulesNameCanBeReached)
{
    const int status = statusOf([&] {
        SandboxRules rules;
        rules.readable = { m_folder + "/open", m_folder + "/missing" };
        if (!confineFiles(rules))
            return kNotOffered;
        return errorOfOpening("open/known", O_RDONLY) == 0 && errorOfOpening("secret", O_RDONLY) == EACCES
                && errorOfOpening("open/known", O_RDWR) == EACCES
                && errorOfOpening("open/new", O_WRONLY | O_CREAT) == EACCES
            ? 0
            : 1;
    });
    if (status == kNotOffered)
        GTEST_SKIP() << "no Landlock here";
    EXPECT_EQ(status, 0);
}

TEST_F(Sandbox, FilesAreMadeOnlyInTheFoldersThatWereOpen)
{
    const int status = statusOf([&] {
        const int folder = open((m_folder + "/open").c_str(), O_RDONLY | O_DIRECTORY);
        SandboxRules rules;
        rules.writableFolders = { folder };
        if (!confineFiles(rules))
            return kNotOffered;
        return errorOfOpening("open/new", O_RDWR | O_CREAT) == 0 && errorOfOpening("new", O_RDWR | O_CREAT) == EACCES
                && renameat(folder, "new", folder, "renamed") == 0 && unlinkat(folder, "renamed", 0) == 0
                && mkdirat(folder, "folder", 0700) != 0 && unlink((m_folder + "/secret").c_str()) != 0
            ? 0
            : 1;
    });
    if (status == kNotOffered)
        GTEST_SKIP() << "no Landlock here";
    EXPECT_EQ(status, 0);
}

TEST_F(Sandbox, CallsThatDrawingDoesNotNeedAreRefused)
{
    const auto start = [](bool runsPrograms) {
        return statusOf([&] {
            if (!confineCalls(runsPrograms))
                return kNotOffered;
            if (socket(AF_UNIX, SOCK_STREAM, 0) >= 0 || errno != EPERM || unshare(0) == 0)
                return 1;
            execl("/bin/true", "true", nullptr);
            return 2;
        });
    };
    if (start(true) == kNotOffered)
        GTEST_SKIP() << "no filters here";
    EXPECT_EQ(start(true), 0);
    EXPECT_EQ(start(false), 2);
}

} // namespace
} // namespace quillrip
