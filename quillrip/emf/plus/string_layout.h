#pragma once

#include "quillrip/emf/plus/text_painter.h"

#include <string>
#include <vector>

namespace quillrip::emf::plus {

/// A string broken into lines within its rectangle.
struct StringLayout {
    struct Line {
        std::vector<TextGlyph> glyphs;
        Point start; ///< on the baseline
        double length = 0;
        /// Parts that a hot key underlines: from where, relative to the start, and how long.
        std::vector<std::pair<double, double>> hotKeys;
    };

    std::vector<Line> lines;
    double height = 0; ///< of all lines

    /// The longest line.
    double width() const;
};

/// Lays characters out in world units. Without a width the rectangle is a point that text is aligned about; without a
/// height there is no lower end.
StringLayout layOut(
    const std::u32string& text, const SizedFont& font, const StringFormatObject& format, const RectF& rect);

} // namespace quillrip::emf::plus
