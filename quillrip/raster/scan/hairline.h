#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/raster/scan/span_sink.h"

namespace quillrip {

/// The thinnest line of a bilevel page: one pixel in every column of a flat line, in every row of a steep one, both
/// ends included, so that lines that meet in a point meet in a pixel. Spans come from the line's start to its end.
void drawHairline(Point from, Point to, const PixelRect& area, SpanSink& sink);

/// The part of a line that lies inside an area, as parameters 0 to 1 along it. False if none does.
bool clipLine(Point from, Point to, const PixelRect& area, double margin, double& begin, double& end);

} // namespace quillrip
