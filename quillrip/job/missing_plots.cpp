// Stands in for the plotter language until its folder is built: no input is a plot, and HP-GL/2 in PCL is passed over.
#include "quillrip/hpgl/interpreter.h"
#include "quillrip/hpgl/plot_file.h"
#include "quillrip/hpgl/recognition.h"

namespace quillrip::hpgl {

class Machine { };
class PlotFile::Implementation { };

bool looksLikePlot(ByteView) { return false; }

Interpreter::Interpreter(Host&, FontLibrary&, DiagnosticSink&, const Limits&) { }
Interpreter::~Interpreter() = default;
Interpreter::End Interpreter::run(InputStream& input)
{
    for (int c = input.get(); c >= 0; c = input.get()) {
        if (input.peek() == 0x1B && input.window(2).size > 1 && input.window(2)[1] == '%')
            break;
    }
    input.skip(4);
    return input.atEnd() ? End::InputEnded : End::EnterPcl;
}
int Interpreter::enterPclValue() const { return 0; }
RunStatus Interpreter::status() const { return RunStatus::Done; }
Point Interpreter::pen() const { return {}; }
void Interpreter::setPen(Point) { }
void Interpreter::reset() { }
void Interpreter::frameChanged() { }
void Interpreter::plotSizeChanged() { }

PlotFile::PlotFile(PageDevice&, FontLibrary&, DiagnosticSink&, const Limits&, const PlotEnvironment&) { }
PlotFile::~PlotFile() = default;
PlotFile::End PlotFile::run(InputStream& input)
{
    input.skip(UINT64_MAX);
    return End::InputEnded;
}
RunStatus PlotFile::status() const { return RunStatus::Done; }

} // namespace quillrip::hpgl
