#include "quillrip/cli/watchdog.h"

#include <csignal>
#include <utility>

#include <sys/time.h>
#include <unistd.h>

namespace quillrip::cli {

namespace {

constexpr int kExitLimitExceeded = 5;

// What the handler needs, made beforehand: it may neither allocate nor format.
std::vector<Watchdog::LastWords> s_lastWords;

void endProcess(int)
{
    for (const Watchdog::LastWords& words : s_lastWords) {
        // Nothing can be done about a descriptor that takes no more.
        const ssize_t written = write(words.descriptor, words.bytes.data(), words.bytes.size());
        static_cast<void>(written);
    }
    _exit(kExitLimitExceeded);
}

} // namespace

Watchdog::Watchdog(std::uint32_t seconds, std::vector<LastWords> lastWords)
{
    s_lastWords = std::move(lastWords);
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
