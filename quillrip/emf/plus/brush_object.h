#pragma once

#include "quillrip/emf/plus/field_reader.h"
#include "quillrip/emf/plus/image_object.h"
#include "quillrip/emf/plus/path_object.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace quillrip::emf::plus {

/// What a texture or a gradient does beyond its edges ([MS-EMFPLUS] 2.1.1.34, WrapMode).
enum class WrapMode : std::uint8_t { Tile, FlipX, FlipY, FlipBoth, Clamp };
WrapMode wrapModeOf(std::int32_t number);

struct HatchBrush {
    std::uint32_t style = 0; ///< 0 to 52
    Rgba foreground;
    Rgba background;
};

struct TextureBrush {
    WrapMode wrap = WrapMode::Tile;
    Matrix toWorld; ///< from pixels of the image
    std::shared_ptr<const ImageObject> image; ///< null: there is none, nothing is painted
};

/// The colours along a gradient: between two of them, bent by factors, or at positions of its own.
struct Blend {
    struct Stop {
        double position;
        Rgba color;
    };
    struct Factor {
        double position;
        double factor;
    };

    Rgba start;
    Rgba end;
    std::vector<Stop> stops; ///< not empty: instead of start and end
    std::vector<Factor> factors; ///< not empty: how much of the end's colour, by position

    /// `position` from 0 to 1.
    Rgba at(double position) const;
    /// What the factors make of a position; not empty.
    double factorAt(double position) const;
};

struct LinearGradientBrush {
    WrapMode wrap = WrapMode::Tile;
    RectF rect; ///< the gradient runs along x, from its left to its right side
    Matrix toWorld; ///< from the rectangle's space
    Blend blend;
};

struct PathGradientBrush {
    WrapMode wrap = WrapMode::Clamp;
    Point center;
    Rgba centerColor;
    std::vector<Rgba> surroundColors; ///< of the boundary's points in turn; the last one stands for those missing
    std::optional<PathObject> boundaryPath;
    std::vector<Point> boundaryPoints; ///< a polygon, where there is no path
    Matrix toWorld;
    Point focusScale; ///< part of the way to the boundary that still has the centre's colour, across and down
    std::vector<Blend::Stop> stops; ///< from the boundary (0) to the centre (1); not empty: instead of the colours
    std::vector<Blend::Factor> factors; ///< how much of the centre's colour, by position
};

/// A brush ([MS-EMFPLUS] 2.2.1.1): a solid one is its colour.
using BrushObject = std::variant<Rgba, HatchBrush, TextureBrush, LinearGradientBrush, PathGradientBrush>;

/// Nothing when the bytes hold no brush.
std::optional<BrushObject> readBrush(ByteView object);

} // namespace quillrip::emf::plus
