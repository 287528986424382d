#include "quillrip/hpgl/command_table.h"
#include "quillrip/hpgl/lexer.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quillrip::hpgl {
namespace {

struct Input {
    explicit Input(std::string bytes)
        : text(std::move(bytes))
        , stream({ reinterpret_cast<const std::uint8_t*>(text.data()), text.size() })
    {
    }
    std::string text;
    MemoryInputStream stream;
};

std::vector<double> numbersOf(const std::string& operands)
{
    Input input(operands);
    std::vector<double> numbers;
    Lexer(input.stream).readNumbers(numbers, 1000);
    return numbers;
}

TEST(HpglLexer, SignsSeparateNumbers) { EXPECT_EQ(numbersOf("10-20+30;"), (std::vector<double> { 10, -20, 30 })); }

TEST(HpglLexer, PointsNeedNoDigitsOnOneSide)
{
    EXPECT_EQ(numbersOf(".5,5.,-.25;"), (std::vector<double> { 0.5, 5, -0.25 }));
}

TEST(HpglLexer, SeveralSeparatorsCountAsOne)
{
    EXPECT_EQ(numbersOf(" 6,,1 \r\n2;9"), (std::vector<double> { 6, 1, 2 }));
}

TEST(HpglLexer, SignsWithoutDigitsAreNoNumbers) { EXPECT_EQ(numbersOf("60- ;"), (std::vector<double> { 60 })); }

TEST(HpglLexer, ThereIsNoExponent) { EXPECT_EQ(numbersOf("1E5"), (std::vector<double> { 1 })); }

TEST(HpglLexer, HugeNumbersAreCutToTheLanguagesRange)
{
    EXPECT_EQ(numbersOf(std::string(500, '9') + ";"), (std::vector<double> { 1073741823 }));
}

TEST(HpglLexer, MnemonicsMayBeSmallAndSpacedOut)
{
    Input input("p a1,2;;\x80 I\nN");
    Lexer lexer(input.stream);
    Mnemonic name = 0;
    ASSERT_EQ(lexer.next(name), Lexer::Token::Mnemonic);
    EXPECT_EQ(toString(name), "PA");
    lexer.skipOperands();
    ASSERT_EQ(lexer.next(name), Lexer::Token::Mnemonic);
    EXPECT_EQ(toString(name), "IN");
    EXPECT_EQ(lexer.next(name), Lexer::Token::End);
}

TEST(HpglLexer, SingleLettersAreNoise)
{
    Input input("P1 Q;SP2");
    Lexer lexer(input.stream);
    Mnemonic name = 0;
    ASSERT_EQ(lexer.next(name), Lexer::Token::Mnemonic);
    EXPECT_EQ(toString(name), "SP");
}

TEST(HpglLexer, QuotedTextMayHoldSemicolons)
{
    Input input(" \"a;b\";PU");
    Lexer lexer(input.stream);
    EXPECT_EQ(lexer.readText(100), "a;b");
    EXPECT_EQ(input.stream.get(), ';');
}

TEST(HpglCommands, StandInOrderAndAreAllThere)
{
    std::vector<Mnemonic> known;
    for (const MnemonicEntry* entry = mnemonicsBegin(); entry != mnemonicsEnd(); ++entry)
        known.push_back(entry->mnemonic);
    EXPECT_TRUE(std::is_sorted(known.begin(), known.end()));
    EXPECT_EQ(std::adjacent_find(known.begin(), known.end()), known.end());
    const std::string index
        = "AAACADAFAHAPARASATBLBPBRBZCACFCICOCPCRCSCTCVDCDFDIDLDPDRDTDVEAECEPERESEWFIFNFPFRFSFTINIPIRIW"
          "LALBLMLOLTMCMGMTNPNROAOCODOEOFOHOIOKOOOPOSOTOWPAPBPCPDPEPGPMPPPRPSPTPUPWQLRARFRORPRRRTSASBSCSD"
          "SISLSMSPSRSSSTSVTDTLTRUCULVSWDWGWUXTYT";
    for (std::size_t i = 0; i + 1 < index.size(); i += 2) {
        const Mnemonic name = mnemonic(index[i], index[i + 1]);
        EXPECT_NE(findMnemonic(name), nullptr) << toString(name);
    }
    EXPECT_EQ(findMnemonic(mnemonic("ZZ")), nullptr);
}

TEST(HpglCommands, HandlersStandInOrderAndHaveTheirMnemonics)
{
    const std::vector<CommandEntry>& table = commandTable();
    const auto comesBefore = [](const CommandEntry& a, const CommandEntry& b) { return a.mnemonic < b.mnemonic; };
    EXPECT_TRUE(std::is_sorted(table.begin(), table.end(), comesBefore));
    for (const CommandEntry& entry : table) {
        EXPECT_NE(findMnemonic(entry.mnemonic), nullptr) << toString(entry.mnemonic);
        EXPECT_EQ(findHandler(entry.mnemonic), entry.handler) << toString(entry.mnemonic);
    }
}

/// A command that reads its operands itself would leave them in the input if it had no handler.
TEST(HpglCommands, WhatIsReadByAHandlerHasOne)
{
    for (const MnemonicEntry* entry = mnemonicsBegin(); entry != mnemonicsEnd(); ++entry) {
        if (entry->reading() == Reading::ByHandler) {
            EXPECT_NE(findHandler(entry->mnemonic), nullptr) << toString(entry->mnemonic);
        }
    }
}

TEST(HpglEscape, EnterPclCarriesItsValue)
{
    Input input("\x1b%1Axyz");
    const EscapeSequence sequence = readEscape(input.stream);
    EXPECT_EQ(sequence.kind, EscapeSequence::Kind::EnterPcl);
    EXPECT_EQ(sequence.value, 1);
    EXPECT_EQ(input.stream.get(), 'x');
}

TEST(HpglEscape, UniversalExitStaysInTheInput)
{
    Input input("\x1b%-12345X@PJL");
    EXPECT_EQ(readEscape(input.stream).kind, EscapeSequence::Kind::UniversalExit);
    EXPECT_EQ(input.stream.offset(), 0u);
}

TEST(HpglEscape, PclCommandsAreSkippedWithTheirData)
{
    Input input("\x1b*b3m4Wabcdnext");
    EXPECT_EQ(readEscape(input.stream).kind, EscapeSequence::Kind::Other);
    EXPECT_EQ(input.stream.get(), 'n');
}

TEST(HpglEscape, DeviceControlsTakeTheirOperands)
{
    Input input("\x1b.I81;;17:\x1b.YIN");
    EscapeSequence sequence = readEscape(input.stream);
    EXPECT_EQ(sequence.kind, EscapeSequence::Kind::DeviceControl);
    EXPECT_EQ(sequence.control, 'I');
    sequence = readEscape(input.stream);
    EXPECT_EQ(sequence.control, 'Y');
    EXPECT_EQ(input.stream.get(), 'I');
}

} // namespace
} // namespace quillrip::hpgl
