#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/base/input_stream.h"
#include "quillrip/base/limits.h"
#include "quillrip/job/image_page_device.h"

#include <string>

namespace quillrip {

/// The program `gs` on PATH (absolute folders only); empty when there is none.
std::string findGhostscript();

enum class DocumentLanguage { PostScript, Pdf };

/// Draws PostScript and PDF by Ghostscript, as a child process in its safe mode: it reads the job from an unnamed file,
/// may open no other, and its pages come back through a pipe. Nothing else in quillrip starts a program.
class GhostscriptRenderer {
public:
    /// The references must outlive the renderer.
    GhostscriptRenderer(
        std::string program, ImagePageDevice& device, DiagnosticSink& diagnostics, const Limits& limits);

    /// Takes the job from `input` up to its Universal Exit or the end, and draws it. With Damaged, LimitExceeded and
    /// OutputFailed reason() tells more.
    RunStatus run(InputStream& input, DocumentLanguage language);

    const std::string& reason() const { return m_reason; }

private:
    struct PageSize {
        double width = 0; ///< decipoints
        double height = 0;
    };

    RunStatus measure(int job, std::vector<PageSize>& sizes);
    RunStatus draw(int job, const PageLayout& layout, std::size_t firstPage, std::size_t lastPage, bool isSized);
    RunStatus fail(RunStatus status, std::string reason);

    std::string m_program;
    ImagePageDevice& m_device;
    DiagnosticSink& m_diagnostics;
    Limits m_limits;
    std::uint64_t m_offset = 0;
    std::string m_reason;
};

} // namespace quillrip
