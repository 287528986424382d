#include "quillrip/stream/job_reader.h"

#include "tests/support/recording_sink.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quillrip::stream {
namespace {

using namespace std::string_literals;

const std::string kExit = "\x1B%-12345X";
const std::string kReset = "\x1B"
                           "E";

bool beginsWithInit(ByteView bytes) { return bytes.size >= 3 && bytes[0] == 'I' && bytes[1] == 'N' && bytes[2] == ';'; }

/// Reads all parts of an input; an interpreter is played that takes each part up to the next Universal Exit, as PCL's
/// does, or up to it, as all others do.
struct Reading {
    explicit Reading(const std::string& text)
        : bytes(text)
        , input({ reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size() })
        , reader(input, recorder, &beginsWithInit)
    {
    }

    std::string takePart()
    {
        std::string data;
        while (!input.atEnd() && !startsWithUniversalExit(input.window(kUniversalExitLength)))
            data.push_back(static_cast<char>(input.get()));
        return data;
    }

    /// Kind and data of all parts, such as "pcl:Hello|".
    std::string all()
    {
        std::string text;
        while (const auto part = reader.next()) {
            text += part->kind == ContentKind::Pcl ? "pcl:"
                : part->kind == ContentKind::PclXl ? "xl:"
                : part->kind == ContentKind::Plot  ? "plot:"
                : part->kind == ContentKind::Pdf   ? "pdf:"
                                                   : "ps:";
            text += takePart() + "|";
        }
        return text;
    }

