#pragma once

#include "quillrip/base/reporter.h"
#include "quillrip/emf/plus/canvas.h"
#include "quillrip/fonts/select/windows_fonts.h"

#include <optional>
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

/// Where text is drawn.
struct TextPlace {
    Matrix toWorld; ///< from the space that the text is laid out in
    PixelSet within; ///< null: everywhere
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
        const TextPlace& place) const;
    /// A bar under or through the text: from `start` along the baseline.
    void underline(const SizedFont& font, Point start, double length, const Paint& paint, const TextPlace& place) const;
    void strikeOut(const SizedFont& font, Point start, double length, const Paint& paint, const TextPlace& place) const;

private:
    void bar(const RectF& rect, const Paint& paint, const TextPlace& place) const;
    std::optional<PaintState> paintState(const Paint& paint, const TextPlace& place) const;

    Canvas& m_canvas;
    Reporter m_reporter;
};

} // namespace quillrip::emf::plus
