#pragma once

#include "quillrip/hpgl/machine.h"
#include "quillrip/hpgl/page_surface.h"
#include "quillrip/hpgl/plot_listener.h"
#include "quillrip/hpgl/plot_page.h"
#include "quillrip/hpgl/plotter_host.h"
#include "quillrip/hpgl/raster_language.h"
#include "quillrip/raster/page_device.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace quillrip::hpgl {

/// The second reading of a plot: pages of known size are drawn.
class DrawingPass final : public PlotterHost, private PlotListener {
public:
    DrawingPass(PageDevice& device, FontLibrary& fonts, DiagnosticSink& sink, const Limits& limits,
        const RasterLanguageFactory& rasterLanguage, std::vector<PlotPage> pages);

    Machine& machine() { return m_machine; }
    /// Draws and delivers all pages.
    RunStatus run(InputStream& input);

private:
    const PlotPage& page() const;

    RunStatus beginMark(PageCanvas& canvas) override;
    PageCanvas previewCanvas() const override { return m_device.preview(page().sheet); }
    PictureFrame pictureFrame() const override { return page().frame; }

    bool plotSize(const std::vector<double>&) override { return !m_isOpen; }
    void plotWindow(bool, Point, Point) override { }
    void pointsDefaulted() override { }
    void scaled() override { }
    void rasterCovered(const Rect&) override { }
    void advancePage(bool isForced) override;

    void endPage();

    PageDevice& m_device;
    std::vector<PlotPage> m_pages;
    std::size_t m_page = 0;
    bool m_isOpen = false;
    PageCanvas m_canvas;
    PageSurface m_surface;
    std::unique_ptr<RasterLanguage> m_rasterLanguage;
    Machine m_machine;
};

} // namespace quillrip::hpgl
