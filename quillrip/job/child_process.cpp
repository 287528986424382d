#include "quillrip/job/child_process.h"

#include "quillrip/fonts/faces/font_file.h"
#include "quillrip/job/sandbox.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace quillrip {

namespace {

constexpr rlim_t kMostMemory = rlim_t { 4 } << 30;
constexpr int kNotLoaded = 127; ///< exit status, as shells have it
constexpr std::size_t kMostComplaint = 2000;

void closeIfOpen(int& descriptor)
{
    if (descriptor >= 0)
        ::close(descriptor);
    descriptor = -1;
}

void limit(int resource, rlim_t value)
{
    const struct rlimit both {
        value, value
    };
    ::setrlimit(static_cast<decltype(RLIMIT_AS)>(resource), &both);
}

bool startsWith(const char* text, const char* start) { return std::strncmp(text, start, std::strlen(start)) == 0; }

// Options from the environment would go before ours, and a folder for temporary files would be open to the job.
std::vector<char*> cleanEnvironment()
{
    static char s_noTemporaryFolder[] = "TMPDIR=/nonexistent";
    std::vector<char*> kept { s_noTemporaryFolder };
    for (char** entry = environ; *entry; ++entry) {
        if (!startsWith(*entry, "GS_") && !startsWith(*entry, "TMPDIR=") && !startsWith(*entry, "TEMP="))
            kept.push_back(*entry);
    }
    kept.push_back(nullptr);
    return kept;
}

} // namespace

/// Reads both pipes as they fill, so that the child never waits for a pipe that nobody reads.
class ChildProcess::Output final : public InputStream {
public:
    Output(int output, int errors, const RunBudget& budget)
        : m_pipe(output)
        , m_errors(errors)
        , m_budget(budget)
    {
    }
    ~Output() override { close(); }

    void close()
    {
        closeIfOpen(m_pipe);
        closeIfOpen(m_errors);
    }

    void drainErrors()
    {
        while (m_errors >= 0) {
            struct pollfd errors = { m_errors, POLLIN, 0 };
            const int ready = ::poll(&errors, 1, millisecondsLeft());
            if (ready > 0)
                takeErrors();
            else if (m_budget.isSpent() || (ready < 0 && errno != EINTR))
                closeIfOpen(m_errors);
        }
    }

    const std::string& errors() const { return m_text; }

protected:
    std::size_t pull(std::uint8_t* to, std::size_t count) override
    {
        for (;;) {
            if (m_pipe < 0)
                return 0;
            struct pollfd both[2] = { { m_pipe, POLLIN, 0 }, { m_errors, POLLIN, 0 } };
            const int ready = ::poll(both, 2, millisecondsLeft());
            if (m_budget.isSpent() || (ready < 0 && errno != EINTR)) {
                close();
                return 0;
            }
            if (ready <= 0)
                continue;
            if (m_errors >= 0 && both[1].revents != 0)
                takeErrors();
            if (both[0].revents == 0)
                continue;
            const ssize_t got = ::read(m_pipe, to, count);
            if (got > 0)
                return static_cast<std::size_t>(got);
            if (got < 0 && errno == EINTR)
                continue;
            m_failed = got < 0;
            closeIfOpen(m_pipe);
        }
    }

private:
    int millisecondsLeft() const
    {
        constexpr double kLongestWait = 60000;
        return static_cast<int>(std::min(m_budget.realLeft().count() * 1000 + 1, kLongestWait));
    }

    void takeErrors()
    {
        char text[1024];
        const ssize_t got = ::read(m_errors, text, sizeof text);
        if (got > 0)
            m_text.append(text,
                std::min(static_cast<std::size_t>(got), kMostComplaint - std::min(kMostComplaint, m_text.size())));
        else if (got == 0 || errno != EINTR)
            closeIfOpen(m_errors);
    }

    int m_pipe;
    int m_errors;
    const RunBudget& m_budget;
    std::string m_text;
};

ChildProcess::ChildProcess(RunBudget& budget)
    : m_budget(budget)
{
}

ChildProcess::~ChildProcess()
{
    if (m_process > 0) {
        ::kill(m_process, SIGKILL);
        wait();
    }
}

