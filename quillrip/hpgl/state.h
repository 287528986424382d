#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/hpgl/plotter_units.h"
#include "quillrip/raster/compose/raster_operation.h"
#include "quillrip/raster/paths/stroke_style.h"

#include <cstdint>
#include <vector>

namespace quillrip::hpgl {

/// The pen's colour where the shape is.
constexpr std::uint8_t kDefaultRasterOperation = rop::kTextureOrSource;

/// The pen as commands leave it to each other. Places are in plotter units of the rotated system.
struct State {
    bool isAbsolute = true; ///< PA, PR
    bool isPenDown = false;
    Point pen;
    Point carriageReturn; ///< where the line of a label begins
    int symbol = -1; ///< SM; -1: none
    bool chordIsDeviation = false; ///< CT1
    bool isLost = false; ///< a coordinate beyond all numbers was asked for; the next one in range finds the pen again
    bool hasDrawn = false; ///< something was asked for that leaves marks
};

/// SC. The operands are kept, not the resulting map, since later changes of P1 and P2 act on it.
struct Scaling {
    enum class Kind { Off, Anisotropic, Isotropic, PointFactor };
    Kind kind = Kind::Off;
    double xMin = 0; ///< PointFactor: the user coordinate of P1
    double xMax = 1; ///< PointFactor: plotter units per user unit
    double yMin = 0;
    double yMax = 1;
    double left = 50; ///< percent of the spare room
    double bottom = 50;
};

/// IW.
struct Window {
    enum class Kind { Frame, PlotterUnits, UserUnits };
    Kind kind = Kind::Frame;
    Point corner1;
    Point corner2;
};

/// A length that follows P1 and P2 as a percentage of their distance, or does not.
struct PatternLength {
    double value = 4;
    bool isMillimetres = false; ///< else percent of the distance from P1 to P2
};

/// LT.
struct LineType {
    bool isSolid = true;
    int type = 0; ///< -8 to 8; 0: dots at the points
    PatternLength length;

    bool isDotsAtPoints() const { return !isSolid && type == 0; }
};

/// LA.
struct LineAttributes {
    LineCap cap = LineCap::Butt;
    LineJoin join = LineJoin::MiterClipped;
    double miterLimit = 5;
};

/// FT 3 and 4.
struct Hatching {
    enum class Unit { DiagonalPercent, PlotterUnits, UserUnits };
    double spacing = 1;
    Unit unit = Unit::DiagonalPercent;
    double angle = 0; ///< degrees
};

/// What areas and screened lines are made of.
enum class FillKind : std::uint8_t {
    Solid,
    ParallelLines,
    CrossedLines,
    Shading,
    RasterFill, ///< RF
    HatchPattern, ///< one of the host's six
    UserPattern, ///< a pattern that the host was sent
};

/// FT. Every kind remembers its own options.
struct FillType {
    FillKind kind = FillKind::Solid;
    Hatching parallel;
    Hatching cross;
    double shading = 50; ///< percent
    int rasterFill = 1;
    int hatchPattern = 1;
    int userPattern = 0;

    bool isHatched() const { return kind == FillKind::ParallelLines || kind == FillKind::CrossedLines; }
};

/// SV, likewise; never hatched.
struct ScreenedVectors {
    FillKind kind = FillKind::Solid;
    double shading = 50; ///< percent
    int rasterFill = 1;
    bool usesCurrentPen = false;
    int hatchPattern = 1;
    int userPattern = 0;
};

/// RF: a tile of pen numbers, rows from the top.
struct RasterFill {
    int width = 0;
    int height = 0;
    std::vector<std::uint16_t> pens;
};

/// SD and AD.
struct FontAttributes {
    int symbolSet = 277;
    bool isProportional = false;
    double pitch = 9; ///< characters per inch
    double height = 11.5; ///< points
    int style = 0;
    int weight = 0;
    int typeface = 48;
    int id = -1; ///< FI, FN: a soft font's number, which goes before the attributes

    bool operator==(const FontAttributes& o) const
    {
        return symbolSet == o.symbolSet && isProportional == o.isProportional && pitch == o.pitch && height == o.height
            && style == o.style && weight == o.weight && typeface == o.typeface && id == o.id;
    }
};

/// SI, SR.
struct CharacterSize {
    enum class Kind { FromFont, Centimetres, Percent };
    Kind kind = Kind::FromFont;
    double width = 0;
    double height = 0;
};

/// LM.
enum class LabelMode : std::uint8_t {
    OneByte,
    TwoBytes,
    OneByteVertical, ///< with the vertical forms of characters that have them
    TwoBytesVertical,
};

/// DV.
enum class TextPath : std::uint8_t { Right, Down, Left, Up };

constexpr bool isVertical(TextPath path) { return path == TextPath::Down || path == TextPath::Up; }

/// CF.
enum class CharacterFill : std::uint8_t {
    Pen, ///< solid in the pen's colour
    Edge,
    FillType, ///< as FT has it
    FillTypeAndEdge,
};

/// Everything of the character group.
struct TextState {
    FontAttributes standard;
    FontAttributes alternate;
    bool usesAlternate = false;
    bool allowsBitmapFonts = false;
    LabelMode mode = LabelMode::OneByte;
    std::uint8_t terminator = 3;
    bool printsTerminator = false;
    bool isTransparent = false; ///< TD1
    CharacterSize size;
    double slant = 0; ///< tangent
    bool directionIsRelative = false;
    double run = 1;
    double rise = 0;
    TextPath path = TextPath::Right;
    bool lineFeedsLeft = false; ///< DV's second operand: counter-clockwise from the path
    double extraWidth = 0; ///< ES, in character widths
    double extraHeight = 0; ///< ES, in lines
    int origin = 1; ///< LO
    CharacterFill fill = CharacterFill::Pen;
    int edgePen = 0;
    bool hasEdgePen = false;

    const FontAttributes& font() const { return usesAlternate ? alternate : standard; }
    bool isFilledByType() const { return fill == CharacterFill::FillType || fill == CharacterFill::FillTypeAndEdge; }
    bool isEdged() const { return fill == CharacterFill::Edge || fill == CharacterFill::FillTypeAndEdge; }
};

} // namespace quillrip::hpgl
