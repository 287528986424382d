#include "quillrip/cli/console.h"

#include "quillrip/cli/printable.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace quillrip::cli {

namespace {

constexpr std::chrono::milliseconds kBetweenUpdates { 250 };
// To the first column, and empty from there on: what terminals of all kinds have understood since ECMA-48.
constexpr const char* kLineStart = "\r\x1B[K";

bool canMoveCursor(int descriptor)
{
    const char* terminal = std::getenv("TERM");
    return ::isatty(descriptor) == 1 && terminal && *terminal && std::strcmp(terminal, "dumb") != 0;
}

std::size_t columnsOf(int descriptor)
{
    struct winsize size { };
    return ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

} // namespace

std::string progressText(const Progress& progress)
{
    std::string text = std::to_string(progress.pages) + (progress.pages == 1 ? " page, " : " pages, ");
    const double rate = progress.seconds > 0 ? progress.pages / progress.seconds : 0;
    const auto tenths = static_cast<long long>(rate * 10 + 0.5);
    text += std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " a second";
    if (progress.percentRead)
        text += ", " + std::to_string(*progress.percentRead) + " % read";
    return text;
}

Console::Console(int descriptor, bool showsProgress, Duration patience)
    : m_descriptor(descriptor)
    , m_showsProgress(showsProgress && canMoveCursor(descriptor))
    , m_patience(patience)
    , m_start(std::chrono::steady_clock::now())
{
}

void Console::say(const std::string& text) { print("quillrip: " + text); }

void Console::print(const std::string& text)
{
    const std::string line = printable(text) + "\n";
    const std::lock_guard<std::mutex> lock(m_mutex);
    write(m_isShown ? kLineStart + line : line);
    m_isShown = false;
}

void Console::follow(int input)
{
    if (!m_showsProgress)
        return;
    // Both descriptors have one place in the file, so nothing else need tell how far reading is.
    m_input = ::fcntl(input, F_DUPFD_CLOEXEC, 3);
    try {
        m_thread = std::thread([this] { showUntilRest(); });
    } catch (const std::system_error&) { // no thread, no progress
        m_showsProgress = false;
    }
}

void Console::countPage()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    ++m_pages;
}

void Console::rest()
{
    if (m_thread.joinable()) {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_isResting = true;
        }
        m_wakesUp.notify_one();
        m_thread.join();
    }
    if (m_input >= 0)
        ::close(m_input);
    m_input = -1;
}

std::string Console::lineStart() const { return m_showsProgress ? kLineStart : ""; }

void Console::showUntilRest()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    auto next = m_start + m_patience;
    while (!m_wakesUp.wait_until(lock, next, [this] { return m_isResting; })) {
        show();
        next = std::chrono::steady_clock::now() + kBetweenUpdates;
    }
    if (m_isShown)
        write(kLineStart);
    m_isShown = false;
}

void Console::show()
{
    // In the background the terminal's line is somebody else's.
    const pid_t foreground = ::tcgetpgrp(m_descriptor);
    if (foreground >= 0 && foreground != ::getpgrp())
        return;
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - m_start;
    std::string text = progressText({ m_pages, elapsed.count(), percentRead() });
    // A line that is wider than the terminal goes on in the next, which could not be taken back.
    text.resize(std::min(text.size(), columnsOf(m_descriptor) - 1));
    write(kLineStart + text);
    m_isShown = true;
}

std::optional<int> Console::percentRead() const
{
    struct stat status { };
    const off_t place = ::lseek(m_input, 0, SEEK_CUR);
    if (place < 0 || ::fstat(m_input, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size <= 0)
        return std::nullopt;
    const double part = static_cast<double>(place) / static_cast<double>(status.st_size);
    return static_cast<int>(std::clamp(part, 0.0, 1.0) * 100);
}

void Console::write(const std::string& bytes) const
{
    // Nothing can be done about a standard error that is closed.
    const ssize_t written = ::write(m_descriptor, bytes.data(), bytes.size());
    static_cast<void>(written);
}

} // namespace quillrip::cli
