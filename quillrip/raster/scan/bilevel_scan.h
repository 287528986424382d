#pragma once

#include "quillrip/base/work_meter.h"
#include "quillrip/raster/painter.h"
#include "quillrip/raster/scan/edge_list.h"
#include "quillrip/raster/scan/span_sink.h"

namespace quillrip {

// All charge their work and stop within the shape once it is exhausted.

/// Pixels whose centres lie inside: left and top edges count as inside, right and bottom ones do not, so shapes that
/// share an edge share no pixel.
void scanCentres(const EdgeList& edges, FillRule rule, SpanSink& sink, WorkMeter& work);

/// As scanCentres(), and drop-out control: wherever the line through a row's or column's centres crosses the shape
/// without meeting a pixel's centre, the nearest pixel is marked, and so is the pixel of a shape too small to cross
/// any. A shape of any thinness thus leaves connected pixels. Spans may overlap and come in no order.
void scanCentresAndThinParts(
    const Path& devicePath, FillRule rule, const PixelRect& area, SpanSink& sink, WorkMeter& work);

/// All pixels that the shape or its outline touches; a pixel owns its left and top edges. `edges` keep level edges.
void scanTouched(const EdgeList& edges, FillRule rule, SpanSink& sink, WorkMeter& work);

} // namespace quillrip
