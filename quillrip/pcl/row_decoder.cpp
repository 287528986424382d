#include "quillrip/pcl/row_decoder.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace quillrip::pcl {

namespace {

/// Writes to a row from its start on; what goes beyond the end is dropped.
class RowWriter {
public:
    explicit RowWriter(std::vector<std::uint8_t>& row)
        : m_row(row)
    {
    }

    void copy(const std::uint8_t* bytes, std::size_t count)
    {
        const std::size_t fits = std::min(count, room());
        if (fits)
            std::memcpy(m_row.data() + m_at, bytes, fits);
        skip(count);
    }
    void fill(std::uint8_t byte, std::size_t count)
    {
        const std::size_t fits = std::min(count, room());
        if (fits)
            std::memset(m_row.data() + m_at, byte, fits);
        skip(count);
    }
    void skip(std::size_t count) { m_at += std::min(count, room()); }
    void clearRest() { fill(0, room()); }

private:
    std::size_t room() const { return m_row.size() - m_at; }

    std::vector<std::uint8_t>& m_row;
    std::size_t m_at = 0;
};

/// A field that is continued by further bytes when it holds its largest value: they are added up to the first that is
/// not 255.
std::size_t extended(std::size_t field, std::size_t largest, ByteReader& reader)
{
    if (field != largest)
        return field;
    while (const auto more = reader.readU8()) {
        field += *more;
        if (*more != 255)
            break;
    }
    return field;
}

} // namespace

void decodeUncompressed(ByteView data, std::vector<std::uint8_t>& row)
{
    RowWriter out { row };
    out.copy(data.data, data.size);
    out.clearRest();
}

void decodeRunLength(ByteView data, std::vector<std::uint8_t>& row)
{
    RowWriter out { row };
    for (std::size_t i = 0; i + 1 < data.size; i += 2)
        out.fill(data[i + 1], std::size_t { data[i] } + 1);
    out.clearRest();
}

void decodePackBits(ByteView data, std::vector<std::uint8_t>& row)
{
    RowWriter out { row };
    std::size_t i = 0;
    while (i < data.size) {
        const std::uint8_t control = data[i++];
        if (control < 128) {
            // The command's byte count wins over a literal that runs past it.
            const ByteView literal = data.sub(i, std::size_t { control } + 1);
            out.copy(literal.data, literal.size);
            i += literal.size;
        } else if (control > 128 && i < data.size) {
            out.fill(data[i++], 257u - control);
        }
    }
    out.clearRest();
}

void decodeDeltaRow(ByteView data, std::vector<std::uint8_t>& row)
{
    RowWriter out { row };
    ByteReader reader { data };
    while (const auto command = reader.readU8()) {
        const std::size_t count = (*command >> 5) + 1u;
        out.skip(extended(*command & 31u, 31, reader));
        const ByteView replacement = reader.takeUpTo(count);
        out.copy(replacement.data, replacement.size);
    }
}

namespace {

/// One command of method 9. False when the data ended before or within it.
bool replaceRun(ByteReader& reader, RowWriter& out)
{
    const auto command = reader.readU8();
    if (!command)
        return false;
    if (*command & 0x80) {
        out.skip(extended((*command >> 5) & 3u, 3, reader));
        const std::size_t count = extended(*command & 31u, 31, reader) + 2;
        const auto byte = reader.readU8();
        if (byte)
            out.fill(*byte, count);
        return byte.has_value();
    }
    out.skip(extended((*command >> 3) & 15u, 15, reader));
    const std::size_t count = extended(*command & 7u, 7, reader) + 1;
    const ByteView literal = reader.takeUpTo(count);
    out.copy(literal.data, literal.size);
    return literal.size == count;
}

} // namespace

void decodeCompressedReplacement(ByteView data, std::vector<std::uint8_t>& row)
{
    RowWriter out { row };
    ByteReader reader { data };
    while (replaceRun(reader, out)) { }
}

namespace {

using Pixel = std::array<std::uint8_t, 3>;

/// The pixels of one row while method 10 turns the seed row, in place, into the new one.
class NearLosslessRow {
public:
    NearLosslessRow(ByteView data, std::vector<std::uint8_t>& row)
        : m_reader(data)
        , m_row(row)
        , m_pixels(row.size() / 3)
    {
    }

    void decode()
    {
        while (const auto command = m_reader.readU8()) {
            const unsigned source = (*command >> 5) & 3u;
            m_at += std::min(extended((*command >> 3) & 3u, 3, m_reader), m_pixels - m_at);
            if (*command & 0x80)
                run(source, *command & 7u);
            else
                literal(source, *command & 7u);
        }
    }

private:
    Pixel pixelAt(std::size_t index) const
    {
        if (index >= m_pixels)
            return { 255, 255, 255 };
        return { m_row[index * 3], m_row[index * 3 + 1], m_row[index * 3 + 2] };
    }
    void put(const Pixel& pixel)
    {
        if (m_at >= m_pixels)
            return;
        std::copy(pixel.begin(), pixel.end(), m_row.begin() + static_cast<std::ptrdiff_t>(m_at * 3));
        ++m_at;
    }

    // The lowest bit of blue is not transmitted: full white comes back as full white.
    static Pixel rounded(Pixel pixel)
    {
        if (pixel[0] == 255 && pixel[1] == 255 && pixel[2] == 254)
            pixel[2] = 255;
        return pixel;
    }

