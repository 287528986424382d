// Times the painter alone: no job is read and no file written. Medians over some runs, in processor time, since other
// programs share the machine. An argument picks the lines whose names contain it.

#include "quillrip/raster/painter.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <random>

using namespace quillrip;

namespace {

constexpr int kRuns = 5;
const char* s_filter = "";

void report(const char* what, const std::function<void()>& work)
{
    if (!std::strstr(what, s_filter))
        return;
    std::vector<double> milliseconds;
    for (int run = 0; run < kRuns; ++run) {
        const std::clock_t start = std::clock();
        work();
        milliseconds.push_back(static_cast<double>(std::clock() - start) * 1000 / CLOCKS_PER_SEC);
    }
    std::sort(milliseconds.begin(), milliseconds.end());
    std::printf("%-58s %9.1f ms\n", what, milliseconds[kRuns / 2]);
}

struct Vector {
    Point from;
    Point to;
};

std::vector<Vector> shortVectors(int count, int width, int height)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> x(0, width);
    std::uniform_real_distribution<double> y(0, height);
    std::uniform_real_distribution<double> step(-60, 60);
    std::vector<Vector> vectors;
    for (int i = 0; i < count; ++i) {
        const Point from { x(random), y(random) };
        vectors.push_back({ from, { from.x + step(random), from.y + step(random) } });
    }
    return vectors;
}

void benchVectors(const char* what, PixelFormat format, double penWidth, LineCap cap, LineJoin join, bool isOnePath)
{
    constexpr int width = 9921; // A3 landscape at 600 dpi
    constexpr int height = 7016;
    const std::vector<Vector> vectors = shortVectors(200000, width, height);
    StrokeStyle style;
    style.width = penWidth;
    style.cap = cap;
    style.join = join;
    report(what, [&] {
        PageBitmap page(format, width, height, { 600, 600 });
        Painter painter(page);
        Path path;
        for (const Vector& vector : vectors) {
            path.moveTo(vector.from);
            path.lineTo(vector.to);
            if (!isOnePath) {
                painter.strokePath(path, {}, style, {});
                path.clear();
            }
        }
        if (isOnePath)
            painter.strokePath(path, {}, style, {});
    });
}

/// A letter-like blob.
GlyphMask glyph(GlyphMask::Depth depth, int width, int height)
{
    GlyphMask mask;
    mask.depth = depth;
    mask.width = width;
    mask.height = height;
    const bool isBits = depth == GlyphMask::Depth::Bits;
    mask.stride = static_cast<std::size_t>(isBits ? (width + 7) / 8 : width);
    for (std::size_t i = 0; i < mask.stride * static_cast<std::size_t>(height); ++i)
        mask.bytes.push_back(isBits ? 0x7E : static_cast<std::uint8_t>(i % 7 == 0 ? 120 : i % 7 < 3 ? 255 : 0));
    return mask;
}

void benchText(const char* what, PixelFormat format)
{
    const bool isBilevel = format == PixelFormat::Bilevel;
    const int dpi = isBilevel ? 600 : 300;
    const int cell = dpi / 10;
    const GlyphMask mask
        = glyph(isBilevel ? GlyphMask::Depth::Bits : GlyphMask::Depth::Coverage, cell * 6 / 10, cell * 8 / 10);
    report(what, [&] {
        for (int sheet = 0; sheet < 20; ++sheet) {
            PageBitmap page(format, dpi * 8, dpi * 11, {});
            Painter painter(page);
            for (int line = 0; line < 66; ++line) {
                for (int column = 0; column < 80; ++column)
                    painter.drawMask(mask, column * cell + 3, line * dpi / 6, {});
            }
        }
    });
}

