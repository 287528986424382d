#pragma once

#include "quillrip/raster/compose/compositor.h"
#include "quillrip/raster/paths/path.h"
#include "quillrip/raster/paths/stroke_style.h"
#include "quillrip/raster/scan/edge_list.h"

namespace quillrip {

/// Strokes a path: lines, dashes, pen and outline put together for one kind of page.
///
/// On a bilevel page the convex pieces of the outline are filled one by one by the pixel-centre rule, which marks
/// what their union would; lines no wider than a pixel become hairlines. In grey and RGB the pieces' edges are
/// converted together, so that no seam shows where they meet.
///
/// A line that only runs along the axes is moved by less than half a pixel so that its upper and left sides fall
/// between pixels; on a bilevel page its width becomes a whole number too. So rules of equal width look equal.
///
/// `edges` are for pages in grey and RGB: memory that the next stroke can have again.
void paintStroke(const Path& userPath, const Matrix& userToDevice, const StrokeStyle& style, Compositor& compositor,
    EdgeList& edges);

} // namespace quillrip
