#include "quillrip/pclxl/pixel_converter.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::pclxl;
using Bytes = std::vector<std::uint8_t>;

namespace {

Bytes convert(PixelConverter& converter, const Bytes& source, std::size_t size)
{
    const std::uint8_t* row = converter.convert(source.data());
    return Bytes(row, row + size);
}

PixelMeaning direct(ColorModel model, int bits)
{
    PixelMeaning meaning;
    meaning.model = model;
    meaning.bitsPerComponent = bits;
    return meaning;
}

TEST(XlPixels, GrayBitsAreInkWhereTheyAreZero)
{
    PixelConverter c(direct(ColorModel::Gray, 1), 8, PixelFormat::Rgb24, false);
    EXPECT_EQ(c.format(), ImageFormat::Mono);
    EXPECT_FALSE(c.hasInk());
    EXPECT_EQ(convert(c, { 0xF0 }, 1), (Bytes { 0x0F }));
}

TEST(XlPixels, IndexedBitsAreInkWhereThePaletteIsBlack)
{
    const std::vector<Rgb> palette { { 255, 255, 255 }, { 0, 0, 0 } };
    PixelMeaning meaning = direct(ColorModel::Rgb, 1);
    meaning.isIndexed = true;
    meaning.palette = &palette;
    PixelConverter c(meaning, 8, PixelFormat::Rgb24, false);
    EXPECT_EQ(c.format(), ImageFormat::Mono);
    EXPECT_EQ(convert(c, { 0xF0 }, 1), (Bytes { 0xF0 }));
}

TEST(XlPixels, AColourBesideWhiteIsInkOnlyWhereTheSourceIsCopied)
{
    const std::vector<Rgb> palette { { 255, 255, 255 }, { 200, 0, 50 } };
    PixelMeaning meaning = direct(ColorModel::Rgb, 1);
    meaning.isIndexed = true;
    meaning.palette = &palette;
    PixelConverter copied(meaning, 8, PixelFormat::Rgb24, true);
    EXPECT_EQ(copied.format(), ImageFormat::Mono);
    EXPECT_TRUE(copied.hasInk());
    EXPECT_TRUE((copied.ink() == Rgb { 200, 0, 50 }));
    PixelConverter mixed(meaning, 2, PixelFormat::Rgb24, false);
    EXPECT_EQ(mixed.format(), ImageFormat::Rgb24);
    EXPECT_EQ(convert(mixed, { 0x40 }, 6), (Bytes { 255, 255, 255, 200, 0, 50 }));
}

TEST(XlPixels, NibblesSpreadOverTheWholeRange)
{
    PixelConverter c(direct(ColorModel::Gray, 4), 3, PixelFormat::Rgb24, false);
    EXPECT_EQ(c.format(), ImageFormat::Gray8);
    EXPECT_EQ(convert(c, { 0x0F, 0x80 }, 3), (Bytes { 0, 255, 136 }));
}

TEST(XlPixels, GrayBytesPassUnchanged)
{
    PixelConverter c(direct(ColorModel::Gray, 8), 2, PixelFormat::Gray8, false);
    const Bytes source { 7, 250 };
    EXPECT_EQ(c.convert(source.data()), source.data());
}

TEST(XlPixels, PalettesOfGraysStayGray)
{
    std::vector<Rgb> palette(256);
    palette[3] = { 9, 9, 9 };
    PixelMeaning meaning = direct(ColorModel::Rgb, 8);
    meaning.isIndexed = true;
    meaning.palette = &palette;
    PixelConverter c(meaning, 2, PixelFormat::Rgb24, false);
    EXPECT_EQ(c.format(), ImageFormat::Gray8);
    EXPECT_EQ(convert(c, { 3, 0 }, 2), (Bytes { 9, 0 }));
    palette[4] = { 1, 2, 3 };
    PixelConverter colour(meaning, 2, PixelFormat::Rgb24, false);
    EXPECT_EQ(convert(colour, { 4, 3 }, 6), (Bytes { 1, 2, 3, 9, 9, 9 }));
}

TEST(XlPixels, RgbOfAllDepthsIsUnpacked)
{
    PixelConverter bytes(direct(ColorModel::Rgb, 8), 1, PixelFormat::Rgb24, false);
    EXPECT_EQ(convert(bytes, { 1, 2, 3 }, 3), (Bytes { 1, 2, 3 }));
    PixelConverter nibbles(direct(ColorModel::Srgb, 4), 2, PixelFormat::Rgb24, false);
    EXPECT_EQ(convert(nibbles, { 0x0F, 0x12, 0x34 }, 6), (Bytes { 0, 255, 17, 34, 51, 68 }));
    PixelConverter bits(direct(ColorModel::Rgb, 1), 3, PixelFormat::Rgb24, false);
    EXPECT_EQ(convert(bits, { 0xA5, 0x80 }, 9), (Bytes { 255, 0, 255, 0, 0, 255, 0, 255, 255 }));
}

TEST(XlPixels, GrayPagesGetLuminance)
{
    PixelConverter c(direct(ColorModel::Rgb, 8), 2, PixelFormat::Gray8, false);
    EXPECT_EQ(c.format(), ImageFormat::Gray8);
    EXPECT_EQ(convert(c, { 255, 0, 0, 255, 255, 255 }, 2), (Bytes { 76, 255 }));
}

} // namespace
