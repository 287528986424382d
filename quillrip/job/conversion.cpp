#include "quillrip/job/conversion.h"

#include "quillrip/base/input_stream.h"
#include "quillrip/image/document_writer.h"
#include "quillrip/job/ghostscript.h"
#include "quillrip/job/job_runner.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace quillrip {

namespace {

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
    WriterSink(DocumentWriter& writer, const DocumentOptions& options, const FileIdentity& input)
        : m_writer(writer)
        , m_options(options)
        , m_input(input)
    {
    }

    bool addPage(PageBitmap&& page) override
    {
        // Later pages have names of their own, and one of them can be the input's.
        const std::string path = pagePath(m_options, m_writer.pageCount() + 1);
        if (isSameFile(path, m_input)) {
            m_reason = path + " is the input file";
            return false;
        }
        return m_writer.addPage(std::move(page));
    }

    std::string reason() const override { return m_reason.empty() ? m_writer.reason() : m_reason; }

private:
    DocumentWriter& m_writer;
    const DocumentOptions& m_options;
    FileIdentity m_input;
    std::string m_reason;
};

} // namespace

ConversionResult convert(const ConversionOptions& options, DiagnosticSink& diagnostics)
{
    const std::string& inputPath = options.inputPath;
    const std::string& outputPath = options.document.path;
    const auto failed = [&](ConversionStatus status, std::string reason, const std::string& file) {
        return ConversionResult { status, std::move(reason), file, 0 };
    };

    std::string reason = reasonAgainst(options.document, options.page.format);
    if (!reason.empty())
        return failed(ConversionStatus::BadOptions, reason, outputPath);
    const auto input = FileInputStream::open(inputPath, reason);
    if (!input)
        return failed(ConversionStatus::BadInput, "cannot be read: " + reason, inputPath);
    struct stat status { };
    if (::fstat(input->descriptor(), &status) != 0)
        return failed(ConversionStatus::BadInput, std::string("cannot be read: ") + std::strerror(errno), inputPath);
    if (S_ISDIR(status.st_mode))
        return failed(ConversionStatus::BadInput, "is a folder, not a print job", inputPath);
    const FileIdentity identity { status.st_dev, status.st_ino };
    if (isSameFile(outputPath, identity))
        return failed(ConversionStatus::BadOptions, "output and input are the same file", outputPath);

    const auto writer = DocumentWriter::create(options.document, reason);
    if (!writer)
        return failed(ConversionStatus::OutputFailed, reason, outputPath);
    WriterSink sink(*writer, options.document, identity);
    const JobResult job = runJob(*input, sink, options.page, options.limits, diagnostics, findGhostscript());

    if (input->failed())
        return failed(ConversionStatus::BadInput, "reading it failed", inputPath);
    switch (job.outcome) {
    case JobOutcome::NothingToPrint:
        return failed(ConversionStatus::BadInput, job.reason, inputPath);
    case JobOutcome::LimitExceeded:
        return failed(ConversionStatus::LimitExceeded, job.reason, inputPath);
    case JobOutcome::OutputFailed:
        return failed(ConversionStatus::OutputFailed, job.reason, outputPath);
    case JobOutcome::Done:
    case JobOutcome::Damaged:
        break;
    }
    if (job.pages > 0 && !writer->commit())
        return failed(ConversionStatus::OutputFailed, writer->reason(), outputPath);
    return { job.outcome == JobOutcome::Done ? ConversionStatus::Done : ConversionStatus::Damaged, job.reason,
        inputPath, job.pages };
}

} // namespace quillrip
