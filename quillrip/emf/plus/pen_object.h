#pragma once

#include "quillrip/emf/plus/brush_object.h"
#include "quillrip/emf/plus/units.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace quillrip::emf::plus {

/// How a line ends ([MS-EMFPLUS] 2.1.1.18, LineCapType).
enum class Cap : std::uint8_t {
    Flat = 0,
    Square = 1,
    Round = 2,
    Triangle = 3,
    NoAnchor = 0x10,
    SquareAnchor = 0x11,
    RoundAnchor = 0x12,
    DiamondAnchor = 0x13,
    ArrowAnchor = 0x14,
    Custom = 0xFF,
};

/// How lines meet ([MS-EMFPLUS] 2.1.1.19, LineJoinType).
enum class Join : std::uint8_t {
    Miter, ///< beyond the limit cut off there
    Bevel,
    Round,
    MiterBevelled, ///< beyond the limit a bevel; "MiterClipped" by its published name
};

enum class PenAlignment : std::uint8_t { Center, Inset, Left, Outset, Right };

/// A cap that a program drew itself ([MS-EMFPLUS] 2.2.1.2): an arrow by its measures, or paths. Its unit is the pen's
/// width, its origin the line's end, +y points outwards along the line.
struct CustomCap {
    struct Arrow {
        double width = 0;
        double height = 0;
        double middleInset = 0;
        bool isFilled = true;
    };

    std::optional<Arrow> arrow; ///< else the paths below
    PathObject fill;
    PathObject line;
    Cap baseCap = Cap::Flat; ///< of the line that the cap sits on
    double baseInset = 0; ///< how much shorter that line is, in widths
    Cap lineStart = Cap::Flat; ///< of the cap's own line
    Cap lineEnd = Cap::Flat;
    Join lineJoin = Join::Miter;
    double miterLimit = 10;
    double widthScale = 1;
};

/// A pen ([MS-EMFPLUS] 2.2.1.7).
struct PenObject {
    BrushObject brush;
    double width = 1;
    Unit unit = Unit::World;
    Matrix shape; ///< of the nib; its translation means nothing
    Cap startCap = Cap::Flat;
    Cap endCap = Cap::Flat;
    Cap dashCap = Cap::Flat;
    Join join = Join::Miter;
    double miterLimit = 10;
    std::vector<double> dashes; ///< widths; dash and gap in turn; empty: solid
    double dashOffset = 0; ///< widths
    PenAlignment alignment = PenAlignment::Center;
    std::vector<double> compound; ///< begin and end of parallel lines, in turn, as parts of the width; empty: one line
    std::shared_ptr<const CustomCap> customStart;
    std::shared_ptr<const CustomCap> customEnd;
};

/// Nothing when the bytes hold no pen.
std::optional<PenObject> readPen(ByteView object);
/// Nothing when the bytes hold no custom line cap.
std::optional<CustomCap> readCustomCap(ByteView object);

} // namespace quillrip::emf::plus
