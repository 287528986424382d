#pragma once

#include <cmath>
#include <cstdint>

namespace quillrip {

/// How source pixels fall on device pixels along one axis, always in rising order: a mirrored axis counts the other
/// way round before it gets here.
struct ImageAxis {
    double origin = 0; ///< device coordinate where source pixel 0 begins
    double scale = 1; ///< device pixels for one source pixel, positive
    /// Added before rounding. Positions are sums of rounded numbers; what is meant to be half a pixel must not depend
    /// on the last bit. Negative on a mirrored axis, so that it rounds as the upright one does.
    double bias = 1e-6;
    /// Device pixels that can be seen, half open.
    int visibleBegin = 0;
    int visibleEnd = 0;

    double position(double source) const { return origin + scale * source; }
    /// The first device pixel of source pixel `source`, and the end of the one before.
    std::int64_t start(std::int64_t source) const
    {
        return static_cast<std::int64_t>(std::floor(position(static_cast<double>(source)) + 0.5 + bias));
    }
    /// The device pixel with the source pixel's middle.
    std::int64_t middle(std::int64_t source) const
    {
        return static_cast<std::int64_t>(std::floor(position(static_cast<double>(source) + 0.5) + bias));
    }
    /// The source pixel that start() gives a device pixel to.
    std::int64_t blockAt(std::int64_t device) const
    {
        const double edge = (static_cast<double>(device) + 0.5 - bias - origin) / scale;
        auto source = static_cast<std::int64_t>(std::ceil(edge)) - 1;
        while (start(source) > device)
            --source;
        while (start(source + 1) <= device)
            ++source;
        return source;
    }
    /// The source coordinate of a device coordinate.
    double sourceAt(double device) const { return (device - origin) / scale; }

    int visible() const { return visibleEnd - visibleBegin; }
    bool shrinks() const { return scale < 1 - 1e-9; }
    bool isWhole() const { return std::abs(scale - std::round(scale)) < 1e-6 * scale; }
    bool isIdentity() const { return isWhole() && std::round(scale) == 1; }
};

} // namespace quillrip
