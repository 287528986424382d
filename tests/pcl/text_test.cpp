#include "quillrip/fonts/font_library.h"
#include "quillrip/fonts/glyph_painter.h"
#include "tests/pcl/printer.h"
#include "tests/support/recording_sink.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;

namespace {

/// A bitmap font with letters that are plain boxes: `width` x 8 dots standing on the baseline, 2 dots apart.
class BoxFont {
public:
    explicit BoxFont(bool isProportional, int cell = 10)
        : m_header(64, '\0')
    {
        word(0, 64);
        m_header[3] = 1; // 8-bit
        word(6, 10);
        word(8, cell);
        word(10, 12);
        m_header[13] = isProportional ? 1 : 0;
        word(14, 277);
        word(16, cell * 4);
        word(18, 12 * 4);
    }

    /// The header states a resolution.
    BoxFont& at(int dotsPerInch)
    {
        m_header.resize(68, '\0');
        m_header[2] = 20;
        word(0, 68);
        word(64, dotsPerInch);
        word(66, dotsPerInch);
        return *this;
    }

    std::string download(int id) const { return e("*c" + std::to_string(id) + "D") + command(")s", "W", m_header); }

    static std::string letter(char code, int width)
    {
        std::string data = bytes({ 4, 0, 14, 1, 0, 0, 0, 0, 0, 8, 0, width, 0, 8, 0, (width + 2) * 4 });
        for (int row = 0; row < 8; ++row) {
            for (int x = 0; x < width; x += 8)
                data.push_back(static_cast<char>(0xFF << (width - x >= 8 ? 0 : 8 - (width - x))));
        }
        return e("*c" + std::to_string(static_cast<int>(code)) + "E") + command("(s", "W", data);
    }

private:
    void word(std::size_t at, int value)
    {
        m_header[at] = static_cast<char>(value >> 8);
        m_header[at + 1] = static_cast<char>(value);
    }

    std::string m_header;
};

/// The start of a job that prints with the box font: A is 8 dots wide, B 4.
std::string boxes(bool isProportional)
{
    return kStart + BoxFont(isProportional).download(7) + BoxFont::letter('A', 8) + BoxFont::letter('B', 4) + e("(7X");
}

} // namespace

TEST(PclText, BitmapGlyphsStandOnTheBaseline)
{
    EXPECT_EQ(print(boxes(true) + at(100, 200) + "A").ink(), (PixelRect { 175, 192, 183, 200 }));
}

TEST(PclText, ProportionalFontsAdvanceByTheGlyphFixedOnesByTheColumn)
{
    EXPECT_EQ(print(boxes(true) + at(100, 200) + "BA").ink().right, 175 + 6 + 8);
    EXPECT_EQ(print(boxes(false) + at(100, 200) + "BA").ink().right, 175 + 10 + 8);
    EXPECT_EQ(print(boxes(false) + e("&k12H") + at(100, 200) + "BA").ink().right, 175 + 30 + 8);
}

TEST(PclText, FontsByIdPrintDotForDotWhenTheirHeaderIsFinerThanTheJob)
{
    const auto job = [](bool isProportional) {
        return BoxFont(isProportional).at(600).download(7) + BoxFont::letter('A', 8) + BoxFont::letter('B', 4)
            + e("(7X") + at(100, 200) + "BA";
    };
    const PixelRect asStated { 175, 196, 175 + 3 + 4, 200 };
    const PixelRect dotForDot { 175, 192, 175 + 6 + 8, 200 };
    EXPECT_EQ(print(kStart + job(true)).ink(), asStated);
    EXPECT_EQ(print(kStart + e("*t600R") + job(true)).ink(), asStated);
    EXPECT_EQ(print(kStart + e("*t300R") + job(true)).ink(), dotForDot);
    EXPECT_EQ(print(kStart + e("&u300D") + job(true)).ink(), dotForDot);
    EXPECT_EQ(print(kStart + e("&u300D") + job(false)).ink().right, 175 + 10 + 8);
    PrinterSettings settings;
    settings.environment.resolution = 300;
    EXPECT_EQ(print(kStart + job(true), settings).ink(), dotForDot);
    settings.environment.resolution = 600;
    EXPECT_EQ(print(kStart + e("&u300D") + job(true), settings).ink(), asStated);
}

TEST(PclText, FixedAdvancesDoNotDrift)
{
    // 16.67 characters to the inch, 120 of them: 7.2 inches to the last column's start.
    const Printed printed = print(boxes(false) + e("&k7.2H") + at(0, 200) + std::string(120, ' ') + "A");
    EXPECT_EQ(printed.ink().left, 75 + 2160);
}

