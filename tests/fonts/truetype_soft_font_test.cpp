#include "font_test_helpers.h"
#include "quillrip/fonts/faces/font_file.h"
#include "quillrip/fonts/soft/soft_font.h"

#include <gtest/gtest.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_TRUETYPE_TABLES_H

using namespace quillrip;

namespace {

/// A real TrueType font, taken apart as a driver does it.
class Source {
public:
    Source()
    {
        FT_Init_FreeType(&m_library);
        for (const char* path : { "/usr/share/fonts/truetype/liberation2/LiberationSerif-Regular.ttf",
                 "/usr/share/fonts/truetype/liberation/LiberationSerif-Regular.ttf",
                 "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf" }) {
            if (!m_face && FT_New_Face(m_library, path, 0, &m_face) != 0)
                m_face = nullptr;
        }
    }
    ~Source()
    {
        if (m_face)
            FT_Done_Face(m_face);
        FT_Done_FreeType(m_library);
    }

    FT_Face face() const { return m_face; }
    unsigned glyph(char32_t unicode) const { return FT_Get_Char_Index(m_face, unicode); }

    std::vector<std::uint8_t> table(const char* tag) const
    {
        const FT_ULong name = FT_MAKE_TAG(tag[0], tag[1], tag[2], tag[3]);
        FT_ULong length = 0;
        if (FT_Load_Sfnt_Table(m_face, name, 0, nullptr, &length) != 0)
            return {};
        std::vector<std::uint8_t> data(length);
        FT_Load_Sfnt_Table(m_face, name, 0, data.data(), &length);
        return data;
    }

    std::vector<std::uint8_t> glyphData(unsigned glyph) const
    {
        const auto head = table("head");
        const auto loca = table("loca");
        const auto glyf = table("glyf");
        const bool isLong = head[51] != 0;
        const auto offset = [&](std::size_t i) -> std::size_t {
            if (isLong)
                return static_cast<std::size_t>(loca[4 * i]) << 24 | static_cast<std::size_t>(loca[4 * i + 1]) << 16
                    | static_cast<std::size_t>(loca[4 * i + 2]) << 8 | loca[4 * i + 3];
            return 2 * (static_cast<std::size_t>(loca[2 * i]) << 8 | loca[2 * i + 1]);
        };
        const std::size_t begin = offset(glyph);
        const std::size_t end = offset(glyph + 1);
        return { glyf.begin() + static_cast<std::ptrdiff_t>(begin), glyf.begin() + static_cast<std::ptrdiff_t>(end) };
    }

    /// Table directory and tables, with an empty place holder for the glyphs.
    Bytes globalData(bool hasMetrics) const
    {
        std::vector<std::string> tags { "cvt ", "fpgm", "head", "maxp", "prep" };
        if (hasMetrics) {
            tags.insert(tags.end(), { "hhea", "hmtx" });
        }
        Bytes directory;
        Bytes body;
        const std::size_t count = tags.size() + 1;
        directory.u32(0x00010000).u16(static_cast<unsigned>(count)).u16(0).u16(0).u16(0);
        directory.text("gdir").u32(0).u32(0).u32(0);
        for (const std::string& tag : tags) {
            const auto data = table(tag.c_str());
            directory.text(tag)
                .u32(0)
                .u32(static_cast<unsigned>(12 + 16 * count + body.size()))
                .u32(static_cast<unsigned>(data.size()));
            body.bytes(data);
            while (body.size() % 4)
                body.u8(0);
        }
        return directory.bytes(body);
    }

private:
    FT_Library m_library = nullptr;
    FT_Face m_face = nullptr;
};

Bytes pclHeader(const Source& source)
{
    Bytes header;
    header.u16(72).u8(15).u8(2).u16(0).u16(0).u16(2048).u16(2048).u8(0).u8(1).u16(629).u16(512).u16(0).u16(900);
    header.u8(0).u8(0).u8(0).u8(0x05).u8(0x42).zeros(21).text("Liberation      ");
    header.u16(2048).u16(static_cast<unsigned>(-300) & 0xFFFF).u16(100).u8(1).u8(0);
    const Bytes data = source.globalData(true);
    header.text("GT").u16(static_cast<unsigned>(data.size())).bytes(data);
    return header.u16(0xFFFF).u16(0).u8(0).checksum(64);
}

Bytes pclCharacter(const Source& source, unsigned glyph)
{
    const auto data = source.glyphData(glyph);
    Bytes block;
    block.u8(15).u8(0).u8(2).u8(15);
    block.u16(static_cast<unsigned>(data.size() + 4)).u16(glyph).bytes(data).u8(0).checksum(4);
    return block;
}

Bytes pclXlHeader(const Source& source, bool hasMetrics)
{
    const Bytes data = source.globalData(hasMetrics);
    Bytes header;
    header.u8(0).u8(0).u16(2).u8(1).u8(0).u16(6000).text("GT").u32(static_cast<unsigned>(data.size())).bytes(data);
    return header.u16(0xFFFF).u32(0);
}

Path expected(const Source& source, unsigned glyph)
{
    Path path;
    FT_Load_Glyph(source.face(), glyph, FT_LOAD_NO_SCALE);
    appendSlotOutline(source.face(), 1.0 / source.face()->units_per_EM, path);
    return path;
}

void expectSameOutline(const Path& a, const Path& b)
{
    ASSERT_EQ(a.pointCount(), b.pointCount());
    for (std::size_t i = 0; i < a.pointCount(); ++i) {
        EXPECT_NEAR(a.points()[i].x, b.points()[i].x, 1e-9);
        EXPECT_NEAR(a.points()[i].y, b.points()[i].y, 1e-9);
    }
}

class TrueTypeSoftFontTest : public testing::Test {
protected:
    void SetUp() override
    {
        if (!m_source.face())
            GTEST_SKIP() << "no TrueType font is installed";
    }
    Source m_source;
};

} // namespace

