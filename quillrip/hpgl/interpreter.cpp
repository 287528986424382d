#include "quillrip/hpgl/interpreter.h"

#include "quillrip/hpgl/machine.h"
#include "quillrip/hpgl/page_surface.h"

namespace quillrip::hpgl {

struct Interpreter::Parts {
    Parts(Host& host, FontLibrary& fonts, DiagnosticSink& sink, const Limits& limits)
        : surface(host)
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

Interpreter::End Interpreter::run(InputStream& input)
{
    // Pages come and go between two visits.
    m_parts->surface.leavePage();
    switch (m_parts->machine.run(input)) {
    case Machine::Stop::EnterPcl:
        return End::EnterPcl;
    case Machine::Stop::Reset:
        return End::Reset;
    case Machine::Stop::UniversalExit:
        return End::UniversalExit;
    case Machine::Stop::Failed:
        return End::Failed;
    case Machine::Stop::InputEnded:
        break;
    }
    return End::InputEnded;
}

int Interpreter::enterPclValue() const { return m_parts->machine.enterPclValue(); }

RunStatus Interpreter::status() const { return m_parts->machine.status(); }

Point Interpreter::pen() const { return m_parts->machine.penOnPage(); }

void Interpreter::setPen(Point page) { m_parts->machine.setPenOnPage(page); }

void Interpreter::reset() { m_parts->machine.reset(); }

void Interpreter::frameChanged() { m_parts->machine.frameChanged(); }

void Interpreter::plotSizeChanged() { m_parts->machine.frameRescaled(); }

} // namespace quillrip::hpgl
