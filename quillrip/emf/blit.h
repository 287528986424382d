#pragma once

#include "quillrip/emf/canvas.h"
#include "quillrip/emf/picture.h"

namespace quillrip::emf {

class Machine;
class Record;

/// A rectangle that may be mirrored: sizes below 0 run to the left or upwards.
struct Extent {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
};

/// Where a rectangle of a picture's pixels goes: the device pixels of its upper left, upper right and lower left
/// corner.
struct Parallelogram {
    Point origin;
    Point right;
    Point down;
};

/// One picture and where it goes.
struct Blit {
    Picture picture;
    Extent source; ///< pixels of the picture, from its top left
    Parallelogram target;
    bool isSmooth = false; ///< interpolate where it is enlarged
    bool dropsPixels = false; ///< leave pixels out where it is reduced, instead of averaging

    /// Pixels of the picture to device pixels.
    Matrix pictureToDevice() const;
};

/// A rectangle in logical units on the device: its edges on the nearest pixels where they run along the axes, so that
/// bands of one picture meet.
Parallelogram targetOf(const Canvas& canvas, const Extent& destination);
/// The same for any units; `pixel`: device pixels of a reference pixel.
Parallelogram targetOf(const Matrix& toDevice, double pixel, const Extent& destination);

/// Draws what lies both in the source rectangle and in the picture, and warns when the picture turns out to be damaged.
/// `state` holds operation and pattern.
void draw(Machine& machine, const Blit& blit, PaintState state);

/// Fills the whole target.
void fillTarget(Canvas& canvas, const Parallelogram& target, PaintState state);

/// The device pixels of those of a grid's cells that `isIn` tells, by column and row. Cells are a unit wide and high
/// before `toDevice`.
template <typename Test>
Region regionOfCells(const Canvas& canvas, int width, int height, const Matrix& toDevice, Test isIn)
{
    Path path;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width;) {
            if (!isIn(x, y)) {
                ++x;
                continue;
            }
            const int start = x;
            while (x < width && isIn(x, y))
                ++x;
            Path run;
            run.rectangle(start, y, x, y + 1);
            path.append(run.transformed(toDevice));
        }
    }
    return ClipRegion::ofPath(path, FillRule::NonZero, canvas.bounds());
}

/// The fields that BITBLT, STRETCHBLT and their kin share, and the picture. A null one, after a warning, when the
/// record holds no picture that can be read.
Blit readBlit(Machine& machine, const Record& record, bool hasSourceSize);

} // namespace quillrip::emf
