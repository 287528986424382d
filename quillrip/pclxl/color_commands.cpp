#include "quillrip/base/color.h"
#include "quillrip/base/reporter.h"
#include "quillrip/pclxl/commands.h"
#include "quillrip/pclxl/drawing.h"
#include "quillrip/pclxl/machine.h"
#include "quillrip/pclxl/pattern_store.h"
#include "quillrip/pclxl/state.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace quillrip::pclxl::commands {

namespace {

std::uint8_t level(double value, double full)
{
    return static_cast<std::uint8_t>(std::lround(std::clamp(value / full, 0.0, 1.0) * 255));
}

/// The largest value of a component: 255 for bytes, 1 for reals.
double fullScale(Element element) { return element == Element::Real32 ? 1 : 255; }

double fullScaleOfDepth(int colorDepth) { return colorDepth == 0 ? 1 : colorDepth == 1 ? 15 : 255; }

Status readGray(const AttributeList& operands, Rgb& color)
{
    const Operand& gray = *operands.find(Attribute::GrayLevel);
    const double full = fullScale(gray.element);
    if (gray.numbers[0] < 0 || gray.numbers[0] > full)
        return { Error::IllegalAttributeValue, Attribute::GrayLevel };
    const std::uint8_t light = level(gray.numbers[0], full);
    color = { light, light, light };
    return {};
}

Status readPattern(const Machine& machine, Ink& ink)
{
    const AttributeList& operands = machine.operands();
    ink.kind = Ink::Kind::Pattern;
    ink.pattern = machine.patterns().find(operands.integer(Attribute::PatternSelectID));
    if (!ink.pattern)
        return { Error::RasterPatternUndefined, Attribute::PatternSelectID };
    ink.patternOrigin = operands.point(Attribute::PatternOrigin);
    if (operands.has(Attribute::NewDestinationSize)) {
        const Point size = operands.point(Attribute::NewDestinationSize);
        if (!(size.x > 0) || !(size.y > 0))
            return { Error::IllegalAttributeValue, Attribute::NewDestinationSize };
        ink.patternSize = size;
    }
    return {};
}

Status readPaletteColor(const Machine& machine, Rgb& color)
{
    const auto& palette = machine.state().palette;
    const int index = machine.operands().integer(Attribute::PaletteIndex);
    if (!palette)
        return { Error::MissingPalette, Attribute::PaletteIndex };
    if (index < 0 || static_cast<std::size_t>(index) >= palette->size())
        return { Error::IllegalAttributeValue, Attribute::PaletteIndex };
    color = (*palette)[static_cast<std::size_t>(index)];
    return {};
}

/// RGBColor or PrimaryArray. The latter follows the colour space, but one value is gray and three are RGB in any of
/// them.
Status readColor(const AttributeList& operands, Rgb& color)
{
    const Attribute attribute = operands.has(Attribute::RGBColor) ? Attribute::RGBColor : Attribute::PrimaryArray;
    const ArrayView values = operands.array(attribute);
    if (values.size() != 3 && (attribute == Attribute::RGBColor || values.size() != 1))
        return { Error::IllegalArraySize, attribute };
    if (!values.isFinite())
        return { Error::IllegalAttributeValue, attribute };
    double full = fullScale(values.element());
    if (attribute == Attribute::PrimaryArray && values.element() == Element::UByte)
        full = fullScaleOfDepth(operands.integer(Attribute::PrimaryDepth, 2));
    const std::uint8_t first = level(values.at(0), full);
    color = values.size() == 1 ? Rgb { first, first, first }
                               : Rgb { first, level(values.at(1), full), level(values.at(2), full) };
    return {};
}

/// Brush and pen differ in the name of "none" only. Colours become device colours here, so that a later colour space
/// does not change them.
Status readInk(const Machine& machine, Attribute none, Ink& ink)
{
    const AttributeList& operands = machine.operands();
    ink = {};
    if (operands.has(none)) {
        ink.kind = Ink::Kind::None;
        return {};
    }
    if (operands.has(Attribute::GrayLevel))
        return readGray(operands, ink.color);
    if (operands.has(Attribute::PatternSelectID))
        return readPattern(machine, ink);
    if (operands.has(Attribute::PaletteIndex))
        return readPaletteColor(machine, ink.color);
    return readColor(operands, ink.color);
}

Status setInk(Machine& machine, Ink& ink, Attribute none)
{
    Ink result;
    const Status status = readInk(machine, none, result);
    if (!status.isOk())
        return status;
    ink = std::move(result);
    machine.drawing().stateChanged();
    return {};
}

} // namespace

