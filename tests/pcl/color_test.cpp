#include "quillrip/pcl/palette.h"
#include "tests/pcl/printer.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace quillrip;
using namespace quillrip::test;
using quillrip::pcl::ColorModel;
using quillrip::pcl::Palette;

namespace {

constexpr Rgb kRed { 255, 0, 0 };

std::string cid(int space, int encoding, int bits, int primaryBits = 8)
{
    return command("*v", "W", bytes({ space, encoding, bits, primaryBits, primaryBits, primaryBits }));
}

std::string plane(std::initializer_list<int> data) { return command("*b", "V", bytes(data)); }
std::string row(std::initializer_list<int> data) { return command("*b", "W", bytes(data)); }

const std::string kBox = e("*c10a10b0P");

ColorModel modelOf(const std::string& data)
{
    const auto model = ColorModel::parse({ reinterpret_cast<const std::uint8_t*>(data.data()), data.size() });
    EXPECT_TRUE(model);
    return model.value_or(ColorModel());
}

std::string floatBytes(std::initializer_list<float> values)
{
    std::string result;
    for (const float value : values) {
        std::uint32_t bits;
        std::memcpy(&bits, &value, 4);
        for (int shift = 24; shift >= 0; shift -= 8)
            result.push_back(static_cast<char>(bits >> shift));
    }
    return result;
}

void expectNear(Rgb a, Rgb b, int tolerance)
{
    EXPECT_NEAR(a.red, b.red, tolerance);
    EXPECT_NEAR(a.green, b.green, tolerance);
    EXPECT_NEAR(a.blue, b.blue, tolerance);
}

} // namespace

TEST(PclColor, SimplePalettesPaintForegroundColours)
{
    const Printed rgb = printColor(kStart + e("*r3U") + e("*v1S") + at(0, 0) + kBox + e("*v6S") + at(20, 0) + kBox);
    EXPECT_EQ(rgb.color(75, 0), kRed);
    EXPECT_EQ(rgb.color(95, 0), (Rgb { 0, 255, 255 }));
    const Printed cmy = printColor(kStart + e("*r-3U") + e("*v1S") + at(0, 0) + kBox);
    EXPECT_EQ(cmy.color(75, 0), (Rgb { 0, 255, 255 }));
}

TEST(PclColor, PlanesMakeIndicesFirstPlaneLowest)
{
    const Printed printed = printColor(kStart + e("*r-3U") + e("*t300R") + at(0, 0) + e("*r8s1t1A") + plane({ 0xC0 })
        + plane({ 0xA0 }) + row({ 0x80 }));
    EXPECT_EQ(printed.color(75, 0), kBlack); // all three
    EXPECT_EQ(printed.color(76, 0), (Rgb { 0, 255, 255 }));
    EXPECT_EQ(printed.color(77, 0), (Rgb { 255, 0, 255 }));
    EXPECT_EQ(printed.color(78, 0), kWhite);
}

TEST(PclColor, PlanesThatWereNotSentAreZero)
{
    const Printed printed
        = printColor(kStart + e("*r-3U") + e("*t300R") + at(0, 0) + e("*r8s2t1A") + row({ 0x80 }) + row({ 0 }));
    EXPECT_EQ(printed.color(75, 0), (Rgb { 0, 255, 255 }));
}

TEST(PclColor, FourInkPlanesOfInkjets)
{
    const Printed printed = printColor(kStart + e("*r-4U") + e("*t300R") + at(0, 0) + e("*r8s1A") + plane({ 0x80 })
        + plane({ 0x40 }) + plane({ 0x60 }) + row({ 0 }));
    EXPECT_EQ(printed.color(75, 0), kBlack);
    EXPECT_EQ(printed.color(76, 0), (Rgb { 0, 0, 255 }));
    EXPECT_EQ(printed.color(77, 0), (Rgb { 255, 0, 255 }));
}

TEST(PclColor, RgbPlanesOfZerosAreBlack)
{
    const Printed printed = printColor(kStart + e("*r3U") + e("*t300R") + at(0, 0) + e("*r8s2t1A") + plane({ 0xFF })
        + plane({ 0xFF }) + row({ 0xF0 }));
    EXPECT_EQ(printed.color(75, 0), kWhite);
    EXPECT_EQ(printed.color(80, 0), (Rgb { 255, 255, 0 }));
    EXPECT_EQ(printed.color(75, 1), kBlack); // the row that never came
}

