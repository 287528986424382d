#pragma once

#include <cstdint>
#include <string>

namespace quillrip {

enum class Severity {
    Warning, ///< the job asks for something that is done differently or not at all
    Damage, ///< the stream cannot be right; what can be understood of it is still drawn
};

struct Diagnostic {
    Severity severity = Severity::Warning;
    std::uint64_t offset = 0; ///< byte in the input where the command starts
    std::string kind; ///< short and constant, such as "raster.row-too-long": each kind is shown once
    std::string message; ///< one sentence, without the file's name, without a full stop
};

class DiagnosticSink {
public:
    virtual ~DiagnosticSink() = default;
    virtual void report(const Diagnostic& diagnostic) = 0;
};

/// How an interpreter's run, or any step of it, ended.
enum class RunStatus {
    Done, ///< went on to the end that was asked for
    Damaged, ///< nothing more can be understood; whole pages so far are good
    LimitExceeded, ///< a limit that no honest job meets
    OutputFailed, ///< the pages cannot be delivered
};

} // namespace quillrip
