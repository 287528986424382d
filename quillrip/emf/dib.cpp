#include "quillrip/emf/dib.h"

namespace quillrip::emf {

Rgb PictureShape::color(const std::uint8_t* row, int x) const
{
    if (format == Format::Mono)
        return table[row[x / 8] >> (7 - x % 8) & 1];
    const std::uint8_t* const pixel = row + static_cast<std::size_t>(x) * (format == Format::Rgb24 ? 3 : 4);
    return { pixel[0], pixel[1], pixel[2] };
}

} // namespace quillrip::emf
