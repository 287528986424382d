#include "font_test_helpers.h"
#include "quillrip/fonts/font_library.h"

#include <gtest/gtest.h>

using namespace quillrip;

namespace {

Bytes header(unsigned format)
{
    Bytes bytes;
    bytes.u16(format == 10 ? 80 : 88).u8(format).u8(format == 10 ? 1 : 10).u16(0).u16(0).u16(0).u16(0).u8(0).u8(1);
    bytes.u16(format == 10 ? 277 : 56)
        .u16(2600)
        .u16(0)
        .u16(4000)
        .u8(0)
        .u8(0)
        .u8(3)
        .u8(5)
        .u8(16)
        .zeros(21)
        .text("Times Bd        ");
    bytes.u16(8782).u16(8782).u16(8782).u16(static_cast<unsigned>(-1300) & 0xFFFF).u16(400).u16(0).u16(0);
    if (format == 11)
        bytes.zeros(8);
    bytes.u16(0).u8(0).checksum(64);
    return bytes;
}

} // namespace

TEST(IntellifontSoftFont, BorrowsShapesOfABuiltInFaceWithAWarning)
{
    FontLibrary library;
    quillrip::test::RecordingSink reports;
    const auto font = SoftFont::fromPclHeader(header(10), { &reports, 0 });
    ASSERT_NE(font, nullptr);
    EXPECT_TRUE(reports.diagnostics.empty());
    EXPECT_EQ(font->traits().family, 4101);
    EXPECT_EQ(font->traits().weight, 3);
    EXPECT_NEAR(font->traits().underlineTop, -1300 / 8782.0, 1e-9);
    library.softFonts().put({ 1, "" }, font, {});

    Bytes contour;
    contour.u8(10).u8(0).u8(2).u8(3).u16(20).zeros(18);
    EXPECT_TRUE(font->addPclCharacter('A', contour, { &reports, 0 }));
    EXPECT_TRUE(reports.has("font.intellifont"));
    FontRequest request;
    const Font selected = library.selectById({ 1, "" }, request, {});
    const auto found = selected.find('A');
    ASSERT_NE(found.glyph, kNoGlyph);
    EXPECT_EQ(selected.find('B').glyph, kNoGlyph);
    // CG Times Bold's A.
    EXPECT_NEAR(font->advance(found.glyph), 19029 / 26458.33, 1e-4);
    Path path;
    EXPECT_TRUE(font->outline(found.glyph, path));
    EXPECT_FALSE(path.empty());
}

TEST(IntellifontSoftFont, UnboundCharactersGoByTheMasterSymbolList)
{
    FontLibrary library;
    const auto font = SoftFont::fromPclHeader(header(11), {});
    ASSERT_NE(font, nullptr);
    EXPECT_EQ(font->traits().domain, CodeDomain::MasterSymbolList);
    library.softFonts().put({ 1, "" }, font, {});
    Bytes contour;
    contour.u8(10).u8(0).u8(2).u8(3).u16(20).zeros(18);
    font->addPclCharacter(masterSymbolOfUnicode(0xE9), contour, {});
    FontRequest request;
    request.symbolSet = 277;
    const Font selected = library.selectById({ 1, "" }, request, {});
    EXPECT_NE(selected.find(0xC5).glyph, kNoGlyph); // e acute in Roman-8
    EXPECT_EQ(selected.find(0xC4).glyph, kNoGlyph);
    EXPECT_TRUE(selected.find(0xC4).isPrintable);
}

TEST(IntellifontSoftFont, CompoundCharactersTellTheirEscapement)
{
    const auto font = SoftFont::fromPclHeader(header(10), {});
    Bytes compound;
    compound.u8(10).u8(0).u8(2).u8(4).u16(4391).u8(2).u8(0);
    compound.u16('e').u16(0).u16(0).u16(0xA8).u16(100).u16(200).u8(0).u8(0);
    ASSERT_TRUE(font->addPclCharacter(0xC5, compound, {}));
    EXPECT_NEAR(font->advance(font->glyph(0xC5)), 0.5, 1e-9);
}

TEST(IntellifontSoftFont, TruncatedDataNeverCrash)
{
    for (const unsigned format : { 10u, 11u }) {
        const Bytes bytes = header(format);
        for (std::size_t length = 0; length < bytes.size(); ++length)
            SoftFont::fromPclHeader(ByteView(bytes.data(), length), {});
    }
    const auto font = SoftFont::fromPclHeader(header(10), {});
    ASSERT_NE(font, nullptr);
    Bytes compound;
    compound.u8(10).u8(0).u8(2).u8(4).u16(4391).u8(200).u8(0).u16('e').u16(0).u16(0).u8(0);
    for (std::size_t length = 0; length < compound.size(); ++length)
        font->addPclCharacter('e', ByteView(compound.data(), length), {});
    Path path;
    font->outline(font->glyph('e'), path);
}
