// Which fonts labels are set in.

#include "quillrip/hpgl/command.h"
#include "quillrip/hpgl/commands.h"
#include "quillrip/hpgl/plotter.h"
#include "quillrip/hpgl/stick_font.h"

#include <cstddef>

namespace quillrip::hpgl::commands {

namespace {

/// One pair of SD and AD; values that mean nothing change nothing.
void setAttribute(FontAttributes& attributes, int kind, int value, double real)
{
    switch (kind) {
    case 1:
        if (value >= 0)
            attributes.symbolSet = value;
        break;
    case 2:
        if (value == 0 || value == 1)
            attributes.isProportional = value == 1;
        break;
    case 3:
        if (real > 0)
            attributes.pitch = real;
        break;
    case 4:
        if (real > 0)
            attributes.height = real;
        break;
    case 5:
        if (value >= 0)
            attributes.style = value;
        break;
    case 6:
        if ((value >= -7 && value <= 7) || value == kPenWeight)
            attributes.weight = value;
        break;
    case 7:
        if (value >= 0)
            attributes.typeface = value;
        break;
    default:
        break;
    }
}

void defineFont(FontAttributes& attributes, const Command& command)
{
    if (command.empty()) {
        attributes = FontAttributes {};
        return;
    }
    attributes.id = -1;
    for (std::size_t i = 0; i + 1 < command.count(); i += 2)
        setAttribute(attributes, command.clampedInteger(i), command.clampedInteger(i + 1), command.clampedReal(i + 1));
}

/// FI and FN: a soft font of the host by its number.
void useFontOfNumber(Plotter& plotter, FontAttributes& attributes, const Command& command)
{
    if (command.empty())
        return;
    const int id = command.clampedInteger(0);
    const auto font = plotter.fonts.softFont(id);
    if (!font)
        return;
    attributes.id = id;
    if (!font->traits().isScalable)
        plotter.text.allowsBitmapFonts = true;
}

} // namespace

void standardFont(Plotter& plotter, Command& command) { defineFont(plotter.text.standard, command); }

void alternateFont(Plotter& plotter, Command& command) { defineFont(plotter.text.alternate, command); }

void selectStandard(Plotter& plotter, Command&) { plotter.text.usesAlternate = false; }

void selectAlternate(Plotter& plotter, Command&) { plotter.text.usesAlternate = true; }

void primaryFont(Plotter& plotter, Command& command) { useFontOfNumber(plotter, plotter.text.standard, command); }

void secondaryFont(Plotter& plotter, Command& command) { useFontOfNumber(plotter, plotter.text.alternate, command); }

/// HP-GL's numbered character sets are national variants of ASCII; Roman-8 holds the letters of them all.
void standardCharacterSet(Plotter& plotter, Command&) { plotter.text.standard.symbolSet = kRoman8; }

void alternateCharacterSet(Plotter& plotter, Command&) { plotter.text.alternate.symbolSet = kRoman8; }

void scalableOrBitmap(Plotter& plotter, Command& command)
{
    const int mode = command.clampedInteger(0, 0);
    if (mode == 0 || mode == 1)
        plotter.text.allowsBitmapFonts = mode == 1;
}

} // namespace quillrip::hpgl::commands