TEST(PclColor, PaletteEntriesAndForeground)
{
    const Printed printed = printColor(kStart + cid(0, 1, 2) + e("*v200a30b30c1I") + e("*v1S") + at(0, 0) + kBox
        + e("*v0a0b255c1I") + at(20, 0) + kBox + e("*v1S") + at(40, 0) + kBox);
    EXPECT_EQ(printed.color(75, 0), (Rgb { 200, 30, 30 }));
    EXPECT_EQ(printed.color(95, 0), (Rgb { 200, 30, 30 })); // the foreground keeps the colour it was chosen with
    EXPECT_EQ(printed.color(115, 0), (Rgb { 0, 0, 255 }));
}

TEST(PclColor, FixedPalettesCannotBeChanged)
{
    EXPECT_EQ(printColor(kStart + e("*r3U") + e("*v9a9b9c1I") + e("*v1S") + at(0, 0) + kBox).color(75, 0), kRed);
}

TEST(PclColor, ColourInkjetsOf180DpiProgramTheirThreePlanesInPercentOfReflectedLight)
{
    const Printed printed = printColor(kStart + e("*t180R") + e("*r3U") + e("*v90a88b85c0I") + e("*v4a4b6c1I")
        + e("*v90a4b6c2I") + e("*v1S") + at(0, 0) + kBox + e("*v2S") + at(20, 0) + kBox);
    EXPECT_EQ(printed.color(75, 0), kBlack);
    EXPECT_EQ(printed.color(95, 0), kRed);
}

TEST(PclColor, PalettesArePushedStoredAndSelected)
{
    const std::string setup = cid(0, 1, 2) + e("*v200a0b0c1I");
    EXPECT_EQ(printColor(kStart + setup + e("*p0P") + e("*v0a200b0c1I") + e("*p1P") + e("*v1S") + at(0, 0) + kBox)
                  .color(75, 0),
        (Rgb { 200, 0, 0 }));
    EXPECT_EQ(printColor(kStart + setup + e("&p5i6C") + e("*v0a200b0c1I") + e("&p5S") + e("*v1S") + at(0, 0) + kBox)
                  .color(75, 0),
        (Rgb { 200, 0, 0 }));
    EXPECT_EQ(printColor(kStart + setup + e("&p5i6C") + e("&p5i2C") + e("*v0a200b0c1I") + e("&p5S") + e("*v1S")
                  + at(0, 0) + kBox)
                  .color(75, 0),
        (Rgb { 0, 200, 0 }));
    EXPECT_EQ(printColor(kStart + setup + e("&p0C") + e("*v1S") + at(0, 0) + kBox).color(75, 0), kBlack);
}

TEST(PclColor, DirectPixels)
{
    const Printed printed = printColor(
        kStart + cid(0, 3, 8) + e("*t300R") + at(0, 0) + e("*r2s1t1A") + row({ 10, 20, 30, 255, 255, 254 }));
    EXPECT_EQ(printed.color(75, 0), (Rgb { 10, 20, 30 }));
    EXPECT_EQ(printed.color(76, 0), (Rgb { 255, 255, 254 }));
    const Printed planes = printColor(kStart + cid(0, 2, 1, 1) + e("*t300R") + at(0, 0) + e("*r8s1t1A")
        + plane({ 0xC0 }) + plane({ 0x80 }) + row({ 0x80 }));
    EXPECT_EQ(planes.color(75, 0), kWhite);
    EXPECT_EQ(planes.color(76, 0), kRed);
}

TEST(PclColor, DirectCmyIsTheComplement)
{
    const Printed printed
        = printColor(kStart + cid(1, 3, 8) + e("*t300R") + at(0, 0) + e("*r1s1t1A") + row({ 255, 0, 55 }));
    EXPECT_EQ(printed.color(75, 0), (Rgb { 0, 255, 200 }));
}

TEST(PclColor, IllegalImageDataConfigurationsAreIgnored)
{
    for (const std::string& bad :
        { bytes({ 5, 0, 1, 8, 8, 8 }), bytes({ 0, 4, 1, 8, 8, 8 }), bytes({ 0, 0, 9, 8, 8, 8 }),
            bytes({ 0, 1, 3, 8, 8, 8 }), bytes({ 3, 2, 1, 1, 1, 1 }), bytes({ 0, 3, 8, 4, 4, 4 }), bytes({ 0, 1 }) }) {
        const Printed printed = printColor(kStart + command("*v", "W", bad) + e("*v1S") + at(0, 0) + kBox);
        EXPECT_EQ(printed.color(75, 0), kBlack);
        EXPECT_TRUE(printed.warnedOf("pcl.image-data"));
    }
}

TEST(PclColor, ReferencesScaleComponents)
{
    const std::string references = bytes({ 0, 3, 8, 8, 8, 8, 0, 100, 0, 100, 0, 100, 0, 0, 0, 0, 0, 0 });
    EXPECT_EQ(modelOf(references).toRgb({ 50, 100, 0 }), (Rgb { 128, 255, 0 }));
}

