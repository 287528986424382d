#include "quillrip/emf/dib.h"

#include "quillrip/emf/record.h"

#include <algorithm>
#include <cstring>

namespace quillrip::emf {

namespace {

constexpr std::int64_t kLongestSide = 65535;
constexpr std::uint64_t kMostPixels = std::uint64_t { 1 } << 27;
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
constexpr std::size_t kFileHeader = 14;

/// A run of bits in a pixel's word.
struct Channel {
    std::uint32_t mask = 0;
    int shift = 0;
    int width = 0;

    Channel() = default;
    explicit Channel(std::uint32_t bits)
        : mask(bits)
    {
        if (mask == 0)
            return;
        while ((mask >> shift & 1) == 0)
            ++shift;
        while (shift + width < 32 && (mask >> (shift + width) & 1) != 0)
            ++width;
    }
    /// As many bits as there are, said again until there are eight: what Windows does.
    std::uint8_t of(std::uint32_t word) const
    {
        if (width == 0)
            return 0;
        const std::uint64_t value = (word & mask) >> shift & ((std::uint64_t { 1 } << width) - 1);
        if (width >= 8)
            return static_cast<std::uint8_t>(value >> (width - 8));
        std::uint64_t repeated = 0;
        int bits = 0;
        for (; bits < 8; bits += width)
            repeated = repeated << width | value;
        return static_cast<std::uint8_t>(repeated >> (bits - 8));
    }
};

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

/// Numbers of colours from run-length coding, one byte a pixel, rows from the bottom.
std::vector<std::uint8_t> unpackRuns(ByteView bytes, std::size_t width, std::size_t height, bool isNibbles)
{
    enum : std::uint8_t { kEndOfLine = 0, kEndOfBitmap = 1, kDelta = 2 };
    std::vector<std::uint8_t> pixels(width * height);
    std::size_t x = 0;
    std::size_t y = 0;
    std::size_t at = 0;
    const auto put = [&](std::uint8_t value) {
        if (x < width && y < height)
            pixels[y * width + x] = value;
        ++x;
    };
    while (at + 1 < bytes.size && y < height) {
        const std::uint8_t count = bytes[at];
        const std::uint8_t value = bytes[at + 1];
        at += 2;
        const auto nibble = [](std::uint8_t byte, std::size_t i) {
            return static_cast<std::uint8_t>(i % 2 == 0 ? byte >> 4 : byte & 0xF);
        };
        if (count > 0) {
            for (std::size_t i = 0; i < count; ++i)
                put(isNibbles ? nibble(value, i) : value);
        } else if (value == kEndOfLine) {
            x = 0;
            ++y;
        } else if (value == kEndOfBitmap) {
            break;
        } else if (value == kDelta) {
            if (at + 1 >= bytes.size)
                break;
            x += bytes[at];
            y += bytes[at + 1];
            at += 2;
        } else {
            for (std::size_t i = 0; i < value; ++i) {
                const std::size_t from = at + (isNibbles ? i / 2 : i);
                if (from >= bytes.size)
                    return pixels;
                put(isNibbles ? nibble(bytes[from], i) : bytes[from]);
            }
            const std::size_t used = isNibbles ? (value + std::size_t { 1 }) / 2 : value;
            at += (used + 1) / 2 * 2;
        }
    }
    return pixels;
}

void setSize(Pixels& pixels, Pixels::Format format, const Header& header, int height)
{
    pixels.format = format;
    pixels.width = static_cast<int>(header.width);
    pixels.height = height;
    const auto width = static_cast<std::size_t>(header.width);
    pixels.stride = format == Pixels::Format::Mono ? (width + 7) / 8
        : format == Pixels::Format::Rgb24          ? width * 3
                                                   : width * 4;
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

struct Channels {
    Channel red;
    Channel green;
    Channel blue;
    Channel alpha;
};

Channels readChannels(const Fields& fields, const Header& header)
{
    if (header.masksAt > 0) {
        const std::size_t at = header.masksAt;
        return { Channel(fields.u32(at)), Channel(fields.u32(at + 4)), Channel(fields.u32(at + 8)),
            Channel(header.hasAlphaMask ? fields.u32(at + 12) : 0) };
    }
    if (header.bits == 16)
        return { Channel(0x7C00), Channel(0x03E0), Channel(0x001F), {} };
    return { Channel(0xFF0000), Channel(0xFF00), Channel(0xFF), {} };
}

void decodeWordRow(
    const std::uint8_t* from, int bits, std::size_t width, const Channels& channels, bool withFourth, std::uint8_t* to)
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

Rgb Pixels::color(int x, int y) const
{
    const std::uint8_t* const line = row(y);
    if (format == Format::Mono)
        return table[line[x / 8] >> (7 - x % 8) & 1];
    const std::uint8_t* const pixel = line + static_cast<std::size_t>(x) * (format == Format::Rgb24 ? 3 : 4);
    return { pixel[0], pixel[1], pixel[2] };
}

Pixels Pixels::toRgb() &&
{
    if (format == Format::Rgb24 || isNull())
        return std::move(*this);
    Pixels result;
    result.width = width;
    result.height = height;
    result.isBottomUp = isBottomUp;
    result.stride = static_cast<std::size_t>(width) * 3;
    result.bytes.resize(result.stride * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y) {
        std::uint8_t* to = result.row(y);
        for (int x = 0; x < width; ++x, to += 3) {
            const Rgb pixel = color(x, y);
            to[0] = pixel.red;
            to[1] = pixel.green;
            to[2] = pixel.blue;
        }
    }
    return result;
}

Pixels decodeDib(ByteView headerBytes, ByteView bits, const DibContext& context, std::string& problem)
{
    problem.clear();
    const Fields fields(headerBytes);
    Header header;
    if (!readHeader(fields, header)) {
        problem = "its header cannot be read";
        return {};
    }
    if (header.compression == kJpeg || header.compression == kPng || header.bits == 0) {
        const ByteView file = header.imageSize > 0 ? bits.sub(0, header.imageSize) : bits;
        const bool isPng = file.size > 1 && file[0] == 0x89 && file[1] == 'P';
        return isPng ? decodePng(file, kMostPixels, problem) : decodeJpeg(file, kMostPixels, problem);
    }
    if (header.compression >= kCmyk) {
        problem = "its colours are CMYK, which is not drawn";
        return {};
    }
    const bool isKnownDepth = header.bits == 1 || header.bits == 4 || header.bits == 8 || header.bits == 16
        || header.bits == 24 || header.bits == 32;
    const bool isSizeGood = header.width >= 1 && header.height >= 1 && header.width <= kLongestSide
        && header.height <= kLongestSide && static_cast<std::uint64_t>(header.width * header.height) <= kMostPixels;
    if (!isKnownDepth || !isSizeGood) {
        problem = isKnownDepth ? "its size is impossible" : "its depth is impossible";
        return {};
    }

    const auto width = static_cast<std::size_t>(header.width);
    const std::int64_t stored
        = context.storedRows >= 0 ? std::min<std::int64_t>(context.storedRows, header.height) : header.height;
    if (stored < 1) {
        problem = "it has no rows";
        return {};
    }
    std::size_t stride = (width * static_cast<std::size_t>(header.bits) + 31) / 32 * 4;
    const bool isRuns
        = (header.compression == kRle8 && header.bits == 8) || (header.compression == kRle4 && header.bits == 4);
    std::vector<std::uint8_t> unpacked;
    int depth = header.bits;
    if (isRuns && static_cast<std::uint64_t>(header.width * header.height) > kMostPixelsOfRuns) {
        problem = "its size is impossible";
        return {};
    }
    if (isRuns) {
        expectPixels(width, static_cast<std::uint64_t>(stored));
        unpacked = unpackRuns(bits, width, static_cast<std::size_t>(stored), header.compression == kRle4);
        bits = unpacked;
        stride = width;
    }
    const std::vector<Rgb> table = readTable(fields, header, context);
    std::vector<Rgb> bytesTable;
    if (isRuns) {
        bytesTable = table;
        bytesTable.resize(256);
        depth = 8;
    }
    const bool withFourth = depth == 32;
    Pixels pixels;
    setSize(pixels,
        depth == 1       ? Pixels::Format::Mono
            : withFourth ? Pixels::Format::Rgba32
                         : Pixels::Format::Rgb24,
        header, static_cast<int>(stored));
    pixels.isBottomUp = !header.isTopDown;
    if (depth == 1)
        pixels.table = { table[0], table[1] };
    const Channels channels = readChannels(fields, header);
    pixels.hasAlpha = withFourth && channels.alpha.mask != 0;

    const std::size_t rows = std::min<std::size_t>(static_cast<std::size_t>(stored), bits.size / stride);
    if (rows < static_cast<std::size_t>(stored))
        problem = "it ends before its last row";
    // Rows that are missing are white; nothing is reserved for a picture of which no row came.
    if (rows == 0)
        return {};
    pixels.bytes.resize(pixels.stride * static_cast<std::size_t>(stored), 0xFF);
    for (std::size_t i = 0; i < rows; ++i) {
        const std::uint8_t* const from = bits.data + i * stride;
        std::uint8_t* const to
            = pixels.row(static_cast<int>(header.isTopDown ? i : static_cast<std::size_t>(stored) - 1 - i));
        if (depth == 1)
            std::memcpy(to, from, pixels.stride);
        else if (depth == 24)
            decodeTripleRow(from, width, to);
        else if (depth > 8)
            decodeWordRow(from, depth, width, channels, withFourth, to);
        else
            decodeIndexedRow(from, depth, width, isRuns ? bytesTable : table, to);
    }
    return pixels;
}

Pixels decodeBitmapFile(ByteView file, std::string& problem)
{
    const Fields fields(file);
    if (file.size < kFileHeader || fields.u16(0) != 0x4D42) {
        problem = "it is no bitmap file";
        return {};
    }
    return decodeDib(file.sub(kFileHeader), file.sub(fields.u32(10)), {}, problem);
}

} // namespace quillrip::emf
