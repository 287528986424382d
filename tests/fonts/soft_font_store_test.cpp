#include "font_test_helpers.h"
#include "quillrip/fonts/font_library.h"

#include <gtest/gtest.h>

using namespace quillrip;

namespace {

std::shared_ptr<SoftFont> anyFont()
{
    Bytes header;
    header.u16(64).zeros(62);
    return SoftFont::fromPclHeader(header, {});
}

} // namespace

TEST(SoftFontStore, TemporaryFontsGoAndPermanentOnesStay)
{
    SoftFontStore store(1 << 20);
    store.put({ 1, "" }, anyFont(), {});
    store.put({ 2, "" }, anyFont(), {});
    store.setPermanent({ 2, "" }, true);
    store.removeTemporary();
    EXPECT_EQ(store.find({ 1, "" }), nullptr);
    EXPECT_NE(store.find({ 2, "" }), nullptr);
    store.removeAll();
    EXPECT_EQ(store.find({ 2, "" }), nullptr);
}

TEST(SoftFontStore, StringKeysAreApartFromNumbersAndCanBeAliases)
{
    SoftFontStore store(1 << 20);
    store.put({ 0, "" }, anyFont(), {});
    store.put({ 0, "Logo" }, anyFont(), {});
    EXPECT_NE(store.find({ 0, "" }), store.find({ 0, "Logo" }));
    store.associate({ 12, "" }, { 0, "Logo" });
    EXPECT_EQ(store.find({ 12, "" }), store.find({ 0, "Logo" }));
    store.associate({ 13, "" }, { 0, "Missing" });
    EXPECT_EQ(store.find({ 13, "" }), nullptr);
}

TEST(SoftFontStore, RefusesFontsAboveTheMemoryLimit)
{
    SoftFontStore store(100);
    quillrip::test::RecordingSink reports;
    EXPECT_FALSE(store.put({ 1, "" }, anyFont(), { &reports, 0 }));
    EXPECT_TRUE(reports.has("font.memory"));
    EXPECT_EQ(store.find({ 1, "" }), nullptr);
    EXPECT_FALSE(store.hasRoomFor(101));
    EXPECT_TRUE(store.hasRoomFor(100));
}

TEST(SoftFontStore, DeletedFontsMakeRoomAgain)
{
    const std::size_t size = anyFont()->bytes();
    SoftFontStore store(2 * size);
    for (int i = 0; i < 100; ++i) {
        EXPECT_TRUE(store.put({ 1, "" }, anyFont(), {})) << i;
        EXPECT_TRUE(store.put({ 2, "" }, anyFont(), {})) << i;
        EXPECT_FALSE(store.put({ 3, "" }, anyFont(), {})) << i;
    }
}

TEST(SoftFontStore, CopiesAreIndependent)
{
    Bytes character;
    character.u8(4).u8(0).u8(14).u8(1).u8(0).u8(0).u16(0).u16(1).u16(8).u16(1).u16(32).u8(0xFF);
    const auto font = anyFont();
    font->addPclCharacter(65, character, {});
    const auto copy = font->copy();
    EXPECT_NE(copy->id(), font->id());
    font->removeCharacter(65);
    EXPECT_EQ(font->glyph(65), kNoGlyph);
    EXPECT_NE(copy->glyph(65), kNoGlyph);
}