TEST(PclText, BackspaceOverstrikes)
{
    EXPECT_EQ(print(boxes(false) + at(100, 200) + "A\bA").ink(), (PixelRect { 175, 192, 183, 200 }));
    // Over a proportional character the next one is centred, and the cursor goes on where it was.
    const Printed printed = print(boxes(true) + at(100, 200) + "A\bB" + at(100, 300) + "A\bBA");
    EXPECT_EQ(printed.blackPixels(), 64u + 64u + 64u);
    EXPECT_EQ(printed.ink().right, 175 + 10 + 8);
}

TEST(PclText, ShiftOutAndInChangeFonts)
{
    const std::string second = BoxFont(true).download(8) + BoxFont::letter('A', 16) + e(")8X");
    const Printed printed = print(boxes(true) + second + at(100, 200) + "A\x0e" + "A\x0f" + "A");
    EXPECT_EQ(printed.ink().right, 175 + 10 + 18 + 8);
}

TEST(PclText, CodesWithoutAGlyphMoveCodesOutsideTheSetDoNot)
{
    EXPECT_EQ(print(boxes(false) + at(100, 200) + "zA").ink().left, 185);
    EXPECT_EQ(print(boxes(false) + at(100, 200)
                  + "\x85"
                    "A")
                  .ink()
                  .left,
        175);
}

TEST(PclText, TransparentDataPrintEveryCode)
{
    EXPECT_EQ(print(boxes(false) + at(100, 200) + e("&p3X")
                  + "\x1b\r"
                    "A")
                  .ink()
                  .left,
        195);
}

TEST(PclText, DisplayFunctionsShowCommandsInsteadOfObeyingThem)
{
    // ESC, *, p, 9, X are five columns; the return acts as well and starts a new line.
    const Printed printed = print(boxes(false) + at(0, 200) + e("Y") + "\x1b*p9XA\rA" + e("Z") + at(0, 400) + "A");
    EXPECT_TRUE(printed.isBlack(75 + 50, 195));
    EXPECT_TRUE(printed.isBlack(75, 245));
    EXPECT_TRUE(printed.isBlack(75, 395));
}

TEST(PclText, UnderlinesCoverTextSpacesAndMoves)
{
    const Printed fixed = print(boxes(false) + at(100, 200) + e("&d0D") + "A A" + e("&d@") + "A");
    EXPECT_EQ(fixed.art({ 173, 203, 209, 209 }),
        "....................................\n....................................\n"
        "..##############################....\n..##############################....\n"
        "..##############################....\n....................................\n");
    const Printed moved = print(boxes(false) + at(100, 200) + e("&d0D") + "A" + e("*p+100X") + "A" + e("&d@"));
    EXPECT_TRUE(moved.isBlack(175 + 60, 206));
    const Printed lines = print(boxes(false) + at(100, 200) + e("&d0D") + "A\r\nA" + e("&d@"));
    EXPECT_TRUE(lines.isBlack(176, 206));
    EXPECT_TRUE(lines.isBlack(76, 256));
    EXPECT_FALSE(lines.isBlack(176, 256));
}

TEST(PclText, FloatingUnderlinesAreDrawnToo)
{
    const Printed printed = print(boxes(false) + at(100, 200) + e("&d3D") + "AA" + e("&d@"));
    EXPECT_GT(printed.ink().bottom, 201);
}

TEST(PclText, PrintDirectionTurnsText)
{
    const Printed printed = print(boxes(false) + at(100, 200) + e("&a90P") + "AA");
    EXPECT_EQ(printed.ink(), (PixelRect { 167, 182, 175, 200 }));
    EXPECT_EQ(print(boxes(false) + at(100, 200) + e("&a180P") + "AA").ink(), (PixelRect { 157, 200, 175, 208 }));
}

TEST(PclText, TextTakesPatternAndTransparency)
{
    const std::string white = e("*v1T") + e("*v1O");
    const Printed printed = print(boxes(false) + at(90, 190) + e("*c40a20b0P") + white + at(100, 200) + "A");
    EXPECT_EQ(printed.blackPixels(), 800u - 64u);
    // White that is transparent leaves no trace.
    EXPECT_EQ(print(boxes(false) + at(90, 190) + e("*c40a20b0P") + e("*v1T") + at(100, 200) + "A").blackPixels(), 800u);
}

TEST(PclText, TextBeyondTheRightMarginIsCut)
{
    const Printed printed = print(boxes(false) + e("&a3M") + at(0, 200) + "AAAAAAAA");
    EXPECT_EQ(printed.ink().right, 75 + 30 + 8);
    EXPECT_EQ(print(boxes(false) + e("&a3M") + e("&s0C") + at(0, 200) + "AAAAAAAA").ink().bottom, 250);
}

