#pragma once

#include "quillrip/fonts/pixels/bitmap_glyph.h"
#include "quillrip/fonts/soft/soft_font.h"
#include "quillrip/fonts/soft/soft_font_header.h"

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace quillrip {

/// A downloaded bitmap font. Glyph ids are character codes; glyph space is inches.
class BitmapSoftFont final : public SoftFont {
public:
    explicit BitmapSoftFont(SoftFontHeader header);

    bool addPclCharacter(std::uint32_t code, ByteView block, const Reporter& reporter) override;
    bool addPclXlCharacter(std::uint32_t code, ByteView data, const Reporter& reporter) override;
    void removeCharacter(std::uint32_t code) override;
    std::shared_ptr<SoftFont> copy() const override;
    std::size_t bytes() const override { return m_bytes + m_unfinished.data.size(); }

    GlyphId glyph(std::uint32_t code) const override;
    double advance(GlyphId glyph) const override;
    bool outline(GlyphId glyph, Path& path) const override;
    bool rasterise(GlyphId glyph, const Matrix& glyphToDevice, GlyphMask::Depth depth, const GlyphStyle& style,
        GlyphMask& mask) const override;
    bool staysUpright(std::uint32_t code) const override;
    std::uint32_t glyphRevision(GlyphId glyph) const override;

private:
    /// A character whose data have not all come yet.
    struct Unfinished {
        std::uint32_t code = 0;
        std::uint8_t imageClass = 0; ///< 1 rows as they are, 2 run lengths; 0 = none begun
        BitmapGlyph stored; ///< sizes and offsets as stored, without bits
        std::vector<std::uint8_t> data;
    };

    /// Makes a glyph of what came for the character begun last. Done once, when another begins or the font is used:
    /// a hostile job cannot make each of many continuations cost a whole bitmap.
    void finish() const;
    void store(std::uint32_t code, BitmapGlyph glyph) const;
    void erase(std::uint32_t code) const;

    SoftFontHeader m_header;
    mutable std::map<std::uint32_t, BitmapGlyph> m_glyphs;
    mutable std::map<GlyphId, std::uint32_t> m_glyphRevisions; ///< of glyphs that were replaced or removed
    mutable Unfinished m_unfinished;
    mutable std::size_t m_bytes;
};

} // namespace quillrip
