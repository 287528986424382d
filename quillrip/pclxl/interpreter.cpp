#include "quillrip/pclxl/interpreter.h"

#include "quillrip/pclxl/machine.h"

namespace quillrip::pclxl {

class Interpreter::Implementation {
public:
    Implementation(PageDevice& device, DiagnosticSink& diagnostics, const Limits& limits, FontLibrary& fonts,
        const Environment& environment)
        : machine(device, diagnostics, limits, fonts, environment)
    {
    }

    Machine machine;
};

Interpreter::Interpreter(PageDevice& device, DiagnosticSink& diagnostics, const Limits& limits, FontLibrary& fonts,
    const Environment& environment)
    : m_implementation(std::make_unique<Implementation>(device, diagnostics, limits, fonts, environment))
{
}

Interpreter::~Interpreter() = default;

Interpreter::End Interpreter::run(InputStream& input) { return m_implementation->machine.run(input); }

RunStatus Interpreter::status() const { return m_implementation->machine.status(); }

} // namespace quillrip::pclxl
