// Portable Network Graphics (W3C Recommendation / ISO 15948).
//
// The compressed data of a PNG is one zlib stream (RFC 1950). It is made here from raw deflate streams, one per band
// of rows, that different threads compress: each but the last ends on a byte boundary by a flush and refers to nothing
// before its start, so they can be joined as they are. Only the checksum at the end covers all of them.

#include "quillrip/image/deflate_encoder.h"
#include "quillrip/image/file_encoder.h"
#include "quillrip/image/header_bytes.h"
#include "quillrip/image/png_filter.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <zlib.h>

namespace quillrip {

namespace {

void putU32BigEndian(std::uint8_t* at, std::uint32_t value)
{
    for (int i = 0; i < 4; ++i)
        at[i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
}

/// Starts a chunk; returns where its length belongs.
std::size_t openChunk(std::vector<std::uint8_t>& out, const char* type)
{
    const std::size_t start = out.size();
    out.resize(start + 4);
    out.insert(out.end(), type, type + 4);
    return start;
}

void closeChunk(std::vector<std::uint8_t>& out, std::size_t start)
{
    const std::size_t typeAndData = out.size() - start - 4;
    putU32BigEndian(&out[start], static_cast<std::uint32_t>(typeAndData - 4));
    const auto checksum = crc32_z(0, &out[start + 4], typeAndData);
    out.resize(out.size() + 4);
    putU32BigEndian(&out[out.size() - 4], static_cast<std::uint32_t>(checksum));
}

void appendU32BigEndian(std::vector<std::uint8_t>& out, std::uint32_t value)
{
    out.resize(out.size() + 4);
    putU32BigEndian(&out[out.size() - 4], value);
}

/// How a band is compressed.
struct Method {
    PngFilter filter;
    DeflateMethod deflate;
};

/// Text and drawings: most rows are like those above. Few bytes are left that differ, so a thorough search costs
/// little.
constexpr Method kForSparse { PngFilter::Up, { 32, 128 } };
/// Pictures: what the filter leaves has no repetitions worth a search.
constexpr Method kForPictures { PngFilter::Paeth, { 0, 0 } };
/// Patterns and dithered pictures: repetitions, but no smoothness.
constexpr Method kForPatterns { PngFilter::None, { 6, 32 } };

/// Fewer bytes than one in this many that differ from the one above make a band sparse.
constexpr std::size_t kSparseness = 12;
constexpr std::size_t kSampleBytes = std::size_t { 64 } << 10;
/// White rows from this many bytes on are compressed without looking at them.
constexpr std::size_t kLongWhiteRun = std::size_t { 128 } << 10;

class PngEncoder final : public FileEncoder {
public:
    PngEncoder(PageBitmap&& bitmap, PageTarget target)
        : FileEncoder(std::move(bitmap), std::move(target))
        , m_rowBytes(page().rowBytes() + 1)
        , m_pixelBytes(page().format() == PixelFormat::Rgb24 ? 3 : 1)
    {
        cutIntoBands();
    }

    int pieceCount() const override { return static_cast<int>(m_bandTops.size()) - 1; }

    std::string encode(int piece, EncodedPiece& encoded) const override
    {
        std::vector<std::uint8_t>& out = encoded.bytes;
        out.clear();
        if (piece == 0)
            writeHeader(out);
        const std::size_t chunk = openChunk(out, "IDAT");
        if (piece == 0) {
            out.push_back(0x78); // deflate with a 32 KiB window
            out.push_back(0x01); // no dictionary, and the check bits
        }
        PngRowFilter filter { page() };
        const Method method = methodFor(piece, filter);
        DeflateEncoder deflate { out, m_pixelBytes, searchFor(method) };
        const int top = m_bandTops[static_cast<std::size_t>(piece)];
        const int bottom = m_bandTops[static_cast<std::size_t>(piece) + 1];
        for (int y = top; y < bottom;) {
            const int whiteRows = repeatedWhiteRows(y, bottom);
            if (isLong(whiteRows)) {
                deflate.addZeroRows(
                    static_cast<std::uint8_t>(PngFilter::Up), m_rowBytes - 1, static_cast<std::size_t>(whiteRows));
                y += whiteRows;
                continue;
            }
            for (const int end = y + std::max(whiteRows, 1); y < end; ++y) {
                filter.apply(y, method.filter, deflate.room(m_rowBytes));
                deflate.commit(m_rowBytes);
            }
        }
        if (bottom == page().height())
            deflate.finish();
        else
            deflate.flush();
        encoded.checksum = deflate.checksum();
        encoded.plainSize = deflate.plainSize();
        closeChunk(out, chunk);
        return {};
    }

    bool write(const EncodedPiece& piece) override
    {
        m_checksum = adler32_combine(m_checksum, piece.checksum, static_cast<z_off_t>(piece.plainSize));
        return append(piece.bytes);
    }

    bool end() override
    {
        std::vector<std::uint8_t> out;
        std::size_t chunk = openChunk(out, "IDAT");
        appendU32BigEndian(out, static_cast<std::uint32_t>(m_checksum));
        closeChunk(out, chunk);
        chunk = openChunk(out, "IEND");
        closeChunk(out, chunk);
        return append(out);
    }

protected:
    /// A band's filters look at the row above it.
    RowRange rowsFrom(int piece) const override
    {
        return { std::max(0, m_bandTops[static_cast<std::size_t>(piece)] - 1), page().height() };
    }

private:
    int repeatedWhiteRows(int y, int bottom) const
    {
        const int first = y;
        while (y < bottom && PngRowFilter::isRepeatedWhite(page(), y))
            ++y;
        return y - first;
    }

    bool isLong(int whiteRows) const { return static_cast<std::size_t>(whiteRows) * m_rowBytes >= kLongWhiteRun; }

    /// Bands hold about the same number of bytes that have to be looked at.
    void cutIntoBands()
    {
        std::size_t bytes = 0;
        m_bandTops.push_back(0);
        for (int y = 0; y < page().height();) {
            if (bytes >= RowBands::kUsualBytes) {
                m_bandTops.push_back(y);
                bytes = 0;
            }
            // A run of white rows stays in one band, short or long.
            const int whiteRows = repeatedWhiteRows(y, page().height());
            const int rows = std::max(whiteRows, 1);
            if (!isLong(whiteRows))
                bytes += static_cast<std::size_t>(rows) * m_rowBytes;
            y += rows;
        }
        m_bandTops.push_back(page().height());
    }

    Method methodFor(int band, PngRowFilter& filter) const
    {
        constexpr int kStep = 8;
        const int top = m_bandTops[static_cast<std::size_t>(band)];
        const int bottom = m_bandTops[static_cast<std::size_t>(band) + 1];
        std::vector<std::uint8_t> row(m_rowBytes);
        std::vector<int> seen;
        std::size_t nonZero = 0;
        for (int y = std::max(top, 1); y < bottom; y += kStep) {
            if (PngRowFilter::isRepeatedWhite(page(), y))
                continue;
            seen.push_back(y);
            filter.apply(y, PngFilter::Up, row.data());
            nonZero += m_rowBytes - static_cast<std::size_t>(std::count(row.begin(), row.end(), 0));
        }
        if (nonZero <= seen.size() * m_rowBytes / kSparseness)
            return kForSparse;
        const int middle = seen[seen.size() / 2];
        // Bytes of eight pixels have no neighbours to be foretold from.
        const bool hasTones = page().format() != PixelFormat::Bilevel;
        const std::size_t asPicture = hasTones ? sampleSize(middle, bottom, kForPictures, filter) : SIZE_MAX;
        const std::size_t asPattern = sampleSize(middle, bottom, kForPatterns, filter);
        if (sampleSize(middle, bottom, kForSparse, filter) < std::min(asPicture, asPattern))
            return kForSparse;
        return asPattern < asPicture ? kForPatterns : kForPictures;
    }

    DeflateMethod searchFor(const Method& method) const
    {
        DeflateMethod search = method.deflate;
        search.rowBytes = method.filter == PngFilter::None ? m_rowBytes : 0;
        return search;
    }

    /// What some rows come to.
    std::size_t sampleSize(int top, int bottom, const Method& method, PngRowFilter& filter) const
    {
        std::vector<std::uint8_t> out;
        DeflateEncoder deflate { out, m_pixelBytes, searchFor(method) };
        std::size_t bytes = 0;
        for (int y = top; y < bottom && bytes < kSampleBytes; ++y, bytes += m_rowBytes) {
            filter.apply(y, method.filter, deflate.room(m_rowBytes));
            deflate.commit(m_rowBytes);
        }
        deflate.finish();
        return out.size();
    }

    void writeHeader(std::vector<std::uint8_t>& out) const
    {
        static constexpr std::array<std::uint8_t, 8> kSignature { 0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n' };
        out.assign(kSignature.begin(), kSignature.end());
        std::size_t chunk = openChunk(out, "IHDR");
        appendU32BigEndian(out, static_cast<std::uint32_t>(page().width()));
        appendU32BigEndian(out, static_cast<std::uint32_t>(page().height()));
        out.push_back(page().format() == PixelFormat::Bilevel ? 1 : 8);
        out.push_back(page().format() == PixelFormat::Rgb24 ? 2 : 0); // colour type: RGB or grey
        out.insert(out.end(), 3, 0); // deflate, the five filters, not interlaced
        closeChunk(out, chunk);
        chunk = openChunk(out, "pHYs");
        appendU32BigEndian(out, pixelsPerMetre(page().resolution().x));
        appendU32BigEndian(out, pixelsPerMetre(page().resolution().y));
        out.push_back(1); // per metre
        closeChunk(out, chunk);
    }

    std::size_t m_rowBytes; ///< with the filter's number
    std::size_t m_pixelBytes;
    std::vector<int> m_bandTops; ///< and the page's height
    uLong m_checksum = adler32_z(0, nullptr, 0);
};

} // namespace

std::unique_ptr<PageEncoder> makePngEncoder(PageBitmap&& page, PageTarget target)
{
    return std::make_unique<PngEncoder>(std::move(page), std::move(target));
}

} // namespace quillrip
