#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/base/limits.h"
#include "quillrip/fonts/font_library.h"
#include "quillrip/pcl/interpreter.h"
#include "quillrip/pclxl/interpreter.h"

#include <optional>

namespace quillrip {

/// PCL 5 inside PCL XL: an interpreter of its own that draws on the page of the other.
class PassThrough final : public pclxl::PassThroughHandler {
public:
    /// The references must outlive the handler.
    PassThrough(const PageDevice& device, DiagnosticSink& diagnostics, const Limits& limits);

    void beginPage(const SheetRequest& sheet, const PageCanvas& canvas) override;
    RunStatus data(ByteView bytes) override;
    void endPage() override;

private:
    /// A device with one page, which it neither makes nor delivers.
    class BorrowedPage final : public PageDevice {
    public:
        explicit BorrowedPage(const PageDevice& device)
            : m_device(device)
        {
        }
        void lend(const PageCanvas& canvas) { m_canvas = canvas; }

        PageCanvas preview(const SheetRequest& sheet) const override { return m_device.preview(sheet); }
        RunStatus beginPage(const SheetRequest&, PageCanvas& canvas) override
        {
            canvas = m_canvas;
            return RunStatus::Done;
        }
        RunStatus endPage() override { return RunStatus::Done; }

    private:
        const PageDevice& m_device;
        PageCanvas m_canvas;
    };

    DiagnosticSink& m_diagnostics;
    Limits m_limits;
    BorrowedPage m_page;
    // Not the library of the other language: a reset here must not take fonts away there.
    std::optional<FontLibrary> m_fonts;
    std::optional<pcl::Interpreter> m_interpreter;
};

} // namespace quillrip
