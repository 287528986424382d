#pragma once

#include "quillrip/base/diagnostics.h"

#include <cstdint>
#include <string>

namespace quillrip::hpgl {

/// Offsets count from the start of the plot; the job wants those of the whole input.
class OffsetSink final : public DiagnosticSink {
public:
    OffsetSink(DiagnosticSink& sink, std::uint64_t start)
        : m_sink(sink)
        , m_start(start)
    {
    }

    void report(const Diagnostic& diagnostic) override
    {
        Diagnostic moved = diagnostic;
        moved.offset += m_start;
        m_sink.report(moved);
    }

    bool wantsTrace() const override { return m_sink.wantsTrace(); }
    void trace(std::uint64_t offset, const std::string& command) override { m_sink.trace(offset + m_start, command); }

private:
    DiagnosticSink& m_sink;
    std::uint64_t m_start;
};

} // namespace quillrip::hpgl
