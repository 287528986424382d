#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/fonts/font_reporter.h"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace quillrip::pclxl {

/// Tells the sink what a stream makes of its operators, each with the place in the input.
class Reporter {
public:
    explicit Reporter(DiagnosticSink& sink)
        : m_sink(sink)
    {
    }

    /// Where the operator that runs begins, in bytes of the input.
    void setOffset(std::uint64_t offset) { m_offset = offset; }
    std::uint64_t offset() const { return m_offset; }

    /// Each kind is told once.
    void warn(const char* kind, const std::string& message);
    void damage(const std::string& kind, const std::string& message);

    /// For the font code, whose reports wait until it is known whether the operator fails: the operator's own error
    /// then says what the job's damage is.
    FontReporter forFonts() { return { &m_held, m_offset }; }
    void passOnFontReports(bool asWarnings);

private:
    class HeldDiagnostics final : public DiagnosticSink {
    public:
        void report(const Diagnostic& diagnostic) override { held.push_back(diagnostic); }

        std::vector<Diagnostic> held;
    };

    DiagnosticSink& m_sink;
    HeldDiagnostics m_held;
    std::uint64_t m_offset = 0;
    std::set<std::string> m_warned;
};

} // namespace quillrip::pclxl
