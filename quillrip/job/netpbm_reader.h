#pragma once

#include "quillrip/base/input_stream.h"
#include "quillrip/base/page_bitmap.h"

namespace quillrip {

struct NetpbmHeader {
    PixelFormat format = PixelFormat::Bilevel;
    int width = 0;
    int height = 0;
};

/// Reads images in the raw forms of PBM, PGM and PPM with 8 bits a sample, one after the other.
class NetpbmReader {
public:
    explicit NetpbmReader(InputStream& input)
        : m_input(input)
    {
    }

    /// Goes on to the next image's rows; false at the end, or when there is no image.
    bool nextPage(NetpbmHeader& header);

    /// Takes the rows into a bitmap of the image's format whose size may differ: the image begins `margin` columns from
    /// the left (outside of the bitmap when negative) and is cut at the edges. False when the input ends before.
    [[nodiscard]] bool readUpright(PageBitmap& page, int margin);

    /// The same, turned by 1 or 3 quarters counter-clockwise; `margin` counts in the turned image.
    [[nodiscard]] bool readTurned(PageBitmap& page, int quarterTurns, int margin);

private:
    template <typename Place> bool readRows(PageBitmap& page, Place place);
    int number();

    InputStream& m_input;
    NetpbmHeader m_header;
};

} // namespace quillrip
