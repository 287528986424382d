#include "quillrip/pcl/interpreter.h"

#include "quillrip/pcl/machine.h"

namespace quillrip::pcl {

Interpreter::Interpreter(
    PageDevice& device, DiagnosticSink& sink, const Limits& limits, FontLibrary& fonts, const Environment& environment)
    : m_machine(std::make_unique<Machine>(device, sink, limits, fonts, environment))
{
}

Interpreter::~Interpreter() = default;

void Interpreter::setEnvironment(const Environment& environment) { m_machine->setEnvironment(environment); }

Interpreter::End Interpreter::run(InputStream& input) { return m_machine->run(input); }

RunStatus Interpreter::status() const { return m_machine->status(); }

RunStatus Interpreter::finish() { return m_machine->finish(); }

} // namespace quillrip::pcl
