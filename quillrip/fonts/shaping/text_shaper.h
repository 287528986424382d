#pragma once

#include "quillrip/fonts/select/windows_fonts.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace quillrip {

/// Characters that are drawn together, by glyphs that keep their places within the cluster.
struct ShapedCluster {
    std::size_t begin = 0; ///< characters, in the order of reading
    std::size_t end = 0;
    std::size_t firstGlyph = 0;
    std::size_t lastGlyph = 0; ///< behind the last
    double advance = 0; ///< em
    bool isRightToLeft = false;
};

/// A line from left to right.
struct ShapedLine {
    std::vector<ShapedCluster> clusters; ///< every character lies in one of them
    std::vector<WindowsFont::Glyph> glyphs; ///< shifted from where their cluster begins
};

/// What shaping a character costs, for WorkMeter.
constexpr std::uint64_t kWorkPerShapedCharacter = 1000;

/// Lays a line out: in the order in which its characters stand, in the shapes that they take beside each other. Where a
/// face that stands in for the font's has the letters, it shapes them. Letters of simple scripts keep their own glyphs,
/// without ligatures or kerning.
ShapedLine shapeLine(const std::u32string& line, const WindowsFont& font, bool isBaseRightToLeft);

} // namespace quillrip
