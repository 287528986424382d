#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/base/input_stream.h"
#include "quillrip/base/page_bitmap.h"
#include "quillrip/hpgl/surface.h"
#include "quillrip/raster/page_device.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quillrip {

class FontLibrary;

namespace hpgl {

/// A plot's page as the raster language sees it. Its axes: the origin is the plotter's (0, 0), x runs along the
/// plotter's y axis, across the carriage, and y along the plotter's x axis, as the paper advances; whatever RO says.
/// Decipoints.
class RasterPage {
public:
    virtual ~RasterPage() = default;

    /// As Host::beginMark(); `pageToDevice` and the resolution are those of the raster's axes. The painter is null
    /// while a plot is only measured.
    [[nodiscard]] virtual RunStatus beginMark(PageCanvas& canvas) = 0;
    virtual PageCanvas previewCanvas() const = 0;
    /// How wide a raster is that does not tell.
    virtual double width() const = 0;
    /// Nothing is seen of what begins there or beyond.
    virtual double end() const = 0;
    /// False: only the place of rasters is asked for, not their pixels.
    virtual bool needsPixels() const = 0;
    /// A raster has ended that lay there.
    virtual void covered(const Rect& raster) = 0;
};

/// What both languages share; handed over at every switch, and back.
struct RasterExchange {
    Point cursor; ///< the pen, or the active position, in the raster's axes
    std::vector<Rgb> palette;
    std::uint8_t rasterOperation = 0; ///< MC, ESC*l#O
    bool isGridCentred = false; ///< PP, ESC*l#R
};

/// The raster language that plotters know beside HP-GL/2 (HP RTL). It is a subset of PCL 5, so the folder that knows
/// PCL implements it. One object lives as long as one reading of a plot: its settings survive the switches.
class RasterLanguage {
public:
    enum class Entry {
        KeepsPosition, ///< ESC%0A: the active position is where it was left
        AtPen, ///< ESC%1A: it is the exchange's cursor
        /// Its commands came without ESC%#A: the position is where it was left, and anything that is no escape
        /// sequence leads back.
        Unannounced,
    };
    enum class End {
        InputEnded,
        EnterHpgl, ///< ESC%#B was taken, `enterValue()` tells #; 0 at the end of an unannounced stretch
        Failed, ///< status() says why; nothing more may be run
    };

    virtual ~RasterLanguage() = default;
    [[nodiscard]] virtual End run(InputStream& input, Entry entry, RasterPage& page, RasterExchange& exchange) = 0;
    virtual int enterValue() const = 0;
    virtual RunStatus status() const = 0;
};

/// Makes one for a reading of a plot. The sink outlives it.
using RasterLanguageFactory = std::function<std::unique_ptr<RasterLanguage>(FontLibrary&, DiagnosticSink&)>;

} // namespace hpgl
} // namespace quillrip
