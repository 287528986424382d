#include "font_test_helpers.h"
#include "quillrip/fonts/select/symbol_set.h"

#include <gtest/gtest.h>

using namespace quillrip;

TEST(SymbolSet, NumbersAreThirtyTwoTimesTheNumberPlusTheLetter)
{
    EXPECT_EQ(symbolSetNumber(8, 'U'), 277);
    EXPECT_EQ(symbolSetNumber(19, 'U'), 629);
    EXPECT_EQ(symbolSetNumber(579, 'L'), 18540);
    EXPECT_EQ(findSymbolSet(629)->designator(), "19U");
}

TEST(SymbolSet, AllSeventyEightSetsAndUnicodeAreThere)
{
    EXPECT_EQ(builtInSymbolSets().size(), 79u);
    EXPECT_EQ(findSymbolSet(1), nullptr);
    EXPECT_EQ(findSymbolSet(0xFFFF), nullptr);
}

TEST(SymbolSet, CodesMapAsPublished)
{
    struct Row {
        const char* set;
        std::uint16_t number;
        unsigned code;
        char32_t unicode;
    };
    const Row rows[] = {
        { "8U", 277, 0xB3, 0x00B0 },
        { "8U", 277, 0xA1, 0x00C0 },
        { "8U", 277, 0x27, 0x2019 },
        { "8U", 277, 0x60, 0x2018 },
        { "8U", 277, 0xFC, 0x25A0 },
        { "8U", 277, 0xF6, 0x2212 },
        { "4U", 149, 0xF6, 0x2212 },
        { "8T", 276, 0xF6, 0x2212 },
        { "0E", 5, 0x76, 0x2212 },
        { "10U", 341, 0x80, 0x00C7 },
        { "10U", 341, 0x01, 0x263A },
        { "10U", 341, 0x13, 0x203C },
        { "10U", 341, 0xC4, 0x2500 },
        { "10U", 341, 0xFC, 0x207F },
        { "19U", 629, 0x80, 0x20AC },
        { "19U", 629, 0x92, 0x2019 },
        { "19U", 629, 0x27, 0x0027 },
        { "0N", 14, 0xE9, 0x00E9 },
        { "2N", 78, 0xA1, 0x0104 },
        { "9E", 293, 0x8A, 0x0160 },
        { "1G", 39, 0x5B, 0x00C4 },
        { "0D", 4, 0x5B, 0x00C6 },
        { "0I", 9, 0x7B, 0x00E0 },
        { "1F", 38, 0x60, 0x00B5 },
        { "10N", 334, 0xD0, 0x0430 },
        { "12N", 398, 0xE1, 0x03B1 },
        { "19M", 621, 0x61, 0x03B1 },
        { "7J", 234, 0xAD, 0xFB01 },
        { "12J", 394, 0x80, 0x00C4 },
        { "10J", 330, 0xAE, 0xFB01 },
        { "579L", 18540, 0x21, 0x270F },
        { "10L", 332, 0x21, 0x2701 },
    };
    for (const Row& row : rows) {
        const SymbolSet* set = findSymbolSet(row.number);
        ASSERT_NE(set, nullptr) << row.set;
        EXPECT_EQ(set->designator(), row.set);
        EXPECT_EQ(set->unicode(row.code), row.unicode) << row.set << ' ' << row.code;
    }
}

TEST(SymbolSet, EveryLatinSetHasTheLettersOfAscii)
{
    // Sets of signs, and those that only supplement another set.
    const std::uint16_t others[] = { symbolSetNumber(0, 'E'), symbolSetNumber(8, 'M'), symbolSetNumber(5, 'M'),
        symbolSetNumber(19, 'M'), symbolSetNumber(10, 'L'), symbolSetNumber(14, 'L'), symbolSetNumber(579, 'L'),
        symbolSetNumber(15, 'U'), symbolSetNumber(6, 'J'), symbolSetNumber(0, 'H') };
    for (const SymbolSet* set : builtInSymbolSets()) {
        if (std::find(std::begin(others), std::end(others), set->number()) != std::end(others))
            continue;
        for (unsigned code = 'A'; code <= 'Z'; ++code)
            EXPECT_EQ(set->unicode(code), code) << set->designator();
        for (unsigned code = '0'; code <= '9'; ++code)
            EXPECT_EQ(set->unicode(code), code) << set->designator();
    }
}

