#pragma once

#include "quillrip/raster/compose/compositor.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace quillrip {

/// Takes an image's lines at the device's resolution. A line's number and its columns are device pixels, across and
/// along the source's rows: device rows and columns, or, for an image turned by a quarter, the other way round.
/// Lines come one after the other, in rising or falling order.
class ImageLines {
public:
    virtual ~ImageLines() = default;
    virtual void bits(int line, int left, const BitRow& bits, std::ptrdiff_t firstBit, int count) = 0;
    /// A black source with coverage.
    virtual void coverage(int line, int left, const std::uint8_t* coverage, int count) = 0;
    /// As Compositor::colors().
    virtual void colors(int line, int left, const std::uint8_t* ink, const std::uint8_t* coverage, int count) = 0;
    /// As Compositor::blended().
    virtual void blended(int line, int left, const std::uint8_t* ink, const std::uint8_t* alpha, int count) = 0;
    /// White lines first <= line < end.
    virtual void white(int first, int end, int left, int right) = 0;
    virtual void finish() { }
};

/// Source rows along device rows.
std::unique_ptr<ImageLines> uprightLines(Compositor& compositor);
/// Source rows along device columns. Lines are collected and painted many at a time.
std::unique_ptr<ImageLines> turnedLines(Compositor& compositor);

} // namespace quillrip
