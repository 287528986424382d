#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/raster/paths/path.h"

#include <cstddef>
#include <cstdint>

namespace quillrip::pclxl {

/// Part of the ellipse in a box, from the ray through one point to that through another. y points down.
struct EllipticArc {
    Rect box;
    Point start;
    Point end;
    bool isClockwise = false;
};

enum class ArcKind : std::uint8_t {
    Open,
    Chord, ///< closed by a straight line
    Pie, ///< closed through the centre
};

// The most points that each of the figures below appends.
constexpr std::size_t kMaxArcPoints = 20;
constexpr std::size_t kRectanglePoints = 5;
constexpr std::size_t kMaxRoundRectanglePoints = 24;

void appendArc(Path& path, const EllipticArc& arc, ArcKind kind);
/// Runs counter-clockwise, from the right.
void appendEllipse(Path& path, const Rect& box);
/// `diameters` of the corners are cut to the box; without any it is a plain rectangle.
void appendRoundRectangle(Path& path, const Rect& box, Point diameters);

} // namespace quillrip::pclxl