TEST(PclColor, LabAndColorimetricSpacesReachWhiteBlackAndPrimaries)
{
    const ColorModel lab = modelOf(bytes({ 3, 1, 8, 8, 8, 8 }));
    expectNear(lab.toRgb({ 100, 0, 0 }), kWhite, 1);
    expectNear(lab.toRgb({ 0, 0, 0 }), kBlack, 1);
    expectNear(lab.toRgb({ 53.24, 80.09, 67.20 }), kRed, 2);
    const ColorModel colorimetric = modelOf(bytes({ 2, 3, 8, 8, 8, 8 }));
    expectNear(colorimetric.toRgb({ 1, 1, 1 }), kWhite, 1);
    expectNear(colorimetric.toRgb({ 0, 0, 0 }), kBlack, 1);
    const ColorModel luminance = modelOf(bytes({ 4, 3, 8, 8, 8, 8 }));
    expectNear(luminance.toRgb({ 1, 0, 0 }), kWhite, 1);
    expectNear(luminance.toRgb({ 0, 0, 0 }), kBlack, 1);
}

TEST(PclColor, LongFormGivesPrimariesOfItsOwn)
{
    std::string data = bytes({ 2, 3, 8, 8, 8, 8 });
    data += floatBytes({ 0.64f, 0.33f, 0.30f, 0.60f, 0.15f, 0.06f, 0.3127f, 0.3290f });
    data += floatBytes({ 1, 1, 1, 1, 1, 1 });
    data += floatBytes({ 0, 1, 0, 1, 0, 1 });
    const ColorModel model = modelOf(data);
    expectNear(model.toRgb({ 1, 0, 0 }), kRed, 1);
    expectNear(model.toRgb({ 0.2140, 0.2140, 0.2140 }), { 128, 128, 128 }, 1);
}

TEST(PclColor, NumbersThatAreNoneGiveColoursAllTheSame)
{
    std::string data = bytes({ 2, 3, 8, 8, 8, 8 });
    data += std::string(80, '\xFF'); // not-a-numbers
    modelOf(data).toRgb({ 1, 1, 1 });
    data = bytes({ 4, 3, 8, 8, 8, 8 }) + std::string(116, '\0');
    modelOf(data).toRgb({ 1, 1, 1 });
}

TEST(PclColor, GammaLookupAndRenderAlgorithms)
{
    const std::string setup = kStart + cid(0, 1, 2) + e("*v64a128b200c1I");
    expectNear(printColor(setup + e("*t2I") + e("*v1S") + at(0, 0) + kBox).color(75, 0), { 128, 181, 226 }, 1);
    EXPECT_EQ(printColor(setup + e("*t1J") + e("*v1S") + at(0, 0) + kBox).color(75, 0), (Rgb { 0, 255, 255 }));
    EXPECT_EQ(printColor(setup + e("*t2J") + e("*v1S") + at(0, 0) + kBox).color(75, 0), kBlack);
    const std::uint8_t light = luminance({ 64, 128, 200 });
    EXPECT_EQ(printColor(setup + e("*t5J") + e("*v1S") + at(0, 0) + kBox).color(75, 0), (Rgb { light, light, light }));
    std::string inverting = bytes({ 0, 0 });
    for (int table = 0; table < 3; ++table) {
        for (int i = 0; i < 256; ++i)
            inverting.push_back(static_cast<char>(255 - i));
    }
    EXPECT_EQ(printColor(setup + command("*l", "W", inverting) + e("*v1S") + at(0, 0) + kBox).color(75, 0),
        (Rgb { 191, 127, 55 }));
    EXPECT_EQ(printColor(setup + command("*l", "W", inverting) + e("*l0W") + e("*v1S") + at(0, 0) + kBox).color(75, 0),
        (Rgb { 64, 128, 200 }));
}

// Programs choose the gamma, palette entries and the render algorithm when they have started the raster already.
TEST(PclColor, ColoursMayBeSetBetweenARastersStartAndItsFirstRow)
{
    const std::string start = kStart + e("*t300R") + cid(0, 3, 8) + at(0, 10) + e("*r2s30t1A");
    const Printed gamma = printColor(start + e("*t2I") + row({ 64, 64, 64, 255, 0, 0 }));
    expectNear(gamma.color(75, 10), { 128, 128, 128 }, 1);
    EXPECT_EQ(gamma.color(76, 10), kRed);
    const std::string indexed = kStart + e("*t300R") + cid(0, 1, 8) + at(0, 10) + e("*r2s30t1A");
    const Printed entry = printColor(indexed + e("*v255a0b0c1I") + row({ 1, 0 }) + e("*v0a255b0c1I") + row({ 1, 0 }));
    EXPECT_EQ(entry.color(75, 10), kRed);
    // Behind a row they end the raster, below the height it declared.
    EXPECT_EQ(entry.color(75, 40), (Rgb { 0, 255, 0 }));
}

