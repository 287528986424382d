#pragma once

#include "quillrip/base/page_bitmap.h"
#include "quillrip/raster/compose/paint_state.h"
#include "quillrip/raster/compose/screen.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace quillrip {

/// Ink of a colour in each of a page's channels: one for Bilevel and Gray8 (by luminance), three for Rgb24.
using Ink = std::array<std::uint8_t, 3>;
Ink inkOf(Rgb color, PixelFormat format);

/// A texture as a page of one format sees it: converted and screened once, then looked up.
class DeviceTexture {
public:
    DeviceTexture(const Texture& texture, PixelFormat format);

    bool isFor(const Texture& texture) const;
    bool isSolid() const { return !m_tile && !m_texture.colors; }
    /// Pixels after which a row repeats itself; 0 where it does not.
    int period() const { return m_tile ? m_tile->width : m_texture.colors ? 0 : 1; }
    /// Some of the page may show through.
    bool hasAlpha() const { return m_texture.colors != nullptr; }
    /// Every pixel of the page has all the ink or none (a bilevel page only).
    bool isUniformBilevel() const { return isSolid() && (m_ink[0] == 0 || m_ink[0] == 255); }
    const Ink& ink() const { return m_ink; }

    struct Words {
        std::uint64_t ink;
        std::uint64_t opaque; ///< pixels where the tile is not white; all of them for a solid texture
    };
    /// Bilevel: the 64 pixels of device row y from column 64 * word on.
    Words words(int y, int word) const
    {
        const std::uint64_t dots = m_dots[static_cast<unsigned>(y) % kScreenSize];
        if (isSolid())
            return { dots, ~std::uint64_t { 0 } };
        if (!m_tile || m_tile->isColor)
            return toneWords(y, word);
        const std::uint64_t opaque = monoTileWord(y, word);
        return { dots & opaque, opaque };
    }
    struct MixedWords : Words {
        std::uint64_t covered; ///< pixels that are not left as they are
    };
    /// The same where some of the page shows through.
    MixedWords mixedWords(int y, int word, std::uint8_t opacity) const;

    /// `count` pixels of device row y from column x on: as ink in the page's channels (one for Bilevel), and as 0 or
    /// 255 for each byte of ink, 0 where the tile is white. `alpha` gets one byte a pixel where hasAlpha().
    void gather(int y, int x, int count, std::uint8_t* ink, std::uint8_t* opaque, std::uint8_t* alpha) const;

private:
    /// A row of the tile in the page's channels.
    struct TileRow {
        int index = -1;
        std::vector<std::uint8_t> ink;
        std::vector<std::uint8_t> opaque;
    };

    std::uint64_t monoTileWord(int y, int word) const;
    Words toneWords(int y, int word) const;
    const TileRow& tileRow(int y) const;
    int tileColumn(std::int64_t x) const;
    void gatherColors(int y, int x, int count, std::uint8_t* ink, std::uint8_t* alpha) const;

    Texture m_texture;
    PixelFormat m_format;
    const PatternTile* m_tile;
    std::size_t m_channels;
    Ink m_ink;
    /// Bilevel: the screened colour, a word for each row of the screen.
    std::array<std::uint64_t, kScreenSize> m_dots {};
    /// Bilevel, mono tile: each row packed and continued by 63 pixels, so that any phase is one read.
    std::vector<std::uint8_t> m_tileBits;
    std::size_t m_tileBitsStride = 0;
    /// The rows of the tile that were asked for last, each in the place of its number modulo theirs.
    mutable std::vector<TileRow> m_tileRows;
};

} // namespace quillrip
