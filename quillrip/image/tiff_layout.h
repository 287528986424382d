#pragma once

#include "quillrip/base/page_bitmap.h"
#include "quillrip/image/document_options.h"

#include <cstdint>
#include <memory>
#include <string>

#include <tiffio.h>

namespace quillrip {

/// How one page lies in a TIFF file (TIFF 6.0; RFC 2306 for class F): what its directory says and what its strips have
/// to obey.
struct TiffLayout {
    PixelFormat format = PixelFormat::Bilevel;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    Resolution resolution;
    std::uint32_t rowsPerStrip = 0;
    std::uint16_t compression = COMPRESSION_NONE;
    std::uint16_t predictor = PREDICTOR_NONE;
    std::uint32_t group3Options = 0;
    std::uint16_t fillOrder = FILLORDER_MSB2LSB;

    TiffLayout() = default;
    TiffLayout(const PageBitmap& page, const DocumentOptions& options);

    bool isCcitt() const { return compression == COMPRESSION_CCITTFAX3 || compression == COMPRESSION_CCITTFAX4; }
    bool hasPredictor() const { return compression == COMPRESSION_LZW || compression == COMPRESSION_ADOBE_DEFLATE; }
    std::size_t rowBytes() const;
    std::uint32_t stripCount() const { return (height - 1) / rowsPerStrip + 1; }

    /// Writes all this into the directory that the library has open, for an image of `rows` rows.
    bool describe(TIFF* tiff, std::uint32_t rows) const;
};

/// Opens the library on functions of ours; messages go to `message` (the first one stays) and nowhere else. Always
/// lowest byte first, so that finished directories can be found again.
struct TiffCallbacks {
    void* client = nullptr;
    TIFFReadWriteProc read = nullptr;
    TIFFReadWriteProc write = nullptr;
    TIFFSeekProc seek = nullptr;
    TIFFSizeProc size = nullptr;
};
struct TiffCloser {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffHandle = std::unique_ptr<TIFF, TiffCloser>;
TiffHandle openTiffForWriting(const TiffCallbacks& callbacks, std::string& message);
/// The same on a file that has pages already.
TiffHandle openTiffForAppending(const TiffCallbacks& callbacks, std::string& message);

} // namespace quillrip
