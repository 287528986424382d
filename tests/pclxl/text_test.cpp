#include "tests/pclxl/xl_job.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;
using A = pclxl::Attribute;
using O = pclxl::Operator;
using Bytes = std::vector<std::uint8_t>;

namespace {

/// A bitmap soft font of 100 dots an inch.
XlStream bitmapFont(const std::string& name)
{
    const Bytes header = { 0, 0, 0, 0, 254, 0, 0, 8, 'B', 'R', 0, 0, 0, 4, 0, 100, 0, 100, 255, 255, 0, 0, 0, 0 };
    XlStream c;
    c.text(A::FontName, name).ubyte(A::FontFormat, 0).op(O::BeginFontHeader);
    // Cut within a segment, as some drivers do.
    const Bytes pieces[] = { Bytes(header.begin(), header.begin() + 11), Bytes(header.begin() + 11, header.end()) };
    for (const Bytes& piece : pieces)
        c.uint16(A::FontHeaderLength, static_cast<int>(piece.size())).op(O::ReadFontHeader).data(piece);
    return c.op(O::EndFontHeader);
}

XlStream character(const std::string& font, int code, int left, int top, int width, const Bytes& rows)
{
    Bytes data = { 0, 0, static_cast<std::uint8_t>(left >> 8), static_cast<std::uint8_t>(left),
        static_cast<std::uint8_t>(top >> 8), static_cast<std::uint8_t>(top), 0, static_cast<std::uint8_t>(width), 0,
        static_cast<std::uint8_t>(rows.size()) };
    data.insert(data.end(), rows.begin(), rows.end());
    XlStream c;
    c.text(A::FontName, font).op(O::BeginChar).uint16(A::CharCode, code);
    c.uint16(A::CharDataSize, static_cast<int>(data.size())).op(O::ReadChar).data(data).op(O::EndChar);
    return c;
}

XlStream& setFont(XlStream& c, const std::string& name, int size = 1, int symbolSet = 0)
{
    return c.text(A::FontName, name).uint16(A::CharSize, size).uint16(A::SymbolSet, symbolSet).op(O::SetFont);
}

const Bytes kFlag = { 0xE0, 0xC0, 0x80 };

std::string draw(const XlStream& contents, int width, int height)
{
    XlJob job;
    job.run(onePage(width, height, contents));
    return job.pageCount() == 1 ? job.art(0, width, height) : job.sink.message();
}

TEST(XlText, BitmapCharactersStandByTheirOffsets)
{
    XlStream c = bitmapFont("F");
    c.append(character("F", 'a', 1, 3, 3, kFlag));
    setFont(c, "F").cursor(1, 4).text(A::TextData, "a").op(O::Text);
    EXPECT_EQ(draw(c, 6, 5), "......\n..###.\n..##..\n..#...\n......\n");
}

TEST(XlText, OnlySpacingArraysMoveTheCursor)
{
    XlStream c = bitmapFont("F");
    c.append(character("F", 1, 0, 0, 1, { 0x80 }));
    setFont(c, "F").cursor(0, 0).bytes(A::TextData, { 1, 1, 1 }).bytes(A::XSpacingData, { 2, 3, 1 });
    c.op(O::Text).bytes(A::TextData, { 1 }).op(O::Text); // at the cursor behind the last advance
    EXPECT_EQ(draw(c, 8, 1), "#.#..##.\n");
    XlStream down = bitmapFont("F");
    down.append(character("F", 1, 0, 0, 1, { 0x80 }));
    setFont(down, "F").cursor(0, 0).words(A::TextData, { 1, 1, 1 }).words(A::YSpacingData, { 2, 1, 0 }).op(O::Text);
    EXPECT_EQ(draw(down, 2, 4), "#.\n..\n#.\n#.\n");
    XlStream none = bitmapFont("F");
    none.append(character("F", 1, 0, 0, 1, { 0x80 }));
    setFont(none, "F").cursor(0, 0).bytes(A::TextData, { 1, 1, 1 }).op(O::Text);
    EXPECT_EQ(draw(none, 4, 1), "#...\n");
}

TEST(XlText, SpacingArraysHaveOneValueForEachCharacter)
{
    XlStream c = bitmapFont("F");
    setFont(c, "F").cursor(0, 0).bytes(A::TextData, { 1, 1 }).bytes(A::XSpacingData, { 2 }).op(O::Text);
    EXPECT_NE(draw(c, 4, 1).find("IllegalArraySize"), std::string::npos);
}

TEST(XlText, ACharacterCanBeRedefinedAfterItsUse)
{
    XlStream c = bitmapFont("F");
    c.append(character("F", 1, 0, 0, 1, { 0x80 }));
    setFont(c, "F").cursor(0, 0).bytes(A::TextData, { 1 }).op(O::Text);
    c.append(character("F", 1, 0, 0, 3, { 0xA0 })).cursor(2, 0).bytes(A::TextData, { 1 }).op(O::Text);
    EXPECT_EQ(draw(c, 6, 1), "#.#.#.\n");
}

TEST(XlText, CodesWithoutACharacterStillAdvance)
{
    XlStream c = bitmapFont("F");
    c.append(character("F", 1, 0, 0, 1, { 0x80 }));
    setFont(c, "F").cursor(0, 0).bytes(A::TextData, { 9, 1 }).bytes(A::XSpacingData, { 2, 0 }).op(O::Text);
    XlJob job;
    job.run(onePage(4, 1, c));
    EXPECT_EQ(job.art(0, 4, 1), "..#.\n");
    EXPECT_TRUE(job.sink.has("pclxl.undefined-character"));
}

TEST(XlText, BitmapsTurnWithThePage)
{
    XlStream c = bitmapFont("F");
    c.append(character("F", 1, 0, 3, 3, kFlag)).xy(A::PageOrigin, 3, 3).op(O::SetPageOrigin);
    setFont(c, "F").sint16(A::PageAngle, 90).op(O::SetPageRotation).cursor(0, 0).bytes(A::TextData, { 1 });
    c.op(O::Text);
    EXPECT_EQ(draw(c, 4, 4), "#...\n##..\n###.\n....\n");
}

TEST(XlText, TheBrushPaintsAndANullBrushDoesNot)
{
    XlStream c = bitmapFont("F");
    c.append(character("F", 1, 0, 0, 1, { 0x80 }));
    setFont(c, "F").cursor(0, 0).rgbBrush(10, 20, 30).bytes(A::TextData, { 1 }).bytes(A::XSpacingData, { 1 });
    c.op(O::Text).nullBrush().bytes(A::TextData, { 1 }).bytes(A::XSpacingData, { 1 }).op(O::Text);
    c.grayBrush(0).bytes(A::TextData, { 1 }).op(O::Text);
    XlJob job(PixelFormat::Rgb24);
    job.run(onePage(4, 1, c));
    ASSERT_EQ(job.pageCount(), 1u) << job.sink.message();
    EXPECT_TRUE((job.pixel(0, 0, 0) == Rgb { 10, 20, 30 }));
    EXPECT_TRUE((job.pixel(0, 1, 0) == Rgb { 255, 255, 255 }));
    EXPECT_TRUE((job.pixel(0, 2, 0) == Rgb {}));
}

TEST(XlText, TextNeedsFontAndCursor)
{
    EXPECT_NE(draw(XlStream().cursor(0, 0).text(A::TextData, "a").op(O::Text), 4, 1).find("NoCurrentFont"),
        std::string::npos);
    XlStream c = bitmapFont("F");
    setFont(c, "F").text(A::TextData, "a").op(O::Text);
    EXPECT_NE(draw(c, 4, 1).find("CurrentCursorUndefined"), std::string::npos);
    EXPECT_NE(draw(XlStream().text(A::FontName, "F").op(O::BeginChar), 4, 1).find("FontUndefined"), std::string::npos);
    EXPECT_NE(draw(XlStream().text(A::FontName, "F").op(O::SetFont), 4, 1).find("CharSize"), std::string::npos);
}

TEST(XlText, ARemovedFontIsNoLongerCurrent)
{
    XlStream c = bitmapFont("F");
    setFont(c, "F").text(A::FontName, "F").op(O::RemoveFont).cursor(0, 0).text(A::TextData, "a").op(O::Text);
    EXPECT_NE(draw(c, 4, 1).find("NoCurrentFont"), std::string::npos);
    XlJob job;
    job.run(onePage(4, 1, XlStream().text(A::FontName, "F").op(O::RemoveFont)));
    EXPECT_TRUE(job.sink.has("pclxl.font-not-removed"));
}

TEST(XlText, SoftFontsEndWithTheirSession)
{
    XlStream s = XlStream::withHeader();
    s.beginSession().openDataSource().append(bitmapFont("F")).beginPage(4, 4).endPage();
    s.beginPage(4, 4).append(character("F", 1, 0, 0, 1, { 0x80 })).endPage().endSession();
    s.beginSession().openDataSource().append(character("F", 1, 0, 0, 1, { 0x80 })).endSession();
    XlJob job;
    job.run(s);
    EXPECT_EQ(job.pageCount(), 2u);
    EXPECT_TRUE(job.sink.has("pclxl.error.FontUndefined"));
}

TEST(XlText, BrokenFontsAreErrors)
{
    XlStream header;
    header.text(A::FontName, "F").ubyte(A::FontFormat, 0).op(O::BeginFontHeader).uint16(A::FontHeaderLength, 3);
    header.op(O::ReadFontHeader).data({ 0, 0, 0 }).op(O::EndFontHeader);
    EXPECT_NE(draw(header, 4, 1).find("BadFontData"), std::string::npos);
    XlStream cut = bitmapFont("F");
    cut.text(A::FontName, "F").op(O::BeginChar).ubyte(A::CharCode, 1).uint16(A::CharDataSize, 100).op(O::ReadChar);
    cut.data({ 0, 0, 0 });
    EXPECT_NE(draw(cut, 4, 1).find("MissingData"), std::string::npos);
    XlStream shorter;
    shorter.text(A::FontName, "F").ubyte(A::FontFormat, 0).op(O::BeginFontHeader).uint16(A::FontHeaderLength, 30);
    shorter.op(O::ReadFontHeader).data({ 0, 0, 0 });
    EXPECT_NE(draw(shorter, 4, 1).find("MissingData"), std::string::npos);
}

TEST(XlText, FontMemoryIsLimited)
{
    Limits limits;
    limits.fontBytes = 4000;
    XlStream c = bitmapFont("F");
    for (int i = 0; i < 200; ++i)
        c.append(character("F", i, 0, 0, 64, Bytes(8 * 16, 0x55)));
    XlJob job(PixelFormat::Bilevel, limits);
    job.run(onePage(4, 1, c));
    EXPECT_TRUE(job.sink.has("pclxl.error.InsufficientMemory"));
}

// The built-in faces: no pixels are held against a picture, but where and how large the ink is.

struct Ink {
    int left = 10000, top = 10000, right = -1, bottom = -1;
    std::size_t count = 0;
};

Ink inkOf(const XlStream& contents, int width = 200, int height = 200)
{
    XlJob job;
    job.run(onePage(width, height, contents));
    EXPECT_EQ(job.pageCount(), 1u) << job.sink.message();
    Ink ink;
    for (int y = 0; job.pageCount() == 1 && y < height; ++y)
        for (int x = 0; x < width; ++x)
            if (job.pixel(0, x, y) == Rgb {}) {
                ink = { std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x + 1),
                    std::max(ink.bottom, y + 1), ink.count + 1 };
            }
    return ink;
}

