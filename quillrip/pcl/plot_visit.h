#pragma once

#include "quillrip/hpgl/raster_language.h"

#include <optional>
#include <vector>

namespace quillrip::pcl {

class Cursor;
class Page;
class Tokenizer;
struct State;

/// A stretch of raster in a plot: what the plot lends, and where the stretch ends. Outside of a visit nothing has an
/// effect.
class PlotVisit {
public:
    /// All references must outlive the object.
    PlotVisit(State& state, Page& page, Cursor& cursor);

    /// The plot's page must last until end().
    void begin(hpgl::RasterPage& page, hpgl::RasterLanguage::Entry entry, const hpgl::RasterExchange& exchange);
    void end(hpgl::RasterExchange& exchange);
    bool isOn() const { return m_lent != nullptr; }

    /// ESC%#B leads back to the vectors.
    void leave(int value) { m_enterPlotValue = value; }
    /// The # of the ESC%#B that ended the visit; nothing when none did.
    std::optional<int> enterPlotValue() const { return m_enterPlotValue; }
    /// Also at anything that is no escape sequence, when the visit was not announced.
    bool hasEnded(Tokenizer& tokenizer) const;

    /// False while a plot is only measured.
    bool needsPixels() const { return !m_lent || m_lent->needsPixels(); }
    /// A raster has ended that lay there.
    void covered(const Rect& raster);

private:
    State& m_state;
    Page& m_page;
    Cursor& m_cursor;
    hpgl::RasterPage* m_lent = nullptr; ///< during a visit
    bool m_isUnannounced = false;
    std::optional<int> m_enterPlotValue;
    std::vector<Rgb> m_lentPalette; ///< what the plot's pens were when the visit began
};

} // namespace quillrip::pcl
