#include "quillrip/job/document_renderer.h"

#include "quillrip/job/child_process.h"
#include "quillrip/job/image_store.h"
#include "quillrip/job/netpbm_reader.h"
#include "quillrip/job/spool_file.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <sys/random.h>
#include <unistd.h>

namespace quillrip {

namespace {

constexpr std::size_t kLongestReport = 200;
/// Programs that draw pages of different sizes side by side, each waiting for its turn.
constexpr std::size_t kMostSideBySide = 8;
/// One argument of a program may have 128 KiB; what the list of pages has no room for is drawn by another run.
constexpr std::size_t kLongestPageList = std::size_t { 64 } * 1024;

const char kStandardInput[] = "/proc/self/fd/0"; // NOLINT(modernize-avoid-c-arrays)

std::uint64_t unguessableNumber()
{
    std::uint64_t value = 0;
    if (::getrandom(&value, sizeof value, 0) != sizeof value)
        value = static_cast<std::uint64_t>(::getpid());
    return value;
}

// A word that a job cannot know beforehand: lines that begin with it are not the job's own.
std::string unguessableMark() { return "page-" + std::to_string(unguessableNumber()) + " "; }

// Of a page in the middle of an image; negative when the page is wider and loses its edges.
int marginFor(int imageWidth, int pageWidth) { return static_cast<int>(std::floor((imageWidth - pageWidth) / 2.0)); }

/// A name with an extension for what the program has as its standard input: some programs look at the name to know the
/// language. The document itself stays without one.
class NameForInput {
public:
    explicit NameForInput(const char* extension)
        : m_path(SpoolFile::folder() + "/quillrip-" + std::to_string(unguessableNumber()) + extension)
        , m_isThere(::symlink(kStandardInput, m_path.c_str()) == 0)
    {
    }
    ~NameForInput()
    {
        if (m_isThere)
            ::unlink(m_path.c_str());
    }
    NameForInput(const NameForInput&) = delete;
    NameForInput& operator=(const NameForInput&) = delete;

    bool isThere() const { return m_isThere; }
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
    bool m_isThere;
};

/// Numbers of pages in ascending order, as the programs take them: "1-3,5". Takes as many as there is room for, and
/// says how many.
std::string pageList(const std::vector<std::size_t>& pages, std::size_t from, std::size_t& taken)
{
    std::string list;
    std::size_t at = from;
    while (at < pages.size() && list.size() < kLongestPageList) {
        std::size_t last = at;
        while (last + 1 < pages.size() && pages[last + 1] == pages[last] + 1)
            ++last;
        list += (list.empty() ? "" : ",") + std::to_string(pages[at]);
        if (last > at)
            list += "-" + std::to_string(pages[last]);
        at = last + 1;
    }
    taken = at - from;
    return list;
}

} // namespace

/// The images of a program.
class DocumentRenderer::Pages {
public:
    explicit Pages(RunBudget& budget)
        : child(budget)
    {
    }

    /// Lets the program draw all that it was asked for, and keeps the images. False when there is no room for them.
    bool drawAhead(ImageStore& store)
    {
        m_kept = store.keep(child.output());
        if (m_kept)
            reader.emplace(*m_kept);
        return m_kept != nullptr;
    }
    /// It takes up memory, and waits for its images to be taken.
    bool isRunning() const { return !m_kept; }

