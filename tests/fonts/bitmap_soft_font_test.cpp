#include "font_test_helpers.h"
#include "quillrip/fonts/pixels/bitmap_glyph.h"
#include "quillrip/fonts/soft/soft_font.h"

#include <gtest/gtest.h>

using namespace quillrip;

namespace {

Bytes headerFormat0(unsigned orientation = 0, bool isProportional = true)
{
    Bytes header;
    header.u16(64).u8(0).u8(1).u8(0).u8(0).u16(30).u16(30).u16(40).u8(orientation).u8(isProportional ? 1 : 0);
    header.u16(277).u16(120).u16(200).u16(80).u8(0).u8(0).u8(0).u8(3).u8(16).u8(0).u8(0).u8(0).u8(0xF6).u8(4);
    header.zeros(8).u8(128).u8(64).zeros(6).text("TEST FONT       ");
    return header;
}

Bytes headerFormat20(unsigned dpi)
{
    Bytes header = headerFormat0();
    header[1] = 68;
    header[2] = 20;
    return header.u16(dpi).u16(dpi);
}

Bytes character(int left, int top, unsigned width, unsigned height, unsigned deltaQuarters,
    const std::vector<std::uint8_t>& data, unsigned imageClass = 1, unsigned orientation = 0)
{
    Bytes block;
    block.u8(4).u8(0).u8(14).u8(imageClass).u8(orientation).u8(0).u16(static_cast<unsigned>(left) & 0xFFFF);
    block.u16(static_cast<unsigned>(top) & 0xFFFF).u16(width).u16(height).u16(deltaQuarters).bytes(data);
    return block;
}

/// A flag: a pole with a banner at its upper right.
const std::vector<std::uint8_t> kFlag { 0xF0, 0xF0, 0x80, 0x80, 0x80 };

GlyphMask pixels(
    const Typeface& font, std::uint32_t code, const Matrix& matrix, GlyphMask::Depth depth = GlyphMask::Depth::Bits)
{
    GlyphMask mask;
    font.rasterise(font.glyph(code), matrix, depth, {}, mask);
    return mask;
}

Matrix upright(double dpi) { return Matrix::scaling(dpi, -dpi); }

} // namespace

TEST(BitmapSoftFont, HeaderMetricsAreInInchesAndPoints)
{
    const auto font = SoftFont::fromPclHeader(headerFormat0(0, false), {});
    ASSERT_NE(font, nullptr);
    const FontTraits& traits = font->traits();
    EXPECT_FALSE(traits.isScalable);
    EXPECT_FALSE(traits.isProportional);
    EXPECT_NEAR(traits.pitch, 300 / (120.5 / 4), 1e-9);
    EXPECT_NEAR(traits.height, 200.25 / 4 * 72 / 300, 1e-9);
    EXPECT_EQ(traits.family, 4099);
    EXPECT_EQ(traits.symbolSet, 277);
    EXPECT_TRUE(traits.hasUnderline);
    EXPECT_NEAR(traits.underlineTop, -10 / 300.0, 1e-9);
    EXPECT_NEAR(traits.underlineThickness, 4 / 300.0, 1e-9);
    EXPECT_EQ(traits.name, "TEST FONT");
    EXPECT_EQ(traits.codeRange, CodeRange::EightBit);
}

TEST(BitmapSoftFont, GlyphIsCopiedExactlyAtItsOwnResolution)
{
    const auto font = SoftFont::fromPclHeader(headerFormat0(), {});
    ASSERT_TRUE(font->addPclCharacter('F', character(2, 5, 4, 5, 26, kFlag), {}));
    const GlyphMask mask = pixels(*font, 'F', upright(300));
    EXPECT_EQ(art(mask), "####\n####\n#...\n#...\n#...\n");
    EXPECT_EQ(mask.left, 2);
    EXPECT_EQ(mask.top, -5);
    EXPECT_NEAR(font->advance(font->glyph('F')), 26 / 4.0 / 300, 1e-12);
    EXPECT_EQ(font->glyph('G'), kNoGlyph);
}

