#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/base/input_stream.h"
#include "quillrip/base/limits.h"
#include "quillrip/hpgl/end.h"
#include "quillrip/hpgl/environment.h"
#include "quillrip/hpgl/raster_language.h"
#include "quillrip/raster/page_device.h"

#include <memory>

namespace quillrip {

class FontLibrary;

namespace hpgl {

/// A plot that is a file, or a stretch of a job, of its own: HP-GL/2 and plain HP-GL, several pages by PG, AF, AH, BP.
///
/// The page size is known only when a page was read, so a plot is gone through twice: its bytes are kept up to
/// Limits::macroBytes, and what lies beyond is drawn without having been measured.
class PlotFile {
public:
    using End = hpgl::End; ///< never EnterPcl

    /// All references must outlive the plot. Without a raster language, raster between vectors is passed over.
    PlotFile(PageDevice& device, FontLibrary& fonts, DiagnosticSink& sink, const Limits& limits,
        const Environment& environment, RasterLanguageFactory rasterLanguage = {});
    ~PlotFile();
    PlotFile(const PlotFile&) = delete;
    PlotFile& operator=(const PlotFile&) = delete;

    /// Draws the plot that begins here and delivers all its pages. ESC%-1B, ESC. commands and white space in front
    /// are understood.
    [[nodiscard]] End run(InputStream& input);
    RunStatus status() const;

private:
    class Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

} // namespace hpgl
} // namespace quillrip
