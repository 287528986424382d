#pragma once

#include "quillrip/pclxl/image_decoders.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace quillrip::pclxl {

/// The raster that colour lasers get by VendorUnique instead of ReadImage: an image is a command that begins it, strips
/// of rows, and a command that ends it. What a command carries is a run of chunks, each a tag, a length and that many
/// bytes. None of it is published; all that stands here was found by comparing jobs with the pages that went into them.

constexpr std::uint32_t kRasterVendor = 0x6870; ///< upper half of VUExtension

/// Lower half of VUExtension.
enum class VendorCommand : std::uint16_t {
    SetUpFastRaster = 0x2011,
    FastRaster = 0x2006, ///< a strip of bits, see fast_raster.h
    BeginImage = 0x4000,
    ReadStrip = 0x4001,
    EndImage = 0x4002,
};

enum class VendorChunk : std::uint16_t {
    QuantizationTables = 0x8000,
    ColorConversion = 0x8001,
    ReplacementStrip = 0x9011,
    JpegStrip = 0x9021,
};

/// What the image's beginning says of its strips.
struct StripCoding {
    /// For each component in turn, row by row of the block; JPEG files have them in zigzag order.
    using QuantizationTables = std::array<std::array<std::uint16_t, 64>, 3>;
    /// Red, green and blue (rows) of the three components (columns), in units of 1 / 4096.
    using ColorConversion = std::array<std::array<std::int16_t, 3>, 3>;

    bool isColor = true;
    std::optional<QuantizationTables> tables; ///< none: JPEG strips bring their own
    /// Twice the first component is red; green and blue are less than red by twice the others.
    ColorConversion conversion { { { 8192, 0, 0 }, { 8192, -8192, 0 }, { 8192, 0, -8192 } } };

    int components() const { return isColor ? 3 : 1; }
};

/// IllegalDataLength for a chunk of another size than is known, MissingData for one that ends too soon,
/// IllegalDataValue for a divisor that JPEG does not have.
Status readQuantizationTables(EmbeddedData& chunk, std::uint32_t length, StripCoding& coding);
Status readColorConversion(EmbeddedData& chunk, std::uint32_t length, StripCoding& coding);

/// One strip into rows of RGB or gray bytes, as `layout` has it. Errors as of decodeBlock; a JPEG strip without tables
/// of its own or the image's is IllegalDataValue.
Status decodeVendorStrip(VendorChunk kind, EmbeddedData& chunk, const StripCoding& coding, const BlockLayout& layout,
    std::uint32_t rows, RowSink& sink, WorkMeter& work);

} // namespace quillrip::pclxl
