#include "quillrip/base/sanitizer.h"
#include "quillrip/cli/command_line.h"
#include "quillrip/cli/console.h"
#include "quillrip/cli/conversion_record.h"
#include "quillrip/cli/printable.h"
#include "quillrip/cli/report_file.h"
#include "quillrip/cli/version.h"
#include "quillrip/cli/watchdog.h"
#include "quillrip/job/sandbox.h"

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <malloc.h>
#include <memory>
#include <new>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <variant>
#include <vector>

namespace {

using namespace quillrip;

/// Sanitizers trace the process at its end, and run programs to name functions.
constexpr bool kCanBeConfined = !kIsWatchedBySanitizer;

constexpr int kExitUsage = 1;
constexpr int kExitOutputFailed = 3;

std::string nameOf(const std::string& file) { return file == "-" ? "standard input" : file; }

/// Tells whoever wants to hear it what a conversion says: a person, the report, the watchdog.
class Listener final : public DiagnosticSink, public ConversionObserver {
public:
    Listener(const cli::Convert& request, cli::Console& console, cli::ConversionRecord& record, cli::Watchdog& watchdog)
        : m_request(request)
        , m_file(nameOf(request.options.inputPath))
        , m_console(console)
        , m_record(record)
        , m_watchdog(watchdog)
    {
    }

    void report(const Diagnostic& diagnostic) override
    {
        m_record.addWarning(diagnostic);
        if (!m_request.isQuiet)
            m_console.say(
                m_file + ": warning: " + diagnostic.message + " (offset " + std::to_string(diagnostic.offset) + ")");
    }

    bool wantsTrace() const override { return m_request.isTraced; }
    void trace(std::uint64_t offset, const std::string& command) override
    {
        constexpr std::size_t width = 8;
        const std::string place = std::to_string(offset);
        m_console.print(std::string(width - std::min(width, place.size()), ' ') + place + " " + command);
    }

    void readingBegins(int input) override
    {
        struct stat status { };
        if (::fstat(input, &status) == 0 && S_ISREG(status.st_mode))
            m_record.setInputBytes(static_cast<std::uint64_t>(status.st_size));
        m_console.follow(input);
    }
    void partFound(const std::string& language) override { m_record.addLanguage(language); }
    void pageAdded(int width, int height, Resolution resolution) override
    {
        m_record.addPage(width, height, resolution);
        m_console.countPage();
    }
    void readingEnded(std::uint64_t bytes) override { m_record.setInputBytesRead(bytes); }
    void publishing() override { m_watchdog.rest(); }

private:
    const cli::Convert& m_request;
    std::string m_file;
    cli::Console& m_console;
    cli::ConversionRecord& m_record;
    cli::Watchdog& m_watchdog;
};

int exitCodeOf(ConversionStatus status)
{
    switch (status) {
    case ConversionStatus::Done:
        return 0;
    case ConversionStatus::BadOptions:
        return 1;
    case ConversionStatus::BadInput:
        return 2;
    case ConversionStatus::OutputFailed:
        return 3;
    case ConversionStatus::Damaged:
        return 4;
    case ConversionStatus::LimitExceeded:
        break;
    }
    return 5;
}

int convertAndReport(const cli::Convert& request)
{
    const std::string input = nameOf(request.options.inputPath);
    cli::Console console(STDERR_FILENO, !request.isQuiet);
    std::unique_ptr<cli::ReportFile> report;
    std::string reason;
    if (!request.reportPath.empty()) {
        report = cli::ReportFile::open(request.reportPath, request.options.inputPath, reason);
        if (!report) {
            console.say(request.reportPath + ": " + reason);
            return kExitOutputFailed;
        }
    }
    const cli::ResourceMeter resources;
    cli::ConversionRecord record(request.options.inputPath, request.options.document.path);

    const std::string late = "takes more than " + std::to_string(request.seconds) + " seconds (-limit-seconds)";
    std::vector<cli::Watchdog::LastWords> lastWords { { STDERR_FILENO,
        console.lineStart() + cli::printable("quillrip: " + input + ": " + late) + "\n" } };
    if (report)
        lastWords.push_back({ report->descriptor(),
            record.line(exitCodeOf(ConversionStatus::LimitExceeded), late, request.seconds, {}) + "\n" });
    cli::Watchdog watchdog(request.seconds, std::move(lastWords));

    Listener listener(request, console, record, watchdog);
    const ConversionResult result = convert(request.options, listener, listener);
    watchdog.rest();
    console.rest();
    const int exitCode = exitCodeOf(result.status);
    if (result.status != ConversionStatus::Done)
        console.say(nameOf(result.file) + ": " + result.reason);
    if (!report)
        return exitCode;
    try {
        const std::string line = record.line(exitCode, result.reason, record.secondsSoFar(), resources.used());
        if (report->append(line, request.options.document.isDurable, reason))
            return exitCode;
        console.say(request.reportPath + ": " + reason);
    } catch (const std::bad_alloc&) {
        std::fputs("quillrip: there is not enough memory for the report\n", stderr);
    }
    // The images stay; but nobody who goes by the report knows of them.
    return exitCode == 0 || result.status == ConversionStatus::Damaged ? kExitOutputFailed : exitCode;
}

int run(const std::vector<std::string>& words)
{
    cli::Request request = cli::parseCommandLine(words);
    if (const auto* error = std::get_if<cli::UsageError>(&request)) {
        cli::Console(STDERR_FILENO, false).say(error->message + " (quillrip --help tells more)");
        return kExitUsage;
    }
    if (std::holds_alternative<cli::ShowHelp>(request)) {
        std::fputs(cli::helpText().c_str(), stdout);
        return 0;
    }
    if (std::holds_alternative<cli::ShowVersion>(request)) {
        std::printf("quillrip %s\nConfinement that this system offers: %s\n", cli::kVersion, sandboxSupport().c_str());
        return 0;
    }
    auto& conversion = std::get<cli::Convert>(request);
    conversion.options.isConfined = kCanBeConfined;
    return convertAndReport(conversion);
}

/// A standard descriptor that is closed would become that of the next file that is opened, and messages would go there.
void openStandardDescriptors()
{
    int descriptor = -1;
    do
        descriptor = ::open("/dev/null", O_RDWR);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0)
        ::close(descriptor);
}

/// Pieces of encoded pages come and go by the hundred kilobytes. The allocator would return each to the system at once,
/// and then wait for the next to be mapped and cleared again: half of the time of writing pages that are not
/// compressed.
void keepFreedMemory()
{
#ifdef M_MMAP_THRESHOLD
    mallopt(M_MMAP_THRESHOLD, 4 << 20);
    mallopt(M_TRIM_THRESHOLD, 8 << 20);
#endif
}

} // namespace

int main(int count, char** words)
{
    keepFreedMemory();
    // A file that may not grow is a failed write like any other, and no reason to die without a word; nor is a reader
    // of messages who has gone.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    openStandardDescriptors();
    try {
        return run(std::vector<std::string>(words + (count > 0), words + count));
    } catch (const std::bad_alloc&) {
        std::fputs("quillrip: there is not enough memory\n", stderr);
        return exitCodeOf(ConversionStatus::LimitExceeded);
    } catch (const std::exception& error) {
        // The library's own: a thread that the system does not start.
        std::fprintf(stderr, "quillrip: %s\n", error.what());
        return exitCodeOf(ConversionStatus::LimitExceeded);
    }
}
