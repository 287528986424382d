#include "quillrip/pcl/plotter_raster.h"

#include "quillrip/pcl/current_raster.h"
#include "quillrip/pcl/machine.h"
#include "quillrip/pcl/plot_visit.h"

namespace quillrip::pcl {

namespace {

Environment plotterEnvironment()
{
    Environment environment;
    environment.isPlotterRaster = true;
    return environment;
}

} // namespace

/// A device with one page: that of the plot, which the plot makes and delivers.
class PlotterRaster::LentPage final : public PageDevice {
public:
    void lend(hpgl::RasterPage* page) { m_page = page; }

    PageCanvas preview(const SheetRequest&) const override { return m_page ? m_page->previewCanvas() : PageCanvas {}; }
    RunStatus beginPage(const SheetRequest&, PageCanvas& canvas) override
    {
        return m_page ? m_page->beginMark(canvas) : RunStatus::Damaged;
    }
    RunStatus endPage() override { return RunStatus::Done; }

private:
    hpgl::RasterPage* m_page = nullptr;
};

PlotterRaster::PlotterRaster(FontLibrary& fonts, DiagnosticSink& sink, const Limits& limits)
    : m_page(std::make_unique<LentPage>())
    , m_machine(std::make_unique<Machine>(*m_page, sink, limits, fonts, plotterEnvironment()))
{
}

PlotterRaster::~PlotterRaster() = default;

hpgl::RasterLanguage::End PlotterRaster::run(
    InputStream& input, Entry entry, hpgl::RasterPage& page, hpgl::RasterExchange& exchange)
{
    m_page->lend(&page);
    PlotVisit& visit = m_machine->visit();
    visit.begin(page, entry, exchange);
    const bool isWhole = m_machine->run(input) != Interpreter::End::Failed;
    m_machine->raster().finish();
    visit.end(exchange);
    m_page->lend(nullptr);
    if (!isWhole || status() != RunStatus::Done)
        return End::Failed;
    const bool hasEnded = input.atEnd() && !visit.enterPlotValue();
    return hasEnded ? End::InputEnded : End::EnterHpgl;
}

int PlotterRaster::enterValue() const { return m_machine->visit().enterPlotValue().value_or(0); }

RunStatus PlotterRaster::status() const { return m_machine->status(); }

} // namespace quillrip::pcl
