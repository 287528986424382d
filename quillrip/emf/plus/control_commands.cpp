#include "quillrip/emf/plus/effects.h"
#include "quillrip/emf/plus/handlers.h"
#include "quillrip/emf/plus/operands.h"

#include <string>

namespace quillrip::emf::plus {

void getDc(Machine& machine, const Record&, FieldReader&) { machine.handOver(); }

void serializableObject(Machine& machine, const Record&, FieldReader& fields)
{
    const ByteView guid = fields.take(kGuidSize);
    if (fields.hasFailed())
        return;
    machine.noteEffect();
    machine.warn("emfplus.effect", std::string("an image is drawn without its effect: ") + effectName(guid));
}

} // namespace quillrip::emf::plus
