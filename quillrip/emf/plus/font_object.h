#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/emf/plus/units.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillrip::emf::plus {

/// A font ([MS-EMFPLUS] 2.2.1.3).
struct FontObject {
    double emSize = 0; ///< in `unit`
    Unit unit = Unit::World;
    bool isBold = false;
    bool isItalic = false;
    bool isUnderlined = false;
    bool isStruckOut = false;
    std::string family; ///< UTF-8
};

enum class StringAlignment : std::uint8_t { Near, Center, Far };

/// How a string lies in its rectangle ([MS-EMFPLUS] 2.2.1.9).
struct StringFormatObject {
    enum class HotKeys : std::uint8_t {
        Plain, ///< an ampersand is drawn
        Underlined, ///< it underlines the next character
        Hidden, ///< it is left out
    };

    bool isRightToLeft = false;
    bool isVertical = false;
    bool isWrapped = true;
    bool isClipped = true;
    bool hasWholeLinesOnly = false; ///< a line of which the rectangle has no more than a part is left out
    StringAlignment alignment = StringAlignment::Near; ///< along the line
    StringAlignment lineAlignment = StringAlignment::Near; ///< across the lines
    HotKeys hotKeys = HotKeys::Plain;
    double leadingMargin = 1.0 / 6; ///< em
    double trailingMargin = 1.0 / 6; ///< em
    bool endsWithEllipsis = false; ///< where the string is too long
    double firstTab = 0; ///< world units
    std::vector<double> tabs; ///< world units, each from the one before
};

/// Nothing when the bytes hold no font.
std::optional<FontObject> readFont(ByteView object);
/// Nothing when the bytes hold no string format.
std::optional<StringFormatObject> readStringFormat(ByteView object);

} // namespace quillrip::emf::plus
