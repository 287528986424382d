#include "quillrip/hpgl/drawing_pass.h"

#include <algorithm>
#include <utility>

namespace quillrip::hpgl {

DrawingPass::DrawingPass(PageDevice& device, FontLibrary& fonts, DiagnosticSink& sink, const Limits& limits,
    const RasterLanguageFactory& rasterLanguage, std::vector<PlotPage> pages)
    : m_device(device)
    , m_pages(std::move(pages))
    , m_surface(*this, fonts.glyphs())
    , m_rasterLanguage(rasterLanguage ? rasterLanguage(fonts, sink) : nullptr)
    , m_machine(*this, m_surface, fonts, sink, limits, this, m_rasterLanguage.get())
{
}

RunStatus DrawingPass::run(InputStream& input)
{
    if (m_machine.run(input) != End::Failed)
        endPage();
    return m_machine.status();
}

/// Pages that the first reading did not reach are like the last one it knows.
const PlotPage& DrawingPass::page() const { return m_pages[std::min(m_page, m_pages.size() - 1)]; }

RunStatus DrawingPass::beginMark(PageCanvas& canvas)
{
    // Vectors and raster ask each for itself.
    RunStatus status = RunStatus::Done;
    if (!m_isOpen)
        status = m_device.beginPage(page().sheet, m_canvas);
    m_isOpen = status == RunStatus::Done;
    canvas = m_canvas;
    return status;
}

void DrawingPass::advancePage(bool isForced)
{
    if (isForced && !m_isOpen) {
        PageCanvas canvas;
        const RunStatus status = beginMark(canvas);
        if (status != RunStatus::Done) {
            m_surface.fail(status);
            return;
        }
    }
    endPage();
}

void DrawingPass::endPage()
{
    if (!m_isOpen)
        return;
    m_isOpen = false;
    m_surface.leavePage();
    ++m_page;
    const RunStatus status = m_device.endPage();
    if (status != RunStatus::Done)
        m_surface.fail(status);
}

} // namespace quillrip::hpgl
