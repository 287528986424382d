#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace quillrip {

/// How a substitute's glyph numbers relate to those of the face it stands for.
enum class GlyphOrder : std::uint8_t {
    Same, ///< the numbers are equal
    Classic, ///< the face wanted has the characters of ASCII from number 3 on
    Unknown,
};

/// The free font that stands for a face of Windows.
struct WindowsFaceSpec {
    const char* name; ///< lower case; null ends a list
    std::array<const char*, 4> files; ///< stems: regular, bold, italic, bold italic; null: made from the one before
    bool hasTrueWidths; ///< the widths are equal
    GlyphOrder order;
    double stretch; ///< along the line, of substitutes with other widths
    /// Of the character cell of the face wanted, em; 0: the substitute's own hold.
    double ascent;
    double descent;
    bool isSymbolic;
};

/// The substitute for a family name (UTF-8), whatever its case; null when the name is not known.
const WindowsFaceSpec* findWindowsFace(const std::string& family);

/// The substitute by what LOGFONT tells besides the name.
const WindowsFaceSpec& windowsFaceByTraits(std::uint8_t charset, std::uint8_t pitchAndFamily);

/// A font that is asked for characters which a face lacks.
struct HelpingFont {
    const char* file; ///< stem
    const char* boldFile; ///< null: there is none
};

/// In the order in which they are asked.
extern const std::array<HelpingFont, 6> kHelpingFonts;

/// Stems of fonts for the script that a character belongs to and that no helping font has, in this order; null ones
/// behind the last.
std::array<const char*, 3> scriptFontsOf(char32_t character);

/// ASCII letters only.
std::string lowerCase(std::string text);

} // namespace quillrip
