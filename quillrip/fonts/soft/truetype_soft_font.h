#pragma once

#include "quillrip/fonts/pixels/grid_fitting.h"
#include "quillrip/fonts/soft/soft_font.h"
#include "quillrip/fonts/soft/soft_font_header.h"

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace quillrip {

class IncrementalTrueType;

/// A downloaded TrueType font: tables in the header, glyphs one by one. Glyph ids are those of the font.
class TrueTypeSoftFont final : public SoftFont {
public:
    /// Null when the tables make no font.
    static std::shared_ptr<TrueTypeSoftFont> create(SoftFontHeader header, const Reporter& reporter);
    ~TrueTypeSoftFont() override;

    bool addPclCharacter(std::uint32_t code, ByteView block, const Reporter& reporter) override;
    bool addPclXlCharacter(std::uint32_t code, ByteView data, const Reporter& reporter) override;
    void removeCharacter(std::uint32_t code) override;
    std::shared_ptr<SoftFont> copy() const override;
    std::size_t bytes() const override { return m_bytes; }

    GlyphId glyph(std::uint32_t code) const override;
    double advance(GlyphId glyph) const override;
    bool outline(GlyphId glyph, Path& path) const override;
    bool rasterise(GlyphId glyph, const Matrix& glyphToDevice, GlyphMask::Depth depth, const GlyphStyle& style,
        GlyphMask& mask) const override;
    bool staysUpright(std::uint32_t code) const override;
    GlyphId verticalForm(GlyphId glyph) const override;
    double verticalDescender() const override;

    /// A glyph as it came, with the metrics that came with it.
    struct Glyph {
        std::vector<std::uint8_t> data; ///< an entry of the glyf table; empty: blank
        bool hasBearing = false;
        int leftBearing = 0; ///< font units
        bool hasAdvance = false;
        int advance = 0; ///< font units
    };

private:
    TrueTypeSoftFont(SoftFontHeader header, std::unique_ptr<IncrementalTrueType> tables);

    void store(std::uint32_t code, std::uint16_t glyphId, Glyph glyph);

    /// Strokes that most of the glyphs so far have.
    const FittingGuide& measures() const;

    /// A PCL 5 character whose continuation blocks have not all come.
    struct Unfinished {
        std::uint32_t code = 0;
        std::size_t wanted = 0; ///< bytes from the character data size on; 0 = none begun
        std::vector<std::uint8_t> data;
    };

    SoftFontHeader m_header;
    std::unique_ptr<IncrementalTrueType> m_tables;
    std::map<std::uint32_t, std::uint16_t> m_codes;
    std::map<std::uint16_t, Glyph> m_glyphs;
    Unfinished m_unfinished;
    std::size_t m_bytes;
    mutable FittingGuide m_measures;
    mutable std::size_t m_measuredGlyphs = 0;
};

} // namespace quillrip
