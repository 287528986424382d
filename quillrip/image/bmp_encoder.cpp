#include "quillrip/image/file_encoder.h"
#include "quillrip/image/header_bytes.h"
#include "quillrip/image/light_rows.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quillrip {

namespace {

constexpr std::uint32_t kHeaderBytes = 14 + 40;
/// What is not compressed gains nothing by larger pieces, and several of them wait for their turn.
constexpr std::size_t kBmpBandBytes = std::size_t { 256 } << 10;

std::uint64_t strideOf(const PageBitmap& page) { return (page.rowBytes() + 3) / 4 * 4; }

std::uint32_t paletteEntries(PixelFormat format)
{
    return format == PixelFormat::Bilevel ? 2 : format == PixelFormat::Gray8 ? 256 : 0;
}

std::uint64_t fileBytes(const PageBitmap& page)
{
    return kHeaderBytes + 4 * paletteEntries(page.format())
        + strideOf(page) * static_cast<std::uint64_t>(page.height());
}

class BmpEncoder final : public FileEncoder {
public:
    BmpEncoder(PageBitmap&& bitmap, PageTarget target)
        : FileEncoder(std::move(bitmap), std::move(target))
        , m_bands(page(), kBmpBandBytes)
    {
    }

    int pieceCount() const override { return m_bands.count(); }

    /// The file starts with the page's lowest rows.
    std::string encode(int piece, EncodedPiece& encoded) const override
    {
        std::vector<std::uint8_t> header;
        if (piece == 0)
            writeHeader(header);
        const int band = m_bands.count() - 1 - piece;
        const auto stride = static_cast<std::size_t>(strideOf(page()));
        std::vector<std::uint8_t>& out = encoded.bytes;
        std::size_t at = header.size();
        out.resize(at + stride * static_cast<std::size_t>(m_bands.bottom(band) - m_bands.top(band)));
        std::copy(header.begin(), header.end(), out.begin());
        for (int y = m_bands.bottom(band) - 1; y >= m_bands.top(band); --y, at += stride) {
            if (page().format() == PixelFormat::Rgb24)
                lightRowAsBgr(page(), y, &out[at]);
            else
                lightRow(page(), y, &out[at]);
            std::fill_n(&out[at] + page().rowBytes(), stride - page().rowBytes(), std::uint8_t { 0 });
        }
        return {};
    }

protected:
    RowRange rowsFrom(int piece) const override { return { 0, m_bands.bottom(m_bands.count() - 1 - piece) }; }

private:
    void writeHeader(std::vector<std::uint8_t>& out) const
    {
        const std::uint32_t colours = paletteEntries(page().format());
        const std::uint32_t pixelOffset = kHeaderBytes + 4 * colours;
        const auto size = static_cast<std::uint32_t>(fileBytes(page()));
        LittleEndianWriter header { out };
        header.u8('B');
        header.u8('M');
        header.u32(size);
        header.u32(0);
        header.u32(pixelOffset);
        header.u32(40);
        header.u32(static_cast<std::uint32_t>(page().width()));
        header.u32(static_cast<std::uint32_t>(page().height())); // positive: bottom row first
        header.u16(1);
        header.u16(static_cast<std::uint32_t>(bitsPerPixel(page().format())));
        header.u32(0);
        header.u32(size - pixelOffset);
        header.u32(pixelsPerMetre(page().resolution().x));
        header.u32(pixelsPerMetre(page().resolution().y));
        header.u32(colours);
        header.u32(colours);
        for (std::uint32_t i = 0; i < colours; ++i)
            header.u32(i * (255 / (colours - 1)) * 0x010101u); // black first: some readers take it for granted
    }

    RowBands m_bands;
};

} // namespace

std::unique_ptr<PageEncoder> makeBmpEncoder(PageBitmap&& page, PageTarget target, std::string& reason)
{
    if (fileBytes(page) > UINT32_MAX) {
        reason = "the page is too large for a BMP file, which ends at 4 GiB";
        return nullptr;
    }
    return std::make_unique<BmpEncoder>(std::move(page), std::move(target));
}

} // namespace quillrip
