#include "quillrip/cli/watchdog.h"

#include <algorithm>
#include <csignal>

#include <sys/time.h>
#include <unistd.h>

namespace quillrip::cli {

namespace {

constexpr int kExitLimitExceeded = 5;

// What the handler needs, made beforehand: it may neither allocate nor format.
char s_message[1024]; // NOLINT(modernize-avoid-c-arrays)
std::size_t s_length = 0;

void endProcess(int)
{
    // Nothing can be done about a standard error that is closed.
    const ssize_t written = write(STDERR_FILENO, s_message, s_length);
    static_cast<void>(written);
    _exit(kExitLimitExceeded);
}

} // namespace

Watchdog::Watchdog(std::uint32_t seconds, const std::string& subject)
{
    if (seconds == 0)
        return;
    const std::string message = "quillrip: " + subject.substr(0, sizeof s_message - 100) + ": takes more than "
        + std::to_string(seconds) + " seconds (-limit-seconds)\n";
    s_length = std::min(message.size(), sizeof s_message);
    std::copy_n(message.begin(), s_length, s_message);
    struct sigaction action { };
    action.sa_handler = endProcess;
    sigaction(SIGALRM, &action, nullptr);
    const struct itimerval timer {
        {}, { static_cast<time_t>(seconds), 0 }
    };
    setitimer(ITIMER_REAL, &timer, nullptr);
}

void Watchdog::rest()
{
    const struct itimerval never {
    };
    setitimer(ITIMER_REAL, &never, nullptr);
}

} // namespace quillrip::cli
