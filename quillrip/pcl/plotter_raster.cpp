#include "quillrip/pcl/plotter_raster.h"

#include "quillrip/pcl/machine.h"

#include <algorithm>
#include <cstring>

namespace quillrip::pcl {

namespace {

constexpr int kEscape = 0x1B;

Environment plotterEnvironment()
{
    Environment environment;
    environment.isPlotterRaster = true;
    return environment;
}

std::vector<Rgb> colorsOf(const Palette& palette)
{
    std::vector<Rgb> colors;
    for (std::size_t i = 0; i < palette.size(); ++i)
        colors.push_back(palette.color(i));
    return colors;
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
    m_machine->beginVisit(page, entry, exchange);
    const bool isWhole = m_machine->run(input) != Interpreter::End::Failed;
    m_machine->endVisit(exchange);
    m_page->lend(nullptr);
    if (!isWhole || status() != RunStatus::Done)
        return End::Failed;
    const bool hasEnded = input.atEnd() && !m_machine->enterPlotValue();
    return hasEnded ? End::InputEnded : End::EnterHpgl;
}

int PlotterRaster::enterValue() const { return m_machine->enterPlotValue().value_or(0); }

RunStatus PlotterRaster::status() const { return m_machine->status(); }

void Machine::beginVisit(
    hpgl::RasterPage& page, hpgl::RasterLanguage::Entry entry, const hpgl::RasterExchange& exchange)
{
    m_plotterPage = &page;
    m_isUnannounced = entry == hpgl::RasterLanguage::Entry::Unannounced;
    m_enterPlotValue.reset();
    m_state.page = PageLayout::ofPlot(page.width(), page.end());
    m_state.text = { 0, 0, m_state.page.width(), m_state.page.length() };
    geometryChanged();
    if (entry == hpgl::RasterLanguage::Entry::AtPen)
        moveToClamped(inUnits(exchange.cursor.x, kUnitsPerDecipoint), inUnits(exchange.cursor.y, kUnitsPerDecipoint));
    if (exchange.palette != m_lentPalette) {
        Palette pens = Palette::pens(exchange.palette.size());
        for (std::size_t i = 0; i < std::min(pens.size(), exchange.palette.size()); ++i)
            pens.setColor(i, exchange.palette[i]);
        m_state.palettes.replaceActive(std::move(pens));
        m_lentPalette = exchange.palette;
    }
    m_state.rasterOperation = exchange.rasterOperation;
    m_state.isGridCentred = exchange.isGridCentred;
}

void Machine::endVisit(hpgl::RasterExchange& exchange)
{
    finishRaster();
    exchange.cursor = { static_cast<double>(m_cursor.x) / kUnitsPerDecipoint,
        static_cast<double>(m_cursor.y) / kUnitsPerDecipoint };
    exchange.rasterOperation = m_state.rasterOperation;
    exchange.isGridCentred = m_state.isGridCentred;
    // Larger palettes than raster can have come back as they were.
    const std::vector<Rgb> colors = colorsOf(m_state.palettes.active());
    const std::size_t common = std::min(colors.size(), m_lentPalette.size());
    const bool isUntouched = m_state.palettes.active().isPens() && colors.size() == common
        && std::equal(colors.begin(), colors.end(), m_lentPalette.begin());
    if (!isUntouched)
        exchange.palette = m_lentPalette = colors;
    m_pageIsOpen = false;
    m_isMarked = false;
    m_pagesBegun = 0;
    m_canvas = {};
    geometryChanged();
    m_plotterPage = nullptr;
}

bool Machine::visitHasEnded(Tokenizer& tokenizer) const
{
    if (m_enterPlotValue)
        return true;
    if (!m_isUnannounced || tokenizer.isInSequence())
        return false;
    const int next = tokenizer.stream().peek();
    return next > ' ' && next != kEscape;
}

// Raster, colours, patterns as textures, logical operations, moves, and the way back to the vectors.
bool Machine::isOfPlotters(const Entry& entry)
{
    switch (entry.prefix) {
    case '*':
        return std::strchr("bgilmrtv", entry.group) || (entry.group == 'p' && entry.terminator != 'R')
            || (entry.group == 'c' && std::strchr("GQW", entry.terminator));
    case '&':
        return (entry.group == 'a' && std::strchr("HV", entry.terminator))
            || (entry.group == 'p' && entry.terminator != 'X') || (entry.group == 'u' && entry.terminator == 'D');
    case '%':
        return entry.terminator == 'A' || entry.terminator == 'B';
    default:
        return false;
    }
}

} // namespace quillrip::pcl
