#include "quillrip/raster/compose/screen.h"
#include "quillrip/raster/painter.h"

#include <gtest/gtest.h>

#include <random>

using namespace quillrip;

// Every operation, transparency, texture and source on every kind of page, against the print model written down pixel
// by pixel as it is defined: in light, not ink, bit by bit.

namespace {

constexpr int kWidth = 150; // three words of a bilevel row, the last one in part
constexpr int kHeight = 2;
constexpr int kLeft = 5; // of the marks: neither word nor byte aligned
constexpr int kMarkWidth = 137;

struct Texel {
    Rgb color;
    bool isTileWhite = false;
};

Texel texelAt(const Texture& texture, int x, int y)
{
    if (!texture.tile)
        return { texture.color, false };
    const PatternTile& tile = *texture.tile;
    const auto wrapped = [](int value, int size) { return ((value % size) + size) % size; };
    const int index = wrapped(y - texture.originY, tile.height) * tile.width + wrapped(x - texture.originX, tile.width);
    if (!tile.isColor) {
        const bool isInk = tile.pixels[static_cast<std::size_t>(index)] != 0;
        return { isInk ? texture.color : Rgb { 255, 255, 255 }, !isInk };
    }
    const std::uint8_t* at = tile.pixels.data() + 3 * index;
    const Rgb color { at[0], at[1], at[2] };
    return { color, color == Rgb { 255, 255, 255 } };
}

/// A colour in the page's own channels, as light.
Rgb shown(Rgb color, PixelFormat format, int x, int y)
{
    if (format == PixelFormat::Rgb24)
        return color;
    std::uint8_t light = luminance(color);
    if (format == PixelFormat::Bilevel)
        light = 255 - light > screenRow(y)[x % kScreenSize] ? 0 : 255;
    return { light, light, light };
}

std::uint8_t combined(std::uint8_t rop, unsigned t, unsigned s, unsigned d)
{
    unsigned result = 0;
    for (int bit = 0; bit < 8; ++bit) {
        const unsigned index = 4 * (t >> bit & 1) + 2 * (s >> bit & 1) + (d >> bit & 1);
        result |= (rop >> index & 1u) << bit;
    }
    return static_cast<std::uint8_t>(result);
}

Rgb expectedPixel(const PaintState& state, PixelFormat format, int x, int y, Rgb source, Rgb before)
{
    const bool isSourceWhite = source == Rgb { 255, 255, 255 };
    const Texel texel = texelAt(state.texture, x, y);
    if (isSourceWhite ? state.sourceTransparent : texel.isTileWhite && state.patternTransparent)
        return before;
    const Rgb s = shown(source, format, x, y);
    const Rgb t = shown(texel.color, format, x, y);
    return { combined(state.rop, t.red, s.red, before.red), combined(state.rop, t.green, s.green, before.green),
        combined(state.rop, t.blue, s.blue, before.blue) };
}

int mixed(int before, int after, int share) { return (before * (255 - share) + after * share + 127) / 255; }

std::vector<Texture> someTextures(std::mt19937& random)
{
    std::vector<Texture> textures;
    for (const Rgb color : { Rgb { 0, 0, 0 }, Rgb { 255, 255, 255 }, Rgb { 200, 30, 120 } }) {
        Texture solid;
        solid.color = color;
        textures.push_back(solid);
        PatternTile tile;
        tile.width = color.red == 255 ? 70 : 7;
        tile.height = 3;
        for (int i = 0; i < tile.width * tile.height; ++i)
            tile.pixels.push_back(random() % 2);
        Texture patterned;
        patterned.color = color;
        patterned.tile = std::make_shared<PatternTile>(tile);
        patterned.originX = -4;
        patterned.originY = 1;
        textures.push_back(patterned);
    }
    PatternTile tile;
    tile.width = 5;
    tile.height = 2;
    tile.isColor = true;
    for (int i = 0; i < tile.width * tile.height; ++i) {
        const bool isWhite = i % 3 == 0;
        for (int channel = 0; channel < 3; ++channel)
            tile.pixels.push_back(isWhite ? 255 : static_cast<std::uint8_t>(random()));
    }
    Texture colored;
    colored.tile = std::make_shared<PatternTile>(tile);
    colored.originX = 3;
    textures.push_back(colored);
    return textures;
}

using Sources = std::vector<Rgb>; // of a mark's pixels, row by row

void paintImage(
    Painter& painter, const PaintState& state, ImageFormat format, const Sources& sources, int left, int width)
{
    ImageGeometry geometry;
    geometry.format = format;
    geometry.width = width;
    geometry.height = kHeight;
    geometry.imageToDevice = Matrix::translation(left, 0);
    const auto image = painter.beginImage(geometry, state);
    ASSERT_TRUE(image);
    for (int y = 0; y < kHeight; ++y) {
        std::vector<std::uint8_t> row;
        if (format == ImageFormat::Mono)
            row.resize(static_cast<std::size_t>(width + 7) / 8);
        for (int x = 0; x < width; ++x) {
            const Rgb color = sources[static_cast<std::size_t>(y * width + x)];
            if (format == ImageFormat::Rgb24)
                row.insert(row.end(), { color.red, color.green, color.blue });
            else if (format == ImageFormat::Gray8)
                row.push_back(color.red);
            else if (color == Rgb { 0, 0, 0 })
                row[static_cast<std::size_t>(x / 8)] |= static_cast<std::uint8_t>(0x80 >> (x % 8));
        }
        image->row(row.data());
    }
    image->finish();
}

class PrintModel : public testing::TestWithParam<PixelFormat> {
protected:
    PrintModel()
    {
        // What the page holds beforehand: noise, with black and white pixels among it.
        Sources noise;
        for (int i = 0; i < kWidth * kHeight; ++i)
            noise.push_back(anyColor(i % 3));
        m_before = PageBitmap(GetParam(), kWidth, kHeight, {});
        Painter painter(m_before);
        PaintState copy;
        copy.rop = 204;
        copy.sourceTransparent = false;
        paintImage(painter, copy, ImageFormat::Rgb24, noise, 0, kWidth);
    }

