#include "quillrip/base/reporter.h"
#include "quillrip/base/units.h"
#include "quillrip/fonts/font_library.h"
#include "quillrip/pclxl/commands.h"
#include "quillrip/pclxl/machine.h"
#include "quillrip/pclxl/page.h"
#include "quillrip/pclxl/session.h"
#include "quillrip/pclxl/soft_fonts.h"
#include "quillrip/pclxl/state.h"
#include "quillrip/pclxl/text_setter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace quillrip::pclxl::commands {

namespace {

constexpr double kLargestAngle = 360;

Status showText(Machine& machine, TextSetter::Use use)
{
    const AttributeList& operands = machine.operands();
    const GraphicsState& state = machine.state();
    if (!state.character.font)
        return Error::NoCurrentFont;
    if (!state.path.cursor())
        return Error::CurrentCursorUndefined;
    if (use == TextSetter::Use::Outline && !state.character.font.face->traits().isScalable)
        return { Error::IllegalOperatorSequence, Attribute::TextData };
    TextRun run;
    run.codes = operands.array(Attribute::TextData);
    run.advancesX = operands.array(Attribute::XSpacingData);
    run.advancesY = operands.array(Attribute::YSpacingData);
    for (const auto& [advances, attribute] : { std::pair { &run.advancesX, Attribute::XSpacingData },
             std::pair { &run.advancesY, Attribute::YSpacingData } })
        if (operands.has(attribute) && advances->size() != run.codes.size())
            return { Error::IllegalArraySize, attribute };
    return machine.textSetter().set(run, use);
}

} // namespace

Status setFont(Machine& machine)
{
    const AttributeList& operands = machine.operands();
    CharacterState& character = machine.state().character;
    if (operands.has(Attribute::PCLSelectFont)) {
        SelectionContext context;
        context.orientation = machine.page().sheet().orientation;
        character.font
            = machine.fonts().selectByEscapeSequence(operands.array(Attribute::PCLSelectFont).bytes(), context);
        character.size = character.font.height / kPointsPerInch * machine.session().unitsPerInch.y;
        return {};
    }
    for (const Attribute attribute : { Attribute::CharSize, Attribute::SymbolSet })
        if (!operands.has(attribute))
            return { Error::MissingAttribute, attribute };
    const double size = operands.number(Attribute::CharSize);
    if (!(size > 0))
        return { Error::IllegalAttributeValue, Attribute::CharSize };
    const int symbolSet = operands.integer(Attribute::SymbolSet);
    if (symbolSet < 0 || symbolSet > 0xFFFF)
        return { Error::IllegalAttributeValue, Attribute::SymbolSet };
    const std::string name = operands.array(Attribute::FontName).name();
    if (const std::shared_ptr<SoftFont> font = machine.softFonts().find(name)) {
        character.font = {};
        character.font.face = font;
    } else {
        character.font
            = machine.fonts().selectByName(name, static_cast<std::uint16_t>(symbolSet), machine.fontReporter());
    }
    if (!character.font)
        return { Error::FontUndefined, Attribute::FontName };
    character.size = size;
    return {};
}

Status setCharAngle(Machine& machine)
{
    const double angle = machine.operands().number(Attribute::CharAngle);
    if (std::abs(angle) > kLargestAngle)
        return { Error::IllegalAttributeValue, Attribute::CharAngle };
    CharacterState& character = machine.state().character;
    character.angle = angle;
    character.moveToEnd(CharTransform::Angle);
    return {};
}

Status setCharScale(Machine& machine)
{
    CharacterState& character = machine.state().character;
    character.scale = machine.operands().point(Attribute::CharScale);
    character.moveToEnd(CharTransform::Scale);
    return {};
}

Status setCharShear(Machine& machine)
{
    CharacterState& character = machine.state().character;
    character.shear = machine.operands().point(Attribute::CharShear);
    character.moveToEnd(CharTransform::Shear);
    return {};
}

Status setCharBoldValue(Machine& machine)
{
    const double bold = machine.operands().number(Attribute::CharBoldValue);
    if (bold < 0 || bold > 1)
        return { Error::IllegalAttributeValue, Attribute::CharBoldValue };
    machine.state().character.bold = bold;
    return {};
}

Status setCharAttributes(Machine& machine)
{
    machine.state().character.isVertical = machine.operands().integer(Attribute::WritingMode) == 1;
    return {};
}

Status setCharSubMode(Machine& machine)
{
    const ByteView modes = machine.operands().array(Attribute::CharSubModeArray).bytes();
    for (const std::uint8_t mode : modes)
        if (mode > 1)
            return { Error::IllegalAttributeValue, Attribute::CharSubModeArray };
    machine.state().character.substitutesVertically
        = std::find(modes.begin(), modes.end(), std::uint8_t { 1 }) != modes.end();
    return {};
}

Status text(Machine& machine) { return showText(machine, TextSetter::Use::Paint); }

Status textPath(Machine& machine) { return showText(machine, TextSetter::Use::Outline); }

} // namespace quillrip::pclxl::commands
