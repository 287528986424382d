#pragma once

#include "quillrip/base/diagnostics.h"

#include <cstddef>
#include <string>
#include <vector>

namespace quillrip::test {

/// Keeps what was reported, and what was traced when it is told to listen.
class RecordingSink final : public DiagnosticSink {
public:
    enum class Listens { ToReports, ToTraceToo };

    explicit RecordingSink(Listens listens = Listens::ToReports)
        : m_listens(listens)
    {
    }

    void report(const Diagnostic& diagnostic) override
    {
        // A broken stream can complain without end.
        constexpr std::size_t kMost = 1000;
        if (diagnostics.size() < kMost)
            diagnostics.push_back(diagnostic);
    }
    bool wantsTrace() const override { return m_listens == Listens::ToTraceToo; }
    void trace(std::uint64_t offset, const std::string& command) override
    {
        commands.push_back(std::to_string(offset) + ' ' + command);
    }

    bool empty() const { return diagnostics.empty(); }
    bool has(const std::string& kind) const
    {
        for (const Diagnostic& diagnostic : diagnostics) {
            if (diagnostic.kind == kind)
                return true;
        }
        return false;
    }
    bool hasDamage() const
    {
        for (const Diagnostic& diagnostic : diagnostics) {
            if (diagnostic.severity == Severity::Damage)
                return true;
        }
        return false;
    }
    /// The message of the first of a kind, or of the first damage when no kind is given; empty when there is none.
    std::string message(const std::string& kind = {}) const
    {
        for (const Diagnostic& diagnostic : diagnostics) {
            if (kind.empty() ? diagnostic.severity == Severity::Damage : diagnostic.kind == kind)
                return diagnostic.message;
        }
        return {};
    }
    std::vector<std::string> kinds() const
    {
        std::vector<std::string> all;
        for (const Diagnostic& diagnostic : diagnostics)
            all.push_back(diagnostic.kind);
        return all;
    }

    std::vector<Diagnostic> diagnostics;
    std::vector<std::string> commands; ///< traced: offset, name and values

private:
    Listens m_listens;
};

} // namespace quillrip::test
