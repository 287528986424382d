// Text records. Reference pixels are the page's; the face is one that is as wide as Arial.

#include "quillrip/emf/text.h"
#include "tests/emf/emf_bench.h"

#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace quillrip::test {
namespace {

enum : std::uint32_t { kBytes = 0x53, kUtf16 = 0x54 };

Bytes utf16(const std::u16string& text)
{
    Bytes bytes;
    for (const char16_t unit : text)
        bytes = bytes + Bytes { static_cast<std::uint8_t>(unit), static_cast<std::uint8_t>(unit >> 8) };
    return bytes;
}

/// The font and what text usually has beside it: no background, baseline alignment.
Bytes arial(int height, int escapement = 0, int flags = 0, const std::u16string& face = u"Arial")
{
    Bytes name = utf16(face);
    name.resize(64);
    return record(0x52, { 1, height, 0, escapement, escapement, 400, flags, 0 }, name) + record(0x25, { 1 })
        + record(0x12, { 1 }) + record(0x16, { 0x18 });
}

Bytes text(int x, int y, const std::u16string& string, std::initializer_list<std::int64_t> advances = {},
    std::int64_t options = 0, std::initializer_list<std::int64_t> box = { 0, 0, -1, -1 }, std::int64_t mode = 1)
{
    Bytes characters = utf16(string);
    characters.resize((characters.size() + 3) / 4 * 4);
    const auto count = static_cast<std::int64_t>(string.size());
    const auto place = advances.size() == 0 ? 0 : 76 + static_cast<std::int64_t>(characters.size());
    return boundedRecord(kUtf16, { mode, bitsOf(1), bitsOf(1), x, y, count, 76, options },
        words(box) + words({ place }) + characters + words(advances));
}

int leftOf(const Played& played) { return std::stoi(played.ink()); }
int topOf(const Played& played) { return std::stoi(played.ink().substr(played.ink().find(',') + 1)); }
int bottomOf(const Played& played) { return std::stoi(played.ink().substr(played.ink().rfind(',') + 1)); }

/// That two pages have the same pixels, and ink among them.
void expectSamePixels(const Played& played, const Played& expected)
{
    EXPECT_GT(expected.inkCount(), 0u);
    const PageBitmap& page = played.device.pages().at(0);
    const PageBitmap& other = expected.device.pages().at(0);
    ASSERT_EQ(page.width(), other.width());
    ASSERT_EQ(page.height(), other.height());
    int different = 0;
    for (int y = 0; y < page.height(); ++y)
        different += std::memcmp(page.row(y), other.row(y), static_cast<std::size_t>(page.width()) * 3) == 0 ? 0 : 1;
    EXPECT_EQ(different, 0) << "rows";
}

TEST(EmfText, BaselineAndTop)
{
    const Played baseline = play(arial(-100) + text(500, 1000, u"H", { 100 }));
    EXPECT_NEAR(bottomOf(baseline), 999, 1);
    EXPECT_NEAR(topOf(baseline), 1000 - 69, 1);
    const Played top = play(arial(-100) + record(0x16, { 0 }) + text(500, 1000, u"H", { 100 }));
    EXPECT_NEAR(bottomOf(top), 1000 + 90, 1);
    const Played bottom = play(arial(-100) + record(0x16, { 8 }) + text(500, 1000, u"H", { 100 }));
    EXPECT_NEAR(bottomOf(bottom), 1000 - 21 - 1, 1);
}

TEST(EmfText, PositiveHeightIsTheCells)
{
    const Played cell = play(arial(100) + text(500, 1000, u"H", { 100 }));
    EXPECT_NEAR(topOf(cell), 1000 - 62, 1); // em 89.5
}

TEST(EmfText, AdvancesDecideWhereLettersStand)
{
    const Played right = play(arial(-100) + record(0x16, { 0x18 | 2 }) + text(1000, 500, u"ii", { 200, 200 }));
    EXPECT_NEAR(leftOf(right), 606, 3);
    const Played left = play(arial(-100) + text(1000, 500, u"ii", { 200, 200 }));
    EXPECT_NEAR(leftOf(left), 1006, 3);
    EXPECT_TRUE(left.hasInk(leftOf(left) + 202, 480));
}

TEST(EmfText, PairsOfAdvancesWithoutASecondPart)
{
    const Played plain = play(arial(-100) + text(500, 500, u"AB", { 90, 90 }));
    const Played pairs = play(arial(-100) + text(500, 500, u"AB", { 90, 0, 90, 0 }, 0x2000));
    expectSamePixels(pairs, plain);
}

TEST(EmfText, OpaqueBoxWithoutText)
{
    const Bytes red = record(0x19, { 0xFF });
    const Played played = play(red + text(0, 0, u"", {}, 2, { 10, 10, 20, 20 }));
    EXPECT_EQ(played.ink(), "10,10,19,19");
    EXPECT_EQ(played.pixel(15, 15), kRedPixel);
}

TEST(EmfText, BackgroundFillsTheCell)
{
    const Bytes red = record(0x19, { 0xFF });
    const Played played = play(arial(-100) + record(0x12, { 2 }) + red + text(500, 500, u"i", { 200 }));
    EXPECT_EQ(played.pixel(690, 450), kRedPixel);
    EXPECT_NEAR(topOf(played), 500 - 91, 1);
    EXPECT_NEAR(bottomOf(played), 500 + 20, 1);
}

TEST(EmfText, ClippedText)
{
    const Played played = play(arial(-100) + text(500, 500, u"HHHH", { 80, 80, 80, 80 }, 4, { 500, 0, 600, 470 }));
    EXPECT_LE(bottomOf(played), 469);
    EXPECT_NE(played.ink(), "");
}

TEST(EmfText, EscapementTurnsTheLine)
{
    const Played upwards = play(arial(-100, 900) + text(500, 800, u"HH", { 100, 100 }));
    EXPECT_NEAR(bottomOf(upwards), 792, 4);
    EXPECT_LT(topOf(upwards), 700);
    EXPECT_LE(leftOf(upwards), 433);
}

TEST(EmfText, MappingWithYUpwardsKeepsLettersUpright)
{
    const Bytes up = record(0x11, { 2 });
    const Played played = play(up + arial(-100) + text(500, -1000, u"L", { 100 }));
    // The foot of the letter is at its bottom.
    const int foot = bottomOf(played);
    EXPECT_TRUE(played.hasInk(leftOf(played) + 40, foot - 2));
    EXPECT_FALSE(played.hasInk(leftOf(played) + 40, topOf(played) + 2));
}

TEST(EmfText, GlyphNumbersOfTheClassicOrder)
{
    const Played letters = play(arial(-100) + text(500, 500, u"AD", { 90, 90 }));
    const Played numbers = play(arial(-100) + text(500, 500, u"$'", { 90, 90 }, 0x10)); // 36 and 39
    expectSamePixels(numbers, letters);
}

TEST(EmfText, GlyphNumbersOfAnUnknownFaceAreNamed)
{
    const Played played = play(arial(-100, 0, 0, u"Calibri") + text(500, 500, u"$'", { 90, 90 }, 0x10));
    EXPECT_EQ(played.ink(), "");
    EXPECT_TRUE(played.report.has("emf.font-missing"));
}

TEST(EmfText, SmallTextHasBytesAndNoBox)
{
    const Bytes small = record(0x6C, { 500, 500, 2, 0x300, 1, bitsOf(1), bitsOf(1) }, Bytes { 'A', 'b' });
    expectSamePixels(play(arial(-100) + small), play(arial(-100) + text(500, 500, u"Ab")));
}

TEST(EmfText, CurrentPositionMovesOn)
{
    const Bytes updating = record(0x16, { 0x19 }) + record(0x1B, { 500, 500 });
    const Played played = play(arial(-100) + updating + text(0, 0, u"A", { 50 }) + text(0, 0, u"A", { 50 }));
    const Played apart = play(arial(-100) + text(500, 500, u"A", { 50 }) + text(550, 500, u"A", { 50 }));
    expectSamePixels(played, apart);
}

TEST(EmfText, JustificationWidensSpaces)
{
    const Bytes wide = record(0x78, { 100, 2 });
    const Played plain = play(arial(-100) + text(500, 500, u"a b c"));
    const Played spread = play(arial(-100) + wide + text(500, 500, u"a b c"));
    const auto right = [](const Played& played) {
        const std::string ink = played.ink();
        const std::size_t second = ink.find(',', ink.find(',') + 1);
        return std::stoi(ink.substr(second + 1));
    };
    EXPECT_NEAR(right(spread) - right(plain), 100, 1);
}

TEST(EmfText, UnderlineReachesOverSpaces)
{
    // Underlined: the second byte of the flags.
    const Played played = play(arial(-100, 0, 0x100) + text(500, 500, u"   ", { 50, 50, 50 }));
    EXPECT_EQ(leftOf(played), 500);
    EXPECT_GT(topOf(played), 500);
}

TEST(EmfText, TextInAPathIsClippedTo)
{
    const Bytes clip = record(0x3B) + text(500, 500, u"H", { 100 }) + record(0x3C) + record(0x43, { 5 });
    const Played played = play(arial(-100) + clip + nullPen() + blackBrush() + rectangle(0, 0, 2000, 2000));
    EXPECT_NEAR(topOf(played), 500 - 69, 1);
    EXPECT_NEAR(bottomOf(played), 499, 1);
}

TEST(EmfText, CodePagesOfBytes)
{
    const auto units = emf::unitsOfBytes(Bytes { 'a', 0xE0, 0x80 }, 204);
    EXPECT_EQ(units[1].code, U'\u0430'); // Cyrillic
    const auto symbols = emf::unitsOfBytes(Bytes { 0x61 }, 2);
    EXPECT_EQ(symbols[0].code, char32_t { 0xF061 });
    const auto pairs = emf::unitsOfBytes(Bytes { 0x93, 0xFA, 'x' }, 128);
    EXPECT_EQ(pairs[0].code, U'\u65E5');
    EXPECT_EQ(pairs[1].code, char32_t { 0 });
    EXPECT_EQ(pairs[2].code, U'x');
}

/// As it would be drawn glyph by glyph.
constexpr std::int64_t kAsItIs = 0x1000;

TEST(EmfText, HebrewRunsAreTurnedRound)
{
    expectSamePixels(play(arial(-100) + text(500, 500, u"a\u05D0\u05D1b", { 56, 60, 50, 56 })),
        play(arial(-100) + text(500, 500, u"a\u05D1\u05D0b", { 56, 50, 60, 56 }, kAsItIs)));
}

TEST(EmfText, ArabicLettersTakeTheShapesThatJoinThem)
{
    const auto playedAs
        = [](const std::u16string& string, std::initializer_list<std::int64_t> advances, std::int64_t options) {
              return play(arial(-100, 0, 0, u"DejaVu Sans") + text(500, 500, string, advances, options));
          };
    // Salam: initial seen, medial lam with its alef in one, isolated meem.
    expectSamePixels(playedAs(u"\u0633\u0644\u0627\u0645", { 80, 30, 30, 62 }, 0),
        playedAs(u"\uFEE1\uFEFC\uFEB3", { 62, 60, 80 }, kAsItIs));
}

TEST(EmfText, MarksMoveWithTheirLetter)
{
    // The steps of a letter and of the mark over it are one.
    const auto inkOf = [](std::initializer_list<std::int64_t> advances) {
        return play(arial(-100) + text(500, 500, u"f\u0301H", advances)).ink();
    };
    EXPECT_EQ(inkOf({ 200, 0, 72 }), inkOf({ 80, 120, 72 }));
    EXPECT_NE(inkOf({ 200, 0, 72 }), inkOf({ 80, 0, 72 }));
}

TEST(EmfText, MarksAreDrawnOverTheirLetter)
{
    const Played letter = play(arial(-100) + text(500, 500, u"f", { 28 }));
    const Played both = play(arial(-100) + text(500, 500, u"f\u0301", { 28, 0 }));
    EXPECT_LT(topOf(both), topOf(letter) - 5);
    EXPECT_NEAR(leftOf(both), leftOf(letter), 5);
}

TEST(EmfText, LettersThatNoFontHasAreTold)
{
    const std::u16string chakma = u"\U00011103\U00011127";
    EXPECT_TRUE(play(arial(-100) + text(500, 500, chakma, { 60, 0, 60, 0 })).report.has("emf.letters-missing"));
    EXPECT_TRUE(
        play(arial(-100) + text(500, 500, chakma, { 60, 0, 60, 0 }, kAsItIs)).report.has("emf.letters-missing"));
    EXPECT_FALSE(play(arial(-100) + text(500, 500, u"a\u200B \uE123\u0301", { 60, 0, 60, 60, 0 }))
                     .report.has("emf.letters-missing"));
}

TEST(EmfText, TheLinesDirectionMovesPunctuation)
{
    const Bytes string = text(500, 500, u"\u05D0.", { 60, 28 });
    const Bytes turned = text(500, 500, u"\u05D0.", { 60, 28 }, 0x80);
    EXPECT_EQ(play(arial(-100) + record(0x16, { 0x118 }) + string).ink(), play(arial(-100) + turned).ink());
    EXPECT_NE(play(arial(-100) + string).ink(), play(arial(-100) + turned).ink());
}

TEST(EmfText, TheLastLetterOfATurnedRunHasRoom)
{
    // Its step is the first on the line and may be anything.
    const auto withLast = [](std::int64_t last) {
        return play(arial(-100) + text(500, 500, u"\u05D0\u05DD", { 70, last }));
    };
    expectSamePixels(withLast(1), withLast(20));
}

TEST(EmfText, EmbeddedFontsServeAllPagesOfTheJob)
{
    std::ifstream file("/usr/share/fonts/truetype/liberation2/LiberationMono-Regular.ttf", std::ios::binary);
    if (!file)
        GTEST_SKIP() << "the font is not installed";
    const Bytes font { std::istreambuf_iterator<char>(file), {} };
    const auto size = static_cast<std::int64_t>(font.size());
    const std::int64_t checksum = WindowsFonts::checksumOf(font);
    Bytes data = words({ 0, 1, size, 0 }) + font;
    data.resize((data.size() + 3) / 4 * 4);
    const Bytes carrying = words({ 0, 0x544F4E46 }) + spoolRecord(2, data);
    const Bytes comment = record(0x46, { static_cast<std::int64_t>(carrying.size()) }, carrying);
    const Bytes line = arial(-100, 0, 0, u"Unheard Of") + record(0x6D, { checksum, 1 })
        + text(500, 500, u"$$$", { 60, 60, 60 }, 0x10);
    const Played played(spoolHeader() + spoolPage(metafile(comment + line)) + spoolPage(metafile(line)));
    ASSERT_EQ(played.pages(), 2u);
    EXPECT_NE(played.ink(0), "");
    EXPECT_EQ(played.ink(0), played.ink(1));
    EXPECT_FALSE(played.report.has("emf.font-missing"));
}

TEST(EmfText, UnderlinesAndStrikeoutsArePartsOfThePath)
{
    const auto filled = [](int flags) {
        return play(arial(-100, 0, flags) + record(0x25, { 0x80000004 }) + record(0x3B) + text(500, 500, u"H", { 100 })
            + record(0x3C) + boundedRecord(0x3E, {}));
    };
    const Played plain = filled(0);
    const Played underlined = filled(0x100);
    EXPECT_GT(bottomOf(underlined), bottomOf(plain));
    EXPECT_EQ(leftOf(underlined), 500);
    const Played struckOut = filled(0x10000);
    EXPECT_EQ(bottomOf(struckOut), bottomOf(plain));
    EXPECT_EQ(leftOf(struckOut), 500);
}

TEST(EmfText, StockFontsHaveTheSizeThatTheWidthsTell)
{
    const auto heightOf = [](const Bytes& font, std::int64_t advance) {
        const Played played
            = play(font + record(0x16, { 0x18 }) + text(500, 500, u"HHH", { advance, advance, advance }));
        return bottomOf(played) - topOf(played) + 1;
    };
    // An H is as wide as 1479 of 2048 parts of the em, and 1409 high.
    for (const Bytes& font : { record(0x25, { 0x8000000E }), arial(0) }) {
        EXPECT_NEAR(heightOf(font, 20), 20.0 * 1409 / 1479, 1.5);
        EXPECT_NEAR(heightOf(font, 100), 100.0 * 1409 / 1479, 1.5);
    }
    EXPECT_NEAR(heightOf(arial(-100), 40), 69, 1.5);
}

TEST(EmfText, TextBeyondItsRecordIsNamed)
{
    Bytes bad = arial(-100) + text(500, 500, u"H", { 100 });
    const Bytes huge = boundedRecord(kUtf16, { 1, bitsOf(1), bitsOf(1), 0, 0, 0xFFFFFFFF, 76, 0, 0, 0, -1, -1, 0 });
    const Played played = play(bad + huge);
    EXPECT_TRUE(played.report.has("emf.text"));
    EXPECT_NE(played.ink(), "");
}

} // namespace
} // namespace quillrip::test
