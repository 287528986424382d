#include "quillrip/pclxl/image_source.h"

#include "quillrip/raster/compose/raster_operation.h"

namespace quillrip::pclxl {

namespace {

Status readDepth(const AttributeList& operands, int& bitsPerComponent)
{
    int depth = 0;
    if (operands.has(Attribute::ColorDepth)) {
        depth = operands.integer(Attribute::ColorDepth);
    } else {
        // One depth for each component; they are all alike in all that is known.
        const ArrayView depths = operands.array(Attribute::ColorDepthArray);
        if (depths.empty())
            return { Error::MissingAttribute, Attribute::ColorDepth };
        if (depths.at(0) > 2)
            return { Error::IllegalAttributeValue, Attribute::ColorDepthArray };
        depth = static_cast<int>(depths.at(0));
    }
    bitsPerComponent = depth == 0 ? 1 : depth == 1 ? 4 : 8;
    return {};
}

} // namespace

Status readSourceSize(const AttributeList& operands, const Limits& limits, BlockLayout& layout)
{
    const int width = operands.integer(Attribute::SourceWidth);
    const int height = operands.integer(Attribute::SourceHeight);
    if (width < 1)
        return { Error::IllegalAttributeValue, Attribute::SourceWidth };
    if (height < 1)
        return { Error::IllegalAttributeValue, Attribute::SourceHeight };
    layout.width = static_cast<std::uint32_t>(width);
    layout.height = static_cast<std::uint32_t>(height);
    // A row takes three bytes a pixel at most, and padding.
    return std::uint64_t { layout.width } * 3 + 256 > limits.imageRowBytes ? Status(Error::LimitExceeded) : Status();
}

Status readSource(const AttributeList& operands, const GraphicsState& state, PixelFormat target, const Limits& limits,
    ImageSource& source)
{
    BlockLayout& layout = source.layout;
    Status status = readSourceSize(operands, limits, layout);
    PixelMeaning meaning;
    if (status.isOk())
        status = readDepth(operands, meaning.bitsPerComponent);
    if (!status.isOk())
        return status;
    meaning.model = state.colorModel;
    meaning.isIndexed = operands.integer(Attribute::ColorMapping) == 1;
    if (meaning.isIndexed) {
        if (!state.palette)
            return { Error::MissingPalette, Attribute::ColorMapping };
        if (state.palette->size() < std::size_t { 1 } << meaning.bitsPerComponent)
            return { Error::ImagePaletteMismatch, Attribute::ColorDepth };
        meaning.palette = state.palette.get();
    }
    layout.components = meaning.isIndexed ? 1 : componentsOf(meaning.model);
    layout.bitsPerComponent = meaning.bitsPerComponent;
    const std::uint64_t bits
        = std::uint64_t { layout.width } * static_cast<std::uint64_t>(layout.components * layout.bitsPerComponent);
    layout.rowBytes = static_cast<std::size_t>((bits + 7) / 8);
    source.converter = PixelConverter(meaning, layout.width, target, state.rop == rop::kSource);
    return {};
}

Status readRowSpan(const AttributeList& operands, const BlockLayout& layout, RowSpan& rows)
{
    const int first = operands.integer(Attribute::StartLine);
    const int count = operands.integer(Attribute::BlockHeight);
    if (first < 0 || static_cast<std::uint32_t>(first) >= layout.height)
        return { Error::IllegalAttributeValue, Attribute::StartLine };
    if (count < 0 || static_cast<std::uint32_t>(count) > layout.height - static_cast<std::uint32_t>(first))
        return { Error::IllegalAttributeValue, Attribute::BlockHeight };
    rows = { static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(count) };
    return {};
}

Status readPacking(const AttributeList& operands, BlockLayout& layout, Compression& compression)
{
    const int padding = operands.integer(Attribute::PadBytesMultiple, 4);
    if (padding < 1 || padding > 255)
        return { Error::IllegalAttributeValue, Attribute::PadBytesMultiple };
    layout.padding = static_cast<std::uint32_t>(padding);
    compression = static_cast<Compression>(operands.integer(Attribute::CompressMode));
    if (compression == Compression::Jpeg && layout.bitsPerComponent != 8)
        return { Error::IllegalAttributeCombination, Attribute::CompressMode };
    return {};
}

} // namespace quillrip::pclxl
