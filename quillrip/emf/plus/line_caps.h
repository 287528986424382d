#pragma once

#include "quillrip/emf/plus/pen_object.h"
#include "quillrip/emf/plus/stroke_pieces.h"

namespace quillrip::emf::plus {

/// How much of a line a cap takes away, in half widths of the pen: so that no corner of the line looks out of an
/// arrow's tip.
double insetOf(Cap cap, const CustomCap* custom);

/// The shape of a cap. The end is that of the whole line, before it was shortened.
void addCap(const LineEnd& end, Cap cap, const CustomCap* custom, const Pen& pen, PieceCollector& sink);

} // namespace quillrip::emf::plus
