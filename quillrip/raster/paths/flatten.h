#pragma once

#include "quillrip/base/geometry.h"

#include <algorithm>
#include <cmath>

namespace quillrip {

/// Device pixels that a chord may lie beside its curve.
constexpr double kFlatness = 0.025;

inline bool isFinite(Point p) { return std::isfinite(p.x) && std::isfinite(p.y); }

/// A cubic Bezier curve's points.
struct Cubic {
    Point start, control1, control2, end;

    Point at(double t) const
    {
        const double u = 1 - t;
        return start * (u * u * u) + control1 * (3 * u * u * t) + control2 * (3 * u * t * t) + end * (t * t * t);
    }

    /// Chords of equal parameter length that stay within kFlatness, for a curve in device pixels. A chord's distance
    /// is at most 1/8 of the second derivative's length, divided by the square of the number of chords.
    int chordCount() const
    {
        constexpr double mostChords = 500;
        const Point bend1 = start - control1 * 2 + control2;
        const Point bend2 = control1 - control2 * 2 + end;
        const double bend = 6 * std::max(std::hypot(bend1.x, bend1.y), std::hypot(bend2.x, bend2.y));
        const double chords = std::ceil(std::sqrt(bend / (8 * kFlatness)));
        return chords >= 1 ? static_cast<int>(std::min(chords, mostChords)) : 1;
    }
};

} // namespace quillrip
