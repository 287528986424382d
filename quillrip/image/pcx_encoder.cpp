#include "quillrip/image/file_encoder.h"
#include "quillrip/image/header_bytes.h"
#include "quillrip/image/light_rows.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace quillrip {

namespace {

constexpr int kLongestSide = 65535;
constexpr std::size_t kLongestRun = 63;
/// Rows are compressed by themselves, so they gain nothing by larger pieces, and several of those wait for their turn.
constexpr std::size_t kPcxBandBytes = std::size_t { 256 } << 10;

/// The number of bytes from `from` on that are the same, at most `limit`.
std::size_t runLength(const std::uint8_t* from, std::size_t limit)
{
    std::uint64_t same = 0;
    std::memset(&same, *from, sizeof same);
    std::size_t length = 0;
    for (; length + 8 <= limit; length += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, from + length, 8);
        if (word != same)
            break;
    }
    while (length < limit && from[length] == *from)
        ++length;
    return length;
}

/// Bytes with both highest bits set are counts, so such a byte needs one before it even when it is alone.
void appendRuns(const std::uint8_t* bytes, std::size_t count, std::vector<std::uint8_t>& out)
{
    while (count > 0) {
        const std::size_t run = runLength(bytes, std::min(count, kLongestRun));
        if (run > 1 || *bytes >= 0xC0)
            out.push_back(static_cast<std::uint8_t>(0xC0 | run));
        out.push_back(*bytes);
        bytes += run;
        count -= run;
    }
}

class PcxEncoder final : public FileEncoder {
public:
    PcxEncoder(PageBitmap&& bitmap, PageTarget target)
        : FileEncoder(std::move(bitmap), std::move(target))
        , m_bands(page(), kPcxBandBytes)
        , m_planes(page().format() == PixelFormat::Rgb24 ? 3 : 1)
        , m_planeBytes((page().rowBytes() / m_planes + 1) / 2 * 2)
    {
    }

    int pieceCount() const override { return m_bands.count(); }

    std::string encode(int piece, EncodedPiece& encoded) const override
    {
        std::vector<std::uint8_t>& out = encoded.bytes;
        out.clear();
        if (piece == 0)
            writeHeader(out);
        std::vector<std::uint8_t> row(m_planes * m_planeBytes);
        std::vector<std::uint8_t> blank; // a whole row, encoded
        for (int y = m_bands.top(piece); y < m_bands.bottom(piece); ++y) {
            const bool isBlank = page().extent(y).empty();
            const std::size_t start = out.size();
            if (isBlank && !blank.empty()) {
                out.insert(out.end(), blank.begin(), blank.end());
                continue;
            }
            if (m_planes == 3)
                lightRowAsPlanes(page(), y, row.data(), m_planeBytes);
            else
                lightRow(page(), y, row.data());
            // Runs end with the row, as the format demands, and with the plane, as some readers do.
            for (std::size_t plane = 0; plane < m_planes; ++plane)
                appendRuns(&row[plane * m_planeBytes], m_planeBytes, out);
            if (isBlank)
                blank.assign(out.begin() + static_cast<std::ptrdiff_t>(start), out.end());
        }
        if (piece == m_bands.count() - 1 && page().format() == PixelFormat::Gray8)
            writePalette(out);
        return {};
    }

protected:
    RowRange rowsFrom(int piece) const override { return { m_bands.top(piece), page().height() }; }

private:
    void writeHeader(std::vector<std::uint8_t>& out) const
    {
        const auto dotsPerInch
            = [](double value) { return static_cast<std::uint32_t>(std::clamp(std::lround(value), 0L, 65535L)); };
        LittleEndianWriter header { out };
        header.u8(0x0A);
        header.u8(5);
        header.u8(1);
        header.u8(page().format() == PixelFormat::Bilevel ? 1 : 8);
        header.u32(0);
        header.u16(static_cast<std::uint32_t>(page().width() - 1));
        header.u16(static_cast<std::uint32_t>(page().height() - 1));
        header.u16(dotsPerInch(page().resolution().x));
        header.u16(dotsPerInch(page().resolution().y));
        // The palette of two colours, black first; without meaning at 8 bits a plane.
        for (int i = 0; i < 48; ++i)
            header.u8(page().format() == PixelFormat::Bilevel && i >= 3 && i < 6 ? 0xFF : 0);
        header.u8(0);
        header.u8(static_cast<std::uint8_t>(m_planes));
        header.u16(static_cast<std::uint32_t>(m_planeBytes));
        header.u16(page().format() == PixelFormat::Gray8 ? 2 : 1);
        out.resize(128);
    }

    static void writePalette(std::vector<std::uint8_t>& out)
    {
        out.push_back(0x0C);
        for (unsigned i = 0; i < 256; ++i)
            out.insert(out.end(), 3, static_cast<std::uint8_t>(i));
    }

    RowBands m_bands;
    std::size_t m_planes;
    std::size_t m_planeBytes;
};

} // namespace

std::unique_ptr<PageEncoder> makePcxEncoder(PageBitmap&& page, PageTarget target, std::string& reason)
{
    // The bytes per row are a 16-bit even number, too.
    const int widest = page.format() == PixelFormat::Bilevel ? kLongestSide : kLongestSide - 1;
    if (page.width() > widest || page.height() > kLongestSide) {
        reason = "the page has " + std::to_string(page.width()) + " x " + std::to_string(page.height())
            + " pixels; PCX files hold at most " + std::to_string(widest) + " x " + std::to_string(kLongestSide);
        return nullptr;
    }
    return std::make_unique<PcxEncoder>(std::move(page), std::move(target));
}

} // namespace quillrip
