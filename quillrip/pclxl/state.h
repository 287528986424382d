#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/base/page_bitmap.h"
#include "quillrip/fonts/font.h"
#include "quillrip/pclxl/clip.h"
#include "quillrip/pclxl/current_path.h"
#include "quillrip/pclxl/raster_pattern.h"
#include "quillrip/raster/compose/raster_operation.h"
#include "quillrip/raster/paths/path.h"
#include "quillrip/raster/paths/stroke_style.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace quillrip::pclxl {

/// What a brush or a pen paints with.
struct Ink {
    enum class Kind : std::uint8_t { None, Solid, Pattern };

    Kind kind = Kind::Solid;
    Rgb color;
    std::shared_ptr<const RasterPattern> pattern;
    Point patternOrigin; ///< user space
    std::optional<Point> patternSize; ///< user units, in place of the pattern's own

    bool isNone() const { return kind == Kind::None; }
};

/// What the numbers of colours mean. 7 and 8 are gray like 1; streams with vendor raster name them.
enum class ColorModel : std::uint8_t {
    BiLevel = 0,
    Gray = 1,
    Rgb = 2,
    Crgb = 5,
    Srgb = 6,
    MonochromeGray = 7,
    VendorGray = 8
};

constexpr int componentsOf(ColorModel model)
{
    return model == ColorModel::Rgb || model == ColorModel::Crgb || model == ColorModel::Srgb ? 3 : 1;
}

enum class CharTransform : std::uint8_t { Scale, Shear, Angle };

struct CharacterState {
    Font font;
    double size = 0; ///< user units per em
    Point scale { 1, 1 };
    Point shear;
    double angle = 0; ///< degrees, counter-clockwise
    double bold = 0; ///< share of the em
    bool isVertical = false;
    bool substitutesVertically = false;
    /// As the operators were used: the one used last is applied last.
    std::array<CharTransform, 3> order { CharTransform::Scale, CharTransform::Shear, CharTransform::Angle };

    void moveToEnd(CharTransform which);
};

/// Everything that PushGS saves and PopGS restores, and nothing else. Copying it is the push; the defaults are those
/// of a new page.
struct GraphicsState {
    Matrix userToDevice;
    int quarterTurns = 0; ///< counter-clockwise turns of the user axes since the page's start
    CurrentPath path;
    Clip clip;
    FillRule fillRule = FillRule::NonZero;

    ColorModel colorModel = ColorModel::Gray;
    std::shared_ptr<const std::vector<Rgb>> palette;
    Ink brush;
    Ink pen;
    StrokeStyle stroke;
    std::uint8_t rop = rop::kTextureOrSource;
    bool sourceTransparent = false;
    bool paintTransparent = false;

    CharacterState character;

    /// Another user space; the path and the cursor stay where they are on the page. False, and nothing done, for a
    /// matrix that no point can be computed with.
    [[nodiscard]] bool changeMatrix(const Matrix& matrix);
};

/// Finite, not absurdly large, and to be inverted.
bool isUsableMatrix(const Matrix& matrix);

} // namespace quillrip::pclxl
