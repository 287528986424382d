// Letters that change places and shapes beside each other. Faces are those that the project depends on.

#include "quillrip/fonts/shaping/scripts.h"
#include "quillrip/fonts/shaping/text_shaper.h"
#include "quillrip/fonts/shaping/visual_runs.h"
#include "tests/support/spare_heap.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <new>

namespace quillrip::test {
namespace {

struct Shaper {
    explicit Shaper(const std::string& face = "DejaVu Sans")
    {
        WindowsFontRequest request;
        request.face = face;
        font = fonts.select(request, Reporter());
    }

    ShapedLine shape(const std::u32string& text, bool isBaseRightToLeft = false) const
    {
        return shapeLine(text, font, isBaseRightToLeft);
    }
    /// The numbers of the glyphs from left to right, without blanks that stand for nothing.
    std::vector<GlyphId> glyphs(const std::u32string& text, bool isBaseRightToLeft = false) const
    {
        std::vector<GlyphId> result;
        for (const auto& glyph : shape(text, isBaseRightToLeft).glyphs)
            result.push_back(glyph.id);
        return result;
    }
    /// Those that the characters have by themselves, in this order.
    std::vector<GlyphId> own(const std::u32string& text) const
    {
        std::vector<GlyphId> result;
        for (const char32_t character : text)
            result.push_back(font.glyphOfCharacter(character).id);
        return result;
    }

