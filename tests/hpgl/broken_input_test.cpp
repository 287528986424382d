#include "quillrip/fonts/font_library.h"
#include "quillrip/hpgl/plot_file.h"
#include "tests/hpgl/plot_sheet.h"

#include <gtest/gtest.h>

#include <random>

namespace quillrip::test {
namespace {

const std::string kEverything
    = "BP1,\"a;b\",5,1;IN;PS4000,3000;NP16;CR0,255,0,255,0,255;PC3,10,20,30;WU1;PW.2;WU0;PW.5,2;SP1;IP0,0,4000,3000;"
      "SC0,100,0,100,1,50,50;IW5,5,95,95;RO90;RO0;IR0,0,100,100;SC0,4,0,-4,2;SC;LA1,4,2,4,3,10;UL1,1,2,3;LT1,4,1;"
      "PU10,10;PD20,20,30,10;PR5,5;PA;LT-4;AA50,50,90,10;AR10,0,-90;AT60,60,70,50;RT5,5,10,0;BZ1,2,3,4,5,6;"
      "BR1,1,2,2,3,3;CI20,30;LT99;PE7<=\x5f\x60\x61\x62;PE:\xc1>\xc2<=\xd0\xd1\x50\xd2;PM0;PD100,100,200,50;PM1;CI10;"
      "PM2;"
      "FT3,20,45;FP;EP;FT4;FP1;FT10,30;RA300,300;RF1,2,2,1,0,0,2;FT11,1;RR50,50;FT21,3;EA400,400;FT22,7;ER10,10;"
      "WG50,0,90;EW50,90,-120,5;SV1,30;PD500,500;SV;TR0;MC1,90;PP1;AC10,10;SM*;PA600,600;SM;SD1,277,2,1,4,20,7,4148;"
      "AD;SS;SA;SI.2,.3;SR1,2;SL.3;DI1,1;DR0,1;DV1,1;ES.1,.2;LO15;CF3,2;DT*,0;TD1;LBtext*TD0;DT;CP2,-1;"
      "LB\x08\x09\x0d\x0a\x0e\x0fz\x03"
      "BLbuffer\x03PB;WDdisplay\x03"
      "CO \"comment;\";MG\"x\";UC4,7,99,-4,7;TL1,2;XT;YT;CT1;DF;FI3;FN4;SB1;LM1;LBab\x03PG;"
      "\x1b.Y\x1b.N;19:\x1b%0A\x1b*b3Wabc\x1b%0BIN;SP1;PD100,100;AF;";

/// Whether there is any ink on a page of the plot.
bool isDrawn(const std::string& plot)
{
    MemoryPageDevice device(PixelFormat::Gray8, 20);
    MemoryInputStream input({ reinterpret_cast<const std::uint8_t*>(plot.data()), plot.size() });
    FontLibrary fonts;
    RecordingSink diagnostics;
    Limits limits;
    limits.pageBytes = 1 << 24;
    hpgl::PlotFile file(device, fonts, diagnostics, limits, {});
    static_cast<void>(file.run(input));
    bool isDrawn = false;
    for (const PageBitmap& page : device.pages())
        isDrawn |= page.hasInk(page.bounds());
    return isDrawn;
}

TEST(HpglBrokenInput, APlotCutAnywhereIsDrawnSoFar)
{
    bool wasDrawn = false;
    for (std::size_t size = 0; size <= kEverything.size(); ++size) {
        const bool isCutDrawn = isDrawn(kEverything.substr(0, size));
        EXPECT_TRUE(isCutDrawn || !wasDrawn) << size;
        wasDrawn |= isCutDrawn;
    }
    EXPECT_TRUE(wasDrawn);
}

TEST(HpglBrokenInput, AnInsertCutAnywhereIsDrawnSoFar)
{
    bool wasDrawn = false;
    for (std::size_t size = 0; size <= kEverything.size(); ++size) {
        PlotSheet sheet(PixelFormat::Gray8);
        sheet.run(kEverything.substr(0, size));
        const bool isCutDrawn = sheet.inkCount() > 0;
        EXPECT_TRUE(isCutDrawn || !wasDrawn) << size;
        wasDrawn |= isCutDrawn;
    }
    EXPECT_TRUE(wasDrawn);
}

TEST(HpglBrokenInput, ChangedBytesAreSurvived)
{
    std::mt19937 random(20261121);
    int drawn = 0;
    for (int round = 0; round < 300; ++round) {
        std::string plot = kEverything;
        for (int i = 0; i < 6; ++i)
            plot[random() % plot.size()] = static_cast<char>(random());
        drawn += isDrawn(plot) ? 1 : 0;
    }
    EXPECT_GT(drawn, 200); // six of hundreds of bytes
}

TEST(HpglBrokenInput, AbsurdNumbersAreSurvived)
{
    const std::string numbers[] = { "1073741823", "-1073741823", "99999999999999999999", ".0000000000001", "0", "-.0" };
    const char* const commands[] = { "PA", "PD", "PR", "AA", "AR", "AT", "RT", "BZ", "BR", "CI", "EA", "RA", "WG", "EW",
        "IP", "IR", "SC", "IW", "PW", "LT", "UL", "FT", "SI", "SR", "DI", "DR", "ES", "CP", "LA", "AC", "SL", "RF",
        "NP", "PC", "PS", "RO", "UC", "TL" };
    for (const char* const command : commands) {
        for (const std::string& a : numbers) {
            for (const std::string& b : numbers) {
                PlotSheet sheet;
                std::string list;
                for (int i = 0; i < 3; ++i)
                    list += a + "," + b + ",";
                sheet.run(std::string("IN;SP1;PU500,500;PD;") + command + list
                    + ";PD100,100;LT2;CI300;FT3;RA900,900;LBx\x03");
            }
        }
    }
}

TEST(HpglBrokenInput, APolygonBeyondTheLimitKeepsItsFirstCorners)
{
    Limits limits;
    limits.pathPoints = 100;
    std::string plot = "IN;PS1000,1000;SP1;PU0,0;PM0;PD";
    for (int i = 0; i < 500; ++i)
        plot += "900," + std::to_string(i) + ",900,900,";
    plot += ";PM2;FP;";
    MemoryPageDevice device(PixelFormat::Bilevel, 50);
    MemoryInputStream input({ reinterpret_cast<const std::uint8_t*>(plot.data()), plot.size() });
    FontLibrary fonts;
    RecordingSink diagnostics;
    hpgl::PlotFile file(device, fonts, diagnostics, limits, {});
    EXPECT_EQ(file.run(input), hpgl::PlotFile::End::InputEnded);
    ASSERT_EQ(device.pages().size(), 1u);
    EXPECT_GT(device.blackPixelCount(0), 0u);
    EXPECT_TRUE(diagnostics.has("hpgl.polygon-too-long"));
}

TEST(HpglBrokenInput, EachUnknownCommandIsToldOnce)
{
    PlotSheet sheet;
    sheet.run("IN;SP1;QQ1,2;QQ3;ZZ;PU0,500;PD900,500;PU;");
    EXPECT_EQ(sheet.diagnostics().diagnostics.size(), 2u);
    EXPECT_TRUE(sheet.hasLine(500, 505));
}

TEST(HpglBrokenInput, ManyUnknownCommandsWithoutADrawingAreDamage)
{
    std::string text;
    for (char first = 'A'; first <= 'Z'; ++first)
        text += std::string("Q") + first + ";Z" + first + ";X" + first + ";J" + first + ";";
    PlotSheet sheet;
    sheet.run(text);
    EXPECT_TRUE(sheet.diagnostics().has("hpgl.not-a-plot"));
}

TEST(HpglBrokenInput, BinaryDataEndThePlotAsFarAsItWasDrawn)
{
    std::string plot = "IN;PS1000,1000;SP1;PU0,0;PD900,900;PG;PU0,0;PD900,900;";
    std::mt19937 dice(1);
    while (plot.size() < 200000) {
        for (int i = 0; i < 200; ++i) {
            const char byte = static_cast<char>(dice() >> 24);
            plot += byte == '\x1b' ? '\0' : byte;
        }
        plot += ";PG;PU0,0;PD900,900;";
    }
    MemoryPageDevice device(PixelFormat::Bilevel, 20);
    FontLibrary fonts;
    RecordingSink diagnostics;
    hpgl::PlotFile file(device, fonts, diagnostics, {}, {});
    MemoryInputStream input({ reinterpret_cast<const std::uint8_t*>(plot.data()), plot.size() });
    EXPECT_EQ(file.run(input), hpgl::PlotFile::End::InputEnded);
    EXPECT_TRUE(diagnostics.has("hpgl.noise"));
    EXPECT_GE(device.pages().size(), 2u);
    EXPECT_LE(device.pages().size(), 20u);
}

TEST(HpglBrokenInput, LabelsOfTwoBytesAreNoNoise)
{
    std::string letters;
    for (int i = 0; i < 2000; ++i)
        letters += std::string("\x30") + static_cast<char>(i % 31 == 3 || i % 31 == 27 ? 32 : i % 31);
    MemoryPageDevice device(PixelFormat::Bilevel, 20);
    FontLibrary fonts;
    RecordingSink diagnostics;
    hpgl::PlotFile file(device, fonts, diagnostics, {}, {});
    std::string plot = "IN;PS1000,1000;SP1;LM1;PA9,9;";
    for (std::size_t i = 0; i + 40 <= letters.size(); i += 40)
        plot += "LB" + letters.substr(i, 40) + std::string("\0\3", 2) + ";";
    MemoryInputStream input({ reinterpret_cast<const std::uint8_t*>(plot.data()), plot.size() });
    EXPECT_EQ(file.run(input), hpgl::PlotFile::End::InputEnded);
    EXPECT_FALSE(diagnostics.has("hpgl.noise"));
}

} // namespace
} // namespace quillrip::test
