#pragma once

#include "quillrip/fonts/select/symbol_set.h"

#include <cstdint>
#include <string>

namespace quillrip {

/// By what the codes of a face are numbered.
enum class CodeDomain : std::uint8_t {
    Bound, ///< character codes as they come in the text: a soft font bound to a symbol set, PCL XL soft fonts
    Unicode, ///< unbound: text goes through a symbol set
    MasterSymbolList, ///< unbound soft fonts of the older kind: through a symbol set, then through the list
};

/// What selection by characteristics looks at, and what text layout needs of a face as a whole.
struct FontTraits {
    std::string name;
    std::uint16_t symbolSet = 0; ///< bound faces: their set's number
    CodeDomain domain = CodeDomain::Bound;
    CodeRange codeRange = CodeRange::Wide; ///< bound faces: which codes print
    bool isBoundToSet = true; ///< found by its own symbol set only
    std::uint64_t complement = 0; ///< unbound soft fonts: bit set = symbol collection missing; 0 = all there
    bool isScalable = true;
    bool isProportional = true;
    bool isFixedSize = false; ///< comes in one size only: every bitmap face, and one of the built-in ones
    double pitch = 0; ///< of a face of one size, fixed: characters per inch
    double height = 0; ///< of a face of one size: points
    std::uint16_t style = 0; ///< posture + 4 * width + 32 * structure
    int weight = 0; ///< -7 to 7, 0 medium, 3 bold
    std::uint16_t family = 0; ///< typeface family number
    int resolution = 0; ///< bitmap: dots per inch
    int orientation = 0; ///< bitmap: 0 portrait, 1 landscape, 2 reverse portrait, 3 reverse landscape
    /// Width of the default character cell: glyph space units (em, or inches for bitmap faces). For a fixed face the
    /// advance of all characters, for a proportional one that of the space.
    double spaceAdvance = 0;
    bool hasUnderline = false; ///< else the defaults below stand
    double underlineTop = -0.2; ///< glyph space units above the baseline, so negative below
    double underlineThickness = 0.05; ///< glyph space units
    double ascent = 0.75; ///< glyph space units above the baseline, typical capitals with accents
    double descent = 0.25; ///< glyph space units below the baseline, positive
    double capHeight = 0.7; ///< glyph space units
    double xHeight = 0.5; ///< glyph space units
};

} // namespace quillrip