TEST(BitmapSoftFont, WholeScalesReplicateDots)
{
    const auto font = SoftFont::fromPclHeader(headerFormat0(), {});
    font->addPclCharacter('F', character(2, 5, 4, 5, 26, kFlag), {});
    const GlyphMask mask = pixels(*font, 'F', upright(600));
    EXPECT_EQ(art(mask),
        "########\n########\n########\n########\n##......\n##......\n##......\n##......\n##......\n##......\n");
    EXPECT_EQ(mask.left, 4);
    EXPECT_EQ(mask.top, -10);
}

TEST(BitmapSoftFont, QuarterTurnsAreExact)
{
    const auto font = SoftFont::fromPclHeader(headerFormat0(), {});
    font->addPclCharacter('F', character(2, 5, 4, 5, 26, kFlag), {});
    // Text that runs up the page.
    const GlyphMask mask = pixels(*font, 'F', upright(300) * Matrix::quarterTurns(3));
    EXPECT_EQ(art(mask), "##...\n##...\n##...\n#####\n");
    EXPECT_EQ(mask.left, -5);
    EXPECT_EQ(mask.top, -6);
}

TEST(BitmapSoftFont, ReducingKeepsThinStrokes)
{
    const auto font = SoftFont::fromPclHeader(headerFormat20(600), {});
    ASSERT_NE(font, nullptr);
    // A frame one dot thick, at both phases of the coarser grid.
    for (int left = 0; left < 2; ++left) {
        Bytes rows;
        rows.u16(0xFFFF);
        for (int i = 0; i < 14; ++i)
            rows.u16(0x8001);
        rows.u16(0xFFFF);
        font->addPclCharacter('o', character(left, 16, 16, 16, 64, rows), {});
        const GlyphMask mask = pixels(*font, 'o', upright(300));
        for (int y = 0; y < mask.height; ++y) {
            int ink = 0;
            for (int x = 0; x < mask.width; ++x)
                ink += hasInk(mask, x, y) ? 1 : 0;
            EXPECT_GE(ink, 2) << left << ' ' << y;
        }
        EXPECT_GE(mask.height, 8);
    }
}

TEST(BitmapSoftFont, GreyReductionIsTheAreaOfInk)
{
    const auto font = SoftFont::fromPclHeader(headerFormat20(600), {});
    font->addPclCharacter('x', character(0, 2, 2, 2, 8, { 0xC0, 0x40 }), {});
    const GlyphMask mask = pixels(*font, 'x', upright(300), GlyphMask::Depth::Coverage);
    int most = 0;
    for (const std::uint8_t byte : mask.bytes)
        most = std::max<int>(most, byte);
    EXPECT_NEAR(most, 191, 2);
}

TEST(BitmapSoftFont, RunLengthRowsDecodeLikePlainOnes)
{
    const auto font = SoftFont::fromPclHeader(headerFormat0(), {});
    // Two copies of a row with four black dots; three rows of one black and three white dots.
    const std::vector<std::uint8_t> runs { 1, 0, 4, 2, 0, 1, 3 };
    ASSERT_TRUE(font->addPclCharacter('F', character(2, 5, 4, 5, 26, runs, 2), {}));
    EXPECT_EQ(art(pixels(*font, 'F', upright(300))), "####\n####\n#...\n#...\n#...\n");
    // A run of 300 white dots is written as 255, 0, 45.
    font->addPclCharacter('w', character(0, 1, 304, 1, 1216, { 0, 255, 0, 45, 4 }, 2), {});
    const GlyphMask wide = pixels(*font, 'w', upright(300));
    ASSERT_EQ(wide.width, 304);
    EXPECT_FALSE(hasInk(wide, 299, 0));
    EXPECT_TRUE(hasInk(wide, 300, 0));
}

