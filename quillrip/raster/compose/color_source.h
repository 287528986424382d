#pragma once

#include "quillrip/base/page_bitmap.h"

#include <cstdint>

namespace quillrip {

/// A colour and how much of it shows: alpha 255 hides what lies below, 0 shows all of it. The colour is not multiplied
/// by alpha.
struct Rgba {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    std::uint8_t alpha = 255;
};

inline bool operator==(Rgba a, Rgba b)
{
    return a.red == b.red && a.green == b.green && a.blue == b.blue && a.alpha == b.alpha;
}
inline bool operator!=(Rgba a, Rgba b) { return !(a == b); }

/// A texture that has a colour of its own for every device pixel: a gradient, an image under any matrix.
class ColorSource {
public:
    virtual ~ColorSource() = default;
    /// Writes the colours of the device pixels left <= x < right of row y, taken at their centres. Rows and columns may
    /// lie anywhere, also outside the page. The same pixel always has the same colour.
    virtual void row(int y, int left, int right, Rgba* pixels) const = 0;
};

} // namespace quillrip
