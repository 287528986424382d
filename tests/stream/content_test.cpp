#include "quillrip/stream/content.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace quillrip::stream {
namespace {

using namespace std::string_literals;
using test::bytesOf;

bool beginsWithInit(ByteView bytes) { return bytes.size >= 3 && bytes[0] == 'I' && bytes[1] == 'N' && bytes[2] == ';'; }

Content at(const std::string& text, bool isStart = true)
{
    return recognise(bytesOf(text), { true, isStart, false, &beginsWithInit });
}

const std::string kExit = "\x1B%-12345X";

TEST(Content, LanguagesAreKnownByTheirFirstBytes)
{
    EXPECT_EQ(at(kExit + "@PJL\n").kind, ContentKind::Pjl);
    EXPECT_EQ(at("@PJL SET COPIES=1\r\n").kind, ContentKind::Pjl);
    EXPECT_EQ(at(") HP-PCL XL;2;0;Comment\n").kind, ContentKind::PclXl);
    EXPECT_EQ(at("( HP-PCL XL;3;0;\n").kind, ContentKind::PclXl);
    EXPECT_EQ(at("\x1B"
                 "E\x1B&l0O")
                  .kind,
        ContentKind::Pcl);
    EXPECT_EQ(at("\x1B*t300R").kind, ContentKind::Pcl);
    EXPECT_EQ(at("\x1B(0N\x1B(s0p10.0h").kind, ContentKind::Pcl);
    EXPECT_EQ(at("\x1B&l0h0m0a0s8c0o0E").kind, ContentKind::Pcl);
    EXPECT_EQ(at("\x1B%0BIN;SP1;").kind, ContentKind::Pcl);
    EXPECT_EQ(at("\x1B%8\x1B*rbC\x1B*t180R").kind, ContentKind::Pcl);
    EXPECT_EQ(at("IN;SP1;PA0,0;").kind, ContentKind::Plot);
    EXPECT_EQ(at("%!PS-Adobe-3.0\n").kind, ContentKind::PostScript);
    EXPECT_EQ(at("\x04%!PS\n").kind, ContentKind::PostScript);
    EXPECT_EQ(at("\xC5\xD0\xD3\xC6\x20").kind, ContentKind::PostScript);
    EXPECT_EQ(at("%PDF-1.4\n").kind, ContentKind::Pdf);
    EXPECT_EQ(at("!R! RES; EXIT;").kind, ContentKind::Prescribe);
    EXPECT_EQ(at("Dear Sir,\r\nthank you.\r\n").kind, ContentKind::Text);
}

TEST(Content, PaddingInFrontIsSeenThroughAndCounted)
{
    const Content afterNuls = at(std::string(600, '\0') + kExit + "@PJL\n");
    EXPECT_EQ(afterNuls.kind, ContentKind::Pjl);
    EXPECT_EQ(afterNuls.padding, 600u);
    EXPECT_EQ(at("\xEF\xBB\xBF%!PS\n").kind, ContentKind::PostScript);
    EXPECT_EQ(at("\r\n\r\n \x1A" + kExit).padding, 6u);
    EXPECT_EQ(at("\r\n \0\x1A\f"s).kind, ContentKind::Nothing);
    EXPECT_EQ(at("").kind, ContentKind::Nothing);
}

TEST(Content, ResetsInFrontOfAnotherLanguageAreDropped)
{
    const Content pjl = at("\x1B"
                           "E"
        + kExit + "@PJL\n");
    EXPECT_EQ(pjl.kind, ContentKind::Pjl);
    EXPECT_EQ(pjl.padding, 2u);
    EXPECT_EQ(at("\x1B"
                 "E\r\n\x1B"
                 "E) HP-PCL XL;1;1;\n")
                  .kind,
        ContentKind::PclXl);
    EXPECT_EQ(at("\x1B"
                 "EIN;SP1;")
                  .kind,
        ContentKind::Plot);
    EXPECT_EQ(at("\x1B"
                 "EHello")
                  .kind,
        ContentKind::Pcl);
}

TEST(Content, BlankLinesBeforeTextAreTheText)
{
    const Content text = at("\n\n\n   Title\n");
    EXPECT_EQ(text.kind, ContentKind::Text);
    EXPECT_EQ(text.padding, 0u);
    EXPECT_EQ(at("\0\0\n   Title\n"s).padding, 2u);
}

TEST(Content, ForeignFormatsAreNamed)
{
    const auto name = [](const std::string& text) {
        const Content content = at(text + std::string(64, 'x'));
        return content.kind == ContentKind::Foreign ? content.name : "not foreign";
    };
    const auto holds
        = [&](const std::string& text, const char* word) { return name(text).find(word) != std::string::npos; };
    EXPECT_TRUE(holds("%PDF-1.7\n%PCLm 1.0\n", "PCLm")) << name("%PDF-1.7\n%PCLm 1.0\n");
    EXPECT_TRUE(holds("RaS2PwgRaster\0"s, "PWG"));
    EXPECT_TRUE(holds("RaS2\0\0\0\0"s, "CUPS"));
    EXPECT_TRUE(holds("3SaR", "CUPS"));
    EXPECT_TRUE(holds("UNIRAST\0"s, "URF"));
    EXPECT_TRUE(holds("\x1B@\x1B(R", "ESC/P"));
    EXPECT_TRUE(holds("\0\0\0\x1B\1@EJL 1284.4\n"s, "ESC/P"));
    EXPECT_TRUE(holds("\x1B(R\x08\0\0REMOTE1"s, "ESC/P2"));
    EXPECT_TRUE(holds("\x1B[K\2\0\0\x0F"s, "BJ"));
    EXPECT_TRUE(holds("JZJZ\0\0"s, "ZjStream"));
    EXPECT_TRUE(holds(",XQX\0"s, "XQX"));
    EXPECT_TRUE(holds("$\0\x10\0"s, "LIDIL"));
    EXPECT_TRUE(holds("PK\3\4", "ZIP"));
    EXPECT_TRUE(holds("II*\0"s, "TIFF"));
    EXPECT_TRUE(holds("\xFF\xD8\xFF\xE0", "JPEG"));
    EXPECT_TRUE(holds("\x89PNG\r\n\x1A\n", "PNG"));
    EXPECT_TRUE(holds("GIF89a", "GIF"));
    EXPECT_TRUE(holds("BM\0\0\1\0\0\0\0\0\x36\0\0\0\x28\0\0\0"s, "BMP"));
    EXPECT_TRUE(holds("\x1F\x8B\x08", "gzip"));
    EXPECT_TRUE(holds("^XA^FO", "ZPL"));
    EXPECT_TRUE(holds("<?xml version", "XML"));
    EXPECT_TRUE(holds("\xFF\xFEH\0"s, "UTF-16"));
    EXPECT_TRUE(holds("gI\0\0"s, ".shd"));
    EXPECT_TRUE(holds("\x1B%@", "LIPS"));
    EXPECT_TRUE(holds("\x5A\0\x10\xD3\xA8\xA8"s, "AFP"));
}

TEST(Content, EmfSpoolNeedsAHeaderThatMakesSense)
{
    const std::string spool = "\0\0\1\0\x10\0\0\0\0\0\0\0\0\0\0\0"s + "\x03\0\0\0\x10\0\0\0"s + std::string(64, 'e');
    EXPECT_EQ(at(spool).kind, ContentKind::Emf);
    const std::string noise = "\0\0\1\0\xFF\xFE\x12\x34"s + std::string(64, 'e');
    EXPECT_NE(at(noise).kind, ContentKind::Emf);
    EXPECT_NE(at(spool, false).kind, ContentKind::Emf);
}

TEST(Content, MetafilesAreKnownByTheirSignature)
{
    std::string metafile = "\1\0\0\0\x98\0\0\0"s + std::string(32, '\0') + " EMF" + std::string(64, '\0');
    EXPECT_EQ(at(metafile).kind, ContentKind::Emf);
    metafile[41] = 'X';
    EXPECT_NE(at(metafile).kind, ContentKind::Emf);
}

TEST(Content, TextThatLooksLikeALanguageStaysText)
{
    EXPECT_EQ(at("IN the beginning\n").kind, ContentKind::Text);
    EXPECT_EQ(at("BM is not a picture here\n").kind, ContentKind::Text);
    EXPECT_EQ(at("% not PostScript\n").kind, ContentKind::Text);
    EXPECT_EQ(at("one\rtwo\rthree\x0C").kind, ContentKind::Text);
    EXPECT_EQ(at("caf\xE9 cr\xE8me\n").kind, ContentKind::Text);
}

TEST(Content, TextOfAnyCodePageIsText)
{
    std::string cyrillic;
    for (int i = 0; i < 64; ++i)
        cyrillic += "\xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82 ";
    EXPECT_EQ(at(cyrillic).kind, ContentKind::Text) << "UTF-8";
    EXPECT_EQ(at("\xEF\xBB\xBF" + cyrillic).kind, ContentKind::Text) << "UTF-8 with its mark";
    EXPECT_EQ(at("\x8F\xE0\xA8\xA2\xA5\xE2, \x8C\xA8\xE0!\r\n").kind, ContentKind::Text) << "code page 866";
    EXPECT_EQ(at("\x93so\x94 \x96 \x80 5\r\n").kind, ContentKind::Text) << "Windows 1252";
    EXPECT_EQ(at("NA\bAM\bME\bE\n  a page for line printers\n").kind, ContentKind::Text) << "overstruck";
    EXPECT_EQ(at("Hello\r\n\x1A").kind, ContentKind::Text) << "the end mark of DOS";
    EXPECT_EQ(at("Hello\r\n\0\0\0\0"s).kind, ContentKind::Text) << "padded";
    EXPECT_EQ(at("\x0Ewide\x0F and not\n").kind, ContentKind::Text) << "shifts";
    EXPECT_EQ(at("a line\n\x1B&d0Dunderlined\x1B&d@\n").kind, ContentKind::Text) << "commands of PCL within";
    EXPECT_EQ(at("log: \x1B[32mok\x1B[0m\n").kind, ContentKind::Text) << "a terminal's colours";
}

TEST(Content, CodesThatPrintNothingAreNoText)
{
    EXPECT_EQ(at("Some words \1\2\3\4\5\6 and more\n").kind, ContentKind::Unknown);
    EXPECT_EQ(at("Half\0of it"s).kind, ContentKind::Unknown);
    EXPECT_EQ(at("Shifts \x0F\x0F\x0F\x0F\x0F\x0F\x0F\x0F without letters\n").kind, ContentKind::Unknown);
    EXPECT_EQ(at("x\x1B\x1B\x1B\x1B\x1B\x1B\x1B\n").kind, ContentKind::Unknown);
}

TEST(Content, XpsIsKnownByTheNamesOfItsParts)
{
    const auto part = [](const std::string& name) {
        std::string header = "PK\3\4" + std::string(26, '\0') + name;
        header[26] = static_cast<char>(name.size());
        return header + "data data data data data data data data";
    };
    EXPECT_EQ(at(part("[Content_Types].xml") + part("FixedDocumentSequence.fdseq")).kind, ContentKind::Xps);
    EXPECT_EQ(at(part("Documents/1/Pages/1.FPAGE/[0].piece")).kind, ContentKind::Xps);
    EXPECT_EQ(at(part("[Content_Types].xml") + part("word/document.xml")).kind, ContentKind::Foreign);
}

TEST(Content, TextUpToAUniversalExitIsJudgedAlone)
{
    EXPECT_EQ(at("Banner\n" + kExit + "@PJL\n" + std::string(500, '\0')).kind, ContentKind::Text);
}

TEST(Content, UnknownDataShowsItsFirstBytes)
{
    const Content content = at("\x80\x81\x82\0\1\2\3"s);
    EXPECT_EQ(content.kind, ContentKind::Unknown);
    EXPECT_NE(content.name.find("80 81 82 00 01"), std::string::npos);
}

// Of 3,000 random bytes some are an ESC and a letter that ESC/P knows.
TEST(Content, NoiseIsNoTextWithCommandsOfOtherPrinters)
{
    for (unsigned seed = 1; seed <= 50; ++seed) {
        std::mt19937 random(seed);
        std::string noise("\x80\1\2\3"s);
        while (noise.size() < 3000)
            noise += static_cast<char>(random());
        EXPECT_EQ(at(noise).kind, ContentKind::Unknown) << seed << ": " << at(noise).name;
    }
    // What these bytes stand in the way of.
    EXPECT_EQ(at("Dear Sir,\r\n\x0F\x1BW\1thank you\x1BW\0\r\n"s).kind, ContentKind::Foreign);
}

TEST(Content, UniversalExitInsideBinaryDataIsNotBelieved)
{
    const std::string binary = kExit + "\x80\x01";
    EXPECT_FALSE(isBelievableUniversalExit(bytesOf(binary)));
    EXPECT_TRUE(isBelievableUniversalExit(bytesOf(kExit)));
    EXPECT_TRUE(isBelievableUniversalExit(bytesOf(kExit + "\r\n@PJL EOJ\n")));
    EXPECT_TRUE(isBelievableUniversalExit(bytesOf(kExit
        + "\x1B"
          "E")));
}

TEST(Content, HeaderBehindPrintableJunkIsFound)
{
    const Content content = at("junk line\n) HP-PCL XL;2;0;\n");
    EXPECT_EQ(content.kind, ContentKind::PclXl);
    EXPECT_EQ(content.padding, 10u);
    EXPECT_EQ(at("A stream begins with ) HP-PCL XL;2;0; in its first line\n").kind, ContentKind::Text);
}

} // namespace
} // namespace quillrip::stream
