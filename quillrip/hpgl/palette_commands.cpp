// Colours of the pens.

#include "quillrip/hpgl/machine.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quillrip::hpgl {

namespace {

constexpr std::size_t kDefaultPens = 8;
constexpr std::size_t kMostPens = 32768;

constexpr Rgb kWhite { 255, 255, 255 };
constexpr Rgb kBlack { 0, 0, 0 };

/// Pens of a palette of 8 and more entries; those of 4 begin in the same way.
constexpr std::array<Rgb, kDefaultPens> kPens { kWhite, kBlack, Rgb { 255, 0, 0 }, Rgb { 0, 255, 0 },
    Rgb { 255, 255, 0 }, Rgb { 0, 0, 255 }, Rgb { 255, 0, 255 }, Rgb { 0, 255, 255 } };

Rgb defaultColor(std::size_t pen) { return pen < kPens.size() ? kPens[pen] : kBlack; }

} // namespace

/// Gives the palette's entries from `from` on their default colours.
void Machine::defaultPalette(std::size_t from)
{
    const std::size_t pens = m_host.paletteSize();
    for (std::size_t pen = from; pen < pens; ++pen)
        m_host.setPaletteColor(pen, defaultColor(pen));
}

void Machine::numberOfPens()
{
    std::size_t pens = kDefaultPens;
    if (!m_operands.empty()) {
        if (operand(0) < 2 || operand(0) > kMostPens)
            return;
        pens = 2;
        while (pens < static_cast<std::size_t>(std::lround(operand(0))))
            pens *= 2;
    }
    const std::size_t before = m_host.paletteSize();
    m_host.resizePalette(pens);
    if (pens > before)
        defaultPalette(before);
}

void Machine::penColors()
{
    if (m_operands.empty()) {
        defaultPalette(0);
        return;
    }
    const double index = operand(0);
    if (index < 0 || index >= static_cast<double>(m_host.paletteSize()))
        return;
    const auto pen = static_cast<std::size_t>(index);
    if (operandCount() < 4) {
        if (operandCount() == 1)
            m_host.setPaletteColor(pen, defaultColor(pen));
        return;
    }
    const auto primary = [&](std::size_t i) {
        const double black = m_state.blackReference[i];
        const double share = (clampedReal(i + 1) - black) / (m_state.whiteReference[i] - black);
        return static_cast<std::uint8_t>(std::lround(std::clamp(share, 0.0, 1.0) * 255));
    };
    m_host.setPaletteColor(pen, { primary(0), primary(1), primary(2) });
}

void Machine::colorRange()
{
    if (m_operands.empty()) {
        m_state.blackReference = State {}.blackReference;
        m_state.whiteReference = State {}.whiteReference;
        return;
    }
    if (operandCount() < 6)
        return;
    for (std::size_t i = 0; i < 6; i += 2) {
        if (clampedReal(i) == clampedReal(i + 1))
            return;
    }
    for (std::size_t i = 0; i < 3; ++i) {
        m_state.blackReference[i] = clampedReal(2 * i);
        m_state.whiteReference[i] = clampedReal(2 * i + 1);
    }
}

} // namespace quillrip::hpgl
