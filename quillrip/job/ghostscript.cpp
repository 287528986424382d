#include "quillrip/job/ghostscript.h"

#include "quillrip/job/child_process.h"
#include "quillrip/job/netpbm_reader.h"
#include "quillrip/job/spool_file.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <sys/random.h>
#include <unistd.h>

namespace quillrip {

namespace {

constexpr double kDecipointsOfPoint = 10;
constexpr std::size_t kLongestReport = 64;
constexpr std::size_t kMostPages = 100000;

// A word that a job cannot know beforehand: lines that begin with it are not the job's own.
std::string unguessableMark()
{
    std::uint64_t value = 0;
    if (::getrandom(&value, sizeof value, 0) != sizeof value)
        value = static_cast<std::uint64_t>(::getpid());
    return "page-" + std::to_string(value) + " ";
}

// Tells the size of every page that leaves, in points, as the page device has it then.
std::string sizeReporter(const std::string& mark)
{
    return "<< /EndPage { exch pop dup 2 ne { (" + mark
        + ") print currentpagedevice /PageSize get aload pop exch =print ( ) print = flush } if 2 ne } >> "
          "setpagedevice";
}

std::string number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.10g", value);
    return text;
}

const char* deviceFor(PixelFormat format)
{
    return format == PixelFormat::Bilevel ? "pbmraw" : format == PixelFormat::Gray8 ? "pgmraw" : "ppmraw";
}

// Of a page in the middle of an image; negative when the page is wider and loses its edges.
int marginFor(int imageWidth, int pageWidth) { return static_cast<int>(std::floor((imageWidth - pageWidth) / 2.0)); }

std::vector<std::string> safeArguments(const std::string& program)
{
    // -dSAFER: no file but the job itself may be opened, no program started. -P-: nothing from the current folder.
    // Large pages are drawn in bands, whose lists are kept in memory since there is no folder for temporary files.
    return { program, "-q", "-P-", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-dNOPROMPT", "-sBandListStorage=memory" };
}

} // namespace

std::string findGhostscript()
{
    const char* path = std::getenv("PATH");
    const std::string folders = path ? path : "";
    for (std::size_t from = 0; from < folders.size();) {
        const std::size_t to = std::min(folders.find(':', from), folders.size());
        const std::string candidate = folders.substr(from, to - from) + "/gs";
        // A relative folder would run whatever lies beside the job.
        if (candidate[0] == '/' && ::access(candidate.c_str(), X_OK) == 0)
            return candidate;
        from = to + 1;
    }
    return {};
}

GhostscriptRenderer::GhostscriptRenderer(
    std::string program, ImagePageDevice& device, DiagnosticSink& diagnostics, const Limits& limits)
    : m_program(std::move(program))
    , m_device(device)
    , m_diagnostics(diagnostics)
    , m_limits(limits)
{
}

RunStatus GhostscriptRenderer::fail(RunStatus status, std::string reason)
{
    m_reason = std::move(reason);
    if (status == RunStatus::Damaged)
        m_diagnostics.report({ Severity::Damage, m_offset, "ghostscript.failed", m_reason });
    return status;
}

RunStatus GhostscriptRenderer::run(InputStream& input, DocumentLanguage language)
{
    m_offset = input.offset();
    SpoolFile spool;
    if (!spool.fill(input, language == DocumentLanguage::PostScript))
        return fail(RunStatus::LimitExceeded, "there is no room for a temporary copy of the PostScript or PDF data");

    const PageSettings& settings = m_device.settings();
    const bool isSized = settings.fax != FaxMode::None || settings.width || settings.height;
    // Every page takes the same resolution, so sizes need not be known before.
    if (!isSized) {
        SheetRequest any;
        return draw(spool.descriptor(), layoutOf(settings, any), 1, kMostPages, false);
    }

    // The resolution depends on each page's size: runs of pages of one size are drawn together.
    std::vector<PageSize> sizes;
    RunStatus status = measure(spool.descriptor(), sizes);
    for (std::size_t first = 0; first < sizes.size() && status == RunStatus::Done;) {
        std::size_t last = first;
        while (last + 1 < sizes.size() && sizes[last + 1].width == sizes[first].width
            && sizes[last + 1].height == sizes[first].height)
            ++last;
        SheetRequest sheet;
        sheet.width = sizes[first].width;
        sheet.height = sizes[first].height;
        status = draw(spool.descriptor(), layoutOf(settings, sheet), first + 1, last + 1, true);
        first = last + 1;
    }
    return status;
}

RunStatus GhostscriptRenderer::measure(int job, std::vector<PageSize>& sizes)
{
    const std::string mark = unguessableMark();
    std::vector<std::string> arguments = safeArguments(m_program);
    arguments.insert(arguments.end(), { "-sDEVICE=nullpage", "-c", sizeReporter(mark), "-f", "/proc/self/fd/0" });
    ChildProcess child;
    if (!child.start(arguments, job))
        return fail(RunStatus::LimitExceeded, "the system has no room to start Ghostscript");
    std::string line;
    for (int c = child.output().get(); c >= 0; c = child.output().get()) {
        if (c != '\n') {
            if (line.size() < mark.size() + kLongestReport)
                line.push_back(static_cast<char>(c));
            continue;
        }
        PageSize size;
        if (line.compare(0, mark.size(), mark) == 0
            && std::sscanf(line.c_str() + mark.size(), "%lf %lf", &size.width, &size.height) == 2
            && std::isfinite(size.width) && std::isfinite(size.height)) {
            if (sizes.size() >= m_limits.pages)
                return fail(RunStatus::LimitExceeded, "the job has too many pages");
            sizes.push_back({ size.width * kDecipointsOfPoint, size.height * kDecipointsOfPoint });
        }
        line.clear();
    }
    if (!child.finish())
        return fail(RunStatus::Damaged, "Ghostscript cannot draw this job: " + child.complaint());
    return RunStatus::Done;
}

RunStatus GhostscriptRenderer::draw(
    int job, const PageLayout& layout, std::size_t firstPage, std::size_t lastPage, bool isSized)
{
    // A page on its side is drawn upright, with the axes' resolutions exchanged, and turned row by row.
    const bool isTurned = (layout.quarterTurns & 1) != 0;
    const Resolution drawn = layout.pageResolution;
    std::vector<std::string> arguments = safeArguments(m_program);
    arguments.insert(arguments.end(),
        { std::string("-sDEVICE=") + deviceFor(layout.format), "-r" + number(drawn.x) + "x" + number(drawn.y) });
    if (layout.format != PixelFormat::Bilevel)
        arguments.insert(arguments.end(), { "-dTextAlphaBits=4", "-dGraphicsAlphaBits=4" });
    if (isSized)
        arguments.insert(
            arguments.end(), { "-sPageList=" + std::to_string(firstPage) + "-" + std::to_string(lastPage) });
    // Pages go to a descriptor of their own: what the job prints by itself must not mix with them.
    arguments.insert(arguments.end(), { "-sstdout=%stderr", "-sOutputFile=%stdout", "-f", "/proc/self/fd/0" });
    ChildProcess child;
    if (!child.start(arguments, job))
        return fail(RunStatus::LimitExceeded, "the system has no room to start Ghostscript");

    NetpbmReader reader(child.output());
    NetpbmHeader header;
    while (reader.nextPage(header)) {
        PageLayout page = layout;
        if (!isSized) {
            page.width = header.width;
            page.height = header.height;
        }
        PageBitmap bitmap = m_device.bitmapFor(page);
        if (bitmap.isNull())
            return fail(RunStatus::LimitExceeded, m_device.reason());
        const int across = isTurned ? header.height : header.width;
        const int margin = m_device.settings().fax == FaxMode::None ? 0 : marginFor(bitmap.width(), across);
        const bool isWhole
            = isTurned ? reader.readTurned(bitmap, page.quarterTurns, margin) : reader.readUpright(bitmap, margin);
        if (!isWhole)
            return fail(RunStatus::Damaged, "Ghostscript ended in the middle of a page: " + child.complaint());
        const RunStatus status = m_device.addFinishedPage(std::move(bitmap));
        if (status != RunStatus::Done)
            return fail(status, m_device.reason());
    }
    if (!child.finish())
        return fail(RunStatus::Damaged, "Ghostscript cannot draw this job: " + child.complaint());
    return RunStatus::Done;
}

} // namespace quillrip
