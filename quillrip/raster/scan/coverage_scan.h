#pragma once

#include "quillrip/base/work_meter.h"
#include "quillrip/raster/painter.h"
#include "quillrip/raster/scan/edge_list.h"
#include "quillrip/raster/scan/span_sink.h"

namespace quillrip {

/// The share of every pixel that the shape covers, exact to the edges' 24.8 fixed point numbers: rows are cut at
/// every vertex and crossing of edges, and between cuts a shape is trapezoids. Rows with very many vertices are
/// sampled on 16 lines instead.
void scanCoverage(const EdgeList& edges, FillRule rule, SpanSink& sink, WorkMeter& work);

} // namespace quillrip
