// Portable Network Graphics (W3C Recommendation / ISO 15948).
//
// The compressed data of a PNG is one zlib stream (RFC 1950). It is made here from raw deflate streams, one per band
// of rows, that different threads compress: each but the last ends on a byte boundary by a flush and refers to nothing
// before its start, so they can be joined as they are, and with long runs of white rows, which are compressed once
// for all. Only the checksum at the end covers all of them.

#include "quillrip/image/file_encoder.h"
#include "quillrip/image/header_bytes.h"
#include "quillrip/image/png_deflate.h"
#include "quillrip/image/png_filter.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

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

/// Black and white: bytes are eight pixels, where no filter helps.
constexpr Method kForBilevel { PngFilter::None, { 5, Z_DEFAULT_STRATEGY } };
/// Text and drawings: few bytes differ from what the filter expects, so a thorough search costs little.
constexpr Method kForSparse { PngFilter::Paeth, { 6, Z_DEFAULT_STRATEGY } };
/// Pictures: what the filter leaves has no repetitions worth a search.
constexpr Method kForPictures { PngFilter::Paeth, { 1, Z_RLE } };
/// Patterns and dithered pictures: repetitions, but no smoothness.
constexpr Method kForPatterns { PngFilter::None, { 1, Z_DEFAULT_STRATEGY } };

/// Fewer non-zero bytes than one in this many, after the filter, make a band sparse.
constexpr std::size_t kSparseness = 12;
constexpr std::size_t kSampleBytes = std::size_t { 64 } << 10;

class PngEncoder final : public FileEncoder {
public:
    PngEncoder(PageBitmap&& bitmap, PageTarget target, std::shared_ptr<const WhiteRows>& whiteRows)
        : FileEncoder(std::move(bitmap), std::move(target))
        , m_rowBytes(page().rowBytes() + 1)
    {
        const std::size_t longestRun = cutIntoBands();
        if (longestRun > 0
            && (!whiteRows || whiteRows->rowBytes() != m_rowBytes || whiteRows->longestRun() < longestRun))
            whiteRows
                = std::make_shared<const WhiteRows>(m_rowBytes, static_cast<std::uint8_t>(PngFilter::Up), longestRun);
        m_whiteRows = whiteRows;
    }

    int pieceCount() const override { return static_cast<int>(m_bandTops.size()) - 1; }