void benchImage(const char* what, PixelFormat page_, ImageFormat format, double scale, bool smooth)
{
    constexpr int width = 4960; // A4 at 600 dpi
    constexpr int height = 7016;
    const auto sourceWidth = static_cast<int>(width / scale);
    const auto sourceHeight = static_cast<int>(height / scale);
    std::vector<std::uint8_t> row(static_cast<std::size_t>(sourceWidth) * 3);
    for (std::size_t i = 0; i < row.size(); ++i)
        row[i] = static_cast<std::uint8_t>(i * 37 >> 3);
    report(what, [&] {
        PageBitmap page(page_, width, height, { 600, 600 });
        Painter painter(page);
        ImageGeometry geometry;
        geometry.format = format;
        geometry.width = sourceWidth;
        geometry.height = sourceHeight;
        geometry.imageToDevice = Matrix::scaling(scale, scale);
        geometry.smooth = smooth;
        const auto image = painter.beginImage(geometry, {});
        for (int y = 0; y < sourceHeight; ++y)
            image->row(row.data());
        image->finish();
    });
}

/// A page painted all over again and again, by a rectangle or an image, under a raster operation.
void benchOperation(const char* what, int rop, const Texture& texture, bool isImage)
{
    constexpr int width = 4960; // A4 at 600 dpi
    constexpr int height = 7016;
    std::vector<std::uint8_t> row(width * 3);
    for (std::size_t i = 0; i < row.size(); ++i)
        row[i] = static_cast<std::uint8_t>(i * 37 >> 3);
    PageBitmap page(PixelFormat::Rgb24, width, height, { 600, 600 });
    Painter painter(page);
    painter.fillRect({ 0, 0, width, height }, {});
    PaintState state;
    state.rop = static_cast<std::uint8_t>(rop);
    state.sourceTransparent = state.patternTransparent = !isImage;
    state.texture = texture;
    report(what, [&] {
        if (!isImage)
            return painter.fillRect({ 0, 0, width, height }, state);
        ImageGeometry geometry;
        geometry.format = ImageFormat::Rgb24;
        geometry.width = width;
        geometry.height = height;
        const auto image = painter.beginImage(geometry, state);
        for (int y = 0; y < height; ++y)
            image->row(row.data());
        image->finish();
    });
}

void benchOperations()
{
    Texture solid;
    solid.color = { 40, 90, 200 };
    Texture tiled = solid;
    PatternTile tile;
    tile.width = tile.height = 8;
    for (int i = 0; i < 64; ++i)
        tile.pixels.push_back(i % 3 == 0);
    tiled.tile = std::make_shared<PatternTile>(tile);
    Texture colored = solid;
    tile.isColor = true;
    for (int i = 0; i < 128; ++i)
        tile.pixels.push_back(static_cast<std::uint8_t>(i * 11));
    colored.tile = std::make_shared<PatternTile>(tile);
    benchOperation("A4 600 dpi RGB, solid copy", 252, solid, false);
    benchOperation("A4 600 dpi RGB, solid, texture XOR destination", 0x5A, solid, false);
    benchOperation("A4 600 dpi RGB, mono tile copy", 252, tiled, false);
    benchOperation("A4 600 dpi RGB, mono tile, texture XOR destination", 0x5A, tiled, false);
    benchOperation("A4 600 dpi RGB, colour tile AND destination", 0xA0, colored, false);
    benchOperation("A4 600 dpi RGB, image copy", 0xCC, solid, true);
    benchOperation("A4 600 dpi RGB, image XOR destination", 0x66, solid, true);
    benchOperation("A4 600 dpi RGB, image and tile, source copy by pattern", 0xCA, tiled, true);
}

void benchFills(const char* what, PixelFormat format, int count, double radius)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<double> place(0, 2400);
    std::vector<Point> centres;
    for (int i = 0; i < count; ++i)
        centres.push_back({ place(random), place(random) });
    report(what, [&] {
        PageBitmap page(format, 2550, 3300, { 300, 300 });
        Painter painter(page);
        PaintState state;
        state.texture.color = { 40, 90, 200 };
        for (const Point& centre : centres) {
            Path path;
            path.arc(centre, radius, radius * 0.8, 0, 7, true);
            path.close();
            painter.fillPath(path, FillRule::NonZero, state);
        }
    });
}

