#pragma once

#include "quillrip/base/diagnostics.h"

#include <vector>

namespace quillrip::pclxl {

/// Keeps what the font code reports until it is known whether the operator fails: the operator's own error then says
/// what the job's damage is.
class HeldDiagnostics final : public DiagnosticSink {
public:
    void report(const Diagnostic& diagnostic) override { m_held.push_back(diagnostic); }
    void passOn(DiagnosticSink& sink, bool asWarnings)
    {
        for (Diagnostic& diagnostic : m_held) {
            if (asWarnings)
                diagnostic.severity = Severity::Warning;
            sink.report(diagnostic);
        }
        m_held.clear();
    }

private:
    std::vector<Diagnostic> m_held;
};

} // namespace quillrip::pclxl