TEST(SymbolSet, RangeDecidesWhichCodesPrint)
{
    EXPECT_FALSE(findSymbolSet(21)->isPrintable(0xA1)); // 0U, seven bits
    EXPECT_TRUE(findSymbolSet(21)->isPrintable(0x7F));
    EXPECT_FALSE(findSymbolSet(277)->isPrintable(0x85)); // 8U, eight bits
    EXPECT_TRUE(findSymbolSet(277)->isPrintable(0xA0));
    EXPECT_FALSE(findSymbolSet(277)->isPrintable(0x1F));
    EXPECT_TRUE(findSymbolSet(341)->isPrintable(0x01)); // 10U, all codes
    EXPECT_TRUE(findSymbolSet(kUnicodeSymbolSet)->isPrintable(0x4E00));
    EXPECT_EQ(findSymbolSet(kUnicodeSymbolSet)->unicode(0x4E00), 0x4E00u);
}

TEST(SymbolSet, UserDefinedUnicodeSetMapsItsCodes)
{
    Bytes data;
    data.u16(18).u16(symbolSetNumber(5, 'Q')).u8(3).u8(1).u16(0x41).u16(0x43).zeros(8);
    data.u16(0x3B1).u16(0xFFFF).u16(0x3B3);
    const auto set = SymbolSet::parse(data, {});
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->designator(), "5Q");
    EXPECT_EQ(set->unicode(0x41), 0x3B1u);
    EXPECT_EQ(set->unicode(0x42), 0u);
    EXPECT_EQ(set->unicode(0x43), 0x3B3u);
    EXPECT_EQ(set->unicode(0x44), 0u);
}

TEST(SymbolSet, UserDefinedListSetKeepsNumbersAndKnowsTheirCharacters)
{
    Bytes data;
    data.u16(18).u16(symbolSetNumber(1, 'Q')).u8(1).u8(2).u16(0x20).u16(0x21).zeros(8).u16(34).u16(1999);
    const auto set = SymbolSet::parse(data, {});
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->unicode(0x20), U'A');
    EXPECT_EQ(set->masterSymbol(0x20), 34);
    EXPECT_EQ(set->unicode(0x21), 0u);
    EXPECT_EQ(set->masterSymbol(0x21), 1999);
}

TEST(SymbolSet, MasterSymbolListIsItsOwnInverse)
{
    EXPECT_EQ(unicodeOfMasterSymbol(8), 0x2019u);
    EXPECT_EQ(masterSymbolOfUnicode('A'), 34);
    EXPECT_EQ(unicodeOfMasterSymbol(masterSymbolOfUnicode(0xE9)), 0xE9u);
    EXPECT_EQ(unicodeOfMasterSymbol(0xFFFF), 0u);
    EXPECT_EQ(masterSymbolOfUnicode(0x4E00), kNoMasterSymbol);
}

TEST(SymbolSet, BrokenDefinitionsAreReportedAndMakeNoSet)
{
    Bytes good;
    good.u16(18).u16(161).u8(3).u8(1).u16(0x41).u16(0x43).zeros(8).u16(1).u16(2).u16(3);
    for (std::size_t length = 0; length < 18; ++length) {
        quillrip::test::RecordingSink reports;
        EXPECT_EQ(SymbolSet::parse(ByteView(good.data(), length), { &reports, 0 }), nullptr) << length;
        EXPECT_TRUE(reports.has("symbolset.short"));
    }
    quillrip::test::RecordingSink reports;
    EXPECT_NE(SymbolSet::parse(ByteView(good.data(), 20), { &reports, 0 }), nullptr);
    EXPECT_TRUE(reports.has("symbolset.truncated"));
    for (const auto& [at, value] :
        { std::pair<std::size_t, int> { 4, 2 }, { 5, 9 }, { 6, 0x50 }, { 8, 0x50 }, { 1, 4 } }) {
        Bytes bad = good;
        bad[at] = static_cast<std::uint8_t>(value);
        EXPECT_EQ(SymbolSet::parse(bad, {}), nullptr) << at;
    }
}
