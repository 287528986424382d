#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/base/geometry.h"

namespace quillrip::hpgl {

/// P1 and P2 that desktop plotters start with, by the sheet they are loaded with. Plotter units.
struct DefaultPoints {
    Point sheet;
    Point p1;
    Point p2;
};

/// Null where such plotters take no sheet like that.
const DefaultPoints* defaultPointsFor(Point sheet);

/// Whether a plot uses what only HP-GL/2 knows: its P1 and P2 are then the sheet's corners without further word.
bool isSecondGeneration(ByteView plot);

} // namespace quillrip::hpgl
