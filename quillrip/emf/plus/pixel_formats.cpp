#include "quillrip/emf/plus/pixel_formats.h"

#include "quillrip/emf/plus/field_reader.h"
#include "quillrip/emf/plus/image_files.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
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

bool hasAlpha(std::uint8_t format, const std::vector<Rgba>& palette)
{
    if (format <= kIndexed8)
        return std::any_of(palette.begin(), palette.end(), [](const Rgba& color) { return color.alpha != 255; });
    return format == kArgb1555 || format == kArgb32 || format == kPremultiplied32 || format == kArgb64
        || format == kPremultiplied64;
}

class PixelRows : public ImageRows {
public:
    explicit PixelRows(WorkMeter& work)
        : ImageRows(work, kUnitsPerPixel)
    {
    }

    /// False, with the reason in `problem`, for what openPixels() refuses.
    bool open(const ImageObject& image, std::string& problem);
    void row(int y, std::uint8_t* to) override;

private:
    static constexpr std::uint32_t kUnitsPerPixel = 2;

    ByteView storedRow(int y) const
    {
        const int stored = m_isBottomUp ? m_shape.height - 1 - y : y;
        return m_data.sub(static_cast<std::size_t>(stored) * m_stride, m_rowBytes);
    }

    std::uint8_t m_format = 0;
    int m_bits = 0; ///< of a pixel
    std::vector<Rgba> m_palette;
    ByteView m_data;
    std::size_t m_rowBytes = 0;
    std::size_t m_stride = 0;
    bool m_isBottomUp = false;
};

bool PixelRows::open(const ImageObject& image, std::string& problem)
{
    m_format = static_cast<std::uint8_t>(image.format & 0xFF);
    m_bits = bitsOf(m_format);
    if (m_bits == 0) {
        problem = "its pixel format is not known";
        return false;
    }
    if (!isDrawableSize(image.width, image.height)) {
        problem = "its size cannot be";
        return false;
    }
    FieldReader fields(image.bytes);
    if (m_format <= kIndexed8)
        m_palette = readPalette(fields);
    if (fields.hasFailed()) {
        problem = "its palette cannot be read";
        return false;
    }
    m_data = fields.rest();
    m_rowBytes = (static_cast<std::size_t>(image.width) * static_cast<std::size_t>(m_bits) + 7) / 8;
    m_stride = static_cast<std::size_t>(std::abs(static_cast<std::int64_t>(image.stride)));
    if (m_stride < m_rowBytes) {
        problem = "its rows are longer than the distance between them";
        return false;
    }
    m_palette.resize(256, Rgba { 0, 0, 0, 255 });
    m_isBottomUp = image.stride < 0;
    m_shape.format = PictureShape::Format::Rgba32;
    m_shape.width = image.width;
    m_shape.height = image.height;
    const bool isWhole = storedRow(m_isBottomUp ? 0 : image.height - 1).size == m_rowBytes;
    m_shape.hasAlpha = !isWhole || hasAlpha(m_format, m_palette);
    return true;
}

void PixelRows::row(int y, std::uint8_t* to)
{
    const ByteView row = storedRow(y);
    if (row.size < m_rowBytes || !mayMake(static_cast<std::uint64_t>(m_shape.width))) {
        std::memset(to, 0, m_shape.rowBytes());
        return;
    }
    for (int x = 0; x < m_shape.width; ++x, to += 4) {
        const auto bit = static_cast<std::size_t>(x) * static_cast<std::size_t>(m_bits);
        if (m_format <= kIndexed8) {
            const int shift = 8 - m_bits - static_cast<int>(bit % 8);
            store(m_palette[row[bit / 8] >> shift & ((1 << m_bits) - 1)], to);
        } else {
            store(colorAt(row.data + bit / 8, m_format), to);
        }
    }
}

} // namespace

std::unique_ptr<ImageRows> openPixels(const ImageObject& image, WorkMeter& work, std::string& problem)
{
    auto rows = std::make_unique<PixelRows>(work);
    return rows->open(image, problem) ? std::move(rows) : nullptr;
}

} // namespace quillrip::emf::plus
