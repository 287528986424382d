#include "quillrip/hpgl/raster_visit.h"

#include "quillrip/hpgl/lexer.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace quillrip::hpgl {

namespace {

/// The raster's axes to plotter units at RO0: the two exchange their axes, which turns one way and mirrors the other.
const Matrix kRasterToPlotter { 0, kPlotterUnitsPerDecipoint, kPlotterUnitsPerDecipoint, 0, 0, 0 };

bool isAcross(const Matrix& matrix) { return std::abs(matrix.b) > std::abs(matrix.a); }

} // namespace

/// The present page of the plot in the raster's axes.
class RasterVisit::VisitedPage final : public RasterPage {
public:
    explicit VisitedPage(RasterVisit& visit)
        : m_visit(visit)
        , m_toPage(kRasterToPlotter * visit.m_coordinates.frameToPage())
    {
    }

    RunStatus beginMark(PageCanvas& canvas) override
    {
        const RunStatus status = m_visit.m_host.beginMark(canvas);
        canvas = turned(canvas);
        return status;
    }
    PageCanvas previewCanvas() const override { return turned(m_visit.m_host.previewCanvas()); }
    double width() const override { return m_visit.m_coordinates.frameSize().y / kPlotterUnitsPerDecipoint; }
    double end() const override
    {
        const PictureFrame& frame = m_visit.m_coordinates.frame();
        const Matrix fromPage = m_toPage.inverted();
        return std::max(fromPage.apply({ frame.clipLeft, frame.clipTop }).y,
            fromPage.apply({ frame.clipRight, frame.clipBottom }).y);
    }
    bool needsPixels() const override { return m_visit.m_surface.needsDetail(); }
    void covered(const Rect& raster) override
    {
        Rect page = Rect::nothing();
        page.include(m_toPage.apply({ raster.left, raster.top }));
        page.include(m_toPage.apply({ raster.right, raster.bottom }));
        m_visit.m_state.hasDrawn = true;
        m_visit.m_listener->rasterCovered(page);
    }

    const Matrix& toPage() const { return m_toPage; }

private:
    PageCanvas turned(PageCanvas canvas) const
    {
        canvas.pageToDevice = m_toPage * canvas.pageToDevice;
        if (isAcross(m_toPage))
            std::swap(canvas.resolution.x, canvas.resolution.y);
        return canvas;
    }

    RasterVisit& m_visit;
    Matrix m_toPage;
};

RasterVisit::RasterVisit(RasterLanguage* language, Host& host, const Surface& surface, State& state,
    const Coordinates& coordinates, PlotListener* listener)
    : m_language(language)
    , m_host(host)
    , m_surface(surface)
    , m_state(state)
    , m_coordinates(coordinates)
    , m_listener(listener)
{
}

std::optional<Point> RasterVisit::run(InputStream& input, RasterLanguage::Entry entry)
{
    VisitedPage page(*this);
    RasterExchange exchange;
    exchange.cursor = page.toPage().inverted().apply(m_coordinates.toPage(m_state.pen));
    for (std::size_t pen = 0; pen < m_host.paletteSize(); ++pen)
        exchange.palette.push_back(m_host.paletteColor(pen));
    exchange.rasterOperation = m_host.rasterOperation();
    exchange.isGridCentred = m_host.isGridCentred();
    const std::vector<Rgb> pens = exchange.palette;
    const RasterLanguage::End end = m_language->run(input, entry, page, exchange);
    if (end == RasterLanguage::End::Failed) {
        m_status = m_language->status();
        return std::nullopt;
    }
    m_host.setRasterOperation(exchange.rasterOperation);
    m_host.setGridCentred(exchange.isGridCentred);
    if (exchange.palette != pens) {
        m_host.newPalette(exchange.palette.size());
        for (std::size_t pen = 0; pen < exchange.palette.size(); ++pen)
            m_host.setPaletteColor(pen, exchange.palette[pen]);
    }
    if (end != RasterLanguage::End::EnterHpgl || !(m_language->enterValue() & 1))
        return std::nullopt;
    return page.toPage().apply(exchange.cursor);
}

void RasterVisit::skip(InputStream& input)
{
    for (;;) {
        const int byte = input.peek();
        if (byte < 0)
            return;
        if (byte != kEscape) {
            input.get();
            continue;
        }
        const ByteView window = input.window(9);
        if (startsWithUniversalExit(window) || (window.size >= 2 && window[1] == 'E'))
            return;
        if (readEscape(input).kind == EscapeSequence::Kind::EnterHpgl)
            return;
    }
}

} // namespace quillrip::hpgl
