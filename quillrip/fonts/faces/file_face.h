#pragma once

#include "quillrip/fonts/faces/font_file.h"
#include "quillrip/fonts/faces/typeface.h"
#include "quillrip/fonts/pixels/grid_fitting.h"

#include <cstdint>
#include <memory>
#include <unordered_map>

namespace quillrip {

class FaceShaper;

/// A font file as it is: its own widths, glyphs by its own numbers. One unit of glyph space is the em.
class FileFace final : public Typeface {
public:
    /// The file must outlive the face.
    explicit FileFace(const FontFile& file);
    ~FileFace() override;

    const FontFile& file() const { return m_file; }
    /// For scripts whose letters are placed by the font's layout tables; made when first asked for.
    FaceShaper& shaper() const;

    /// By Unicode.
    GlyphId glyph(std::uint32_t code) const override;
    double advance(GlyphId glyph) const override;
    bool outline(GlyphId glyph, Path& path) const override;
    bool rasterise(GlyphId glyph, const Matrix& glyphToDevice, GlyphMask::Depth depth, const GlyphStyle& style,
        GlyphMask& mask) const override;

private:
    const FittingGuide& measures() const;

    const FontFile& m_file;
    mutable std::unordered_map<GlyphId, double> m_advances;
    mutable FittingGuide m_measures;
    mutable std::unique_ptr<FaceShaper> m_shaper;
};

} // namespace quillrip
