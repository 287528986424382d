// Portable Network Graphics (W3C Recommendation / ISO 15948).
//
// The compressed data of a PNG is one zlib stream (RFC 1950). It is made here from raw deflate streams, one per band
// of rows, that different threads compress: each but the last ends on a byte boundary by a sync flush and refers to
// nothing before its start, so they can be joined as they are. Only the checksum at the end covers all of them.

#include "quillrip/image/file_encoder.h"
#include "quillrip/image/header_bytes.h"
#include "quillrip/image/png_filter.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace quillrip {

namespace {

constexpr std::size_t kBandBytes = std::size_t { 1 } << 20;
constexpr std::size_t kOutputStep = std::size_t { 16 } << 10;
constexpr std::size_t kShortestWhiteRun = std::size_t { 64 } << 10;
constexpr std::size_t kLongestWhiteRun = std::size_t { 512 } << 10;
constexpr int kWindowBits = 15;

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

/// Raw deflate streams that grow a vector.
class Deflater {
public:
    Deflater(std::vector<std::uint8_t>& out, int level, int strategy)
        : m_out(out)
        , m_used(out.size())
    {
        m_isReady = deflateInit2(&m_stream, level, Z_DEFLATED, -kWindowBits, 9, strategy) == Z_OK;
    }
    ~Deflater()
    {
        if (m_isReady)
            deflateEnd(&m_stream);
    }
    Deflater(const Deflater&) = delete;
    Deflater& operator=(const Deflater&) = delete;

    bool isReady() const { return m_isReady; }

    /// With Z_FULL_FLUSH or Z_FINISH all bytes so far are in the vector, whole.
    void add(const std::uint8_t* bytes, std::size_t count, int flush)
    {
        m_stream.next_in = const_cast<std::uint8_t*>(bytes); // zlib only reads it
        m_stream.avail_in = static_cast<uInt>(count);
        do {
            if (m_out.size() - m_used < kOutputStep)
                m_out.resize(m_used + 4 * kOutputStep);
            const std::size_t room = m_out.size() - m_used;
            m_stream.next_out = &m_out[m_used];
            m_stream.avail_out = static_cast<uInt>(room);
            deflate(&m_stream, flush);
            m_used += room - m_stream.avail_out;
        } while (m_stream.avail_out == 0);
        if (flush != Z_NO_FLUSH)
            m_out.resize(m_used);
    }

    /// Puts bytes of another stream behind what is flushed.
    void join(const std::vector<std::uint8_t>& bytes)
    {
        m_out.insert(m_out.end(), bytes.begin(), bytes.end());
        m_used = m_out.size();
    }

private:
    std::vector<std::uint8_t>& m_out;
    std::size_t m_used;
    z_stream m_stream {};
    bool m_isReady = false;
};

/// Repeated white rows, compressed beforehand in powers of two: no other part of a page is as frequent.
class WhiteRows {
public:
    explicit WhiteRows(std::size_t rowBytes)
        : m_rowBytes(rowBytes + 1)
    {
        std::vector<std::uint8_t> row(m_rowBytes);
        row[0] = static_cast<std::uint8_t>(PngFilter::Up);
        std::size_t rows = 1;
        do {
            Run run;
            Deflater deflater { run.bytes, 1, Z_RLE };
            for (std::size_t i = 0; deflater.isReady() && i < rows; ++i)
                deflater.add(row.data(), row.size(), i + 1 < rows ? Z_NO_FLUSH : Z_FULL_FLUSH);
            run.plainSize = rows * m_rowBytes;
            run.checksum = m_runs.empty() ? adler32_z(adler32_z(0, nullptr, 0), row.data(), row.size())
                                          : adler32_combine(m_runs.back().checksum, m_runs.back().checksum,
                                              static_cast<z_off_t>(m_runs.back().plainSize));
            if (run.bytes.empty())
                return; // no memory: no runs
            m_runs.push_back(std::move(run));
            rows *= 2;
        } while (rows * m_rowBytes <= kLongestWhiteRun);
    }

    /// Whether so many rows are worth the few bytes that joining streams costs.
    bool isWorthwhile(std::size_t rows) const { return !m_runs.empty() && rows * m_rowBytes >= kShortestWhiteRun; }

