#include "quillrip/pcl/palette.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>

namespace quillrip::pcl {

namespace {

constexpr std::size_t kShortForm = 6;

using Matrix3 = std::array<double, 9>;

Matrix3 multiply(const Matrix3& a, const Matrix3& b)
{
    Matrix3 product {};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            for (std::size_t k = 0; k < 3; ++k)
                product[row * 3 + column] += a[row * 3 + k] * b[k * 3 + column];
        }
    }
    return product;
}

Components multiply(const Matrix3& m, const Components& v)
{
    return { m[0] * v[0] + m[1] * v[1] + m[2] * v[2], m[3] * v[0] + m[4] * v[1] + m[5] * v[2],
        m[6] * v[0] + m[7] * v[1] + m[8] * v[2] };
}

// The unit matrix for a singular one: its numbers came from the job.
Matrix3 inverse(const Matrix3& m)
{
    const double determinant
        = m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) + m[2] * (m[3] * m[7] - m[4] * m[6]);
    if (!std::isfinite(determinant) || std::abs(determinant) < 1e-12)
        return { 1, 0, 0, 0, 1, 0, 0, 0, 1 };
    const double k = 1 / determinant;
    return { (m[4] * m[8] - m[5] * m[7]) * k, (m[2] * m[7] - m[1] * m[8]) * k, (m[1] * m[5] - m[2] * m[4]) * k,
        (m[5] * m[6] - m[3] * m[8]) * k, (m[0] * m[8] - m[2] * m[6]) * k, (m[2] * m[3] - m[0] * m[5]) * k,
        (m[3] * m[7] - m[4] * m[6]) * k, (m[1] * m[6] - m[0] * m[7]) * k, (m[0] * m[4] - m[1] * m[3]) * k };
}

/// Columns are the XYZ of full red, green and blue, scaled so that their sum is the white point at Y = 1.
Matrix3 primariesToXyz(double rx, double ry, double gx, double gy, double bx, double by, double wx, double wy)
{
    const auto safe = [](double y) { return std::abs(y) < 1e-6 ? 1e-6 : y; };
    const auto column = [&](double x, double y) { return Components { x / safe(y), 1, (1 - x - y) / safe(y) }; };
    const Components r = column(rx, ry);
    const Components g = column(gx, gy);
    const Components b = column(bx, by);
    const Matrix3 unscaled { r[0], g[0], b[0], r[1], g[1], b[1], r[2], g[2], b[2] };
    const Components scale = multiply(inverse(unscaled), column(wx, wy));
    return { r[0] * scale[0], g[0] * scale[1], b[0] * scale[2], r[1] * scale[0], g[1] * scale[1], b[1] * scale[2],
        r[2] * scale[0], g[2] * scale[1], b[2] * scale[2] };
}

constexpr double kWhiteX = 0.3127; ///< D65, the white of sRGB
constexpr double kWhiteY = 0.3290;

Matrix3 srgbToXyz() { return primariesToXyz(0.64, 0.33, 0.30, 0.60, 0.15, 0.06, kWhiteX, kWhiteY); }

std::uint8_t toByte(double intensity)
{
    return static_cast<std::uint8_t>(std::lround(std::clamp(std::isnan(intensity) ? 0.0 : intensity, 0.0, 1.0) * 255));
}

// IEC 61966-2-1.
std::uint8_t encodeSrgb(double linear)
{
    const double v = std::clamp(std::isnan(linear) ? 0.0 : linear, 0.0, 1.0);
    return toByte(v <= 0.0031308 ? v * 12.92 : 1.055 * std::pow(v, 1 / 2.4) - 0.055);
}

bool readFloat(ByteReader& reader, double& value)
{
    const auto bits = reader.readU32BigEndian();
    if (!bits)
        return false;
    float number;
    static_assert(sizeof(number) == sizeof(*bits));
    std::memcpy(&number, &*bits, sizeof(number));
    value = std::isfinite(number) ? static_cast<double>(number) : 0;
    return true;
}

std::size_t longFormSize(ColorSpace space)
{
    switch (space) {
    case ColorSpace::DeviceRgb:
    case ColorSpace::DeviceCmy:
        return 18;
    case ColorSpace::ColorimetricRgb:
        return 86;
    case ColorSpace::Lab:
        return 30;
    default:
        return 122;
    }
}

} // namespace