TEST(BitmapSoftFont, ContinuationBlocksComplete)
{
    const auto font = SoftFont::fromPclHeader(headerFormat0(), {});
    Bytes first = character(2, 5, 4, 5, 26, { 0xF0, 0xF0 });
    Bytes second;
    second.u8(4).u8(1).u8(0x80).u8(0x80);
    Bytes third;
    third.u8(4).u8(1).u8(0x80);
    EXPECT_TRUE(font->addPclCharacter('F', first, {}));
    EXPECT_TRUE(font->addPclCharacter('F', second, {}));
    EXPECT_TRUE(font->addPclCharacter('F', third, {}));
    EXPECT_EQ(art(pixels(*font, 'F', upright(300))), "####\n####\n#...\n#...\n#...\n");
    quillrip::test::RecordingSink reports;
    EXPECT_FALSE(font->addPclCharacter('F', third, { &reports, 0 }));
    EXPECT_TRUE(reports.has("font.continuation"));
}

TEST(BitmapSoftFont, LandscapeBitmapsAreTurnedUpright)
{
    // Stored as on the sheet: the flag lies on its side, its pole along the sheet's x axis.
    BitmapGlyph stored;
    stored.left = -5;
    stored.top = 6;
    stored.width = 5;
    stored.height = 4;
    stored.bits = { 0xC0, 0xC0, 0xC0, 0xF8 };
    const BitmapGlyph glyph = stored.turnedUpright(1);
    EXPECT_EQ(glyph.width, 4);
    EXPECT_EQ(glyph.height, 5);
    EXPECT_EQ(glyph.left, 3);
    EXPECT_EQ(glyph.top, 5);
    EXPECT_EQ(glyph.bits, kFlag);
    for (int turns = 1; turns < 4; ++turns) {
        BitmapGlyph turned = stored.turnedUpright(turns);
        int ink = 0;
        for (int y = 0; y < turned.height; ++y) {
            for (int x = 0; x < turned.width; ++x)
                ink += turned.ink(x, y) ? 1 : 0;
        }
        EXPECT_EQ(ink, 11);
    }
}

TEST(BitmapSoftFont, OutlineOfABitmapFillsItsDots)
{
    BitmapGlyph ring;
    ring.width = 4;
    ring.height = 4;
    ring.top = 4;
    ring.bits = { 0xF0, 0x90, 0x90, 0xF0 };
    GlyphMask mask;
    // Half a pixel off in scale, so that the outline is used.
    ASSERT_TRUE(ring.rasterise(Matrix::scaling(2.5, -2.5), GlyphMask::Depth::Bits, mask));
    EXPECT_TRUE(hasInk(mask, 2, 1));
    EXPECT_FALSE(hasInk(mask, mask.width / 2, mask.height / 2));
}

TEST(BitmapSoftFont, PclXlCharactersHaveNoAdvanceAndTheirTopAtTheOffset)
{
    Bytes header;
    header.u8(0).u8(0).u16(0).u8(254).u8(0).u16(512).text("BR").u32(4).u16(600).u16(600).u16(0xFFFF).u32(0);
    const auto font = SoftFont::fromPclXlHeader(header, {});
    ASSERT_NE(font, nullptr);
    EXPECT_EQ(font->traits().resolution, 600);
    Bytes data;
    data.u8(0).u8(0).u16(3).u16(0).u16(4).u16(5).bytes(kFlag);
    ASSERT_TRUE(font->addPclXlCharacter(300, data, {}));
    const GlyphMask mask = pixels(*font, 300, upright(600));
    EXPECT_EQ(art(mask), "####\n####\n#...\n#...\n#...\n");
    EXPECT_EQ(mask.left, 3);
    EXPECT_EQ(mask.top, 0);
}

TEST(BitmapSoftFont, ReplacingACharacterChangesTheRevision)
{
    const auto font = SoftFont::fromPclHeader(headerFormat0(), {});
    font->addPclCharacter('F', character(2, 5, 4, 5, 26, kFlag), {});
    EXPECT_NE(font->glyph('F'), kNoGlyph);
    const auto before = font->revision();
    font->addPclCharacter('G', character(2, 5, 4, 5, 26, kFlag), {});
    EXPECT_NE(font->glyph('G'), kNoGlyph);
    EXPECT_EQ(font->revision(), before);
    font->addPclCharacter('F', character(2, 5, 4, 5, 26, { 0xF0, 0, 0, 0, 0 }), {});
    EXPECT_EQ(art(pixels(*font, 'F', upright(300))), "####\n");
    EXPECT_NE(font->revision(), before);
}

