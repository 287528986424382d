#include "quillrip/job/pass_through.h"

#include "quillrip/base/input_stream.h"
#include "quillrip/stream/content.h"

namespace quillrip {

namespace {

constexpr int kCustomPaper = 101;

} // namespace

PassThrough::PassThrough(const PageDevice& device, DiagnosticSink& diagnostics, const Limits& limits)
    : m_diagnostics(diagnostics)
    , m_limits(limits)
    , m_page(device)
{
}

void PassThrough::beginPage(const SheetRequest& sheet, const PageCanvas& canvas)
{
    m_page.lend(canvas);
    pcl::Environment environment;
    environment.pageSize = kCustomPaper;
    environment.customWidth = sheet.width;
    environment.customLength = sheet.height;
    environment.orientation = sheet.orientation;
    m_interpreter.reset();
    m_fonts.emplace(m_limits, &m_diagnostics);
    m_interpreter.emplace(m_page, m_diagnostics, m_limits, *m_fonts, environment);
}

RunStatus PassThrough::data(ByteView bytes)
{
    if (!m_interpreter)
        return RunStatus::Done;
    MemoryInputStream input(bytes);
    while (!input.atEnd()) {
        const pcl::Interpreter::End end = m_interpreter->run(input);
        if (end == pcl::Interpreter::End::Failed)
            return m_interpreter->status();
        // There is no job language to go back to.
        if (end == pcl::Interpreter::End::UniversalExit)
            input.skip(stream::kUniversalExitLength);
    }
    return RunStatus::Done;
}

void PassThrough::endPage()
{
    if (m_interpreter && m_interpreter->finish() == RunStatus::Damaged)
        m_diagnostics.report({ Severity::Damage, 0, "pass-through.damaged", "PCL 5 inside of PCL XL is cut off" });
    m_interpreter.reset();
}

} // namespace quillrip
