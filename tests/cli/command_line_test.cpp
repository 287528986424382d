#include "quillrip/cli/command_line.h"

#include <gtest/gtest.h>

#include <sstream>

namespace quillrip::cli {
namespace {

Request parsed(const std::string& line)
{
    std::istringstream words(line);
    std::vector<std::string> arguments;
    for (std::string word; words >> word;)
        arguments.push_back(word);
    return parseCommandLine(arguments);
}

ConversionOptions optionsOf(const std::string& line)
{
    const Request request = parsed(line);
    const auto* error = std::get_if<UsageError>(&request);
    EXPECT_EQ(error ? error->message : "", "") << line;
    const auto* conversion = std::get_if<Convert>(&request);
    return conversion ? conversion->options : ConversionOptions {};
}

std::string errorOf(const std::string& line)
{
    const Request request = parsed(line);
    const auto* error = std::get_if<UsageError>(&request);
    return error ? error->message : "";
}

TEST(CommandLine, TracingNeedsNoValue)
{
    const auto isTraced = [](const std::string& line) {
        const Request request = parsed(line);
        return std::holds_alternative<Convert>(request) && std::get<Convert>(request).isTraced;
    };
    EXPECT_TRUE(isTraced("--trace -o out.png -i in.pcl"));
    EXPECT_TRUE(isTraced("-o out.png -i in.pcl --trace"));
    EXPECT_FALSE(isTraced("-o out.png -i in.pcl"));
}

TEST(CommandLine, QuietNeedsNoValueAndAReportIsNoImage)
{
    const auto conversionOf = [](const std::string& line) {
        const Request request = parsed(line);
        return std::holds_alternative<Convert>(request) ? std::get<Convert>(request) : Convert {};
    };
    EXPECT_TRUE(conversionOf("-q -o out.png -i in.pcl").isQuiet);
    EXPECT_FALSE(conversionOf("-o out.png -i in.pcl").isQuiet);
    EXPECT_EQ(conversionOf("-o out.png -i in.pcl --report all.jsonl").reportPath, "all.jsonl");
    EXPECT_EQ(conversionOf("-o out.png -i in.pcl").reportPath, "");
    EXPECT_NE(errorOf("-o out.png -i in.pcl --report").find("--report"), std::string::npos);
    EXPECT_NE(errorOf("-o out.png -i in.pcl --report out_p0002.png").find("no image"), std::string::npos);
}

TEST(CommandLine, DefaultsAreColourAt300Dpi)
{
    const ConversionOptions options = optionsOf("-o out.png -i in.pcl");
    EXPECT_EQ(options.document.path, "out.png");
    EXPECT_EQ(options.inputPath, "in.pcl");
    EXPECT_EQ(options.document.type, FileType::Png);
    EXPECT_EQ(options.page.format, PixelFormat::Rgb24);
    EXPECT_EQ(options.page.resolution.x, 300);
    EXPECT_EQ(options.page.resolution.y, 300);
    EXPECT_FALSE(options.page.width);
    EXPECT_FALSE(options.page.height);
}

TEST(CommandLine, OptionsComeInAnyOrder)
{
    for (const char* line : { "-gw 850 -gh 1100 -r 204x196 -b 1 -c 6 -writelocal n -o a.tif -i b",
             "-i b -o a.tif -writelocal y -c 6 -b 1 -r 204X196 -gh 1100 -gw 850" }) {
        const ConversionOptions options = optionsOf(line);
        EXPECT_EQ(options.page.width, 850);
        EXPECT_EQ(options.page.height, 1100);
        EXPECT_EQ(options.page.resolution.x, 204);
        EXPECT_EQ(options.page.resolution.y, 196);
        EXPECT_EQ(options.page.format, PixelFormat::Bilevel);
        EXPECT_EQ(options.document.compression, TiffCompression::CcittG4);
    }
}

TEST(CommandLine, TypeFollowsTheExtensionInAnyCase)
{
    EXPECT_EQ(optionsOf("-i a -o b.BMP").document.type, FileType::Bmp);
    EXPECT_EQ(optionsOf("-i a -o b.Jpeg").document.type, FileType::Jpeg);
    EXPECT_EQ(optionsOf("-i a -o b.jpg").document.type, FileType::Jpeg);
    EXPECT_EQ(optionsOf("-i a -o b.pcx").document.type, FileType::Pcx);
    EXPECT_EQ(optionsOf("-i a -o b.TIFF").document.type, FileType::Tiff);
    EXPECT_NE(errorOf("-i a -o b.gif"), "");
    EXPECT_NE(errorOf("-i a -o png"), "");
}

TEST(CommandLine, NumbersAreReadCompletelyOrRefused)
{
    for (const char* options :
        { "-b 2", "-b 24x", "-b -8", "-c 8", "-c x", "-r 300", "-r 0x300", "-r 300x2401", "-r 300x300x3", "-r 3OOx300",
            "-r x300", "-gw 0", "-gw 85.0", "-gw +850", "-gh 99999999999", "-faxtif 2", "-writelocal maybe" })
        EXPECT_NE(errorOf(std::string(options) + " -o a.tif -i b"), "") << options;
    EXPECT_EQ(optionsOf("-r 1x2400 -o a.tif -i b").page.resolution.y, 2400);
}

TEST(CommandLine, MissingAndUnknownWordsAreNamed)
{
    EXPECT_NE(errorOf("").find("-o"), std::string::npos);
    EXPECT_NE(errorOf("-o a.png").find("-i"), std::string::npos);
    EXPECT_NE(errorOf("-o a.png -i").find("-i"), std::string::npos);
    EXPECT_NE(errorOf("-x 1 -o a.png -i b").find("-x"), std::string::npos);
    EXPECT_NE(errorOf("stray -o a.png -i b").find("stray"), std::string::npos);
    EXPECT_NE(errorOf("-b zebra -o a.png -i b").find("zebra"), std::string::npos);
}

TEST(CommandLine, SecondJobIsRefusedAndOtherOptionsCountByTheirLast)
{
    EXPECT_NE(errorOf("-o a.png -i b -i c").find("-i is there twice"), std::string::npos);
    EXPECT_NE(errorOf("-o a.png -o c.png -i b").find("-o is there twice"), std::string::npos);
    EXPECT_NE(errorOf("b.pcl a.png").find("behind -i"), std::string::npos);
    EXPECT_EQ(optionsOf("-r 300x300 -o a.png -i b -r 150x100").page.resolution.x, 150);
}

TEST(CommandLine, FaxCodesNeedOneBit)
{
    for (const char* code : { "4", "5", "6" }) {
        EXPECT_NE(errorOf(std::string("-b 8 -o a.tif -i b -c ") + code), "");
        EXPECT_NE(errorOf(std::string("-o a.tif -i b -c ") + code), "");
        EXPECT_EQ(errorOf(std::string("-b 1 -o a.tif -i b -c ") + code), "");
        EXPECT_EQ(errorOf(std::string("-b 8 -o a.png -i b -c ") + code), "") << "compression is TIFF's alone";
    }
    EXPECT_EQ(errorOf("-b 24 -c 7 -o a.tif -i b"), "");
}

TEST(CommandLine, FaxOverrulesTheOtherOptionsInTiffOnly)
{
    const ConversionOptions fax = optionsOf("-faxtif 1 -b 24 -c 6 -gw 10 -gh 20 -r 72x72 -o a.tif -i b");
    EXPECT_TRUE(fax.document.fax);
    EXPECT_EQ(fax.page.fax, FaxMode::Fine);
    EXPECT_EQ(fax.page.format, PixelFormat::Bilevel);
    EXPECT_FALSE(fax.page.width);
    EXPECT_EQ(optionsOf("-faxtif 0 -o a.tif -i b").page.fax, FaxMode::Normal);
    const ConversionOptions png = optionsOf("-faxtif 1 -b 8 -gw 10 -o a.png -i b");
    EXPECT_FALSE(png.document.fax);
    EXPECT_EQ(png.page.fax, FaxMode::None);
    EXPECT_EQ(png.page.width, 10);
    EXPECT_EQ(png.page.format, PixelFormat::Gray8);
}

TEST(CommandLine, JpegTakesOneBitAsGrey) { EXPECT_EQ(errorOf("-b 1 -o a.jpg -i b"), ""); }

TEST(CommandLine, HelpAndManualListEveryOption)
{
    EXPECT_TRUE(std::holds_alternative<ShowHelp>(parsed("-b 1 --help")));
    EXPECT_TRUE(std::holds_alternative<ShowVersion>(parsed("--version")));
    for (const char* option : { "-gw", "-gh", "-r", "-b", "-c", "-faxtif", "-writelocal", "-o", "-i", "--report", "-q",
             "--trace", "--help", "--version" }) {
        EXPECT_NE(helpText().find(std::string("  ") + option + " "), std::string::npos) << option;
    }
    EXPECT_NE(manualOptionList().find(".BI \"\\-gw \" \"W\""), std::string::npos);
    EXPECT_NE(manualOptionList().find(".B \\-q\n"), std::string::npos);
}

} // namespace
} // namespace quillrip::cli