    bool codedPixel(Pixel& pixel)
    {
        const auto first = m_reader.readU8();
        if (!first)
            return false;
        const auto signedFive = [](unsigned bits) { return static_cast<int>(bits & 31u) - ((bits & 16u) ? 32 : 0); };
        if (*first & 0x80) {
            const unsigned word = (static_cast<unsigned>(*first) << 8) | m_reader.readU8().value_or(0);
            const Pixel seed = pixelAt(m_at);
            pixel = { static_cast<std::uint8_t>(seed[0] + signedFive(word >> 10)),
                static_cast<std::uint8_t>(seed[1] + signedFive(word >> 5)),
                static_cast<std::uint8_t>((seed[2] & 0xFE) + 2 * signedFive(word)) };
        } else {
            const unsigned second = m_reader.readU8().value_or(0);
            const unsigned third = m_reader.readU8().value_or(0);
            const unsigned bits = ((static_cast<unsigned>(*first) << 16) | (second << 8) | third) << 1;
            pixel = { static_cast<std::uint8_t>(bits >> 16), static_cast<std::uint8_t>(bits >> 8),
                static_cast<std::uint8_t>(bits) };
        }
        pixel = rounded(pixel);
        return true;
    }

    bool firstPixel(unsigned source, Pixel& pixel)
    {
        switch (source) {
        case 0:
            if (!codedPixel(pixel))
                return false;
            m_cached = pixel;
            return true;
        case 1:
            pixel = m_at > 0 ? pixelAt(m_at - 1) : Pixel { 255, 255, 255 };
            return true;
        case 2:
            pixel = pixelAt(m_at + 1);
            return true;
        default:
            pixel = m_cached;
            return true;
        }
    }

    void run(unsigned source, std::size_t field)
    {
        Pixel pixel {};
        if (!firstPixel(source, pixel))
            return;
        const std::size_t count = extended(field, 7, m_reader) + 2;
        for (std::size_t i = 0; i < count && m_at < m_pixels; ++i)
            put(pixel);
    }

    void literal(unsigned source, std::size_t field)
    {
        Pixel pixel {};
        if (!firstPixel(source, pixel))
            return;
        put(pixel);
        std::size_t remaining = field;
        // After the eighth pixel, and after each further 255, comes the number of those that follow.
        bool more = field == 7;
        while (remaining > 0 || more) {
            if (remaining == 0) {
                const auto extension = m_reader.readU8();
                if (!extension)
                    return;
                remaining = *extension;
                more = *extension == 255;
                continue;
            }
            if (!codedPixel(pixel))
                return;
            put(pixel);
            --remaining;
        }
    }

    ByteReader m_reader;
    std::vector<std::uint8_t>& m_row;
    std::size_t m_pixels;
    std::size_t m_at = 0;
    Pixel m_cached { 255, 255, 255 };
};

} // namespace

void decodeNearLossless(ByteView data, std::vector<std::uint8_t>& row) { NearLosslessRow(data, row).decode(); }

bool decodeRow(int method, ByteView data, std::vector<std::uint8_t>& row)
{
    switch (method) {
    case 0:
        decodeUncompressed(data, row);
        return true;
    case 1:
        decodeRunLength(data, row);
        return true;
    case 2:
        decodePackBits(data, row);
        return true;
    case 3:
        decodeDeltaRow(data, row);
        return true;
    case 9:
        decodeCompressedReplacement(data, row);
        return true;
    case 10:
        decodeNearLossless(data, row);
        return true;
    default:
        return false;
    }
}

bool decodeAdaptive(ByteView data, std::vector<std::uint8_t>& row, const std::function<bool(int)>& emit)
{
    ByteReader reader { data };
    while (reader.remaining() >= 3) {
        const int command = *reader.readU8();
        const int count = *reader.readU16BigEndian();
        if (command <= 3) {
            const ByteView bytes = reader.takeUpTo(static_cast<std::size_t>(count));
            decodeRow(command, bytes, row);
            if (!emit(1))
                return true;
            if (bytes.size < static_cast<std::size_t>(count))
                return false;
        } else if (command == 4 || command == 5) {
            if (command == 4)
                std::fill(row.begin(), row.end(), std::uint8_t { 0 });
            if (count > 0 && !emit(count))
                return true;
        } else {
            return false;
        }
    }
    return reader.remaining() == 0;
}

bool decodeCountedReplacement(ByteView data, std::vector<std::uint8_t>& row, const std::function<bool(int)>& emit)
{
    constexpr std::uint8_t kBlank = 255;
    ByteReader reader { data };
    const std::uint16_t rows = reader.readU16BigEndian().value_or(0);
    for (std::uint16_t i = 0; i < rows; ++i) {
        const auto commands = reader.readU8();
        if (!commands)
            return false;
        if (*commands == kBlank) {
            std::fill(row.begin(), row.end(), std::uint8_t { 0 });
        } else {
            RowWriter out { row };
            for (int left = *commands; left > 0; --left) {
                if (!replaceRun(reader, out))
                    return false;
            }
        }
        if (!emit(1))
            return true;
    }
    return reader.remaining() == 0;
}

} // namespace quillrip::pcl
