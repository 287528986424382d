#pragma once

#include "quillrip/image/document_options.h"
#include "quillrip/image/output_files.h"
#include "quillrip/image/page_encoder.h"
#include "quillrip/image/tiff_layout.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>
#include <vector>

namespace quillrip {

/// One TIFF file of any number of pages.
class TiffDocument {
public:
    /// Writes into the file that was begun last in `files`.
    TiffDocument(const DocumentOptions& options, OutputFiles& files);
    ~TiffDocument();
    TiffDocument(const TiffDocument&) = delete;
    TiffDocument& operator=(const TiffDocument&) = delete;

    /// Opens the file; false when its start cannot be written.
    bool open();
    /// Of the page that comes next. Encoders refer to the document.
    std::unique_ptr<PageEncoder> makeEncoder(PageBitmap&& page);
    /// When all pages are written: what could not be known before is filled in.
    bool finish();

    /// What failed, as a sentence without full stop.
    std::string reason() const;

private:
    class Encoder;
    friend class Encoder;

    bool beginPage(const TiffLayout& layout);
    bool writeStrip(std::uint32_t strip, ByteView bytes);
    bool endPage();
    std::string encodeStrip(
        const PageBitmap& page, const TiffLayout& layout, std::uint32_t strip, std::vector<std::uint8_t>& out);

    /// What a step came to; throws std::bad_alloc where write(), which the library calls, had to keep it to itself.
    bool outcome(bool isGood) const;

    static tmsize_t read(thandle_t client, void* data, tmsize_t count);
    static tmsize_t write(thandle_t client, void* data, tmsize_t count);
    static toff_t seek(thandle_t client, toff_t offset, int whence);
    static toff_t size(thandle_t client);
    OutputFile& file() const { return m_files.file(); }

    DocumentOptions m_options;
    OutputFiles& m_files;
    std::string m_message;
    std::uint64_t m_at = 0; ///< where the library reads or writes next
    std::uint32_t m_pagesWritten = 0;
    std::uint64_t m_firstStripBytes = 0; ///< of the first page
    bool m_isBig = false;
    bool m_isOutOfMemory = false;
    TiffHandle m_tiff;

    /// Encoded strips without a mark, by format, width and rows: most pages have many.
    std::map<std::tuple<PixelFormat, std::uint32_t, std::uint32_t>, std::vector<std::uint8_t>> m_blankStrips;
    std::mutex m_blankStripsMutex;
};

} // namespace quillrip