    std::string bytes;
    MemoryInputStream input;
    test::RecordingSink recorder;
    JobReader reader;
};

std::string partsOf(const std::string& text) { return Reading(text).all(); }

TEST(JobReader, BareDataIsOnePart)
{
    EXPECT_EQ(partsOf("Hello"), "pcl:Hello|");
    EXPECT_EQ(partsOf(""), "");
    EXPECT_EQ(partsOf("IN;SP1;"), "plot:IN;SP1;|");
}

TEST(JobReader, JobLanguageIsTakenOffInAllItsForms)
{
    EXPECT_EQ(partsOf(kExit + "@PJL ENTER LANGUAGE=PCL\n\x1B&l0O" + kExit), "pcl:\x1B&l0O|");
    EXPECT_EQ(partsOf(kExit + "@PJL\r\n@PJL enter language = pclxl \r\n) HP-PCL XL;1;1;\n" + kExit),
        "xl:) HP-PCL XL;1;1;\n|");
    EXPECT_EQ(partsOf(kReset + kExit + "\r\n@PJL SET RET=ON\n\n@PJL ENTER LANGUAGE=HPGL2\nPU;" + kExit), "plot:PU;|");
    for (const std::string name : { "HP-GL/2", "HP-GL2/RTL", "HPRTL", "RTL" })
        EXPECT_EQ(partsOf(kExit + "@PJL ENTER LANGUAGE=" + name + "\n\x1B*t300R" + kExit), "plot:\x1B*t300R|") << name;
    EXPECT_EQ(partsOf("@PJL ENTER LANGUAGE=POSTSCRIPT\n%!PS\n" + kExit + "@PJL EOJ\n" + kExit), "ps:%!PS\n|");
    EXPECT_EQ(partsOf(kExit + "@PJL SET COPIES=2\r@PJL ENTER LANGUAGE=PCL\r\x1B&l0O"), "pcl:\x1B&l0O|");
    EXPECT_EQ(partsOf(kExit + kReset + "x" + kExit + "%!PS\n" + kExit),
        "pcl:\x1B"
        "Ex|ps:%!PS\n|");
}

TEST(JobReader, ExitsWithoutDataAreNoJobs)
{
    EXPECT_EQ(partsOf(kReset + kExit), "");
    EXPECT_EQ(partsOf(kExit + kExit + "\r\n\x1A\0\0"s), "");
    EXPECT_EQ(partsOf(kReset + kExit + kReset + kExit), "");
    EXPECT_EQ(partsOf(kExit + "@PJL\n\x1B%-123"), "");
}

TEST(JobReader, SeveralLanguagesComeInOrder)
{
    const std::string job = kExit + "@PJL ENTER LANGUAGE=PCL\nfirst" + kExit
        + "@PJL ENTER LANGUAGE=POSTSCRIPT\n%!PS second\n" + kExit + "@PJL ENTER LANGUAGE=PCLXL\n) HP-PCL XL;1;1;\n"
        + kExit;
    EXPECT_EQ(partsOf(job), "pcl:first|ps:%!PS second\n|xl:) HP-PCL XL;1;1;\n|");
}

TEST(JobReader, TransferredFilesAreNotJobs)
{
    const std::string data = kExit + "@PJL ENTER LANGUAGE=POSTSCRIPT\n%!";
    const auto job = [&](const std::string& size) {
        return kExit + "@PJL FSDOWNLOAD FORMAT:BINARY " + size + "NAME=\"0:\\x\"\r\n" + data + kExit
            + "@PJL ENTER LANGUAGE=PCL\nrest";
    };
    EXPECT_EQ(partsOf(job("SIZE=" + std::to_string(data.size()) + " ")), "pcl:rest|");
    // The size leads nowhere: the next exit ends the data, whatever it was.
    Reading tooLong(kExit + "@PJL FSDOWNLOAD SIZE=999999 NAME=\"x\"\nabc" + kExit + "@PJL ENTER LANGUAGE=PCL\nrest");
    EXPECT_EQ(tooLong.all(), "pcl:rest|");
    EXPECT_EQ(tooLong.recorder.kinds(), std::vector<std::string> { "pjl.transfer-size" });
    Reading missing(kExit + "@PJL FSAPPEND NAME=\"x\"\nabc" + kExit + "@PJL ENTER LANGUAGE=PCL\nrest");
    EXPECT_EQ(missing.all(), "pcl:rest|");
    // A size that is an answer's has no data.
    EXPECT_EQ(partsOf(kExit + "@PJL FSUPLOAD NAME=\"x\" SIZE=1000\n@PJL ENTER LANGUAGE=PCL\nrest"), "pcl:rest|");
}

TEST(JobReader, SettingsLastUntilTheirJobEnds)
{
    Reading reading(kExit + "@PJL SET PAPER=A4\n" + kExit + "@PJL ENTER LANGUAGE=PCL\none" + kExit
        + "@PJL ENTER LANGUAGE=PCL\ntwo" + kExit + "@PJL JOB\n@PJL SET PAPER=LEGAL\n@PJL ENTER LANGUAGE=PCL\nthree"
        + kExit + "@PJL ENTER LANGUAGE=PCL\nfour" + kExit + "@PJL EOJ\n@PJL ENTER LANGUAGE=PCL\nfive");
    std::vector<int> papers;
    while (reading.reader.next()) {
        papers.push_back(reading.reader.environment().paperCode.value_or(0));
        reading.takePart();
    }
    EXPECT_EQ(papers, (std::vector<int> { 26, 0, 3, 3, 0 }));
}

TEST(JobReader, PageRangeComesFromTheJobLine)
{
    Reading reading(kExit + "@PJL JOB NAME=\"x\" START=2 END=3\n@PJL ENTER LANGUAGE=PCL\nabc");
    ASSERT_TRUE(reading.reader.next());
    EXPECT_EQ(reading.reader.job().firstPage, 2u);
    EXPECT_EQ(reading.reader.job().lastPage, 3u);
}

TEST(JobReader, ForeignDataIsPassedOverUpToAnExitThatAJobFollows)
{
    const std::string raster = "JZJZ\x80\x81" + kExit + "\xFE\xFD more raster";
    Reading reading(kExit + "@PJL ENTER LANGUAGE=ZJS\n" + raster + kExit + "@PJL ENTER LANGUAGE=PCL\nabc");
    EXPECT_EQ(reading.all(), "pcl:abc|");
    EXPECT_EQ(reading.reader.foreignName(), "ZjStream, a host-based raster");
    EXPECT_EQ(reading.reader.foreignOffset(), 33u);
}

TEST(JobReader, ForeignLanguagesAreNamedAsTheJobNamesThem)
{
    Reading reading(kExit + "@PJL ENTER LANGUAGE=LAVAFLOW\n\x1B*g8W........" + kExit);
    EXPECT_EQ(reading.all(), "");
    EXPECT_NE(reading.reader.foreignName().find("LAVAFLOW"), std::string::npos);
    Reading photo(std::string(600, '\0') + kReset + kExit
        + "@PJL ENTER LANGUAGE=PHOTOJPEG\n@PJL SET COPIES=1\n\xFF\xD8\xFF\xE0" + kExit);
    EXPECT_EQ(photo.all(), "");
    EXPECT_EQ(photo.reader.foreignName(), "a JPEG image");
}

TEST(JobReader, LinesBehindTheOneThatEntersLeaveTheLanguageEntered)
{
    Reading reading(kExit + "@PJL ENTER LANGUAGE=PCL3GUI\n@PJL SET PAPER=A4\r\n@PJL COMMENT text\n@PJL\n\x1B&l0Hrest");
    const auto part = reading.reader.next();
    ASSERT_TRUE(part);
    EXPECT_EQ(part->kind, ContentKind::Pcl);
    EXPECT_TRUE(part->isInkjetRaster);
    EXPECT_EQ(reading.reader.environment().paperCode.value_or(0), 26);
    EXPECT_EQ(reading.takePart(), "\x1B&l0Hrest");
    EXPECT_EQ(partsOf(kExit + "@PJL ENTER LANGUAGE=PCL\n@PJL ENTER LANGUAGE=HPGL2\nIN;"), "plot:IN;|");
    EXPECT_EQ(partsOf(kExit + "@PJL ENTER LANGUAGE=PCL\n@PJL SET X=1\n" + kExit + "@PJL\n"), "");
}

TEST(JobReader, TheLineThatEntersEndsWithTheLanguagesFirstCommand)
{
    Reading reading(kExit
        + "@PJL ENTER LANGUAGE=PCL3\x1B"
          "E\n\x1B&l7Hrest");
    const auto part = reading.reader.next();
    ASSERT_TRUE(part);
    EXPECT_TRUE(part->isInkjet);
    EXPECT_EQ(reading.takePart(),
        "\x1B"
        "E\n\x1B&l7Hrest");
    // Other lines may hold the character.
    EXPECT_EQ(partsOf(kExit + "@PJL COMMENT \x1B(name\n@PJL ENTER LANGUAGE=PCL\nabc"), "pcl:abc|");
    EXPECT_EQ(partsOf(kExit + "@PJL COMMENT x" + kExit + "@PJL ENTER LANGUAGE=PCL\nabc"), "pcl:abc|");
}

TEST(JobReader, DialectsOfPclAreKnownByTheirNameAndBeginning)
{
    EXPECT_EQ(partsOf(kExit + "@PJL ENTER LANGUAGE=PCL600\n\x1B*r0Fabc"), "pcl:\x1B*r0Fabc|");
    EXPECT_EQ(partsOf(kExit + "@PJL ENTER LANGUAGE=PCLSLEEK\n\x1B*rbCabc"), "pcl:\x1B*rbCabc|");
    EXPECT_EQ(partsOf(kExit + "@PJL ENTER LANGUAGE=PCLSLEEK\nabc"), "");
}

TEST(JobReader, UnmistakableDataCountsMoreThanItsName)
{
    Reading reading(kExit + "@PJL ENTER LANGUAGE=PCL\n) HP-PCL XL;1;1;\n" + kExit);
    EXPECT_EQ(reading.all(), "xl:) HP-PCL XL;1;1;\n|");
    EXPECT_EQ(reading.recorder.kinds(), std::vector<std::string> { "pjl.other-language" });
    EXPECT_EQ(partsOf(kExit + "@PJL ENTER LANGUAGE=POSTSCRIPT\n%PDF-1.4\n" + kExit), "pdf:%PDF-1.4\n|");
}

TEST(JobReader, InkjetDialectIsPclThatPrintsNoText)
{
    Reading reading(kExit + "@PJL ENTER LANGUAGE=PCL3GUI\n\x1B&l0H");
    const auto part = reading.reader.next();
    ASSERT_TRUE(part);
    EXPECT_EQ(part->kind, ContentKind::Pcl);
    EXPECT_TRUE(part->isInkjetRaster);
}

TEST(JobReader, LinesBehindTheLanguagesNameLeaveItEntered)
{
    Reading reading(kExit + "@PJL ENTER LANGUAGE=PCL3GUI\n@PJL SET PAPER=A4\n@PJL COMMENT x\n\x1B&l0H");
    const auto part = reading.reader.next();
    ASSERT_TRUE(part);
    EXPECT_TRUE(part->isInkjetRaster);
    EXPECT_TRUE(part->isNamed);
    EXPECT_EQ(reading.reader.environment().paperCode, 26);
    EXPECT_EQ(reading.takePart(), "\x1B&l0H");
    // The last one that enters counts, however many there are.
    std::string many = kExit;
    for (int i = 0; i < 100000; ++i)
        many += "@PJL ENTER LANGUAGE=PCL3GUI\n";
    Reading last(many + "@PJL ENTER LANGUAGE=PCL\n\x1B&l0H");
    ASSERT_FALSE(last.reader.next()->isInkjetRaster);
}

TEST(JobReader, TextBehindTheLastJobIsLeftOutWhenItIsShort)
{
    EXPECT_EQ(partsOf(kExit + "@PJL ENTER LANGUAGE=PCL\nabc" + kExit + "stray"), "pcl:abc|");
    EXPECT_EQ(partsOf(kExit + "@PJL ENTER LANGUAGE=PCL\nabc" + kExit + "a whole line of text\n"),
        "pcl:abc|pcl:a whole line of text\n|");
}

TEST(JobReader, PrescribeIsSkippedToItsEnd)
{
    EXPECT_EQ(partsOf("!R! SEM 6; Exit;\x1B&l0Oabc"), "pcl:\x1B&l0Oabc|");
    EXPECT_EQ(partsOf("!R! SEM 6;"), "");
}

TEST(JobReader, LinesWithoutAnEndAreBounded)
{
    Reading reading(kExit + "@PJL COMMENT " + std::string(200000, 'x') + kExit + "@PJL ENTER LANGUAGE=PCL\nabc");
    EXPECT_EQ(reading.all(), "pcl:abc|");
    EXPECT_EQ(reading.recorder.kinds(), std::vector<std::string> { "pjl.line-too-long" });
}

TEST(JobReader, LongPaddingIsDroppedInPieces)
{
    EXPECT_EQ(partsOf(std::string(300000, '\0') + "\x1B&l0Oabc"), "pcl:\x1B&l0Oabc|");
}

} // namespace
} // namespace quillrip::stream