    ChildProcess child;
    std::optional<NetpbmReader> reader;

private:
    std::unique_ptr<InputStream> m_kept;
};

DocumentRenderer::DocumentRenderer(InstalledProgram program, ImagePageDevice& device, DiagnosticSink& diagnostics,
    const Limits& limits, RunBudget& budget)
    : m_program(std::move(program))
    , m_device(device)
    , m_diagnostics(diagnostics)
    , m_limits(limits)
    , m_budget(budget)
{
}

DocumentRenderer::~DocumentRenderer() = default;

RunStatus DocumentRenderer::fail(RunStatus status, std::string reason)
{
    m_reason = std::move(reason);
    if (status == RunStatus::Damaged)
        m_diagnostics.report({ Severity::Damage, m_offset, "document.failed", m_reason });
    return status;
}

RunStatus DocumentRenderer::endedWith(ChildProcess& child, bool isComplete)
{
    const std::string name = m_program.program->name;
    switch (child.finish()) {
    case ChildProcess::End::Done:
        return isComplete ? RunStatus::Done : fail(RunStatus::Damaged, name + " ended before the last page");
    case ChildProcess::End::NotStarted:
        return fail(RunStatus::LimitExceeded, name + " cannot be started");
    case ChildProcess::End::OutOfTime:
        return fail(RunStatus::LimitExceeded, name + " takes too long to draw this job");
    case ChildProcess::End::Failed:
        break;
    }
    return fail(RunStatus::Damaged, name + " cannot draw this job: " + child.complaint());
}

RunStatus DocumentRenderer::run(InputStream& input, DocumentLanguage language)
{
    m_offset = input.offset();
    SpoolFile spool;
    if (!spool.fill(input, language == DocumentLanguage::PostScript))
        return fail(
            RunStatus::LimitExceeded, std::string("there is no room for a temporary copy of ") + nameOf(language));
    m_file = spool.descriptor();
    std::optional<NameForInput> name;
    m_document = kStandardInput;
    if (m_program.program->extension) {
        m_document = name.emplace(m_program.program->extension).path();
        if (!name->isThere())
            return fail(RunStatus::LimitExceeded, "there is no room for a temporary name");
    }

    const PageSettings& settings = m_device.settings();
    const bool isSized = settings.fax != FaxMode::None || settings.width || settings.height;
    const PageLayout any = layoutOf(settings, SheetRequest {});
    // Where every page takes the same resolution, sizes need not be known before.
    if (!isSized && (m_program.program->hasTwoResolutions || any.pageResolution.x == any.pageResolution.y))
        return drawAll(any);

    std::vector<DocumentPageSize> sizes;
    const RunStatus measured = measure(sizes);
    if (measured != RunStatus::Done && measured != RunStatus::Damaged)
        return measured;
    const RunStatus drawn = drawSized(sizes);
    return drawn == RunStatus::Done ? measured : drawn;
}

RunStatus DocumentRenderer::measure(std::vector<DocumentPageSize>& sizes)
{
    const std::string mark = unguessableMark();
    std::vector<std::string> arguments = m_program.program->measuring(m_document, mark);
    arguments.insert(arguments.begin(), m_program.path);
    ChildProcess child(m_budget);
    if (!child.start(arguments, m_file))
        return fail(
            RunStatus::LimitExceeded, std::string("the system has no room to start ") + m_program.program->name);
    std::string line;
    for (int c = child.output().get(); c >= 0; c = child.output().get()) {
        if (c != '\n') {
            if (line.size() < mark.size() + kLongestReport)
                line.push_back(static_cast<char>(c));
            continue;
        }
        if (const auto size = m_program.program->sizeIn(line, mark)) {
            if (sizes.size() >= m_limits.pages)
                return fail(RunStatus::LimitExceeded, "the job has too many pages");
            sizes.push_back(*size);
        }
        line.clear();
    }
    return endedWith(child, true);
}

std::unique_ptr<DocumentRenderer::Pages> DocumentRenderer::start(const DrawingOrder& order)
{
    std::vector<std::string> arguments = m_program.program->drawing(m_document, order);
    arguments.insert(arguments.begin(), m_program.path);
    auto pages = std::make_unique<Pages>(m_budget);
    if (!pages->child.start(arguments, m_file)) {
        fail(RunStatus::LimitExceeded, std::string("the system has no room to start ") + m_program.program->name);
        return nullptr;
    }
    pages->reader.emplace(pages->child.output());
    return pages;
}

std::optional<RunStatus> DocumentRenderer::deliver(Pages& pages, const PageLayout& layout, bool isSized)
{
    NetpbmHeader header;
    if (!pages.reader->nextPage(header))
        return std::nullopt;
    // A page on its side is drawn upright, with the axes' resolutions exchanged, and turned row by row.
    const bool isTurned = (layout.quarterTurns & 1) != 0;
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
    const bool isWhole = isTurned ? pages.reader->readTurned(bitmap, page.quarterTurns, margin)
                                  : pages.reader->readUpright(bitmap, margin);
    if (!isWhole)
        return endedWith(pages.child, false);
    const RunStatus status = m_device.addFinishedPage(std::move(bitmap));
    return status == RunStatus::Done ? status : fail(status, m_device.reason());
}

RunStatus DocumentRenderer::drawAll(const PageLayout& layout)
{
    const auto pages = start({ layout.format, layout.pageResolution, std::nullopt, {} });
    if (!pages)
        return RunStatus::LimitExceeded;
    while (const auto status = deliver(*pages, layout, false)) {
        if (*status != RunStatus::Done)
            return *status;
    }
    return endedWith(pages->child, true);
}

// Resolutions depend on sizes. So one program draws all pages of a size, and those of other sizes run beside it: each
// page is taken from the one whose turn it is. Of many sizes, the one whose turn is farthest draws ahead: a program
// that is started again would read the whole document again.
RunStatus DocumentRenderer::drawSized(const std::vector<DocumentPageSize>& sizes)
{
    struct Series {
        std::vector<std::size_t> numbers; ///< of the pages, from 1
        std::size_t next = 0; ///< index of the next to be drawn
        std::size_t end = 0; ///< what the running program draws ends here
        PageLayout layout;
        std::unique_ptr<Pages> pages;
    };
    ImageStore store;
    std::map<DocumentPageSize, Series> all;
    for (std::size_t i = 0; i < sizes.size(); ++i)
        all[sizes[i]].numbers.push_back(i + 1);
    for (auto& [size, series] : all) {
        SheetRequest sheet;
        sheet.width = size.width;
        sheet.height = size.height;
        series.layout = layoutOf(m_device.settings(), sheet);
    }

    for (const DocumentPageSize& size : sizes) {
        Series& series = all[size];
        if (!series.pages) {
            const auto isRunning
                = [](const auto& entry) { return entry.second.pages && entry.second.pages->isRunning(); };
            if (static_cast<std::size_t>(std::count_if(all.begin(), all.end(), isRunning)) >= kMostSideBySide) {
                const auto farthest = std::max_element(all.begin(), all.end(), [&](const auto& a, const auto& b) {
                    const auto turn = [&](const auto& entry) {
                        return isRunning(entry) ? entry.second.numbers[entry.second.next] : 0;
                    };
                    return turn(a) < turn(b);
                });
                if (!farthest->second.pages->drawAhead(store))
                    farthest->second.pages.reset();
            }
            std::size_t count = 0;
            DrawingOrder order { series.layout.format, series.layout.pageResolution, size, {} };
            order.pages = pageList(series.numbers, series.next, count);
            series.end = series.next + count;
            series.pages = start(order);
            if (!series.pages)
                return RunStatus::LimitExceeded;
        }
        const auto status = deliver(*series.pages, series.layout, true);
        if (!status)
            return endedWith(series.pages->child, false);
        if (*status != RunStatus::Done)
            return *status;
        if (++series.next < series.end)
            continue;
        const RunStatus ended = endedWith(series.pages->child, true);
        if (ended != RunStatus::Done)
            return ended;
        series.pages.reset();
    }
    return RunStatus::Done;
}

} // namespace quillrip
