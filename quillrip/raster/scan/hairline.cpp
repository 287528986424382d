#include "quillrip/raster/scan/hairline.h"

#include "quillrip/raster/paths/flatten.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace quillrip {

namespace {

std::int64_t toFixed(double pixels) { return static_cast<std::int64_t>(std::floor(pixels * 4294967296.0)); }
int pixelOf(double x) { return static_cast<int>(std::floor(x)); }

/// A line that goes at least as far along `major` as along `minor`: calls mark(major, minor) for each pixel.
template <typename Mark> void stepAlong(double major0, double minor0, double major1, double minor1, Mark mark)
{
    const int first = pixelOf(major0);
    const int last = pixelOf(major1);
    const int direction = first <= last ? 1 : -1;
    const double run = major1 - major0;
    const double slope = run != 0 ? (minor1 - minor0) / run : 0;
    // Centres of the first and last pixel may lie beyond the ends: the line does not go on there.
    const std::int64_t lowest = toFixed(std::min(minor0, minor1));
    const std::int64_t highest = toFixed(std::max(minor0, minor1));
    std::int64_t minor = toFixed(minor0 + (first + 0.5 - major0) * slope);
    const std::int64_t step = toFixed(slope * direction);
    for (int at = first;; at += direction, minor += step) {
        mark(at, static_cast<int>(std::clamp(minor, lowest, highest) >> 32));
        if (at == last)
            return;
    }
}

} // namespace

bool clipLine(Point from, Point to, const PixelRect& area, double margin, double& begin, double& end)
{
    begin = 0;
    end = 1;
    const auto cut = [&](double start, double change, double low, double high) {
        if (change == 0)
            return start >= low && start <= high;
        const double a = (low - start) / change;
        const double b = (high - start) / change;
        begin = std::max(begin, std::min(a, b));
        end = std::min(end, std::max(a, b));
        return begin <= end;
    };
    return cut(from.x, to.x - from.x, area.left - margin, area.right + margin)
        && cut(from.y, to.y - from.y, area.top - margin, area.bottom + margin);
}

void drawHairline(Point from, Point to, const PixelRect& area, SpanSink& sink)
{
    double begin = 0;
    double end = 1;
    if (!isFinite(from) || !isFinite(to) || !clipLine(from, to, area, 1, begin, end))
        return;
    const Point change = to - from;
    if (end < 1)
        to = from + change * end;
    if (begin > 0)
        from = from + change * begin;
    // Far ends lose the digits that the near part would need.
    for (Point* point : { &from, &to }) {
        if (!isFinite(*point))
            return;
        point->x = std::clamp(point->x, area.left - 1.0, area.right + 1.0);
        point->y = std::clamp(point->y, area.top - 1.0, area.bottom + 1.0);
    }
    if (std::abs(to.y - from.y) > std::abs(to.x - from.x)) {
        stepAlong(from.y, from.x, to.y, to.x, [&](int y, int x) { sink.span(y, x, x + 1); });
        return;
    }
    // Pixels of a flat line that share a row are one span.
    int spanY = pixelOf(from.y);
    int left = INT32_MAX;
    int right = INT32_MIN;
    stepAlong(from.x, from.y, to.x, to.y, [&](int x, int y) {
        if (y != spanY && left < right) {
            sink.span(spanY, left, right);
            left = INT32_MAX;
            right = INT32_MIN;
        }
        spanY = y;
        left = std::min(left, x);
        right = std::max(right, x + 1);
    });
    sink.span(spanY, left, right);
}

} // namespace quillrip
