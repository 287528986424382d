#include "quillrip/pclxl/vendor_raster.h"

#include "quillrip/pclxl/replacement_strip.h"

#include <algorithm>

namespace quillrip::pclxl {

namespace {

constexpr std::uint32_t kTablesLength = 3 * 64 * 4;
constexpr std::uint32_t kConversionLength = (2 + 9) * 4;
constexpr int kConversionUnit = 4096;

/// Where the coefficients of a JPEG table, in file order, stand in the block, row by row.
constexpr std::array<std::uint8_t, 64> kZigzag = { 0, 1, 8, 16, 9, 2, 3, 10, 17, 24, 32, 25, 18, 11, 4, 5, 12, 19, 26,
    33, 40, 48, 41, 34, 27, 20, 13, 6, 7, 14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23, 30, 37, 44, 51,
    58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63 };

void putU16(std::vector<std::uint8_t>& bytes, std::uint32_t value)
{
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
    bytes.push_back(static_cast<std::uint8_t>(value));
}

/// All that stands before the entropy-coded data of a JPEG file but the Huffman tables: they are those of the JPEG
/// standard's annex K, which the decoder takes where a stream has none.
std::vector<std::uint8_t> jpegHeaders(
    const StripCoding::QuantizationTables& tables, int components, std::uint32_t width, std::uint32_t rows)
{
    std::vector<std::uint8_t> bytes = { 0xFF, 0xD8 };
    const std::uint8_t count = static_cast<std::uint8_t>(components);
    for (std::uint8_t i = 0; i < count; ++i) {
        bytes.insert(bytes.end(), { 0xFF, 0xDB, 0, 2 + 1 + 128, static_cast<std::uint8_t>(0x10 | i) });
        for (const std::uint8_t at : kZigzag)
            putU16(bytes, tables[i][at]);
    }
    // Extended sequential, since only that may have divisors above 255.
    bytes.insert(bytes.end(), { 0xFF, 0xC1, 0, static_cast<std::uint8_t>(8 + 3 * count), 8 });
    putU16(bytes, rows);
    putU16(bytes, width);
    bytes.push_back(count);
    for (std::uint8_t i = 0; i < count; ++i)
        bytes.insert(bytes.end(), { i, 0x11, i });
    bytes.insert(bytes.end(), { 0xFF, 0xDA, 0, static_cast<std::uint8_t>(6 + 2 * count), count });
    for (std::uint8_t i = 0; i < count; ++i)
        bytes.insert(bytes.end(), { i, static_cast<std::uint8_t>(i == 0 ? 0x00 : 0x11) });
    bytes.insert(bytes.end(), { 0, 63, 0 });
    return bytes;
}

/// Components of a JPEG strip on their way to the page's colours. In gray they are ink: 0 is white.
class ConvertingSink final : public RowSink {
public:
    ConvertingSink(const StripCoding& coding, std::uint32_t width, RowSink& next)
        : m_coding(coding)
        , m_row(width * static_cast<std::size_t>(coding.components()))
        , m_next(next)
    {
    }

    void row(const std::uint8_t* pixels) override
    {
        if (m_coding.isColor) {
            convert(pixels);
        } else {
            std::transform(pixels, pixels + m_row.size(), m_row.begin(),
                [](std::uint8_t ink) { return static_cast<std::uint8_t>(255 - ink); });
        }
        m_next.row(m_row.data());
    }

private:
    /// The first component lies about 0, the others about 128.
    void convert(const std::uint8_t* from)
    {
        // A copy, which the bytes written cannot change.
        const StripCoding::ColorConversion factors = m_coding.conversion;
        for (std::size_t at = 0; at < m_row.size(); at += 3, from += 3) {
            // Most of a page is of one colour.
            if (at > 0 && std::equal(from, from + 3, from - 3)) {
                std::copy_n(m_row.data() + at - 3, 3, m_row.data() + at);
                continue;
            }
            const int first = from[0];
            const int second = from[1] - 128;
            const int third = from[2] - 128;
            for (std::size_t i = 0; i < 3; ++i) {
                const int sum = factors[i][0] * first + factors[i][1] * second + factors[i][2] * third;
                m_row[at + i] = static_cast<std::uint8_t>(std::clamp(sum / kConversionUnit, 0, 255));
            }
        }
    }

    const StripCoding& m_coding;
    std::vector<std::uint8_t> m_row;
    RowSink& m_next;
};

Status decodeJpegStrip(EmbeddedData& chunk, const StripCoding& coding, const BlockLayout& layout, std::uint32_t rows,
    bool isComplete, RowSink& sink, WorkMeter& work)
{
    ConvertingSink converting(coding, layout.width, sink);
    JpegForm form;
    form.hasPlainComponents = true;
    std::vector<std::uint8_t> headers;
    if (!isComplete) {
        if (!coding.tables || layout.width > 0xFFFF || rows > 0xFFFF)
            return Error::IllegalDataValue;
        headers = jpegHeaders(*coding.tables, coding.components(), layout.width, rows);
        form.headers = headers;
    }
    return decodeJpegBlock(chunk, layout, rows, converting, work, form);
}

} // namespace

Status readQuantizationTables(EmbeddedData& chunk, std::uint32_t length, StripCoding& coding)
{
    if (length != kTablesLength)
        return Error::IllegalDataLength;
    StripCoding::QuantizationTables tables {};
    for (auto& table : tables) {
        for (std::uint16_t& divisor : table) {
            double value = 0;
            if (!chunk.readNumber(Element::UInt32, value))
                return Error::MissingData;
            if (value < 1 || value > 0xFFFF)
                return Error::IllegalDataValue;
            divisor = static_cast<std::uint16_t>(value);
        }
    }
    coding.tables = tables;
    return {};
}

/// Two words, of which only the kind of image can be told, then the nine factors, each in the low half of a word.
Status readColorConversion(EmbeddedData& chunk, std::uint32_t length, StripCoding& coding)
{
    if (length != kConversionLength)
        return Error::IllegalDataLength;
    double value = 0;
    for (int i = 0; i < 2; ++i)
        if (!chunk.readNumber(Element::UInt32, value))
            return Error::MissingData;
    for (auto& row : coding.conversion) {
        for (std::int16_t& factor : row) {
            if (!chunk.readNumber(Element::UInt32, value))
                return Error::MissingData;
            factor = static_cast<std::int16_t>(static_cast<std::uint16_t>(static_cast<std::uint32_t>(value)));
        }
    }
    return {};
}

Status decodeVendorStrip(VendorChunk kind, EmbeddedData& chunk, const StripCoding& coding, const BlockLayout& layout,
    std::uint32_t rows, RowSink& sink, WorkMeter& work)
{
    if (kind == VendorChunk::JpegStrip)
        return decodeJpegStrip(chunk, coding, layout, rows, false, sink, work);
    // In place of replacement rows some drivers send a whole JPEG stream. No strip of replacement rows can begin so: it
    // would put a pixel that nothing has named yet.
    const ByteView start = chunk.chunk();
    if (start.size >= 3 && start[0] == 0xFF && start[1] == 0xD8 && start[2] == 0xFF)
        return decodeJpegStrip(chunk, coding, layout, rows, true, sink, work);
    return decodeReplacementStrip(chunk, coding.isColor, layout.width, rows, sink);
}

} // namespace quillrip::pclxl
