#pragma once

#include "quillrip/base/geometry.h"

#include <cstddef>
#include <cstdint>

namespace quillrip {

enum class ImageFormat : std::uint8_t {
    Mono, ///< packed, first pixel in the highest bit, 1 = ink: a black source that takes the texture
    Gray8, ///< one byte a pixel, 255 = light
    Rgb24, ///< three bytes a pixel, 255 = light
    /// Four bytes a pixel: red, green, blue, not multiplied by the alpha that follows (255 hides the page). Alpha alone
    /// says what of it is transparent, whatever PaintState::sourceTransparent says.
    Rgba32,
};

struct ImageGeometry {
    ImageFormat format = ImageFormat::Mono;
    int width = 0; ///< source pixels of a row
    int height = -1; ///< source rows, or -1 while unknown: rows then go on until finish()
    /// Source pixels to device pixels. Where it is a whole-number scale (or 1) along the axes, device pixels are
    /// blocks of source pixels, exactly; device pixel column of source column i begins at round(x(i)).
    Matrix imageToDevice;
    /// In grey and RGB, enlarge smoothly instead of by blocks when the scale is no whole number.
    bool smooth = false;
    /// As smooth, and when the scale is a whole number too.
    bool smoothsBlocks = false;
    /// Shrink by leaving pixels out, as they lie under the device's, instead of averaging. Not for Mono.
    bool dropsPixels = false;
};

/// Rows in, marks out; no image is held whole.
class ImagePainter {
public:
    virtual ~ImagePainter() = default;
    /// The next source row, whole (ceil(width * bits / 8) bytes). Rows beyond `height` are ignored.
    virtual void row(const std::uint8_t* pixels) = 0;
    /// `count` rows like this one.
    virtual void rows(const std::uint8_t* pixels, int count)
    {
        for (; count > 0; --count)
            row(pixels);
    }
    /// `count` rows all white (no source at all where the source is transparent, or has alpha).
    virtual void blankRows(int count) = 0;
    /// No more rows: paints what is still held back. Must be called once.
    virtual void finish() = 0;
};

} // namespace quillrip
