#pragma once

#include "quillrip/base/diagnostics.h"

#include <cstdint>
#include <string>
#include <utility>

namespace quillrip {

/// Tells of what a job asks for, each thing with its place in the input: what is done differently, what is damaged and,
/// for whoever looks for the reason of a wrong page, every command as it is carried out.
///
/// An interpreter keeps one and moves it on with at() to each command:
///
///     m_reporter.at(offset);
///     if (m_reporter.isTracing())
///         m_reporter.trace("PA", numbers);
class Reporter {
public:
    Reporter() = default;
    /// Null for a sink: nobody listens. Else it outlives the reporter.
    explicit Reporter(DiagnosticSink* sink)
        : Reporter(sink, 0)
    {
    }
    Reporter(DiagnosticSink* sink, std::uint64_t offset)
        : m_sink(sink)
        , m_offset(offset)
        , m_isTracing(sink && sink->wantsTrace())
    {
    }

    /// The byte of the input where the command starts that all reports from now on are about.
    void at(std::uint64_t offset) { m_offset = offset; }
    std::uint64_t offset() const { return m_offset; }

    /// `kind` is short and constant, such as "raster.row-too-long"; `message` one sentence without full stop.
    void warn(const char* kind, std::string message) const { report(Severity::Warning, kind, std::move(message)); }
    void damage(const char* kind, std::string message) const { report(Severity::Damage, kind, std::move(message)); }

    bool isTracing() const { return m_isTracing; }
    /// The command's name and, for numbers, its values behind it.
    void trace(const std::string& command) const
    {
        if (m_isTracing)
            m_sink->trace(m_offset, command);
    }
    template <typename Numbers> void trace(const std::string& name, const Numbers& values) const
    {
        std::string command = name;
        for (const auto value : values)
            command += ' ' + spelled(static_cast<double>(value));
        trace(command);
    }

    /// A number as a trace shows it: without zeros that tell nothing.
    static std::string spelled(double number);

private:
    void report(Severity severity, const char* kind, std::string message) const
    {
        if (m_sink)
            m_sink->report({ severity, m_offset, kind, std::move(message) });
    }

    DiagnosticSink* m_sink = nullptr;
    std::uint64_t m_offset = 0;
    bool m_isTracing = false;
};

} // namespace quillrip
