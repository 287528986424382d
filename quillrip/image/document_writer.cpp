#include "quillrip/image/document_writer.h"

#include "quillrip/base/heap_account.h"
#include "quillrip/image/encoding_pipeline.h"
#include "quillrip/image/file_encoder.h"
#include "quillrip/image/output_files.h"
#include "quillrip/image/tiff_document.h"

#include <new>
#include <utility>

namespace quillrip {

class DocumentWriter::Implementation {
public:
    explicit Implementation(const DocumentOptions& options)
        : m_options(options)
        , m_files({ options.isDurable, OutputFile::Naming::Unnamed, 0 })
        , m_tiff(options, m_files)
        , m_pipeline(options.threads)
    {
    }

    bool open(std::string& reason)
    {
        // At once, so that a job is not drawn for nothing.
        if (!m_files.open(m_options.path)) {
            reason = m_files.reason();
            return false;
        }
        if (holdsSeveralPages(m_options.type) && !m_tiff.open()) {
            reason = m_tiff.reason();
            return false;
        }
        return true;
    }

    bool addPage(PageBitmap&& page)
    {
        if (!m_reason.empty())
            return false;
        std::unique_ptr<PageEncoder> encoder = makeEncoder(std::move(page));
        if (!encoder)
            return false;
        if (!m_pipeline.add(std::move(encoder)))
            return failInPipeline();
        ++m_pageCount;
        return true;
    }

    bool commit()
    {
        if (!m_reason.empty())
            return false;
        if (!m_pipeline.drain())
            return failInPipeline();
        if (m_pageCount == 0)
            return true;
        if (holdsSeveralPages(m_options.type) && !m_tiff.finish()) {
            m_reason = m_tiff.reason();
            return false;
        }
        if (!m_files.commit()) {
            m_reason = m_files.reason();
            return false;
        }
        return true;
    }

    bool failForMemory()
    {
        m_isOutOfMemory = true;
        m_reason = HeapAccount::reason();
        return false;
    }

    std::vector<int> folders() const { return m_files.folders(); }
    void setMostBytes(std::uint64_t bytes) { m_files.setMostBytes(bytes); }
    bool isLimitExceeded() const { return m_isOutOfMemory || m_pipeline.isOutOfMemory() || m_files.isOverspent(); }

    const std::string& reason() const { return m_reason; }
    int pageCount() const { return m_pageCount; }

private:
    std::unique_ptr<PageEncoder> makeEncoder(PageBitmap&& page)
    {
        if (page.isNull()) {
            m_isOutOfMemory = true;
            m_reason = "there is not enough memory for a page";
            return nullptr;
        }
        m_reason = reasonAgainst(m_options, page.format());
        if (!m_reason.empty())
            return nullptr;
        const PageTarget target { m_files, pagePath(m_options, m_pageCount + 1) };
        switch (m_options.type) {
        case FileType::Bmp:
            return makeBmpEncoder(std::move(page), target, m_reason);
        case FileType::Png:
            return makePngEncoder(std::move(page), target);
        case FileType::Jpeg:
            return makeJpegEncoder(std::move(page), target, m_options.jpegQuality, m_reason);
        case FileType::Pcx:
            return makePcxEncoder(std::move(page), target, m_reason);
        case FileType::Tiff:
            break;
        }
        return m_tiff.makeEncoder(std::move(page));
    }

    bool failInPipeline()
    {
        m_reason = m_pipeline.encodingReason();
        if (m_reason.empty())
            m_reason = holdsSeveralPages(m_options.type) ? m_tiff.reason() : m_files.reason();
        return false;
    }

    DocumentOptions m_options;
    OutputFiles m_files;
    TiffDocument m_tiff;
    EncodingPipeline m_pipeline; // last: its threads end before what they use
    std::string m_reason;
    int m_pageCount = 0;
    bool m_isOutOfMemory = false;
};

Made<DocumentWriter> DocumentWriter::create(const DocumentOptions& options)
{
    auto implementation = std::make_unique<Implementation>(options);
    std::string reason;
    if (!implementation->open(reason))
        return Made<DocumentWriter>::refused(reason);
    return std::unique_ptr<DocumentWriter> { new DocumentWriter(std::move(implementation)) };
}

DocumentWriter::DocumentWriter(std::unique_ptr<Implementation> implementation)
    : m_implementation(std::move(implementation))
{
}

DocumentWriter::~DocumentWriter() = default;

bool DocumentWriter::addPage(PageBitmap&& page)
{
    try {
        return m_implementation->addPage(std::move(page));
    } catch (const std::bad_alloc&) {
        return m_implementation->failForMemory();
    }
}

bool DocumentWriter::commit()
{
    try {
        return m_implementation->commit();
    } catch (const std::bad_alloc&) {
        return m_implementation->failForMemory();
    }
}

std::vector<int> DocumentWriter::folders() const { return m_implementation->folders(); }
void DocumentWriter::setMostBytes(std::uint64_t bytes) { m_implementation->setMostBytes(bytes); }
bool DocumentWriter::isLimitExceeded() const { return m_implementation->isLimitExceeded(); }
const std::string& DocumentWriter::reason() const { return m_implementation->reason(); }
int DocumentWriter::pageCount() const { return m_implementation->pageCount(); }

} // namespace quillrip