    /// 0 any, 1 black, 2 white, 3 with some of every ink.
    Rgb anyColor(int kind)
    {
        const auto byte = [&] { return static_cast<std::uint8_t>(m_random()); };
        if (kind == 0)
            return { byte(), byte(), byte() };
        const auto notWhite = [&] { return static_cast<std::uint8_t>(m_random() % 255); };
        if (kind == 3)
            return { notWhite(), notWhite(), notWhite() };
        return kind == 1 ? Rgb { 0, 0, 0 } : Rgb { 255, 255, 255 };
    }

    PageBitmap copyOfBefore() const
    {
        PageBitmap page(GetParam(), kWidth, kHeight, {});
        for (int y = 0; y < kHeight; ++y)
            std::copy_n(m_before.row(y), m_before.stride(), page.row(y));
        return page;
    }

    /// Runs `mark` under every operation, transparency and texture and compares all pixels. `coverage` may be empty.
    template <typename Mark>
    void compareAll(const Sources& sources, const std::vector<std::uint8_t>& coverage, Mark mark)
    {
        for (const Texture& texture : someTextures(m_random)) {
            for (int flags = 0; flags < 4; ++flags) {
                for (int rop = 0; rop < 256; ++rop) {
                    PaintState state;
                    state.rop = static_cast<std::uint8_t>(rop);
                    state.sourceTransparent = (flags & 1) != 0;
                    state.patternTransparent = (flags & 2) != 0;
                    state.texture = texture;
                    PageBitmap page = copyOfBefore();
                    Painter painter(page);
                    mark(painter, state);
                    compare(page, state, sources, coverage);
                    if (HasFailure())
                        FAIL() << "operation " << rop << ", transparency " << flags;
                }
            }
        }
    }

    void compare(const PageBitmap& page, const PaintState& state, const Sources& sources,
        const std::vector<std::uint8_t>& coverage)
    {
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                const Rgb before = m_before.pixel(x, y);
                Rgb expected = before;
                if (x >= kLeft && x < kLeft + kMarkWidth) {
                    const auto at = static_cast<std::size_t>(y * kMarkWidth + x - kLeft);
                    expected = expectedPixel(state, GetParam(), x, y, sources[at], before);
                    if (!coverage.empty()) {
                        // What is not covered is a white source.
                        const Rgb other = expectedPixel(state, GetParam(), x, y, { 255, 255, 255 }, before);
                        const auto mix = [&](int a, int b) {
                            const int share
                                = GetParam() == PixelFormat::Bilevel ? (coverage[at] < 128 ? 0 : 255) : coverage[at];
                            return static_cast<std::uint8_t>(mixed(a, b, share));
                        };
                        expected = { mix(other.red, expected.red), mix(other.green, expected.green),
                            mix(other.blue, expected.blue) };
                    }
                }
                const Rgb actual = page.pixel(x, y);
                const auto isNear = [&](int a, int b) { return std::abs(a - b) <= (coverage.empty() ? 0 : 1); };
                ASSERT_TRUE(isNear(actual.red, expected.red) && isNear(actual.green, expected.green)
                    && isNear(actual.blue, expected.blue))
                    << "pixel " << x << ',' << y << ": " << int { actual.red } << ' ' << int { actual.green } << ' '
                    << int { actual.blue } << ", not " << int { expected.red } << ' ' << int { expected.green } << ' '
                    << int { expected.blue };
            }
        }
    }

    std::mt19937 m_random { 7 };
    PageBitmap m_before;
};

} // namespace

