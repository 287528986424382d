#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/base/input_stream.h"
#include "quillrip/base/limits.h"
#include "quillrip/job/document_program.h"
#include "quillrip/job/image_page_device.h"
#include "quillrip/job/run_budget.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillrip {

class ChildProcess;

/// Draws a document by another program, as a child process: it reads the document from an unnamed file, can write none,
/// and its pages come back through a pipe. Nothing else in quillrip starts a program.
class DocumentRenderer {
public:
    /// The references must outlive the renderer.
    DocumentRenderer(InstalledProgram program, ImagePageDevice& device, DiagnosticSink& diagnostics,
        const Limits& limits, RunBudget& budget);
    ~DocumentRenderer();

    /// Takes the document from `input` up to its Universal Exit or the end, and draws it. With Damaged, LimitExceeded
    /// and OutputFailed reason() tells more.
    RunStatus run(InputStream& input, DocumentLanguage language);

    const std::string& reason() const { return m_reason; }

private:
    class Pages;

    RunStatus measure(std::vector<DocumentPageSize>& sizes);
    RunStatus drawAll(const PageLayout& layout);
    RunStatus drawSized(const std::vector<DocumentPageSize>& sizes);
    /// Goes on to the next image and delivers it; nothing when there is none.
    std::optional<RunStatus> deliver(Pages& pages, const PageLayout& layout, bool isSized);
    std::unique_ptr<Pages> start(const DrawingOrder& order);
    RunStatus endedWith(ChildProcess& child, bool isComplete);
    RunStatus fail(RunStatus status, std::string reason);

    InstalledProgram m_program;
    ImagePageDevice& m_device;
    DiagnosticSink& m_diagnostics;
    Limits m_limits;
    RunBudget& m_budget;
    int m_file = -1; ///< the document
    std::string m_document; ///< its name as the program sees it
    std::uint64_t m_offset = 0;
    std::string m_reason;
};

} // namespace quillrip
