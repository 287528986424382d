#include "quillrip/raster/paths/pen.h"

#include <algorithm>
#include <cmath>

namespace quillrip {

namespace {

constexpr double kThinnestRadius = 0.5;
/// No pen is wider than the largest page.
constexpr double kWidestRadius = 1 << 20;
/// Radii this near to each other are equal, and widths this near to a pixel are one.
constexpr double kSlack = 1e-6;

double usableRadius(double radius) { return std::clamp(radius, kThinnestRadius, kWidestRadius); }

} // namespace

Pen::Pen(double width, const Matrix& userToDevice)
{
    const double half = std::isfinite(width) ? std::abs(width) / 2 : 0;
    const Matrix m { userToDevice.a * half, userToDevice.b * half, userToDevice.c * half, userToDevice.d * half, 0, 0 };
    // The singular values are the ellipse's radii: m = turn(after) * scale(sum, difference) * turn(before).
    const double mean = std::hypot((m.a + m.d) / 2, (m.b - m.c) / 2);
    const double skew = std::hypot((m.a - m.d) / 2, (m.b + m.c) / 2);
    const double large = mean + skew;
    const double small = std::abs(mean - skew);
    isHairline = !(large > kThinnestRadius + kSlack);
    if (!std::isfinite(large) || isHairline) {
        toDevice = Matrix::scaling(kThinnestRadius, kThinnestRadius);
    } else if (usableRadius(small) == small && usableRadius(large) == large) {
        toDevice = m;
    } else {
        // Only the ellipse matters, not how the circle was turned before it was stretched.
        const double sumAngle = std::atan2(m.b - m.c, m.a + m.d);
        const double differenceAngle = std::atan2(m.b + m.c, m.a - m.d);
        const double after = (sumAngle + differenceAngle) / 2;
        const double cosine = std::cos(after);
        const double sine = std::sin(after);
        const double long_ = usableRadius(large);
        const double short_ = usableRadius(small);
        toDevice = { cosine * long_, sine * long_, -sine * short_, cosine * short_, 0, 0 };
    }
    fromDevice = toDevice.inverted();
}

Pen Pen::upright(double widthX, double widthY)
{
    Pen pen;
    pen.toDevice = Matrix::scaling(usableRadius(widthX / 2), usableRadius(widthY / 2));
    pen.fromDevice = pen.toDevice.inverted();
    return pen;
}

double Pen::deviceWidth() const { return 2 * std::hypot(toDevice.a, toDevice.c); }
double Pen::deviceHeight() const { return 2 * std::hypot(toDevice.b, toDevice.d); }

bool Pen::isUpright() const
{
    // The ellipse's axes are skew exactly where the outer product of the matrix with itself has a mixed term.
    const double mixed = toDevice.a * toDevice.b + toDevice.c * toDevice.d;
    return std::abs(mixed) <= kSlack * deviceWidth() * deviceHeight();
}

} // namespace quillrip
