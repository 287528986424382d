#include "quillrip/pcl/plot_visit.h"

#include "quillrip/base/escape_sequence.h"
#include "quillrip/pcl/cursor.h"
#include "quillrip/pcl/page.h"
#include "quillrip/pcl/state.h"
#include "quillrip/pcl/tokenizer.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace quillrip::pcl {

namespace {

std::vector<Rgb> colorsOf(const Palette& palette)
{
    std::vector<Rgb> colors;
    for (std::size_t i = 0; i < palette.size(); ++i)
        colors.push_back(palette.color(i));
    return colors;
}

} // namespace

PlotVisit::PlotVisit(State& state, Page& page, Cursor& cursor)
    : m_state(state)
    , m_page(page)
    , m_cursor(cursor)
{
}

void PlotVisit::begin(hpgl::RasterPage& page, hpgl::RasterLanguage::Entry entry, const hpgl::RasterExchange& exchange)
{
    m_lent = &page;
    m_isUnannounced = entry == hpgl::RasterLanguage::Entry::Unannounced;
    m_enterPlotValue.reset();
    m_state.page = LogicalPage::ofPlot(page.width(), page.end());
    m_state.text = { 0, 0, m_state.page.width(), m_state.page.length() };
    m_page.geometryChanged();
    if (entry == hpgl::RasterLanguage::Entry::AtPen)
        m_cursor.moveToClamped(
            inUnits(exchange.cursor.x, kUnitsPerDecipoint), inUnits(exchange.cursor.y, kUnitsPerDecipoint));
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

void PlotVisit::end(hpgl::RasterExchange& exchange)
{
    exchange.cursor = { static_cast<double>(m_cursor.x()) / kUnitsPerDecipoint,
        static_cast<double>(m_cursor.y()) / kUnitsPerDecipoint };
    exchange.rasterOperation = m_state.rasterOperation;
    exchange.isGridCentred = m_state.isGridCentred;
    // Larger palettes than raster can have come back as they were.
    const std::vector<Rgb> colors = colorsOf(m_state.palettes.active());
    const std::size_t common = std::min(colors.size(), m_lentPalette.size());
    const bool isUntouched = m_state.palettes.active().isPens() && colors.size() == common
        && std::equal(colors.begin(), colors.end(), m_lentPalette.begin());
    if (!isUntouched)
        exchange.palette = m_lentPalette = colors;
    m_page.giveBack();
    m_lent = nullptr;
}

bool PlotVisit::hasEnded(Tokenizer& tokenizer) const
{
    if (!m_lent)
        return false;
    if (m_enterPlotValue)
        return true;
    if (!m_isUnannounced || tokenizer.isInSequence())
        return false;
    const int next = tokenizer.stream().peek();
    return next > ' ' && next != kEscape;
}

void PlotVisit::covered(const Rect& raster)
{
    if (m_lent)
        m_lent->covered(raster);
}

} // namespace quillrip::pcl
