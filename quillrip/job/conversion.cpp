#include "quillrip/job/conversion.h"
#include "quillrip/base/outcome.h"

#include "quillrip/base/heap_account.h"
#include "quillrip/base/input_stream.h"
#include "quillrip/fonts/faces/font_file.h"
#include "quillrip/image/document_writer.h"
#include "quillrip/job/child_process.h"
#include "quillrip/job/document_program.h"
#include "quillrip/job/job_runner.h"
#include "quillrip/job/sandbox.h"
#include "quillrip/job/spool_file.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <new>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace quillrip {

namespace {

/// Pages without a mark that any job may have, and those for its bytes: a page that somebody wants takes more than a
/// form feed.
constexpr std::uint64_t kBlankPages = 1000;
constexpr std::uint64_t kBytesForABlankPage = 32;
/// What the images may need, where the command line does not say: so much at first, and so much for each byte of the
/// job. A page of text at 1200 dpi in uncompressed colour, 400 MB, is a job of 400 bytes then.
constexpr std::uint64_t kOutputBytes = std::uint64_t { 4 } << 30;
constexpr std::uint64_t kOutputBytesForAByte = std::uint64_t { 1 } << 20;

struct FileIdentity {
    dev_t device = 0;
    ino_t number = 0;
};

bool isSameFile(const std::string& path, const FileIdentity& identity)
{
    struct stat status { };
    return ::stat(path.c_str(), &status) == 0 && status.st_dev == identity.device && status.st_ino == identity.number;
}

class WriterSink final : public PageSink {
public:
    WriterSink(DocumentWriter& writer, const ConversionOptions& options, const InputStream& input,
        const FileIdentity& inputIdentity, ConversionObserver& observer)
        : m_writer(writer)
        , m_observer(observer)
        , m_options(options.document)
        , m_outputBytes(options.limits.outputBytes)
        , m_input(input)
        , m_inputIdentity(inputIdentity)
    {
    }

    bool addPage(PageBitmap&& page) override
    {
        // Later pages have names of their own, and one of them can be the input's.
        const std::string path = pagePath(m_options, m_writer.pageCount() + 1);
        if (isSameFile(path, m_inputIdentity)) {
            m_reason = path + " is the input file";
            return false;
        }
        if (!page.hasInk({ 0, 0, page.width(), page.height() })
            && ++m_blankPages > kBlankPages + m_input.offset() / kBytesForABlankPage) {
            m_isLimitExceeded = true;
            m_reason = "the job asks for more than " + std::to_string(m_blankPages - 1) + " blank pages";
            return false;
        }
        m_writer.setMostBytes(outputBytes());
        const int width = page.width();
        const int height = page.height();
        const Resolution resolution = page.resolution();
        if (!m_writer.addPage(std::move(page)))
            return false;
        m_observer.pageAdded(width, height, resolution);
        return true;
    }

    bool isLimitExceeded() const { return m_isLimitExceeded || m_writer.isLimitExceeded(); }

    std::string reason() const override { return m_reason.empty() ? m_writer.reason() : m_reason; }

private:
    std::uint64_t outputBytes() const
    {
        return m_outputBytes != 0 ? m_outputBytes : kOutputBytes + m_input.offset() * kOutputBytesForAByte;
    }

