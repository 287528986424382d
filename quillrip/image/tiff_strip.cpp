#include "quillrip/image/tiff_strip.h"

#include "quillrip/image/deflate_encoder.h"
#include "quillrip/image/group4_encoder.h"
#include "quillrip/image/light_rows.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

namespace quillrip {

namespace {

/// A file in memory that the library writes a single strip into.
class MemoryFile {
public:
    static TiffCallbacks callbacksOf(MemoryFile& file) { return { &file, read, write, seek, size }; }

    const std::vector<std::uint8_t>& bytes() const { return m_bytes; }
    bool isOutOfMemory() const { return m_isOutOfMemory; }

private:
    static MemoryFile& self(thandle_t client) { return *static_cast<MemoryFile*>(client); }

    static tmsize_t read(thandle_t, void*, tmsize_t) { return -1; }

    static tmsize_t write(thandle_t client, void* data, tmsize_t count)
    {
        MemoryFile& file = self(client);
        const auto size = static_cast<std::size_t>(count);
        try {
            if (file.m_at + size > file.m_bytes.size())
                file.m_bytes.resize(file.m_at + size);
        } catch (const std::bad_alloc&) { // must not cross the library
            file.m_isOutOfMemory = true;
            return -1;
        }
        if (size > 0)
            std::memcpy(&file.m_bytes[file.m_at], data, size);
        file.m_at += size;
        return count;
    }

    static toff_t seek(thandle_t client, toff_t offset, int whence)
    {
        MemoryFile& file = self(client);
        file.m_at = static_cast<std::size_t>(offset)
            + (whence == SEEK_END        ? file.m_bytes.size()
                    : whence == SEEK_CUR ? file.m_at
                                         : 0);
        return file.m_at;
    }

    static toff_t size(thandle_t client) { return self(client).m_bytes.size(); }

    std::vector<std::uint8_t> m_bytes;
    std::size_t m_at = 0;
    bool m_isOutOfMemory = false;
};

/// Bilevel strips keep ink, as their photometric interpretation says that 0 is white; the others hold light.
void fillRow(const PageBitmap& page, const TiffLayout& layout, int y, std::uint8_t* out)
{
    if (layout.format != PixelFormat::Bilevel) {
        lightRow(page, y, out);
        return;
    }
    const std::size_t count = page.extent(y).empty() ? 0 : std::min(layout.rowBytes(), page.rowBytes());
    if (count > 0)
        std::memcpy(out, page.row(y), count);
    std::memset(out + count, 0, layout.rowBytes() - count);
}

/// Each byte of a row becomes what it is more than that of the pixel before.
void subtractNeighbours(std::uint8_t* row, std::size_t count, std::size_t pixelBytes)
{
    for (std::size_t i = count; i-- > pixelBytes;)
        row[i] = static_cast<std::uint8_t>(row[i] - row[i - pixelBytes]);
}

/// A zlib stream (RFC 1950).
void deflateRows(
    const PageBitmap& page, const TiffLayout& layout, int top, std::uint32_t rows, std::vector<std::uint8_t>& out)
{
    const DeflateMethod method { 32, 128, layout.rowBytes() };
    const std::size_t pixelBytes = layout.format == PixelFormat::Rgb24 ? 3 : 1;
    out.push_back(0x78); // deflate with a 32 KiB window
    out.push_back(0x01); // no dictionary, and the check bits
    DeflateEncoder deflate { out, pixelBytes, method };
    for (std::uint32_t i = 0; i < rows; ++i) {
        std::uint8_t* row = deflate.room(layout.rowBytes());
        fillRow(page, layout, top + static_cast<int>(i), row);
        if (layout.hasPredictor())
            subtractNeighbours(row, layout.rowBytes(), pixelBytes);
        deflate.commit(layout.rowBytes());
    }
    deflate.finish();
    for (int shift = 24; shift >= 0; shift -= 8)
        out.push_back(static_cast<std::uint8_t>(deflate.checksum() >> shift));
}

bool writeRows(TIFF* tiff, const PageBitmap& page, const TiffLayout& layout, int top, std::uint32_t rows)
{
    std::vector<std::uint8_t> row(layout.rowBytes());
    for (std::uint32_t i = 0; i < rows; ++i) {
        fillRow(page, layout, top + static_cast<int>(i), row.data());
        if (TIFFWriteScanline(tiff, row.data(), i, 0) != 1)
            return false;
    }
    return TIFFFlushData(tiff) == 1;
}

} // namespace

void fillTiffRows(const PageBitmap& page, const TiffLayout& layout, std::uint32_t top, std::uint32_t rows,
    std::vector<std::uint8_t>& out)
{
    out.resize(layout.rowBytes() * rows);
    for (std::uint32_t i = 0; i < rows; ++i)
        fillRow(page, layout, static_cast<int>(top + i), &out[i * layout.rowBytes()]);
}

std::string encodeTiffStrip(
    const PageBitmap& page, const TiffLayout& layout, std::uint32_t strip, std::vector<std::uint8_t>& out)
{
    const auto top = static_cast<int>(strip * layout.rowsPerStrip);
    const std::uint32_t rows = std::min(layout.rowsPerStrip, layout.height - strip * layout.rowsPerStrip);

    // The library's coder looks at every pixel; most of a page is white.
    if (layout.compression == COMPRESSION_CCITTFAX4 && layout.width == static_cast<std::uint32_t>(page.width())
        && layout.fillOrder == FILLORDER_MSB2LSB) {
        encodeGroup4(page, top, static_cast<int>(rows), out);
        return {};
    }

    // Bits of text without a filter are where the library's search for ever longer matches is worth its time.
    if (layout.compression == COMPRESSION_ADOBE_DEFLATE && layout.format != PixelFormat::Bilevel) {
        deflateRows(page, layout, top, rows, out);
        return {};
    }

    std::vector<std::uint8_t> plain;
    if (!layout.isCcitt())
        fillTiffRows(page, layout, static_cast<std::uint32_t>(top), rows, plain);

    MemoryFile file;
    std::string message;
    const TiffHandle tiff = openTiffForWriting(MemoryFile::callbacksOf(file), message);
    if (!tiff || !layout.describe(tiff.get(), rows))
        return "TIFF: " + (message.empty() ? std::string { "not enough memory" } : message);
    const bool isGood = layout.isCcitt()
        ? writeRows(tiff.get(), page, layout, top, rows)
        : TIFFWriteEncodedStrip(tiff.get(), 0, plain.data(), static_cast<tmsize_t>(plain.size())) >= 0;
    if (file.isOutOfMemory())
        throw std::bad_alloc {};
    const std::uint64_t* offsets = nullptr;
    const std::uint64_t* sizes = nullptr;
    if (!isGood || TIFFGetField(tiff.get(), TIFFTAG_STRIPOFFSETS, &offsets) != 1
        || TIFFGetField(tiff.get(), TIFFTAG_STRIPBYTECOUNTS, &sizes) != 1
        || offsets[0] + sizes[0] > file.bytes().size())
        return "TIFF: " + (message.empty() ? std::string { "a strip could not be encoded" } : message);
    const auto start = file.bytes().begin() + static_cast<std::ptrdiff_t>(offsets[0]);
    out.insert(out.end(), start, start + static_cast<std::ptrdiff_t>(sizes[0]));
    return {};
}

} // namespace quillrip
