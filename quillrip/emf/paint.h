#pragma once

#include "quillrip/emf/state.h"
#include "quillrip/raster/compose/paint_state.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace quillrip::emf {

/// The ternary operation of a binary one (ROP2, 1 to 16); other numbers give the plain pen.
std::uint8_t operationOfRop2(std::uint32_t rop2);

/// A COLORREF: palette numbers are looked up.
Rgb colorOf(std::uint32_t colorReference, const DeviceContext& dc);

/// Turns pens' and brushes' contents into what the painter takes. Keeps the last tile, which mostly is the next one's
/// too.
class PaintMaker {
public:
    explicit PaintMaker(const Matrix& referenceToDevice)
        : m_toDevice(referenceToDevice)
    {
    }

    /// A solid colour that replaces what is there.
    static PaintState solid(Rgb color);
    /// What a brush paints under a ternary operation; nothing for the null brush.
    std::optional<PaintState> brush(const DeviceContext& dc, const Brush& brush, std::uint8_t operation);
    /// The same under the context's binary operation.
    std::optional<PaintState> brush(const DeviceContext& dc, const Brush& brush)
    {
        return this->brush(dc, brush, operationOfRop2(dc.rop2));
    }

private:
    void setTile(PaintState& state, const DeviceContext& dc, const Brush& brush);

    struct TileKey {
        const Pattern* pattern = nullptr;
        std::uint32_t hatch = 0;
        bool isOpaque = false;
        Rgb color;
        Rgb background;
    };
    Matrix m_toDevice;
    TileKey m_key;
    std::shared_ptr<const Pattern> m_keyPattern; ///< keeps the key's pattern from being replaced by another
    std::shared_ptr<const PatternTile> m_tile;
};

} // namespace quillrip::emf