    DocumentWriter& m_writer;
    ConversionObserver& m_observer;
    const DocumentOptions& m_options;
    std::uint64_t m_outputBytes;
    const InputStream& m_input;
    FileIdentity m_inputIdentity;
    std::uint64_t m_blankPages = 0;
    bool m_isLimitExceeded = false;
    std::string m_reason;
};

/// Standard input as a descriptor of its own, since the stream closes it.
Made<FileInputStream> openInput(const std::string& path)
{
    if (path != "-")
        return FileInputStream::open(path);
    const int descriptor = ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
    if (descriptor < 0)
        return Made<FileInputStream>::refused(std::strerror(errno));
    return std::make_unique<FileInputStream>(descriptor);
}

/// Fonts are opened when a job asks for them; the rest is open. A system that offers no confinement gets its pages
/// without.
void confine(const DocumentWriter& writer, const DocumentPrograms& programs)
{
    SandboxRules rules;
    rules.readable = systemPaths();
    const std::vector<std::string> fonts = fontFolders();
    rules.readable.insert(rules.readable.end(), fonts.begin(), fonts.end());
    rules.writableFolders = writer.folders();
    const std::vector<std::string> paths = programs.paths();
    for (const std::string& path : paths) {
        const std::vector<std::string> needed = ChildProcess::neededPaths(path);
        rules.executable.insert(rules.executable.end(), needed.begin(), needed.end());
        rules.writablePaths = { SpoolFile::folder() };
    }
    static_cast<void>(confineFiles(rules));
    static_cast<void>(confineCalls(!paths.empty()));
}

ConversionResult convertWithMemory(
    const ConversionOptions& options, DiagnosticSink& diagnostics, ConversionObserver& observer)
{
    const std::string& inputPath = options.inputPath;
    const std::string& outputPath = options.document.path;
    const auto failed = [&](ConversionStatus status, std::string reason, const std::string& file) {
        return ConversionResult { status, std::move(reason), file, 0 };
    };

    const std::string reason = reasonAgainst(options.document, options.page.format);
    if (!reason.empty())
        return failed(ConversionStatus::BadOptions, reason, outputPath);
    const auto input = openInput(inputPath);
    if (!input)
        return failed(ConversionStatus::BadInput, "cannot be read: " + input.reason(), inputPath);
    struct stat status { };
    if (::fstat(input->descriptor(), &status) != 0)
        return failed(ConversionStatus::BadInput, std::string("cannot be read: ") + std::strerror(errno), inputPath);
    if (S_ISDIR(status.st_mode))
        return failed(ConversionStatus::BadInput, "is a folder, not a print job", inputPath);
    const FileIdentity identity { status.st_dev, status.st_ino };
    if (isSameFile(outputPath, identity))
        return failed(ConversionStatus::BadOptions, "output and input are the same file", outputPath);

    const auto writer = DocumentWriter::create(options.document);
    if (!writer)
        return failed(ConversionStatus::OutputFailed, writer.reason(), outputPath);
    WriterSink sink(*writer, options, *input, identity, observer);
    const DocumentPrograms programs = DocumentPrograms::onPath();
    if (options.isConfined)
        confine(*writer, programs);
    observer.readingBegins(input->descriptor());
    const ConversionResult job = runJob(*input, sink, options.page, options.limits, diagnostics, programs, observer);
    observer.readingEnded(input->offset());

    if (input->failed())
        return failed(ConversionStatus::BadInput, "reading it failed", inputPath);
    if (job.status == ConversionStatus::OutputFailed && !sink.isLimitExceeded())
        return failed(job.status, job.reason, outputPath);
    if (job.status == ConversionStatus::OutputFailed)
        return failed(ConversionStatus::LimitExceeded, job.reason, inputPath);
    if (job.status != ConversionStatus::Done && job.status != ConversionStatus::Damaged)
        return failed(job.status, job.reason, inputPath);
    // Made before the files appear: nothing may ask for memory, and fail, once they are there.
    ConversionResult result { job.status, job.reason, inputPath, job.pages };
    observer.publishing();
    if (job.pages > 0 && !writer->commit()) {
        if (writer->isLimitExceeded())
            return failed(ConversionStatus::LimitExceeded, writer->reason(), inputPath);
        return failed(ConversionStatus::OutputFailed, writer->reason(), outputPath);
    }
    return result;
}

} // namespace

ConversionResult convert(const ConversionOptions& options, DiagnosticSink& diagnostics, ConversionObserver& observer)
{
    const auto outOfMemory = [&] {
        return ConversionResult { ConversionStatus::LimitExceeded, HeapAccount::reason(), options.inputPath, 0 };
    };
    try {
        const HeapBound bound(options.limits.memory);
        return convertWithMemory(options, diagnostics, observer);
    } catch (const std::bad_alloc&) {
        return outOfMemory();
    } catch (const std::length_error&) { // more than any memory
        return outOfMemory();
    }
}

} // namespace quillrip
