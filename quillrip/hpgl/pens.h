#pragma once

#include "quillrip/hpgl/coordinates.h"
#include "quillrip/hpgl/palette.h"

#include <cstddef>
#include <vector>

namespace quillrip::hpgl {

/// Which pen draws, and how wide every pen is.
class Pens {
public:
    Pens(const Palette& palette, const Coordinates& coordinates)
        : m_palette(palette)
        , m_coordinates(coordinates)
    {
    }

    /// As IN does: no pen, or the first one, and all widths.
    void initialise();
    /// The pen that draws before any SP, in force from the next IN; -1 for none. Once a pen was chosen, IN puts it
    /// away.
    void setFirstPen(int pen) { m_firstPen = pen; }
    /// SP; pens below 0 change nothing.
    void select(int pen);
    int selected() const { return m_selected; }
    /// Without a pen nothing is drawn.
    bool hasPen() const { return m_selected >= 0; }

    /// WU: widths as percent of the distance from P1 to P2, or in millimetres. All go back to their default.
    void setWidthUnit(bool isRelative);
    void useDefaultWidths() { m_widths.clear(); }
    void setWidths(double width); ///< of all pens
    void setWidth(int pen, double width);
    /// Of the selected pen on the page.
    double widthDecipoints() const;

private:
    double defaultWidth() const;
    void makeWidths();

    const Palette& m_palette;
    const Coordinates& m_coordinates;
    int m_selected = -1;
    int m_firstPen = -1;
    bool m_wasChosen = false; ///< SP was seen
    bool m_widthsAreRelative = false;
    std::vector<double> m_widths; ///< by pen, millimetres or percent; pens beyond the end have the default
};

} // namespace quillrip::hpgl
