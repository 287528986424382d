#include "quillrip/base/noise_watch.h"
#include "tests/pcl/printer.h"

#include <gtest/gtest.h>

#include <random>

using namespace quillrip;
using namespace quillrip::test;

namespace {

const std::string kMark = e("*c10a10b0P");

} // namespace

TEST(PclBrokenStreams, CutRowKeepsTheWholePagesBefore)
{
    const Printed printed
        = print(kStart + kMark + "\f" + e("*r1A") + command("*b", "W", bytes({ 1 })) + "\x1b*b100W\x01\x02");
    EXPECT_EQ(printed.status, RunStatus::Damaged);
    EXPECT_EQ(printed.pages.size(), 1u);
    EXPECT_TRUE(printed.warnedOf("pcl.input-cut"));
    ASSERT_FALSE(printed.diagnostics.empty());
    EXPECT_EQ(printed.diagnostics.back().severity, Severity::Damage);
}

TEST(PclBrokenStreams, BinaryDataAreNotPrintedAsPagesOfText)
{
    std::mt19937 dice(1);
    std::string data;
    while (data.size() < 300000)
        data += static_cast<char>(dice() >> 24 & 0xFF);
    // A count that lost its digits; the next job begins behind the exit.
    const Printed printed = print(kStart + kMark + "\f" + e("*r1A") + "\x1b*b1W" + data);
    EXPECT_EQ(printed.status, RunStatus::Damaged);
    EXPECT_TRUE(printed.warnedOf("pcl.noise"));
    EXPECT_GE(printed.pages.size(), 1u);
    EXPECT_LE(printed.pages.size(), 20u);
}

TEST(PclBrokenStreams, StrangeTextIsText)
{
    std::string all;
    for (int code = 1; code < 256; ++code) {
        if (code < 7 || (code > 15 && code != 27))
            all += static_cast<char>(code);
    }
    std::string framed;
    std::string cyrillic;
    for (int line = 0; line < 200; ++line) {
        framed += "\x01\x02 a record in its frame \x03\x04\r\n";
        cyrillic += "\xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82\r\n";
    }
    for (const std::string& text : { all + all + all, framed, cyrillic }) {
        const Printed printed = print(kStart + text);
        EXPECT_EQ(printed.status, RunStatus::Done);
        EXPECT_FALSE(printed.warnedOf("pcl.noise"));
    }
}

TEST(PclBrokenStreams, CodesOfSoftFontsAreNoNoise)
{
    NoiseWatch watch;
    for (int i = 0; i < 100000; ++i)
        ASSERT_FALSE(watch.isNoise(static_cast<std::uint8_t>(i % 32), true));
    int heard = 0;
    while (heard < 100000 && !watch.isNoise(static_cast<std::uint8_t>(heard % 256), false))
        ++heard;
    EXPECT_LT(heard, 2000);
}

TEST(PclBrokenStreams, CutFontIsDamageToo)
{
    EXPECT_EQ(print(kStart + kMark + "\f" + "\x1b)s64W" + "short").status, RunStatus::Damaged);
    EXPECT_EQ(print(kStart + kMark + "\f" + "\x1b*o64W" + "short").status, RunStatus::Damaged);
}

TEST(PclBrokenStreams, CutSequenceIsNone)
{
    for (const std::string& rest : { e(""), e("&"), e("&l"), e("&l2"), e("*b"), e("*b2m") }) {
        const Printed printed = print(kStart + kMark + rest);
        EXPECT_EQ(printed.status, RunStatus::Done);
        EXPECT_EQ(printed.pages.size(), 1u);
    }
}

TEST(PclBrokenStreams, DamageNamesTheCommandsPlace)
{
    const Printed printed = print("abc\x1b*b5Wx");
    EXPECT_EQ(printed.diagnostics.back().offset, 3u);
}

TEST(PclBrokenStreams, HugeCountsNeitherAllocateNorHang)
{
    EXPECT_EQ(print(kStart + "\x1b*b4294967295Wabc").status, RunStatus::Damaged);
    EXPECT_EQ(print(kStart + "\x1b&p99999999999999Xabc").status, RunStatus::Damaged);
    EXPECT_EQ(print(kStart + e("*r1A") + e("*b4000000000Y") + kMark).status, RunStatus::Done);
    EXPECT_EQ(print(kStart + "\x1b*b-5Wabc").status, RunStatus::Done);
}

TEST(PclBrokenStreams, AbsurdValuesAreHeldOrIgnored)
{
    const std::string job = kStart + e("*t99999999R") + e("*r99999999s99999999T") + e("*r1A")
        + command("*b", "W", "xyz") + e("*rC") + e("&l99999999C") + e("&k-99999999H") + e("&l99999999E") + e("&u0D")
        + e("&a99999999L") + e("*p-99999999x99999999Y") + e("&l99999999U") + e("(s99999999V") + e("(s0.00001H")
        + e("*c99999999a99999999b0P") + "text" + e("&l1Z") + e("&l-99999999Z") + "text" + kMark;
    EXPECT_EQ(print(job).status, RunStatus::Done);
}