XlStream letter(const XlStream& state, const std::string& name = "Courier         ", int size = 100)
{
    XlStream c;
    c.nullPen();
    return setFont(c, name, size, 277).append(state).cursor(100, 100).text(A::TextData, "L").op(O::Text);
}

TEST(XlText, BuiltInFacesStandOnTheCursor)
{
    const Ink ink = inkOf(letter(XlStream()));
    EXPECT_GT(ink.count, 100u);
    EXPECT_GE(ink.left, 100);
    EXPECT_LT(ink.right, 165);
    EXPECT_NEAR(ink.bottom, 100, 2);
    EXPECT_NEAR(ink.top, 42, 8);
}

TEST(XlText, SizeCountsInUserUnits)
{
    const Ink full = inkOf(letter(XlStream()));
    const Ink half = inkOf(letter(XlStream(), "Courier         ", 50));
    EXPECT_NEAR(half.bottom - half.top, (full.bottom - full.top) / 2.0, 2);
    XlStream scaled;
    setFont(scaled.nullPen(), "Courier         ", 50, 277).xy(A::PageScale, 2, 2).op(O::SetPageScale);
    scaled.cursor(50, 50).text(A::TextData, "L").op(O::Text);
    const Ink doubled = inkOf(scaled);
    EXPECT_NEAR(doubled.top, full.top, 1);
    EXPECT_NEAR(doubled.right, full.right, 1);
}

