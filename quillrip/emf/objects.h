#pragma once

#include "quillrip/base/page_bitmap.h"
#include "quillrip/emf/dib.h"

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace quillrip::emf {

/// A picture that fills areas, as a pen or brush holds it.
struct Pattern {
    Pixels pixels;
    /// Bits 0 and 1 take the text and the background colour of the moment of drawing, not the table's.
    bool takesTextColors = false;
};

struct Brush {
    enum class Style : std::uint8_t {
        Solid,
        Null,
        Hatched,
        Pattern,
    };

    Style style = Style::Solid;
    std::uint32_t color = 0; ///< COLORREF
    std::uint32_t hatch = 0;
    std::shared_ptr<const Pattern> pattern; ///< Style::Pattern
};

/// A pen of the metafile; what it becomes on the page is a Stroke.
struct LogicalPen {
    enum class Style : std::uint8_t {
        Solid,
        Dash,
        Dot,
        DashDot,
        DashDotDot,
        Null,
        InsideFrame,
        User,
        Alternate,
    };
    enum class Cap : std::uint8_t { Round, Square, Flat };
    enum class Join : std::uint8_t { Round, Bevel, Miter };

    Style style = Style::Solid;
    /// Width in logical units with ends and joins; otherwise one pixel of the reference device.
    bool isGeometric = false;
    /// Made by CREATEPEN: one pixel wide unless its width says more, and then solid. GDI knows it round only; programs
    /// that write metafiles themselves put ends and joins into its style.
    bool isSimple = true;
    double width = 0;
    Cap cap = Cap::Round;
    Join join = Join::Round;
    std::vector<double> dashes; ///< Style::User: logical units for geometric pens, else pixels
    Brush brush; ///< what the line is filled with
};

/// The fields of a LOGFONT.
struct LogicalFont {
    std::int32_t height = 0; ///< logical units: above 0 the cell, below 0 the em, 0 a default
    bool isSizeKnown = true; ///< false for stock fonts: each device has its own, and the height is a usual one
    std::int32_t width = 0; ///< logical units, average; 0: natural
    std::int32_t escapement = 0; ///< 0.1 degree counter-clockwise, of the line
    std::int32_t orientation = 0; ///< 0.1 degree counter-clockwise, of each glyph
    std::int32_t weight = 0;
    bool isItalic = false;
    bool isUnderlined = false;
    bool isStruckOut = false;
    std::uint8_t charset = 0;
    std::uint8_t pitchAndFamily = 0;
    std::string face; ///< UTF-8
};

struct Palette {
    std::vector<Rgb> entries;
};

/// Colour spaces, and whatever else has a slot and no meaning here.
struct Placeholder { };

using Object = std::variant<Brush, LogicalPen, LogicalFont, Palette, Placeholder>;

/// Objects by their numbers. What is selected stays alive when its slot is cleared or filled anew.
class ObjectTable {
public:
    /// Stock fonts have a height of `stockFontHeight` as in LogicalFont.
    explicit ObjectTable(std::int32_t stockFontHeight);

    /// What the header declares is no limit: programs count their objects wrongly, and viewers draw them all the same.
    /// False for the reserved number 0 and those beyond 65535, or when all patterns together would need more than
    /// `patternBytes`.
    bool put(std::uint32_t handle, Object object, std::size_t patternBytes);
    void remove(std::uint32_t handle);
    /// Stock objects have bit 31 set. Null when there is none.
    std::shared_ptr<const Object> find(std::uint32_t handle) const;
    /// For changes of palettes; null for stock objects and empty slots.
    Palette* palette(std::uint32_t handle);

private:
    std::int32_t m_stockFontHeight;
    std::size_t m_patternBytes = 0; ///< of all slots
    std::vector<std::shared_ptr<Object>> m_slots; ///< grows as they are used
};

/// The handle bit and some numbers of stock objects.
constexpr std::uint32_t kStockObject = 0x80000000u;
constexpr std::uint32_t kWhiteBrush = kStockObject + 0x00;
constexpr std::uint32_t kBlackPen = kStockObject + 0x07;
constexpr std::uint32_t kDeviceDefaultFont = kStockObject + 0x0E;
constexpr std::uint32_t kDefaultPalette = kStockObject + 0x0F;

} // namespace quillrip::emf