TEST_P(PrintModel, RectanglesAreBlackSources)
{
    compareAll(Sources(kMarkWidth * kHeight, Rgb { 0, 0, 0 }), {}, [](Painter& painter, const PaintState& state) {
        painter.fillRect({ kLeft, 0, kLeft + kMarkWidth, kHeight }, state);
    });
}

TEST_P(PrintModel, MasksAreBlackAndTheirBoxesWhite)
{
    GlyphMask mask;
    mask.left = 2;
    mask.width = kMarkWidth;
    mask.height = kHeight;
    mask.stride = (kMarkWidth + 7) / 8;
    mask.bytes.resize(mask.stride * kHeight);
    Sources sources;
    for (int i = 0; i < kMarkWidth * kHeight; ++i) {
        const int x = i % kMarkWidth;
        const bool isInk = x < 70 ? m_random() % 2 == 0 : x < 100;
        sources.push_back(isInk ? Rgb { 0, 0, 0 } : Rgb { 255, 255, 255 });
        if (isInk)
            mask.bytes[static_cast<std::size_t>(i / kMarkWidth) * mask.stride + static_cast<std::size_t>(x / 8)]
                |= static_cast<std::uint8_t>(0x80 >> (x % 8));
    }
    compareAll(
        sources, {}, [&](Painter& painter, const PaintState& state) { painter.drawMask(mask, kLeft - 2, 0, state); });
}

TEST_P(PrintModel, CoverageMixesBlackAndWhiteSources)
{
    GlyphMask mask;
    mask.depth = GlyphMask::Depth::Coverage;
    mask.width = kMarkWidth;
    mask.height = kHeight;
    mask.stride = kMarkWidth;
    for (int i = 0; i < kMarkWidth * kHeight; ++i)
        mask.bytes.push_back(i % 5 == 0 ? 0 : i % 5 == 1 ? 255 : static_cast<std::uint8_t>(m_random()));
    compareAll(Sources(kMarkWidth * kHeight, Rgb { 0, 0, 0 }), mask.bytes,
        [&](Painter& painter, const PaintState& state) { painter.drawMask(mask, kLeft, 0, state); });
}

TEST_P(PrintModel, BilevelImagesTakeTheTexture)
{
    Sources sources;
    for (int i = 0; i < kMarkWidth * kHeight; ++i)
        sources.push_back(anyColor(1 + static_cast<int>(m_random() % 2)));
    compareAll(sources, {}, [&](Painter& painter, const PaintState& state) {
        paintImage(painter, state, ImageFormat::Mono, sources, kLeft, kMarkWidth);
    });
}

TEST_P(PrintModel, GreyImagesAreTheirOwnSource)
{
    Sources sources;
    for (int i = 0; i < kMarkWidth * kHeight; ++i) {
        const Rgb color = anyColor(i % kMarkWidth < 70 ? 3 : static_cast<int>(m_random() % 3));
        sources.push_back({ color.red, color.red, color.red });
    }
    compareAll(sources, {}, [&](Painter& painter, const PaintState& state) {
        paintImage(painter, state, ImageFormat::Gray8, sources, kLeft, kMarkWidth);
    });
}

TEST_P(PrintModel, ColourImagesAreTheirOwnSource)
{
    Sources sources;
    for (int i = 0; i < kMarkWidth * kHeight; ++i)
        sources.push_back(anyColor(i % kMarkWidth < 70 ? 3 : static_cast<int>(m_random() % 3)));
    compareAll(sources, {}, [&](Painter& painter, const PaintState& state) {
        paintImage(painter, state, ImageFormat::Rgb24, sources, kLeft, kMarkWidth);
    });
}

INSTANTIATE_TEST_SUITE_P(Formats, PrintModel,
    testing::Values(PixelFormat::Bilevel, PixelFormat::Gray8, PixelFormat::Rgb24), [](const auto& info) {
        return info.param == PixelFormat::Bilevel ? "Bilevel" : info.param == PixelFormat::Gray8 ? "Gray8" : "Rgb24";
    });
