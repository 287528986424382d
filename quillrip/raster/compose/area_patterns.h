#pragma once

#include "quillrip/raster/compose/paint_state.h"

namespace quillrip {

/// The shading patterns of PCL 5 and HP-GL/2 at 300 dpi, chosen by percent of ink: eight levels (1-2, 3-10, 11-20,
/// 21-35, 36-55, 56-80, 81-99, 100). Below 1: an empty tile (width 0).
PatternTile shadingTile(int percent);

/// The hatching patterns of PCL 5 and HP-GL/2 at 300 dpi, 16 x 16: 1 horizontal, 2 vertical, 3 rising to the right,
/// 4 falling to the right, 5 square grid, 6 diagonal grid. Other numbers: an empty tile (width 0).
PatternTile hatchTile(int number);

} // namespace quillrip