TEST_F(TrueTypeSoftFontTest, PclGlyphsHaveTheOutlinesOfTheFont)
{
    quillrip::test::RecordingSink reports;
    const auto font = SoftFont::fromPclHeader(pclHeader(m_source), { &reports, 0 });
    ASSERT_NE(font, nullptr);
    EXPECT_EQ(font->traits().family, 16901);
    EXPECT_NEAR(font->traits().underlineTop, -300 / 2048.0, 1e-9);
    for (const char32_t unicode : U"Ag&\u00e9") {
        if (unicode == 0)
            continue;
        const unsigned glyph = m_source.glyph(unicode);
        ASSERT_TRUE(font->addPclCharacter(0xFFFF & unicode, pclCharacter(m_source, glyph), { &reports, 0 }));
        EXPECT_EQ(font->glyph(unicode), glyph);
        FT_Load_Glyph(m_source.face(), glyph, FT_LOAD_NO_SCALE);
        EXPECT_NEAR(font->advance(glyph),
            static_cast<double>(m_source.face()->glyph->metrics.horiAdvance) / m_source.face()->units_per_EM, 1e-9);
    }
    for (const char32_t unicode : U"Ag&") {
        if (unicode == 0)
            continue;
        Path path;
        ASSERT_TRUE(font->outline(font->glyph(unicode), path));
        expectSameOutline(path, expected(m_source, font->glyph(unicode)));
    }
    EXPECT_TRUE(reports.diagnostics.empty()) << reports.diagnostics[0].message;
    EXPECT_EQ(font->glyph('Z'), kNoGlyph);
}

TEST_F(TrueTypeSoftFontTest, CompositesUseComponentsThatCameUnderNoCode)
{
    const auto font = SoftFont::fromPclHeader(pclHeader(m_source), {});
    const unsigned composite = m_source.glyph(0xE9);
    const auto data = m_source.glyphData(composite);
    ASSERT_GT(data.size(), 10u);
    if (data[0] < 0x80)
        GTEST_SKIP() << "the installed font has no composite for e acute";
    font->addPclCharacter(0xE9, pclCharacter(m_source, composite), {});
    for (std::size_t at = 10;;) {
        const unsigned flags = static_cast<unsigned>(data[at] << 8 | data[at + 1]);
        const unsigned component = static_cast<unsigned>(data[at + 2] << 8 | data[at + 3]);
        font->addPclCharacter(0xFFFF, pclCharacter(m_source, component), {});
        if (!(flags & 0x20))
            break;
        at += 4 + ((flags & 1) ? 4 : 2) + ((flags & 8) ? 2 : 0) + ((flags & 0x40) ? 4 : 0) + ((flags & 0x80) ? 8 : 0);
    }
    Path path;
    ASSERT_TRUE(font->outline(font->glyph(0xE9), path));
    expectSameOutline(path, expected(m_source, composite));
}

