#include "quillrip/pcl/tokenizer.h"

#include <gtest/gtest.h>

#include <string>

using namespace quillrip;
using namespace quillrip::pcl;

namespace {

/// Tokens as text: "a" text, "^0C" control, "!E" two characters, "&lA=2" a command.
std::string tokens(const std::string& job)
{
    MemoryInputStream stream { ByteView { reinterpret_cast<const std::uint8_t*>(job.data()), job.size() } };
    Tokenizer tokenizer { stream };
    std::string list;
    while (true) {
        const Token token = tokenizer.next();
        if (token.kind == Token::Kind::End)
            return list;
        if (!list.empty())
            list += ' ';
        switch (token.kind) {
        case Token::Kind::Text:
            list += static_cast<char>(token.byte);
            break;
        case Token::Kind::Control:
            list += '^' + std::to_string(token.byte);
            break;
        case Token::Kind::TwoCharacter:
            list += std::string("!") + static_cast<char>(token.byte);
            break;
        default:
            list += token.prefix;
            if (token.group)
                list += token.group;
            list += token.terminator;
            list += '=';
            if (token.value.hasSign && token.value.number >= 0)
                list += '+';
            std::string number = std::to_string(token.value.number);
            number.erase(number.find_last_not_of('0') + 1);
            if (number.back() == '.')
                number.pop_back();
            list += number;
        }
    }
}

} // namespace

TEST(PclTokenizer, CombinedSequencesAreSeveralCommands)
{
    EXPECT_EQ(tokens("\x1b&l1o2Ax"), "&lO=1 &lA=2 x");
    EXPECT_EQ(tokens("\x1b(8U\x1b(s1p12V"), "(U=8 (sP=1 (sV=12");
    EXPECT_EQ(tokens("\x1b(0u12X"), "(U=0 (X=12");
}

TEST(PclTokenizer, ValuesHaveSignsAndFourDecimals)
{
    EXPECT_EQ(tokens("\x1b*p+10x-3.25Y"), "*pX=+10 *pY=-3.25");
    EXPECT_EQ(tokens("\x1b&k7.123456H"), "&kH=7.1234");
    EXPECT_EQ(tokens("\x1b&lE\x1b*bW\x1b&l+A"), "&lE=0 *bW=0 &lA=+0");
}

TEST(PclTokenizer, HugeNumbersNeitherWrapNorOverflow)
{
    EXPECT_EQ(tokens("\x1b*p99999999999999999999X"), "*pX=4294967295");
    Value value;
    value.number = 1e300;
    EXPECT_EQ(value.integer(), 2147483647);
}

TEST(PclTokenizer, TwoCharacterSequencesAndControls)
{
    EXPECT_EQ(tokens("\x1b"
                     "E\x1b=\x0c"),
        "!E != ^12");
}

TEST(PclTokenizer, UnfinishedSequenceEndsAtTheNextEscape)
{
    EXPECT_EQ(tokens("\x1b*b9m\x1b*b550Y"), "*bM=9 *bY=550");
    EXPECT_EQ(tokens("\x1b%8\x1b"
                     "E"),
        "!E");
}

TEST(PclTokenizer, ControlCodeEndsASequenceAndActs) { EXPECT_EQ(tokens("\x1b&l1\rA"), "^13 A"); }

TEST(PclTokenizer, EscapeBeforeASpaceOrAControlIsDropped)
{
    EXPECT_EQ(tokens("\x1b x\x1b\x0c"), "  x ^12");
    EXPECT_EQ(tokens("a\x1b"), "a");
}

TEST(PclTokenizer, DataAreTakenBeforeTheSequenceGoesOn)
{
    const std::string job = "\x1b*b3w\x1b"
                            "E\x0c"
                            "2Y!";
    MemoryInputStream stream { ByteView { reinterpret_cast<const std::uint8_t*>(job.data()), job.size() } };
    Tokenizer tokenizer { stream };
    const Token transfer = tokenizer.next();
    EXPECT_EQ(transfer.terminator, 'W');
    EXPECT_TRUE(transfer.chained);
    std::vector<std::uint8_t> data;
    EXPECT_EQ(tokenizer.takeData(3, data, 2), 3u);
    EXPECT_EQ(data.size(), 2u);
    const Token offset = tokenizer.next();
    EXPECT_EQ(offset.terminator, 'Y');
    EXPECT_EQ(offset.value.integer(), 2);
    EXPECT_EQ(tokenizer.next().byte, '!');
}

TEST(PclTokenizer, OffsetsPointAtTheEscapeOrTheParameter)
{
    const std::string job = "ab\x1b&l1o2A";
    MemoryInputStream stream { ByteView { reinterpret_cast<const std::uint8_t*>(job.data()), job.size() } };
    Tokenizer tokenizer { stream };
    tokenizer.next();
    tokenizer.next();
    EXPECT_EQ(tokenizer.next().offset, 2u);
    EXPECT_EQ(tokenizer.next().offset, 7u);
}

TEST(PclTokenizer, RecordingStartsWithTheOpeningOfACombinedSequence)
{
    const std::string job = "\x1b&f0x5y\x1b*p1X\x1b&f1X";
    MemoryInputStream stream { ByteView { reinterpret_cast<const std::uint8_t*>(job.data()), job.size() } };
    Tokenizer tokenizer { stream };
    tokenizer.next();
    std::vector<std::uint8_t> record;
    tokenizer.startRecording(record, 100);
    tokenizer.next();
    tokenizer.next();
    tokenizer.next();
    tokenizer.dropTokenFromRecord();
    EXPECT_EQ(std::string(record.begin(), record.end()), "\x1b&f5y\x1b*p1X");
}
