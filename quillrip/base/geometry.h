#pragma once

#include <algorithm>
#include <cmath>

namespace quillrip {

struct Point {
    double x = 0;
    double y = 0;
};

inline Point operator+(Point a, Point b) { return { a.x + b.x, a.y + b.y }; }
inline Point operator-(Point a, Point b) { return { a.x - b.x, a.y - b.y }; }
inline Point operator*(Point a, double s) { return { a.x * s, a.y * s }; }
inline bool operator==(Point a, Point b) { return a.x == b.x && a.y == b.y; }
inline bool operator!=(Point a, Point b) { return !(a == b); }

/// Device pixels, half open: left <= x < right, top <= y < bottom.
struct PixelRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    bool empty() const { return left >= right || top >= bottom; }
    int width() const { return right - left; }
    int height() const { return bottom - top; }
    PixelRect intersected(const PixelRect& other) const
    {
        return { std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
            std::min(bottom, other.bottom) };
    }
};

inline bool operator==(const PixelRect& a, const PixelRect& b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

/// Affine map of the plane: x' = a x + c y + e, y' = b x + d y + f.
struct Matrix {
    double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;

    Point apply(Point p) const { return { a * p.x + c * p.y + e, b * p.x + d * p.y + f }; }
    /// Without the translation: for distances and directions.
    Point applyVector(Point p) const { return { a * p.x + c * p.y, b * p.x + d * p.y }; }
    double determinant() const { return a * d - b * c; }
    bool isInvertible() const { return std::isfinite(determinant()) && determinant() != 0; }
    /// Only for an invertible matrix.
    Matrix inverted() const
    {
        const double k = 1 / determinant();
        return { d * k, -b * k, -c * k, a * k, (c * f - d * e) * k, (b * e - a * f) * k };
    }

    static Matrix translation(double x, double y) { return { 1, 0, 0, 1, x, y }; }
    static Matrix scaling(double x, double y) { return { x, 0, 0, y, 0, 0 }; }
    /// Quarter turns that take +x to +y, k = 0 to 3, exact.
    static Matrix quarterTurns(int k)
    {
        switch (k & 3) {
        case 1:
            return { 0, 1, -1, 0, 0, 0 };
        case 2:
            return { -1, 0, 0, -1, 0, 0 };
        case 3:
            return { 0, -1, 1, 0, 0, 0 };
        default:
            return {};
        }
    }
};

/// First `first`, then `second`.
inline Matrix operator*(const Matrix& first, const Matrix& second)
{
    return { first.a * second.a + first.b * second.c, first.a * second.b + first.b * second.d,
        first.c * second.a + first.d * second.c, first.c * second.b + first.d * second.d,
        first.e * second.a + first.f * second.c + second.e, first.e * second.b + first.f * second.d + second.f };
}

} // namespace quillrip