TEST_F(TrueTypeSoftFontTest, ContinuationBlocksComplete)
{
    const auto font = SoftFont::fromPclHeader(pclHeader(m_source), {});
    const Bytes whole = pclCharacter(m_source, m_source.glyph('g'));
    ASSERT_GT(whole.size(), 40u);
    EXPECT_TRUE(font->addPclCharacter('g', ByteView(whole.data(), 30), {}));
    EXPECT_EQ(font->glyph('g'), kNoGlyph);
    Bytes rest;
    rest.u8(15).u8(1).bytes({ whole.begin() + 30, whole.end() });
    EXPECT_TRUE(font->addPclCharacter('g', rest, {}));
    Path path;
    ASSERT_TRUE(font->outline(font->glyph('g'), path));
    expectSameOutline(path, expected(m_source, m_source.glyph('g')));
}

TEST_F(TrueTypeSoftFontTest, WrongChecksumIsReportedAndAccepted)
{
    const auto font = SoftFont::fromPclHeader(pclHeader(m_source), {});
    Bytes block = pclCharacter(m_source, m_source.glyph('g'));
    block.back() = static_cast<std::uint8_t>(block.back() + 1);
    quillrip::test::RecordingSink reports;
    EXPECT_TRUE(font->addPclCharacter('g', block, { &reports, 0 }));
    EXPECT_TRUE(reports.has("font.checksum"));
    EXPECT_NE(font->glyph('g'), kNoGlyph);
}

TEST_F(TrueTypeSoftFontTest, PclXlClassesCarryTheirMetrics)
{
    const unsigned glyph = m_source.glyph('g');
    const auto data = m_source.glyphData(glyph);
    const auto size = static_cast<unsigned>(data.size());
    for (const bool hasMetrics : { true, false }) {
        const auto font = SoftFont::fromPclXlHeader(pclXlHeader(m_source, hasMetrics), {});
        ASSERT_NE(font, nullptr);
        Bytes class0;
        class0.u8(1).u8(0).u16(size + 4).u16(glyph).bytes(data);
        ASSERT_TRUE(font->addPclXlCharacter(1, class0, {}));
        Path path;
        ASSERT_TRUE(font->outline(font->glyph(1), path));
        expectSameOutline(path, expected(m_source, glyph));

        // A bearing of its own moves the outline there.
        const int bearing = static_cast<std::int16_t>(data[2] << 8 | data[3]) + 100;
        Bytes class1;
        class1.u8(1).u8(1).u16(size + 8).u16(static_cast<unsigned>(bearing)).u16(1111).u16(glyph).bytes(data);
        ASSERT_TRUE(font->addPclXlCharacter(2, class1, {}));
        EXPECT_NEAR(font->advance(font->glyph(2)), 1111.0 / 2048, 1e-9);
        Path moved;
        ASSERT_TRUE(font->outline(font->glyph(2), moved));
        EXPECT_NEAR(moved.points()[0].x, path.points()[0].x + 100.0 / 2048, 1e-9);

        Bytes class2;
        class2.u8(1).u8(2).u16(size + 10).u16(static_cast<unsigned>(bearing)).u16(999).u16(0).u16(glyph).bytes(data);
        ASSERT_TRUE(font->addPclXlCharacter(3, class2, {}));
        EXPECT_NEAR(font->advance(font->glyph(3)), 999.0 / 2048, 1e-9);
    }
}

TEST_F(TrueTypeSoftFontTest, BlankGlyphsAdvanceWithoutInk)
{
    const auto font = SoftFont::fromPclHeader(pclHeader(m_source), {});
    const unsigned space = m_source.glyph(' ');
    ASSERT_TRUE(font->addPclCharacter(' ', pclCharacter(m_source, space), {}));
    Path path;
    EXPECT_FALSE(font->outline(font->glyph(' '), path));
    EXPECT_GT(font->advance(font->glyph(' ')), 0.2);
}

TEST_F(TrueTypeSoftFontTest, CopyDrawsTheSame)
{
    const auto font = SoftFont::fromPclHeader(pclHeader(m_source), {});
    font->addPclCharacter('g', pclCharacter(m_source, m_source.glyph('g')), {});
    const auto copy = font->copy();
    ASSERT_NE(copy, nullptr);
    Path path;
    ASSERT_TRUE(copy->outline(copy->glyph('g'), path));
    expectSameOutline(path, expected(m_source, m_source.glyph('g')));
}

