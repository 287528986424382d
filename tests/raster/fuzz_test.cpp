#include "quillrip/raster/painter.h"

#include <gtest/gtest.h>

#include <random>

using namespace quillrip;

// Random shapes against slow references that share no code with the painter.

namespace {

constexpr int kSize = 40;

/// Coordinates on the 1/256 grid that the painter works on, away from pixels' centres, so that no rounding decides.
double coordinate(std::mt19937& random, double low, double high)
{
    const double value = std::uniform_real_distribution<double>(low, high)(random);
    return std::round(value * 128) / 128 + 1.0 / 256;
}

std::vector<Point> randomPolygon(std::mt19937& random, int vertices)
{
    std::vector<Point> points;
    for (int i = 0; i < vertices; ++i)
        points.push_back({ coordinate(random, -8, kSize + 8), coordinate(random, -8, kSize + 8) });
    return points;
}

int windingAt(const std::vector<std::vector<Point>>& polygons, double x, double y)
{
    int winding = 0;
    for (const auto& polygon : polygons) {
        for (std::size_t i = 0; i < polygon.size(); ++i) {
            const Point a = polygon[i];
            const Point b = polygon[(i + 1) % polygon.size()];
            if ((a.y <= y) == (b.y <= y))
                continue;
            if (a.x + (b.x - a.x) * (y - a.y) / (b.y - a.y) <= x)
                winding += a.y <= y ? 1 : -1;
        }
    }
    return winding;
}

bool isInside(const std::vector<std::vector<Point>>& polygons, FillRule rule, double x, double y)
{
    const int winding = windingAt(polygons, x, y);
    return rule == FillRule::EvenOdd ? winding % 2 != 0 : winding != 0;
}

Path pathOf(const std::vector<std::vector<Point>>& polygons)
{
    Path path;
    for (const auto& polygon : polygons) {
        for (std::size_t i = 0; i < polygon.size(); ++i) {
            if (i == 0)
                path.moveTo(polygon[i]);
            else
                path.lineTo(polygon[i]);
        }
        path.close();
    }
    return path;
}

std::vector<std::vector<Point>> randomShape(std::mt19937& random)
{
    std::vector<std::vector<Point>> polygons;
    for (unsigned i = 0; i < 1 + random() % 3; ++i)
        polygons.push_back(randomPolygon(random, 3 + static_cast<int>(random() % 8)));
    return polygons;
}

bool hasInk(const PageBitmap& page, int x, int y) { return page.pixel(x, y).red == 0; }

} // namespace

TEST(Fuzz, ClippedPathsAreThePixelCentresInside)
{
    std::mt19937 random(1);
    for (int round = 0; round < 400; ++round) {
        const auto shape = randomShape(random);
        const FillRule rule = round % 2 == 0 ? FillRule::NonZero : FillRule::EvenOdd;
        PageBitmap page(PixelFormat::Bilevel, kSize, kSize, {});
        PaintState state;
        state.clip = ClipRegion::ofPath(pathOf(shape), rule, page.bounds());
        Painter(page).fillRect(page.bounds(), state);
        for (int y = 0; y < kSize; ++y) {
            for (int x = 0; x < kSize; ++x)
                ASSERT_EQ(hasInk(page, x, y), isInside(shape, rule, x + 0.5, y + 0.5))
                    << round << ": " << x << ',' << y;
        }
    }
}

