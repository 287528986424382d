#include "quillrip/image/tiff_document.h"

#include "quillrip/image/light_rows.h"
#include "quillrip/image/tiff_directories.h"
#include "quillrip/image/tiff_strip.h"

#include <algorithm>
#include <cstdint>
#include <new>

namespace quillrip {

namespace {

/// Room for a page's directory, the numbers of its strips included: a strip has 128 KB.
constexpr std::uint64_t kDirectoryBytes = std::uint64_t { 1 } << 20;
/// Encoded pages are seldom larger than plain ones; single pixels in Group 3 are, with nine bits for two.
constexpr std::uint64_t kWorstExpansion = 5;

std::uint16_t clampedToU16(std::uint32_t value) { return static_cast<std::uint16_t>(std::min(value, 0xFFFFu)); }

} // namespace

class TiffDocument::Encoder final : public PageEncoder {
public:
    Encoder(PageBitmap&& bitmap, TiffDocument& document)
        : PageEncoder(std::move(bitmap))
        , m_document(document)
        , m_layout(page(), document.m_options)
    {
    }

    int pieceCount() const override { return static_cast<int>(m_layout.stripCount()); }

    std::string encode(int piece, EncodedPiece& encoded) const override
    {
        const auto strip = static_cast<std::uint32_t>(piece);
        if (m_layout.compression == COMPRESSION_NONE) {
            const std::uint32_t top = strip * m_layout.rowsPerStrip;
            const std::uint32_t rows = std::min(m_layout.rowsPerStrip, m_layout.height - top);
            fillTiffRows(page(), m_layout, top, rows, encoded.bytes);
            return {};
        }
        encoded.bytes.clear();
        return m_document.encodeStrip(page(), m_layout, strip, encoded.bytes);
    }

    bool begin() override { return m_document.outcome(m_document.beginPage(m_layout)); }

    bool write(const EncodedPiece& piece) override
    {
        return m_document.outcome(m_document.writeStrip(m_nextStrip++, piece.bytes));
    }

