#include "quillrip/emf/plus/pixel_formats.h"

#include "quillrip/emf/plus/field_reader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace quillrip::emf::plus {

namespace {

/// The low byte of a pixel format numbers it; the next one gives its bits.
enum Format : std::uint8_t {
    kIndexed1 = 1,
    kIndexed4 = 2,
    kIndexed8 = 3,
    kGray16 = 4,
    kRgb555 = 5,
    kRgb565 = 6,
    kArgb1555 = 7,
    kRgb24 = 8,
    kRgb32 = 9,
    kArgb32 = 10,
    kPremultiplied32 = 11,
    kRgb48 = 12,
    kArgb64 = 13,
    kPremultiplied64 = 14,
};

constexpr int kLongestSide = 65535;

int bitsOf(std::uint8_t format)
{
    constexpr std::array<std::uint8_t, 15> bits { 0, 1, 4, 8, 16, 16, 16, 16, 24, 32, 32, 32, 48, 64, 64 };
    return format < bits.size() ? bits[format] : 0;
}

std::uint8_t widened(unsigned value, unsigned most)
{
    return static_cast<std::uint8_t>((value * 255 + most / 2) / most);
}

std::uint8_t unmultiplied(unsigned value, unsigned alpha)
{
    return alpha == 0 ? std::uint8_t { 0 }
                      : static_cast<std::uint8_t>(std::min(255U, (value * 255 + alpha / 2) / alpha));
}

/// Formats of 16 bits a channel are linear in light, from 0 to 0x2000.
constexpr unsigned kLinearWhite = 0x2000;

std::uint8_t encoded(unsigned linear)
{
    static const std::array<std::uint8_t, kLinearWhite + 1> table = [] {
        std::array<std::uint8_t, kLinearWhite + 1> values {};
        for (unsigned i = 0; i <= kLinearWhite; ++i) {
            const double light = static_cast<double>(i) / kLinearWhite;
            const double value = light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
            values[i] = static_cast<std::uint8_t>(value * 255 + 0.5);
        }
        return values;
    }();
    return table[std::min(linear, kLinearWhite)];
}

unsigned wordAt(const std::uint8_t* at) { return at[0] | unsigned { at[1] } << 8; }

Rgba wideColor(const std::uint8_t* at, std::uint8_t format)
{
    if (format == kRgb48)
        return { encoded(wordAt(at + 4)), encoded(wordAt(at + 2)), encoded(wordAt(at)), 255 };
    const unsigned alpha = std::min(wordAt(at + 6), kLinearWhite);
    const auto channel = [&](int offset) {
        const unsigned value = wordAt(at + offset);
        if (format == kArgb64)
            return encoded(value);
        return alpha == 0 ? std::uint8_t { 0 } : encoded(std::min(value, alpha) * kLinearWhite / alpha);
    };
    return { channel(4), channel(2), channel(0), widened(alpha, kLinearWhite) };
}

Rgba colorAt(const std::uint8_t* at, std::uint8_t format)
{
    switch (format) {
    case kGray16: {
        const std::uint8_t gray = at[1];
        return { gray, gray, gray, 255 };
    }
    case kRgb555:
    case kArgb1555: {
        const unsigned word = wordAt(at);
        const bool isOpaque = format == kRgb555 || word >> 15;
        return { widened(word >> 10 & 31, 31), widened(word >> 5 & 31, 31), widened(word & 31, 31),
            isOpaque ? std::uint8_t { 255 } : std::uint8_t { 0 } };
    }
    case kRgb565: {
        const unsigned word = wordAt(at);
        return { widened(word >> 11, 31), widened(word >> 5 & 63, 63), widened(word & 31, 31), 255 };
    }
    case kRgb24:
    case kRgb32:
        return { at[2], at[1], at[0], 255 };
    case kArgb32:
        return { at[2], at[1], at[0], at[3] };
    case kPremultiplied32:
        return { unmultiplied(at[2], at[3]), unmultiplied(at[1], at[3]), unmultiplied(at[0], at[3]), at[3] };
    default:
        return wideColor(at, format);
    }
}

std::vector<Rgba> readPalette(FieldReader& fields)
{
    constexpr std::uint32_t mostEntries = 256;
    fields.u32(); // flags: what kinds of colours they are
    const std::uint32_t count = fields.u32();
    std::vector<Rgba> palette;
    if (count > mostEntries || !fields.has(count, 4)) {
        fields.fail();
        return palette;
    }
    for (std::uint32_t i = 0; i < count; ++i)
        palette.push_back(fields.color());
    return palette;
}

void store(Rgba color, std::uint8_t* to)
{
    to[0] = color.red;
    to[1] = color.green;
    to[2] = color.blue;
    to[3] = color.alpha;
}

} // namespace

Pixels decodePixels(const ImageObject& image, std::string& problem)
{
    const auto format = static_cast<std::uint8_t>(image.format & 0xFF);
    const int bits = bitsOf(format);
    if (bits == 0) {
        problem = "its pixel format is not known";
        return {};
    }
    if (image.width < 1 || image.height < 1 || image.width > kLongestSide || image.height > kLongestSide
        || static_cast<std::uint64_t>(image.width) * static_cast<std::uint64_t>(image.height) > kMostImagePixels) {
        problem = "its size cannot be";
        return {};
    }
    FieldReader fields(image.bytes);
    std::vector<Rgba> palette;
    if (format <= kIndexed8)
        palette = readPalette(fields);
    if (fields.hasFailed()) {
        problem = "its palette cannot be read";
        return {};
    }
    const ByteView data = fields.rest();
    const std::size_t rowBytes = (static_cast<std::size_t>(image.width) * static_cast<std::size_t>(bits) + 7) / 8;
    const auto stride = static_cast<std::size_t>(std::abs(static_cast<std::int64_t>(image.stride)));
    if (stride < rowBytes) {
        problem = "its rows are longer than the distance between them";
        return {};
    }
    palette.resize(256, Rgba { 0, 0, 0, 255 });

    // Of a picture of one bit a pixel there are 32 bytes for one.
    expectPixels(static_cast<std::uint64_t>(image.width), static_cast<std::uint64_t>(image.height));
    Pixels pixels;
    pixels.format = Pixels::Format::Rgba32;
    pixels.width = image.width;
    pixels.height = image.height;
    pixels.hasAlpha = true;
    pixels.stride = static_cast<std::size_t>(image.width) * 4;
    pixels.bytes.assign(pixels.stride * static_cast<std::size_t>(image.height), 0);
    for (int y = 0; y < image.height; ++y) {
        const int stored = image.stride < 0 ? image.height - 1 - y : y;
        const ByteView row = data.sub(static_cast<std::size_t>(stored) * stride, rowBytes);
        if (row.size < rowBytes)
            continue;
        std::uint8_t* to = pixels.row(y);
        for (int x = 0; x < image.width; ++x, to += 4) {
            const auto bit = static_cast<std::size_t>(x) * static_cast<std::size_t>(bits);
            if (format <= kIndexed8) {
                const int shift = 8 - bits - static_cast<int>(bit % 8);
                store(palette[row[bit / 8] >> shift & ((1 << bits) - 1)], to);
            } else {
                store(colorAt(row.data + bit / 8, format), to);
            }
        }
    }
    return pixels;
}

} // namespace quillrip::emf::plus
