#include "quillrip/base/bytes.h"

#include <gtest/gtest.h>

using namespace quillrip;

TEST(ByteReader, ReadsBothByteOrders)
{
    const std::vector<std::uint8_t> bytes { 0x12, 0x34, 0x12, 0x34, 0xFF, 0xFE, 1, 2, 3, 4, 1, 2, 3, 4 };
    ByteReader reader { bytes };
    EXPECT_EQ(reader.readU16BigEndian(), 0x1234);
    EXPECT_EQ(reader.readU16LittleEndian(), 0x3412);
    EXPECT_EQ(reader.readI16BigEndian(), -2);
    EXPECT_EQ(reader.readU32BigEndian(), 0x01020304u);
    EXPECT_EQ(reader.readU32LittleEndian(), 0x04030201u);
    EXPECT_EQ(reader.remaining(), 0u);
}

TEST(ByteReader, FailedReadConsumesNothing)
{
    const std::vector<std::uint8_t> bytes { 1, 2, 3 };
    ByteReader reader { bytes };
    EXPECT_FALSE(reader.readU32BigEndian());
    EXPECT_FALSE(reader.skip(4));
    EXPECT_EQ(reader.offset(), 0u);
    EXPECT_EQ(reader.takeUpTo(10).size, 3u);
    EXPECT_FALSE(reader.readU8());
}

TEST(ByteView, SubNeverReachesPastTheEnd)
{
    const std::vector<std::uint8_t> bytes { 1, 2, 3 };
    const ByteView view { bytes };
    EXPECT_EQ(view.sub(1).size, 2u);
    EXPECT_EQ(view.sub(2, 5).size, 1u);
    EXPECT_TRUE(view.sub(3).empty());
    EXPECT_TRUE(view.sub(9, SIZE_MAX).empty());
}
