#pragma once

#include "quillrip/base/diagnostics.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>

namespace quillrip {

/// Passes each kind of diagnostic on once, and keeps the first damage.
class DiagnosticRecorder final : public DiagnosticSink {
public:
    explicit DiagnosticRecorder(DiagnosticSink& next)
        : m_next(next)
    {
    }

    void report(const Diagnostic& diagnostic) override
    {
        if (diagnostic.severity == Severity::Damage && !m_damage) {
            // The result's reason tells of this one.
            m_damage = diagnostic;
            m_seen.insert(diagnostic.kind);
            return;
        }
        if (m_seen.insert(diagnostic.kind).second)
            m_next.report(diagnostic);
    }

    bool wantsTrace() const override { return m_next.wantsTrace(); }
    void trace(std::uint64_t offset, const std::string& command) override { m_next.trace(offset, command); }

    const std::optional<Diagnostic>& damage() const { return m_damage; }

private:
    DiagnosticSink& m_next;
    std::set<std::string> m_seen;
    std::optional<Diagnostic> m_damage;
};

} // namespace quillrip
