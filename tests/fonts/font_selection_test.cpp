#include "font_test_helpers.h"
#include "quillrip/fonts/font_library.h"
#include "quillrip/fonts/select/font_selection.h"

#include <gtest/gtest.h>

using namespace quillrip;

namespace {

struct Case {
    const char* commands; ///< without escapes: "(8U(s0p10h0s0b4099T"
    const char* name;
    double height;
    double pitch;
};

std::string escaped(const std::string& text)
{
    std::string result;
    for (const char c : text) {
        if (c == '(')
            result += '\x1B';
        result += c;
    }
    return result;
}

Font selected(const FontLibrary& library, const std::string& commands, const SelectionContext& context = {})
{
    const std::string text = escaped(commands);
    return library.selectByEscapeSequence({ reinterpret_cast<const std::uint8_t*>(text.data()), text.size() }, context);
}

/// A bitmap font of that pitch and height in dots, in set 8U.
std::shared_ptr<SoftFont> bitmapFont(unsigned pitchQuarters, unsigned heightQuarters, unsigned style, int weight,
    unsigned family, unsigned symbolSet = 277, unsigned orientation = 0)
{
    Bytes header;
    header.u16(64).u8(0).u8(1).u8(style >> 8).u8(0).u16(30).u16(30).u16(40).u8(orientation).u8(0).u16(symbolSet);
    header.u16(pitchQuarters).u16(heightQuarters).u16(0).u8(0).u8(style & 255).u8(static_cast<unsigned>(weight) & 255);
    header.u8(family & 255).u8(family >> 8).zeros(64 - 27);
    return SoftFont::fromPclHeader(header, {});
}

} // namespace

