#pragma once

#include "quillrip/hpgl/host.h"

#include <array>
#include <cstddef>

namespace quillrip::hpgl {

/// The pens' colours: the host's palette, and the range that PC counts in.
class Palette {
public:
    static constexpr std::size_t kDefaultPens = 8;
    static constexpr std::size_t kMostPens = 32768;

    explicit Palette(Host& host)
        : m_host(host)
    {
    }

    /// IN: another palette of the default size and colours.
    void renew();
    /// NP: a power of two, at least 2. Pens that come anew have their default colours.
    void resize(std::size_t pens);
    std::size_t size() const { return m_host.paletteSize(); }
    /// Gives the entries from `from` on their default colours.
    void useDefaultColors(std::size_t from = 0);
    void useDefaultColor(std::size_t pen);
    /// Primaries count within the colour range. `pen` lies within the palette.
    void setColor(std::size_t pen, const std::array<double, 3>& primaries);

    /// CR: what PC calls black and white, red green blue; no two of a primary alike.
    void setRange(const std::array<double, 3>& black, const std::array<double, 3>& white);
    void useDefaultRange();

    /// Pens beyond the palette begin again at pen 1; none and pen 0 are 0.
    int wrapped(int pen) const;
    Rgb color(int pen) const { return m_host.paletteColor(static_cast<std::size_t>(wrapped(pen))); }

private:
    Host& m_host;
    std::array<double, 3> m_black { 0, 0, 0 };
    std::array<double, 3> m_white { 255, 255, 255 };
};

} // namespace quillrip::hpgl
