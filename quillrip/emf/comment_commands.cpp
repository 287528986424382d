// Comments, which carry EMF+ and fonts, and escapes, which carry another printer language to the driver.

#include "quillrip/emf/embedded_fonts.h"
#include "quillrip/emf/handlers.h"
#include "quillrip/emf/machine.h"
#include "quillrip/emf/record.h"

#include <cstdint>

namespace quillrip::emf {

namespace {

constexpr std::uint32_t kSpool = 0;
constexpr std::uint32_t kFonts = 0x544F4E46; // "FNOT", as it lies in the file

enum : std::uint32_t {
    kPassThrough = 0x13,
    kPostScriptData = 0x25,
    kPostScriptPassThrough = 0x1013,
    kEncapsulatedPostScript = 0x1014,
};

void nameEscape(Machine& machine, std::uint32_t number, ByteView data)
{
    if (data.empty())
        return;
    switch (number) {
    case kPassThrough: {
        // A count in front of the driver's own language.
        constexpr std::uint8_t kEscape = 0x1B;
        const bool isPcl = data.size > 2 && data[2] == kEscape;
        return machine.warn("emf.pass-through",
            isPcl ? "page holds PCL passed to the driver; it is not drawn"
                  : "page holds PostScript passed to the driver; it is not drawn");
    }
    case kPostScriptData:
    case kPostScriptPassThrough:
    case kEncapsulatedPostScript:
        return machine.warn("emf.pass-through", "page holds PostScript passed to the driver; it is not drawn");
    default:
        break;
    }
}

} // namespace

void comment(Machine& machine, const Record& record)
{
    constexpr std::size_t kData = 12;
    const ByteView data = record.part(kData, record.u32(8));
    const Fields fields(data);
    if (data.size < 4)
        return;
    switch (fields.u32(0)) {
    case kEmfPlusIdentifier:
        return machine.plus().comment(data.sub(4), record.offset() + kData + 4, !machine.hasDrawn());
    case kSpool:
        if (fields.u32(4) == kFonts)
            takeFontRecords(machine.job().fonts, data.sub(8), machine.reporter());
        return;
    default:
        // Groups, copies of the same picture in other formats, and what programs note for themselves.
        return;
    }
}

void escape(Machine& machine, const Record& record)
{
    nameEscape(machine, record.u32(8), record.bytes().sub(16, record.u32(12)));
}

void namedEscape(Machine& machine, const Record& record)
{
    const std::uint64_t driver = record.u32(12);
    const std::uint64_t start = 20 + driver;
    if (start < record.size())
        nameEscape(machine, record.u32(8), record.bytes().sub(static_cast<std::size_t>(start), record.u32(16)));
}

void openGl(Machine& machine, const Record&)
{
    machine.warn("emf.opengl", "page holds OpenGL commands; they are not drawn");
}

} // namespace quillrip::emf
