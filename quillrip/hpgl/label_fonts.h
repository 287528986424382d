#pragma once

#include "quillrip/fonts/font_library.h"
#include "quillrip/hpgl/coordinates.h"
#include "quillrip/hpgl/host.h"
#include "quillrip/hpgl/label.h"
#include "quillrip/hpgl/state.h"

#include <cstdint>
#include <memory>

namespace quillrip::hpgl {

/// Which font labels are set in, and how its characters are set.
class LabelFonts {
public:
    LabelFonts(FontLibrary& library, const Host& host, const TextState& text, const Coordinates& coordinates)
        : m_library(library)
        , m_host(host)
        , m_text(text)
        , m_coordinates(coordinates)
    {
    }

    /// Of the font, size, slant and direction in force.
    LabelMetrics metrics();
    /// The fonts to choose from may be others than before.
    void forget() { m_hasFont = false; }
    /// The soft font of that number, for FI and FN; null when there is none.
    std::shared_ptr<const Typeface> softFont(int id) const;

private:
    const Font& font();
    Font select(const FontAttributes& wanted) const;
    void aim(LabelMetrics& metrics) const;
    void measureStroked(LabelMetrics& metrics) const;
    void measureTypeface(LabelMetrics& metrics) const;
    /// SI, SR: width of a character and height of a capital, plotter units.
    Point wantedSize() const;

    FontLibrary& m_library;
    const Host& m_host;
    const TextState& m_text;
    const Coordinates& m_coordinates;
    Font m_font; ///< without a face: stroked
    FontAttributes m_attributes; ///< which it was selected by
    bool m_allowsBitmaps = false;
    bool m_hasFont = false;
};

} // namespace quillrip::hpgl
