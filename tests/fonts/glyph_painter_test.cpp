#include "quillrip/fonts/glyph_painter.h"

#include "tests/support/text_art.h"

#include <gtest/gtest.h>

#include <limits>

namespace quillrip {
namespace {

using test::blackPixelCount;

/// One glyph, 'A': the lower left quarter of the em; 'B' has a mask only, of one pixel.
class QuarterFace final : public Typeface {
public:
    QuarterFace() { m_traits.isScalable = true; }

    GlyphId glyph(std::uint32_t code) const override { return code; }
    double advance(GlyphId) const override { return 1; }
    bool outline(GlyphId glyph, Path& path) const override
    {
        if (glyph == 'A')
            path.rectangle(0, 0, 0.5, 0.5);
        return glyph == 'A';
    }
    bool rasterise(
        GlyphId, const Matrix&, GlyphMask::Depth depth, const GlyphStyle& style, GlyphMask& mask) const override
    {
        ++masks;
        bold = style.bold;
        mask.depth = depth;
        mask.left = 2;
        mask.top = -3;
        mask.width = mask.height = 1;
        mask.stride = 1;
        mask.bytes = { 255 };
        return true;
    }

    mutable int masks = 0;
    mutable double bold = 0;
};

class GlyphPainterTest : public testing::Test {
protected:
    GlyphPainterTest()
        : page(PixelFormat::Bilevel, 2000, 2000, { 300, 300 })
        , painter(page)
    {
        canvas.painter = &painter;
        canvas.format = page.format();
        state.texture.color = kBlack;
    }

    QuarterFace face;
    PageBitmap page;
    Painter painter;
    PageCanvas canvas;
    PaintState state;
    GlyphPainter glyphs;
};

TEST_F(GlyphPainterTest, SmallGlyphsAreMasksThatAreMadeOnce)
{
    glyphs.draw(canvas, face, 'B', { 50, 0, 0, -50, 100, 200 }, state);
    glyphs.draw(canvas, face, 'B', { 50, 0, 0, -50, 300, 200 }, state, {});
    EXPECT_EQ(face.masks, 1);
    EXPECT_EQ(page.pixel(102, 197), kBlack);
    EXPECT_EQ(page.pixel(302, 197), kBlack);
    EXPECT_EQ(blackPixelCount(page), 2u);
    glyphs.draw(canvas, face, 'B', { 50, 0, 0, -50, 300, 200 }, state, { 0.25 });
    EXPECT_EQ(face.bold, 0.25);
}

TEST_F(GlyphPainterTest, LargeGlyphsAreFilledOutlinesAndOneWithoutOutlineIsNothing)
{
    const Matrix large { 1200, 0, 0, -1200, 100, 1500 };
    glyphs.draw(canvas, face, 'A', large, state);
    EXPECT_EQ(face.masks, 0);
    EXPECT_EQ(blackPixelCount(page), 600u * 600);
    EXPECT_EQ(page.pixel(100, 1499), kBlack);
    EXPECT_EQ(page.pixel(99, 1499), kWhite);
    glyphs.draw(canvas, face, 'B', large, state);
    EXPECT_EQ(face.masks, 0);
    EXPECT_EQ(blackPixelCount(page), 600u * 600);
}

TEST_F(GlyphPainterTest, LargeBoldGlyphsGrowByHalfThePenOnEverySide)
{
    glyphs.draw(canvas, face, 'A', { 1200, 0, 0, -1200, 100, 1500 }, state, { 0.1 });
    EXPECT_EQ(page.pixel(41, 1200), kBlack);
    EXPECT_EQ(page.pixel(38, 1200), kWhite);
}

TEST_F(GlyphPainterTest, ALanguageMayFillOutlinesItsOwnWay)
{
    Rect filled;
    glyphs.draw(canvas, face, 'A', { 1200, 0, 0, -1200, 100, 1500 }, state, {},
        [&](const Path& path) { filled = path.bounds(); });
    EXPECT_EQ(filled, (Rect { 100, 900, 700, 1500 }));
    EXPECT_EQ(blackPixelCount(page), 0u);
}

TEST_F(GlyphPainterTest, MatricesThatMakeNoSenseDrawNothing)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const Matrix& matrix : { Matrix { 50, 0, 0, 0, 0, 0 }, Matrix { 50, 0, 0, -50, nan, 0 },
             Matrix { 50, 0, 0, -50, 0, -2e7 }, Matrix { nan, 0, 0, -50, 0, 0 } }) {
        glyphs.draw(canvas, face, 'A', matrix, state);
        Path path;
        EXPECT_FALSE(GlyphPainter::appendOutline(face, 'A', matrix, path));
    }
    glyphs.draw(canvas, face, kNoGlyph, { 50, 0, 0, -50, 0, 0 }, state);
    EXPECT_EQ(face.masks, 0);
    EXPECT_EQ(blackPixelCount(page), 0u);
}

TEST_F(GlyphPainterTest, OutlinesAreAppendedUnderAnyMatrix)
{
    Path path;
    path.moveTo({ -1, -1 });
    EXPECT_TRUE(GlyphPainter::appendOutline(face, 'A', { 0, 2, -2, 0, 10, 20 }, path));
    EXPECT_EQ(path.points().front(), (Point { -1, -1 }));
    EXPECT_EQ(path.bounds(), (Rect { -1, -1, 10, 21 }));
    EXPECT_FALSE(GlyphPainter::appendOutline(face, 'B', {}, path));
}

} // namespace
} // namespace quillrip
