#pragma once

#include "quillrip/base/diagnostics.h"

#include <cstdint>
#include <string>
#include <utility>

namespace quillrip::hpgl {

/// Reports with the offset of the command at work.
class Reporter {
public:
    explicit Reporter(DiagnosticSink& sink)
        : m_sink(sink)
    {
    }

    void at(std::uint64_t offset) { m_offset = offset; }
    void warn(const char* kind, std::string message) { report(Severity::Warning, kind, std::move(message)); }
    void damage(const char* kind, std::string message) { report(Severity::Damage, kind, std::move(message)); }

private:
    void report(Severity severity, const char* kind, std::string message)
    {
        m_sink.report({ severity, m_offset, kind, std::move(message) });
    }

    DiagnosticSink& m_sink;
    std::uint64_t m_offset = 0;
};

} // namespace quillrip::hpgl
