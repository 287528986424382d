#pragma once

#include "quillrip/hpgl/coordinates.h"
#include "quillrip/hpgl/host.h"
#include "quillrip/hpgl/plot_listener.h"
#include "quillrip/hpgl/raster_language.h"
#include "quillrip/hpgl/state.h"
#include "quillrip/hpgl/surface.h"

#include <optional>

namespace quillrip::hpgl {

/// A plotter's other language: what lies between ESC%#A and ESC%#B in plots of their own.
class RasterVisit {
public:
    /// `language` is null where raster between vectors is passed over.
    RasterVisit(RasterLanguage* language, Host& host, const Surface& surface, State& state,
        const Coordinates& coordinates, PlotListener* listener);

    bool isPossible() const { return m_language != nullptr; }
    /// Runs the language on the page. The place of the pen behind it, where it tells one.
    std::optional<Point> run(InputStream& input, RasterLanguage::Entry entry);
    /// Finds the end of the raster language without obeying it.
    static void skip(InputStream& input);
    /// Anything but Done: the raster could not be drawn, and nothing more can.
    RunStatus status() const { return m_status; }

private:
    class VisitedPage;

    RasterLanguage* const m_language;
    Host& m_host;
    const Surface& m_surface;
    State& m_state;
    const Coordinates& m_coordinates;
    PlotListener* const m_listener;
    RunStatus m_status = RunStatus::Done;
};

} // namespace quillrip::hpgl
