#pragma once

#include "quillrip/image/output_files.h"
#include "quillrip/image/page_encoder.h"

#include <memory>
#include <string>
#include <utility>

namespace quillrip {

/// Where a page goes that gets a file of its own.
struct PageTarget {
    OutputFiles& files;
    std::string path;
};

/// A page whose file is its pieces, one after the other.
class FileEncoder : public PageEncoder {
public:
    FileEncoder(PageBitmap&& page, PageTarget target)
        : PageEncoder(std::move(page))
        , m_target(std::move(target))
    {
    }

    bool begin() override { return m_target.files.begin(m_target.path); }
    bool write(const EncodedPiece& piece) override { return append(piece.bytes); }
    bool end() override { return true; }

protected:
    bool append(ByteView bytes) { return m_target.files.append(bytes); }

private:
    PageTarget m_target;
};

// Each takes the page and returns an encoder for it, or, with a sentence in `reason`, null when the page does not fit
// the format. The sentence has no full stop.

/// Windows bitmap: BITMAPINFOHEADER, bottom row first, uncompressed; 1 and 8 bits with a palette, or 24 bits.
std::unique_ptr<PageEncoder> makeBmpEncoder(PageBitmap&& page, PageTarget target, std::string& reason);

/// PCX version 5: 1 bit, 8 bits with the palette at the end, or three planes of 8 bits; run lengths.
std::unique_ptr<PageEncoder> makePcxEncoder(PageBitmap&& page, PageTarget target, std::string& reason);

/// PNG: grey of 1 or 8 bits, or RGB; not interlaced. Holds every page.
std::unique_ptr<PageEncoder> makePngEncoder(PageBitmap&& page, PageTarget target);

/// Baseline JPEG (JFIF): grey, also for bilevel pages, or YCbCr without subsampling.
std::unique_ptr<PageEncoder> makeJpegEncoder(PageBitmap&& page, PageTarget target, int quality, std::string& reason);

} // namespace quillrip