TEST(FontSelection, BuiltInFacesFollowTheOrderOfPriority)
{
    const Case cases[] = {
        // The defaults: fixed, 10 pitch, upright, medium.
        { "(8U(s0p10h12v0s0b4099T", "Courier", 12, 10 },
        { "(8U(s0p12h10v0s0b4099T", "Courier", 10, 12 },
        { "(8U(s0p16.67h12v0s0b4099T", "Courier", 7.2, 16.67 },
        { "(8U(s0p10h12v0s3b4099T", "Courier Bold", 12, 10 },
        { "(8U(s0p10h12v1s3b4099T", "Courier Bold Italic", 12, 10 },
        { "(8U(s0p12h12v0s0b4102T", "Letter Gothic", 12, 12 },
        { "(10U(s1p12v0s0b4101T", "CG Times", 12, 0 },
        { "(19U(s1p14.25v1s3b4148T", "Univers Bold Italic", 14.25, 0 },
        { "(19U(s1p14v4s0b4148T", "Univers Condensed Medium", 14, 0 },
        { "(19U(s1p14v5s3b4148T", "Univers Condensed Bold Italic", 14, 0 },
        { "(8U(s1p24v0s1b4362T", "Albertus Medium", 24, 0 },
        { "(8U(s1p24v0s4b4362T", "Albertus Extra Bold", 24, 0 },
        { "(8U(s1p24v4s3b4140T", "Clarendon Condensed Bold", 24, 0 },
        { "(8U(s1p24v1s0b4116T", "Coronet", 24, 0 },
        { "(19U(s1p10v0s0b16602T", "Arial", 10, 0 },
        { "(19U(s1p10v0s3b16901T", "Times New Roman Bold", 10, 0 },
        // Faces that are bound to a set are found by it alone, and by no other.
        { "(19M(s1p12v0s0b16686T", "Symbol", 12, 0 },
        { "(579L(s1p12v0s0b31402T", "Wingdings", 12, 0 },
        { "(8U(s1p12v0s0b16686T", "CG Times", 12, 0 },
        { "(19M(s0p10h0s0b4099T", "Symbol", 12, 0 },
        { "(14L(s1p12v0s0b45101T", "ITC Zapf Dingbats", 12, 0 },
        { "(10L(s1p12v0s0b45101T", "ITC Zapf Dingbats", 12, 0 },
        // Weight comes before typeface: the next heavier one first, then the closest lighter.
        { "(8U(s1p12v0s1b4101T", "Albertus Medium", 12, 0 },
        { "(8U(s1p12v0s2b4101T", "CG Times Bold", 12, 0 },
        { "(8U(s1p12v0s7b4101T", "Albertus Extra Bold", 12, 0 },
        { "(8U(s1p12v1s7b4101T", "CG Times Bold Italic", 12, 0 },
        { "(8U(s1p12v0s-3b4101T", "CG Times", 12, 0 },
        // Style comes before both; a style that nobody has is ignored.
        { "(8U(s1p12v32s0b4101T", "CG Times", 12, 0 },
        // A bold italic Letter Gothic does not exist, and the typeface yields.
        { "(8U(s0p12h12v1s3b4102T", "Courier Bold Italic", 10, 12 },
        // Typefaces by number without vendor, and unknown ones.
        { "(8U(s0p10h12v0s0b3T", "Courier", 12, 10 },
        { "(8U(s1p12v0s0b5T", "CG Times", 12, 0 },
        { "(8U(s1p12v0s0b52T", "Univers Medium", 12, 0 },
        { "(8U(s1p12v0s0b17T", "CG Omega", 12, 0 },
        { "(8U(s1p12v0s0b9999T", "CG Times", 12, 0 },
        { "(8U(s0p10h12v0s0b9999T", "Courier", 12, 10 },
        // Faces of later devices, when their family is asked for.
        { "(8U(s1p12v0s0b24580T", "Helvetica", 12, 0 },
        { "(8U(s1p12v4s3b24580T", "Helvetica Narrow Bold", 12, 0 },
        { "(8U(s1p12v0s2b24607T", "ITC Avant Garde Demi", 12, 0 },
        { "(8U(s1p12v0s-3b24623T", "ITC Bookman Light", 12, 0 },
        { "(8U(s1p12v1s0b24703T", "New Century Schoolbook Italic", 12, 0 },
        { "(8U(s1p12v0s0b4T", "Helvetica", 12, 0 },
        // The face of one size: by its pitch and height, when the typeface is its own or unknown.
        { "(8U(s0p16.67h8.5v0s0b0T", "Line Printer", 8.5, 16.67 },
        { "(10U(s0p16.66h8.5v0s0b0T", "Line Printer", 8.5, 16.67 },
        { "(8U(s0p16.67h8.5v0s0b4099T", "Courier", 7.2, 16.67 },
        { "(8U(s0p10h8.5v0s0b0T", "Courier", 12, 10 },
        // A set that nobody knows: the default set's fonts.
        { "(77Z(s1p12v0s0b4148T", "Univers Medium", 12, 0 },
        // Heights are in quarter points, and absurd ones are cut.
        { "(8U(s1p10.1v0s0b4101T", "CG Times", 10, 0 },
        { "(8U(s1p5000v0s0b4101T", "CG Times", 999.75, 0 },
        { "(8U(s0p0h12v0s0b4099T", "Courier", 12, 10 },
    };
    const FontLibrary library;
    for (const Case& c : cases) {
        const Font font = selected(library, c.commands);
        ASSERT_TRUE(font) << c.commands;
        EXPECT_EQ(font.face->traits().name, c.name) << c.commands;
        EXPECT_NEAR(font.height, c.height, 0.01) << c.commands;
        EXPECT_NEAR(font.pitch, c.pitch, 0.005) << c.commands;
    }
}

TEST(FontSelection, TheSymbolSetGoesWithTheFont)
{
    const FontLibrary library;
    EXPECT_EQ(selected(library, "(10U(s1p12v0s0b4101T").symbolSet->number(), 341);
    EXPECT_EQ(selected(library, "(6M(s1p12v0s0b4101T").symbolSet->number(), symbolSetNumber(5, 'M'));
    EXPECT_EQ(selected(library, "(77Z(s1p12v0s0b4101T").symbolSet->number(), kRoman8);
    EXPECT_EQ(selected(library, "(19M(s1p12v0s0b16686T").symbolSet, nullptr);
    SelectionContext german;
    german.defaultSymbolSet = symbolSetNumber(1, 'G');
    EXPECT_EQ(selected(library, "(77Z(s1p12v0s0b4101T", german).symbolSet->number(), symbolSetNumber(1, 'G'));
}

TEST(FontSelection, UnknownSymbolSetIsReported)
{
    quillrip::test::RecordingSink reports;
    const FontLibrary library({}, &reports);
    selected(library, "(77Z(s1p12v0s0b4101T");
    EXPECT_TRUE(reports.has("font.symbol-set"));
}