TEST(XlText, CharAngleTurnsCounterClockwise)
{
    const Ink upright = inkOf(letter(XlStream()));
    const Ink turned = inkOf(letter(XlStream().sint16(A::CharAngle, 90).op(O::SetCharAngle)));
    EXPECT_NEAR(turned.right, 100, 2);
    EXPECT_NEAR(turned.left, upright.top, 2);
    EXPECT_LE(turned.bottom, 100);
    EXPECT_NEAR(100 - turned.top, upright.right - 100, 2);
}

TEST(XlText, ScaleShearAndBoldChangeTheShape)
{
    const Ink plain = inkOf(letter(XlStream()));
    const Ink wide = inkOf(letter(XlStream().realXy(A::CharScale, 1.5F, 0.5F).op(O::SetCharScale)));
    EXPECT_NEAR(wide.right - wide.left, (plain.right - plain.left) * 1.5, 3);
    EXPECT_NEAR(wide.bottom - wide.top, (plain.bottom - plain.top) * 0.5, 3);
    const Ink sheared = inkOf(letter(XlStream().realXy(A::CharShear, 0.5F, 0).op(O::SetCharShear)));
    EXPECT_GT(sheared.right - sheared.left, plain.right - plain.left + 5);
    EXPECT_NEAR(sheared.top, plain.top, 1);
    const Ink bold = inkOf(letter(XlStream().real(A::CharBoldValue, 0.05F).op(O::SetCharBoldValue)));
    EXPECT_GT(bold.count, plain.count * 5 / 4);
}