void benchManyEdges(const char* what, PixelFormat format)
{
    const std::vector<Vector> vectors = shortVectors(500000, 2400, 3300);
    Path path;
    path.moveTo({ 0, 0 });
    for (const Vector& vector : vectors) {
        // A walk of small steps all over the page: a million edges in one path.
        path.moveTo(vector.from);
        path.lineTo({ vector.from.x + 3, vector.from.y + 1 });
        path.lineTo({ vector.from.x + 1, vector.from.y + 4 });
    }
    report(what, [&] {
        PageBitmap page(format, 2550, 3300, { 300, 300 });
        Painter(page).fillPath(path, FillRule::NonZero, {});
    });
}

} // namespace

int main(int argc, char** argv)
{
    if (argc > 1)
        s_filter = argv[1];
    constexpr auto bilevel = PixelFormat::Bilevel;
    constexpr auto rgb = PixelFormat::Rgb24;
    benchVectors("200,000 vectors, A3 600 dpi bilevel, hairline", bilevel, 1, LineCap::Butt, LineJoin::Miter, false);
    benchVectors(
        "200,000 vectors, A3 600 dpi bilevel, 0.35 mm pen", bilevel, 8.27, LineCap::Butt, LineJoin::Miter, false);
    benchVectors("200,000 vectors, A3 600 dpi bilevel, 0.35 mm pen, round ends", bilevel, 8.27, LineCap::Round,
        LineJoin::Round, false);
    benchVectors("200,000 vectors, A3 600 dpi bilevel, one path, round ends", bilevel, 8.27, LineCap::Round,
        LineJoin::Round, true);
    benchVectors("200,000 vectors, A3 600 dpi RGB, 0.35 mm pen", rgb, 8.27, LineCap::Butt, LineJoin::Miter, false);
    benchVectors(
        "200,000 vectors, A3 600 dpi RGB, 0.35 mm pen, one path", rgb, 8.27, LineCap::Butt, LineJoin::Miter, true);
    benchText("20 pages of 5,280 glyphs, 600 dpi bilevel", bilevel);
    benchText("20 pages of 5,280 glyphs, 300 dpi RGB", rgb);
    benchImage("A4 600 dpi raster, bilevel to bilevel", bilevel, ImageFormat::Mono, 1, false);
    benchImage("A4 300 dpi raster to 600 dpi, bilevel", bilevel, ImageFormat::Mono, 2, false);
    benchImage("A4 600 dpi RGB image to RGB", rgb, ImageFormat::Rgb24, 1, false);
    benchImage("A4 300 dpi RGB image to 600 dpi RGB", rgb, ImageFormat::Rgb24, 2, false);
    benchImage("A4 400 dpi RGB image to 600 dpi RGB, smooth", rgb, ImageFormat::Rgb24, 1.5, true);
    benchImage("A4 1200 dpi RGB image to 600 dpi RGB", rgb, ImageFormat::Rgb24, 0.5, false);
    benchImage("A4 600 dpi RGB image to bilevel", bilevel, ImageFormat::Rgb24, 1, false);
    benchOperations();
    benchFills("2,000 ellipses of 200 pixels, RGB", rgb, 2000, 100);
    benchFills("100,000 ellipses of 10 pixels, RGB", rgb, 100000, 5);
    benchFills("2,000 ellipses of 200 pixels, bilevel", bilevel, 2000, 100);
    benchFills("100,000 ellipses of 10 pixels, bilevel", bilevel, 100000, 5);
    benchManyEdges("A path of 1.5 million edges, bilevel", bilevel);
    benchManyEdges("A path of 1.5 million edges, RGB", rgb);
    return 0;
}
