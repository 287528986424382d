#include "quillrip/hpgl/plotter.h"

#include <optional>

namespace quillrip::hpgl {

Plotter::Plotter(Host& hostOfPlot, Surface& page, FontLibrary& library, DiagnosticSink& sink, const Limits& limits,
    PlotListener* pageListener, RasterLanguage* rasterLanguage)
    : host(hostOfPlot)
    , surface(page)
    , listener(pageListener)
    , account(limits.work)
    , work(*account)
    , reporter(&sink)
    , palette(host)
    , pens(palette, coordinates)
    , inks(host, palette, coordinates, pens, work)
    , clip(surface, coordinates, pens)
    , linePen(surface, host, state, coordinates, pens, inks, clip, work)
    , polygon(limits.pathPoints, reporter)
    , areas(surface, state, coordinates, pens, inks, clip, linePen, work)
    , fonts(library, host, text, coordinates)
    , characters(surface, state, text, coordinates, pens, inks, clip, areas, work)
    , labels(surface, state, text, fonts, characters, work)
    , arm(state, coordinates, linePen, polygon, labels, work)
    , raster(rasterLanguage, host, surface, state, coordinates, listener)
{
}

void Plotter::makeReady()
{
    if (m_isReady) {
        updateFrame();
        return;
    }
    m_isReady = true;
    palette.useDefaultRange();
    initialise();
}

void Plotter::reset()
{
    linePen.discard();
    polygon.reset();
    fonts.forget();
    m_isReady = false;
}

void Plotter::initialise()
{
    state.isPenDown = false;
    state.pen = {};
    state.isLost = false;
    state.chordIsDeviation = false;
    linePen.forgetTouch();
    linePen.restartPattern();
    pens.initialise();
    coordinates.rotate(0);
    updateFrame();
    useDefaults();
    coordinates.useDefaultPoints();
}

void Plotter::initialiseWithPalette()
{
    initialise();
    if (listener)
        listener->pointsDefaulted();
    palette.useDefaultRange();
    host.setRasterOperation(kDefaultRasterOperation);
    host.setGridCentred(false);
    palette.renew();
}

void Plotter::useDefaults()
{
    coordinates.openWindow();
    coordinates.setScaling({});
    polygon.reset();
    linePen.useDefaults();
    inks.useDefaults();
    text = TextState {};
    fonts.forget();
    state.isAbsolute = true;
    state.symbol = -1;
    state.carriageReturn = state.pen;
}

void Plotter::frameChanged()
{
    if (!m_isReady)
        return;
    updateFrame();
    coordinates.openWindow();
    coordinates.useDefaultPoints();
    polygon.reset();
    state.pen = state.carriageReturn = coordinates.p1();
    linePen.restartPattern();
}

void Plotter::useDefaultPoints()
{
    coordinates.useDefaultPoints();
    if (listener)
        listener->pointsDefaulted();
}

void Plotter::leavePage(bool isForced)
{
    if (!listener)
        return;
    listener->advancePage(isForced);
    updateFrame();
}

void Plotter::setPenOnPage(Point page)
{
    makeReady();
    state.pen = coordinates.fromPage(page);
    state.isLost = false;
    state.carriageReturn = state.pen;
    linePen.restartPattern();
    linePen.forgetTouch();
}

void Plotter::visitRasterLanguage(InputStream& input, RasterLanguage::Entry entry)
{
    linePen.end();
    makeReady();
    if (const std::optional<Point> pen = raster.run(input, entry))
        setPenOnPage(*pen);
}

} // namespace quillrip::hpgl
