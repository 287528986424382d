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

/// A rectangle in any coordinate space; `top` is the side of the smaller y.
struct Rect {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    /// What holds no point at all, to include() points into.
    static constexpr Rect nothing() { return { kFarAway, kFarAway, -kFarAway, -kFarAway }; }

    double width() const { return right - left; }
    double height() const { return bottom - top; }
    Point center() const { return { (left + right) / 2, (top + bottom) / 2 }; }
    /// Without an area: a line is empty too.
    bool empty() const { return !(left < right && top < bottom); }
    /// Not even a point lies in it.
    bool isNothing() const { return !(left <= right && top <= bottom); }

    /// As small as it can be with the point inside. A coordinate that is no number changes nothing.
    void include(Point point)
    {
        left = std::min(left, point.x);
        top = std::min(top, point.y);
        right = std::max(right, point.x);
        bottom = std::max(bottom, point.y);
    }
    void include(const Rect& other)
    {
        left = std::min(left, other.left);
        top = std::min(top, other.top);
        right = std::max(right, other.right);
        bottom = std::max(bottom, other.bottom);
    }
    Rect intersected(const Rect& other) const
    {
        return { std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
            std::min(bottom, other.bottom) };
    }
    /// Moved out by `reach` on every side.
    Rect grown(double reach) const { return { left - reach, top - reach, right + reach, bottom + reach }; }
    /// Whether the other one lies inside, or at most `slack` outside of it.
    bool contains(const Rect& other, double slack = 0) const
    {
        return other.left >= left - slack && other.top >= top - slack && other.right <= right + slack
            && other.bottom <= bottom + slack;
    }
    bool contains(Point point) const
    {
        return point.x >= left && point.x <= right && point.y >= top && point.y <= bottom;
    }

private:
    static constexpr double kFarAway = 1e300;
};

inline bool operator==(const Rect& a, const Rect& b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

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

    /// The smallest upright rectangle round the rectangle's image.
    Rect boundsOf(const Rect& r) const
    {
        Rect bounds = Rect::nothing();
        for (const Point corner : { Point { r.left, r.top }, Point { r.right, r.top }, Point { r.right, r.bottom },
                 Point { r.left, r.bottom } })
            bounds.include(apply(corner));
        return bounds;
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
