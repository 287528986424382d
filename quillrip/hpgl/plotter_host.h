#pragma once

#include "quillrip/hpgl/host.h"
#include "quillrip/hpgl/state.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace quillrip::hpgl {

/// The part of a host that measuring and drawing a plot have in common: pens and modes of a plotter.
class PlotterHost : public Host {
public:
    std::size_t paletteSize() const override { return m_palette.size(); }
    Rgb paletteColor(std::size_t index) const override;
    void newPalette(std::size_t size) override;
    void resizePalette(std::size_t size) override;
    void setPaletteColor(std::size_t index, Rgb color) override;
    std::uint8_t rasterOperation() const override { return m_rasterOperation; }
    void setRasterOperation(std::uint8_t operation) override { m_rasterOperation = operation; }
    bool isGridCentred() const override { return m_isGridCentred; }
    void setGridCentred(bool isCentred) override { m_isGridCentred = isCentred; }
    std::shared_ptr<const PatternTile> areaPattern(AreaPattern kind, int id, const PageCanvas& canvas) override;
    SelectionContext fontContext() const override;

private:
    std::vector<Rgb> m_palette = std::vector<Rgb>(2);
    std::uint8_t m_rasterOperation = kDefaultRasterOperation;
    bool m_isGridCentred = false;
};

} // namespace quillrip::hpgl
