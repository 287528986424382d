#include "quillrip/pcl/placed_block.h"
#include "tests/pcl/printer.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;
using quillrip::pcl::PlacedBlock;

namespace {

/// A block's data: words of 16 pixels to the row, and commands as 16-bit words.
std::string block(int left, int top, int rows, int words, const std::vector<int>& commands)
{
    std::string body = bytes({ left >> 8, left & 255, top >> 8, top & 255, rows, words >> 8, words & 255 });
    for (const int command : commands)
        body += bytes({ command >> 8, command & 255 });
    const auto length = static_cast<int>(body.size());
    return bytes({ length >> 8, length & 255 }) + body;
}

ByteView view(const std::string& data) { return { reinterpret_cast<const std::uint8_t*>(data.data()), data.size() }; }

/// The rows, and whether the block was whole.
std::pair<std::vector<std::string>, bool> decoded(const std::string& data)
{
    std::pair<std::vector<std::string>, bool> result;
    const auto placed = PlacedBlock::read(view(data));
    result.second = placed && placed->decode([&](ByteView row) {
        result.first.emplace_back(reinterpret_cast<const char*>(row.data), row.size);
        return true;
    });
    return result;
}

} // namespace

TEST(PclPlacedBlock, CommandsFillRowsWordByWord)
{
    const auto [rows, isWhole] = decoded(block(0, 0, 2, 9,
        { 0x0020, 0x1234, 0x5678, 0x8002, 0xABCD, 0xA000 | 0xA << 9 | 2, 0xC000 | 3 << 8 | 0x5A, // the first row
            0xE008, 0x0010, 0x0001 }));
    EXPECT_TRUE(isWhole);
    const std::string common
        = bytes({ 0x12, 0x34, 0x56, 0x78, 0xAB, 0xCD, 0xAB, 0xCD, 0xAA, 0xAA, 0xAA, 0xAA, 0x5A, 0x5A, 0x5A, 0x5A });
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0], common + "\x5A\x5A");
    EXPECT_EQ(rows[1], common + bytes({ 0, 1 }));
}

TEST(PclPlacedBlock, BrokenBlocksKeepTheRowsBefore)
{
    // Cut, beyond the row's end, a command that does nothing, and too few words.
    for (const std::vector<int>& rest :
        std::vector<std::vector<int>> { {}, { 0xE002 }, { 0xE000 }, { 0x0010 }, { 0x8001 } }) {
        std::string data = block(0, 0, 2, 1, rest);
        data.insert(9, bytes({ 0xBE, 0x01 })); // the first row
        data[1] = static_cast<char>(data.size() - 2);
        const auto [rows, isWhole] = decoded(data);
        EXPECT_FALSE(isWhole);
        EXPECT_EQ(rows, std::vector<std::string> { "\xFF\xFF" });
    }
    EXPECT_FALSE(PlacedBlock::read(view(block(0, 0, 1, 0, {}))));
    EXPECT_FALSE(PlacedBlock::read(view(block(0, 0, 1, 5000, {}))));
    EXPECT_FALSE(PlacedBlock::read(view(block(0, 0, 1, 1, { 0xBE01 }) + "more")));
    EXPECT_FALSE(PlacedBlock::read(view("")));
}

TEST(PclPlacedBlock, EachLiesInItsPlaceOnThePage)
{
    const std::string job = e("E") + e("*t600R") + e("*r1A") + e("*b1027M")
        + command("*b", "W", block(1200, 600, 4, 2, { 0xBE02, 0xE002, 0xE002, 0xE002 }))
        + command("*b", "W", block(2400, 1200, 2, 1, { 0xBE01, 0xE001 })) + command("*b", "W", "junk") + e("*rB")
        + "\f";
    const Printed printed = print(job);
    ASSERT_EQ(printed.pages.size(), 1u);
    EXPECT_TRUE(printed.warnedOf("pcl.raster-block"));
    // From 1/20 and 3/20 inch: 15 and 45 pixels of 300 dpi.
    EXPECT_EQ(printed.ink(), (PixelRect { 315, 345, 619, 646 }));
    EXPECT_EQ(printed.blackPixels(), 8u * 2u + 4u * 1u);
}
