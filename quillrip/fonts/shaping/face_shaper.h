#pragma once

#include "quillrip/fonts/faces/typeface.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct hb_font_t;

namespace quillrip {

class FileFace;

/// Letters of one script and direction within a text.
struct ShapingRun {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::uint32_t script = 0; ///< ISO 15924 tag as four bytes
    bool isRightToLeft = false;
};

/// A glyph as the face's own layout tables place it. Lengths in em.
struct PositionedGlyph {
    GlyphId glyph = kNoGlyph; ///< kNoGlyph: the face has none for the character
    std::size_t cluster = 0; ///< the first of the characters that it and its neighbours with the same number stand for
    double advance = 0;
    double shiftX = 0; ///< from where the line has come to
    double shiftY = 0; ///< up
};

/// Turns characters into glyphs by the layout tables of one face (OpenType GSUB, GPOS and GDEF), through HarfBuzz.
/// Takes tables from any font: those of jobs are hostile, and what they may cost is bounded by HarfBuzz in proportion
/// to the characters.
class FaceShaper {
public:
    /// The face must outlive its shaper.
    explicit FaceShaper(const FileFace& face);
    ~FaceShaper();
    FaceShaper(const FaceShaper&) = delete;
    FaceShaper& operator=(const FaceShaper&) = delete;

    /// The glyphs of a run from left to right; its letters join those of the text around it. Empty where memory is
    /// missing. Throws std::bad_alloc where the heap's account has not what HarfBuzz may take for them.
    std::vector<PositionedGlyph> shape(const std::u32string& text, const ShapingRun& run);

private:
    struct FontDeleter {
        void operator()(hb_font_t* font) const;
    };

    std::unique_ptr<hb_font_t, FontDeleter> m_font;
};

} // namespace quillrip
