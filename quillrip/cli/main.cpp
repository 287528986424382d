#include "quillrip/cli/command_line.h"
#include "quillrip/cli/printable.h"
#include "quillrip/cli/version.h"
#include "quillrip/cli/watchdog.h"
#include "quillrip/job/sandbox.h"

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <new>
#include <string>
#include <variant>
#include <vector>

namespace {

using namespace quillrip;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kCanBeConfined = false; // sanitizers trace the process at its end, and run programs to name functions
#else
constexpr bool kCanBeConfined = true;
#endif

void say(const std::string& line) { std::fprintf(stderr, "quillrip: %s\n", cli::printable(line).c_str()); }

std::string nameOf(const std::string& file) { return file == "-" ? "standard input" : file; }

/// One line on standard error for each warning and, where they are asked for, for each command.
class WarningPrinter final : public DiagnosticSink {
public:
    WarningPrinter(const std::string& file, bool isTracing)
        : m_file(file)
        , m_isTracing(isTracing)
    {
    }

    void report(const Diagnostic& diagnostic) override
    {
        say(m_file + ": warning: " + diagnostic.message + " (offset " + std::to_string(diagnostic.offset) + ")");
    }

    bool wantsTrace() const override { return m_isTracing; }
    void trace(std::uint64_t offset, const std::string& command) override
    {
        std::fprintf(stderr, "%8llu %s\n", static_cast<unsigned long long>(offset), cli::printable(command).c_str());
    }

private:
    std::string m_file;
    bool m_isTracing;
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

int run(const std::vector<std::string>& words)
{
    const cli::Request request = cli::parseCommandLine(words);
    if (const auto* error = std::get_if<cli::UsageError>(&request)) {
        say(error->message + " (quillrip --help tells more)");
        return 1;
    }
    if (std::holds_alternative<cli::ShowHelp>(request)) {
        std::fputs(cli::helpText().c_str(), stdout);
        return 0;
    }
    if (std::holds_alternative<cli::ShowVersion>(request)) {
        std::printf("quillrip %s\nConfinement that this system offers: %s\n", cli::kVersion, sandboxSupport().c_str());
        return 0;
    }
    auto [options, seconds, isTraced] = std::get<cli::Convert>(request);
    options.isConfined = kCanBeConfined;
    const std::string input = nameOf(options.inputPath);
    WarningPrinter warnings(input, isTraced);
    cli::Watchdog watchdog(seconds, cli::printable(input));
    const ConversionResult result = convert(options, warnings, [&watchdog] { watchdog.rest(); });
    watchdog.rest();
    if (result.status != ConversionStatus::Done)
        say(nameOf(result.file) + ": " + result.reason);
    return exitCodeOf(result.status);
}

} // namespace

int main(int count, char** words)
{
    // A file that may not grow is a failed write like any other, and no reason to die without a word; nor is a reader
    // of messages who has gone.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return run(std::vector<std::string>(words + (count > 0), words + count));
    } catch (const std::bad_alloc&) {
        std::fputs("quillrip: there is not enough memory\n", stderr);
        return exitCodeOf(ConversionStatus::LimitExceeded);
    }
}
