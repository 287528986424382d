#include "quillrip/pcl/palette.h"

#include <algorithm>
#include <cmath>

namespace quillrip::pcl {

namespace {

constexpr Rgb kBlack { 0, 0, 0 };
/// More stored palettes than any job has; a copy of the store stays cheap.
constexpr std::size_t kStoredPalettes = 512;

constexpr std::array<Rgb, 8> kAdditive { { { 0, 0, 0 }, { 255, 0, 0 }, { 0, 255, 0 }, { 255, 255, 0 }, { 0, 0, 255 },
    { 255, 0, 255 }, { 0, 255, 255 }, { 255, 255, 255 } } };
constexpr std::array<Rgb, 8> kSubtractive { { { 255, 255, 255 }, { 0, 255, 255 }, { 255, 0, 255 }, { 0, 0, 255 },
    { 255, 255, 0 }, { 0, 255, 0 }, { 255, 0, 0 }, { 0, 0, 0 } } };
constexpr std::array<Rgb, 8> kPens { { { 255, 255, 255 }, { 0, 0, 0 }, { 255, 0, 0 }, { 0, 255, 0 }, { 255, 255, 0 },
    { 0, 0, 255 }, { 255, 0, 255 }, { 0, 255, 255 } } };
constexpr std::array<Rgb, 4> kAdditiveFour { { { 0, 0, 0 }, { 255, 0, 0 }, { 0, 255, 0 }, { 255, 255, 255 } } };
constexpr std::array<Rgb, 4> kSubtractiveFour { { { 255, 255, 255 }, { 0, 255, 255 }, { 255, 0, 255 }, { 0, 0, 0 } } };

Rgb grey(Rgb color)
{
    const std::uint8_t light = luminance(color);
    return { light, light, light };
}

bool isMonochromeAlgorithm(int algorithm)
{
    constexpr std::array kMonochrome { 5, 6, 8, 10, 12, 14, 16, 17, 19 };
    return std::find(kMonochrome.begin(), kMonochrome.end(), algorithm) != kMonochrome.end();
}

} // namespace

Palette::Palette()
    : m_colors { kWhite, kBlack }
{
}

std::optional<Palette> Palette::simple(int planes)
{
    Palette palette;
    switch (planes) {
    case 1:
    case -1:
        break;
    case 3:
        palette.m_colors.assign(kAdditive.begin(), kAdditive.end());
        palette.m_model.bitsPerIndex = 3;
        break;
    case -3:
        palette.m_colors.assign(kSubtractive.begin(), kSubtractive.end());
        palette.m_model.bitsPerIndex = 3;
        break;
    case -4:
        // The lowest bit is black, which hides the other three.
        palette.m_colors.assign(16, kBlack);
        for (std::size_t i = 0; i < 8; ++i)
            palette.m_colors[i * 2] = kSubtractive[i];
        palette.m_model.bitsPerIndex = 4;
        palette.m_hasBlackPlane = true;
        break;
    default:
        return std::nullopt;
    }
    return palette;
}

Palette Palette::forModel(const ColorModel& model)
{
    Palette palette;
    palette.m_isFixed = false;
    palette.m_model = model;
    const std::size_t size = std::size_t { 1 } << model.bitsPerIndex;
    palette.m_colors.assign(size, kBlack);
    const bool isSubtractive = model.space == ColorSpace::DeviceCmy;
    if (size == 2) {
        palette.m_colors = { kWhite, kBlack };
    } else if (size == 4) {
        const auto& colors = isSubtractive ? kSubtractiveFour : kAdditiveFour;
        palette.m_colors.assign(colors.begin(), colors.end());
    } else {
        const auto& colors = isSubtractive ? kSubtractive : kAdditive;
        std::copy(colors.begin(), colors.end(), palette.m_colors.begin());
    }
    return palette;
}

Palette Palette::pens(std::size_t count)
{
    Palette palette;
    palette.m_isFixed = false;
    palette.m_isPens = true;
    palette.m_model.bitsPerIndex = 1;
    while (palette.m_model.bitsPerIndex < 8 && (std::size_t { 1 } << palette.m_model.bitsPerIndex) < count)
        ++palette.m_model.bitsPerIndex;
    const std::size_t size = std::size_t { 1 } << palette.m_model.bitsPerIndex;
    palette.m_colors.assign(size, kBlack);
    std::copy_n(kPens.begin(), std::min(size, kPens.size()), palette.m_colors.begin());
    return palette;
}

Palette Palette::firstTwo() const
{
    Palette palette = *this;
    palette.m_colors.resize(2, kBlack);
    palette.m_model.bitsPerIndex = 1;
    return palette;
}

bool Palette::isBlackOnWhite() const
{
    return m_colors.size() == 2 && m_colors[0] == kWhite && m_colors[1] == kBlack
        && m_model.encoding <= PixelEncoding::IndexedByPixel && m_renderAlgorithm != 2;
}

int Palette::planeCount() const
{
    switch (m_model.encoding) {
    case PixelEncoding::IndexedByPlane:
        return m_model.bitsPerIndex;
    case PixelEncoding::DirectByPlane:
        return 3;
    default:
        return 1;
    }
}

Rgb Palette::color(std::size_t index) const { return corrected(m_colors[index % m_colors.size()]); }

Rgb Palette::directColor(std::uint8_t first, std::uint8_t second, std::uint8_t third) const
{
    return corrected(m_model.toRgb(lookedUp(m_model.fromRasterBytes(first, second, third))));
}

bool Palette::isSeparable() const
{
    return m_model.space <= ColorSpace::DeviceCmy && m_renderAlgorithm != 2
        && !isMonochromeAlgorithm(m_renderAlgorithm);
}

void Palette::setComponents(std::size_t index, const Components& components)
{
    if (!m_isFixed && index < m_colors.size())
        m_colors[index] = m_model.toRgb(lookedUp(components));
}

void Palette::setReflectance(std::size_t index, const Components& percent)
{
    if (index >= m_colors.size())
        return;
    // What paper and black ink reflect of each primary, in percent.
    constexpr std::array<double, 3> kPaper { 90, 88, 85 };
    constexpr std::array<double, 3> kBlackInk { 4, 4, 6 };
    const auto primary = [&](std::size_t i) {
        const double light = (percent[i] - kBlackInk[i]) / (kPaper[i] - kBlackInk[i]);
        return static_cast<std::uint8_t>(std::lround(std::clamp(light, 0.0, 1.0) * 255));
    };
    m_colors[index] = { primary(0), primary(1), primary(2) };
}

void Palette::setColor(std::size_t index, Rgb color)
{
    if (!m_isFixed && index < m_colors.size())
        m_colors[index] = color;
}

void Palette::resize(std::size_t size)
{
    if (m_isFixed)
        return;
    int bits = 1;
    while (bits < 8 && (std::size_t { 1 } << bits) < size)
        ++bits;
    m_colors.resize(std::size_t { 1 } << bits, kBlack);
    m_model.bitsPerIndex = bits;
}

void Palette::setGamma(double gamma)
{
    // Gamma and lookup tables exclude each other.
    if (!m_isFixed) {
        m_gamma = gamma;
        m_lookup.reset();
    }
}

void Palette::setLookup(std::shared_ptr<const ColorLookup> lookup)
{
    m_lookup = std::move(lookup);
    if (m_lookup)
        m_gamma = 0;
}

// Tables of the palette's own device-independent space work on what comes in; device tables on what goes out.
Components Palette::lookedUp(const Components& components) const
{
    if (!m_lookup || m_lookup->space != m_model.space || m_model.space <= ColorSpace::DeviceCmy)
        return components;
    const Components least = m_model.fromRasterBytes(0, 0, 0);
    const Components greatest = m_model.fromRasterBytes(255, 255, 255);
    Components result;
    for (std::size_t i = 0; i < 3; ++i) {
        const double range = greatest[i] - least[i];
        const double share = range == 0 ? 0 : std::clamp((components[i] - least[i]) / range, 0.0, 1.0);
        result[i] = least[i] + range * m_lookup->tables[i][static_cast<std::size_t>(std::lround(share * 255))] / 255;
    }
    return result;
}

Rgb Palette::corrected(Rgb color) const
{
    if (m_lookup && m_lookup->space == ColorSpace::DeviceRgb) {
        color = { m_lookup->tables[0][color.red], m_lookup->tables[1][color.green], m_lookup->tables[2][color.blue] };
    } else if (m_lookup && m_lookup->space == ColorSpace::DeviceCmy) {
        const auto inverted = [](const std::array<std::uint8_t, 256>& table, std::uint8_t light) {
            return static_cast<std::uint8_t>(255 - table[255u - light]);
        };
        color = { inverted(m_lookup->tables[0], color.red), inverted(m_lookup->tables[1], color.green),
            inverted(m_lookup->tables[2], color.blue) };
    }
    if (m_gamma > 0 && m_gamma != 1) {
        const auto curved = [this](std::uint8_t light) {
            return static_cast<std::uint8_t>(std::lround(255 * std::pow(light / 255.0, 1 / m_gamma)));
        };
        color = { curved(color.red), curved(color.green), curved(color.blue) };
    }
    if (m_renderAlgorithm == 1) {
        const auto snapped = [](std::uint8_t light) { return static_cast<std::uint8_t>(light < 128 ? 0 : 255); };
        return { snapped(color.red), snapped(color.green), snapped(color.blue) };
    }
    if (m_renderAlgorithm == 2)
        return color == kBlack || color == kWhite ? kWhite : kBlack;
    return isMonochromeAlgorithm(m_renderAlgorithm) ? grey(color) : color;
}

PaletteStore::PaletteStore() { removeAll(); }

Palette& PaletteStore::edit()
{
    auto copy = std::make_shared<Palette>(active());
    Palette& palette = *copy;
    m_palettes[m_activeId] = std::move(copy);
    return palette;
}

void PaletteStore::replaceActive(Palette palette)
{
    m_palettes[m_activeId] = std::make_shared<Palette>(std::move(palette));
}

void PaletteStore::push(std::size_t depthLimit)
{
    if (m_stack.size() < depthLimit)
        m_stack.push_back(m_palettes[m_activeId]);
}

void PaletteStore::pop()
{
    if (m_stack.empty())
        return;
    m_palettes[m_activeId] = m_stack.back();
    m_stack.pop_back();
}

void PaletteStore::select(int id)
{
    if (m_palettes.count(id))
        m_activeId = id;
}

void PaletteStore::copyActiveTo(int id)
{
    if (id != m_activeId && (m_palettes.count(id) || m_palettes.size() < kStoredPalettes))
        m_palettes[id] = m_palettes[m_activeId];
}

void PaletteStore::remove(int id)
{
    if (id == m_activeId)
        replaceActive(Palette());
    else
        m_palettes.erase(id);
}

void PaletteStore::removeAll()
{
    m_palettes.clear();
    m_activeId = 0;
    m_palettes[0] = std::make_shared<Palette>();
}

} // namespace quillrip::pcl
