#include "quillrip/pclxl/reporter.h"

namespace quillrip::pclxl {

void Reporter::warn(const char* kind, const std::string& message)
{
    if (m_warned.insert(kind).second)
        m_sink.report({ Severity::Warning, m_offset, kind, message });
}

void Reporter::damage(const std::string& kind, const std::string& message)
{
    m_sink.report({ Severity::Damage, m_offset, kind, message });
}

void Reporter::passOnFontReports(bool asWarnings)
{
    for (Diagnostic& diagnostic : m_held.held) {
        if (asWarnings)
            diagnostic.severity = Severity::Warning;
        m_sink.report(diagnostic);
    }
    m_held.held.clear();
}

} // namespace quillrip::pclxl
