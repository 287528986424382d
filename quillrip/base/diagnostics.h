#pragma once

#include "quillrip/base/outcome.h"

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

/// Hears what interpreters have to say; they say it through a Reporter.
class DiagnosticSink {
public:
    virtual ~DiagnosticSink() = default;
    virtual void report(const Diagnostic& diagnostic) = 0;

    /// Whether trace() does anything. Asked once, before a run.
    virtual bool wantsTrace() const { return false; }
    /// A command is about to be carried out: its name and values.
    virtual void trace(std::uint64_t, const std::string&) { }
};

} // namespace quillrip