std::vector<std::string> ChildProcess::neededPaths(const std::string& program)
{
    std::vector<std::string> paths = systemPaths();
    paths.insert(paths.end(),
        { program, "/bin", "/sbin", "/var/lib/ghostscript", "/var/cache/fontconfig", "/var/lib/fonts",
            "/etc/ghostscript", "/etc/papersize", "/etc/paperspecs", "/dev/null", "/dev/zero", "/dev/random",
            "/dev/urandom", "/proc/sys/vm/overcommit_memory" });
    // Of a program with a place of its own, such as /opt/name/bin/name, all that came with it.
    const std::string folder = program.substr(0, program.find_last_of('/'));
    const std::string above = folder.substr(0, std::min(folder.find_last_of('/'), folder.size()));
    if (folder.size() - above.size() == sizeof "/bin" - 1 && !above.empty())
        paths.push_back(above);
    const std::vector<std::string> fonts = fontFolders();
    paths.insert(paths.end(), fonts.begin(), fonts.end());
    return paths;
}

/// Returns its status and takes its time off the budget.
int ChildProcess::wait()
{
    int status = 0;
    struct rusage usage { };
    pid_t ended = -1;
    do {
        ended = ::wait4(m_process, &status, 0, &usage);
    } while (ended < 0 && errno == EINTR);
    m_process = -1;
    for (const timeval& time : { usage.ru_utime, usage.ru_stime })
        m_budget.spendProcessor(std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_usec));
    return status;
}

bool ChildProcess::start(const std::vector<std::string>& arguments, int input)
{
    // Everything that allocates comes before the fork: other threads may hold the allocator's locks.
    std::vector<char*> words;
    words.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    std::vector<char*> environment = cleanEnvironment();
    SandboxRules rules;
    rules.executable = neededPaths(arguments[0]);
    rules.readableFiles = { 0 }; // what the input is then
    int output[2] = { -1, -1 };
    int errors[2] = { -1, -1 };
    const auto processor = static_cast<rlim_t>(std::max(1.0, std::ceil(m_budget.processorLeft().count())));
    if (::lseek(input, 0, SEEK_SET) != 0 || ::pipe2(output, O_CLOEXEC) != 0 || ::pipe2(errors, O_CLOEXEC) != 0) {
        closeIfOpen(output[0]);
        closeIfOpen(output[1]);
        return false;
    }
    const pid_t parent = ::getpid();
    m_process = ::fork();
    if (m_process == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::signal(SIGPIPE, SIG_DFL);
        limit(RLIMIT_AS, kMostMemory);
        limit(RLIMIT_CPU, processor);
        // Its pages leave through a pipe; it has no file to write.
        limit(RLIMIT_FSIZE, 0);
        limit(RLIMIT_CORE, 0);
        const bool isReady = ::getppid() == parent && ::dup2(input, 0) == 0 && ::dup2(output[1], 1) == 1
            && ::dup2(errors[1], 2) == 2 && ::close_range(3, ~0u, 0) == 0 && ::chdir("/") == 0;
        static_cast<void>(confineFiles(rules));
        static_cast<void>(confineCalls(true));
        if (isReady)
            ::execve(words[0], words.data(), environment.data());
        ::_exit(kNotLoaded);
    }
    ::close(output[1]);
    ::close(errors[1]);
    m_output = std::make_unique<Output>(output[0], errors[0], m_budget);
    return m_process > 0;
}

InputStream& ChildProcess::output() { return *m_output; }

ChildProcess::End ChildProcess::finish()
{
    if (m_process <= 0)
        return End::NotStarted;
    std::uint8_t rest[4096];
    while (m_output->read(rest, sizeof rest) > 0) { }
    m_output->drainErrors();
    if (m_budget.realLeft() == RunBudget::Seconds::zero())
        ::kill(m_process, SIGKILL);
    const int status = wait();
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0)
        return End::Done;
    if (m_budget.isSpent() || (WIFSIGNALED(status) && WTERMSIG(status) == SIGXCPU))
        return End::OutOfTime;
    return WIFEXITED(status) && WEXITSTATUS(status) == kNotLoaded ? End::NotStarted : End::Failed;
}

std::string ChildProcess::complaint() const
{
    const std::string text = m_output ? m_output->errors() : std::string();
    // Warnings may come before what the program ended for.
    const std::size_t error = text.rfind("\nerror:");
    std::string line;
    for (std::size_t at = error == std::string::npos ? 0 : error + 1; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '\n' && !line.empty())
            break;
        if (static_cast<unsigned char>(c) >= 0x20)
            line.push_back(c);
    }
    return line.empty() ? "it ended without a reason" : line.substr(0, 200);
}

} // namespace quillrip