TEST(PclColor, MonochromeModePrintsLuminance)
{
    const std::uint8_t light = luminance(kRed);
    const Printed printed = printColor(kStart + e("&b1M") + e("*r3U") + e("*v1S") + at(0, 0) + kBox + at(20, 0)
        + e("*t300r8s1t1A") + plane({ 0x80 }) + plane({ 0 }) + row({ 0 }));
    EXPECT_EQ(printed.color(75, 0), (Rgb { light, light, light }));
    EXPECT_EQ(printed.color(95, 0), (Rgb { light, light, light }));
}

TEST(PclColor, BlackAndWhiteRasterTakesTheForeground)
{
    const Printed printed
        = printColor(kStart + e("*r3U") + e("*v1S") + e("*r1U") + e("*t300R") + at(0, 0) + e("*r1A") + row({ 0x80 }));
    EXPECT_EQ(printed.color(75, 0), kRed);
    EXPECT_EQ(printed.color(76, 0), kWhite);
}

TEST(PclColor, ComponentsOfDifferentResolutions)
{
    // Black at 600, colours at 300 with four levels in two planes, least significant first.
    const std::string configuration = bytes({ 2, 4, 0x02, 0x58, 0x02, 0x58, 0, 2, 0x01, 0x2C, 0x01, 0x2C, 0, 4, 0x01,
        0x2C, 0x01, 0x2C, 0, 4, 0x01, 0x2C, 0x01, 0x2C, 0, 4 });
    PrinterSettings settings;
    settings.format = PixelFormat::Rgb24;
    settings.dotsPerInch = 600;
    const Printed printed
        = print(kStart + command("*g", "W", configuration) + at(0, 0) + e("*r8s1A") + plane({ 0x80 }) + plane({ 0x40 })
                + plane({ 0 }) + plane({ 0x40 }) + plane({ 0x40 }) + plane({ 0 }) + plane({ 0 }) + row({ 0 }),
            settings);
    EXPECT_EQ(printed.color(150, 0), kBlack);
    EXPECT_EQ(printed.color(151, 1), kBlack);
    EXPECT_EQ(printed.color(152, 0), (Rgb { 64, 127, 255 })); // cyan 2 of 3, magenta 1 of 3
    EXPECT_EQ(printed.color(154, 0), kWhite);
}

TEST(PclColor, ComponentsOfOneLevelAreBitsOfInk)
{
    const std::string one = bytes({ 0x01, 0x2C, 0x01, 0x2C, 0, 1 });
    const Printed printed = printColor(kStart + command("*g", "W", bytes({ 2, 3 }) + one + one + one) + at(0, 0)
        + e("*r8s1A") + plane({ 0x80 }) + plane({ 0xC0 }) + row({ 0x20 }));
    EXPECT_EQ(printed.color(75, 0), (Rgb { 0, 0, 255 }));
    EXPECT_EQ(printed.color(76, 0), (Rgb { 255, 0, 255 }));
    EXPECT_EQ(printed.color(77, 0), (Rgb { 255, 255, 0 }));
    EXPECT_EQ(printed.color(78, 0), kWhite);
}

TEST(PclColor, WidthAndOffsetsCountPixelsOfTheCoarsestComponent)
{
    const std::string configuration = bytes({ 2, 4, 0x02, 0x58, 0x02, 0x58, 0, 2, 0x01, 0x2C, 0x01, 0x2C, 0, 2, 0x01,
        0x2C, 0x01, 0x2C, 0, 2, 0x01, 0x2C, 0x01, 0x2C, 0, 2 });
    PrinterSettings settings;
    settings.format = PixelFormat::Rgb24;
    settings.dotsPerInch = 600;
    // Eight coarse pixels are two bytes of black and one of each colour; three coarse rows are six fine ones.
    const Printed printed = print(kStart + command("*g", "W", configuration) + at(0, 0) + e("*r8s1A") + e("*b3Y")
            + plane({ 0, 0x01 }) + plane({ 0, 0 }) + plane({ 0x01 }) + plane({ 0 }) + row({ 0 }),
        settings);
    EXPECT_EQ(printed.color(150 + 15, 6), kBlack);
    EXPECT_EQ(printed.color(150 + 14, 7), (Rgb { 0, 255, 255 }));
    EXPECT_EQ(printed.color(150 + 13, 6), kWhite);
    EXPECT_EQ(printed.color(150 + 15, 5), kWhite);
}

TEST(PclColor, EveryPaletteIndexCountsModuloTheSize)
{
    const Palette palette;
    EXPECT_EQ(palette.color(2), kWhite);
    EXPECT_EQ(palette.color(3), kBlack);
}
