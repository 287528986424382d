#include "quillrip/fonts/select/windows_fonts.h"

#include "quillrip/fonts/select/windows_faces.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace quillrip::test {
namespace {

std::vector<std::uint8_t> fileOf(const std::string& name)
{
    for (const char* folder : { "/usr/share/fonts/truetype/liberation2/", "/usr/share/fonts/truetype/liberation/" }) {
        std::ifstream file(folder + name, std::ios::binary);
        if (file)
            return { std::istreambuf_iterator<char>(file), {} };
    }
    return {};
}

WindowsFontRequest request(const std::string& face, int weight = 400, bool isItalic = false)
{
    WindowsFontRequest result;
    result.face = face;
    result.weight = weight;
    result.isItalic = isItalic;
    return result;
}

TEST(WindowsFonts, ChecksumOfWholeWords)
{
    const std::vector<std::uint8_t> bytes { 1, 0, 0, 0, 2, 0, 0, 0, 0xFF };
    EXPECT_EQ(WindowsFonts::checksumOf(bytes), 0x103u);
    EXPECT_EQ(WindowsFonts::checksumOf({}), 2u);
}

TEST(WindowsFonts, FacesOfEqualWidths)
{
    WindowsFonts fonts;
    const WindowsFont arial = fonts.select(request("ARIAL"), {});
    ASSERT_TRUE(arial);
    EXPECT_TRUE(arial.hasTrueWidths());
    EXPECT_NEAR(arial.metrics().ascent, 1854 / 2048.0, 1e-3);
    EXPECT_NEAR(arial.metrics().descent, 434 / 2048.0, 1e-3);
    EXPECT_NEAR(arial.glyphOfCharacter(U'A').advance, 1366 / 2048.0, 1e-3);
    const WindowsFont narrow = fonts.select(request("@Arial"), {});
    EXPECT_EQ(narrow.face().id(), arial.face().id());
}

TEST(WindowsFonts, StylesHaveTheirOwnFilesOrAreMade)
{
    WindowsFonts fonts;
    const WindowsFont bold = fonts.select(request("Arial", 700), {});
    EXPECT_EQ(bold.glyphOfCharacter(U'H').bold, 0);
    EXPECT_NE(bold.face().id(), fonts.select(request("Arial"), {}).face().id());
    const WindowsFont slanted = fonts.select(request("Verdana", 400, true), {});
    EXPECT_GT(slanted.glyphOfCharacter(U'H').slant, 0);
}

TEST(WindowsFonts, FacesThatStandInAreBoldAndSlantedToo)
{
    WindowsFonts fonts;
    constexpr char32_t beh = 0x0628; // Liberation Sans has no Arabic letters, DejaVu Sans has, in bold as well
    const auto plain = fonts.select(request("Arial"), {}).glyphOfCharacter(beh);
    const auto bold = fonts.select(request("Arial", 700, true), {}).glyphOfCharacter(beh);
    ASSERT_NE(plain.face, nullptr);
    EXPECT_NE(plain.face, bold.face);
    EXPECT_EQ(bold.bold, 0);
    EXPECT_EQ(plain.slant, 0);
    EXPECT_GT(bold.slant, 0);
    constexpr char32_t ka = 0x0915; // of Devanagari; in one weight only
    const auto made = fonts.select(request("Arial", 700), {}).glyphOfCharacter(ka);
    if (!made.face)
        GTEST_SKIP() << "no face with Devanagari letters is installed";
    EXPECT_GT(made.bold, 0);
}

TEST(WindowsFonts, UnknownNamesGoByTheirFamily)
{
    WindowsFonts fonts;
    WindowsFontRequest roman = request("No Such Face");
    roman.pitchAndFamily = 0x12;
    EXPECT_EQ(fonts.select(roman, {}).face().id(), fonts.select(request("Times New Roman"), {}).face().id());
    EXPECT_FALSE(fonts.select(roman, {}).hasTrueWidths());
    WindowsFontRequest fixed = request("No Such Face");
    fixed.pitchAndFamily = 1;
    EXPECT_EQ(fonts.select(fixed, {}).face().id(), fonts.select(request("Courier New"), {}).face().id());
}

TEST(WindowsFonts, GlyphNumbersAreKnownForClassicFacesOnly)
{
    WindowsFonts fonts;
    const WindowsFont arial = fonts.select(request("Arial"), {});
    EXPECT_EQ(arial.glyphOfIndex(36).id, arial.glyphOfCharacter(U'A').id);
    EXPECT_EQ(fonts.select(request("Verdana"), {}).glyphOfIndex(36).id,
        fonts.select(request("Verdana"), {}).glyphOfCharacter(U'A').id);
    const WindowsFont calibri = fonts.select(request("Calibri"), {});
    EXPECT_TRUE(calibri.lacksIndices());
    EXPECT_EQ(calibri.glyphOfIndex(36).face, nullptr);
    EXPECT_EQ(arial.glyphOfIndex(0xFFFFFF).face, nullptr);
}

TEST(WindowsFonts, MissingCharactersComeFromOtherFonts)
{
    WindowsFonts fonts;
    const WindowsFont arial = fonts.select(request("Arial"), {});
    const WindowsFont::Glyph tick = arial.glyphOfCharacter(U'\u2713');
    ASSERT_NE(tick.face, nullptr);
    EXPECT_NE(tick.face->id(), arial.face().id());
}

TEST(WindowsFonts, SymbolsByTheirCodes)
{
    WindowsFonts fonts;
    const WindowsFont symbol = fonts.select(request("Symbol"), {});
    EXPECT_TRUE(symbol.isSymbolic());
    EXPECT_EQ(symbol.glyphOfCharacter(U'a').id, symbol.glyphOfCharacter(0xF061).id);
    EXPECT_NE(symbol.glyphOfCharacter(U'a').face, nullptr);
}

TEST(WindowsFonts, EmbeddedFontsGoFirst)
{
    const std::vector<std::uint8_t> file = fileOf("LiberationMono-Regular.ttf");
    if (file.empty())
        GTEST_SKIP() << "the font is not installed";
    WindowsFonts fonts;
    ASSERT_TRUE(fonts.embed(file, {}));
    EXPECT_TRUE(fonts.select(request("liberation mono"), {}).isEmbedded());
    WindowsFontRequest byChecksum = request("Whatever");
    EXPECT_FALSE(fonts.select(byChecksum, {}).isEmbedded());
    byChecksum.usesIndices = true; // the only embedded font
    EXPECT_TRUE(fonts.select(byChecksum, {}).isEmbedded());
    byChecksum.usesIndices = false;
    byChecksum.checksum = WindowsFonts::checksumOf(file);
    const WindowsFont font = fonts.select(byChecksum, {});
    EXPECT_TRUE(font.isEmbedded());
    EXPECT_FALSE(font.lacksIndices());
    EXPECT_NEAR(font.glyphOfIndex(36).advance, 1229 / 2048.0, 1e-3);
}

TEST(WindowsFonts, BrokenAndTooManyFontsAreLeftOut)
{
    Limits limits;
    limits.fontBytes = 1000;
    WindowsFonts fonts(limits);
    EXPECT_FALSE(fonts.embed(std::vector<std::uint8_t> { 0, 1, 0, 0, 9, 9, 9, 9 }, {}));
    EXPECT_FALSE(fonts.embed(std::vector<std::uint8_t>(2000), {}));
}

} // namespace
} // namespace quillrip::test