ColorModel::ColorModel()
    : m_chromaticities { { { 0.630, 0.340 }, { 0.310, 0.595 }, { 0.155, 0.070 }, { kWhiteX, kWhiteY } } } // SMPTE
    , m_encoding { 0.30, 0.59, 0.11, -0.30, -0.59, 0.89, 0.70, -0.59, -0.11 } // Y, B - Y, R - Y
{
    prepare();
}

std::optional<ColorModel> ColorModel::parse(ByteView data)
{
    if (data.size < kShortForm || data[0] > 4 || data[1] > 3)
        return std::nullopt;
    ColorModel model;
    model.space = static_cast<ColorSpace>(data[0]);
    model.encoding = static_cast<PixelEncoding>(data[1]);
    model.bitsPerIndex = data[2];
    const bool isIndexed = data[1] <= 1;
    if (!isIndexed && model.bitsPerIndex == 0)
        model.bitsPerIndex = 8;
    if (model.bitsPerIndex < 1 || model.bitsPerIndex > 8)
        return std::nullopt;
    const bool isWholePart
        = model.bitsPerIndex == 1 || model.bitsPerIndex == 2 || model.bitsPerIndex == 4 || model.bitsPerIndex == 8;
    if (model.encoding == PixelEncoding::IndexedByPixel && !isWholePart)
        return std::nullopt;
    if (model.encoding == PixelEncoding::DirectByPlane && data[0] > 1)
        return std::nullopt;
    for (std::size_t i = 0; i < 3; ++i) {
        const int bits = data[3 + i];
        if (!isIndexed && bits != (model.encoding == PixelEncoding::DirectByPlane ? 1 : 8))
            return std::nullopt;
        model.bitsPerPrimary[i] = bits == 0 ? 8 : std::min(bits, 16);
    }
    model.setDefaultReferences();
    if (data.size >= longFormSize(model.space)) {
        ByteReader reader { data.sub(kShortForm) };
        bool whole = true;
        switch (model.space) {
        case ColorSpace::DeviceRgb:
        case ColorSpace::DeviceCmy:
            whole = model.readReferences(reader);
            break;
        case ColorSpace::ColorimetricRgb:
            whole = model.readChromaticities(reader) && model.readToneCurves(reader) && model.readRanges(reader);
            break;
        case ColorSpace::Lab:
            whole = model.readRanges(reader);
            break;
        case ColorSpace::LuminanceChrominance:
            for (double& coefficient : model.m_encoding)
                whole = whole && readFloat(reader, coefficient);
            whole
                = whole && model.readRanges(reader) && model.readChromaticities(reader) && model.readToneCurves(reader);
            break;
        }
        if (!whole)
            return std::nullopt;
    }
    model.prepare();
    return model;
}

void ColorModel::setDefaultReferences()
{
    for (std::size_t i = 0; i < 3; ++i) {
        const double full = std::pow(2.0, bitsPerPrimary[i]) - 1;
        const bool isSubtractive = space == ColorSpace::DeviceCmy;
        m_whiteReference[i] = isSubtractive ? 0 : full;
        m_blackReference[i] = isSubtractive ? full : 0;
    }
    if (space == ColorSpace::Lab) {
        m_least = { 0, -100, -100 };
        m_greatest = { 100, 100, 100 };
    } else if (space == ColorSpace::LuminanceChrominance) {
        m_least = { 0, -0.89, -0.70 };
        m_greatest = { 1, 0.89, 0.70 };
    }
}

bool ColorModel::readReferences(ByteReader& reader)
{
    for (std::array<double, 3>* references : { &m_whiteReference, &m_blackReference }) {
        for (double& reference : *references) {
            const auto value = reader.readI16BigEndian();
            if (!value)
                return false;
            reference = *value;
        }
    }
    return true;
}

bool ColorModel::readRanges(ByteReader& reader)
{
    for (std::size_t i = 0; i < 3; ++i) {
        if (!readFloat(reader, m_least[i]) || !readFloat(reader, m_greatest[i]))
            return false;
    }
    return true;
}

bool ColorModel::readChromaticities(ByteReader& reader)
{
    for (Chromaticity& point : m_chromaticities) {
        if (!readFloat(reader, point.x) || !readFloat(reader, point.y))
            return false;
    }
    return true;
}

