#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/hpgl/environment.h"
#include "quillrip/hpgl/extent_surface.h"
#include "quillrip/hpgl/machine.h"
#include "quillrip/hpgl/plot_listener.h"
#include "quillrip/hpgl/plot_page.h"
#include "quillrip/hpgl/plotter_host.h"
#include "quillrip/hpgl/raster_language.h"

#include <memory>
#include <optional>
#include <vector>

namespace quillrip::hpgl {

/// The first reading of a plot: nothing is drawn, but what every page needs is found out.
class MeasuringPass final : public PlotterHost, private PlotListener {
public:
    /// The environment outlives the pass.
    MeasuringPass(FontLibrary& fonts, const Limits& limits, const Environment& environment,
        const RasterLanguageFactory& rasterLanguage);

    Machine& machine() { return m_machine; }
    /// What was found out about every page.
    std::vector<PlotFacts> run(InputStream& input);

private:
    class SilentSink final : public DiagnosticSink {
    public:
        void report(const Diagnostic&) override { }
    };

    RunStatus beginMark(PageCanvas&) override { return RunStatus::Done; }
    PageCanvas previewCanvas() const override { return {}; }
    PictureFrame pictureFrame() const override;

    bool plotSize(const std::vector<double>& operands) override;
    void plotWindow(bool isInputWindow, Point corner1, Point corner2) override;
    void pointsDefaulted() override { m_hasOwnPoints = false; }
    void scaled() override;
    void advancePage(bool isForced) override;
    void rasterCovered(const Rect& raster) override;

    void endPage();
    void mark(const Rect& bounds);
    const Coordinates& coordinates() { return m_machine.plotter().coordinates; }
    Point withoutRotation(Point page) const;

    const Environment& m_environment;
    Point m_size; ///< of the sheet, as far as it is known
    SilentSink m_sink;
    ExtentSurface m_surface;
    PlotFacts m_facts;
    Rect m_unrotated = Rect::nothing();
    std::optional<Rect> m_unrotatedWindow;
    std::optional<Rect> m_unrotatedPoints;
    bool m_hasOwnPoints = false;
    std::vector<PlotFacts> m_pages;
    std::unique_ptr<RasterLanguage> m_rasterLanguage;
    Machine m_machine;
};

} // namespace quillrip::hpgl
