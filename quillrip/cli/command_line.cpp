#include "quillrip/cli/command_line.h"

#include <array>
#include <cstdlib>
#include <optional>

namespace quillrip::cli {

namespace {

/// The command line as it was written, before the options are looked at together.
struct Arguments {
    std::optional<int> width;
    std::optional<int> height;
    Resolution resolution { 300, 300 };
    int depth = 24;
    int compression = 0;
    std::optional<int> fax;
    std::string output;
    std::string input;
    bool isDurable = false;
    std::optional<int> mostPages;
    std::optional<int> mostOutput;
    std::optional<int> mostMemory;
    int mostSeconds = 24 * 60 * 60;
    std::string report;
    bool isQuiet = false;
    bool isTraced = false;
};

constexpr int kHighestResolution = 2400;
constexpr int kLargestSize = 1000000;
constexpr int kMostPages = 100000;
constexpr int kMostMegabytes = 100000000;
constexpr int kMostSeconds = 10000000;

std::optional<int> wholeNumber(const std::string& text, int lowest, int highest)
{
    if (text.empty() || text.size() > 9)
        return std::nullopt;
    int number = 0;
    for (const char c : text) {
        if (c < '0' || c > '9')
            return std::nullopt;
        number = number * 10 + (c - '0');
    }
    return number >= lowest && number <= highest ? std::optional<int>(number) : std::nullopt;
}

bool takeSize(std::optional<int>& size, const std::string& value)
{
    size = wholeNumber(value, 1, kLargestSize);
    return size.has_value();
}

bool takeWidth(Arguments& arguments, const std::string& value) { return takeSize(arguments.width, value); }
bool takeHeight(Arguments& arguments, const std::string& value) { return takeSize(arguments.height, value); }

bool takeResolution(Arguments& arguments, const std::string& value)
{
    const std::size_t cross = value.find_first_of("xX");
    if (cross == std::string::npos)
        return false;
    const auto across = wholeNumber(value.substr(0, cross), 1, kHighestResolution);
    const auto down = wholeNumber(value.substr(cross + 1), 1, kHighestResolution);
    if (!across || !down)
        return false;
    arguments.resolution = { static_cast<double>(*across), static_cast<double>(*down) };
    return true;
}

bool takeDepth(Arguments& arguments, const std::string& value)
{
    const auto depth = wholeNumber(value, 1, 24);
    if (depth != 1 && depth != 8 && depth != 24)
        return false;
    arguments.depth = *depth;
    return true;
}

bool takeCompression(Arguments& arguments, const std::string& value)
{
    const auto compression = wholeNumber(value, 0, 7);
    arguments.compression = compression.value_or(0);
    return compression.has_value();
}

bool takeFax(Arguments& arguments, const std::string& value)
{
    arguments.fax = wholeNumber(value, 0, 1);
    return arguments.fax.has_value();
}

bool takeSync(Arguments& arguments, const std::string& value)
{
    arguments.isDurable = value == "y";
    return value == "y" || value == "n";
}

bool takeLimitPages(Arguments& arguments, const std::string& value)
{
    arguments.mostPages = wholeNumber(value, 1, kMostPages);
    return arguments.mostPages.has_value();
}

bool takeLimitOutput(Arguments& arguments, const std::string& value)
{
    arguments.mostOutput = wholeNumber(value, 1, kMostMegabytes);
    return arguments.mostOutput.has_value();
}

bool takeLimitMemory(Arguments& arguments, const std::string& value)
{
    arguments.mostMemory = wholeNumber(value, 1, kMostMegabytes);
    return arguments.mostMemory.has_value();
}

bool takeLimitSeconds(Arguments& arguments, const std::string& value)
{
    const auto seconds = wholeNumber(value, 1, kMostSeconds);
    arguments.mostSeconds = seconds.value_or(0);
    return seconds.has_value();
}

// The window says whether printers' resources may be written to the local disk; quillrip writes none at all.
bool takeWriteLocal(Arguments&, const std::string& value) { return value == "y" || value == "n"; }

bool takeOutput(Arguments& arguments, const std::string& value)
{
    arguments.output = value;
    return !value.empty();
}

bool takeInput(Arguments& arguments, const std::string& value)
{
    arguments.input = value;
    return !value.empty();
}

bool takeReport(Arguments& arguments, const std::string& value)
{
    // An image of that name would take the report's place.
    arguments.report = value;
    return !value.empty() && !fileTypeOfPath(value);
}

bool takeQuiet(Arguments& arguments, const std::string&)
{
    arguments.isQuiet = true;
    return true;
}

bool takeTrace(Arguments& arguments, const std::string&)
{
    arguments.isTraced = true;
    return true;
}

struct Option {
    const char* name;
    const char* value; ///< what stands for the value in help texts; null: the option takes none
    const char* wanted; ///< completes "-r needs ..."
    const char* help; ///< sentences, one line of help for each line
    bool (*take)(Arguments&, const std::string& value);
};

// The source of parsing, of --help and of the manual page.
constexpr std::array s_options {
    Option { "-o", "OUT", "the path of the image file",
        "The image file; its extension says the type: .bmp .png .jpg .jpeg .pcx .tif .tiff.\n"
        "A TIFF holds all pages; else page 2 goes to OUT's name with _p0002 before the extension, and so on.",
        takeOutput },
    Option { "-i", "IN", "the path of the print job",
        "The print job, or - for standard input. Its kind is found from its content.", takeInput },
    Option { "-r", "XxY", "two whole numbers from 1 to 2400, such as 300x300",
        "Resolution across and down, dots per inch, 1 to 2400 each. Default 300x300.", takeResolution },
    Option { "-gw", "W", "a whole number of pixels from 1 to 1000000",
        "Width of every image in pixels: the page is drawn at the resolution that gives it.\n"
        "With -gw or -gh alone the page keeps its proportions.",
        takeWidth },
    Option { "-gh", "H", "a whole number of pixels from 1 to 1000000", "Height of every image in pixels, likewise.",
        takeHeight },
    Option { "-b", "1|8|24", "1, 8 or 24",
        "Bits of a pixel: 1 black and white, 8 grey, 24 colour. Default 24.\n"
        "JPEG has no black and white; with 1 it gets those two shades of grey.",
        takeDepth },
    Option { "-c", "N", "a whole number from 0 to 7",
        "TIFF compression: 0 none, 1 PackBits, 2 LZW, 3 LZW with predictor, 4 CCITT Group 3 one-dimensional,\n"
        "5 Group 3 two-dimensional, 6 Group 4, 7 Deflate. Default 0. 4 to 6 need -b 1. No effect on other types.",
        takeCompression },
    Option { "-faxtif", "0|1", "0 or 1",
        "A fax (TIFF class F, 1,728 pixels wide): 0 normal, 204x98; 1 fine, 204x196.\n"
        "-b, -c, -r, -gw and -gh then have no effect. No effect on other types.",
        takeFax },
    Option { "-sync", "y|n", "y or n",
        "y: the files are on the disk, safe from a loss of power, when quillrip ends with 0 or 4. Default n: only "
        "those\n"
        "that replace a file are.",
        takeSync },
    Option { "-limit-pages", "N", "a whole number from 1 to 100000",
        "A job of more pages ends with 5 and leaves no file. Default 100000.", takeLimitPages },
    Option { "-limit-output", "MB", "a whole number of megabytes from 1 to 100000000",
        "A job whose images need more megabytes, of 1,048,576 bytes, ends likewise.\n"
        "Default 4096 and another for each byte of the job.",
        takeLimitOutput },
    Option { "-limit-memory", "MB", "a whole number of megabytes from 1 to 100000000",
        "A job that needs more megabytes of memory besides its pages ends likewise. Default 32, with another 32\n"
        "for each megabyte of the job, 1024 at most, and up to 256 for its largest compressed picture.",
        takeLimitMemory },
    Option { "-limit-seconds", "S", "a whole number of seconds from 1 to 10000000",
        "A job that takes longer, in real time, ends likewise. Default 86400, a day.", takeLimitSeconds },
    Option { "--report", "FILE", "the path of a file that is no image",
        "Appends one line of JSON about the conversion to FILE, also when it fails: input, output, bytes,\n"
        "languages, pages with their sizes, warnings, exit code, message, seconds, memory.",
        takeReport },
    Option { "-q", nullptr, nullptr,
        "No warnings, and no line on a terminal that tells how far a long conversion is. Errors are told.", takeQuiet },
    Option { "-writelocal", "y|n", "y or n", "Accepted for the window's sake: no job ever writes any other file.",
        takeWriteLocal },
    Option { "--trace", nullptr, nullptr,
        "Names every command of the job on standard error as it is carried out: the byte of the input\n"
        "where it starts, its name and its values.",
        takeTrace },
};

PixelFormat formatOf(int depth)
{
    return depth == 1 ? PixelFormat::Bilevel : depth == 8 ? PixelFormat::Gray8 : PixelFormat::Rgb24;
}

Request conversionOf(const Arguments& arguments)
{
    if (arguments.output.empty() || arguments.input.empty())
        return UsageError { arguments.output.empty() ? "-o OUT is missing" : "-i IN is missing" };
    const auto type = fileTypeOfPath(arguments.output);
    if (!type)
        return UsageError { "the type of " + arguments.output
            + " is not known by its extension: use .bmp, .png, .jpg, .jpeg, .pcx, .tif or .tiff" };

    Convert conversion;
    conversion.seconds = static_cast<std::uint32_t>(arguments.mostSeconds);
    conversion.reportPath = arguments.report;
    conversion.isQuiet = arguments.isQuiet;
    conversion.isTraced = arguments.isTraced;
    ConversionOptions& options = conversion.options;
    options.document.isDurable = arguments.isDurable;
    options.limits.pages = static_cast<std::uint32_t>(arguments.mostPages.value_or(kMostPages));
    options.limits.outputBytes = static_cast<std::uint64_t>(arguments.mostOutput.value_or(0)) << 20;
    if (arguments.mostMemory)
        options.limits.memory = { static_cast<std::uint64_t>(*arguments.mostMemory) << 20, 0, 0 };
    options.inputPath = arguments.input;
    options.document.path = arguments.output;
    options.document.type = *type;
    if (*type == FileType::Tiff && arguments.fax) {
        options.document.fax = true;
        options.page.format = PixelFormat::Bilevel;
        options.page.fax = *arguments.fax == 0 ? FaxMode::Normal : FaxMode::Fine;
        return conversion;
    }
    if (*type == FileType::Tiff)
        options.document.compression = static_cast<TiffCompression>(arguments.compression);
    options.page.format = formatOf(arguments.depth);
    options.page.resolution = arguments.resolution;
    options.page.width = arguments.width;
    options.page.height = arguments.height;
    const std::string reason = reasonAgainst(options.document, options.page.format);
    if (!reason.empty())
        return UsageError { reason };
    return conversion;
}

void appendIndented(std::string& text, const char* lines, const char* indent)
{
    for (; *lines; ++lines) {
        text += *lines;
        if (*lines == '\n')
            text += indent;
    }
}

} // namespace

Request parseCommandLine(const std::vector<std::string>& arguments)
{
    Arguments parsed;
    for (std::size_t at = 0; at < arguments.size(); ++at) {
        const std::string& name = arguments[at];
        if (name == "--help" || name == "-h")
            return ShowHelp {};
        if (name == "--version")
            return ShowVersion {};
        const Option* option = nullptr;
        for (const Option& candidate : s_options) {
            if (name == candidate.name)
                option = &candidate;
        }
        if (!option)
            return UsageError { name.empty() || name[0] != '-'
                    ? "unexpected argument '" + name + "': the print job goes behind -i, the image file behind -o"
                    : "unknown option " + name };
        if (!option->value) {
            option->take(parsed, {});
            continue;
        }
        if (at + 1 == arguments.size())
            return UsageError { name + " needs " + option->wanted };
        // Of other options the last one counts, so that a script can append to a line; here a file would be lost in
        // silence.
        if ((option->take == takeInput && !parsed.input.empty())
            || (option->take == takeOutput && !parsed.output.empty()))
            return UsageError { name + " is there twice, and quillrip converts one job at a time" };
        const std::string& value = arguments[++at];
        if (!option->take(parsed, value))
            return UsageError { (name + " needs ").append(option->wanted).append(", not '").append(value).append("'") };
    }
    return conversionOf(parsed);
}

std::string helpText()
{
    std::string text
        = "usage: quillrip [OPTIONS] -o OUT -i IN\n\n"
          "Draws the pages of a print job (PCL 5, PCL XL, HP-GL/2, EMF spool files and metafiles of Windows,\n"
          "plain text; PostScript and PDF where Ghostscript is installed, XPS where MuPDF is) and writes them as\n"
          "images.\n\n";
    for (const Option& option : s_options) {
        std::string words = std::string("  ") + option.name + (option.value ? std::string(" ") + option.value : "");
        words.resize(words.size() < 20 ? 20 : words.size() + 1, ' ');
        text += words;
        appendIndented(text, option.help, "                    ");
        text += '\n';
    }
    text += "  --help            Shows this text.\n"
            "  --version         Shows the version.\n\n"
            "Exit status: 0 done, 1 wrong usage, 2 the input cannot be read or is no print job that quillrip knows,\n"
            "3 the output cannot be written, 4 the job is damaged (the whole pages before the damage are there),\n"
            "5 a limit was exceeded.\n";
    return text;
}

std::string manualOptionList()
{
    std::string text;
    const auto escaped = [](const char* plain) {
        std::string result;
        for (; *plain; ++plain)
            result += *plain == '-' ? std::string("\\-") : std::string(1, *plain);
        return result;
    };
    for (const Option& option : s_options) {
        text += option.value ? ".TP\n.BI \"" + escaped(option.name) + " \" \"" + escaped(option.value) + "\"\n"
                             : ".TP\n.B " + escaped(option.name) + "\n";
        text += escaped(option.help) + "\n";
    }
    text += ".TP\n.B \\-\\-help\nShows a summary of the options.\n";
    text += ".TP\n.B \\-\\-version\nShows the version.\n";
    return text;
}

} // namespace quillrip::cli