TEST(PclText, SoftFontsAreDeletedCopiedAndKept)
{
    const std::string text = at(0, 200) + "A";
    EXPECT_EQ(print(boxes(false) + e("*c7d3F") + e("*c66E") + text).blackPixels(), 64u);
    EXPECT_EQ(print(boxes(false) + e("*c65E") + e("*c3F") + text).pages.size(), 0u);
    EXPECT_EQ(print(boxes(false) + e("*c9d6F") + e("*c7d2F") + e("(9X") + text).blackPixels(), 64u);
    EXPECT_EQ(print(boxes(false) + e("*c5F") + kStart + e("(7X") + text).blackPixels(), 64u);
    EXPECT_NE(print(boxes(false) + kStart + e("(7X") + text).blackPixels(), 64u);
}

TEST(PclText, SoftFontsMayHaveCharactersAtEveryCode)
{
    std::string text;
    for (int i = 0; i < 5000; ++i)
        text += static_cast<char>(i % 40 < 11 ? 16 + i % 40 : 'A');
    EXPECT_EQ(print(boxes(false) + text).status, RunStatus::Done);
    EXPECT_EQ(print(kStart + text).status, RunStatus::Damaged);
}

TEST(PclText, FontsByName)
{
    const std::string name = bytes({ 0 }) + "boxes";
    const std::string job = kStart + command("&n", "W", name) + command(")s", "W", std::string(1, '\0'));
    EXPECT_EQ(print(job).status, RunStatus::Done);
    const std::string associated = boxes(false) + command("&n", "W", name) + e("*c7D")
        + command("&n", "W", bytes({ 2 }) + "none") + at(0, 200) + "A";
    EXPECT_EQ(print(associated).blackPixels(), 64u);
}

TEST(PclText, PlainTextNeedsNoCommands)
{
    const Printed printed = print("Hello\r\n\tWorld\r\n");
    ASSERT_EQ(printed.pages.size(), 1u);
    // First line: baseline 0.625 inch down; its H starts at the logical page's left edge.
    EXPECT_GE(printed.ink().left, 75);
    EXPECT_LT(printed.ink().left, 90);
    EXPECT_NEAR(printed.ink().top, 188 - 28, 8);
    EXPECT_EQ(printed.sheets[0].width, 6120);
}

TEST(PclText, DefaultFontComesFromTheEnvironment)
{
    PrinterSettings settings;
    const int courier = print("iiiiiiiiii", settings).ink().width();
    settings.environment.fontNumber = 1; // the first of the list is proportional
    EXPECT_LT(print("iiiiiiiiii", settings).ink().width(), courier / 2);
    EXPECT_LT(print(e("(s0b4099T") + e("(3@") + "iiiiiiiiii", settings).ink().width(), courier / 2);
    settings.environment.fontNumber = 999;
    EXPECT_EQ(print("iiiiiiiiii", settings).ink().width(), courier);
    settings.environment.fontNumber = 0;
    settings.environment.pitch = 20;
    EXPECT_NEAR(print("iiiiiiiiii", settings).ink().width(), courier / 2, 8);
}

TEST(PclText, InkjetRasterLanguagesPrintNoText)
{
    PrinterSettings settings;
    settings.environment.family = quillrip::pcl::PrinterFamily::InkjetRaster;
    EXPECT_EQ(print(e("u300D") + "300D", settings).pages.size(), 0u);
}

TEST(PclText, ByteOrderMarkAndEndOfFileMarkAreNoText)
{
    EXPECT_EQ(print("\xEF\xBB\xBF   \x1a").pages.size(), 0u);
    EXPECT_EQ(print(e("(10U") + "\x1a").pages.size(), 0u);
}

TEST(PclText, TwoByteCodesTakeTwoBytes)
{
    // Method 21: every code from 21 hex on leads a pair.
    EXPECT_EQ(print(boxes(false) + e("&t21P") + at(100, 200) + "zz" + e("&t0P") + "A").ink().left, 175);
    EXPECT_EQ(print(boxes(false) + e("&t38P") + at(100, 200)
                  + "A\xA0"
                    "AA")
                  .ink()
                  .right,
        175 + 18);
}

TEST(PclText, PartsOfAJobShareTheGlyphsThatOneHasMade)
{
    FontLibrary fonts;
    RecordingSink sink;
    MemoryPageDevice device { PixelFormat::Gray8, 75 };
    const auto glyphsAfter = [&](const std::string& part) {
        pcl::Interpreter interpreter { device, sink, {}, fonts, {} };
        MemoryInputStream input { ByteView { reinterpret_cast<const std::uint8_t*>(part.data()), part.size() } };
        EXPECT_EQ(interpreter.run(input), pcl::Interpreter::End::InputEnded);
        EXPECT_EQ(interpreter.finish(), RunStatus::Done);
        return fonts.glyphs().cache().rasterisations();
    };
    const std::string text = e("E") + "abcabc";
    EXPECT_EQ(glyphsAfter(text), 3u);
    EXPECT_EQ(glyphsAfter(text), 3u);
    EXPECT_EQ(glyphsAfter(text + "d"), 4u);
    EXPECT_EQ(device.pages().size(), 3u);
}
