#include "quillrip/hpgl/palette.h"

#include "quillrip/base/color.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace quillrip::hpgl {

namespace {

/// Pens of a palette of 8 and more entries; those of 4 begin in the same way.
constexpr std::array<Rgb, Palette::kDefaultPens> kPens { kWhite, kBlack, Rgb { 255, 0, 0 }, Rgb { 0, 255, 0 },
    Rgb { 255, 255, 0 }, Rgb { 0, 0, 255 }, Rgb { 255, 0, 255 }, Rgb { 0, 255, 255 } };

Rgb defaultColor(std::size_t pen) { return pen < kPens.size() ? kPens[pen] : kBlack; }

} // namespace

void Palette::renew()
{
    m_host.newPalette(kDefaultPens);
    useDefaultColors();
}

void Palette::resize(std::size_t pens)
{
    const std::size_t before = m_host.paletteSize();
    m_host.resizePalette(pens);
    if (pens > before)
        useDefaultColors(before);
}

void Palette::useDefaultColors(std::size_t from)
{
    const std::size_t pens = m_host.paletteSize();
    for (std::size_t pen = from; pen < pens; ++pen)
        useDefaultColor(pen);
}

void Palette::useDefaultColor(std::size_t pen) { m_host.setPaletteColor(pen, defaultColor(pen)); }

void Palette::setColor(std::size_t pen, const std::array<double, 3>& primaries)
{
    const auto primary = [&](std::size_t i) {
        const double share = (primaries[i] - m_black[i]) / (m_white[i] - m_black[i]);
        return static_cast<std::uint8_t>(std::lround(std::clamp(share, 0.0, 1.0) * 255));
    };
    m_host.setPaletteColor(pen, { primary(0), primary(1), primary(2) });
}

void Palette::setRange(const std::array<double, 3>& black, const std::array<double, 3>& white)
{
    m_black = black;
    m_white = white;
}

void Palette::useDefaultRange() { setRange({ 0, 0, 0 }, { 255, 255, 255 }); }

int Palette::wrapped(int pen) const
{
    const int pens = static_cast<int>(std::max<std::size_t>(m_host.paletteSize(), 2));
    if (pen <= 0)
        return 0;
    return pen < pens ? pen : (pen - 1) % (pens - 1) + 1;
}

} // namespace quillrip::hpgl
