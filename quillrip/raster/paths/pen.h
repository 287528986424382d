#pragma once

#include "quillrip/base/geometry.h"

namespace quillrip {

/// A stroke's pen: a circle of radius 1 in a space of its own, an ellipse on the device. It is nowhere thinner than a
/// device pixel, even where the user's matrix flattens it.
struct Pen {
    Matrix toDevice; ///< without translation
    Matrix fromDevice;

    /// For a pen of `width` user units.
    Pen(double width, const Matrix& userToDevice);
    /// An upright ellipse of the given widths in device pixels.
    static Pen upright(double widthX, double widthY);

    /// Device pixels across and down that the pen takes.
    double deviceWidth() const;
    double deviceHeight() const;
    /// Circle, or ellipse whose axes are the device's.
    bool isUpright() const;
    /// No wider than a device pixel anywhere.
    bool isHairline = false;

private:
    Pen() = default;
};

} // namespace quillrip
