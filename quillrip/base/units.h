#pragma once

#include <cmath>

namespace quillrip {

/// The circle's constant; M_PI is no part of C++.
constexpr double kPi = 3.141592653589793238462643383279502884;
constexpr double kRadiansPerDegree = kPi / 180;

constexpr double kPointsPerInch = 72;
constexpr double kMillimetresPerInch = 25.4;
/// A decipoint is a tenth of a point: the unit of page space.
constexpr double kDecipointsPerInch = 720;
/// The dot that PCL 5 counts its sheets by, whatever the resolution.
constexpr double kDotsPerInch = 300;

/// A length in decipoints (1/720 inch), where lengths of several units meet.
struct Decipoints {
    double count = 0;

    constexpr double inches() const { return count / kDecipointsPerInch; }
    constexpr double millimetres() const { return count / kDecipointsPerInch * kMillimetresPerInch; }
};

/// A length in whole dots (1/300 inch), as printers count their sheets.
struct Dots {
    int count = 0;

    constexpr double inches() const { return count / kDotsPerInch; }
};

constexpr Decipoints decipointsOfInches(double inches) { return { inches * kDecipointsPerInch }; }
constexpr Decipoints decipointsOfMillimetres(double millimetres)
{
    return { millimetres * kDecipointsPerInch / kMillimetresPerInch };
}

/// The nearest whole dots.
inline Dots nearestDots(Decipoints length)
{
    return { static_cast<int>(std::lround(length.count * kDotsPerInch / kDecipointsPerInch)) };
}

} // namespace quillrip
