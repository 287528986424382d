#include "quillrip/cli/command_line.h"
#include "quillrip/cli/version.h"

#include <csignal>
#include <cstdio>

namespace {

using namespace quillrip;

/// One line for each warning on standard error.
class WarningPrinter final : public DiagnosticSink {
public:
    explicit WarningPrinter(const std::string& file)
        : m_file(file)
    {
    }

    void report(const Diagnostic& diagnostic) override
    {
        std::fprintf(stderr, "quillrip: %s: warning: %s (offset %llu)\n", m_file.c_str(), diagnostic.message.c_str(),
            static_cast<unsigned long long>(diagnostic.offset));
    }

private:
    const std::string& m_file;
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

} // namespace

int main(int count, char** words)
{
    // A file that may not grow is a failed write like any other, and no reason to die without a word.
    std::signal(SIGXFSZ, SIG_IGN);
    const cli::Request request = cli::parseCommandLine(std::vector<std::string>(words + (count > 0), words + count));
    if (const auto* error = std::get_if<cli::UsageError>(&request)) {
        std::fprintf(stderr, "quillrip: %s (quillrip --help tells more)\n", error->message.c_str());
        return 1;
    }
    if (std::holds_alternative<cli::ShowHelp>(request)) {
        std::fputs(cli::helpText().c_str(), stdout);
        return 0;
    }
    if (std::holds_alternative<cli::ShowVersion>(request)) {
        std::printf("quillrip %s\n", cli::kVersion);
        return 0;
    }
    const auto& options = std::get<ConversionOptions>(request);
    WarningPrinter warnings(options.inputPath);
    const ConversionResult result = convert(options, warnings);
    if (result.status != ConversionStatus::Done)
        std::fprintf(stderr, "quillrip: %s: %s\n", result.file.c_str(), result.reason.c_str());
    return exitCodeOf(result.status);
}
