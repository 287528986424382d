#include "quillrip/job/child_process.h"
#include "quillrip/job/sandbox.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <string>
#include <unistd.h>

namespace quillrip {
namespace {

struct Input {
    explicit Input(const std::string& text)
        : file(std::tmpfile())
    {
        std::fputs(text.c_str(), file);
        std::fflush(file);
    }
    ~Input() { std::fclose(file); }
    int descriptor() const { return ::fileno(file); }
    std::FILE* file;
};

std::string allOf(InputStream& stream)
{
    std::string text;
    for (int c = stream.get(); c >= 0; c = stream.get())
        text.push_back(static_cast<char>(c));
    return text;
}

TEST(ChildProcess, ReadsItsInputFromTheStart)
{
    const Input input("hello\n");
    RunBudget budget;
    ChildProcess child(budget);
    ASSERT_TRUE(child.start({ "/bin/cat" }, input.descriptor()));
    EXPECT_EQ(allOf(child.output()), "hello\n");
    EXPECT_EQ(child.finish(), ChildProcess::End::Done);
}

TEST(ChildProcess, ErrorsDoNotStopItsOutput)
{
    const Input input("");
    RunBudget budget;
    ChildProcess child(budget);
    // More than a pipe holds on both ways out.
    ASSERT_TRUE(
        child.start({ "/bin/sh", "-c",
                        "echo first >&2; i=0; while [ $i -lt 3000 ]; do echo 0123456789012345678901234567890123456789; "
                        "echo 0123456789012345678901234567890123456789 >&2; i=$((i+1)); done; exit 3" },
            input.descriptor()));
    EXPECT_EQ(allOf(child.output()).size(), 3000u * 41);
    EXPECT_EQ(child.finish(), ChildProcess::End::Failed);
    EXPECT_EQ(child.complaint(), "first");
}

TEST(ChildProcess, OptionsInTheEnvironmentDoNotReachIt)
{
    ::setenv("GS_OPTIONS", "-dNOSAFER", 1);
    const Input input("");
    RunBudget budget;
    ChildProcess child(budget);
    ASSERT_TRUE(child.start({ "/bin/sh", "-c", "echo \"[$GS_OPTIONS]\"; pwd" }, input.descriptor()));
    EXPECT_EQ(allOf(child.output()), "[]\n/\n");
    EXPECT_EQ(child.finish(), ChildProcess::End::Done);
    ::unsetenv("GS_OPTIONS");
}

TEST(ChildProcess, ReadsNoFileButItsOwnAndWritesNone)
{
    if (sandboxSupport().find("Landlock") == std::string::npos)
        GTEST_SKIP() << "the kernel offers no Landlock";
    const std::string secret = testing::TempDir() + "quillrip-secret";
    std::ofstream { secret } << "secret\n";
    const Input input("hello\n");
    RunBudget budget;
    ChildProcess child(budget);
    ASSERT_TRUE(child.start(
        { "/bin/sh", "-c", "cat " + secret + "; echo more >" + secret + "; cat /proc/self/fd/0" }, input.descriptor()));
    EXPECT_EQ(allOf(child.output()), "hello\n");
    static_cast<void>(child.finish());
    std::string kept;
    std::getline(std::ifstream { secret }, kept);
    EXPECT_EQ(kept, "secret");
    std::remove(secret.c_str());
}

TEST(ChildProcess, HasFourGibibytesAndWritesNoFileOrDumpAndInheritsNothing)
{
    const Input input("");
    const int inherited = ::fcntl(input.descriptor(), F_DUPFD, 3);
    ASSERT_TRUE(inherited > 2 && inherited < 10); // shells name descriptors by one digit
    const std::string probe = "(: <&" + std::to_string(inherited) + ") && echo open || echo closed";
    RunBudget budget;
    ChildProcess child(budget);
    ASSERT_TRUE(child.start({ "/bin/sh", "-c", "ulimit -v; ulimit -f; ulimit -c; " + probe }, input.descriptor()));
    ::close(inherited);
    EXPECT_EQ(allOf(child.output()), "4194304\n0\n0\nclosed\n"); // KiB, blocks, blocks
    EXPECT_EQ(child.finish(), ChildProcess::End::Done);
}

TEST(ChildProcess, AProgramThatIsNotThereFails)
{
    const Input input("");
    RunBudget budget;
    ChildProcess child(budget);
    EXPECT_TRUE(child.start({ "/no/such/program" }, input.descriptor()));
    EXPECT_EQ(allOf(child.output()), "");
    EXPECT_EQ(child.finish(), ChildProcess::End::NotStarted);
}

TEST(ChildProcess, EndsWhenTheBudgetIsSpent)
{
    const Input input("");
    RunBudget budget(std::chrono::seconds(1000), std::chrono::milliseconds(1));
    ChildProcess waits(budget);
    // Nothing would end this program by itself within the test's time.
    ASSERT_TRUE(waits.start({ "/bin/sh", "-c", "echo started; exec sleep 100000" }, input.descriptor()));
    allOf(waits.output());
    EXPECT_EQ(waits.finish(), ChildProcess::End::OutOfTime);
    EXPECT_TRUE(budget.isSpent());
}

TEST(ChildProcess, ItsProcessorTimeIsTakenOffTheBudgetOfAll)
{
    const Input input("");
    RunBudget budget;
    const auto before = budget.processorLeft();
    ChildProcess child(budget);
    ASSERT_TRUE(
        child.start({ "/bin/sh", "-c", "i=0; while [ $i -lt 20000 ]; do i=$((i+1)); done" }, input.descriptor()));
    EXPECT_EQ(child.finish(), ChildProcess::End::Done);
    EXPECT_LT(budget.processorLeft(), before);
}

TEST(ChildProcess, EndsWithItsOwner)
{
    const Input input("");
    RunBudget budget;
    ChildProcess child(budget);
    // Nothing would end this program by itself within the test's time.
    ASSERT_TRUE(child.start({ "/bin/sh", "-c", "echo started; sleep 100000" }, input.descriptor()));
    EXPECT_EQ(child.output().get(), 's');
}

} // namespace
} // namespace quillrip
