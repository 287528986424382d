#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/fonts/select/font_traits.h"
#include "quillrip/raster/glyph_mask.h"
#include "quillrip/raster/paths/path.h"

#include <cstdint>

namespace quillrip {

/// A glyph within its face; not a character code.
using GlyphId = std::uint32_t;
constexpr GlyphId kNoGlyph = 0xFFFFFFFF;

/// How a glyph becomes pixels besides the matrix.
struct GlyphStyle {
    /// Emboldening in glyph space units: the outline grows by half of it on every side (PCL XL's CharBoldValue).
    double bold = 0;
};

/// The shapes and widths of one face, built in or downloaded.
///
/// Glyph space has its origin at the reference point on the baseline, x along the writing direction, y up. One unit is
/// the em of a scalable face and one inch of a bitmap face. Not safe for two threads at a time.
class Typeface {
public:
    virtual ~Typeface() = default;
    Typeface(const Typeface&) = delete;
    Typeface& operator=(const Typeface&) = delete;

    /// Differs for all faces made in this run, also for copies: a cache key.
    std::uint32_t id() const { return m_id; }
    /// Grows whenever a glyph changes that was there before: a cache key too.
    std::uint32_t revision() const { return m_revision; }
    /// The same for one glyph, where the face keeps count of them: of a font whose codes a job uses again and again the
    /// other glyphs stay in the cache.
    virtual std::uint32_t glyphRevision(GlyphId) const { return m_revision; }
    const FontTraits& traits() const { return m_traits; }

    /// The glyph for a code in the face's own domain (traits().domain), or kNoGlyph.
    virtual GlyphId glyph(std::uint32_t code) const = 0;
    /// Advance in glyph space units. For fixed faces the interpreter's HMI goes before it.
    virtual double advance(GlyphId glyph) const = 0;
    /// Appends the outline in glyph space, for non-zero filling. False when there is none: a bitmap, or blank.
    virtual bool outline(GlyphId glyph, Path& path) const = 0;
    /// Pixels of the glyph: glyph space to device pixels by `glyphToDevice` whose translation is where the
    /// reference point lies within its pixel (the mask is relative to that pixel's corner). False when the glyph
    /// leaves no mark. GlyphCache calls this; interpreters go through the cache.
    virtual bool rasterise(GlyphId glyph, const Matrix& glyphToDevice, GlyphMask::Depth depth, const GlyphStyle& style,
        GlyphMask& mask) const = 0;

    /// In vertical writing: whether the code keeps its orientation (VE segment).
    virtual bool staysUpright(std::uint32_t) const { return false; }
    /// In vertical writing: the glyph that stands for another (VT segment), or the glyph itself.
    virtual GlyphId verticalForm(GlyphId glyph) const { return glyph; }
    /// Vertical writing: descender of the box that is turned, glyph space units, positive below (VR segment).
    virtual double verticalDescender() const { return 36.0 / 256.0; }

protected:
    Typeface();

    FontTraits m_traits;
    mutable std::uint32_t m_revision = 0;

private:
    std::uint32_t m_id;
};

} // namespace quillrip
