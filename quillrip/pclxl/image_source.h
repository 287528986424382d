#pragma once

#include "quillrip/base/limits.h"
#include "quillrip/pclxl/attribute_list.h"
#include "quillrip/pclxl/image_decoders.h"
#include "quillrip/pclxl/pixel_converter.h"
#include "quillrip/pclxl/state.h"

#include <cstdint>

namespace quillrip::pclxl {

/// The pixels of an image or a pattern as the stream sends them, block by block.
struct ImageSource {
    BlockLayout layout;
    PixelConverter converter;
    SeedRow seed;
};

/// SourceWidth and SourceHeight, which every image has.
Status readSourceSize(const AttributeList& operands, const Limits& limits, BlockLayout& layout);

/// Layout and pixel conversion from the attributes that images and patterns have in common.
Status readSource(const AttributeList& operands, const GraphicsState& state, PixelFormat target, const Limits& limits,
    ImageSource& source);

/// Rows of an image, counted from its top.
struct RowSpan {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
};

/// StartLine and BlockHeight; they have to lie within the image.
Status readRowSpan(const AttributeList& operands, const BlockLayout& layout, RowSpan& rows);

/// How the block of a ReadImage or a ReadRastPattern is packed: compression, and the padding into the layout.
Status readPacking(const AttributeList& operands, BlockLayout& layout, Compression& compression);

} // namespace quillrip::pclxl