    bool end() override { return m_document.outcome(m_document.endPage()); }

protected:
    RowRange rowsFrom(int piece) const override
    {
        return { static_cast<int>(static_cast<std::uint32_t>(piece) * m_layout.rowsPerStrip), page().height() };
    }

private:
    TiffDocument& m_document;
    TiffLayout m_layout;
    std::uint32_t m_nextStrip = 0;
};

TiffDocument::TiffDocument(const DocumentOptions& options, OutputFiles& files)
    : m_options(options)
    , m_files(files)
{
}

TiffDocument::~TiffDocument() = default;

bool TiffDocument::open()
{
    m_tiff = openTiffForWriting({ this, read, write, seek, size }, m_message);
    return m_tiff != nullptr;
}

std::unique_ptr<PageEncoder> TiffDocument::makeEncoder(PageBitmap&& page)
{
    return std::make_unique<Encoder>(std::move(page), *this);
}

std::string TiffDocument::reason() const
{
    if (!m_files.reason().empty())
        return m_files.reason();
    if (!file().reason().empty())
        return file().reason();
    return "cannot be written: " + (m_message.empty() ? "TIFF: not enough memory" : m_message);
}

std::string TiffDocument::encodeStrip(
    const PageBitmap& page, const TiffLayout& layout, std::uint32_t strip, std::vector<std::uint8_t>& out)
{
    const std::uint32_t top = strip * layout.rowsPerStrip;
    const std::uint32_t rows = std::min(layout.rowsPerStrip, layout.height - top);
    bool isBlank = true;
    for (std::uint32_t i = 0; isBlank && i < rows; ++i)
        isBlank = inkExtent(page, static_cast<int>(top + i)).empty();
    if (!isBlank)
        return encodeTiffStrip(page, layout, strip, out);
    const auto key = std::make_tuple(layout.format, layout.width, rows);
    {
        const std::lock_guard<std::mutex> lock { m_blankStripsMutex };
        const auto known = m_blankStrips.find(key);
        if (known != m_blankStrips.end()) {
            out.insert(out.end(), known->second.begin(), known->second.end());
            return {};
        }
    }
    std::vector<std::uint8_t> bytes;
    std::string reason = encodeTiffStrip(page, layout, strip, bytes);
    if (reason.empty()) {
        out.insert(out.end(), bytes.begin(), bytes.end());
        const std::lock_guard<std::mutex> lock { m_blankStripsMutex };
        m_blankStrips.emplace(key, std::move(bytes));
    }
    return reason;
}

bool TiffDocument::beginPage(const TiffLayout& layout)
{
    const std::uint64_t plainBytes = std::uint64_t { layout.rowBytes() } * layout.height;
    const std::uint64_t mostBytes
        = (layout.compression == COMPRESSION_NONE ? plainBytes : plainBytes * kWorstExpansion) + kDirectoryBytes;
    // The first strip gets another place then.
    if (!m_isBig && m_pagesWritten > 0
        && file().size() + mostBytes + m_firstStripBytes > std::uint64_t { m_options.mostTiffBytes }) {
        m_tiff.reset();
        if (!makeBigTiff(file()))
            return false;
        m_isBig = true;
        m_at = 0;
        m_tiff = openTiffForAppending({ this, read, write, seek, size }, m_message);
    }
    return m_tiff && layout.describe(m_tiff.get(), layout.height);
}

bool TiffDocument::writeStrip(std::uint32_t strip, ByteView bytes)
{
    if (!m_isBig && file().size() + bytes.size + kDirectoryBytes > UINT32_MAX) {
        m_message = "a single page has more than 4 GiB";
        return false;
    }
    if (m_pagesWritten == 0 && strip == 0)
        m_firstStripBytes = bytes.size;
    return m_files.spend(bytes.size)
        && TIFFWriteRawStrip(m_tiff.get(), strip, const_cast<std::uint8_t*>(bytes.data), // it is only read
               static_cast<tmsize_t>(bytes.size))
        >= 0;
}

bool TiffDocument::endPage()
{
    // Both are filled in when the number of pages is known.
    const bool isGood = TIFFSetField(m_tiff.get(), TIFFTAG_SUBFILETYPE, FILETYPE_PAGE) == 1
        && TIFFSetField(m_tiff.get(), TIFFTAG_PAGENUMBER, int { clampedToU16(m_pagesWritten) }, 0) == 1
        && TIFFWriteDirectory(m_tiff.get()) == 1;
    ++m_pagesWritten;
    return isGood && file().reason().empty();
}

bool TiffDocument::finish()
{
    m_tiff.reset();
    // A file of one page holds no "page of a multi-page image", unless it is a fax.
    const bool isSinglePage = m_pagesWritten == 1 && !m_options.fax;
    return outcome(file().reason().empty()) && fillInPageCount(file(), clampedToU16(m_pagesWritten), isSinglePage);
}

bool TiffDocument::outcome(bool isGood) const
{
    if (m_isOutOfMemory)
        throw std::bad_alloc {};
    return isGood;
}

tmsize_t TiffDocument::read(thandle_t client, void* data, tmsize_t count)
{
    auto& document = *static_cast<TiffDocument*>(client);
    if (!document.file().readAt(document.m_at, static_cast<std::uint8_t*>(data), static_cast<std::size_t>(count)))
        return -1;
    document.m_at += static_cast<std::uint64_t>(count);
    return count;
}

tmsize_t TiffDocument::write(thandle_t client, void* data, tmsize_t count)
{
    auto& document = *static_cast<TiffDocument*>(client);
    const ByteView bytes { static_cast<const std::uint8_t*>(data), static_cast<std::size_t>(count) };
    OutputFile& file = document.file();
    try {
        if (!(document.m_at == file.size() ? file.append(bytes) : file.writeAt(document.m_at, bytes)))
            return -1;
    } catch (const std::bad_alloc&) { // must not cross the library
        document.m_isOutOfMemory = true;
        return -1;
    }
    document.m_at += bytes.size;
    return count;
}

toff_t TiffDocument::seek(thandle_t client, toff_t offset, int whence)
{
    auto& document = *static_cast<TiffDocument*>(client);
    document.m_at = offset + (whence == SEEK_END ? document.file().size() : whence == SEEK_CUR ? document.m_at : 0);
    return document.m_at;
}

toff_t TiffDocument::size(thandle_t client) { return static_cast<TiffDocument*>(client)->file().size(); }

} // namespace quillrip
