#pragma once

#include "quillrip/fonts/soft/soft_font.h"
#include "quillrip/fonts/soft/soft_font_header.h"

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace quillrip {

/// A downloaded Intellifont. Its outlines are a coding of their own that is not drawn here: the header serves for
/// selection and metrics, compound characters for theirs, and the shapes are those of a built-in face like it.
class IntellifontSoftFont final : public SoftFont {
public:
    explicit IntellifontSoftFont(SoftFontHeader header);

    bool addPclCharacter(std::uint32_t code, ByteView block, const Reporter& reporter) override;
    bool addPclXlCharacter(std::uint32_t code, ByteView data, const Reporter& reporter) override;
    void removeCharacter(std::uint32_t code) override;
    std::shared_ptr<SoftFont> copy() const override;
    std::size_t bytes() const override;
    void lendShapes(const std::shared_ptr<const Typeface>& face) override { m_shapes = face; }

    GlyphId glyph(std::uint32_t code) const override;
    double advance(GlyphId glyph) const override;
    bool outline(GlyphId glyph, Path& path) const override;
    bool rasterise(GlyphId glyph, const Matrix& glyphToDevice, GlyphMask::Depth depth, const GlyphStyle& style,
        GlyphMask& mask) const override;

private:
    struct Component {
        std::uint16_t code;
        double x; ///< em
        double y;
    };
    struct Character {
        double escapement = 0; ///< em; 0 = not told
        std::vector<Component> components;
    };

    char32_t unicodeOf(std::uint32_t code) const;
    GlyphId shapeOf(std::uint32_t code) const;

    SoftFontHeader m_header;
    std::map<std::uint32_t, Character> m_characters;
    std::shared_ptr<const Typeface> m_shapes;
};

} // namespace quillrip
