#include "quillrip/image/png_deflate.h"

#include <utility>

namespace quillrip {

namespace {

constexpr int kWindowBits = 15;
constexpr int kMemoryLevel = 9;
constexpr std::size_t kDeflateStep = std::size_t { 16 } << 10;
constexpr std::size_t kShortestWhiteRun = std::size_t { 128 } << 10;
constexpr std::size_t kLongestWhiteRun = std::size_t { 1 } << 20;

std::uint32_t combined(std::uint32_t first, std::uint32_t second, std::size_t secondSize)
{
    return static_cast<std::uint32_t>(adler32_combine(first, second, static_cast<z_off_t>(secondSize)));
}

} // namespace

Deflater::Deflater(std::vector<std::uint8_t>& out, DeflateMethod method)
    : m_out(out)
    , m_used(out.size())
{
    m_isReady = deflateInit2(&m_stream, method.level, Z_DEFLATED, -kWindowBits, kMemoryLevel, method.strategy) == Z_OK;
    // Level 6, but for taking the longest match wherever there is one: runs of white are longer than the 128 bytes
    // it is content with.
    if (m_isReady && method.level == 6)
        deflateTune(&m_stream, 8, 16, 258, 128);
}

Deflater::~Deflater()
{
    if (m_isReady)
        deflateEnd(&m_stream);
}

void Deflater::add(const std::uint8_t* bytes, std::size_t count, int flush)
{
    m_stream.next_in = const_cast<std::uint8_t*>(bytes); // zlib only reads it
    m_stream.avail_in = static_cast<uInt>(count);
    do {
        if (m_out.size() - m_used < kDeflateStep)
            m_out.resize(m_used + 4 * kDeflateStep);
        const std::size_t room = m_out.size() - m_used;
        m_stream.next_out = &m_out[m_used];
        m_stream.avail_out = static_cast<uInt>(room);
        deflate(&m_stream, flush);
        m_used += room - m_stream.avail_out;
    } while (m_stream.avail_out == 0);
    if (flush != Z_NO_FLUSH)
        m_out.resize(m_used);
}

void Deflater::join(const std::vector<std::uint8_t>& bytes)
{
    m_out.insert(m_out.end(), bytes.begin(), bytes.end());
    m_used = m_out.size();
}

WhiteRows::WhiteRows(std::size_t rowBytes, std::uint8_t filter, std::size_t longestRun)
    : m_rowBytes(rowBytes)
    , m_longestRun(longestRun)
{
    std::vector<std::uint8_t> row(rowBytes);
    row[0] = filter;
    for (std::size_t rows = 1; rows <= longestRun; rows *= 4) {
        if (rows > 1 && rows * rowBytes > kLongestWhiteRun)
            break;
        Run run;
        // With this strategy all repetitions have the same distance, 1, and so the shortest codes.
        Deflater deflater { run.bytes, { 1, Z_RLE } };
        if (!deflater.isReady()) {
            m_runs.clear();
            return;
        }
        for (std::size_t i = 0; i < rows; ++i)
            deflater.add(row.data(), row.size(), i + 1 < rows ? Z_NO_FLUSH : Z_FULL_FLUSH);
        run.plainSize = rows * rowBytes;
        if (m_runs.empty()) {
            run.checksum = static_cast<std::uint32_t>(adler32_z(adler32_z(0, nullptr, 0), row.data(), row.size()));
        } else {
            const Run& quarter = m_runs.back();
            const std::uint32_t half = combined(quarter.checksum, quarter.checksum, quarter.plainSize);
            run.checksum = combined(half, half, 2 * quarter.plainSize);
        }
        m_runs.push_back(std::move(run));
    }
}

bool WhiteRows::isWorthwhile(std::size_t rows, std::size_t rowBytes) { return rows * rowBytes >= kShortestWhiteRun; }

void WhiteRows::join(std::size_t rows, Deflater& deflater, std::uint32_t& checksum) const
{
    std::size_t power = m_runs.size() - 1;
    while (rows > 0) {
        while ((std::size_t { 1 } << 2 * power) > rows)
            --power;
        deflater.join(m_runs[power].bytes);
        checksum = combined(checksum, m_runs[power].checksum, m_runs[power].plainSize);
        rows -= std::size_t { 1 } << 2 * power;
    }
}

} // namespace quillrip
