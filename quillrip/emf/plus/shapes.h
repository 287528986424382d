#pragma once

#include "quillrip/emf/plus/field_reader.h"
#include "quillrip/raster/paths/path.h"

#include <cstdint>
#include <vector>

namespace quillrip::emf::plus {

/// What an arc is closed by.
enum class ArcKind : std::uint8_t { Open, Pie };

Path rectanglePath(const RectF& rect);
Path ellipsePath(const RectF& rect);
/// Part of the ellipse in the rectangle. Angles in degrees from +x towards +y, as seen from the centre; the sweep is
/// cut to one turn.
Path arcPath(const RectF& rect, double startDegrees, double sweepDegrees, ArcKind kind);
Path polygonPath(const std::vector<Point>& points, bool isClosed);
/// Curves through points 3 k + 1; what is left over is dropped.
Path bezierPath(const std::vector<Point>& points);
/// The cardinal spline through the points from number `first` on, over `segments` of the spaces between them. It passes
/// each point in the direction from its neighbour before to the one behind, by `tension` thirds of that distance.
Path cardinalPath(const std::vector<Point>& points, double tension, std::size_t first, std::size_t segments);
Path closedCardinalPath(const std::vector<Point>& points, double tension);

} // namespace quillrip::emf::plus
