#include "quillrip/job/document_program.h"

#include "quillrip/base/units.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace quillrip {

namespace {

constexpr double kDecipointsOfPoint = 10;

using Arguments = std::vector<std::string>;

std::string number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.10g", value);
    return text;
}

std::optional<DocumentPageSize> sizeOfPoints(double width, double height)
{
    if (!std::isfinite(width) || !std::isfinite(height))
        return std::nullopt;
    return DocumentPageSize { width * kDecipointsOfPoint, height * kDecipointsOfPoint };
}

// Ghostscript. -dSAFER: no file but the job itself may be opened, no program started. -P-: nothing from the current
// folder. Large pages are drawn in bands, whose lists are kept in memory since there is no folder for temporary files.

constexpr std::array kGhostscript { "-q", "-P-", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-dNOPROMPT",
    "-sBandListStorage=memory" };

Arguments ghostscriptMeasuring(const std::string& document, const std::string& mark)
{
    Arguments arguments(kGhostscript.begin(), kGhostscript.end());
    // Tells the size of every page that leaves, in points, as the page device has it then.
    arguments.insert(arguments.end(),
        { "-sDEVICE=nullpage", "-c",
            "<< /EndPage { exch pop dup 2 ne { (" + mark
                + ") print currentpagedevice /PageSize get aload pop exch =print ( ) print = flush } if 2 ne } >> "
                  "setpagedevice",
            "-f", document });
    return arguments;
}

std::optional<DocumentPageSize> ghostscriptSize(const std::string& line, const std::string& mark)
{
    double width = 0;
    double height = 0;
    if (line.compare(0, mark.size(), mark) != 0
        || std::sscanf(line.c_str() + mark.size(), "%lf %lf", &width, &height) != 2)
        return std::nullopt;
    return sizeOfPoints(width, height);
}

Arguments ghostscriptDrawing(const std::string& document, const DrawingOrder& order)
{
    Arguments arguments(kGhostscript.begin(), kGhostscript.end());
    const char* device = order.format == PixelFormat::Bilevel ? "pbmraw"
        : order.format == PixelFormat::Gray8                  ? "pgmraw"
                                                              : "ppmraw";
    arguments.push_back(std::string("-sDEVICE=") + device);
    arguments.push_back("-r" + number(order.resolution.x) + "x" + number(order.resolution.y));
    if (order.format != PixelFormat::Bilevel)
        arguments.insert(arguments.end(), { "-dTextAlphaBits=4", "-dGraphicsAlphaBits=4" });
    if (!order.pages.empty())
        arguments.push_back("-sPageList=" + order.pages);
    // Pages go to a descriptor of their own: what the job prints by itself must not mix with them.
    arguments.insert(arguments.end(), { "-sstdout=%stderr", "-sOutputFile=%stdout", "-f", document });
    return arguments;
}

// MuPDF. Documents cannot run programs or open files; -N keeps it from looking for colour profiles.

constexpr std::array kMuPdf { "draw", "-q", "-N", "-o", "-" };

Arguments muPdfMeasuring(const std::string& document, const std::string&)
{
    Arguments arguments(kMuPdf.begin(), kMuPdf.end());
    // Its pages as text, each begun by a line with the size; what a page says itself is quoted.
    arguments.insert(arguments.end(), { "-F", "stext", document });
    return arguments;
}

std::optional<DocumentPageSize> muPdfSize(const std::string& line, const std::string&)
{
    double width = 0;
    double height = 0;
    if (std::sscanf(line.c_str(), "<page id=\"page%*d\" width=\"%lf\" height=\"%lf\"", &width, &height) != 2)
        return std::nullopt;
    return sizeOfPoints(width, height);
}

