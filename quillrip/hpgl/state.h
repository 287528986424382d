#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/base/page_bitmap.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace quillrip::hpgl {

/// Plotter units to the inch.
constexpr double kPlotterUnitsPerInch = 1016;
/// Plotter units to the millimetre.
constexpr double kPlotterUnitsPerMillimetre = 40;
/// Decipoints to the inch: page space.
constexpr double kDecipointsPerInch = 720;
/// Texture OR source: the pen's colour where the shape is.
constexpr std::uint8_t kDefaultRasterOperation = 252;
constexpr double kDefaultPenMillimetres = 0.35;
constexpr double kDefaultPenPercent = 0.1;

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

/// x' = scale x + offset for both axes: user units to plotter units.
struct UserToPlotter {
    double scaleX = 1;
    double scaleY = 1;
    double offsetX = 0;
    double offsetY = 0;

    Point apply(Point user) const { return { user.x * scaleX + offsetX, user.y * scaleY + offsetY }; }
    Point applyVector(Point user) const { return { user.x * scaleX, user.y * scaleY }; }
    Point revert(Point plotter) const { return { (plotter.x - offsetX) / scaleX, (plotter.y - offsetY) / scaleY }; }
    Point revertVector(Point plotter) const { return { plotter.x / scaleX, plotter.y / scaleY }; }
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

struct LineType {
    bool isSolid = true;
    int type = 0; ///< -8 to 8; 0: dots at the points
    PatternLength length;
};

struct LineAttributes {
    int end = 1; ///< 1 butt, 2 square, 3 triangular, 4 round
    int join = 1; ///< 1 mitred, 2 mitred or bevelled, 3 triangular, 4 round, 5 bevelled, 6 none
    double miterLimit = 5;
};

/// FT 3 and 4.
struct Hatching {
    enum class Unit { DiagonalPercent, PlotterUnits, UserUnits };
    double spacing = 1;
    Unit unit = Unit::DiagonalPercent;
    double angle = 0; ///< degrees
};

/// FT. Every type remembers its own options.
struct FillType {
    int type = 1;
    Hatching parallel;
    Hatching cross;
    double shading = 50;
    int rasterFill = 1;
    int hatchPattern = 1;
    int userPattern = 0;
};

/// SV, likewise.
struct ScreenedVectors {
    int type = 0;
    double shading = 50;
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

/// Everything of the character group.
struct TextState {
    FontAttributes standard;
    FontAttributes alternate;
    bool usesAlternate = false;
    bool allowsBitmapFonts = false;
    int labelMode = 0;
    std::uint8_t terminator = 3;
    bool printsTerminator = false;
    bool isTransparent = false; ///< TD1
    CharacterSize size;
    double slant = 0; ///< tangent
    bool directionIsRelative = false;
    double run = 1;
    double rise = 0;
    int path = 0; ///< 0 right, 1 down, 2 left, 3 up
    bool lineFeedsLeft = false; ///< DV's second operand: counter-clockwise from the path
    double extraWidth = 0; ///< ES, in character widths
    double extraHeight = 0; ///< ES, in lines
    int origin = 1;
    int fillMode = 0;
    int edgePen = 0;
    bool hasEdgePen = false;
};

/// The state that HP-GL/2 keeps between commands, pages and visits. Places are in plotter units of the rotated system.
struct State {
    bool isAbsolute = true;
    bool isPenDown = false;
    Point pen;
    Point carriageReturn;
    int selectedPen = -1; ///< -1: none since IN, so that nothing is drawn

    Point p1;
    Point p2;
    int quarterTurns = 0; ///< RO / 90
    Scaling scaling;
    Window window;

    bool widthsAreRelative = false; ///< WU1: percent of the distance from P1 to P2
    std::vector<double> penWidths; ///< by pen, millimetres or percent; pens beyond the end have the default

    LineType lineType;
    std::array<std::vector<double>, 9> linePatterns; ///< UL, shares of 1; empty: built in
    LineAttributes lineAttributes;
    int symbol = -1; ///< SM
    FillType fill;
    ScreenedVectors screened;
    std::array<RasterFill, 9> rasterFills; ///< by index 1 to 8; empty: solid
    Point anchor;
    bool isTransparent = true; ///< TR
    TextState text;

    bool chordIsDeviation = false; ///< CT1
    std::array<double, 3> blackReference { 0, 0, 0 }; ///< CR: what PC calls black, red green blue
    std::array<double, 3> whiteReference { 255, 255, 255 };
};

} // namespace quillrip::hpgl
