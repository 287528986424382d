#include "quillrip/pclxl/stream_header.h"
#include "quillrip/pclxl/tag_reader.h"
#include "tests/pclxl/stream_builder.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::pclxl;
using quillrip::test::XlStream;
using Token = TagReader::Token;
using Bytes = std::vector<std::uint8_t>;

namespace {

TEST(XlTagReader, ReadsEveryTypeInBothByteOrders)
{
    struct Case {
        Bytes little;
        Bytes big;
        std::vector<double> values;
    };
    const Case cases[] = {
        { { 0xC0, 200 }, { 0xC0, 200 }, { 200 } },
        { { 0xC1, 0x34, 0x12 }, { 0xC1, 0x12, 0x34 }, { 0x1234 } },
        { { 0xC2, 4, 3, 2, 0xF1 }, { 0xC2, 0xF1, 2, 3, 4 }, { 4043440900.0 } },
        { { 0xC3, 0xFE, 0xFF }, { 0xC3, 0xFF, 0xFE }, { -2 } },
        { { 0xC4, 0xFE, 0xFF, 0xFF, 0xFF }, { 0xC4, 0xFF, 0xFF, 0xFF, 0xFE }, { -2 } },
        { { 0xC5, 0, 0, 0xC0, 0x3F }, { 0xC5, 0x3F, 0xC0, 0, 0 }, { 1.5 } },
        { { 0xD0, 1, 2 }, { 0xD0, 1, 2 }, { 1, 2 } },
        { { 0xD3, 1, 0, 0xFF, 0xFF }, { 0xD3, 0, 1, 0xFF, 0xFF }, { 1, -1 } },
        { { 0xE0, 1, 2, 3, 4 }, { 0xE0, 1, 2, 3, 4 }, { 1, 2, 3, 4 } },
        { { 0xE1, 1, 0, 2, 0, 3, 0, 4, 0 }, { 0xE1, 0, 1, 0, 2, 0, 3, 0, 4 }, { 1, 2, 3, 4 } },
    };
    for (const Case& c : cases) {
        for (const ByteOrder order : { ByteOrder::LittleEndian, ByteOrder::BigEndian }) {
            Bytes bytes = order == ByteOrder::LittleEndian ? c.little : c.big;
            bytes.insert(bytes.end(), { 0xF8, 75, 0x85 });
            MemoryInputStream input { ByteView(bytes) };
            TagReader reader(input, order);
            AttributeList list;
            ASSERT_EQ(reader.next(list), Token::Operator);
            const Operand* operand = list.find(Attribute::PenWidth);
            ASSERT_NE(operand, nullptr);
            for (std::size_t i = 0; i < c.values.size(); ++i)
                EXPECT_EQ(operand->numbers[i], c.values[i]);
        }
    }
}

TEST(XlTagReader, ReadsArraysWithLengthsOfOneAndTwoBytes)
{
    for (const Bytes& start : { Bytes { 0xC9, 0xC0, 2 }, Bytes { 0xC9, 0xC1, 2, 0 } }) {
        Bytes bytes = start;
        bytes.insert(bytes.end(), { 0x01, 0x02, 0x03, 0x04, 0xF8, 171, 0xA8 });
        MemoryInputStream input { ByteView(bytes) };
        TagReader reader(input, ByteOrder::LittleEndian);
        AttributeList list;
        ASSERT_EQ(reader.next(list), Token::Operator);
        const ArrayView array = list.array(Attribute::TextData);
        ASSERT_EQ(array.size(), 2u);
        EXPECT_EQ(array.code(0), 0x0201u);
        EXPECT_EQ(array.at(1), 0x0403);
    }
}

TEST(XlTagReader, TakesTheLaterOfTwoValuesAndSixteenBitNames)
{
    const Bytes bytes = { 0xC0, 1, 0xF8, 75, 0xC0, 2, 0xF9, 75, 0, 0x7A };
    MemoryInputStream input { ByteView(bytes) };
    TagReader reader(input, ByteOrder::LittleEndian);
    AttributeList list;
    ASSERT_EQ(reader.next(list), Token::Operator);
    EXPECT_EQ(list.number(Attribute::PenWidth), 2);
}

TEST(XlTagReader, DropsValuesAndNamesThatStandAlone)
{
    const Bytes bytes = { 0xC0, 1, 0xC0, 2, 0xF8, 75, 0xF8, 44, 0x7A };
    MemoryInputStream input { ByteView(bytes) };
    TagReader reader(input, ByteOrder::LittleEndian);
    AttributeList list;
    ASSERT_EQ(reader.next(list), Token::Operator);
    EXPECT_EQ(list.number(Attribute::PenWidth), 2);
    EXPECT_FALSE(list.has(Attribute::ROP3));
    EXPECT_EQ(reader.orphans(), 2u);
}

TEST(XlTagReader, FindsTheExitOnlyWhereATagStands)
{
    XlStream stream;
    stream.text(Attribute::CommentData, "\x1b%-12345X")
        .op(Operator::Comment)
        .raw("\x1b"
             "E")
        .universalExit();
    MemoryInputStream input { ByteView(stream.bytes()) };
    TagReader reader(input, ByteOrder::LittleEndian);
    AttributeList list;
    EXPECT_EQ(reader.next(list), Token::Operator);
    EXPECT_EQ(reader.next(list), Token::UniversalExit);
    EXPECT_EQ(input.peek(), 0x1B);
}

TEST(XlTagReader, TellsTruncationFromTheEnd)
{
    for (const Bytes& bytes : { Bytes { 0xC1, 1 }, Bytes { 0xC0, 1 }, Bytes { 0xC0, 1, 0xF8 }, Bytes { 0xC8, 0xC0 },
             Bytes { 0xC8, 0xC0, 5, 1, 2 } }) {
        MemoryInputStream input { ByteView(bytes) };
        TagReader reader(input, ByteOrder::LittleEndian);
        AttributeList list;
        EXPECT_EQ(reader.next(list), Token::Truncated);
    }
    const Bytes blanks = { 0x00, 0x20, 0x0A };
    MemoryInputStream input { ByteView(blanks) };
    TagReader reader(input, ByteOrder::LittleEndian);
    AttributeList list;
    EXPECT_EQ(reader.next(list), Token::End);
}

TEST(XlTagReader, RefusesOperandsWithoutEnd)
{
    Bytes bytes;
    for (int i = 0; i < 1000; ++i)
        bytes.insert(bytes.end(), { 0xC0, 1, 0xF8, 75 });
    MemoryInputStream input { ByteView(bytes) };
    TagReader reader(input, ByteOrder::LittleEndian);
    AttributeList list;
    EXPECT_EQ(reader.next(list), Token::TooManyOperands);
}

TEST(XlEmbeddedData, JoinsBlocksOfBothLengths)
{
    XlStream stream;
    stream.data({ 1, 2 }).data({ 3 }, true).data({}).data({ 4, 5 }).op(Operator::EndImage);
    MemoryInputStream input { ByteView(stream.bytes()) };
    EmbeddedData data(input, ByteOrder::LittleEndian, ByteOrder::LittleEndian);
    for (int i = 1; i <= 5; ++i)
        EXPECT_EQ(data.get(), i);
    EXPECT_EQ(data.get(), -1);
    data.skipRest();
    EXPECT_FALSE(data.isTruncated());
    EXPECT_EQ(input.get(), 0xB2);
}

TEST(XlEmbeddedData, LeavesTheInputBehindTheRunHoweverMuchWasRead)
{
    for (int taken = 0; taken <= 5; ++taken) {
        XlStream stream;
        stream.data({ 1, 2, 3 }).data({ 4, 5 }).op(Operator::EndImage);
        MemoryInputStream input { ByteView(stream.bytes()) };
        EmbeddedData data(input, ByteOrder::LittleEndian, ByteOrder::LittleEndian);
        for (int i = 0; i < taken; ++i)
            data.get();
        data.skipRest();
        EXPECT_EQ(input.get(), 0xB2) << taken;
    }
}

TEST(XlEmbeddedData, NoticesABlockThatIsCut)
{
    const Bytes bytes = { 0xFA, 10, 0, 0, 0, 1, 2 };
    MemoryInputStream input { ByteView(bytes) };
    EmbeddedData data(input, ByteOrder::LittleEndian, ByteOrder::LittleEndian);
    std::uint8_t buffer[10];
    EXPECT_EQ(data.read(buffer, 10), 2u);
    EXPECT_TRUE(data.isTruncated());
}

TEST(XlHeader, GivesTheByteOrder)
{
    const std::string nul("( HP-PCL XL;1;1;with a NUL\0 and a ; in it\r\n!", 45);
    const Bytes bytes(nul.begin(), nul.end());
    MemoryInputStream input { ByteView(bytes) };
    ByteOrder order = ByteOrder::LittleEndian;
    EXPECT_TRUE(readStreamHeader(input, order).isOk());
    EXPECT_EQ(order, ByteOrder::BigEndian);
    EXPECT_EQ(input.get(), '!');
}

TEST(XlHeader, RefusesTextBindingAndOtherClasses)
{
    const auto errorOf = [](const std::string& text) {
        const Bytes bytes(text.begin(), text.end());
        MemoryInputStream input { ByteView(bytes) };
        ByteOrder order = ByteOrder::LittleEndian;
        return readStreamHeader(input, order).error;
    };
    EXPECT_EQ(errorOf("' HP-PCL XL;2;0\n"), Error::UnsupportedBinding);
    EXPECT_EQ(errorOf(") HP-PCL YL;2;0\n"), Error::IllegalStreamHeader);
    EXPECT_EQ(errorOf(") HP-PCL XL;2;0 and no line end"), Error::PrematureEnd);
    EXPECT_EQ(errorOf(")"), Error::PrematureEnd);
    EXPECT_EQ(errorOf(") HP-PCL XL;" + std::string(100000, 'x')), Error::IllegalStreamHeader);
}

TEST(XlHeader, GuessesTheByteOrderFromTheUnits)
{
    for (const ByteOrder order : { ByteOrder::LittleEndian, ByteOrder::BigEndian }) {
        for (const int units : { 100, 300, 600, 1200, 4800 }) {
            XlStream stream(order);
            stream.beginSession(units);
            MemoryInputStream input { ByteView(stream.bytes()) };
            EXPECT_EQ(guessByteOrder(input), order) << units;
        }
    }
}

} // namespace