TEST(XlText, TheTransformationSetLastIsAppliedLast)
{
    // Stretched to twice the width and then turned, or turned and then stretched.
    const Ink stretchedFirst = inkOf(
        letter(XlStream().xy(A::CharScale, 2, 1).op(O::SetCharScale).sint16(A::CharAngle, 90).op(O::SetCharAngle),
            "Courier", 40));
    const Ink turnedFirst = inkOf(
        letter(XlStream().sint16(A::CharAngle, 90).op(O::SetCharAngle).xy(A::CharScale, 2, 1).op(O::SetCharScale),
            "Courier", 40));
    EXPECT_GT(stretchedFirst.bottom - stretchedFirst.top, stretchedFirst.right - stretchedFirst.left);
    EXPECT_LT(turnedFirst.bottom - turnedFirst.top, turnedFirst.right - turnedFirst.left);
}

TEST(XlText, VerticalWritingTurnsCharacters)
{
    const Ink upright = inkOf(letter(XlStream()));
    const Ink vertical = inkOf(letter(XlStream().ubyte(A::WritingMode, 1).op(O::SetCharAttributes)));
    EXPECT_NEAR(vertical.right - vertical.left, upright.bottom - upright.top, 2);
    EXPECT_GE(vertical.left, 100);
}

TEST(XlText, APathOfTextCanBeFilledOrClipped)
{
    const Ink painted = inkOf(letter(XlStream()));
    XlStream c;
    setFont(c.nullPen(), "Courier", 100, 277).cursor(100, 100).text(A::TextData, "L").op(O::TextPath).op(O::PaintPath);
    const Ink filled = inkOf(c);
    EXPECT_NEAR(filled.left, painted.left, 1);
    EXPECT_NEAR(filled.top, painted.top, 1);
    EXPECT_NEAR(static_cast<double>(filled.count), static_cast<double>(painted.count),
        static_cast<double>(painted.count) * 0.1);
    XlStream bitmap = bitmapFont("F");
    setFont(bitmap, "F").cursor(0, 0).text(A::TextData, "L").op(O::TextPath);
    EXPECT_NE(draw(bitmap, 4, 1).find("IllegalOperatorSequence"), std::string::npos);
}

