// A plotter's other language: ESC%#A and ESC%#B in plots of their own.

#include "quillrip/hpgl/machine.h"

#include <cmath>

namespace quillrip::hpgl {

namespace {

constexpr double kUnitsPerDecipoint = kPlotterUnitsPerInch / kDecipointsPerInch;
/// The raster's axes to plotter units at RO0: the two exchange their axes, which turns one way and mirrors the other.
const Matrix kRasterToPlotter { 0, kUnitsPerDecipoint, kUnitsPerDecipoint, 0, 0, 0 };

bool isAcross(const Matrix& matrix) { return std::abs(matrix.b) > std::abs(matrix.a); }

} // namespace

/// The present page of the machine in the raster's axes.
class Machine::VisitedPage final : public RasterPage {
public:
    explicit VisitedPage(Machine& machine)
        : m_machine(machine)
        , m_toPage(kRasterToPlotter * machine.m_frameToPage)
    {
    }

    RunStatus beginMark(PageCanvas& canvas) override
    {
        const RunStatus status = m_machine.m_host.beginMark(canvas);
        canvas = turned(canvas);
        return status;
    }
    PageCanvas previewCanvas() const override { return turned(m_machine.m_host.previewCanvas()); }
    double width() const override { return m_machine.frameSize().y / kUnitsPerDecipoint; }
    double end() const override
    {
        const PictureFrame& frame = m_machine.m_frame;
        const Matrix fromPage = m_toPage.inverted();
        return std::max(fromPage.apply({ frame.clipLeft, frame.clipTop }).y,
            fromPage.apply({ frame.clipRight, frame.clipBottom }).y);
    }
    bool needsPixels() const override { return m_machine.m_surface.needsDetail(); }
    void covered(const PageRect& raster) override
    {
        PageRect page = PageRect::nothing();
        page.include(m_toPage.apply({ raster.left, raster.top }));
        page.include(m_toPage.apply({ raster.right, raster.bottom }));
        m_machine.m_hasDrawn = true;
        m_machine.m_listener->rasterCovered(page);
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

    Machine& m_machine;
    Matrix m_toPage;
};

void Machine::visitRasterLanguage(InputStream& input, RasterLanguage::Entry entry)
{
    finishLine();
    flushStrokes();
    makeReady();
    VisitedPage page(*this);
    RasterExchange exchange;
    exchange.cursor = page.toPage().inverted().apply(m_plotterToPage.apply(m_state.pen));
    for (std::size_t pen = 0; pen < m_host.paletteSize(); ++pen)
        exchange.palette.push_back(m_host.paletteColor(pen));
    exchange.rasterOperation = m_host.rasterOperation();
    exchange.isGridCentred = m_host.isGridCentred();
    const std::vector<Rgb> pens = exchange.palette;
    const RasterLanguage::End end = m_rasterLanguage->run(input, entry, page, exchange);
    if (end == RasterLanguage::End::Failed) {
        m_rasterStatus = m_rasterLanguage->status();
        return;
    }
    m_host.setRasterOperation(exchange.rasterOperation);
    m_host.setGridCentred(exchange.isGridCentred);
    if (exchange.palette != pens) {
        m_host.newPalette(exchange.palette.size());
        for (std::size_t pen = 0; pen < exchange.palette.size(); ++pen)
            m_host.setPaletteColor(pen, exchange.palette[pen]);
    }
    if (end == RasterLanguage::End::EnterHpgl && (m_rasterLanguage->enterValue() & 1))
        setPenOnPage(page.toPage().apply(exchange.cursor));
}

/// Without a raster language there is nothing to be done but to find the end of it.
void Machine::skipRasterLanguage(InputStream& input)
{
    warn("hpgl.raster-language", "raster graphics between HP-GL/2 (HP RTL) are not drawn");
    for (;;) {
        const int byte = input.peek();
        if (byte < 0)
            return;
        if (byte != kEscape) {
            input.get();
            continue;
        }
        const ByteView window = input.window(9);
        if (isUniversalExit(window) || (window.size >= 2 && window[1] == 'E'))
            return;
        if (readEscape(input).kind == EscapeSequence::Kind::EnterHpgl)
            return;
    }
}

} // namespace quillrip::hpgl
