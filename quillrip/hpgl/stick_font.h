#pragma once

#include "quillrip/raster/paths/path.h"

#include <vector>

namespace quillrip::hpgl {

// The stroked fonts live on a grid whose units make the height: capitals are 32 high on a 48 unit em.
constexpr double kStickEm = 48;
constexpr double kStickCapHeight = 32;
constexpr double kStickWidth = 32; ///< design width of a character
constexpr double kStickCell = 48; ///< from one character of the fixed font to the next
constexpr double kStickLineFeed = 64;
constexpr double kStickOriginOffset = 16;
/// The proportional font: distance between characters, width of the space, and width in relation to the fixed grid.
constexpr double kArcGap = 14;
constexpr double kArcSpace = 32;
constexpr double kArcNarrowing = 0.75;

constexpr int kStickTypeface = 48;
constexpr int kArcTypeface = 49;
constexpr int kDraftingTypeface = 50;
constexpr bool isStrokedTypeface(int typeface)
{
    return typeface == kStickTypeface || typeface == kArcTypeface || typeface == kDraftingTypeface;
}
/// The stroke weight that stands for the pen's own width.
constexpr int kPenWeight = 9999;

/// A stroked character: open lines and curves on the grid, baseline at 0, y up.
struct StickGlyph {
    Path strokes;
    double left = 0; ///< extent of the strokes
    double right = 0;
};

/// Characters of ASCII, Latin-1 and Roman-8 by Unicode; null for others. The space has no strokes.
const StickGlyph* stickGlyph(char32_t character);

/// All characters that the font has, in ascending order.
std::vector<char32_t> stickCharacters();

} // namespace quillrip::hpgl
