#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/fonts/faces/box_drawing.h"
#include "quillrip/fonts/faces/font_file.h"
#include "quillrip/fonts/faces/internal_face_table.h"
#include "quillrip/fonts/faces/typeface.h"
#include "quillrip/fonts/pixels/grid_fitting.h"
#include "quillrip/fonts/select/symbol_set.h"

#include <cstdint>
#include <memory>
#include <unordered_map>

namespace quillrip {

/// A face that the printer has built in: its own widths, with the shapes of a free font fitted into them.
///
/// Glyph ids are Unicode characters; in faces that are bound to a symbol set, the codes of that set. The font file is
/// opened when the first glyph is asked for. Without any file the characters come out as empty boxes of their widths.
class InternalFace final : public Typeface {
public:
    /// `sink` hears that a file is missing; may be null, else it outlives the face.
    InternalFace(const InternalFaceSpec& spec, std::shared_ptr<FontFiles> files, DiagnosticSink* sink);

    const InternalFaceSpec& spec() const { return m_spec; }

    GlyphId glyph(std::uint32_t code) const override;
    double advance(GlyphId glyph) const override;
    bool outline(GlyphId glyph, Path& path) const override;
    bool rasterise(GlyphId glyph, const Matrix& glyphToDevice, GlyphMask::Depth depth, const GlyphStyle& style,
        GlyphMask& mask) const override;

private:
    struct Source {
        const FontFile* file = nullptr; ///< null: no font has the character
        unsigned glyph = 0;
        bool isOwn = false; ///< from the face's own file, not from one that helps out
    };

    void openFiles() const;
    char32_t unicodeOf(GlyphId glyph) const;
    Source find(GlyphId glyph) const;
    Source search(GlyphId glyph) const;
    Source searchFor(char32_t unicode) const;
    double knownAdvance(GlyphId glyph) const;
    GlyphCell cell(GlyphId glyph) const;
    double scaleY(GlyphId glyph, const Source& source) const;
    /// From the font file's em to glyph space, and how much the strokes' width changes after that. `ink` is the glyph's
    /// box in em.
    struct Fit {
        Matrix toGlyph;
        double stemCorrection = 0; ///< glyph space units, negative where stems are too wide
    };
    Fit fit(GlyphId glyph, const Source& source, const Rect& ink) const;
    /// How much wider strokes have to become so that a glyph stretched by `wide` has the stems of one stretched as is
    /// usual; em.
    double stemCorrection(double wide, double usual) const;
    /// Strokes and heights of the font file, em.
    const FittingGuide& measures() const;
    /// The same as the glyph comes out, glyph space units.
    FittingGuide guideFor(GlyphId glyph, const Source& source) const;
    void frame(GlyphId glyph, Path& path) const;

    const InternalFaceSpec& m_spec;
    std::shared_ptr<FontFiles> m_files;
    DiagnosticSink* m_sink;
    const SymbolSet* m_boundSet;
    int m_widthColumn;
    double m_unit; ///< em of the shapes in glyph space units
    mutable bool m_isOpen = false;
    mutable const FontFile* m_file = nullptr;
    mutable std::unordered_map<GlyphId, Source> m_sources;
    mutable FittingGuide m_measures;
    mutable double m_stem = 0; ///< like m_measures.stem, of slanted faces too
};

} // namespace quillrip
