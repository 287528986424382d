#pragma once

#include "quillrip/raster/glyph_mask.h"
#include "quillrip/raster/paths/path.h"

#include <vector>

namespace quillrip {

/// A height above the baseline that many letters of a face share: the baseline itself, the tops of small letters.
struct AlignmentZone {
    double flat = 0; ///< where straight letters end
    double round = 0; ///< where round letters end, a little beyond
};

/// What grid fitting knows of a face: in em, or at a size in device pixels.
struct FittingGuide {
    double em = 0;
    double stem = 0; ///< usual width of upright strokes; 0 = unknown
    double bar = 0; ///< usual thickness of level strokes; 0 = unknown
    std::vector<AlignmentZone> zones;
};

/// The outline, in device pixels with y up, with its upright and level strokes moved to whole pixels and made equally
/// wide where they are nearly so; what lies between is moved along. Slanted strokes stay as they are.
Path fittedToGrid(const Path& outline, const FittingGuide& guide);

/// The same for level strokes only: for coverage, where strokes keep their places along the line.
Path fittedToRows(const Path& outline, const FittingGuide& guide);

/// Pixels of an outline in glyph space as by rasteriseOutline(), fitted before: to the grid for bits, to rows for
/// coverage. `face` is in glyph space units, with em 1. Slanted or turned text and very large letters stay as they are.
bool rasteriseFitted(
    const Path& shape, const Matrix& glyphToDevice, GlyphMask::Depth depth, const FittingGuide& face, GlyphMask& mask);

/// Width of the longest upright stroke of an outline and thickness of its longest level one, in its own units; 0 when
/// it has none. `em` in the same units.
double uprightStrokeWidth(const Path& outline, double em);
double levelStrokeWidth(const Path& outline, double em);

} // namespace quillrip