TEST(PclBrokenStreams, EmptyRowsByTheThousandEndInTime)
{
    std::string block;
    for (int i = 0; i < 1000; ++i)
        block += bytes({ 4, 0xFF, 0xFF, 5, 0xFF, 0xFF });
    EXPECT_EQ(print(kStart + e("*t9600R") + e("*r1A") + e("*b5M") + command("*b", "W", block)).status, RunStatus::Done);
}

TEST(PclBrokenStreams, MacrosThatRunThemselvesEnd)
{
    const std::string macro = e("&f1Y") + e("&f0X") + e("&f2X") + e("&f2X") + kMark + e("&f1X");
    EXPECT_EQ(print(kStart + macro + e("&f2X")).status, RunStatus::Done);
    EXPECT_EQ(print(kStart + macro + e("&f4X") + kMark + "\f\f").status, RunStatus::Done);
}

TEST(PclBrokenStreams, MacrosWithoutEndMeetTheLimit)
{
    PrinterSettings settings;
    settings.limits.work = std::make_shared<WorkMeter>(WorkBudget { 5'000'000 });
    std::string many;
    for (int i = 0; i < 30; ++i)
        many += e("&f2X");
    const std::string job = kStart + e("&f1y0X") + many + e("&f1X") + e("&f2X");
    const Printed printed = print(job, settings);
    EXPECT_EQ(printed.status, RunStatus::LimitExceeded);
    EXPECT_TRUE(printed.warnedOf("pcl.work"));
}

TEST(PclBrokenStreams, MemoryOfMacrosPatternsAndFontsIsLimited)
{
    PrinterSettings settings;
    settings.limits.macroBytes = 1000;
    EXPECT_EQ(
        print(kStart + e("&f0X") + std::string(2000, 'x') + e("&f1X"), settings).status, RunStatus::LimitExceeded);
    settings.limits = {};
    settings.limits.patternBytes = 10;
    EXPECT_EQ(
        print(kStart + command("*c", "W", bytes({ 0, 0, 1, 0, 0, 8, 0, 8, 1, 2, 3, 4, 5, 6, 7, 8 })), settings).status,
        RunStatus::LimitExceeded);
}

TEST(PclBrokenStreams, PagesAreLimited)
{
    PrinterSettings settings;
    settings.limits.pages = 3;
    const Printed printed = print(std::string(10, '\f'), settings);
    EXPECT_EQ(printed.status, RunStatus::LimitExceeded);
    EXPECT_EQ(printed.pages.size(), 3u);
}

TEST(PclBrokenStreams, PatternsThatClaimToBeHugeAreSkipped)
{
    const Printed printed = print(kStart + command("*c", "W", bytes({ 0, 0, 1, 0, 0xFF, 0xFF, 0xFF, 0xFF, 1 })));
    EXPECT_TRUE(printed.warnedOf("pcl.bad-pattern"));
}

TEST(PclBrokenStreams, RandomCommandsDoNoHarm)
{
    // Commands of the right shape with arbitrary values and data, and arbitrary bytes between them.
    const std::string prefixes = "&*()%";
    const std::string groups = "abcdfiklmnoprstuv";
    std::mt19937 random { 20261121 };
    for (int round = 0; round < 60; ++round) {
        std::string job = kStart;
        for (int i = 0; i < 150; ++i) {
            const int value = static_cast<int>(random() % 3 == 0 ? random() % 70000 : random() % 40) - 4;
            const char terminator = static_cast<char>('A' + random() % 26);
            if (terminator == 'X' || terminator == 'W' || terminator == 'V') {
                std::string data;
                for (unsigned long k = random() % 90; k > 0; --k)
                    data.push_back(static_cast<char>(random() % (k % 3 ? 256 : 4)));
                job += command(std::string { prefixes[random() % 4], groups[random() % groups.size()] },
                    std::string { terminator }, data);
            } else {
                job += e(std::string { prefixes[random() % 5], groups[random() % groups.size()] }
                    + std::to_string(value) + terminator);
            }
            if (random() % 5 == 0)
                job += static_cast<char>(random() % 256);
            if (random() % 7 == 0)
                job += "Ag";
        }
        PrinterSettings settings;
        settings.dotsPerInch = 50;
        settings.format = round % 2 ? PixelFormat::Rgb24 : PixelFormat::Bilevel;
        settings.limits.pages = 40;
        settings.limits.work = std::make_shared<WorkMeter>(WorkBudget { 20'000'000 });
        const Printed printed = print(job, settings);
        EXPECT_NE(printed.status, RunStatus::OutputFailed);
    }
}
