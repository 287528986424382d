#include "quillrip/hpgl/interpreter.h"

#include "quillrip/hpgl/machine.h"
#include "quillrip/hpgl/page_surface.h"

namespace quillrip::hpgl {

struct Interpreter::Parts {
    Parts(Host& host, FontLibrary& fonts, DiagnosticSink& sink, const Limits& limits)
        : surface(host, fonts.glyphs())
        , machine(host, surface, fonts, sink, limits, nullptr)
    {
    }

    PageSurface surface;
    Machine machine;
};

Interpreter::Interpreter(Host& host, FontLibrary& fonts, DiagnosticSink& sink, const Limits& limits)
    : m_parts(std::make_unique<Parts>(host, fonts, sink, limits))
{
}

Interpreter::~Interpreter() = default;

End Interpreter::run(InputStream& input)
{
    // Pages come and go between two visits.
    m_parts->surface.leavePage();
    return m_parts->machine.run(input);
}

int Interpreter::enterPclValue() const { return m_parts->machine.enterPclValue(); }

RunStatus Interpreter::status() const { return m_parts->machine.status(); }

Point Interpreter::pen() const
{
    Plotter& plotter = m_parts->machine.plotter();
    plotter.makeReady();
    return plotter.coordinates.toPage(plotter.state.pen);
}

void Interpreter::setPen(Point page) { m_parts->machine.plotter().setPenOnPage(page); }

void Interpreter::reset() { m_parts->machine.plotter().reset(); }

void Interpreter::frameChanged() { m_parts->machine.plotter().frameChanged(); }

void Interpreter::plotSizeChanged()
{
    if (Plotter& plotter = m_parts->machine.plotter(); plotter.isReady())
        plotter.updateFrame();
}

} // namespace quillrip::hpgl
