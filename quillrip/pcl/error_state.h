#pragma once

#include "quillrip/base/reporter.h"

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
        , m_reporter(&sink)
    {
    }

    void warn(const char* kind, std::string message) const { m_reporter.warn(kind, std::move(message)); }
    void damage(const char* kind, std::string message) const { m_reporter.damage(kind, std::move(message)); }

    /// Ends the run; the first reason stays. Done ends nothing.
    void fail(RunStatus status) { m_status = failed() ? m_status : status; }
    bool failed() const { return m_status != RunStatus::Done; }
    RunStatus status() const { return m_status; }

    /// Where the command in progress stands in the job.
    void setOffset(std::uint64_t offset) { m_reporter.at(offset); }
    const Reporter& reporter() const { return m_reporter; }
    DiagnosticSink& sink() const { return m_sink; }

private:
    DiagnosticSink& m_sink;
    Reporter m_reporter;
    RunStatus m_status = RunStatus::Done;
};

} // namespace quillrip::pcl
