#pragma once

#include "quillrip/raster/paths/path.h"

namespace quillrip {

/// Where rules and blocks reach: the character cell, in glyph space.
struct GlyphCell {
    double left;
    double bottom;
    double right;
    double top;
};

/// Whether boxDrawing() has the character: the rules, corners, blocks and shades of the PC symbol sets.
bool isBoxDrawing(char32_t unicode);

/// Appends a rule, block or shade that fills its cell from edge to edge, so that neighbours join. `stroke` is the
/// width of a light rule.
void boxDrawing(char32_t unicode, const GlyphCell& cell, double stroke, Path& path);

} // namespace quillrip