    std::string encode(int piece, EncodedPiece& encoded) const override
    {
        std::vector<std::uint8_t>& out = encoded.bytes;
        if (piece == 0)
            writeHeader(out);
        const std::size_t chunk = openChunk(out, "IDAT");
        if (piece == 0) {
            out.push_back(0x78); // deflate with a 32 KiB window
            out.push_back(0x01); // no dictionary, and the check bits
        }
        PngRowFilter filter { page() };
        const Method method = methodFor(piece, filter);
        Deflater deflater { out, method.deflate };
        if (!deflater.isReady())
            return "not enough memory to encode a page";
        const int top = m_bandTops[static_cast<std::size_t>(piece)];
        const int bottom = m_bandTops[static_cast<std::size_t>(piece) + 1];
        encoded.checksum = static_cast<std::uint32_t>(adler32_z(0, nullptr, 0));
        for (int y = top; y < bottom;) {
            const int whiteRows = repeatedWhiteRows(y, bottom);
            if (isJoined(whiteRows) && m_whiteRows->isReady()) {
                deflater.add(nullptr, 0, Z_FULL_FLUSH);
                m_whiteRows->join(static_cast<std::size_t>(whiteRows), deflater, encoded.checksum);
                y += whiteRows;
                continue;
            }
            for (const int end = y + std::max(whiteRows, 1); y < end; ++y) {
                const std::uint8_t* row = filter.filtered(y, method.filter);
                encoded.checksum = static_cast<std::uint32_t>(adler32_z(encoded.checksum, row, m_rowBytes));
                deflater.add(row, m_rowBytes, Z_NO_FLUSH);
            }
        }
        encoded.plainSize = m_rowBytes * static_cast<std::size_t>(bottom - top);
        deflater.add(nullptr, 0, bottom == page().height() ? Z_FINISH : Z_FULL_FLUSH);
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

private:
    int repeatedWhiteRows(int y, int bottom) const
    {
        const int first = y;
        while (y < bottom && PngRowFilter::isRepeatedWhite(page(), y))
            ++y;
        return y - first;
    }

    /// Whether so many white rows are joined from what is compressed already.
    bool isJoined(int rows) const { return WhiteRows::isWorthwhile(static_cast<std::size_t>(rows), m_rowBytes); }

    /// Bands hold about the same number of bytes that have to be compressed. Returns the longest run of white rows
    /// that have not.
    std::size_t cutIntoBands()
    {
        std::size_t longestRun = 0;
        std::size_t bytes = 0;
        m_bandTops.push_back(0);
        for (int y = 0; y < page().height();) {
            if (bytes >= RowBands::kUsualBytes) {
                m_bandTops.push_back(y);
                bytes = 0;
            }
            // A run of white rows stays in one band, short or long.
            const int whiteRows = repeatedWhiteRows(y, page().height());
            const auto rows = static_cast<std::size_t>(std::max(whiteRows, 1));
            if (isJoined(whiteRows))
                longestRun = std::max(longestRun, rows);
            else
                bytes += rows * m_rowBytes;
            y += static_cast<int>(rows);
        }
        m_bandTops.push_back(page().height());
        return longestRun;
    }

    Method methodFor(int band, PngRowFilter& filter) const
    {
        if (page().format() == PixelFormat::Bilevel)
            return kForBilevel;
        constexpr int kStep = 8;
        const int top = m_bandTops[static_cast<std::size_t>(band)];
        const int bottom = m_bandTops[static_cast<std::size_t>(band) + 1];
        std::vector<int> seen;
        std::size_t nonZero = 0;
        for (int y = top; y < bottom; y += kStep) {
            if (PngRowFilter::isRepeatedWhite(page(), y))
                continue;
            seen.push_back(y);
            const std::uint8_t* row = filter.filtered(y, PngFilter::Paeth) + 1;
            nonZero += page().rowBytes() - static_cast<std::size_t>(std::count(row, row + page().rowBytes(), 0));
        }
        if (nonZero <= seen.size() * page().rowBytes() / kSparseness)
            return kForSparse;
        // The thorough search takes several times as long as the others, so it has to be worth it.
        const int middle = seen[seen.size() / 2];
        const std::size_t asPicture = sampleSize(middle, bottom, kForPictures, filter);
        const std::size_t asPattern = sampleSize(middle, bottom, kForPatterns, filter);
        if (sampleSize(middle, bottom, kForSparse, filter) < std::min(asPicture, asPattern) / 4 * 3)
            return kForSparse;
        return asPattern < asPicture ? kForPatterns : kForPictures;
    }

    /// What some rows come to.
    std::size_t sampleSize(int top, int bottom, const Method& method, PngRowFilter& filter) const
    {
        std::vector<std::uint8_t> out;
        Deflater deflater { out, method.deflate };
        if (!deflater.isReady())
            return 0;
        std::size_t bytes = 0;
        for (int y = top; y < bottom && bytes < kSampleBytes; ++y, bytes += m_rowBytes)
            deflater.add(filter.filtered(y, method.filter), m_rowBytes, Z_NO_FLUSH);
        deflater.add(nullptr, 0, Z_FINISH);
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
    std::vector<int> m_bandTops; ///< and the page's height
    std::shared_ptr<const WhiteRows> m_whiteRows;
    uLong m_checksum = adler32_z(0, nullptr, 0);
};

} // namespace

std::unique_ptr<PageEncoder> makePngEncoder(
    PageBitmap&& page, PageTarget target, std::shared_ptr<const WhiteRows>& whiteRows)
{
    return std::make_unique<PngEncoder>(std::move(page), std::move(target), whiteRows);
}

} // namespace quillrip
