#include "quillrip/emf/dib_reader.h"

#include "quillrip/emf/record.h"

#include <algorithm>
#include <cstring>

namespace quillrip::emf {

namespace {

constexpr std::int64_t kLongestSide = 65535;
/// Of what a few bytes can claim.
constexpr std::uint64_t kMostPixelsOfRuns = std::uint64_t { 1 } << 26;

enum : std::uint32_t {
    kRgb = 0,
    kRle8 = 1,
    kRle4 = 2,
    kBitFields = 3,
    kJpeg = 4,
    kPng = 5,
    kAlphaBitFields = 6,
    kCmyk = 0xB,
};

constexpr std::size_t kCoreHeader = 12;
constexpr std::size_t kInfoHeader = 40;
constexpr std::size_t kHeaderWithMasks = 52;
constexpr std::size_t kHeaderWithAlphaMask = 56;

struct Header {
    std::size_t size = 0;
    std::int64_t width = 0;
    std::int64_t height = 0;
    bool isTopDown = false;
    int bits = 0;
    std::uint32_t compression = kRgb;
    std::uint32_t imageSize = 0;
    std::uint32_t colorsUsed = 0;
    std::size_t masksAt = 0; ///< 0: none
    bool hasAlphaMask = false;
    std::size_t tableAt = 0;
    std::size_t entrySize = 4;
};

bool readHeader(const Fields& fields, Header& header)
{
    header.size = fields.u32(0);
    if (header.size == kCoreHeader) {
        header.width = fields.u16(4);
        header.height = fields.u16(6);
        header.bits = fields.u16(10);
        header.entrySize = 3;
        header.tableAt = kCoreHeader;
        return fields.size() >= kCoreHeader;
    }
    if (header.size < kInfoHeader || fields.size() < kInfoHeader)
        return false;
    header.width = fields.i32(4);
    header.height = fields.i32(8);
    header.isTopDown = header.height < 0;
    header.height = header.isTopDown ? -header.height : header.height;
    header.bits = fields.u16(14);
    header.compression = fields.u32(16);
    header.imageSize = fields.u32(20);
    header.colorsUsed = fields.u32(32);
    header.tableAt = header.size;
    const bool usesMasks = header.compression == kBitFields || header.compression == kAlphaBitFields;
    if (usesMasks) {
        header.masksAt = kInfoHeader;
        header.hasAlphaMask = header.size >= kHeaderWithAlphaMask || header.compression == kAlphaBitFields;
        if (header.size < kHeaderWithMasks)
            header.tableAt = kInfoHeader + (header.compression == kAlphaBitFields ? 16 : 12);
    }
    return true;
}

/// Colours that pixels of up to eight bits are numbers of.
std::vector<Rgb> readTable(const Fields& fields, const Header& header, const DibContext& context)
{
    if (header.bits > 8)
        return {};
    const std::size_t most = std::size_t { 1 } << header.bits;
    std::vector<Rgb> table(most);
    const auto fromPalette = [&](std::size_t index) {
        return context.palette && !context.palette->empty() ? (*context.palette)[index % context.palette->size()]
                                                            : Rgb {};
    };
    if (context.usage == ColorUsage::PaletteIndices) {
        if (header.bits == 1)
            return { context.monoColors[0], context.monoColors[1] };
        for (std::size_t i = 0; i < most; ++i)
            table[i] = fromPalette(i);
        return table;
    }
    if (context.usage == ColorUsage::Rgb && header.tableAt >= fields.size()) {
        // Some writers leave the table out where the header does not count its colours: black to white then.
        for (std::size_t i = 0; i < most; ++i) {
            const auto level = static_cast<std::uint8_t>(i * 255 / (most - 1));
            table[i] = { level, level, level };
        }
        return table;
    }
    const std::size_t count = header.colorsUsed == 0 ? most : std::min<std::size_t>(header.colorsUsed, most);
    for (std::size_t i = 0; i < count; ++i) {
        if (context.usage == ColorUsage::PaletteEntries) {
            table[i] = fromPalette(fields.u16(header.tableAt + 2 * i));
        } else {
            const std::size_t at = header.tableAt + header.entrySize * i;
            table[i] = { fields.u8(at + 2), fields.u8(at + 1), fields.u8(at) };
        }
    }
    return table;
}

void decodeIndexedRow(
    const std::uint8_t* from, int bits, std::size_t width, const std::vector<Rgb>& table, std::uint8_t* to)
{
    for (std::size_t x = 0; x < width; ++x) {
        const std::size_t bit = x * static_cast<std::size_t>(bits);
        const unsigned index = from[bit / 8] >> (8 - static_cast<unsigned>(bits) - bit % 8) & ((1u << bits) - 1);
        const Rgb color = table[index];
        to[3 * x] = color.red;
        to[3 * x + 1] = color.green;
        to[3 * x + 2] = color.blue;
    }
}

DibChannels readChannels(const Fields& fields, const Header& header)
{
    if (header.masksAt > 0) {
        const std::size_t at = header.masksAt;
        return { DibChannel(fields.u32(at)), DibChannel(fields.u32(at + 4)), DibChannel(fields.u32(at + 8)),
            DibChannel(header.hasAlphaMask ? fields.u32(at + 12) : 0) };
    }
    if (header.bits == 16)
        return { DibChannel(0x7C00), DibChannel(0x03E0), DibChannel(0x001F), {} };
    return { DibChannel(0xFF0000), DibChannel(0xFF00), DibChannel(0xFF), {} };
}

void decodeWordRow(const std::uint8_t* from, int bits, std::size_t width, const DibChannels& channels, bool withFourth,
    std::uint8_t* to)
{
    for (std::size_t x = 0; x < width; ++x) {
        std::uint32_t word = 0;
        const std::size_t bytes = static_cast<std::size_t>(bits) / 8;
        for (std::size_t i = bytes; i-- > 0;)
            word = word << 8 | from[x * bytes + i];
        std::uint8_t* const pixel = to + x * (withFourth ? 4 : 3);
        pixel[0] = channels.red.of(word);
        pixel[1] = channels.green.of(word);
        pixel[2] = channels.blue.of(word);
        if (withFourth)
            pixel[3] = channels.alpha.mask != 0 ? channels.alpha.of(word) : static_cast<std::uint8_t>(word >> 24);
    }
}

void decodeTripleRow(const std::uint8_t* from, std::size_t width, std::uint8_t* to)
{
    for (std::size_t x = 0; x < width; ++x, from += 3, to += 3) {
        to[0] = from[2];
        to[1] = from[1];
        to[2] = from[0];
    }
}

} // namespace

DibChannel::DibChannel(std::uint32_t bits)
    : mask(bits)
{
    if (mask == 0)
        return;
    while ((mask >> shift & 1) == 0)
        ++shift;
    while (shift + width < 32 && (mask >> (shift + width) & 1) != 0)
        ++width;
}

std::optional<ByteView> DibReader::imageFile(ByteView headerBytes, ByteView bits)
{
    Header header;
    if (!readHeader(Fields(headerBytes), header))
        return std::nullopt;
    if (header.compression != kJpeg && header.compression != kPng && header.bits != 0)
        return std::nullopt;
    return header.imageSize > 0 ? bits.sub(0, header.imageSize) : bits;
}

bool DibReader::open(ByteView headerBytes, ByteView bits, const DibContext& context, std::string& problem)
{
    const Fields fields(headerBytes);
    Header header;
    if (!readHeader(fields, header)) {
        problem = "its header cannot be read";
        return false;
    }
    if (header.compression >= kCmyk) {
        problem = "its colours are CMYK, which is not drawn";
        return false;
    }
    const bool isKnownDepth = header.bits == 1 || header.bits == 4 || header.bits == 8 || header.bits == 16
        || header.bits == 24 || header.bits == 32;
    const bool isRuns
        = (header.compression == kRle8 && header.bits == 8) || (header.compression == kRle4 && header.bits == 4);
    const bool isSizeGood = header.width >= 1 && header.height >= 1 && header.width <= kLongestSide
        && header.height <= kLongestSide
        && static_cast<std::uint64_t>(header.width * header.height) <= (isRuns ? kMostPixelsOfRuns : kMostDibPixels);
    if (!isKnownDepth || !isSizeGood) {
        problem = isKnownDepth ? "its size is impossible" : "its depth is impossible";
        return false;
    }
    const std::int64_t stored
        = context.storedRows >= 0 ? std::min<std::int64_t>(context.storedRows, header.height) : header.height;
    if (stored < 1) {
        problem = "it has no rows";
        return false;
    }
    const auto width = static_cast<std::size_t>(header.width);
    m_table = readTable(fields, header, context);
    m_channels = readChannels(fields, header);
    m_depth = header.bits;
    m_stride = (width * static_cast<std::size_t>(header.bits) + 31) / 32 * 4;
    m_bits = bits;
    m_isRuns = isRuns;
    if (isRuns) {
        m_runs = RunLengthRows(bits, width, static_cast<std::size_t>(stored),
            header.compression == kRle4 ? RunLengthRows::Coding::Nibbles : RunLengthRows::Coding::Bytes);
    }
    m_shape.format = m_depth == 1 ? PictureShape::Format::Mono
        : m_depth == 32           ? PictureShape::Format::Rgba32
                                  : PictureShape::Format::Rgb24;
    m_shape.width = static_cast<int>(header.width);
    m_shape.height = static_cast<int>(stored);
    m_shape.isBottomUp = !header.isTopDown;
    if (m_depth == 1)
        m_shape.table = { m_table[0], m_table[1] };
    m_shape.hasAlpha = m_depth == 32 && m_channels.alpha.mask != 0;
    // What no run reaches has the first colour: the coding has no end that could be missing.
    m_rows = static_cast<std::size_t>(stored);
    if (!isRuns)
        m_rows = std::min(m_rows, m_bits.size / m_stride);
    if (m_rows < static_cast<std::size_t>(stored))
        problem = "it ends before its last row";
    // Nothing is drawn of a picture of which no row came.
    return m_rows > 0;
}

void DibReader::row(int y, std::uint8_t* to) const
{
    const auto index = static_cast<std::size_t>(m_shape.isBottomUp ? m_shape.height - 1 - y : y);
    if (index >= m_rows) {
        std::memset(to, 0xFF, m_shape.rowBytes());
        return;
    }
    if (m_isRuns)
        return m_runs.row(index, m_table, to);
    const std::uint8_t* const from = m_bits.data + index * m_stride;
    const auto width = static_cast<std::size_t>(m_shape.width);
    if (m_depth == 1)
        std::memcpy(to, from, m_shape.rowBytes());
    else if (m_depth == 24)
        decodeTripleRow(from, width, to);
    else if (m_depth > 8)
        decodeWordRow(from, m_depth, width, m_channels, m_depth == 32, to);
    else
        decodeIndexedRow(from, m_depth, width, m_table, to);
}

} // namespace quillrip::emf
