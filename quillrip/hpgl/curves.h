#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/hpgl/coordinates.h"
#include "quillrip/hpgl/line_pattern.h"

#include <optional>
#include <vector>

namespace quillrip::hpgl {

/// A full or partial turn round a centre.
struct Arc {
    Point centre; ///< plotter units
    Point radius; ///< from the centre to the start, user units
    double sweep = 360; ///< degrees
    double chord = 5; ///< degrees that one chord covers
};

/// The chord angle in degrees that an operand asks for: an angle, or, with `isDeviation`, the distance between chord
/// and arc, in the radius' units.
double chordAngle(std::optional<double> operand, double radius, bool isDeviation);

/// Points of an arc behind its start, in plotter units. Chord angles above the default are taken at their word; others
/// are made as fine as the page can show, unless `keepsChords`: then points show where chords end.
std::vector<LineVertex> arcPoints(const Coordinates& coordinates, const Arc& arc, bool keepsChords);

/// An arc through three points; `middle` and `end` lead from `start`, in user units. Nothing where the points are on
/// a straight line.
std::optional<Arc> arcThrough(const Coordinates& coordinates, Point start, Point middle, Point end);

/// Points of a Bezier curve behind its start; all plotter units.
std::vector<LineVertex> bezierPoints(
    const Coordinates& coordinates, Point start, Point control1, Point control2, Point end);

double lengthOf(Point vector);

} // namespace quillrip::hpgl
