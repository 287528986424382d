#include "quillrip/emf/plus/interpreter.h"

#include "quillrip/emf/plus/machine.h"

namespace quillrip::emf::plus {

class Interpreter::Implementation {
public:
    explicit Implementation(const Host& host)
        : machine(host)
    {
    }
    Machine machine;
};

Interpreter::Interpreter(const Host& host)
    : m_implementation(std::make_unique<Implementation>(host))
{
}

Interpreter::~Interpreter() = default;

void Interpreter::comment(ByteView records, std::uint64_t offset, bool mayStart)
{
    m_implementation->machine.comment(records, offset, mayStart);
}

void Interpreter::standBack() { m_implementation->machine.standBack(); }

Interpreter::Kind Interpreter::kind() const { return m_implementation->machine.kind(); }

bool Interpreter::letsRecordsThrough() const { return m_implementation->machine.letsRecordsThrough(); }

std::shared_ptr<const ClipRegion> Interpreter::clipForRecords() const
{
    return m_implementation->machine.clipForRecords();
}

} // namespace quillrip::emf::plus
