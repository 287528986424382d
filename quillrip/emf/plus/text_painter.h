#pragma once

#include "quillrip/base/reporter.h"
#include "quillrip/emf/plus/canvas.h"
#include "quillrip/fonts/select/windows_fonts.h"

#include <string>
#include <vector>

namespace quillrip::emf::plus {

/// A glyph and where its origin lies on the baseline, in world units.
struct TextGlyph {
    WindowsFont::Glyph glyph;
    Point at;
};

/// A font chosen for a font object, at its size.
struct SizedFont {
    WindowsFont font;
    double em = 0; ///< world units
    bool isUnderlined = false;
    bool isStruckOut = false;
};

/// Draws glyphs on a canvas.
class TextPainter {
public:
    TextPainter(Canvas& canvas, const Reporter& reporter)
        : m_canvas(canvas)
        , m_reporter(reporter)
    {
    }

    SizedFont select(const FontObject& object) const;

    /// `shape` acts on each glyph about its origin.
    void draw(const SizedFont& font, const std::vector<TextGlyph>& glyphs, const Matrix& shape, const Paint& paint,
        const PixelSet& within) const;
    /// A bar under or through the text: from `start` along the baseline.
    void underline(const SizedFont& font, Point start, double length, const Paint& paint) const;
    void strikeOut(const SizedFont& font, Point start, double length, const Paint& paint) const;

private:
    void bar(Point start, double length, double top, double thickness, const Paint& paint) const;

    Canvas& m_canvas;
    Reporter m_reporter;
};

} // namespace quillrip::emf::plus
