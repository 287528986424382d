#pragma once

#include "quillrip/base/limits.h"
#include "quillrip/base/reporter.h"
#include "quillrip/hpgl/area_filler.h"
#include "quillrip/hpgl/character_painter.h"
#include "quillrip/hpgl/coordinates.h"
#include "quillrip/hpgl/host.h"
#include "quillrip/hpgl/inks.h"
#include "quillrip/hpgl/label_fonts.h"
#include "quillrip/hpgl/label_setter.h"
#include "quillrip/hpgl/line_pen.h"
#include "quillrip/hpgl/palette.h"
#include "quillrip/hpgl/pen_arm.h"
#include "quillrip/hpgl/pens.h"
#include "quillrip/hpgl/plot_clip.h"
#include "quillrip/hpgl/plot_listener.h"
#include "quillrip/hpgl/polygon_buffer.h"
#include "quillrip/hpgl/raster_visit.h"
#include "quillrip/hpgl/state.h"
#include "quillrip/hpgl/surface.h"

#include <memory>
#include <string>

namespace quillrip::hpgl {

/// What commands work on: the parts of a plotter, and what concerns several of them.
class Plotter {
public:
    /// `listener` is null inside PCL; with it, the commands of plot files of their own are obeyed. `rasterLanguage` is
    /// what ESC%#A leads to in those; null: it is passed over.
    Plotter(Host& host, Surface& surface, FontLibrary& fonts, DiagnosticSink& sink, const Limits& limits,
        PlotListener* listener, RasterLanguage* rasterLanguage);

    /// Takes the host's picture frame over, and initialises after a reset.
    void makeReady();
    /// The state is there; false after a reset.
    bool isReady() const { return m_isReady; }
    /// ESC E: everything as after power on, once it is asked for; the frame may not have gone back to its default yet.
    void reset();
    /// As IN does, without its effect on the palette.
    void initialise();
    /// IN.
    void initialiseWithPalette();
    void useDefaults(); ///< DF
    void updateFrame() { coordinates.setFrame(host.pictureFrame()); }
    /// The host's picture frame is another: the state that hangs on it goes back to it.
    void frameChanged();
    /// P1 and P2 go to where they are without IP.
    void useDefaultPoints();
    /// PG, AF, AH, BP in a plot of its own.
    void leavePage(bool isForced);
    void visitRasterLanguage(InputStream& input, RasterLanguage::Entry entry);
    /// Moves the pen (up) and the carriage return point.
    void setPenOnPage(Point page);

    RunStatus status() const
    {
        if (work.isExhausted())
            return RunStatus::LimitExceeded;
        return raster.status() != RunStatus::Done ? raster.status() : surface.status();
    }

    Host& host;
    Surface& surface;
    PlotListener* const listener;
    const std::shared_ptr<WorkMeter> account; ///< the job's, kept as long as the plotter
    WorkMeter& work;
    Reporter reporter;
    State state;
    TextState text;
    Coordinates coordinates;
    Palette palette;
    Pens pens;
    Inks inks;
    PlotClip clip;
    LinePen linePen;
    PolygonBuffer polygon;
    AreaFiller areas;
    LabelFonts fonts;
    CharacterPainter characters;
    LabelSetter labels;
    PenArm arm;
    RasterVisit raster;
    std::string labelBuffer; ///< BL
    double tickPositive = 0.5; ///< TL, percent
    double tickNegative = 0.5;

private:
    bool m_isReady = false;
};

} // namespace quillrip::hpgl