TEST(FontSelection, SoftFontGoesBeforeABuiltInOneWithTheSameAttributes)
{
    FontLibrary library;
    // 10 pitch: 30 dots; 12 points: 50 dots.
    library.softFonts().put({ 7, "" }, bitmapFont(120, 200, 0, 0, 4099), {});
    EXPECT_EQ(selected(library, "(8U(s0p10h12v0s0b4099T").face, library.softFonts().find({ 7, "" }));
    EXPECT_EQ(selected(library, "(8U(s0p10h12v0s3b4099T").face->traits().name, "Courier Bold");
    EXPECT_EQ(selected(library, "(8U(s0p12h10v0s0b4099T").face->traits().name, "Courier");
    EXPECT_EQ(selected(library, "(10U(s0p10h12v0s0b4099T").face->traits().name, "Courier");
    SelectionContext outlines;
    outlines.allowsBitmapFonts = false;
    EXPECT_EQ(selected(library, "(8U(s0p10h12v0s0b4099T", outlines).face->traits().name, "Courier");
}

TEST(FontSelection, LowestIdWinsAmongEqualSoftFonts)
{
    FontLibrary library;
    library.softFonts().put({ 9, "" }, bitmapFont(120, 200, 0, 0, 4099), {});
    library.softFonts().put({ 2, "" }, bitmapFont(120, 200, 0, 0, 4099), {});
    EXPECT_EQ(selected(library, "(8U(s0p10h12v0s0b4099T").face, library.softFonts().find({ 2, "" }));
}

TEST(FontSelection, OrientationDecidesLast)
{
    FontLibrary library;
    library.softFonts().put({ 1, "" }, bitmapFont(120, 200, 0, 0, 4099, 277, 0), {});
    library.softFonts().put({ 2, "" }, bitmapFont(120, 200, 0, 0, 4099, 277, 1), {});
    SelectionContext landscape;
    landscape.orientation = 1;
    EXPECT_EQ(selected(library, "(8U(s0p10h12v0s0b4099T", landscape).face, library.softFonts().find({ 2, "" }));
    EXPECT_EQ(selected(library, "(8U(s0p10h12v0s0b4099T").face, library.softFonts().find({ 1, "" }));
}

TEST(FontSelection, BitmapPitchIsTheNextGreaterOneElseTheClosestSmaller)
{
    FontTraits coarse;
    coarse.isScalable = false;
    coarse.isFixedSize = true;
    coarse.isProportional = false;
    coarse.height = 12;
    coarse.pitch = 10;
    FontTraits fine = coarse;
    fine.pitch = 15;
    const std::vector<SelectionCandidate> candidates { { &coarse, true, 0, false }, { &fine, true, 1, false } };
    const auto at = [&](double pitch) {
        FontRequest request;
        request.pitch = pitch;
        return selectByCharacteristics(candidates, { 0, 1 }, request, {});
    };
    EXPECT_EQ(at(9), 0u);
    EXPECT_EQ(at(10), 0u);
    EXPECT_EQ(at(10.004), 0u);
    EXPECT_EQ(at(11), 1u);
    EXPECT_EQ(at(14.9), 1u);
    EXPECT_EQ(at(20), 1u);
}

TEST(FontSelection, BitmapHeightIsTheClosest)
{
    FontTraits small;
    small.isScalable = false;
    small.isFixedSize = true;
    small.height = 8;
    FontTraits large = small;
    large.height = 14;
    const std::vector<SelectionCandidate> candidates { { &small, true, 0, false }, { &large, true, 1, false } };
    const auto at = [&](double height) {
        FontRequest request;
        request.isProportional = true;
        request.height = height;
        return selectByCharacteristics(candidates, { 0, 1 }, request, {});
    };
    EXPECT_EQ(at(10), 0u);
    EXPECT_EQ(at(12), 1u);
    EXPECT_EQ(at(100), 1u);
}

TEST(FontSelection, LightRequestsPreferLighterFonts)
{
    FontTraits light;
    light.weight = -5;
    FontTraits medium = light;
    medium.weight = 0;
    FontTraits bold = light;
    bold.weight = 3;
    const std::vector<SelectionCandidate> candidates { { &light, true, 0, false }, { &medium, true, 1, false },
        { &bold, true, 2, false } };
    const auto at = [&](int weight) {
        FontRequest request;
        request.isProportional = true;
        request.weight = weight;
        return selectByCharacteristics(candidates, { 0, 1, 2 }, request, {});
    };
    EXPECT_EQ(at(-3), 0u);
    EXPECT_EQ(at(-7), 0u);
    EXPECT_EQ(at(0), 1u);
    EXPECT_EQ(at(1), 2u);
    EXPECT_EQ(at(7), 2u);
}

