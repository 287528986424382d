// What marks are charged: kinds of work that take longer cost more, and what is passed over costs little.

#include "quillrip/raster/painter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

using namespace quillrip;

namespace {

constexpr int kSize = 400;

std::uint64_t unitsOf(PixelFormat format, const std::function<void(Painter&)>& paint)
{
    PageBitmap page(format, kSize, kSize, {});
    Painter painter(page);
    paint(painter);
    return painter.work().spent();
}

/// Edges across the whole page that change places from row to row.
Path star(int edges)
{
    Path path;
    path.moveTo({ 200, 5 });
    for (int i = 1; i < edges; ++i)
        path.lineTo({ 200 + 195 * std::sin(i * 2.9), 200 - 195 * std::cos(i * 2.9) });
    return path;
}

Path comb(int edges)
{
    Path path;
    for (int i = 0; i < edges / 2; ++i)
        path.rectangle(5 + i * 0.1, 5, 5 + i * 0.1 + 0.05, 395);
    return path;
}

} // namespace

TEST(Work, EdgesThatChangePlacesCostTheirSorting)
{
    const auto ofPath = [](const Path& path) {
        return unitsOf(PixelFormat::Bilevel, [&](Painter& painter) { painter.fillPath(path, FillRule::EvenOdd, {}); });
    };
    EXPECT_GT(ofPath(star(2000)), 4 * ofPath(comb(2000)));
}

TEST(Work, ScreenedTonesCostMoreThanBlack)
{
    const auto ofColor = [](Rgb color) {
        return unitsOf(PixelFormat::Bilevel, [&](Painter& painter) {
            PaintState state;
            state.texture.color = color;
            for (int i = 0; i < 100; ++i)
                painter.fillRect({ 0, 0, kSize, kSize }, state);
        });
    };
    EXPECT_GT(ofColor({ 90, 90, 90 }), 2 * ofColor(kBlack));
}

TEST(Work, OfALargeShapeThroughASmallClipOnlyThePointsCost)
{
    constexpr int edges = 2000;
    for (const PixelFormat format : { PixelFormat::Bilevel, PixelFormat::Rgb24 }) {
        PaintState state;
        state.clip = ClipRegion::ofRect({ 120, 150, 122, 152 });
        const std::uint64_t units
            = unitsOf(format, [&](Painter& painter) { painter.fillPath(star(edges), FillRule::NonZero, state); });
        EXPECT_LT(units, 40u * edges);
    }
}

TEST(Work, OfAStrokeInAStripTheRestCostsLittle)
{
    StrokeStyle style;
    style.width = 3;
    style.cap = LineCap::Round;
    style.dashes = { 1, 6 };
    Path lines;
    for (int y = 5; y < kSize; y += 3) {
        lines.moveTo({ 5, double(y) });
        lines.lineTo({ 395, y + 2.0 });
    }
    const auto inStrip = [&](int height) {
        PaintState state;
        state.clip = ClipRegion::ofRect({ 0, 0, kSize, height });
        return unitsOf(PixelFormat::Rgb24, [&](Painter& painter) { painter.strokePath(lines, {}, style, state); });
    };
    EXPECT_LT(inStrip(kSize / 20), inStrip(kSize) / 10);
}