TEST(XlText, SymbolSetsAndWideCodesFindTheSameGlyph)
{
    // A diaeresis: D8 in Roman-8, C4 in Windows Latin 1, U+00C4 in Unicode.
    const auto show = [](int set, int code) {
        XlStream c;
        setFont(c.nullPen(), "Univers       Md", 100, set).cursor(20, 120).words(A::TextData, { code }).op(O::Text);
        const Ink ink = inkOf(c);
        return std::to_string(ink.count) + ' ' + std::to_string(ink.top);
    };
    const std::string roman = show(277, 0xD8);
    EXPECT_EQ(show(629, 0xC4), roman);
    EXPECT_EQ(show(590, 0xC4), roman);
}

TEST(XlText, AnUnknownFaceIsSubstituted)
{
    XlStream c = letter(XlStream(), "No Such Face  Bd");
    XlJob job;
    job.run(onePage(200, 200, c));
    ASSERT_EQ(job.pageCount(), 1u);
    EXPECT_GT(job.device.blackPixelCount(0), 100u);
    EXPECT_EQ(job.interpreter.status(), RunStatus::Done);
}

TEST(XlText, HugeTextIsDrawnAndAbsurdTextIsNot)
{
    XlStream c;
    setFont(c.nullPen(), "Courier", 3000, 277).cursor(-500, 1500).text(A::TextData, "L").op(O::Text);
    EXPECT_GT(inkOf(c).count, 100u);
    XlStream absurd;
    absurd.text(A::FontName, "Courier").real(A::CharSize, 1e11F).uint16(A::SymbolSet, 277).op(O::SetFont);
    absurd.realXy(A::CharScale, 1e11F, 1e-11F).op(O::SetCharScale).cursor(0, 0).text(A::TextData, "LL").op(O::Text);
    absurd.realXy(A::CharScale, 0, 0).op(O::SetCharScale).text(A::TextData, "LL").op(O::Text);
    XlJob job;
    job.run(onePage(100, 100, absurd));
    EXPECT_EQ(job.pageCount(), 1u);
}

TEST(XlText, FontsCanBeSelectedByPclCommands)
{
    XlStream c;
    c.nullPen().text(A::PCLSelectFont, "\x1b(8U\x1b(s1p72v0s0b4148T").op(O::SetFont).cursor(100, 100);
    c.text(A::TextData, "L").op(O::Text);
    const Ink ink = inkOf(c);
    EXPECT_NEAR(ink.bottom, 100, 2);
    EXPECT_NEAR(ink.bottom - ink.top, 72, 10);
}

} // namespace