TEST(FontSelection, ComplementKeepsAnUnboundFontFromSetsItLacks)
{
    Bytes data;
    // Requires bit 31 in the Unicode index.
    data.u16(18).u16(symbolSetNumber(5, 'Q')).u8(3).u8(1).u16(0x41).u16(0x41).u32(0).u32(0x80000001).u16('A');
    const auto set = SymbolSet::parse(data, {});
    ASSERT_NE(set, nullptr);
    FontTraits unbound;
    unbound.isBoundToSet = false;
    unbound.domain = CodeDomain::Unicode;
    unbound.complement = 6;
    EXPECT_TRUE(canPrint(unbound, set->number(), set.get()));
    unbound.complement = 0x80000006;
    EXPECT_FALSE(canPrint(unbound, set->number(), set.get()));
}

TEST(FontSelection, ByIdTakesOverTheFontsAttributes)
{
    FontLibrary library;
    library.softFonts().put({ 3, "" }, bitmapFont(150, 100, 1, 3, 8, 14), {});
    FontRequest request;
    request.isProportional = true;
    const Font font = library.selectById({ 3, "" }, request, {});
    ASSERT_TRUE(font);
    EXPECT_NEAR(font.pitch, 8, 0.001);
    EXPECT_NEAR(font.height, 6, 0.001);
    EXPECT_EQ(request.symbolSet, 14);
    EXPECT_FALSE(request.isProportional);
    EXPECT_NEAR(request.pitch, 8, 0.001);
    EXPECT_EQ(request.style, 1);
    EXPECT_EQ(request.weight, 3);
    EXPECT_EQ(request.family, 8);
    const FontRequest before = request;
    EXPECT_FALSE(library.selectById({ 4, "" }, request, {}));
    EXPECT_EQ(request.family, before.family);
}

TEST(FontSelection, UserDefinedSymbolSetsCanBeSelectedAndDeleted)
{
    FontLibrary library;
    Bytes data;
    data.u16(18).u16(symbolSetNumber(5, 'Q')).u8(3).u8(1).u16(0x41).u16(0x41).zeros(8).u16(0x3B1);
    library.defineSymbolSet(SymbolSet::parse(data, {}));
    const Font font = selected(library, "(5Q(s1p12v0s0b4101T");
    ASSERT_NE(font.symbolSet, nullptr);
    EXPECT_EQ(font.symbolSet->unicode(0x41), 0x3B1u);
    library.setSymbolSetPermanent(symbolSetNumber(5, 'Q'), true);
    library.removeTemporarySymbolSets();
    EXPECT_NE(library.symbolSet(symbolSetNumber(5, 'Q')), nullptr);
    library.removeSymbolSet(symbolSetNumber(5, 'Q'));
    EXPECT_EQ(library.symbolSet(symbolSetNumber(5, 'Q')), nullptr);
}

TEST(FontSelection, RepeatedSelectionsFollowChangesOfTheFonts)
{
    FontLibrary library;
    const char* const request = "(8U(s0p10h12v0s0b4099T";
    EXPECT_EQ(selected(library, request).face->traits().name, "Courier");
    library.softFonts().put({ 7, "" }, bitmapFont(120, 200, 0, 0, 4099), {});
    EXPECT_EQ(selected(library, request).face, library.softFonts().find({ 7, "" }));
    library.softFonts().remove({ 7, "" });
    EXPECT_EQ(selected(library, request).face->traits().name, "Courier");
    Bytes data;
    data.u16(18).u16(kRoman8).u8(3).u8(1).u16(0x41).u16(0x41).zeros(8).u16(0x3B1);
    library.defineSymbolSet(SymbolSet::parse(data, {}));
    EXPECT_EQ(selected(library, request).symbolSet->unicode(0x41), 0x3B1u);
    library.removeAllSymbolSets();
    EXPECT_EQ(selected(library, request).symbolSet->unicode(0x41), U'A');
}