Arguments muPdfDrawing(const std::string& document, const DrawingOrder& order)
{
    Arguments arguments(kMuPdf.begin(), kMuPdf.end());
    if (order.format == PixelFormat::Bilevel)
        arguments.insert(arguments.end(), { "-F", "pbm" });
    else
        arguments.insert(arguments.end(), { "-F", "pnm", "-c", order.format == PixelFormat::Gray8 ? "gray" : "rgb" });
    const auto pixels = [](double decipoints, double resolution) {
        return std::to_string(std::max(1LL, std::llround(std::min(decipoints / kDecipointsPerInch * resolution, 1e9))));
    };
    if (order.pageSize)
        arguments.insert(arguments.end(),
            { "-w", pixels(order.pageSize->width, order.resolution.x), "-h",
                pixels(order.pageSize->height, order.resolution.y), "-f" });
    else
        arguments.insert(arguments.end(), { "-r", number(order.resolution.x) });
    arguments.push_back(document);
    if (!order.pages.empty())
        arguments.push_back(order.pages);
    return arguments;
}

constexpr DocumentProgram kGhostscriptProgram { "Ghostscript", "gs", "ghostscript", true, nullptr,
    &ghostscriptMeasuring, &ghostscriptSize, &ghostscriptDrawing };
constexpr DocumentProgram kMuPdfForPdf { "MuPDF", "mutool", "mupdf-tools", false, nullptr, &muPdfMeasuring, &muPdfSize,
    &muPdfDrawing };
constexpr DocumentProgram kMuPdfForXps { "MuPDF", "mutool", "mupdf-tools", false, ".xps", &muPdfMeasuring, &muPdfSize,
    &muPdfDrawing };

struct Row {
    DocumentLanguage language;
    const DocumentProgram* program;
};

// Of several programs for a language the best comes first.
constexpr std::array kTable {
    Row { DocumentLanguage::PostScript, &kGhostscriptProgram },
    Row { DocumentLanguage::Pdf, &kGhostscriptProgram },
    Row { DocumentLanguage::Pdf, &kMuPdfForPdf },
    Row { DocumentLanguage::Xps, &kMuPdfForXps },
};

std::string locate(const std::string& folders, const std::string& executable)
{
    for (std::size_t from = 0; from < folders.size();) {
        const std::size_t to = std::min(folders.find(':', from), folders.size());
        std::string candidate = folders.substr(from, to - from) + "/" + executable;
        if (candidate[0] == '/' && ::access(candidate.c_str(), X_OK) == 0)
            return candidate;
        from = to + 1;
    }
    return {};
}

} // namespace

const char* nameOf(DocumentLanguage language)
{
    switch (language) {
    case DocumentLanguage::PostScript:
        return "a PostScript job";
    case DocumentLanguage::Pdf:
        return "a PDF document";
    case DocumentLanguage::Xps:
        break;
    }
    return "an XPS document";
}

DocumentPrograms DocumentPrograms::inFolders(const std::string& path)
{
    DocumentPrograms programs;
    for (const Row& row : kTable) {
        const std::string file = locate(path, row.program->executable);
        if (!file.empty())
            programs.m_installed.push_back({ row.program, file });
    }
    return programs;
}

DocumentPrograms DocumentPrograms::onPath()
{
    const char* path = std::getenv("PATH");
    return inFolders(path ? path : "");
}

std::optional<InstalledProgram> DocumentPrograms::find(DocumentLanguage language) const
{
    for (const Row& row : kTable) {
        if (row.language != language)
            continue;
        for (const InstalledProgram& installed : m_installed) {
            if (installed.program == row.program)
                return installed;
        }
    }
    return std::nullopt;
}

std::vector<std::string> DocumentPrograms::paths() const
{
    std::vector<std::string> paths;
    for (const InstalledProgram& installed : m_installed)
        paths.push_back(installed.path);
    paths.erase(std::unique(paths.begin(), paths.end()), paths.end());
    return paths;
}

std::string DocumentPrograms::wanted(DocumentLanguage language)
{
    std::string text;
    for (const Row& row : kTable) {
        if (row.language == language)
            text += std::string(text.empty() ? "" : " or ") + row.program->name + " (" + row.program->executable
                + " on PATH, of the package " + row.program->package + ")";
    }
    return text + ": install it";
}

} // namespace quillrip
