#include "quillrip/job/netpbm_reader.h"

#include <gtest/gtest.h>

#include <string>

namespace quillrip {
namespace {

using namespace std::string_literals;

struct Source {
    explicit Source(const std::string& text)
        : bytes(text)
        , input({ reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size() })
        , reader(input)
    {
    }
    std::string bytes;
    MemoryInputStream input;
    NetpbmReader reader;
};

std::string art(const PageBitmap& page)
{
    std::string text;
    for (int y = 0; y < page.height(); ++y) {
        for (int x = 0; x < page.width(); ++x)
            text += page.pixel(x, y).green == 0 ? '#' : '.';
        text += '\n';
    }
    return text;
}

// Rows 1100000001, 0000000000, 0110000000.
const std::string kPicture = "P4\n# made by hand\n10 3\n\xC0\x40\0\0\x60\0"s;

TEST(NetpbmReader, PagesFollowEachOther)
{
    Source source("P5 2 1 255\n\0\xFF"s + "P6\n1 1\n255\n\1\2\3" + kPicture);
    NetpbmHeader header;
    ASSERT_TRUE(source.reader.nextPage(header));
    EXPECT_EQ(header.format, PixelFormat::Gray8);
    PageBitmap grey(PixelFormat::Gray8, 2, 1, {});
    ASSERT_TRUE(source.reader.readUpright(grey, 0));
    EXPECT_EQ(grey.pixel(0, 0), (Rgb { 0, 0, 0 }));
    EXPECT_EQ(grey.pixel(1, 0), (Rgb { 255, 255, 255 }));
    ASSERT_TRUE(source.reader.nextPage(header));
    PageBitmap colour(PixelFormat::Rgb24, 1, 1, {});
    ASSERT_TRUE(source.reader.readUpright(colour, 0));
    EXPECT_EQ(colour.pixel(0, 0), (Rgb { 1, 2, 3 }));
    ASSERT_TRUE(source.reader.nextPage(header));
    EXPECT_EQ(header.width, 10);
    EXPECT_EQ(header.height, 3);
    PageBitmap bilevel(PixelFormat::Bilevel, 10, 3, {});
    ASSERT_TRUE(source.reader.readUpright(bilevel, 0));
    EXPECT_EQ(art(bilevel), "##.......#\n..........\n.##.......\n");
    EXPECT_TRUE(bilevel.extent(1).empty());
    EXPECT_FALSE(source.reader.nextPage(header));
}

TEST(NetpbmReader, PicturesArePaddedAndCutToTheBitmap)
{
    const auto placed = [](int width, int height, int margin) {
        Source source(kPicture);
        NetpbmHeader header;
        EXPECT_TRUE(source.reader.nextPage(header));
        PageBitmap page(PixelFormat::Bilevel, width, height, {});
        EXPECT_TRUE(source.reader.readUpright(page, margin));
        return art(page);
    };
    EXPECT_EQ(placed(12, 2, 1), ".##.......#.\n............\n");
    EXPECT_EQ(placed(8, 4, -1), "#.......\n........\n##......\n........\n");
    EXPECT_EQ(placed(9, 3, 0), "##.......\n.........\n.##......\n");
}

TEST(NetpbmReader, PicturesAreTurnedCounterClockwise)
{
    const auto turned = [](int quarterTurns) {
        Source source("P4 3 2\n\xC0\x20");
        NetpbmHeader header;
        EXPECT_TRUE(source.reader.nextPage(header));
        PageBitmap page(PixelFormat::Bilevel, 4, 3, {});
        EXPECT_TRUE(source.reader.readTurned(page, quarterTurns, 1));
        return art(page);
    };
    EXPECT_EQ(turned(1), "..#.\n.#..\n.#..\n");
    EXPECT_EQ(turned(3), "..#.\n..#.\n.#..\n");
}

TEST(NetpbmReader, BrokenPicturesAreRefused)
{
    NetpbmHeader header;
    // The last number is 1 in 32 bits.
    for (const char* text : { "", "P", "P3 1 1 255\n", "P4 0 1\n", "P5 1 1 65535\n", "P4 99999999999 1\n", "P4 5",
             "P4 21474836481 1\n\x80" }) {
        Source source(text);
        EXPECT_FALSE(source.reader.nextPage(header)) << text;
    }
    Source cut("P4 8 2\n\1");
    ASSERT_TRUE(cut.reader.nextPage(header));
    PageBitmap page(PixelFormat::Bilevel, 8, 2, {});
    EXPECT_FALSE(cut.reader.readUpright(page, 0));
}

} // namespace
} // namespace quillrip