TEST_F(TrueTypeSoftFontTest, VerticalSegmentsAreRead)
{
    const Bytes data = m_source.globalData(true);
    Bytes header;
    header.u8(0).u8(0).u16(2).u8(1).u8(0).u16(6000).text("GT").u32(static_cast<unsigned>(data.size())).bytes(data);
    header.text("VE").u32(8).u16(0).u16(1).u16(0x41).u16(0x5A);
    header.text("VT").u32(8).u16(m_source.glyph('g')).u16(m_source.glyph('A')).u16(0xFFFF).u16(0xFFFF);
    header.text("VR").u32(4).u16(0).u16(static_cast<unsigned>(-512) & 0xFFFF);
    header.u16(0xFFFF).u32(0);
    const auto font = SoftFont::fromPclXlHeader(header, {});
    ASSERT_NE(font, nullptr);
    EXPECT_TRUE(font->staysUpright(0x41));
    EXPECT_FALSE(font->staysUpright(0x61));
    EXPECT_NEAR(font->verticalDescender(), 0.25, 1e-9);
    font->addPclCharacter('g', pclCharacter(m_source, m_source.glyph('g')), {});
    EXPECT_EQ(font->verticalForm(font->glyph('g')), font->glyph('g')); // the other form has not come yet
    font->addPclCharacter('A', pclCharacter(m_source, m_source.glyph('A')), {});
    EXPECT_EQ(font->verticalForm(font->glyph('g')), font->glyph('A'));
}

TEST_F(TrueTypeSoftFontTest, EveryTruncationIsSurvived)
{
    const Bytes header = pclHeader(m_source);
    const Bytes character = pclCharacter(m_source, m_source.glyph('g'));
    // Every byte where structures are dense, larger steps within the tables.
    for (std::size_t length = 0; length <= header.size(); length += length < 400 ? 1 : 97) {
        const auto font = SoftFont::fromPclHeader(ByteView(header.data(), length), {});
        if (!font)
            continue;
        font->addPclCharacter('g', character, {});
        GlyphMask mask;
        font->rasterise(font->glyph('g'), Matrix { 40, 0, 0, -40, 0, 0 }, GlyphMask::Depth::Bits, {}, mask);
    }
    const auto font = SoftFont::fromPclHeader(header, {});
    for (std::size_t length = 0; length <= character.size(); ++length) {
        font->addPclCharacter('g', ByteView(character.data(), length), {});
        GlyphMask mask;
        font->rasterise(font->glyph('g'), Matrix { 40, 0, 0, -40, 0, 0 }, GlyphMask::Depth::Bits, {}, mask);
        // A character that lacks its reserved byte and checksum is whole.
        EXPECT_EQ(mask.width > 0, length + 2 >= character.size()) << length;
    }
    const Bytes xl = pclXlHeader(m_source, true);
    for (std::size_t length = 0; length <= xl.size(); length += length < 300 ? 1 : 101)
        SoftFont::fromPclXlHeader(ByteView(xl.data(), length), {});
}

TEST_F(TrueTypeSoftFontTest, DamagedBytesAreSurvived)
{
    const Bytes header = pclHeader(m_source);
    const Bytes character = pclCharacter(m_source, m_source.glyph('g'));
    int usable = 0;
    for (std::size_t at = 0; at < 330; ++at) {
        for (const std::uint8_t value : { std::uint8_t { 0 }, std::uint8_t { 0x7F }, std::uint8_t { 0xFF } }) {
            Bytes damaged = header;
            damaged[at] = value;
            const auto font = SoftFont::fromPclHeader(damaged, {});
            if (!font)
                continue;
            ++usable;
            Bytes glyph = character;
            glyph[8 + at % (glyph.size() - 8)] = value;
            font->addPclCharacter('g', glyph, {});
            GlyphMask mask;
            font->rasterise(font->glyph('g'), Matrix { 40, 0, 0, -40, 0, 0 }, GlyphMask::Depth::Bits, {}, mask);
        }
    }
    EXPECT_GT(usable, 100); // most fields say nothing that drawing needs
}

TEST_F(TrueTypeSoftFontTest, CompositeThatContainsItselfEnds)
{
    const auto font = SoftFont::fromPclHeader(pclHeader(m_source), {});
    const unsigned id = m_source.glyph('g');
    Bytes data;
    data.u16(0xFFFF).zeros(8).u16(0x0002).u16(id).u8(0).u8(0);
    Bytes block;
    block.u8(15).u8(0).u8(2).u8(15).u16(static_cast<unsigned>(data.size() + 4)).u16(id).bytes(data).u8(0).checksum(4);
    ASSERT_TRUE(font->addPclCharacter('g', block, {}));
    Path path;
    EXPECT_FALSE(font->outline(font->glyph('g'), path));
}
