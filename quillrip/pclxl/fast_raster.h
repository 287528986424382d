#pragma once

#include "quillrip/pclxl/image_decoders.h"
#include "quillrip/pclxl/status.h"
#include "quillrip/pclxl/tag_reader.h"

#include <cstddef>
#include <cstdint>

namespace quillrip::pclxl {

/// The bits that small lasers get by VendorUnique: strips of rows, each with a header of its own. None of it is
/// published; all that stands here was found by comparing jobs with the pages that went into them. Of two rows of a
/// page most differ little, so a row is told by what it has of the row above and by runs that repeat with the period
/// of a halftone cell.
struct FastRasterStrip {
    enum class Code : std::uint16_t { Raw = 2, Delta = 24 };

    static constexpr std::uint64_t kHeaderBytes = 25;
    /// The strip at (0, 0) lies so far from the sheet's left and top edge.
    static constexpr int kMarginsPerInch = 6;

    int resolution = 0; ///< dots per inch
    Code code = Code::Delta;
    int plane = 0;
    std::uint32_t dataBytes = 0;
    std::size_t rowBytes = 0; ///< 1 is ink; wider than the sheet
    std::uint32_t rows = 0;
    int x = 0; ///< dots
    int y = 0;
    int bitsPerPixel = 0;

    /// Bits of black are all that these printers print.
    bool isKnown() const;
};

/// The header that the data begin with. MissingData when they are shorter.
Status readFastRasterHeader(EmbeddedData& data, FastRasterStrip& strip);

/// The strip's first `rows` rows, each of rowBytes. MissingData when the data end before; rows before that have gone to
/// the sink.
Status decodeFastRaster(EmbeddedData& data, const FastRasterStrip& strip, std::uint32_t rows, RowSink& sink);

} // namespace quillrip::pclxl
