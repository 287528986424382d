// Pens: which one, how wide, and their colours.

#include "quillrip/hpgl/command.h"
#include "quillrip/hpgl/commands.h"
#include "quillrip/hpgl/plotter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace quillrip::hpgl::commands {

void selectPen(Plotter& plotter, Command& command) { plotter.pens.select(command.clampedInteger(0, 0)); }

void penWidthUnit(Plotter& plotter, Command& command)
{
    const int unit = command.clampedInteger(0, 0);
    if (unit == 0 || unit == 1)
        plotter.pens.setWidthUnit(unit == 1);
}

void penWidth(Plotter& plotter, Command& command)
{
    if (command.empty()) {
        plotter.pens.useDefaultWidths();
        return;
    }
    const double width = std::max(0.0, command.clampedReal(0));
    if (command.count() < 2)
        plotter.pens.setWidths(width);
    else if (command.operand(1) >= 0)
        plotter.pens.setWidth(command.clampedInteger(1), width);
}

void numberOfPens(Plotter& plotter, Command& command)
{
    std::size_t pens = Palette::kDefaultPens;
    if (!command.empty()) {
        if (command.operand(0) < 2 || command.operand(0) > Palette::kMostPens)
            return;
        pens = 2;
        while (pens < static_cast<std::size_t>(std::lround(command.operand(0))))
            pens *= 2;
    }
    plotter.palette.resize(pens);
}

void penColors(Plotter& plotter, Command& command)
{
    Palette& palette = plotter.palette;
    if (command.empty()) {
        palette.useDefaultColors();
        return;
    }
    const double index = command.operand(0);
    if (index < 0 || index >= static_cast<double>(palette.size()))
        return;
    const auto pen = static_cast<std::size_t>(index);
    if (command.count() >= 4)
        palette.setColor(pen, { command.clampedReal(1), command.clampedReal(2), command.clampedReal(3) });
    else if (command.count() == 1)
        palette.useDefaultColor(pen);
}

void colorRange(Plotter& plotter, Command& command)
{
    if (command.empty()) {
        plotter.palette.useDefaultRange();
        return;
    }
    if (command.count() < 6)
        return;
    std::array<double, 3> black {};
    std::array<double, 3> white {};
    for (std::size_t i = 0; i < 3; ++i) {
        black[i] = command.clampedReal(2 * i);
        white[i] = command.clampedReal(2 * i + 1);
        if (black[i] == white[i])
            return;
    }
    plotter.palette.setRange(black, white);
}

} // namespace quillrip::hpgl::commands
