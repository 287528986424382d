#include "quillrip/base/reporter.h"
#include "quillrip/pclxl/commands.h"
#include "quillrip/pclxl/machine.h"
#include "quillrip/pclxl/soft_fonts.h"
#include "quillrip/pclxl/state.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace quillrip::pclxl::commands {

namespace {

std::string fontName(const Machine& machine) { return machine.operands().array(Attribute::FontName).name(); }

} // namespace

Status beginFontHeader(Machine& machine)
{
    const std::string name = fontName(machine);
    if (name.empty())
        return { Error::IllegalArraySize, Attribute::FontName };
    machine.softFonts().beginHeader(name);
    machine.beginDefinition(Definition::FontHeader);
    return {};
}

Status readFontHeader(Machine& machine)
{
    const int length = machine.operands().integer(Attribute::FontHeaderLength);
    if (length < 0)
        return { Error::IllegalAttributeValue, Attribute::FontHeaderLength };
    return machine.softFonts().appendHeader(machine.data(), static_cast<std::size_t>(length));
}

Status endFontHeader(Machine& machine)
{
    machine.endDefinition();
    bool isReplaced = false;
    const Status status = machine.softFonts().endHeader(machine.fontReporter(), isReplaced);
    if (isReplaced)
        machine.reporter().warn(
            "pclxl.font-replaced", "a soft font is defined again and takes the place of the former one");
    return status;
}

Status beginChar(Machine& machine)
{
    if (!machine.softFonts().beginCharacters(fontName(machine)))
        return { Error::FontUndefined, Attribute::FontName };
    machine.beginDefinition(Definition::Character);
    return {};
}

Status readChar(Machine& machine)
{
    const AttributeList& operands = machine.operands();
    const int length = operands.integer(Attribute::CharDataSize);
    if (length < 0)
        return { Error::IllegalAttributeValue, Attribute::CharDataSize };
    const int code = operands.integer(Attribute::CharCode);
    if (code < 0 || code > 0xFFFF)
        return { Error::IllegalAttributeValue, Attribute::CharCode };
    return machine.softFonts().addCharacter(
        static_cast<std::uint16_t>(code), machine.data(), static_cast<std::size_t>(length), machine.fontReporter());
}

Status endChar(Machine& machine)
{
    machine.endDefinition();
    return {};
}

/// Text that is on the page already stays; the current font goes when it is the one that is removed.
Status removeFont(Machine& machine)
{
    const std::shared_ptr<SoftFont> font = machine.softFonts().remove(fontName(machine));
    Font& current = machine.state().character.font;
    if (!font)
        machine.reporter().warn(
            "pclxl.font-not-removed", "a font is to be removed that is no soft font (UndefinedFontNotRemoved)");
    else if (current.face == font)
        current = {};
    return {};
}

} // namespace quillrip::pclxl::commands
