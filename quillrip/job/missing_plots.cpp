// Stands in for plots of their own until their reader is there: none is drawn.
#include "quillrip/hpgl/plot_file.h"

namespace quillrip::hpgl {

class PlotFile::Implementation { };

PlotFile::PlotFile(PageDevice&, FontLibrary&, DiagnosticSink&, const Limits&, const PlotEnvironment&) { }
PlotFile::~PlotFile() = default;
PlotFile::End PlotFile::run(InputStream& input)
{
    input.skip(UINT64_MAX);
    return End::InputEnded;
}
RunStatus PlotFile::status() const { return RunStatus::Done; }

} // namespace quillrip::hpgl
