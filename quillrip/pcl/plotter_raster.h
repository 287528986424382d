#pragma once

#include "quillrip/base/limits.h"
#include "quillrip/hpgl/raster_language.h"

#include <memory>

namespace quillrip::pcl {

class Machine;

/// The raster language of plotters (HP RTL): PCL 5's raster, colours and logical operations upon the page of a plot.
class PlotterRaster final : public hpgl::RasterLanguage {
public:
    /// All references must outlive the object.
    PlotterRaster(FontLibrary& fonts, DiagnosticSink& sink, const Limits& limits);
    ~PlotterRaster() override;

    End run(InputStream& input, Entry entry, hpgl::RasterPage& page, hpgl::RasterExchange& exchange) override;
    int enterValue() const override;
    RunStatus status() const override;

private:
    class LentPage;
    std::unique_ptr<LentPage> m_page;
    std::unique_ptr<Machine> m_machine;
};

} // namespace quillrip::pcl
