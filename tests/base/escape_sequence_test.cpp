#include "quillrip/base/escape_sequence.h"

#include "tests/support/files.h"

#include <gtest/gtest.h>

namespace quillrip {
namespace {

using test::bytesOf;

/// Prefix, group, letter and value of each parameter, as text.
std::string spelled(const std::string& bytes)
{
    EscapeReader reader(bytesOf(bytes));
    if (!reader.open())
        return "none";
    std::string text;
    while (const auto parameter = reader.next()) {
        text += parameter->prefix;
        if (parameter->group)
            text += parameter->group;
        text += std::to_string(parameter->value.integer());
        text += parameter->letter;
        text += parameter->isCombined ? '~' : '.';
    }
    return text + '@' + std::to_string(reader.offset());
}

double valueOf(const std::string& field)
{
    EscapeValueReader reader;
    for (const char c : field)
        EXPECT_TRUE(reader.add(c));
    return reader.value().number;
}

TEST(EscapeReader, ReadsOneParameterAndStopsBehindIt)
{
    EXPECT_EQ(spelled("\x1B&l26Atext"), "&l26A.@6");
    EXPECT_EQ(spelled("\x1B(8U"), "(8U.@4");
    EXPECT_EQ(spelled("\x1B%-12345X@PJL"), "%-12345X.@9");
}

TEST(EscapeReader, CombinedParametersKeepTheirOpening)
{
    EXPECT_EQ(spelled("\x1B*p300x400Y!"), "*p300X~*p400Y.@11");
    EXPECT_EQ(spelled("\x1B(s1p12v0S"), "(s1P~(s12V~(s0S.@10");
}

TEST(EscapeReader, ASequenceThatIsBrokenOffEndsWhereItBreaks)
{
    EXPECT_EQ(spelled("\x1B&l26\x1B"
                      "E"),
        "@5");
    EXPECT_EQ(spelled("\x1B&l1a26"), "&l1A~@7");
    EXPECT_EQ(spelled("\x1B&"), "@2");
}

TEST(EscapeReader, OtherSequencesAreNotOpened)
{
    EXPECT_EQ(spelled("\x1B"
                      "E"),
        "none");
    EXPECT_EQ(spelled("\x1B"), "none");
    EXPECT_EQ(spelled("&l0A"), "none");
    EXPECT_EQ(spelled(""), "none");
}

TEST(EscapeReader, DataBetweenParametersAreSkipped)
{
    const std::string bytes = "\x1B*b3w\x1B\x1B\x1B"
                              "2W!!";
    EscapeReader reader(bytesOf(bytes));
    ASSERT_TRUE(reader.open());
    const auto first = reader.next();
    ASSERT_TRUE(first);
    EXPECT_TRUE(reader.isOpen());
    reader.skip(3);
    const auto second = reader.next();
    ASSERT_TRUE(second);
    EXPECT_EQ(second->value.integer(), 2);
    reader.skip(UINT64_MAX);
    EXPECT_TRUE(reader.atEnd());
    EXPECT_EQ(reader.peek(), -1);
    EXPECT_FALSE(reader.next());
}

TEST(EscapeReader, AResumedSequenceHasItsFormerOpening)
{
    const std::string bytes = "2v7W";
    EscapeReader reader(bytesOf(bytes));
    reader.resume('*', 'b');
    const auto first = reader.next();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->prefix, '*');
    EXPECT_EQ(first->group, 'b');
    EXPECT_EQ(first->letter, 'V');
    EXPECT_TRUE(reader.next());
    EXPECT_FALSE(reader.next());
}

TEST(EscapeValue, KeepsFourDecimalsAndTheSign)
{
    EXPECT_DOUBLE_EQ(valueOf("12.5"), 12.5);
    EXPECT_DOUBLE_EQ(valueOf("-12.5"), -12.5);
    EXPECT_DOUBLE_EQ(valueOf(".00019"), .0001);
    EXPECT_DOUBLE_EQ(valueOf("99999999999999"), 4294967295.0);
    EscapeValueReader relative;
    relative.add('+');
    EXPECT_TRUE(relative.value().hasSign);
    EXPECT_FALSE(relative.value().hasDigits);
    EXPECT_FALSE(relative.add('A'));
}

TEST(EscapeValue, WholeNumbersAreCutOffAndNeverWrap)
{
    EXPECT_EQ((EscapeValue { 2.9, false, true }.integer()), 2);
    EXPECT_EQ((EscapeValue { -2.9, true, true }.integer()), -2);
    EXPECT_EQ((EscapeValue { 4294967295.0, false, true }.integer()), 2147483647);
}

TEST(UniversalExit, IsNineBytesAndNoLess)
{
    EXPECT_TRUE(startsWithUniversalExit(bytesOf("\x1B%-12345X")));
    EXPECT_TRUE(startsWithUniversalExit(bytesOf("\x1B%-12345X@PJL")));
    EXPECT_FALSE(startsWithUniversalExit(bytesOf("\x1B%-12345")));
    EXPECT_FALSE(startsWithUniversalExit(bytesOf("\x1B%-12346X")));
}

} // namespace
} // namespace quillrip
