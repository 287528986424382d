// What areas are filled with, and how marks combine with the page.

#include "quillrip/hpgl/command.h"
#include "quillrip/hpgl/commands.h"
#include "quillrip/hpgl/plotter.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace quillrip::hpgl::commands {

namespace {

/// The options of FT3 and FT4; false when they are none.
bool readHatching(const Plotter& plotter, const Command& command, Hatching& hatching)
{
    const double spacing = command.operand(1);
    if (spacing < 0)
        return false;
    if (command.count() >= 2 && spacing == 0) {
        hatching.spacing = Hatching {}.spacing;
        hatching.unit = Hatching::Unit::DiagonalPercent;
    } else if (command.count() >= 2) {
        hatching.spacing = spacing;
        hatching.unit = plotter.coordinates.isScaled() ? Hatching::Unit::UserUnits : Hatching::Unit::PlotterUnits;
    }
    if (command.count() >= 3)
        hatching.angle = std::fmod(command.clampedReal(2), 360.0);
    return true;
}

} // namespace

void fillType(Plotter& plotter, Command& command)
{
    FillType& fill = plotter.inks.fillType();
    if (command.empty()) {
        fill = FillType {};
        return;
    }
    const bool hasOption = command.count() >= 2;
    const double option = command.operand(1);
    switch (command.clampedInteger(0)) {
    case 1:
    case 2:
        fill.kind = FillKind::Solid;
        break;
    case 3:
        if (readHatching(plotter, command, fill.parallel))
            fill.kind = FillKind::ParallelLines;
        break;
    case 4:
        if (readHatching(plotter, command, fill.cross))
            fill.kind = FillKind::CrossedLines;
        break;
    case 10:
        if (hasOption && (option < 0 || option > 100))
            return;
        if (hasOption)
            fill.shading = option;
        fill.kind = FillKind::Shading;
        break;
    case 11:
        if (hasOption && (option < 1 || option > 8))
            return;
        if (hasOption)
            fill.rasterFill = command.clampedInteger(1);
        fill.kind = FillKind::RasterFill;
        break;
    case 21:
        if (hasOption && (option < 1 || option > 6))
            return;
        if (hasOption)
            fill.hatchPattern = command.clampedInteger(1);
        fill.kind = FillKind::HatchPattern;
        break;
    case 22:
        if (hasOption && option < 0)
            return;
        if (hasOption)
            fill.userPattern = command.clampedInteger(1);
        fill.kind = FillKind::UserPattern;
        break;
    default:
        break;
    }
}

void rasterFill(Plotter& plotter, Command& command)
{
    if (command.empty()) {
        plotter.inks.clearRasterFills();
        return;
    }
    const int index = command.clampedInteger(0);
    if (index < 1 || index > 8)
        return;
    RasterFill fill;
    if (command.count() >= 3) {
        fill.width = command.clampedInteger(1);
        fill.height = command.clampedInteger(2);
        if (fill.width < 1 || fill.width > 255 || fill.height < 1 || fill.height > 255)
            return;
        fill.pens.assign(static_cast<std::size_t>(fill.width) * static_cast<std::size_t>(fill.height), 0);
        for (std::size_t i = 0; i < fill.pens.size() && i + 3 < command.count(); ++i)
            fill.pens[i] = static_cast<std::uint16_t>(std::max(0, command.clampedInteger(i + 3)));
    } else if (command.count() == 2) {
        return;
    }
    plotter.inks.setRasterFill(index, std::move(fill));
}

void anchorCorner(Plotter& plotter, Command& command)
{
    if (command.empty())
        plotter.inks.setAnchor({});
    else if (command.count() >= 2)
        plotter.inks.setAnchor(plotter.coordinates.toPlotter({ command.operand(0), command.operand(1) }));
}

void transparencyMode(Plotter& plotter, Command& command)
{
    const int mode = command.clampedInteger(0, 1);
    if (mode == 0 || mode == 1)
        plotter.inks.setTransparent(mode == 1);
}

void mergeControl(Plotter& plotter, Command& command)
{
    const int mode = command.clampedInteger(0, 0);
    if (mode != 0 && mode != 1)
        return;
    int operation = kDefaultRasterOperation;
    if (mode == 1)
        operation = command.clampedInteger(1, rop::kTextureOrSourceAndDestination);
    if (operation < 0 || operation > 255)
        operation = kDefaultRasterOperation;
    plotter.host.setRasterOperation(static_cast<std::uint8_t>(operation));
}

void pixelPlacement(Plotter& plotter, Command& command)
{
    const int mode = command.clampedInteger(0, 0);
    if (mode == 0 || mode == 1)
        plotter.host.setGridCentred(mode == 1);
}

} // namespace quillrip::hpgl::commands
