#pragma once

#include "quillrip/base/diagnostics.h"

#include <string>

namespace quillrip {

/// Where the font code reports what it had to do differently, with the place in the job that asked for it.
struct FontReporter {
    DiagnosticSink* sink = nullptr; ///< may be null
    std::uint64_t offset = 0;

    void warn(const char* kind, std::string message) const { report(Severity::Warning, kind, std::move(message)); }
    void damage(const char* kind, std::string message) const { report(Severity::Damage, kind, std::move(message)); }

private:
    void report(Severity severity, const char* kind, std::string message) const
    {
        if (sink)
            sink->report({ severity, offset, kind, std::move(message) });
    }
};

} // namespace quillrip
