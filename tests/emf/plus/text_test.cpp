#include "quillrip/emf/plus/string_layout.h"
#include "tests/emf/plus/plus_job.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::emf::plus;
using namespace quillrip::emf::plus::test;

namespace {

constexpr std::uint16_t kDriverString = 0x4036;
constexpr std::uint32_t kInk = 0xFF000000;

Fields arial(double em, std::uint32_t style = 0)
{
    return Fields().u32({ kVersion }).f32({ em }).u32({ 2, style, 0, 5 }).text(u"Arial").padded();
}

/// The face and its em of 100 world units.
SizedFont sized(double em = 100)
{
    static WindowsFonts fonts;
    WindowsFontRequest request;
    request.face = "Arial";
    SizedFont font;
    font.font = fonts.select(request, Reporter { nullptr, 0 });
    font.em = em;
    return font;
}

StringFormatObject plain()
{
    StringFormatObject format;
    format.leadingMargin = format.trailingMargin = 0;
    return format;
}

std::vector<GlyphId> operator+(std::vector<GlyphId> first, const std::vector<GlyphId>& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

std::vector<std::size_t> lineLengths(const StringLayout& layout)
{
    std::vector<std::size_t> lengths;
    for (const StringLayout::Line& line : layout.lines)
        lengths.push_back(line.glyphs.size());
    return lengths;
}

} // namespace

TEST(EmfPlusText, DriverStringsWithoutCharactersDrawNothing)
{
    Records records = header();
    records.object(6, 0, arial(60));
    records.add(kDriverString, kColor, Fields().u32({ kInk, 5, 0, 0 }).f32({ 100, 200 }));
    Sheet sheet(200, 200);
    sheet.play(records);
    EXPECT_TRUE(sheet.isWhite(100, 190));
}

TEST(EmfPlusText, DriverStringsStandOnTheirBaseline)
{
    Records records = header();
    records.object(6, 0, arial(100));
    records.add(kDriverString, kColor, Fields().u32({ kInk, 1, 0, 1 }).text(u"H").f32({ 100, 200 }));
    Sheet sheet(300, 300);
    const PixelRect marked = sheet.play(records).marked();
    EXPECT_EQ(marked.bottom, 200);
    EXPECT_NEAR(marked.top, 200 - 69, 1);
    EXPECT_NEAR(marked.left, 108, 3);
}

TEST(EmfPlusText, AnOddNumberOfCodesMayBePadded)
{
    for (const bool isPadded : { false, true }) {
        Fields fields;
        fields.u32({ kInk, 1, 0, 3 }).text(u"HHH");
        if (isPadded)
            fields.padded();
        fields.f32({ 50, 100, 150, 100, 250, 100 });
        Records records = header();
        records.object(6, 0, arial(60)).add(kDriverString, kColor, fields);
        Sheet sheet(350, 120);
        const PixelRect marked = sheet.play(records).marked();
        EXPECT_NEAR(marked.left, 55, 3) << isPadded;
        EXPECT_GT(marked.right, 280) << isPadded;
        EXPECT_EQ(marked.bottom, 100) << isPadded;
    }
}

TEST(EmfPlusText, WithOnePositionGlyphsFollowEachOther)
{
    Fields fields;
    fields.u32({ kInk, 5, 0, 2 }).text(u"HH").f32({ 50, 100 }).u32({ 0xFFFFFFFF, 0xFFFFFFFF });
    Records records = header();
    records.object(6, 0, arial(60)).add(kDriverString, kColor, fields);
    Sheet sheet(350, 120);
    const PixelRect marked = sheet.play(records).marked();
    EXPECT_NEAR(marked.right, 50 + 2 * 60 * 0.722 - 5, 4);
}

TEST(EmfPlusText, TheMatrixActsOnEachGlyph)
{
    Fields fields;
    fields.u32({ kInk, 1, 1, 2 }).text(u"HH").f32({ 20, 100, 220, 100 }).f32({ 1, 0, 0, 1.5, 7, 7 });
    Records records = header();
    records.object(6, 0, arial(60)).add(kDriverString, kColor, fields);
    Sheet sheet(350, 120);
    const PixelRect marked = sheet.play(records).marked();
    EXPECT_EQ(marked.bottom, 100);
    EXPECT_NEAR(marked.top, 100 - 60 * 0.688 * 1.5, 2);
}

TEST(EmfPlusText, StringsHangFromTheirRectangle)
{
    Records records = header();
    records.object(6, 0, arial(100));
    records.add(0x401C, kColor, Fields().u32({ kInk, 99, 1 }).f32({ 100, 50, 0, 0 }).text(u"H").padded());
    Sheet sheet(300, 300);
    const PixelRect marked = sheet.play(records).marked();
    EXPECT_NEAR(marked.bottom, 50 + 90.5, 1.5);
    EXPECT_NEAR(marked.left, 100 + 100 / 6.0 + 8, 3); // the margin of the format that stands in for one
}

TEST(EmfPlusText, SizesInPointsStayWhateverThePageCountsIn)
{
    for (const auto& [unit, x, y] : { std::tuple { 2, 30.0, 30.0 }, std::tuple { 6, 2.54, 2.54 } }) {
        Records records = header().add(0x4030, static_cast<std::uint16_t>(unit), Fields().f32({ 1 }));
        records.object(6, 0, Fields().u32({ kVersion }).f32({ 24 }).u32({ 3, 0, 0, 5 }).text(u"Arial").padded());
        records.add(kDriverString, kColor, Fields().u32({ kInk, 1, 0, 1 }).text(u"H").f32({ x, y * 4 }));
        Sheet sheet(300, 300);
        EXPECT_NEAR(sheet.play(records).marked().height(), 69, 1) << unit;
    }
}

TEST(EmfPlusText, LinesBreakBehindSpaces)
{
    const double width = layOut(U"aaa bbb", sized(), plain(), {}).width();
    EXPECT_EQ(lineLengths(layOut(U"aaa bbb ccc", sized(), plain(), { 0, 0, width + 1, 0 })),
        (std::vector<std::size_t> { 7, 3 }));
    StringFormatObject unwrapped = plain();
    unwrapped.isWrapped = false;
    EXPECT_EQ(lineLengths(layOut(U"aaa bbb ccc", sized(), unwrapped, { 0, 0, width + 1, 0 })),
        (std::vector<std::size_t> { 11 }));
    EXPECT_EQ(lineLengths(layOut(U"a\r\nbb\n\nc", sized(), plain(), {})), (std::vector<std::size_t> { 1, 2, 0, 1 }));
}

TEST(EmfPlusText, WordsLongerThanTheLineAreCut)
{
    const double width = layOut(U"aaa", sized(), plain(), {}).width();
    EXPECT_EQ(lineLengths(layOut(U"aaaaaaa", sized(), plain(), { 0, 0, width + 1, 0 })),
        (std::vector<std::size_t> { 3, 3, 1 }));
    // Narrower than any letter: one on each line.
    EXPECT_EQ(lineLengths(layOut(U"aaa", sized(), plain(), { 0, 0, 1, 0 })), (std::vector<std::size_t> { 1, 1, 1 }));
}

TEST(EmfPlusText, LinesAreAlignedBothWays)
{
    StringFormatObject format = plain();
    const double width = layOut(U"abc", sized(), format, {}).width();
    const double top = layOut(U"abc", sized(), format, { 10, 20, 500, 300 }).lines[0].start.y;
    format.alignment = StringAlignment::Center;
    format.lineAlignment = StringAlignment::Far;
    const StringLayout layout = layOut(U"abc", sized(), format, { 10, 20, 500, 300 });
    EXPECT_NEAR(layout.lines[0].start.x, 260 - width / 2, 1e-6);
    EXPECT_NEAR(layout.lines[0].start.y, top + 300 - layout.height, 1e-6);
    format.alignment = StringAlignment::Far;
    EXPECT_NEAR(layOut(U"abc", sized(), format, { 10, 20, 500, 300 }).lines[0].start.x, 510 - width, 1e-6);
    format.isRightToLeft = true;
    EXPECT_NEAR(layOut(U"abc", sized(), format, { 10, 20, 500, 300 }).lines[0].start.x, 10, 1e-6);
}

TEST(EmfPlusText, AmpersandsAreHotKeys)
{
    StringFormatObject format = plain();
    EXPECT_EQ(lineLengths(layOut(U"a&b&&c", sized(), format, {})), (std::vector<std::size_t> { 6 }));
    format.hotKeys = StringFormatObject::HotKeys::Underlined;
    const StringLayout layout = layOut(U"a&b&&c", sized(), format, {});
    EXPECT_EQ(lineLengths(layout), (std::vector<std::size_t> { 4 }));
    EXPECT_EQ(layout.lines[0].hotKeys.size(), 1U);
    format.hotKeys = StringFormatObject::HotKeys::Hidden;
    EXPECT_TRUE(layOut(U"a&b&&c", sized(), format, {}).lines[0].hotKeys.empty());
}

TEST(EmfPlusText, TabsGoToTheirStops)
{
    StringFormatObject format = plain();
    format.firstTab = 10;
    format.tabs = { 290, 100 };
    const StringLayout layout = layOut(U"a\tb\tc", sized(), format, {});
    ASSERT_EQ(layout.lines[0].glyphs.size(), 3U);
    EXPECT_NEAR(layout.lines[0].glyphs[1].at.x, 300, 1e-6);
    EXPECT_NEAR(layout.lines[0].glyphs[2].at.x, 400, 1e-6);
}

TEST(EmfPlusText, LongStringsEndWithAnEllipsis)
{
    StringFormatObject format = plain();
    format.isWrapped = false;
    format.endsWithEllipsis = true;
    const double width = layOut(U"aaaa", sized(), plain(), {}).width();
    const StringLayout layout = layOut(U"aaaaaaaaa", sized(), format, { 0, 0, width, 0 });
    EXPECT_LE(layout.width(), width);
    EXPECT_LT(layout.lines[0].glyphs.size(), 5U);
    EXPECT_EQ(lineLengths(layOut(U"aaa", sized(), format, { 0, 0, width, 0 })), (std::vector<std::size_t> { 3 }));
}

TEST(EmfPlusText, LinesWithoutRoomAreLeftOutWhereTheFormatSaysSo)
{
    const double width = layOut(U"aaa", sized(), plain(), {}).width() + 1;
    // Lines are 115 apart; the rectangle has room for one and a half.
    const RectF box { 0, 0, width, 170 };
    const std::u32string text = U"aaa aaa aaa";
    EXPECT_EQ(layOut(text, sized(), plain(), box).lines.size(), 3U);
    StringFormatObject whole = plain();
    whole.hasWholeLinesOnly = true;
    EXPECT_EQ(layOut(text, sized(), whole, box).lines.size(), 1U);
    EXPECT_EQ(layOut(text, sized(), whole, { 0, 0, width, 225 }).lines.size(), 2U);
    StringFormatObject dots = plain();
    dots.endsWithEllipsis = true;
    const StringLayout cut = layOut(text, sized(), dots, box);
    ASSERT_EQ(cut.lines.size(), 2U);
    EXPECT_EQ(cut.lines[0].glyphs.size(), 3U);
    EXPECT_LE(cut.width(), width);
    EXPECT_EQ(cut.lines[1].glyphs.back().glyph.id, sized().font.glyphOfCharacter(0x2026).id);
    const StringLayout broken = layOut(U"aaa aaaaaa", sized(), dots, { 0, 0, 2 * width, 100 });
    ASSERT_EQ(lineLengths(broken), (std::vector<std::size_t> { 5 }));
    EXPECT_EQ(broken.lines[0].glyphs[3].glyph.id, sized().font.glyphOfCharacter(U' ').id);
    EXPECT_EQ(lineLengths(layOut(text, sized(), dots, { 0, 0, width, 0 })), (std::vector<std::size_t> { 3, 3, 3 }));
}

TEST(EmfPlusText, UnderlinesEndWithTheRectangle)
{
    Records records = header();
    records.object(6, 0, arial(40, 4));
    records.add(0x401C, kColor, Fields().u32({ kInk, 99, 4 }).f32({ 20, 20, 60, 70 }).text(u"H H ").padded());
    Sheet sheet(150, 150);
    EXPECT_LE(sheet.play(records).marked().bottom, 90);
    EXPECT_FALSE(sheet.isWhite(40, 58)); // the first line's own
}

TEST(EmfPlusText, VerticalTextRunsDownInColumns)
{
    // Flags of the format, without margins; a word a column.
    const auto markedWith = [](std::uint32_t flags, const std::u16string& text) {
        Fields format;
        format.u32({ kVersion, flags, 0, 0, 0, 0, 0 }).f32({ 0 }).u32({ 0 }).f32({ 0, 0, 1 }).u32({ 0, 0, 0 });
        Records records = header();
        records.object(6, 0, arial(40)).object(7, 1, format);
        records.add(0x401C, kColor,
            Fields()
                .u32({ kInk, 1, static_cast<std::uint32_t>(text.size()) })
                .f32({ 50, 20, 150, 45 })
                .text(text)
                .padded());
        Sheet sheet(250, 250);
        return sheet.play(records).marked();
    };
    // An H: 28 down the page; its foot, 8 above the column's left edge, points to the left.
    const PixelRect one = markedWith(2, u"H");
    EXPECT_NEAR(one.left, 50 + 8.5, 1.5);
    EXPECT_NEAR(one.right - one.left, 27.5, 1.5);
    EXPECT_NEAR(one.top, 20 + 3, 1.5);
    // The next column lies to the right of it.
    const PixelRect two = markedWith(2, u"H H ");
    EXPECT_EQ(two.left, one.left);
    EXPECT_NEAR(two.right - one.right, 46, 1.5);
    EXPECT_EQ(two.bottom, one.bottom);
    const PixelRect fromRight = markedWith(3, u"H");
    EXPECT_NEAR(fromRight.right, 200 - 8.7, 1.5);
}

TEST(EmfPlusText, UnderlinesRunUnderTheWholeText)
{
    Records records = header();
    records.object(6, 0, arial(60, 4));
    records.add(kDriverString, kColor, Fields().u32({ kInk, 1, 0, 2 }).text(u"HH").f32({ 50, 100, 150, 100 }));
    Sheet sheet(350, 130);
    sheet.play(records);
    int bottom = 100;
    while (bottom < 130 && sheet.isWhite(120, bottom))
        ++bottom;
    EXPECT_LT(bottom, 115);
    EXPECT_TRUE(sheet.isWhite(120, 90));
}

TEST(EmfPlusText, LinesAreShaped)
{
    const SizedFont font = sized();
    const auto glyphsOf = [&](const std::u32string& text, const StringFormatObject& format) {
        std::vector<GlyphId> glyphs;
        const StringLayout layout = layOut(text, font, format, {});
        for (const TextGlyph& glyph : layout.lines.at(0).glyphs)
            glyphs.push_back(glyph.glyph.id);
        return glyphs;
    };
    // Hebrew, from right to left; a letter and its accent, which are one.
    EXPECT_EQ(glyphsOf(U"a\u05D0\u05D1", plain()),
        glyphsOf(U"a", plain()) + glyphsOf(U"\u05D1", plain()) + glyphsOf(U"\u05D0", plain()));
    EXPECT_EQ(glyphsOf(U"e\u0301", plain()), glyphsOf(U"\u00E9", plain()));
    StringFormatObject turned = plain();
    turned.isRightToLeft = true;
    EXPECT_EQ(glyphsOf(U"\u05D0!", turned), glyphsOf(U"!", plain()) + glyphsOf(U"\u05D0", plain()));
}

TEST(EmfPlusText, WordsAreNotCutBeforeMarks)
{
    // f and an accent are two glyphs.
    const double width = layOut(U"ff", sized(), plain(), {}).width();
    EXPECT_NEAR(layOut(U"f\u0301f\u0301", sized(), plain(), {}).width(), width, 0.1);
    EXPECT_EQ(lineLengths(layOut(U"f\u0301f\u0301f\u0301", sized(), plain(), { 0, 0, width + 1, 0 })),
        (std::vector<std::size_t> { 4, 2 }));
    EXPECT_EQ(lineLengths(layOut(U"f\u0301f\u0301", sized(), plain(), { 0, 0, width / 4, 0 })),
        (std::vector<std::size_t> { 2, 2 }));
}

TEST(EmfPlusText, MarksAreDrawnOverTheirLetter)
{
    const auto markedBy = [](const std::u16string& text) {
        Records records = header();
        records.object(6, 0, arial(100));
        const auto length = static_cast<std::uint32_t>(text.size());
        records.add(0x401C, kColor, Fields().u32({ kInk, 99, length }).f32({ 100, 50, 0, 0 }).text(text).padded());
        Sheet sheet(300, 300);
        return sheet.play(records).marked();
    };
    const PixelRect letter = markedBy(u"f");
    const PixelRect both = markedBy(u"f\u0301");
    EXPECT_LT(both.top, letter.top - 5);
    EXPECT_NEAR(both.left, letter.left, 5);
    EXPECT_LT(both.right, letter.right + 15);
}
