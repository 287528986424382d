#pragma once

#include "quillrip/base/work_meter.h"
#include "quillrip/hpgl/coordinates.h"
#include "quillrip/hpgl/host.h"
#include "quillrip/hpgl/palette.h"
#include "quillrip/hpgl/pens.h"
#include "quillrip/hpgl/state.h"
#include "quillrip/hpgl/surface.h"

#include <array>
#include <map>
#include <memory>
#include <optional>

namespace quillrip::hpgl {

/// What marks are made with: from fill types, screening and pens to the surface's inks. Every ink is absent where the
/// mark would leave nothing: no pen is selected, or it is white and white is transparent.
class Inks {
public:
    Inks(Host& host, const Palette& palette, const Coordinates& coordinates, const Pens& pens, WorkMeter& work)
        : m_host(host)
        , m_palette(palette)
        , m_coordinates(coordinates)
        , m_pens(pens)
        , m_work(work)
    {
    }

    void useDefaults();
    FillType& fillType() { return m_fill; }
    const FillType& fillType() const { return m_fill; }
    ScreenedVectors& screenedVectors() { return m_screened; }
    /// RF; null: solid. Index 1 to 8.
    void setRasterFill(int index, RasterFill fill)
    {
        m_rasterFills.at(static_cast<std::size_t>(index)) = std::move(fill);
    }
    void clearRasterFills() { m_rasterFills = {}; }
    /// AC, plotter units.
    void setAnchor(Point anchor) { m_anchor = anchor; }
    Point anchor() const { return m_anchor; }
    /// TR: white leaves the page as it is.
    void setTransparent(bool isTransparent) { m_isTransparent = isTransparent; }
    /// Hatching in user units keeps its distance when scaling is switched off.
    void freezeHatching();

    std::optional<PenInk> ofPen(int pen) const;
    std::optional<PenInk> ofSelectedPen() const { return ofPen(m_pens.selected()); }
    std::optional<PenInk> ofLines();
    /// What FT stands for; hatch lines are drawn with the line's ink instead.
    std::optional<PenInk> ofAreas();

private:
    std::optional<PenInk> shading(double percent);
    std::shared_ptr<const PatternTile> shadingTile(int level, Resolution resolution);
    std::optional<PenInk> rasterFill(int index, bool usesCurrentPen) const;
    std::optional<PenInk> storedPattern(AreaPattern kind, int id) const;
    void usePatternAnchor(PenInk& ink) const;
    void charge(const PatternTile& tile) const;

    Host& m_host;
    const Palette& m_palette;
    const Coordinates& m_coordinates;
    const Pens& m_pens;
    WorkMeter& m_work;
    FillType m_fill;
    ScreenedVectors m_screened;
    std::array<RasterFill, 9> m_rasterFills; ///< by index 1 to 8; empty: solid
    Point m_anchor;
    bool m_isTransparent = true;
    std::map<int, std::shared_ptr<const PatternTile>> m_shadings; ///< by level
};

} // namespace quillrip::hpgl
