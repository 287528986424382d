#include "quillrip/cli/printable.h"

#include <gtest/gtest.h>

namespace quillrip::cli {
namespace {

TEST(Printable, WordsOfAnyLanguageStay)
{
    for (const char* text : { "", "plain (text)",
             "Gr\xC3\xB6\xC3\x9F"
             "e",
             "\xE5\xB0\x8F", "\xF0\x9F\x96\xA8" })
        EXPECT_EQ(printable(text), text);
}

TEST(Printable, ControlCharactersBecomeQuestionMarks)
{
    EXPECT_EQ(printable("a\x1B[31mb\r\n\x7F"), "a?[31mb???");
    EXPECT_EQ(printable(std::string("a\0b", 3)), "a?b");
    EXPECT_EQ(printable("\xC2\x9B"
                        "31m"),
        "??31m"); // the control sequence introducer as one character
    EXPECT_EQ(printable("\xE2\x80\xAEtxt"), "???txt"); // right to left from here on
}

TEST(Printable, BytesThatAreNoUtf8BecomeQuestionMarks)
{
    EXPECT_EQ(printable("\x9B"
                        "31m"),
        "?31m");
    EXPECT_EQ(printable("caf\xE9"), "caf?");
    EXPECT_EQ(printable("\xC0\x9B\xED\xA0\x80\xF5\x80\x80\x80"), "?????????");
    EXPECT_EQ(printable("\xC3"), "?");
}

} // namespace
} // namespace quillrip::cli