Status setColorSpace(Machine& machine)
{
    const ColorModel model = static_cast<ColorModel>(machine.operands().integer(Attribute::ColorSpace));
    const bool hasDepth = machine.operands().has(Attribute::PaletteDepth);
    const ArrayView data = machine.operands().array(Attribute::PaletteData);
    if (hasDepth != machine.operands().has(Attribute::PaletteData))
        return { Error::IllegalAttributeCombination, hasDepth ? Attribute::PaletteDepth : Attribute::PaletteData };
    if (model == ColorModel::Crgb)
        machine.reporter().warn("pclxl.colorimetric", "colorimetric RGB is taken as sRGB");
    std::shared_ptr<std::vector<Rgb>> palette;
    if (hasDepth) {
        const std::size_t components = static_cast<std::size_t>(componentsOf(model));
        if (data.empty() || data.size() % components != 0)
            return { Error::IllegalArraySize, Attribute::PaletteData };
        const double full = fullScaleOfDepth(machine.operands().integer(Attribute::PaletteDepth));
        palette = std::make_shared<std::vector<Rgb>>();
        // No index reaches beyond 255.
        for (std::size_t i = 0; i < std::min<std::size_t>(data.size() / components, 256); ++i) {
            const std::uint8_t red = level(data.at(i * components), full);
            palette->push_back(components == 1
                    ? Rgb { red, red, red }
                    : Rgb { red, level(data.at(i * components + 1), full), level(data.at(i * components + 2), full) });
        }
    }
    machine.state().colorModel = model;
    machine.state().palette = std::move(palette);
    return {};
}

Status setBrushSource(Machine& machine) { return setInk(machine, machine.state().brush, Attribute::NullBrush); }

Status setPenSource(Machine& machine) { return setInk(machine, machine.state().pen, Attribute::NullPen); }

/// Halftones are the page device's own; a matrix is checked and dropped.
Status setHalftoneMethod(Machine& machine)
{
    if (!machine.operands().has(Attribute::DitherMatrixSize))
        return {};
    const Point size = machine.operands().point(Attribute::DitherMatrixSize);
    if (!(size.x >= 1) || !(size.y >= 1) || size.x > 256 || size.y > 256)
        return { Error::IllegalAttributeValue, Attribute::DitherMatrixSize };
    machine.reporter().warn("pclxl.halftone", "a dither matrix has no effect, the page has halftones of its own");
    return {};
}

Status setROP(Machine& machine)
{
    const int rop = machine.operands().integer(Attribute::ROP3);
    if (rop < 0 || rop > 255)
        return { Error::IllegalAttributeValue, Attribute::ROP3 };
    machine.state().rop = static_cast<std::uint8_t>(rop);
    machine.drawing().stateChanged();
    return {};
}

Status setSourceTxMode(Machine& machine)
{
    machine.state().sourceTransparent = machine.operands().integer(Attribute::TxMode) == 1;
    return {};
}

Status setPaintTxMode(Machine& machine)
{
    machine.state().paintTransparent = machine.operands().integer(Attribute::TxMode) == 1;
    machine.drawing().stateChanged();
    return {};
}

} // namespace quillrip::pclxl::commands
