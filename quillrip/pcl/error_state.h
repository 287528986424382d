#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/fonts/font_reporter.h"

#include <cstdint>
#include <string>
#include <utility>

namespace quillrip::pcl {

/// What goes wrong in a run: reports, each with the offset of the command in progress, and the status that ends the
/// run.
class ErrorState {
public:
    explicit ErrorState(DiagnosticSink& sink)
        : m_sink(sink)
    {
    }

    void warn(const char* kind, std::string message) { report(Severity::Warning, kind, std::move(message)); }
    void damage(const char* kind, std::string message) { report(Severity::Damage, kind, std::move(message)); }

    /// Ends the run; the first reason stays. Done ends nothing.
    void fail(RunStatus status) { m_status = failed() ? m_status : status; }
    bool failed() const { return m_status != RunStatus::Done; }
    RunStatus status() const { return m_status; }

    /// Where the command in progress stands in the job.
    void setOffset(std::uint64_t offset) { m_offset = offset; }
    DiagnosticSink& sink() const { return m_sink; }
    FontReporter fontReporter() const { return { &m_sink, m_offset }; }

private:
    void report(Severity severity, const char* kind, std::string message)
    {
        m_sink.report({ severity, m_offset, kind, std::move(message) });
    }

    DiagnosticSink& m_sink;
    std::uint64_t m_offset = 0;
    RunStatus m_status = RunStatus::Done;
};

} // namespace quillrip::pcl
