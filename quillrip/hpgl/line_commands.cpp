// How lines look: types, ends and joins, screening, symbols.

#include "quillrip/hpgl/command.h"
#include "quillrip/hpgl/commands.h"
#include "quillrip/hpgl/lexer.h"
#include "quillrip/hpgl/plotter.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <numeric>
#include <utility>
#include <vector>

namespace quillrip::hpgl::commands {

void lineType(Plotter& plotter, Command& command)
{
    LinePen& linePen = plotter.linePen;
    if (command.empty()) {
        linePen.useSolid(plotter.state.pen);
        return;
    }
    constexpr int kFormer = 99;
    LineType type;
    type.isSolid = false;
    type.type = command.clampedInteger(0);
    type.length = linePen.type().length;
    if (type.type == kFormer) {
        linePen.takeUpFormerType(plotter.state.pen);
        return;
    }
    if (type.type < -8 || type.type > 8)
        return;
    if (command.count() >= 2) {
        type.length.value = command.clampedReal(1);
        if (!(type.length.value > 0))
            return;
    }
    if (command.count() >= 3) {
        const int mode = command.clampedInteger(2);
        if (mode != 0 && mode != 1)
            return;
        type.length.isMillimetres = mode == 1;
    }
    linePen.setType(type);
}

void userLineType(Plotter& plotter, Command& command)
{
    if (command.empty()) {
        plotter.linePen.useBuiltInPatterns();
        return;
    }
    const int index = std::abs(command.clampedInteger(0));
    if (index < 1 || index > 8)
        return;
    if (command.count() == 1) {
        plotter.linePen.setPattern(index, {});
        return;
    }
    constexpr std::size_t kMostGaps = 20;
    std::vector<double> gaps(command.operands.begin() + 1,
        command.operands.begin() + static_cast<std::ptrdiff_t>(std::min(command.count(), kMostGaps + 1)));
    const double sum = std::accumulate(gaps.begin(), gaps.end(), 0.0);
    if (!(sum > 0) || *std::min_element(gaps.begin(), gaps.end()) < 0)
        return;
    for (double& gap : gaps)
        gap /= sum;
    plotter.linePen.setPattern(index, std::move(gaps));
}

void lineAttributes(Plotter& plotter, Command& command)
{
    static constexpr LineCap kEnds[] = { LineCap::Butt, LineCap::Square, LineCap::Triangle, LineCap::Round };
    static constexpr LineJoin kJoins[] = { LineJoin::MiterClipped, LineJoin::MiterBevel, LineJoin::Triangle,
        LineJoin::Round, LineJoin::Bevel, LineJoin::None };
    LineAttributes& attributes = plotter.linePen.attributes();
    if (command.empty())
        attributes = LineAttributes {};
    for (std::size_t i = 0; i + 1 < command.count(); i += 2) {
        const int kind = command.clampedInteger(i);
        const int value = command.clampedInteger(i + 1);
        if (kind == 1 && value >= 1 && value <= 4)
            attributes.cap = kEnds[value - 1];
        else if (kind == 2 && value >= 1 && value <= 6)
            attributes.join = kJoins[value - 1];
        else if (kind == 3)
            attributes.miterLimit = std::max(1.0, command.clampedReal(i + 1));
    }
}

void screenVectors(Plotter& plotter, Command& command)
{
    ScreenedVectors& screened = plotter.inks.screenedVectors();
    if (command.empty()) {
        screened = ScreenedVectors {};
        return;
    }
    const bool hasOption = command.count() >= 2;
    const double option = command.operand(1);
    switch (command.clampedInteger(0)) {
    case 0:
        screened.kind = FillKind::Solid;
        break;
    case 1:
        if (hasOption && (option < 0 || option > 100))
            return;
        if (hasOption)
            screened.shading = option;
        screened.kind = FillKind::Shading;
        break;
    case 2:
        if (hasOption && (option < 1 || option > 8))
            return;
        if (hasOption)
            screened.rasterFill = command.clampedInteger(1);
        if (command.count() >= 3)
            screened.usesCurrentPen = command.clampedInteger(2) == 1;
        screened.kind = FillKind::RasterFill;
        break;
    case 21:
        if (hasOption && (option < 1 || option > 6))
            return;
        if (hasOption)
            screened.hatchPattern = command.clampedInteger(1);
        screened.kind = FillKind::HatchPattern;
        break;
    case 22:
        if (hasOption)
            screened.userPattern = command.clampedInteger(1);
        screened.kind = FillKind::UserPattern;
        break;
    default:
        break;
    }
}

/// SM takes one character as it stands, a letter too.
void symbolMode(Plotter& plotter, Command& command)
{
    InputStream& input = command.input;
    int byte = input.peek();
    while (byte == ' ') {
        input.get();
        byte = input.peek();
    }
    int symbol = -1;
    if (byte >= 0 && byte != kEscape) {
        input.get();
        if ((byte >= 33 && byte <= 58) || (byte >= 60 && byte <= 126) || (byte >= 161 && byte <= 254))
            symbol = byte;
        if (byte != ';' && input.peek() == ';')
            input.get();
    }
    if (!plotter.polygon.isOpen())
        plotter.state.symbol = symbol;
}

} // namespace quillrip::hpgl::commands
