#pragma once

#include <cstdint>
#include <string>

namespace quillrip {

/// What a PCL XL font name says about a face.
struct NamedFace {
    std::uint16_t family = 0;
    std::uint16_t style = 0;
    int weight = 0;
    bool isKnown = false; ///< false: the family is a guess
};

/// Reads a font name by its words, in any spelling that drivers use: family first, letters of treatment ("Bd", "It",
/// "CdMd") last, 16 characters or not.
NamedFace readFontName(const std::string& name);

} // namespace quillrip
