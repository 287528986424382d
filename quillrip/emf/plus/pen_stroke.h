#pragma once

#include "quillrip/base/work_meter.h"
#include "quillrip/emf/plus/pen_object.h"
#include "quillrip/raster/painter.h"

namespace quillrip::emf::plus {

/// Where a line is drawn: world to the page's units in pixels of the logical device, and on to pixels of the page.
struct StrokeSpace {
    Matrix worldToPage;
    Matrix pageToDevice;
    double pagePixelsPerUnit = 1; ///< of the pen's unit; not for world units
    double thinnest = 1; ///< device pixels of the thinnest line
};

/// A pen brought into a space in which its nib is round: what the painter strokes directly, and what the outline of
/// lines with caps, bands or insets of their own is built from.
struct PenStroke {
    Path path;
    Matrix toDevice;
    StrokeStyle style;
    /// The style cannot say it all: strokeOutline() can.
    bool needsOutline = false;
};

/// Nothing to draw, an empty path, where the pen or the space is flat.
PenStroke penStroke(const Path& worldPath, const PenObject& pen, const StrokeSpace& space);

/// The outline of the whole line in device pixels, for filling by the non-zero rule: dashes with their caps, compound
/// lines, insets, anchors and custom caps. `area`: where marks can be seen.
Path strokeOutline(const PenStroke& stroke, const PenObject& pen, const PixelRect& area, WorkMeter& work);

} // namespace quillrip::emf::plus