TEST(BitmapSoftFont, GalleySegmentNamesSubstitutes)
{
    Bytes header = headerFormat0();
    header[1] = 72;
    header[2] = 16;
    header.u16(0).u16(0).u16(0).u8(254).u8(0);
    header.text("BR").u32(4).u16(300).u16(300);
    header.text("GC").u32(12).u16(0).u16('*').u16(1).u16('a').u16('z').u16('F');
    header.u16(0xFFFF).u32(0).u8(0).checksum(64);
    quillrip::test::RecordingSink reports;
    const auto font = SoftFont::fromPclHeader(header, { &reports, 0 });
    ASSERT_NE(font, nullptr);
    EXPECT_TRUE(reports.diagnostics.empty());
    font->addPclCharacter('F', character(2, 5, 4, 5, 26, kFlag), {});
    EXPECT_EQ(font->glyph('q'), font->glyph('F'));
    EXPECT_EQ(font->glyph('Q'), kNoGlyph);
}

TEST(BitmapSoftFont, TruncatedHeadersAndCharactersNeverCrash)
{
    const Bytes header = headerFormat20(600);
    for (std::size_t length = 0; length < header.size(); ++length) {
        quillrip::test::RecordingSink reports;
        EXPECT_EQ(SoftFont::fromPclHeader(ByteView(header.data(), length), { &reports, 0 }), nullptr) << length;
        EXPECT_FALSE(reports.diagnostics.empty());
    }
    for (const unsigned imageClass : { 1u, 2u }) {
        const Bytes block = character(2, 5, 4, 5, 26, kFlag, imageClass);
        for (std::size_t length = 0; length < block.size(); ++length) {
            const auto font = SoftFont::fromPclHeader(header, {});
            const bool isKept = font->addPclCharacter('F', ByteView(block.data(), length), {});
            EXPECT_EQ(isKept, length >= 16);
            pixels(*font, 'F', upright(300));
        }
    }
}

TEST(BitmapSoftFont, ImpossibleSizesAreRefused)
{
    const auto font = SoftFont::fromPclHeader(headerFormat0(), {});
    quillrip::test::RecordingSink reports;
    EXPECT_FALSE(font->addPclCharacter('a', character(0, 0, 20000, 1, 0, {}), { &reports, 0 }));
    EXPECT_FALSE(font->addPclCharacter('a', character(0, 0, 16384, 17000, 0, {}), { &reports, 0 }));
    EXPECT_FALSE(font->addPclCharacter('a', character(0, 0, 4, 4, 0, {}, 7), { &reports, 0 }));
    EXPECT_TRUE(reports.has("font.character"));
    // Blank characters are common: the space of most fonts.
    EXPECT_TRUE(font->addPclCharacter(' ', character(0, 0, 0, 0, 40, {}), { &reports, 0 }));
    EXPECT_NE(font->glyph(' '), kNoGlyph);
    GlyphMask mask;
    EXPECT_FALSE(font->rasterise(font->glyph(' '), upright(300), GlyphMask::Depth::Bits, {}, mask));
}

TEST(BitmapSoftFont, FewBytesNeverBecomeMuchMemory)
{
    const auto font = SoftFont::fromPclHeader(headerFormat0(), {});
    // Every row 256 times, 16384 dots wide: 20 bytes ask for 32 megabytes.
    const std::vector<std::uint8_t> runs(20, 255);
    ASSERT_TRUE(font->addPclCharacter('a', character(0, 0, 16384, 16384, 0, runs, 2), {}));
    ASSERT_TRUE(font->addPclCharacter('b', character(0, 0, 16384, 16384, 0, { 1, 2, 3 }), {}));
    EXPECT_NE(font->glyph('a'), kNoGlyph);
    EXPECT_LT(font->bytes(), std::size_t { 3 } << 20);
}
