#include "quillrip/cli/console.h"

#include "tests/cli/program.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace quillrip::cli {
namespace {

using namespace std::chrono_literals;

/// Both ends of a terminal that nobody sits at.
class Terminal {
public:
    Terminal()
    {
        m_screen = posix_openpt(O_RDWR | O_NOCTTY);
        if (grantpt(m_screen) == 0 && unlockpt(m_screen) == 0)
            m_program = open(ptsname(m_screen), O_RDWR | O_NOCTTY); // NOLINT(concurrency-mt-unsafe)
        const struct winsize size {
            24, 60, 0, 0
        };
        ioctl(m_program, TIOCSWINSZ, &size);
        setenv("TERM", "vt100", 1); // NOLINT(concurrency-mt-unsafe)
    }
    ~Terminal()
    {
        close(m_program);
        close(m_screen);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    int program() const { return m_program; }

    /// All that was written, as soon as that ends with `end`; waits for it.
    std::string textUntil(const std::string& end)
    {
        while (m_text.size() < end.size() || m_text.compare(m_text.size() - end.size(), end.size(), end) != 0) {
            char byte = 0;
            if (read(m_screen, &byte, 1) != 1) {
                ADD_FAILURE() << "the terminal ends before " << end;
                return m_text;
            }
            m_text += byte;
        }
        return m_text;
    }

private:
    int m_screen = -1;
    int m_program = -1;
    std::string m_text;
};

TEST(Progress, IsToldInPagesAndPercent)
{
    EXPECT_EQ(progressText({ 1, 2, std::nullopt }), "1 page, 0.5 a second");
    EXPECT_EQ(progressText({ 100, 8, 37 }), "100 pages, 12.5 a second, 37 % read");
    EXPECT_EQ(progressText({ 0, 0, 0 }), "0 pages, 0.0 a second, 0 % read");
}

TEST(Console, ShowsHowFarReadingIsOnATerminal)
{
    const test::TemporaryFolder folder;
    const int input = open(folder.file("job", std::string(1000, 'x')).c_str(), O_RDONLY | O_CLOEXEC);
    Terminal terminal;
    Console console(terminal.program(), true, 0ms);
    console.countPage();
    lseek(input, 250, SEEK_SET);
    console.follow(input);
    EXPECT_EQ(terminal.textUntil("25 % read").substr(0, 12), "\r\x1B[K1 page, ");
    lseek(input, 500, SEEK_SET);
    close(input); // the place is still known
    terminal.textUntil("50 % read");
}

TEST(Console, TheLineMakesWayForMessagesAndIsGoneAtTheEnd)
{
    Terminal terminal;
    Console console(terminal.program(), true, 0ms);
    console.follow(-1);
    terminal.textUntil("0.0 a second");
    console.say("one");
    terminal.textUntil("0.0 a second\r\x1B[Kquillrip: one\r\n");
    terminal.textUntil("0.0 a second");
    console.rest();
    terminal.textUntil("0.0 a second\r\x1B[K");
}

TEST(Console, TheLineIsNarrowerThanTheTerminal)
{
    Terminal terminal;
    const struct winsize size {
        24, 10, 0, 0
    };
    ioctl(terminal.program(), TIOCSWINSZ, &size);
    Console console(terminal.program(), true, 0ms);
    console.follow(-1);
    EXPECT_EQ(terminal.textUntil("0 pages, "), "\r\x1B[K0 pages, ");
    console.rest();
    EXPECT_EQ(terminal.textUntil("\r\x1B[K").substr(0, 16), "\r\x1B[K0 pages, \r\x1B[");
}

TEST(Console, NothingButATerminalGetsTheLine)
{
    const test::TemporaryFolder folder;
    Terminal terminal;
    const auto startOfLineOn
        = [](int descriptor, bool showsProgress) { return Console(descriptor, showsProgress, 0ms).lineStart(); };
    const int file = open(folder.file("log", "").c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_EQ(startOfLineOn(terminal.program(), true), "\r\x1B[K");
    EXPECT_EQ(startOfLineOn(file, true), "");
    EXPECT_EQ(startOfLineOn(terminal.program(), false), "");
    setenv("TERM", "dumb", 1); // NOLINT(concurrency-mt-unsafe)
    EXPECT_EQ(startOfLineOn(terminal.program(), true), "");
    unsetenv("TERM"); // NOLINT(concurrency-mt-unsafe)
    EXPECT_EQ(startOfLineOn(terminal.program(), true), "");
    close(file);
}

} // namespace
} // namespace quillrip::cli
