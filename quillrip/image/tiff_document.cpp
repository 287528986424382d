#include "quillrip/image/tiff_document.h"

#include "quillrip/image/light_rows.h"
#include "quillrip/image/tiff_strip.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <new>

namespace quillrip {

namespace {

constexpr std::size_t kPieceBytes = std::size_t { 512 } << 10;
/// Offsets have 32 bits, and some room is needed for the directory.
constexpr std::uint64_t kLargestFile = UINT32_MAX - (std::uint64_t { 1 } << 20);

std::uint32_t u16At(const std::uint8_t* at) { return at[0] | static_cast<std::uint32_t>(at[1]) << 8; }
std::uint32_t u32At(const std::uint8_t* at) { return u16At(at) | u16At(at + 2) << 16; }

std::uint16_t clampedToU16(std::uint32_t value) { return static_cast<std::uint16_t>(std::min(value, 0xFFFFu)); }

} // namespace

class TiffDocument::Encoder final : public PageEncoder {
public:
    Encoder(PageBitmap&& bitmap, TiffDocument& document)
        : PageEncoder(std::move(bitmap))
        , m_document(document)
        , m_layout(page(), document.m_options)
    {
        const std::size_t stripBytes = m_layout.rowBytes() * m_layout.rowsPerStrip;
        m_stripsPerPiece = static_cast<std::uint32_t>(std::max<std::size_t>(1, kPieceBytes / stripBytes));
    }

    int pieceCount() const override { return static_cast<int>((m_layout.stripCount() - 1) / m_stripsPerPiece + 1); }

    std::string encode(int piece, EncodedPiece& encoded) const override
    {
        const std::uint32_t first = static_cast<std::uint32_t>(piece) * m_stripsPerPiece;
        const std::uint32_t last = std::min(first + m_stripsPerPiece, m_layout.stripCount());
        if (m_layout.compression == COMPRESSION_NONE)
            encoded.bytes.reserve(std::size_t { last - first } * m_layout.rowsPerStrip * m_layout.rowBytes());
        for (std::uint32_t strip = first; strip < last; ++strip) {
            const std::size_t before = encoded.bytes.size();
            std::string reason = m_document.encodeStrip(page(), m_layout, strip, encoded.bytes);
            if (!reason.empty())
                return reason;
            encoded.partSizes.push_back(encoded.bytes.size() - before);
        }
        return {};
    }

    bool begin() override { return m_layout.describe(m_document.m_tiff.get(), m_layout.height); }

    bool write(const EncodedPiece& piece) override
    {
        std::size_t at = 0;
        for (const std::size_t size : piece.partSizes) {
            if (!m_document.writeStrip(m_nextStrip++, ByteView { piece.bytes }.sub(at, size)))
                return false;
            at += size;
        }
        return true;
    }

    bool end() override { return m_document.endPage(); }

private:
    TiffDocument& m_document;
    TiffLayout m_layout;
    std::uint32_t m_stripsPerPiece = 1;
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
    if (!isBlank || layout.compression == COMPRESSION_NONE)
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

bool TiffDocument::writeStrip(std::uint32_t strip, ByteView bytes)
{
    if (file().size() + bytes.size > kLargestFile) {
        m_message = "the file would grow above 4 GiB, where TIFF ends";
        return false;
    }
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
    return file().reason().empty() && fillInPageCount();
}

bool TiffDocument::fillInPageCount()
{
    const std::uint16_t total = clampedToU16(m_pagesWritten);
    // A file of one page holds no "page of a multi-page image", unless it is a fax.
    const bool isSinglePage = m_pagesWritten == 1 && !m_options.fax;
    std::array<std::uint8_t, 4> word {};
    if (!file().readAt(4, word.data(), 4))
        return false;
    for (std::uint32_t page = 0; page < m_pagesWritten; ++page) {
        const std::uint64_t directory = u32At(word.data());
        if (!file().readAt(directory, word.data(), 2))
            return false;
        const std::uint32_t entries = u16At(word.data());
        std::vector<std::uint8_t> bytes(std::size_t { entries } * 12);
        if (!file().readAt(directory + 2, bytes.data(), bytes.size()))
            return false;
        for (std::uint32_t i = 0; i < entries; ++i) {
            std::uint8_t* entry = &bytes[std::size_t { i } * 12];
            if (u16At(entry) == TIFFTAG_SUBFILETYPE && isSinglePage)
                entry[8] = 0;
            if (u16At(entry) == TIFFTAG_PAGENUMBER) {
                entry[10] = static_cast<std::uint8_t>(total & 0xFF);
                entry[11] = static_cast<std::uint8_t>(total >> 8);
            }
        }
        if (!file().writeAt(directory + 2, bytes) || !file().readAt(directory + 2 + bytes.size(), word.data(), 4))
            return false;
    }
    return true;
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