TEST(Fuzz, FillsHaveAllCentresInsideAndNothingFarOutside)
{
    std::mt19937 random(2);
    for (int round = 0; round < 400; ++round) {
        const auto shape = randomShape(random);
        const FillRule rule = round % 2 == 0 ? FillRule::NonZero : FillRule::EvenOdd;
        PageBitmap page(PixelFormat::Bilevel, kSize, kSize, {});
        PaintState state;
        state.rop = round % 4 < 2 ? 252 : 85; // inverting what is white gives black, once
        Painter(page).fillPath(pathOf(shape), rule, state);
        for (int y = 0; y < kSize; ++y) {
            for (int x = 0; x < kSize; ++x) {
                if (isInside(shape, rule, x + 0.5, y + 0.5)) {
                    ASSERT_TRUE(hasInk(page, x, y)) << round << ": " << x << ',' << y;
                } else if (hasInk(page, x, y)) {
                    // Drop-out control only marks pixels that have some of the shape.
                    bool isTouched = false;
                    for (int i = 0; i <= 64 && !isTouched; ++i) {
                        isTouched = isInside(shape, rule, x + 0.5, y + i / 64.0 + 1e-4)
                            || isInside(shape, rule, x + i / 64.0 + 1e-4, y + 0.5);
                    }
                    if (!isTouched) {
                        // Thinner than the probes: search the pixel's middle lines finely.
                        for (int i = 0; i <= 8192 && !isTouched; ++i) {
                            isTouched = isInside(shape, rule, x + 0.5, y + i / 8192.0)
                                || isInside(shape, rule, x + i / 8192.0, y + 0.5);
                        }
                    }
                    ASSERT_TRUE(isTouched) << round << ": " << x << ',' << y;
                }
            }
        }
    }
}

TEST(Fuzz, CoverageIsTheAreaOfSamplesInside)
{
    std::mt19937 random(3);
    constexpr int samples = 16;
    for (int round = 0; round < 16; ++round) {
        const auto shape = randomShape(random);
        const FillRule rule = round % 2 == 0 ? FillRule::NonZero : FillRule::EvenOdd;
        PageBitmap page(PixelFormat::Gray8, kSize, kSize, {});
        Painter(page).fillPath(pathOf(shape), rule, {});
        for (int y = 0; y < kSize; ++y) {
            for (int x = 0; x < kSize; ++x) {
                int inside = 0;
                for (int i = 0; i < samples * samples; ++i) {
                    inside += isInside(
                        shape, rule, x + (i % samples + 0.5) / samples, y + (i / samples + 0.5) / samples); // NOLINT
                }
                ASSERT_NEAR(page.row(y)[x], inside * 255.0 / (samples * samples), 16) << round << ": " << x << ',' << y;
            }
        }
    }
}

TEST(Fuzz, StrokesAreThePointsNearTheLine)
{
    std::mt19937 random(4);
    for (int round = 0; round < 200; ++round) {
        const std::vector<Point> points = randomPolygon(random, 2 + static_cast<int>(random() % 6));
        Path path;
        for (const Point& point : points) {
            if (path.empty())
                path.moveTo(point);
            else
                path.lineTo(point);
        }
        StrokeStyle style;
        style.width = 1.5 + static_cast<double>(random() % 60) / 10;
        style.cap = LineCap::Round;
        style.join = LineJoin::Round;
        PageBitmap page(PixelFormat::Bilevel, kSize, kSize, {});
        Painter(page).strokePath(path, {}, style, {});
        for (int y = 0; y < kSize; ++y) {
            for (int x = 0; x < kSize; ++x) {
                double nearest = HUGE_VAL;
                for (std::size_t i = 1; i < points.size(); ++i) {
                    const Point way = points[i] - points[i - 1];
                    const Point to = Point { x + 0.5, y + 0.5 } - points[i - 1];
                    const double part
                        = std::clamp((way.x * to.x + way.y * to.y) / (way.x * way.x + way.y * way.y), 0.0, 1.0);
                    nearest = std::min(nearest, std::hypot(to.x - way.x * part, to.y - way.y * part));
                }
                if (std::abs(nearest - style.width / 2) > 0.05) {
                    ASSERT_EQ(hasInk(page, x, y), nearest < style.width / 2) << round << ": " << x << ',' << y;
                }
            }
        }
    }
}