bool ColorModel::readToneCurves(ByteReader& reader)
{
    for (std::size_t i = 0; i < 3; ++i) {
        if (!readFloat(reader, m_gamma[i]) || !readFloat(reader, m_gain[i]))
            return false;
    }
    return true;
}

void ColorModel::prepare()
{
    m_decoding = inverse(m_encoding);
    const auto& [red, green, blue, white] = m_chromaticities;
    const Matrix3 toXyz = primariesToXyz(red.x, red.y, green.x, green.y, blue.x, blue.y, white.x, white.y);
    // The space's white is the paper's: scale its XYZ to that of sRGB's white.
    const Components from = multiply(toXyz, Components { 1, 1, 1 });
    const Components to = multiply(srgbToXyz(), Components { 1, 1, 1 });
    Matrix3 adaptation {};
    for (std::size_t i = 0; i < 3; ++i)
        adaptation[i * 4] = std::abs(from[i]) < 1e-9 ? 1 : to[i] / from[i];
    m_toLinearRgb = multiply(multiply(inverse(srgbToXyz()), adaptation), toXyz);
}

Components ColorModel::fromRasterBytes(std::uint8_t first, std::uint8_t second, std::uint8_t third) const
{
    const std::array<std::uint8_t, 3> bytes { first, second, third };
    Components components;
    for (std::size_t i = 0; i < 3; ++i) {
        const double share = bytes[i] / 255.0;
        switch (space) {
        case ColorSpace::DeviceRgb:
        case ColorSpace::DeviceCmy:
            components[i] = bytes[i];
            break;
        default:
            components[i] = m_least[i] + (m_greatest[i] - m_least[i]) * share;
        }
    }
    return components;
}

Rgb ColorModel::toRgb(const Components& components) const
{
    std::array<std::uint8_t, 3> bytes {};
    switch (space) {
    case ColorSpace::ColorimetricRgb:
        return colorimetricToRgb(components);
    case ColorSpace::Lab:
        return labToRgb(components);
    case ColorSpace::LuminanceChrominance:
        return colorimetricToRgb(multiply(m_decoding, components));
    default:
        for (std::size_t i = 0; i < 3; ++i) {
            const double range = m_whiteReference[i] - m_blackReference[i];
            bytes[i] = toByte(range == 0 ? 0 : (components[i] - m_blackReference[i]) / range);
        }
        return { bytes[0], bytes[1], bytes[2] };
    }
}

Rgb ColorModel::colorimetricToRgb(const Components& components) const
{
    Components linear;
    for (std::size_t i = 0; i < 3; ++i)
        linear[i] = m_gain[i] * std::pow(std::clamp(components[i], 0.0, 1.0), std::clamp(m_gamma[i], 0.1, 10.0));
    const Components rgb = multiply(m_toLinearRgb, linear);
    return { encodeSrgb(rgb[0]), encodeSrgb(rgb[1]), encodeSrgb(rgb[2]) };
}

Rgb ColorModel::labToRgb(const Components& components) const
{
    // CIE 1976. The reference white prints as the paper.
    const double fy = (components[0] + 16) / 116;
    const auto decode
        = [](double f) { return f > 6.0 / 29 ? f * f * f : (f - 4.0 / 29) * 3 * (6.0 / 29) * (6.0 / 29); };
    const Components white = multiply(srgbToXyz(), Components { 1, 1, 1 });
    const Components xyz { white[0] * decode(fy + components[1] / 500), white[1] * decode(fy),
        white[2] * decode(fy - components[2] / 200) };
    static const Matrix3 s_fromXyz = inverse(srgbToXyz());
    const Components rgb = multiply(s_fromXyz, xyz);
    return { encodeSrgb(rgb[0]), encodeSrgb(rgb[1]), encodeSrgb(rgb[2]) };
}

std::shared_ptr<const ColorLookup> ColorLookup::parse(ByteView data)
{
    constexpr std::size_t kSize = 2 + 3 * 256;
    if (data.size < kSize || data[0] > 4)
        return nullptr;
    auto lookup = std::make_shared<ColorLookup>();
    lookup->space = static_cast<ColorSpace>(data[0]);
    for (std::size_t i = 0; i < 3; ++i)
        std::memcpy(lookup->tables[i].data(), data.data + 2 + i * 256, 256);
    return lookup;
}

} // namespace quillrip::pcl
