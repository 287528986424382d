#include "quillrip/emf/plus/interpreter.h"

namespace quillrip::emf::plus {

class Interpreter::Implementation { };

Interpreter::Interpreter(const Host&)
    : m_implementation(std::make_unique<Implementation>())
{
}

Interpreter::~Interpreter() = default;

void Interpreter::comment(ByteView, std::uint64_t, bool) { }

Interpreter::Kind Interpreter::kind() const { return Kind::None; }

bool Interpreter::letsRecordsThrough() const { return true; }

std::shared_ptr<const ClipRegion> Interpreter::clipForRecords() const { return nullptr; }

} // namespace quillrip::emf::plus
