#pragma once

#include "quillrip/base/page_bitmap.h"
#include "quillrip/pclxl/state.h"
#include "quillrip/raster/images/image_painter.h"

#include <array>
#include <cstdint>
#include <vector>

namespace quillrip::pclxl {

/// What the pixels of a source row mean.
struct PixelMeaning {
    ColorModel model = ColorModel::Gray;
    int bitsPerComponent = 8; ///< 1, 4 or 8
    bool isIndexed = false;
    const std::vector<Rgb>* palette = nullptr; ///< indexed: at least 2^bits colours
};

/// Turns source rows into what the painter takes: bits where the image has two colours that bits can stand for, gray
/// where that is all there is or all that the page can show, else RGB.
class PixelConverter {
public:
    PixelConverter() = default;
    /// `copiesSource`: the raster operation takes the source alone (204). A second colour beside white can then stand
    /// as the ink of bits, see ink().
    PixelConverter(const PixelMeaning& meaning, std::uint32_t width, PixelFormat page, bool copiesSource);

    ImageFormat format() const { return m_format; }
    /// For Mono images: what the ink's texture has to be, when hasInk().
    Rgb ink() const { return m_ink; }
    /// True when the bits are ink of a colour of their own: the operation is then 252 with a texture of that colour.
    bool hasInk() const { return m_hasInk; }

    /// One row; the result is valid until the next call, and may be the source itself.
    const std::uint8_t* convert(const std::uint8_t* source);

private:
    enum class Way : std::uint8_t { Copy, Invert, Bits, Nibbles, Bytes, RgbToGray, RgbNibbles, RgbBits };

    void makeTable(const PixelMeaning& meaning);
    bool makeMono();

    Way m_way = Way::Copy;
    ImageFormat m_format = ImageFormat::Gray8;
    std::uint32_t m_width = 0;
    std::size_t m_sourceBytes = 0;
    Rgb m_ink;
    bool m_hasInk = false;
    std::vector<Rgb> m_table; ///< colour of each value of a one-component pixel
    std::array<std::uint8_t, 256> m_grays {};
    std::vector<std::uint8_t> m_row;
};

} // namespace quillrip::pclxl
