#include "quillrip/base/reporter.h"
#include "quillrip/pclxl/commands.h"
#include "quillrip/pclxl/drawing.h"
#include "quillrip/pclxl/machine.h"
#include "quillrip/pclxl/page_image.h"
#include "quillrip/pclxl/pattern_in_progress.h"
#include "quillrip/pclxl/pattern_store.h"
#include "quillrip/pclxl/session.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <utility>

namespace quillrip::pclxl::commands {

namespace {

/// Decodes a block into `target`, which is told the first row and then gets the rows.
template <typename Target, typename Take> Status readBlock(Machine& machine, Target& target, Take take)
{
    const AttributeList& operands = machine.operands();
    ImageSource& source = target.source();
    RowSpan rows;
    Compression compression = Compression::None;
    Status status = readRowSpan(operands, source.layout, rows);
    if (status.isOk())
        status = readPacking(operands, source.layout, compression);
    if (!status.isOk() || rows.count == 0)
        return status;
    if (!machine.dataSource().isOpen)
        machine.reporter().warn(
            "pclxl.no-data-source", "image data come without an open data source (DataSourceNotOpen)");
    target.goToRow(rows.first);
    CallingSink sink(take);
    return decodeBlock(
        compression, machine.data(), source.layout, rows.count, source.seed, sink, *machine.limits().work);
}

} // namespace

Status beginImage(Machine& machine)
{
    const AttributeList& operands = machine.operands();
    const GraphicsState& state = machine.state();
    if (!state.path.cursor() && !operands.has(Attribute::DestinationBox))
        return Error::CurrentCursorUndefined;
    ImageSource source;
    const Status status = readSource(operands, state, machine.page().format(), machine.limits(), source);
    if (!status.isOk())
        return status;

    Point corner;
    Point size;
    if (const Operand* box = operands.find(Attribute::DestinationBox)) {
        corner = { std::min(box->numbers[0], box->numbers[2]), std::min(box->numbers[1], box->numbers[3]) };
        size = { std::abs(box->numbers[2] - box->numbers[0]), std::abs(box->numbers[3] - box->numbers[1]) };
    } else {
        corner = *state.path.cursor();
        size = operands.point(Attribute::DestinationSize);
    }
    if (size.x < 0 || size.y < 0)
        return { Error::IllegalAttributeValue, Attribute::DestinationSize };
    machine.image()
        = std::make_unique<PageImage>(std::move(source), corner, size, state, machine.page(), machine.drawing());
    machine.beginDefinition(Definition::Image);
    return {};
}

Status readImage(Machine& machine)
{
    PageImage& image = *machine.image();
    return readBlock(machine, image, [&](const std::uint8_t* pixels) { image.paintRow(pixels); });
}

Status endImage(Machine& machine)
{
    machine.image()->finish();
    machine.image().reset();
    machine.endDefinition();
    return {};
}

Status beginRastPattern(Machine& machine)
{
    const AttributeList& operands = machine.operands();
    ImageSource source;
    const Status status = readSource(operands, machine.state(), PixelFormat::Rgb24, machine.limits(), source);
    if (!status.isOk())
        return status;
    const Point size = operands.point(Attribute::DestinationSize);
    if (!(size.x > 0) || !(size.y > 0))
        return { Error::IllegalAttributeValue, Attribute::DestinationSize };
    const PatternLife life
        = operands.integer(Attribute::PatternPersistence) == 2 ? PatternLife::Session : PatternLife::Page;
    auto pattern = std::make_unique<PatternInProgress>(
        std::move(source), size, operands.integer(Attribute::PatternDefineID), life);
    if (!machine.patterns().hasRoomFor(pattern->bytes()))
        return Error::InsufficientMemory;
    pattern->begin();
    machine.definedPattern() = std::move(pattern);
    machine.beginDefinition(Definition::Pattern);
    return {};
}

Status readRastPattern(Machine& machine)
{
    PatternInProgress& pattern = *machine.definedPattern();
    return readBlock(machine, pattern, [&](const std::uint8_t* pixels) { pattern.storeRow(pixels); });
}

Status endRastPattern(Machine& machine)
{
    PatternInProgress& pattern = *machine.definedPattern();
    machine.patterns().put(pattern.number(), pattern.finish(), pattern.life());
    machine.definedPattern().reset();
    machine.endDefinition();
    return {};
}

} // namespace quillrip::pclxl::commands
