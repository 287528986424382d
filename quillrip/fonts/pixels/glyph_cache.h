#pragma once

#include "quillrip/fonts/faces/typeface.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <unordered_map>

namespace quillrip {

/// A mask and the device pixel where its reference point lies: Painter::drawMask(*mask, x, y, state).
struct PlacedGlyph {
    std::shared_ptr<const GlyphMask> mask; ///< null: nothing to draw
    int x = 0;
    int y = 0;
};

/// Glyphs as pixels, each made once for a face, size, direction, depth and place within its pixel. The least recently
/// used go when the bound is reached.
class GlyphCache {
public:
    explicit GlyphCache(std::size_t capacityBytes = std::size_t { 16 } << 20);

    /// `glyphToDevice` takes glyph space (y up!) to device pixels (y down), with its translation at the reference
    /// point. Bilevel glyphs are placed on whole pixels; grey ones on quarters of a pixel along the writing direction
    /// when it runs along a device axis. Glyphs too large for a mask come back as null: use the outline then
    /// (Typeface::outline() and Painter::fillPath()), see isTooLarge().
    PlacedGlyph place(const Typeface& face, GlyphId glyph, const Matrix& glyphToDevice, GlyphMask::Depth depth,
        const GlyphStyle& style = {});

    /// Whether the glyphs of this matrix are so large that they should be filled as paths and not cached.
    static bool isTooLarge(const Typeface& face, const Matrix& glyphToDevice);

    std::size_t bytes() const { return m_bytes; }
    std::size_t rasterisations() const { return m_rasterisations; }

private:
    struct Key {
        std::uint32_t face;
        std::uint32_t revision;
        GlyphId glyph;
        float a, b, c, d;
        float bold;
        std::uint8_t phaseX, phaseY;
        GlyphMask::Depth depth;

        bool operator==(const Key& other) const;
    };
    struct KeyHash {
        std::size_t operator()(const Key& key) const;
    };
    struct Entry {
        Key key;
        std::shared_ptr<const GlyphMask> mask;
        std::size_t bytes;
    };

    void shrinkTo(std::size_t bytes);

    std::size_t m_capacity;
    std::size_t m_bytes = 0;
    std::size_t m_rasterisations = 0;
    std::list<Entry> m_entries; ///< most recently used first
    std::unordered_map<Key, std::list<Entry>::iterator, KeyHash> m_index;
};

} // namespace quillrip