    WindowsFonts fonts;
    WindowsFont font;
};

/// Every character in exactly one cluster.
void expectWhole(const ShapedLine& line, std::size_t characters)
{
    std::vector<int> covered(characters);
    for (const ShapedCluster& cluster : line.clusters) {
        ASSERT_LT(cluster.begin, cluster.end);
        ASSERT_LE(cluster.end, characters);
        ASSERT_LE(cluster.lastGlyph, line.glyphs.size());
        for (std::size_t i = cluster.begin; i < cluster.end; ++i)
            ++covered[i];
    }
    EXPECT_EQ(std::count(covered.begin(), covered.end(), 1), static_cast<std::ptrdiff_t>(characters));
}

std::string runsOf(const std::u32string& text, bool isBaseRightToLeft = false)
{
    std::string result;
    for (const VisualRun& run : visualRunsOf(text, isBaseRightToLeft))
        result += (run.isRightToLeft ? "<" : ">") + std::to_string(run.begin) + "-" + std::to_string(run.end) + " ";
    return result;
}

TEST(VisualRuns, GoFromLeftToRightOnTheLine)
{
    EXPECT_EQ(runsOf(U"ab"), ">0-2 ");
    EXPECT_EQ(runsOf(U"a\u05D0\u05D1b"), ">0-1 <1-3 >3-4 ");
    EXPECT_EQ(runsOf(U"\u05D0, \u05D1"), "<0-4 ");
    EXPECT_EQ(runsOf(U""), "");
}

TEST(VisualRuns, NumbersAreReadFromLeftToRight)
{
    EXPECT_EQ(runsOf(U"\u05D0 12.5 \u05D1"), "<6-8 >2-6 <0-2 ");
    EXPECT_EQ(runsOf(U"\u0627 \u0661\u0662 \u062F"), "<4-6 >2-4 <0-2 ");
}

TEST(VisualRuns, TheLinesOwnDirectionTakesWhatHasNone)
{
    EXPECT_EQ(runsOf(U"\u05D0!"), "<0-1 >1-2 ");
    EXPECT_EQ(runsOf(U"\u05D0!", true), "<0-2 ");
    EXPECT_EQ(runsOf(U"ab!", true), "<2-3 >0-2 ");
}

TEST(Scripts, TextOfSimpleScriptsNeedsNoShaping)
{
    EXPECT_FALSE(needsShaping(U"Grüße, Αθήνα, Москва, Ð ½ — “…” ﬁ 日本語 한국 ქართული \uF0B7"));
    for (const char32_t character : { 0x0301, 0x05D0, 0x0628, 0x0E01, 0x0915, 0x1780, 0x1100, 0x200D, 0x202E, 0x1E900 })
        EXPECT_TRUE(needsShaping(character)) << std::hex << static_cast<unsigned>(character);
}

TEST(Scripts, MarksTakeTheLetterBeforeThemAlong)
{
    // "ab" + acute, Devanagari ka and virama, the danda that all Indian scripts share, "c".
    const auto runs = scriptRunsOf(U"ab\u0301\u0915\u094D\u0964c", 0, 7);
    ASSERT_EQ(runs.size(), 4u);
    EXPECT_EQ(runs[0].script, 0u);
    EXPECT_EQ(runs[0].end, 1u);
    EXPECT_NE(runs[1].script, runs[2].script);
    EXPECT_EQ(runs[1].end, 3u);
    EXPECT_EQ(runs[2].end, 6u);
    EXPECT_EQ(runs[3].script, 0u);
}

TEST(TextShaper, ArabicLettersTakeTheShapesThatJoinThem)
{
    const Shaper shaper;
    EXPECT_EQ(shaper.glyphs(U"\u0628\u0628\u0628"), shaper.own(U"\uFE90\uFE92\uFE91"));
    EXPECT_EQ(shaper.glyphs(U"\u062F\u0628"), shaper.own(U"\u0628\u062F")); // dal reaches back only
    EXPECT_EQ(shaper.glyphs(U"\u0628 \u0628"), shaper.own(U"\u0628 \u0628"));
    EXPECT_NE(shaper.glyphs(U"\u0679\u0679"), shaper.own(U"\u0679\u0679")); // of Urdu
}

TEST(TextShaper, LamAndAlefAreOneCluster)
{
    const Shaper shaper;
    const ShapedLine line = shaper.shape(U"\u0633\u0644\u0627\u0645");
    ASSERT_EQ(line.clusters.size(), 3u);
    EXPECT_EQ(line.clusters[1].begin, 1u);
    EXPECT_EQ(line.clusters[1].end, 3u);
    EXPECT_EQ(line.glyphs[line.clusters[1].firstGlyph].id, shaper.own(U"\uFEFC")[0]);
    expectWhole(line, 4);
}

TEST(TextShaper, MarksStandOverTheirLetterAndMoveNothing)
{
    const Shaper shaper;
    const ShapedLine line = shaper.shape(U"\u0628\u064E\u0628");
    ASSERT_EQ(line.clusters.size(), 2u);
    const ShapedCluster& marked = line.clusters[1];
    EXPECT_EQ(marked.end, 2u);
    ASSERT_EQ(marked.lastGlyph - marked.firstGlyph, 2u);
    EXPECT_NEAR(marked.advance, shaper.font.glyphOfCharacter(0xFE91).advance, 0.001);
}

TEST(TextShaper, BracketsTurnRoundWithTheirText)
{
    const Shaper shaper;
    EXPECT_EQ(shaper.glyphs(U"\u05D0(\u05D1)", true), shaper.own(U"(\u05D1)\u05D0"));
}

TEST(TextShaper, LatinLettersKeepTheirOwnGlyphs)
{
    const Shaper shaper;
    EXPECT_EQ(shaper.glyphs(U"fi AV \u05D0 ffl"), shaper.own(U"fi AV \u05D0 ffl"));
    EXPECT_EQ(shaper.glyphs(U"fe\u0301fi"), shaper.own(U"f\u00E9fi"));
    for (const auto& glyph : shaper.shape(U"fi AV \u05D0").glyphs)
        EXPECT_EQ(glyph.shift, Point());
}

TEST(TextShaper, AMarkAndItsLetterBecomeOneGlyphWhereTheFaceHasIt)
{
    const Shaper shaper;
    EXPECT_EQ(shaper.glyphs(U"re\u0301f"), shaper.own(U"r\u00E9f"));
    EXPECT_EQ(shaper.glyphs(U"e\u0302\u0301"), shaper.own(U"\u1EBF")); // of Vietnamese
    const ShapedLine without = shaper.shape(U"f\u0301");
    ASSERT_EQ(without.clusters.size(), 1u);
    EXPECT_EQ(without.glyphs.size(), 2u);
    EXPECT_NEAR(without.clusters[0].advance, shaper.font.glyphOfCharacter(U'f').advance, 0.001);
}

TEST(TextShaper, ThaiToneMarksAreLiftedOverVowels)
{
    const Shaper shaper;
    const auto toneOf = [&](const std::u32string& text) {
        const ShapedLine line = shaper.shape(text);
        EXPECT_EQ(line.clusters.size(), 1u);
        return std::make_pair(line.glyphs.back().id, line.glyphs.back().shift.y);
    };
    EXPECT_NE(toneOf(U"\u0E17\u0E48"), toneOf(U"\u0E17\u0E35\u0E48"));
}

TEST(TextShaper, IndianVowelsStandBeforeTheirConsonants)
{
    const Shaper shaper;
    // Ka with the vowel i, which is read behind it and written in front.
    const std::u32string text = U"\u0915\u093F";
    if (shaper.own(text)[0] == kNoGlyph)
        GTEST_SKIP() << "no face with Devanagari letters is installed";
    const ShapedLine line = shaper.shape(text);
    ASSERT_EQ(line.clusters.size(), 1u);
    ASSERT_EQ(line.glyphs.size(), 2u);
    EXPECT_EQ(line.glyphs[1].id, shaper.own(text)[0]);
    EXPECT_GT(line.glyphs[1].shift.x, 0.1);
    // Ka, virama and ssa are one letter.
    EXPECT_EQ(shaper.glyphs(U"\u0915\u094D\u0937").size(), 1u);
}

TEST(TextShaper, SteeringCharactersLeaveNoMark)
{
    const Shaper shaper;
    const ShapedLine line = shaper.shape(U"a\u200E\u05D0\u200Db");
    for (const ShapedCluster& cluster : line.clusters) {
        const std::size_t glyphs = cluster.lastGlyph - cluster.firstGlyph;
        EXPECT_TRUE(
            cluster.begin != 1 || (glyphs == 1 && !line.glyphs[cluster.firstGlyph].face && cluster.advance == 0));
    }
    expectWhole(line, 5);
}

TEST(TextShaper, LettersThatNoFaceHasKeepTheirPlaces)
{
    const Shaper shaper;
    const ShapedLine line = shaper.shape(U"\U00011103\U00011127x"); // Chakma
    expectWhole(line, 3);
    EXPECT_EQ(line.glyphs.back().id, shaper.own(U"x")[0]);
}

TEST(TextShaper, LongLinesAreWhole)
{
    const Shaper shaper;
    std::u32string text;
    for (int i = 0; i < 5000; ++i)
        text += U"\u0628\u064Ea \u0E17\u0E35\u0E48";
    expectWhole(shaper.shape(text), text.size());
}

TEST(TextShaper, EntersWhatTheGlyphsMayTake)
{
    const Shaper shaper;
    const std::u32string text(1000, U'\x0628');
    EXPECT_FALSE(shaper.shape(text).glyphs.empty());
    const std::uint64_t before = HeapAccount::used();
    {
        const SpareHeap bound(1U << 20);
        EXPECT_THROW(shaper.shape(text), std::bad_alloc);
    }
    {
        const SpareHeap bound(4U << 20);
        EXPECT_FALSE(shaper.shape(text).glyphs.empty());
    }
    EXPECT_EQ(HeapAccount::used(), before) << "only while they are made";
}

} // namespace
} // namespace quillrip::test