    void join(std::size_t rows, Deflater& deflater, EncodedPiece& encoded) const
    {
        std::size_t power = m_runs.size() - 1;
        while (rows > 0) {
            while ((std::size_t { 1 } << power) > rows)
                --power;
            const Run& run = m_runs[power];
            deflater.join(run.bytes);
            encoded.checksum = static_cast<std::uint32_t>(
                adler32_combine(encoded.checksum, run.checksum, static_cast<z_off_t>(run.plainSize)));
            rows -= std::size_t { 1 } << power;
        }
    }

private:
    struct Run {
        std::vector<std::uint8_t> bytes;
        uLong checksum = 0;
        std::size_t plainSize = 0;
    };
    std::size_t m_rowBytes;
    std::vector<Run> m_runs;
};

/// How a band is compressed.
struct Method {
    PngFilter filter;
    int level;
    int strategy;
};

/// Black and white: bytes are eight pixels, where no filter helps.
constexpr Method kForBilevel { PngFilter::None, 5, Z_DEFAULT_STRATEGY };
/// Text and drawings: few bytes differ from what the filter expects, so a thorough search costs little.
constexpr Method kForSparse { PngFilter::Paeth, 6, Z_DEFAULT_STRATEGY };
/// Pictures: what the filter leaves has no repetitions worth a search.
constexpr Method kForPictures { PngFilter::Paeth, 1, Z_RLE };
/// Patterns and dithered pictures: repetitions, but no smoothness.
constexpr Method kForPatterns { PngFilter::None, 1, Z_DEFAULT_STRATEGY };

/// Fewer non-zero bytes than one in this many, after the filter, make a band sparse.
constexpr std::size_t kSparseness = 12;
constexpr std::size_t kSampleBytes = std::size_t { 64 } << 10;

class PngEncoder final : public FileEncoder {
public:
    PngEncoder(PageBitmap&& bitmap, PageTarget target)
        : FileEncoder(std::move(bitmap), std::move(target))
        , m_bands(page(), kBandBytes)
        , m_whiteRows(page().rowBytes())
    {
    }

    int pieceCount() const override { return m_bands.count(); }

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
        Deflater deflater { out, method.level, method.strategy };
        if (!deflater.isReady())
            return "not enough memory to encode a page";
        const int bottom = m_bands.bottom(piece);
        const std::size_t rowBytes = page().rowBytes() + 1;
        encoded.checksum = static_cast<std::uint32_t>(adler32_z(0, nullptr, 0));
        for (int y = m_bands.top(piece); y < bottom; ++y) {
            const std::size_t whiteRows = repeatedWhiteRows(y, bottom);
            if (whiteRows > 0 && m_whiteRows.isWorthwhile(whiteRows)) {
                deflater.add(nullptr, 0, Z_FULL_FLUSH);
                m_whiteRows.join(whiteRows, deflater, encoded);
                y += static_cast<int>(whiteRows) - 1;
                continue;
            }
            const std::uint8_t* row = filter.filtered(y, method.filter);
            encoded.checksum = static_cast<std::uint32_t>(adler32_z(encoded.checksum, row, rowBytes));
            deflater.add(row, rowBytes, Z_NO_FLUSH);
        }
        encoded.plainSize = rowBytes * static_cast<std::size_t>(bottom - m_bands.top(piece));
        deflater.add(nullptr, 0, piece == m_bands.count() - 1 ? Z_FINISH : Z_FULL_FLUSH);
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
    std::size_t repeatedWhiteRows(int y, int bottom) const
    {
        const int first = y;
        while (y < bottom && PngRowFilter::isRepeatedWhite(page(), y))
            ++y;
        return static_cast<std::size_t>(y - first);
    }

    Method methodFor(int band, PngRowFilter& filter) const
    {
        if (page().format() == PixelFormat::Bilevel)
            return kForBilevel;
        constexpr int kStep = 8;
        std::size_t seen = 0;
        std::size_t nonZero = 0;
        for (int y = m_bands.top(band); y < m_bands.bottom(band); y += kStep) {
            seen += page().rowBytes();
            if (PngRowFilter::isRepeatedWhite(page(), y))
                continue;
            const std::uint8_t* row = filter.filtered(y, PngFilter::Paeth) + 1;
            nonZero += page().rowBytes() - static_cast<std::size_t>(std::count(row, row + page().rowBytes(), 0));
        }
        if (nonZero < seen / kSparseness)
            return kForSparse;
        return sampleSize(band, kForPatterns, filter) < sampleSize(band, kForPictures, filter) ? kForPatterns
                                                                                               : kForPictures;
    }

    /// What some rows in the middle of a band come to.
    std::size_t sampleSize(int band, const Method& method, PngRowFilter& filter) const
    {
        std::vector<std::uint8_t> out;
        Deflater deflater { out, method.level, method.strategy };
        if (!deflater.isReady())
            return 0;
        std::size_t bytes = 0;
        for (int y = (m_bands.top(band) + m_bands.bottom(band)) / 2; y < m_bands.bottom(band); ++y) {
            deflater.add(filter.filtered(y, method.filter), page().rowBytes() + 1, Z_NO_FLUSH);
            bytes += page().rowBytes() + 1;
            if (bytes >= kSampleBytes)
                break;
        }
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

    RowBands m_bands;
    WhiteRows m_whiteRows;
    uLong m_checksum = adler32_z(0, nullptr, 0);
};

} // namespace

std::unique_ptr<PageEncoder> makePngEncoder(PageBitmap&& page, PageTarget target, std::string& reason)
{
    if (page.isNull()) {
        reason = "the page has no pixels";
        return nullptr;
    }
    return std::make_unique<PngEncoder>(std::move(page), std::move(target));
}

} // namespace quillrip
