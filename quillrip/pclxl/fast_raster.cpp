#include "quillrip/pclxl/fast_raster.h"

#include <algorithm>
#include <vector>

namespace quillrip::pclxl {

namespace {

constexpr int kBlackPlane = 3;
constexpr std::size_t kPeriod = 16; ///< bytes after which a run repeats
constexpr std::uint8_t kFirstCached = 0xFF;
constexpr std::uint8_t kOneMore = 254; ///< as an extension: one more byte is added
constexpr std::uint8_t kWordMore = 255;

/// Where the first byte that a command puts comes from.
enum class Origin : std::uint8_t { New, SeedBehind, SeedBefore, Cached };

class Decoder {
public:
    Decoder(EmbeddedData& data, std::size_t rowBytes)
        : m_data(data)
        , m_rowBytes(rowBytes)
        // A row has its own past before it, where runs at its beginning look back to.
        , m_row(kPeriod + rowBytes)
        , m_seed(rowBytes)
    {
    }

    /// False when the data end before the row does.
    bool decodeRow()
    {
        std::copy(m_row.begin() + kPeriod, m_row.end(), m_seed.begin());
        std::size_t at = 0;
        while (at < m_rowBytes) {
            const int command = m_data.get();
            if (command < 0 || !runCommand(static_cast<unsigned>(command), at))
                return false;
        }
        return true;
    }

    const std::uint8_t* row() const { return m_row.data() + kPeriod; }

private:
    bool runCommand(unsigned command, std::size_t& at)
    {
        const bool isRun = (command & 0x80) != 0;
        const Origin origin = static_cast<Origin>(command >> 5 & 3);
        std::size_t copied = command >> 3 & 3;
        std::size_t count = command & 7;
        // The row starts as a copy of the seed: what is copied need not be touched.
        if (copied == 3 && !extend(copied))
            return false;
        at += std::min(copied, m_rowBytes - at);
        if (at == m_rowBytes)
            return true;
        if (!readFirst(origin, at))
            return false;
        if (count == 7 && !extend(count))
            return false;
        ++at;
        const std::size_t room = m_rowBytes - at;
        if (!isRun)
            return readLiterals(count, at);
        for (std::size_t left = std::min(count + 1, room); left > 0; --left, ++at)
            m_row[kPeriod + at] = m_row[at];
        return true;
    }

    bool readFirst(Origin origin, std::size_t at)
    {
        std::uint8_t& first = m_row[kPeriod + at];
        switch (origin) {
        case Origin::New: {
            const int byte = m_data.get();
            if (byte < 0)
                return false;
            first = m_cached = static_cast<std::uint8_t>(byte);
            break;
        }
        case Origin::SeedBehind:
            first = at + 1 < m_rowBytes ? m_seed[at + 1] : std::uint8_t { 0 };
            break;
        case Origin::SeedBefore:
            first = at > 0 ? m_seed[at - 1] : std::uint8_t { 0 };
            break;
        case Origin::Cached:
            first = m_cached;
            break;
        }
        return true;
    }

    /// Those that the row has no room for are taken all the same.
    bool readLiterals(std::size_t count, std::size_t& at)
    {
        for (; count > 0; --count) {
            const int byte = m_data.get();
            if (byte < 0)
                return false;
            if (at < m_rowBytes)
                m_row[kPeriod + at++] = static_cast<std::uint8_t>(byte);
        }
        return true;
    }

    bool extend(std::size_t& number)
    {
        const int byte = m_data.get();
        if (byte < 0)
            return false;
        number += static_cast<std::size_t>(byte);
        if (byte == kOneMore || byte == kWordMore) {
            double more = 0;
            if (!m_data.readNumber(byte == kOneMore ? Element::UByte : Element::UInt16, more))
                return false;
            number += static_cast<std::size_t>(more);
        }
        return true;
    }

    EmbeddedData& m_data;
    std::size_t m_rowBytes;
    std::vector<std::uint8_t> m_row;
    std::vector<std::uint8_t> m_seed;
    std::uint8_t m_cached = kFirstCached;
};

} // namespace

bool FastRasterStrip::isKnown() const
{
    return resolution > 0 && plane == kBlackPlane && bitsPerPixel == 1 && (code == Code::Raw || code == Code::Delta);
}

Status readFastRasterHeader(EmbeddedData& data, FastRasterStrip& strip)
{
    bool isWhole = true;
    const auto next = [&](Element element) {
        double value = 0;
        isWhole = isWhole && data.readNumber(element, value);
        return value;
    };
    next(Element::UByte); // base
    next(Element::UByte); // page
    strip.resolution = static_cast<int>(next(Element::UInt16));
    strip.code = static_cast<FastRasterStrip::Code>(static_cast<std::uint16_t>(next(Element::UInt16)));
    strip.plane = static_cast<int>(next(Element::UByte));
    next(Element::UByte); // ratio
    next(Element::UInt32); // product
    strip.dataBytes = static_cast<std::uint32_t>(next(Element::UInt32));
    strip.rowBytes = static_cast<std::size_t>(next(Element::UInt16)) / 8;
    strip.rows = static_cast<std::uint32_t>(next(Element::UInt16));
    strip.x = static_cast<int>(next(Element::UInt16));
    strip.y = static_cast<int>(next(Element::UInt16));
    strip.bitsPerPixel = static_cast<int>(next(Element::UByte));
    return isWhole ? Status() : Status(Error::MissingData, Attribute::VUDataLength);
}

Status decodeFastRaster(EmbeddedData& data, const FastRasterStrip& strip, std::uint32_t rows, RowSink& sink)
{
    if (strip.code == FastRasterStrip::Code::Raw) {
        std::vector<std::uint8_t> row(strip.rowBytes);
        for (std::uint32_t y = 0; y < rows; ++y) {
            if (data.read(row.data(), row.size()) != row.size())
                return { Error::MissingData, Attribute::VUDataLength };
            sink.row(row.data());
        }
        return {};
    }
    Decoder decoder(data, strip.rowBytes);
    for (std::uint32_t y = 0; y < rows; ++y) {
        if (!decoder.decodeRow())
            return { Error::MissingData, Attribute::VUDataLength };
        sink.row(decoder.row());
    }
    return {};
}

} // namespace quillrip::pclxl