TEST(Fuzz, BilevelStrokesAreTheUnionThatInvertingShows)
{
    std::mt19937 random(5);
    for (int round = 0; round < 200; ++round) {
        Path path;
        for (int line = 0; line < 3; ++line) {
            const std::vector<Point> points = randomPolygon(random, 4);
            path.moveTo(points[0]);
            path.lineTo(points[1]);
            path.cubicTo(points[1], points[2], points[3]);
            if (random() % 2 == 0)
                path.close();
        }
        StrokeStyle style;
        style.width = static_cast<double>(random() % 50) / 10;
        style.cap = static_cast<LineCap>(random() % 4);
        style.join = static_cast<LineJoin>(random() % 7);
        if (random() % 2 == 0)
            style.dashes = { 1 + static_cast<double>(random() % 5), 1 + static_cast<double>(random() % 3), 0 };
        const Matrix matrix { 1.3, 0.2, -0.4, 0.7, 3, -2 };
        PageBitmap black(PixelFormat::Bilevel, kSize, kSize, {});
        Painter(black).strokePath(path, matrix, style, {});
        PageBitmap inverted(PixelFormat::Bilevel, kSize, kSize, {});
        PaintState inverting;
        inverting.rop = 85;
        Painter(inverted).strokePath(path, matrix, style, inverting);
        for (int y = 0; y < kSize; ++y)
            ASSERT_TRUE(std::equal(black.row(y), black.row(y) + black.stride(), inverted.row(y))) << round << ": " << y;
    }
}

TEST(Fuzz, AbsurdNumbersNeitherHangNorLeaveThePage)
{
    std::mt19937 random(6);
    const double odd[] = { 0, 1, -1, 0.5, 20, 39.999, 1e5, -1e6, 1e9, -1e15, 1e30, -1e300, HUGE_VAL, -HUGE_VAL,
        std::nan(""), 1e-300, 2147483648.0, -2147483649.0 };
    const auto any = [&] {
        return random() % 3 == 0 ? odd[random() % std::size(odd)]
                                 : std::uniform_real_distribution<double>(-10, 50)(random);
    };
    for (int round = 0; round < 250; ++round) {
        const auto format = static_cast<PixelFormat>(random() % 3);
        PageBitmap page(format, kSize, kSize, {});
        Painter painter(page);
        Path path;
        for (int i = 0; i < 8; ++i) {
            switch (random() % 5) {
            case 0:
                path.moveTo({ any(), any() });
                break;
            case 1:
                path.close();
                break;
            case 2:
                path.cubicTo({ any(), any() }, { any(), any() }, { any(), any() });
                break;
            default:
                path.lineTo({ any(), any() });
            }
        }
        const Matrix matrix { any(), any(), any(), any(), any(), any() };
        StrokeStyle style;
        style.width = any();
        style.miterLimit = any();
        style.cap = static_cast<LineCap>(random() % 4);
        style.join = static_cast<LineJoin>(random() % 7);
        for (unsigned i = 0; i < random() % 4; ++i)
            style.dashes.push_back(any());
        style.dashOffset = any();
        PaintState state;
        state.rop = static_cast<std::uint8_t>(random());
        state.sourceTransparent = random() % 2 == 0;
        state.texture.color = { 1, 100, 200 };
        state.clip = random() % 2 == 0 ? ClipRegion::ofPath(path, FillRule::EvenOdd, page.bounds()) : nullptr;
        painter.fillPath(path, FillRule::NonZero, state, random() % 2 == 0 ? PixelRule::Centre : PixelRule::Touched);
        painter.strokePath(path, random() % 2 == 0 ? Matrix {} : matrix, style, state);
        painter.fillRect({ INT32_MIN, -5, INT32_MAX, INT32_MAX }, state);

        ImageGeometry geometry;
        geometry.format = static_cast<ImageFormat>(random() % 3);
        geometry.width = 1 + static_cast<int>(random() % 70);
        geometry.height = static_cast<int>(random() % 20) - 1;
        geometry.smooth = random() % 2 == 0;
        geometry.imageToDevice = matrix;
        if (random() % 2 == 0)
            geometry.imageToDevice.b = geometry.imageToDevice.c = 0;
        else if (random() % 2 == 0)
            geometry.imageToDevice.a = geometry.imageToDevice.d = 0;
        const std::vector<std::uint8_t> row(210, static_cast<std::uint8_t>(random()));
        if (const auto image = painter.beginImage(geometry, state)) {
            for (int i = 0; i < 12; ++i)
                image->row(row.data());
            image->blankRows(static_cast<int>(random() >> 1));
            image->row(row.data());
            image->finish();
        }
        for (int y = 0; y < kSize; ++y) {
            for (std::size_t i = page.rowBytes(); i < page.stride(); ++i)
                ASSERT_EQ(page.row(y)[i], 0) << "behind the row";
        }
    }
}
