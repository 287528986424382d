#pragma once

#include "quillrip/base/page_bitmap.h"
#include "quillrip/raster/compose/raster_operation.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace quillrip {

class ClipRegion;
class ColorSource;

/// A pattern tile in device pixels. Mono tiles hold one byte a pixel, 1 = ink (the texture's colour) and 0 = white;
/// colour tiles hold their own colours, three bytes a pixel, 255 = light.
struct PatternTile {
    int width = 0;
    int height = 0;
    bool isColor = false;
    std::vector<std::uint8_t> pixels;

    /// The tile enlarged by pixel replication, by any positive factors; each side at least one pixel.
    PatternTile scaled(double factorX, double factorY) const;
    /// The tile turned by quarter turns that take +x to +y (clockwise on a page whose y points down).
    PatternTile turned(int quarterTurns) const;
};

/// The third operand of the raster operation: what ink looks like.
struct Texture {
    Rgb color; ///< solid, or the ink of a mono tile
    std::shared_ptr<const PatternTile> tile; ///< null: solid
    /// A colour and alpha for every device pixel; then neither colour nor tile count, and no pixel of it is white to
    /// patternTransparent.
    std::shared_ptr<const ColorSource> colors;
    int originX = 0; ///< device pixel where the tile's first column falls
    int originY = 0; ///< device pixel where the tile's first row falls
};

/// Tiles and colours are the same when they are one object.
inline bool operator==(const Texture& a, const Texture& b)
{
    return a.color == b.color && a.tile == b.tile && a.colors == b.colors && a.originX == b.originX
        && a.originY == b.originY;
}

/// How a mark combines with what the page holds already. One state serves all languages.
///
/// For every pixel of the mark: source S is black where the mask or the bilevel image has ink, white where a mask's
/// box or a bilevel image has none, or the colour image's pixel; texture T; destination D. Then
///   S white and sourceTransparent                              -> D
///   S not white, T's tile pixel white and patternTransparent   -> D
///   else bit by bit (rop >> (4 T + 2 S + D)) & 1, white = 1.
/// Coverage, opacity and the texture's own alpha, multiplied, mix that result with D in grey and RGB. On a bilevel page
/// opacity and alpha are screened together with the tone, so that a mark on white or black paper looks as its mixed
/// tone would, and all that is opaque stays crisp.
struct PaintState {
    std::uint8_t rop = rop::kTextureOrSource;
    bool sourceTransparent = true;
    bool patternTransparent = true;
    Texture texture;
    std::uint8_t opacity = 255; ///< of the whole mark: 0 leaves the page as it is, 255 hides it
    std::shared_ptr<const ClipRegion> clip; ///< null: the whole page
};

inline bool operator==(const PaintState& a, const PaintState& b)
{
    return a.rop == b.rop && a.sourceTransparent == b.sourceTransparent && a.patternTransparent == b.patternTransparent
        && a.texture == b.texture && a.opacity == b.opacity && a.clip == b.clip;
}
inline bool operator!=(const PaintState& a, const PaintState& b) { return !(a == b); }

} // namespace quillrip
